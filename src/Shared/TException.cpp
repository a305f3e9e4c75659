#include "Shared/TException.h"

#include <utility>

namespace kiln {

TException::TException(std::string message, std::string category, std::string function,
                       std::shared_ptr<const TKQstructure> detail)
    : message_(std::move(message)),
      category_(std::move(category)),
      function_(std::move(function)),
      text_(message_ + " " + category_ + " " + function_),
      detail_(std::move(detail)) {}

}  // namespace kiln
