#include "linux/x11/InputCover.h"

#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <utility>

#include "linux/x11/CoverChannel.h"

namespace vistrel::x11 {

namespace {

namespace fs = std::filesystem;

// In a session of its own: what stops this program from its terminal must not stop the other one.
Result<pid_t> start(const std::string& program, int channel) {
  posix_spawn_file_actions_t actions;
  posix_spawnattr_t attributes;
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawnattr_init(&attributes);
  ::posix_spawn_file_actions_adddup2(&actions, channel, kCoverChannel);
  ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID);
  std::string name = "vistrel-cover";
  const std::array<char*, 2> arguments = {name.data(), nullptr};
  pid_t process = 0;
  const int failure =
      ::posix_spawn(&process, program.c_str(), &actions, &attributes, arguments.data(), environ);
  ::posix_spawnattr_destroy(&attributes);
  ::posix_spawn_file_actions_destroy(&actions);
  if (failure != 0) return Error{program + ": " + std::strerror(failure)};
  return process;
}

}  // namespace

// Beside the program in the build folder; installed, where programs are that nobody starts by hand.
std::string InputCover::installedProgram() {
  std::error_code error;
  const fs::path folder = fs::read_symlink("/proc/self/exe", error).parent_path();
  const fs::path beside = folder / "vistrel-cover";
  if (fs::exists(beside, error)) return beside;
  return folder.parent_path() / "libexec" / "vistrel" / "vistrel-cover";
}

InputCover::InputCover(std::string program) : program_(std::move(program)) {
  std::array<int, 2> ends = {};
  if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0) {
    failure_ = Error{program_ + ": " + std::strerror(errno)};
    return;
  }
  channel_ = desktop::FileDescriptor(ends[0]);
  const desktop::FileDescriptor other(ends[1]);
  const auto started = start(program_, other.get());
  if (started) {
    process_ = started.value();
  } else {
    failure_ = started.error();
  }
}

InputCover::~InputCover() {
  if (process_ == 0) return;
  ::kill(process_, SIGKILL);
  ::waitpid(process_, nullptr, 0);
}

bool InputCover::isAble() {
  char word = 0;
  const auto length = ::recv(channel_.get(), &word, sizeof word, MSG_DONTWAIT);
  const bool hasAnswered = length >= 0 || (errno != EAGAIN && errno != EINTR);
  if (hasAnswered) isAble_ = length > 0;
  if (hasAnswered && !isAble_ && !failure_) failure_ = Error{program_ + " has ended"};
  return isAble_;
}

// A program that takes nothing any more covers nothing either.
void InputCover::setParts(const std::vector<xcb_rectangle_t>& parts) {
  ::send(channel_.get(), parts.data(), parts.size() * sizeof(xcb_rectangle_t), MSG_DONTWAIT | MSG_NOSIGNAL);
}

}  // namespace vistrel::x11
