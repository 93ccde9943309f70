#pragma once

#include <sys/types.h>
#include <xcb/xcb.h>

#include <optional>
#include <string>
#include <vector>

#include "base/Result.h"
#include "linux/FileDescriptor.h"

namespace vistrel::x11 {

/// Invisible windows over parts of the desktop that take the presses there (`CoverWindows`). A program of its
/// own shows them, so that they are off the screen with the first press on one of them even while this one is
/// stopped, and go at once with it. Main thread only.
class InputCover {
 public:
  /// Covers nothing yet. Where that program, `program`, cannot be started, it never will: see `failure`.
  explicit InputCover(std::string program = installedProgram());
  InputCover(const InputCover&) = delete;
  InputCover& operator=(const InputCover&) = delete;
  ~InputCover();

  /// Why the other program could not be started, or that it has ended, as far as `isAble` has seen.
  [[nodiscard]] const std::optional<Error>& failure() const { return failure_; }
  /// Whether the other program has said that it can cover something, and has not ended.
  [[nodiscard]] bool isAble();
  /// Covers these parts of the desktop and no others, in pixels; again, too, after a press has ended it.
  void setParts(const std::vector<xcb_rectangle_t>& parts);

  /// Where the build of this program, or its installation, puts the other one.
  [[nodiscard]] static std::string installedProgram();

 private:
  std::string program_;
  desktop::FileDescriptor channel_;
  pid_t process_ = 0;
  bool isAble_ = false;
  std::optional<Error> failure_;
};

}  // namespace vistrel::x11
