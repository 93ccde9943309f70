#include "linux/tray/MenuPlan.h"

#include <algorithm>

namespace vistrel::tray {

namespace {

using Rows = std::vector<MenuRow>;
using Table = std::vector<std::vector<std::size_t>>;

// table[i][j]: how many rows can stay from present row i and wanted row j on.
Table keepable(const Rows& present, const Rows& wanted) {
  Table table(present.size() + 1, std::vector<std::size_t>(wanted.size() + 1, 0));
  for (std::size_t i = present.size(); i-- > 0;) {
    for (std::size_t j = wanted.size(); j-- > 0;) {
      table[i][j] =
          present[i] == wanted[j] ? table[i + 1][j + 1] + 1 : std::max(table[i + 1][j], table[i][j + 1]);
    }
  }
  return table;
}

}  // namespace

std::vector<MenuStep> planMenu(const Rows& present, const Rows& wanted) {
  const Table table = keepable(present, wanted);
  std::vector<MenuStep> steps;
  std::size_t i = 0;
  std::size_t j = 0;
  while (i < present.size() || j < wanted.size()) {
    if (i < present.size() && j < wanted.size() && present[i] == wanted[j]) {
      steps.push_back({MenuStep::Kind::Keep, i++, j++});
    } else if (j < wanted.size() && (i == present.size() || table[i][j + 1] >= table[i + 1][j])) {
      steps.push_back({MenuStep::Kind::Insert, i, j++});
    } else {
      steps.push_back({MenuStep::Kind::Remove, i++, 0});
    }
  }
  return steps;
}

}  // namespace vistrel::tray
