#include "foundation/KeyValueObservable.h"

#include <utility>

namespace vistrel {

namespace {
constexpr const char* kPhaseKey = "phase";
}

ObservationToken KeyValueObservable::observe(const std::string& key, Observer observer) {
  return changes_.addObserver(key, this, [observer = std::move(observer)](const Notification& change) {
    observer(std::any_cast<Phase>(change.userInfo.at(kPhaseKey)));
  });
}

void KeyValueObservable::announce(const std::string& key, Phase phase) {
  changes_.post(key, this, {{kPhaseKey, phase}});
}

}  // namespace vistrel
