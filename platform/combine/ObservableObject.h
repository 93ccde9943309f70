#pragma once

#include <functional>
#include <memory>
#include <utility>

#include "combine/Subject.h"

namespace vistrel {

/// An object that says when it is about to change, so that views showing it draw themselves again.
class ObservableObject {
 public:
  ObservableObject() = default;
  ObservableObject(const ObservableObject&) = delete;
  ObservableObject& operator=(const ObservableObject&) = delete;
  virtual ~ObservableObject() = default;

  /// Calls `receiver` before each change, until the token ends.
  [[nodiscard]] AnyCancellable onWillChange(std::function<void()> receiver) const {
    return channel_->subscribe([receiver = std::move(receiver)](const Change&) { receiver(); });
  }
  void sendObjectWillChange() { channel_->send({}); }

 private:
  struct Change {};
  std::shared_ptr<combine::Channel<Change>> channel_ = std::make_shared<combine::Channel<Change>>();
};

}  // namespace vistrel
