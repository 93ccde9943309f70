#pragma once

#include <QWidget>
#include <memory>
#include <string>

namespace vistrel::session {

/// Has screen readers say what nothing on the screen says. Before Qt 6.8, which has announcements of its own,
/// as notifications: Orca says those, and announcements only since its version 45.
class Announcer {
 public:
  Announcer();

  /// Says the text after what is being said; nothing while nobody has asked for the program's accessibility.
  void announce(const std::string& text);

 private:
  // Never on the screen: what is said, in a widget, or a screen reader would take it for gone.
  std::unique_ptr<QWidget> notification_;
};

}  // namespace vistrel::session
