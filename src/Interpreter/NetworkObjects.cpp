#include "Interpreter/NetworkObjects.h"

#include <utility>

#include "GA-Apps/GenTrain/TMLPGA.h"
#include "GA-Apps/GenTrain/TTarnGA.h"
#include "Interpreter/Checks.h"
#include "NeuralNets/Maps/TKohonenModule.h"
#include "NeuralNets/Maps/TKohonenNetwork.h"
#include "NeuralNets/TMLPNetwork.h"
#include "NeuralNets/Training/TBackpropModule.h"
#include "Tarn/TTarnLWF.h"

namespace kiln {

std::shared_ptr<TBasicNetwork> AsNetwork(const TRegistryNode& node) {
  if (auto tarn = node.As<TTarn>()) return tarn;
  if (auto perceptron = node.As<TMLPNetwork>()) return perceptron;
  if (auto map = node.As<TKohonenNetwork>()) return map;
  return nullptr;
}

std::shared_ptr<TTrainModule> AsGradientTrainer(const TRegistryNode& node) {
  if (auto trainer = node.As<TTarnBP>()) return trainer;
  if (auto trainer = node.As<TTarnLWF>()) return trainer;
  if (auto trainer = node.As<TBackpropModule>()) return trainer;
  return nullptr;
}

std::shared_ptr<TGenTrain> AsGeneticTrainer(const TRegistryNode& node) {
  if (auto trainer = node.As<TTarnGA>()) return trainer;
  if (auto trainer = node.As<TMLPGA>()) return trainer;
  return nullptr;
}

const TBasicNetwork* TrainedNetwork(const TRegistryNode& node) {
  if (const auto trainer = AsGeneticTrainer(node)) return &trainer->Network();
  const std::shared_ptr<const TTrainModule> trainer = AsGradientTrainer(node);
  return trainer ? &trainer->Network() : nullptr;
}

TTarn* TrainedTarn(const TRegistryNode& node) {
  if (const auto trainer = node.As<TTarnBP>()) return &trainer->Tarn();
  if (const auto trainer = node.As<TTarnLWF>()) return &trainer->Tarn();
  if (const auto trainer = node.As<TTarnGA>()) return &trainer->Tarn();
  return nullptr;
}

const TTrainHistory* TrainingHistory(const TRegistryNode& node) {
  if (const auto trainer = AsGradientTrainer(node)) return &trainer->History();
  if (const auto trainer = AsGeneticTrainer(node)) return &trainer->History();
  const auto trainer = node.As<TKohonenModule>();
  return trainer ? &trainer->History() : nullptr;
}

void InsertNetwork(TInterpreter& interpreter, std::string_view alias,
                   std::unique_ptr<TBasicNetwork> network) {
  const std::shared_ptr<TBasicNetwork> shared = std::move(network);
  if (auto tarn = std::dynamic_pointer_cast<TTarn>(shared)) {
    interpreter.Insert({alias, std::move(tarn)});
  } else if (auto perceptron = std::dynamic_pointer_cast<TMLPNetwork>(shared)) {
    interpreter.Insert({alias, std::move(perceptron)});
  } else if (auto map = std::dynamic_pointer_cast<TKohonenNetwork>(shared)) {
    interpreter.Insert({alias, std::move(map)});
  } else {
    Fail("unknown network type");
  }
}

}  // namespace kiln
