#pragma once

#include "host/Windows.h"
#include "x11/RawPresses.h"

namespace vistrel::qt {

/// Tells the presses that go to none of the program's windows and menus. Watches only while there is a
/// client.
class OutsidePresses {
 public:
  explicit OutsidePresses(x11::RawPresses& presses) : presses_(presses) {}
  OutsidePresses(const OutsidePresses&) = delete;
  OutsidePresses& operator=(const OutsidePresses&) = delete;
  ~OutsidePresses();

  void setClient(host::OutsidePressClient* client);

 private:
  void pressed(const x11::RawPress& press);

  x11::RawPresses& presses_;
  host::OutsidePressClient* client_ = nullptr;
};

}  // namespace vistrel::qt
