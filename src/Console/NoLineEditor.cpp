#include "Console/LineEditor.h"

// In place of LineEditor.cpp where there is no libedit.
namespace kiln {

std::unique_ptr<TLineSource> MakeLineEditor(const TInterpreter& /*interpreter*/,
                                            std::ostream& /*out*/) {
  return nullptr;
}

}  // namespace kiln
