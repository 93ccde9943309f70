#pragma once

#include <string>

#include "stage/guest/camera/Control.h"
#include "stage/guest/camera/Stream.h"

namespace vistrel::stage {

/// A USB camera that obeys: one line a command on standard input, answered by "OK COMMAND", and by "FAULTY"
/// when the first frame with the new fault has been sent. The end of the input, or of the process, pulls the
/// cable.
class UsbCamera {
 public:
  UsbCamera(UsbIp usb, const Options& options, const std::string& serial);
  /// Runs until the cable is pulled; gives the exit status.
  int run();

  static constexpr const char* kUsage =
      "usage: vistrel-usbcam PORT SERIAL [--name TEXT] [--offer mjpeg|yuy2:WIDTHxHEIGHT@RATE[/RATE...]]...\n"
      "Plugs a USB camera into a port of the kernel's virtual host controller (vhci_hcd). On standard "
      "input:\n"
      "  freeze  truncate  noend  garbage  error  resume  die\n";

 private:
  void tellFault();
  void take(const UsbRequest& request);
  /// False: the end.
  bool obey();
  bool obey(const std::string& command);

  UsbIp usb_;
  Control control_;
  Stream stream_;
  std::string input_;
  bool hasToldFault_ = false;
};

}  // namespace vistrel::stage
