#pragma once

#include <memory>
#include <ostream>

#include "Console/TLineSource.h"
#include "Interpreter/TInterpreter.h"

namespace kiln {

// Lines that a person types at the terminal of the standard input and output: edited, completed by
// the tabulator key, and kept in a history that outlives the session. Null where the terminal
// cannot do that, or where the program was built without libedit. Both arguments, of which `out` is
// the standard output, must outlive the lines.
std::unique_ptr<TLineSource> MakeLineEditor(const TInterpreter& interpreter, std::ostream& out);

}  // namespace kiln
