#pragma once

#include <string>
#include <vector>

#include "base/Result.h"

namespace vistrel::backend {

/// One entry of the desktop's autostart folders (XDG Autostart), the user's outranking the system's.
struct LoginItem {
  std::string label;  ///< file name without ".desktop"
  bool isEnabled = false;
};

/// What the desktop starts at login.
class LoginItems {
 public:
  virtual ~LoginItems() = default;
  /// All entries; an error when no folder can be read.
  virtual Result<std::vector<LoginItem>> items() = 0;
  /// Makes the entry of that label start this program at login, or not.
  virtual Result<void> setEnabled(const std::string& label, bool isEnabled) = 0;
};

}  // namespace vistrel::backend
