#pragma once

#include <QObject>
#include <QPoint>
#include <deque>
#include <utility>

#include "backend/Windows.h"
#include "linux/windows/PressCover.h"
#include "linux/x11/RawPresses.h"

class QMouseEvent;
class QWindow;

namespace vistrel::windows {

/// Tells the presses that go to none of the program's windows and menus. Watches only while there is a
/// client.
class OutsidePresses : public QObject {
 public:
  OutsidePresses(x11::RawPresses& presses, PressCover::IconFrame iconFrame)
      : presses_(presses), cover_(std::move(iconFrame)) {}
  ~OutsidePresses() override;

  void setClient(backend::OutsidePressClient* client);

 protected:
  bool eventFilter(QObject* object, QEvent* event) override;

 private:
  void pressed(const x11::RawPress& press);
  void note(const QWindow& window, const QMouseEvent& press);
  void judge(xcb_timestamp_t time, QPoint place, bool isCovered);

  x11::RawPresses& presses_;
  backend::OutsidePressClient* client_ = nullptr;
  // Counts the watches, so that a press is not judged in another one than its own.
  int watch_ = 0;
  xcb_timestamp_t watchedSince_ = XCB_CURRENT_TIME;
  std::deque<xcb_timestamp_t> ownPresses_;
  PressCover cover_;
};

}  // namespace vistrel::windows
