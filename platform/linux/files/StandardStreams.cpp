#include "linux/files/StandardStreams.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <climits>
#include <string>

namespace vistrel::files {

void holdStandardStreams() {
  for (int fd = STDIN_FILENO; fd <= STDERR_FILENO; ++fd) {
    // The lowest number that is free is the one that was missing.
    if (::fcntl(fd, F_GETFD) < 0) (void)::open("/dev/null", O_RDWR);
  }
}

void writeLogLine(Log::Stream stream, std::string_view line) {
  const int fd = stream == Log::Stream::Output ? STDOUT_FILENO : STDERR_FILENO;
  std::string text(line.substr(0, PIPE_BUF - 1));
  text += '\n';
  pollfd room{fd, POLLOUT, 0};
  if (::poll(&room, 1, 0) == 1 && (room.revents & POLLOUT) != 0) (void)!::write(fd, text.data(), text.size());
}

}  // namespace vistrel::files
