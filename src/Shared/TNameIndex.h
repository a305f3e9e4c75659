#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <unordered_map>

namespace kiln {

// Where names stand in a list, for lists that are long or searched often.
class TNameIndex {
 public:
  // Adds the name of the next place. Its text outlives the index.
  void Add(std::string_view name);

  // Whether several places have the name.
  bool HasSeveral(std::string_view name) const;

  // The place of a name, the first of several; nothing where there is none.
  std::optional<std::size_t> Find(std::string_view name) const;

 private:
  struct TPlace {
    std::size_t first;
    bool is_only;
  };

  std::unordered_map<std::string_view, TPlace> places_;
  std::size_t size_ = 0;
};

}  // namespace kiln
