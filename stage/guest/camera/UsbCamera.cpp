#include "stage/guest/camera/UsbCamera.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <map>
#include <utility>

#include <poll.h>
#include <unistd.h>

namespace vistrel::stage {
namespace {

const std::map<std::string, StreamFault>& faults() {
  static const std::map<std::string, StreamFault> kFaults = {
      {"resume", StreamFault::None}, {"freeze", StreamFault::Frozen},   {"truncate", StreamFault::Truncated},
      {"noend", StreamFault::NoEnd}, {"garbage", StreamFault::Garbage}, {"error", StreamFault::Error}};
  return kFaults;
}

void say(const std::string& line) {
  std::puts(line.c_str());
  std::fflush(stdout);
}

int millisecondsUntil(Stream::Clock::time_point time) {
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(time - Stream::Clock::now()).count();
  return static_cast<int>(std::clamp<long>(left, 0, 1000));
}

}  // namespace

UsbCamera::UsbCamera(UsbIp usb, const Options& options, const std::string& serial)
    : usb_(std::move(usb)), control_(modesOf(options.offers), options.name, serial), stream_(usb_, options) {}

int UsbCamera::run() {
  say("READY");
  while (true) {
    const auto due = stream_.advance(control_.mode(), control_.interval());
    tellFault();
    std::array<pollfd, 2> ready = {pollfd{usb_.descriptor(), POLLIN, 0}, pollfd{STDIN_FILENO, POLLIN, 0}};
    if (poll(ready.data(), ready.size(), millisecondsUntil(due)) <= 0) continue;
    if (ready[1].revents != 0 && !obey()) return 0;
    if (ready[0].revents == 0) continue;
    const auto request = usb_.read();
    if (!request) {
      std::fputs("the host controller let go of the camera\n", stderr);
      return 1;
    }
    take(*request);
  }
}

void UsbCamera::tellFault() {
  const bool hasSent = stream_.faultyFrames() > 0;
  if (hasSent && !hasToldFault_) say("FAULTY");
  hasToldFault_ = hasSent;
}

void UsbCamera::take(const UsbRequest& request) {
  if (request.givenUp) return usb_.confirmGivingUp(request.sequence, stream_.giveUp(*request.givenUp));
  if (request.endpoint == kStreamEndpoint) return stream_.enqueue(request.sequence, request.length);
  const int restarts = control_.restarts();
  auto answer = control_.answer(request);
  if (control_.restarts() != restarts) stream_.restart();
  if (!answer) return usb_.stall(request.sequence);
  if (!request.isIn) return usb_.acknowledge(request.sequence, request.length);
  answer->resize(std::min<std::size_t>(answer->size(), request.length));
  usb_.deliver(request.sequence, *answer);
}

bool UsbCamera::obey() {
  std::array<char, 256> buffer{};
  const ssize_t length = read(STDIN_FILENO, buffer.data(), buffer.size());
  if (length <= 0) return false;
  input_.append(buffer.data(), static_cast<std::size_t>(length));
  for (std::size_t end = input_.find('\n'); end != std::string::npos; end = input_.find('\n')) {
    const std::string command = input_.substr(0, end);
    input_.erase(0, end + 1);
    if (!obey(command)) return false;
  }
  return true;
}

bool UsbCamera::obey(const std::string& command) {
  if (command == "die") return false;
  const auto found = faults().find(command);
  if (found == faults().end()) {
    std::fprintf(stderr, "no such command: %s\n", command.c_str());
    return true;
  }
  stream_.setFault(found->second);
  hasToldFault_ = false;
  say("OK " + command);
  return true;
}

}  // namespace vistrel::stage
