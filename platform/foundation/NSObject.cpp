#include "foundation/NSObject.h"

#include <map>
#include <utility>

namespace vistrel {

struct NSObject::Runtime {
  std::map<Selector, Method> methods;
  std::map<const void*, std::shared_ptr<void>> associations;
};

void NSObject::Deleter::operator()(Runtime* runtime) const { delete runtime; }

NSObject::Runtime& NSObject::runtime() {
  if (!runtime_) runtime_.reset(new Runtime);
  return *runtime_;
}

void NSObject::implement(const Selector& selector, Method method) {
  runtime().methods.insert_or_assign(selector, std::move(method));
}

bool NSObject::respondsToSelector(const Selector& selector) const {
  return runtime_ && runtime_->methods.contains(selector);
}

bool NSObject::perform(const Selector& selector, NSObject* sender) {
  if (!runtime_) return false;
  const auto found = runtime_->methods.find(selector);
  if (found == runtime_->methods.end()) return false;
  // A copy: the method may end the object that holds it.
  const Method method = found->second;
  method(sender);
  return true;
}

void NSObject::setAssociatedObject(const void* key, std::shared_ptr<void> value) {
  auto& associations = runtime().associations;
  // Swapped out first: the old value's end may look at this object again.
  std::swap(associations[key], value);
  if (!associations[key]) associations.erase(key);
}

std::shared_ptr<void> NSObject::associatedObject(const void* key) const {
  if (!runtime_) return nullptr;
  const auto found = runtime_->associations.find(key);
  return found == runtime_->associations.end() ? nullptr : found->second;
}

}  // namespace vistrel
