#pragma once

#include "backend/Backend.h"

namespace vistrel {

/// The one `State` of the program, made at its first use. When the backend is replaced it is as new again, as
/// in another process: by its `reset()` where it has one, else by a fresh value in its place. Main thread
/// only.
template <class State>
class ProcessState {
 public:
  [[nodiscard]] static State& shared() {
    static ProcessState holder;
    return holder.state_;
  }

 private:
  ProcessState() {
    backend::beforeReplacement([] { forget(shared()); });
  }
  static void forget(State& state) {
    if constexpr (requires { state.reset(); }) {
      state.reset();
    } else {
      state = State{};
    }
  }

  State state_;
};

}  // namespace vistrel
