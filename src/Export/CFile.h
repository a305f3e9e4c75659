#pragma once

#include <string>
#include <string_view>

#include "DataObject/Data.h"

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

// Writes the file; `name` becomes an identifier, and the comment at the top lists what inputs and
// outputs are called, where they have names. Throws TException for what cannot be written: a
// network with connections that lead back, whose answers depend on the calls before, one with a
// layer that nothing but Kiln can compute, or with weights that are no numbers. Throws
// FileTools::SaveError.
void Save(const std::string& path, std::string_view name, const TBasicNetwork& network,
          const ColumnNames& names);

}  // namespace CFile
}  // namespace kiln
