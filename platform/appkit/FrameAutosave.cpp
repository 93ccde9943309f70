#include "appkit/FrameAutosave.h"

#include <chrono>
#include <cmath>
#include <cstdio>

#include "backend/Backend.h"
#include "foundation/UserDefaults.h"

namespace vistrel {

namespace {

// A hand that drags a window rests less than this; one that lets go notices nothing of it.
constexpr std::chrono::milliseconds kRestAfterMoving(300);

std::string keyOf(const std::string& name) { return "NSWindow Frame " + name; }

std::string textOf(const Rect& frame) {
  char text[128];
  std::snprintf(text, sizeof text, "%.0f %.0f %.0f %.0f", frame.x, frame.y, frame.width, frame.height);
  return text;
}

}  // namespace

std::optional<Point> FrameAutosave::start(const std::string& name) {
  name_ = name;
  const auto text = UserDefaults::standard().stringForKey(keyOf(name));
  Point origin;
  if (!text || std::sscanf(text->c_str(), "%lf %lf", &origin.x, &origin.y) != 2) return std::nullopt;
  if (!std::isfinite(origin.x) || !std::isfinite(origin.y)) return std::nullopt;
  return origin;
}

// Each step of a drag comes here, and to write is to wait for the disk: where it ends is enough.
void FrameAutosave::frameDidMove() {
  if (name_.empty()) return;
  movement_ = backend::current().mainLoop().after(kRestAfterMoving, [this] { save(); });
}

void FrameAutosave::finish() {
  if (movement_) save();
}

void FrameAutosave::save() {
  movement_.reset();
  UserDefaults::standard().setString(textOf(frame_), keyOf(name_));
}

}  // namespace vistrel
