#pragma once

#include <memory>
#include <optional>
#include <string>

#include "backend/MainLoop.h"
#include "base/Geometry.h"

namespace vistrel {

/// Keeps the place of a window in the user defaults, under a name. Main thread only.
class FrameAutosave {
 public:
  /// `frame` is the window's own, as it is whenever it is saved.
  explicit FrameAutosave(const Rect& frame) : frame_(frame) {}

  /// Saves under that name from now on. The origin that was saved under it; none for one that no window can
  /// have.
  [[nodiscard]] std::optional<Point> start(const std::string& name);
  /// Saves the frame once the window rests; not without a name.
  void frameDidMove();
  /// Saves at once what waits for the window to rest.
  void finish();

 private:
  void save();

  const Rect& frame_;
  std::string name_;
  std::unique_ptr<backend::Timer> movement_;  // while the window is being moved
};

}  // namespace vistrel
