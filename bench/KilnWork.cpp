#include "KilnWork.h"

#include <string>
#include <utility>

#include "KQmessage/TKQstructure.h"
#include "NeuralNets/Training/TBackpropModule.h"

namespace kiln {

namespace {

// The settings of a training as the trainers read them.
std::string TrainingSettings(bool batch) {
  return "(Params :LearningRate " + std::to_string(kLearningRate) + " :Momentum " +
         std::to_string(kMomentum) + " :Batch " + (batch ? "true" : "false") + ")";
}

}  // namespace

TWork Training(std::shared_ptr<TTrainModule> trainer, const Data& data, bool batch) {
  return [trainer = std::move(trainer), &data, batch](int passes) {
    TKQstructure settings = TKQstructure::Parse(TrainingSettings(batch));
    return SecondsOf([&] { trainer->Train(data, settings, passes); });
  };
}

TWork PerceptronTraining(const TPerceptronTask& task, bool batch) {
  return Training(std::make_shared<TBackpropModule>(task.network), task.data, batch);
}

TWork Recall(std::shared_ptr<TBasicNetwork> network, const Data& data) {
  return [network = std::move(network), &data](int passes) {
    return SecondsOf([&] {
      for (int n = 0; n < passes; ++n) network->RecallOutputOnly(&data);
    });
  };
}

TWork PerceptronRecall(const TPerceptronTask& task) {
  return Recall(task.network, task.data);
}

}  // namespace kiln
