#pragma once

#include <memory>
#include <string_view>

#include "Interpreter/TInterpreter.h"

namespace kiln {

class TBasicNetwork;
class TGenTrain;
class TTrainModule;

// The kinds of network and of trainer as handlers see them that treat several kinds alike.

// The network of an entry; null when it holds something else.
std::shared_ptr<TBasicNetwork> AsNetwork(const TRegistryNode& node);

// The trainer of an entry that descends the gradient; null when it holds something else.
std::shared_ptr<TTrainModule> AsGradientTrainer(const TRegistryNode& node);

// The trainer of an entry that breeds weights; null when it holds something else.
std::shared_ptr<TGenTrain> AsGeneticTrainer(const TRegistryNode& node);

// The network that a trainer of any kind trains; null when the entry holds no such trainer.
const TBasicNetwork* TrainedNetwork(const TRegistryNode& node);

// Registers a network under its own kind. Throws TCommandFailure for a kind without a type tag.
// REQUIRES: the alias is free.
void InsertNetwork(TInterpreter& interpreter, std::string_view alias,
                   std::unique_ptr<TBasicNetwork> network);

}  // namespace kiln
