#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace kiln {

// A membership function: to what degree a value belongs to a fuzzy term such as "warm".
class TBasicMF {
 public:
  virtual ~TBasicMF() = default;
  TBasicMF(const TBasicMF&) = delete;
  TBasicMF& operator=(const TBasicMF&) = delete;

  // The degree of membership of `x`. It lies in [0, 1] as long as the parameters of the function
  // stand in ascending order.
  virtual double GetMembership(double x) const = 0;

  // The word for its kind in files.
  const std::string& Type() const { return type_; }

  // The term that it stands for; a function need not have one.
  const std::optional<std::string>& Name() const { return name_; }

 protected:
  TBasicMF(std::string_view type, std::optional<std::string> name)
      : type_(type), name_(std::move(name)) {}

 private:
  std::string type_;
  std::optional<std::string> name_;
};

}  // namespace kiln
