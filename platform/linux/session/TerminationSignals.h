#pragma once

#include <functional>
#include <memory>

#include "linux/FileDescriptor.h"
#include "linux/Reactor.h"

namespace vistrel::session {

/// Turns SIGTERM, SIGINT and SIGHUP into a call from the main loop. A second signal of the same kind ends the
/// process at once, in case the first one finds the main loop stuck. One at a time.
class TerminationSignals {
 public:
  TerminationSignals(desktop::Reactor& reactor, std::function<void()> handler);
  TerminationSignals(const TerminationSignals&) = delete;
  TerminationSignals& operator=(const TerminationSignals&) = delete;
  ~TerminationSignals();

 private:
  desktop::FileDescriptor wakeUp_;
  std::unique_ptr<desktop::Registration> watch_;
};

}  // namespace vistrel::session
