#include <cstdio>
#include <cstdlib>
#include <span>
#include <string>
#include <utility>

#include "stage/guest/camera/UsbCamera.h"

int main(int argc, char** argv) {
  using namespace vistrel::stage;
  constexpr std::size_t kOwn = 3;
  const std::span arguments(argv, static_cast<std::size_t>(argc));
  const auto options = arguments.size() < kOwn ? std::nullopt : Options::parse(arguments.subspan(kOwn));
  if (!options || modesOf(options->offers).empty()) {
    std::fputs(UsbCamera::kUsage, stderr);
    return 2;
  }
  std::string error;
  auto usb = UsbIp::attach(std::atoi(arguments[1]), error);
  if (!usb) {
    std::fprintf(stderr, "no port to plug into: %s\n", error.c_str());
    return 1;
  }
  return UsbCamera(std::move(*usb), *options, arguments[2]).run();
}
