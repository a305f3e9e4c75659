#pragma once

#include <cstddef>
#include <set>
#include <string_view>

#include "Interpreter/TRegistryNode.h"
#include "Shared/Text.h"

namespace kiln {

// The objects of a session in the order of their aliases, which are compared ignoring case.
class TObjectRegistry {
 private:
  struct ByAlias {
    using is_transparent = void;

    bool operator()(const TRegistryNode& left, const TRegistryNode& right) const {
      return LessNoCase(left.Alias(), right.Alias());
    }
    bool operator()(const TRegistryNode& left, std::string_view right) const {
      return LessNoCase(left.Alias(), right);
    }
    bool operator()(std::string_view left, const TRegistryNode& right) const {
      return LessNoCase(left, right.Alias());
    }
  };
  using TNodes = std::multiset<TRegistryNode, ByAlias>;

 public:
  // Whether no object may be called `word`, because a command searches its line for it.
  static bool IsReserved(std::string_view word);

  bool Exists(std::string_view alias) const { return nodes_.contains(alias); }

  // The entry, valid until it is removed, or null.
  const TRegistryNode* Find(std::string_view alias) const;

  // Adds an entry, behind those of the same alias. Callers make sure that there are none.
  void Insert(TRegistryNode node) { nodes_.insert(std::move(node)); }

  // Takes the entry out. No effect without one.
  void Remove(std::string_view alias);

  void Purge() { nodes_.clear(); }

  std::size_t Count() const { return nodes_.size(); }
  TNodes::const_iterator begin() const { return nodes_.begin(); }
  TNodes::const_iterator end() const { return nodes_.end(); }

 private:
  TNodes nodes_;
};

}  // namespace kiln
