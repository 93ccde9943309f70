#pragma once

#include <string>
#include <tuple>
#include <vector>

#include "base/Geometry.h"

namespace vistrel::backend {

struct Screen {
  std::string name;
  Rect frame;         ///< on the desktop, in points
  Rect visibleFrame;  ///< without panels
  double scale = 1;   ///< physical pixels a point
  bool isPrimary = false;
};

/// Told what happens to the program as a whole. Called on the main thread from the main loop.
class SessionClient {
 public:
  virtual ~SessionClient() = default;
  virtual void didFinishLaunching() = 0;
  /// Somebody started the program again.
  virtual void reopen() = 0;
  /// Somebody chose one of the program's actions on the desktop, by its name in the desktop entry.
  virtual void actionRequested(const std::string& action) = 0;
  /// The focus came to one of the program's windows, or left them all. A key grab in between does not count.
  virtual void didBecomeActive() = 0;
  virtual void willResignActive() = 0;
  /// A screen was added, removed, moved, resized or rescaled, or another one is the primary.
  virtual void screensDidChange() = 0;
  /// The desktop's light or dark preference changed.
  virtual void appearanceDidChange() = 0;
  /// The user wants more contrast than usual, or no longer.
  virtual void contrastDidChange() = 0;
  /// A signal or the end of the desktop session asks the program to end: runs the terminate step.
  virtual void terminateRequested() = 0;
};

/// The program's place in the user's session. Main thread only.
class Session {
 public:
  virtual ~Session() = default;
  virtual void setClient(SessionClient* client) = 0;
  [[nodiscard]] virtual std::vector<Screen> screens() = 0;
  [[nodiscard]] virtual Point pointerLocation() = 0;
  [[nodiscard]] virtual bool isDark() = 0;
  /// Whether a screen reader says that it runs.
  [[nodiscard]] virtual bool isScreenReaderOn() = 0;
  /// Has a screen reader say the text after what it is saying; nothing without one.
  virtual void announce(const std::string& text) = 0;
  /// Whether the user wants more contrast than usual.
  [[nodiscard]] virtual bool increasesContrast() = 0;
  /// Version of the platform as major, minor, patch; on Linux one after 10.15 and before 12.3.
  struct Version {
    int major = 0;
    int minor = 0;
    int patch = 0;
    bool operator<(const Version& o) const {
      return std::tie(major, minor, patch) < std::tie(o.major, o.minor, o.patch);
    }
    bool operator>=(const Version& o) const { return !(*this < o); }
  };
  [[nodiscard]] virtual Version platformVersion() = 0;
  /// Opens an address in the user's browser; false when the desktop has none.
  virtual bool openUrl(const std::string& url) = 0;
};

}  // namespace vistrel::backend
