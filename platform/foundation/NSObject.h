#pragma once

#include <functional>
#include <memory>
#include <string>

namespace vistrel {

/// The name of an action, such as "quitWithSender:"; empty for none.
using Selector = std::string;

/// Base of everything that can send or receive an action, or carry associated values.
class NSObject {
 public:
  NSObject() = default;
  NSObject(const NSObject&) = delete;
  NSObject& operator=(const NSObject&) = delete;
  virtual ~NSObject() = default;

  using Method = std::function<void(NSObject* sender)>;

  [[nodiscard]] virtual bool respondsToSelector(const Selector& selector) const;
  /// Runs the method of that name. False when this object has none.
  virtual bool perform(const Selector& selector, NSObject* sender);

  /// Keeps `value` with this object under `key`, replacing an earlier one; null drops it. The value lives as
  /// long as the object.
  void setAssociatedObject(const void* key, std::shared_ptr<void> value);
  [[nodiscard]] std::shared_ptr<void> associatedObject(const void* key) const;

 protected:
  /// Makes the object answer to `selector`.
  void implement(const Selector& selector, Method method);

 private:
  struct Runtime;
  struct Deleter {
    void operator()(Runtime* runtime) const;
  };
  [[nodiscard]] Runtime& runtime();
  std::unique_ptr<Runtime, Deleter> runtime_;
};

}  // namespace vistrel
