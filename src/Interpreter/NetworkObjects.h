#pragma once

#include <memory>
#include <string_view>

#include "Interpreter/TInterpreter.h"

namespace kiln {

class TBasicNetwork;
class TGenTrain;
class TTarn;
class TTrainHistory;
class TTrainModule;

// For handlers that treat several kinds of network, or of trainer, alike.

// The network of an entry; null when it holds something else.
std::shared_ptr<TBasicNetwork> AsNetwork(const TRegistryNode& node);

// The trainer of an entry that descends the gradient; null when it holds something else.
std::shared_ptr<TTrainModule> AsGradientTrainer(const TRegistryNode& node);

// The trainer of an entry that breeds weights; null when it holds something else.
std::shared_ptr<TGenTrain> AsGeneticTrainer(const TRegistryNode& node);

// The network that a trainer of any kind trains; null when the entry holds no such trainer.
const TBasicNetwork* TrainedNetwork(const TRegistryNode& node);

// The fuzzy network that a trainer trains; null when the entry holds no trainer of one.
TTarn* TrainedTarn(const TRegistryNode& node);

// What the trainer of an entry has seen; null when it holds no trainer.
const TTrainHistory* TrainingHistory(const TRegistryNode& node);

// Registers a network under the type tag of its kind. Throws TCommandFailure "unknown network type"
// for a kind that has no tag.
// REQUIRES: the alias is free.
void InsertNetwork(TInterpreter& interpreter, std::string_view alias,
                   std::unique_ptr<TBasicNetwork> network);

}  // namespace kiln
