#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

namespace kiln {

class Data;
class TTarn;
class TTarnBP;
class TTarnLWF;
class TTarnGA;
class TMLPNetwork;
class TKohonenNetwork;
class TBackpropModule;
class TMLPGA;
class TDataStats;
class TKohonenModule;
class TNetLabel;
class TFuzzyRuleSet;

// Every kind of object that a user can name. A kind's type tag is its place here, counted from 1.
// Objects are shared because a trainer goes on using its network after that is destroyed.
using TObject =
    std::variant<std::shared_ptr<Data>, std::shared_ptr<TTarn>, std::shared_ptr<TTarnBP>,
                 std::shared_ptr<TTarnLWF>, std::shared_ptr<TTarnGA>, std::shared_ptr<TMLPNetwork>,
                 std::shared_ptr<TKohonenNetwork>, std::shared_ptr<TBackpropModule>,
                 std::shared_ptr<TMLPGA>, std::shared_ptr<TDataStats>,
                 std::shared_ptr<TKohonenModule>, std::shared_ptr<TNetLabel>,
                 std::shared_ptr<TFuzzyRuleSet>>;

// An object under the alias that its user gave it.
class TRegistryNode {
 public:
  // REQUIRES: object is not null.
  template <typename T>
  TRegistryNode(std::string_view alias, std::shared_ptr<T> object)
      : alias_(alias), object_(std::move(object)) {}

  template <typename T>
  TRegistryNode(std::string_view alias, std::unique_ptr<T> object)
      : TRegistryNode(alias, std::shared_ptr<T>(std::move(object))) {}

  const std::string& Alias() const { return alias_; }

  // The type tag, 1..13.
  int Type() const { return static_cast<int>(object_.index()) + 1; }

  // The name of the object's kind: "Data", "MLPGA".
  std::string_view Kind() const;

  // The object if it is a `T`, otherwise null.
  template <typename T>
  std::shared_ptr<T> As() const {
    const auto* held = std::get_if<std::shared_ptr<T>>(&object_);
    return held ? *held : nullptr;
  }

 private:
  std::string alias_;
  TObject object_;
};

}  // namespace kiln
