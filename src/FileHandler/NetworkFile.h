#pragma once

#include <memory>
#include <string>

#include "NeuralNets/TBasicNetwork.h"

// Network files: one format for every kind of network. docs/file-formats.md describes the text.
namespace kiln::NetworkFiler {

// Writes a network file. The text reads back as a network that is written as the same text.
// Throws TException when a bias layer has more than one neuron, and FileTools::SaveError; in both
// cases a file that was at `path` before is left as it was.
void SaveNetwork(const std::string& path, const TBasicNetwork& network);

// Reads a network file. The object is of the class that belongs to the kind named in the file;
// KindName() tells which.
//
// Throws FileTools::Error for faults of the bracketed syntax, and TException for all other faults
// and for a file that cannot be opened; the detail of the exception has the place, as
// (error :type bad-format :file FILE :line N). Throws TAssertion for numbers of layers, neurons and
// columns that contradict each other. What a file asks for is bounded before memory is taken.
std::unique_ptr<TBasicNetwork> LoadNetwork(const std::string& path);

}  // namespace kiln::NetworkFiler
