#pragma once

#include <QObject>
#include <QPoint>
#include <deque>
#include <functional>
#include <utility>

#include "backend/StatusArea.h"
#include "backend/Windows.h"
#include "base/Geometry.h"
#include "linux/windows/PressCover.h"
#include "linux/x11/RawPresses.h"

class QMouseEvent;
class QWindow;

namespace vistrel::windows {

/// Tells the presses that go to none of the program's windows and menus. Watches only while there is a
/// client. One that the cover takes beside an attached popover is offered to the icon in the tray first.
class OutsidePresses : public QObject {
 public:
  /// Whether the icon was there; then it is pressed.
  using IconPress = std::function<bool(backend::PointerButton button, Point place)>;
  OutsidePresses(x11::RawPresses& presses, IconPress pressIcon)
      : presses_(presses), pressIcon_(std::move(pressIcon)) {}
  ~OutsidePresses() override;

  void setClient(backend::OutsidePressClient* client);

 protected:
  bool eventFilter(QObject* object, QEvent* event) override;

 private:
  void pressed(const x11::RawPress& press);
  void note(const QWindow& window, const QMouseEvent& press);
  void judge(const x11::RawPress& press, QPoint place, bool isCovered);
  void coverPressed(int button, Point place);

  x11::RawPresses& presses_;
  IconPress pressIcon_;
  backend::OutsidePressClient* client_ = nullptr;
  // Counts the watches, so that a press is not judged in another one than its own.
  int watch_ = 0;
  xcb_timestamp_t watchedSince_ = XCB_CURRENT_TIME;
  std::deque<xcb_timestamp_t> ownPresses_;
  PressCover cover_;
};

}  // namespace vistrel::windows
