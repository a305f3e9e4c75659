#!/usr/bin/env bash
# Fails on the first include that leads from a folder of src/ to one that stands above it.
set -euo pipefail
cd "$(dirname "$0")/../src"

# From top to bottom; a folder uses only itself and those below it. "." holds main().
layers=(. Console Library Interpreter Plot Export GA-Apps/GenTrain Tarn/RuleExtraction RuleObject FileHandler
  Tarn NeuralNets/Maps NeuralNets/Training NeuralNets NeuralNets/Kernels DataTools/DataManip DataObject
  Membership Bramble KQmessage FileHandler/Syntax Shared)

grep -rnoE --include='*.cpp' --include='*.h' --include='*.inc' '^ *#include "[^"]+"' . |
  awk -v layers="${layers[*]}" '
    function folder(path) { return sub("/[^/]*$", "", path) ? path : "." }
    BEGIN { split(layers, names, " "); for (i in names) place[names[i]] = i + 0 }
    {
      split($0, part, ":")
      from = part[1]; sub("^\\./", "", from)
      to = part[3]; gsub("^ *#include \"|\"$", "", to)
      if (!(folder(from) in place) || !(folder(to) in place)) problem = "has no place among the folders"
      else if (place[folder(to)] < place[folder(from)]) problem = "stands above it"
      else next
      printf "src/%s:%s: includes %s, which %s\n", from, part[2], to, problem
      exit 1
    }'
