#pragma once

#include <exception>
#include <memory>
#include <string>

namespace kiln {

class TKQstructure;

// The failure that a user can cause and is told about: what went wrong, of which kind it is, and
// the operation that noticed it, written "Class::Operation". Some failures add a keyword/value
// structure that a program can read.
class TException : public std::exception {
 public:
  TException(std::string message, std::string category, std::string function,
             std::shared_ptr<const TKQstructure> detail = nullptr);

  const std::string& Message() const noexcept { return message_; }
  const std::string& Category() const noexcept { return category_; }
  const std::string& Function() const noexcept { return function_; }

  // The machine-readable detail, or null.
  const TKQstructure* Detail() const noexcept { return detail_.get(); }

  // Adds where in a file the failure was noticed to what(): " (FILE, line N)".
  void AddPlace(const std::string& place) { text_ += place; }

  // Message, category and function, a blank between each: the text of the console's answer.
  const char* what() const noexcept override { return text_.c_str(); }

 private:
  std::string message_;
  std::string category_;
  std::string function_;
  std::string text_;
  std::shared_ptr<const TKQstructure> detail_;  // shared, so that copying never throws
};

}  // namespace kiln
