#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kiln {

class TBasicNetwork;

// Networks as C: a file of C99 that needs nothing but <math.h>, keeps nothing between calls and
// defines
//
//   void NAME(const double *input, double *output);
//
// which gives the answers of a recall to within rounding. A map's file also defines
// int NAME_unit(const double *input), the number of the winner.
namespace CFile {

// What the columns of the data are called that the network works on: for the comment at the top. A
// side without names has none there.
struct TNames {
  std::vector<std::string> inputs;
  std::vector<std::string> outputs;
};

// Writes the file; `name` becomes an identifier. Throws TException for what cannot be written: a
// network with connections that lead back, whose answers depend on the calls before, one with a
// layer that nothing but Kiln can compute, or with weights that are no numbers. Throws
// FileTools::SaveError.
void Save(const std::string& path, std::string_view name, const TBasicNetwork& network,
          const TNames& names);

}  // namespace CFile
}  // namespace kiln
