// vistrel-cover: shows the windows of an InputCover for the program that has started it.

#include <poll.h>
#include <sys/socket.h>

#include <array>
#include <vector>

#include "linux/x11/CoverChannel.h"
#include "linux/x11/CoverWindows.h"

namespace {

using vistrel::x11::CoverWindows;
using vistrel::x11::kCoverChannel;

// An empty packet looks like the end of the channel, but is not told as a hang-up. A command may answer a
// press that is heard of here later, and must not be undone by it.
bool obey(CoverWindows& windows) {
  if (!windows.hearPresses()) return false;
  std::vector<xcb_rectangle_t> parts(vistrel::x11::kMostCoverParts);
  const auto length = ::recv(kCoverChannel, parts.data(), parts.size() * sizeof(xcb_rectangle_t), 0);
  if (length < 0) return false;
  parts.resize(static_cast<std::size_t>(length) / sizeof(xcb_rectangle_t));
  windows.setParts(parts);
  return true;
}

bool sayAble() {
  const char word = 1;
  return ::send(kCoverChannel, &word, sizeof word, MSG_NOSIGNAL) == sizeof word;
}

}  // namespace

int main() {
  CoverWindows windows;
  if (!windows.isAble() || !sayAble()) return 1;
  std::array<pollfd, 2> waits = {{{kCoverChannel, POLLIN, 0}, {windows.descriptor(), POLLIN, 0}}};
  while (windows.hearPresses()) {
    if (::poll(waits.data(), waits.size(), -1) < 0) continue;
    if ((waits[0].revents & (POLLHUP | POLLERR | POLLNVAL)) != 0) return 0;
    if ((waits[0].revents & POLLIN) != 0 && !obey(windows)) return 0;
  }
  return 0;
}
