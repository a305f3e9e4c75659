#pragma once

#include <memory>

#include "Measure.h"
#include "NeuralNets/Training/TTrainModule.h"
#include "TPerceptronTask.h"

namespace kiln {

// Kiln's own work. The task must live as long as the work does.

// A pass is an epoch. The trainer is shared by all passes.
TWork Training(std::shared_ptr<TTrainModule> trainer, const Data& data, bool batch);
TWork PerceptronTraining(const TPerceptronTask& task, bool batch);

// A pass recalls the whole set into a new one of outputs.
TWork Recall(std::shared_ptr<TBasicNetwork> network, const Data& data);
TWork PerceptronRecall(const TPerceptronTask& task);

}  // namespace kiln
