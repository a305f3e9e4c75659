#include "Interpreter/TObjectRegistry.h"

namespace kiln {

namespace {

constexpr std::string_view kReservedWords[] = {
    "action",       "alias",          "aliasexists", "bias",         "BPTrainer",
    "classof",      "condition",      "coord",       "copy",         "create",
    "Data",         "DataStats",      "decay",       "destination",  "denormalise",
    "destroy",      "dimensions",     "elitism",     "epochs",       "filename",
    "Tarn",         "TarnLabels",     "layers",      "GATrainer",    "generations",
    "getnextrow",   "getstats",       "gettrained",  "hidden",       "input",
    "inputs",       "inputcmaxs",     "inputcmins",  "inputgmax",    "inputgmin",
    "Kohonen",      "KohonenTrainer", "label",       "labels",       "labeltarn",
    "labelweights", "load",           "LWFTrainer",  "map",          "mapdim",
    "maxweight",    "method",         "minweight",   "MLP",          "mode",
    "mutation",     "Neighbourhood",  "network",     "normalise",    "normalisation",
    "output",       "outputs",        "outputcmaxs", "outputcmins",  "outputgmax",
    "outputgmin",   "population",     "purge",       "purgedata",    "query",
    "recall",       "retarn",         "resetdata",   "rows",         "rules",
    "run",          "save",           "selection",   "shuffle",      "source",
    "structureof",  "terminating",    "ThresholdIn", "ThresholdOut", "train"};

}  // namespace

bool TObjectRegistry::IsReserved(std::string_view word) {
  return FindNoCase(kReservedWords, word) != nullptr;
}

const TRegistryNode* TObjectRegistry::Find(std::string_view alias) const {
  const auto found = nodes_.find(alias);
  return found == nodes_.end() ? nullptr : &*found;
}

void TObjectRegistry::Remove(std::string_view alias) {
  const auto found = nodes_.find(alias);
  if (found != nodes_.end()) nodes_.erase(found);
}

}  // namespace kiln
