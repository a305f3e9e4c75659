#include <string>

#include "Export/CLayers.h"
#include "NeuralNets/Maps/TKohonenNetwork.h"

namespace kiln::CFile {

void WriteMap(TCSource& source, const TKohonenNetwork& map) {
  const std::string prototypes = source.Table("prototypes", map.Prototypes());
  const std::string inputs = std::to_string(map.NumInputs());
  const std::string unit = source.Name() + "_unit";
  source.Definition("int " + unit +
                    "(const double *input) {\n"
                    "  const double *w = " +
                    prototypes +
                    ";\n"
                    "  double least = HUGE_VAL;\n"
                    "  int i, u, winner = 0;\n\n"
                    "  for (u = 0; u < " +
                    std::to_string(map.Grid().NumUnits()) +
                    "; ++u) {\n"
                    "    double distance = 0.0;\n"
                    "    for (i = 0; i < " +
                    inputs +
                    "; ++i, ++w) distance += (input[i] - *w) * (input[i] - *w);\n"
                    "    if (distance < least) {\n"
                    "      least = distance;\n"
                    "      winner = u;\n"
                    "    }\n"
                    "  }\n"
                    "  return winner;\n"
                    "}\n");
  source.Statement("const double *prototype = " + prototypes + " + " + inputs + " * " + unit +
                   "(input)");
  source.Loop(0, map.NumInputs(), "output[i] = prototype[i]");
}

}  // namespace kiln::CFile
