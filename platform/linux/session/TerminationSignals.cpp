#include "linux/session/TerminationSignals.h"

#include <sys/eventfd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <string>
#include <utility>

#include "base/Log.h"

namespace vistrel::session {

namespace {

constexpr std::array kSignals = {SIGTERM, SIGINT, SIGHUP};

// A signal handler reaches nothing but what is global.
volatile std::sig_atomic_t wakeUpFd = -1;

extern "C" void wakeUp(int /*signal*/) {
  const std::uint64_t one = 1;
  [[maybe_unused]] const auto written = ::write(wakeUpFd, &one, sizeof one);
}

void handleSignals(void (*handler)(int)) {
  struct sigaction action{};
  action.sa_handler = handler;
  action.sa_flags = SA_RESTART | SA_RESETHAND;
  for (const int signal : kSignals) ::sigaction(signal, &action, nullptr);
}

}  // namespace

TerminationSignals::TerminationSignals(desktop::Reactor& reactor, std::function<void()> handler)
    : wakeUp_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
  if (!wakeUp_) fatalError(std::string("signals cannot be heard: ") + std::strerror(errno));
  watch_ = reactor.watch(wakeUp_.get(), [fd = wakeUp_.get(), handler = std::move(handler)] {
    eventfd_t count = 0;
    if (::eventfd_read(fd, &count) == 0) handler();
  });
  wakeUpFd = wakeUp_.get();
  handleSignals(wakeUp);
}

TerminationSignals::~TerminationSignals() { handleSignals(SIG_DFL); }

}  // namespace vistrel::session
