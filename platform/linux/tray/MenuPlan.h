#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace vistrel::tray {

/// What makes a native row the same row in the next menu: it may stay where it is, and only what it stands
/// for and its check mark change.
struct MenuRow {
  enum class Kind { Item, Separator };
  Kind kind = Kind::Item;
  std::string title;
  std::string action;
  bool operator==(const MenuRow&) const = default;
};

/// One step on the way from the present rows to the wanted ones.
struct MenuStep {
  enum class Kind { Keep, Insert, Remove };
  Kind kind = Kind::Keep;
  std::size_t present = 0;  ///< row to keep or remove, or before which to insert
  std::size_t wanted = 0;   ///< row to show; meaningless for `Remove`
  bool operator==(const MenuStep&) const = default;
};

/// The steps in the order of the rows, with as many rows kept as possible.
[[nodiscard]] std::vector<MenuStep> planMenu(const std::vector<MenuRow>& present,
                                             const std::vector<MenuRow>& wanted);

}  // namespace vistrel::tray
