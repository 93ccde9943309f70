#pragma once

#include <pthread.h>

#include <cstddef>

namespace vistrel::test {

/// While it lives the system gives no thread: each would need more memory for its stack than there is.
class NoThreads {
 public:
  NoThreads() {
    pthread_getattr_default_np(&before_);
    pthread_attr_t none;
    pthread_getattr_default_np(&none);
    pthread_attr_setstacksize(&none, std::size_t{1} << 50U);
    pthread_setattr_default_np(&none);
    pthread_attr_destroy(&none);
  }
  ~NoThreads() {
    pthread_setattr_default_np(&before_);
    pthread_attr_destroy(&before_);
  }
  NoThreads(const NoThreads&) = delete;
  NoThreads& operator=(const NoThreads&) = delete;

 private:
  pthread_attr_t before_{};
};

}  // namespace vistrel::test
