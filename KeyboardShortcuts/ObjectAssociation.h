#pragma once

#include <cstdint>
#include <memory>
#include <type_traits>
#include <utility>

#include "foundation/NSObject.h"

namespace vistrel::KeyboardShortcuts {

/// How an attached value is held.
enum class AssociationPolicy { assign, retainNonatomic, copyNonatomic, retain, copy };

/// The platform's number of a policy.
[[nodiscard]] constexpr std::uintptr_t platformPolicy(AssociationPolicy policy) {
  switch (policy) {
    case AssociationPolicy::assign:
      return 0;
    case AssociationPolicy::retainNonatomic:
      return 1;
    case AssociationPolicy::copyNonatomic:
      return 3;
    case AssociationPolicy::retain:
      return 0x301;
    case AssociationPolicy::copy:
      return 0x303;
  }
  return 0;
}

/// Attaches values to objects. Each association is a key of its own, so two never meet. Main thread only, so
/// the atomic policies hold as the others do.
template <class T>
class ObjectAssociation {
 public:
  explicit ObjectAssociation(AssociationPolicy policy) : policy_(policy) {}
  ObjectAssociation(const ObjectAssociation&) = delete;
  ObjectAssociation& operator=(const ObjectAssociation&) = delete;

  /// Attaches a value in place of an earlier one; none detaches. A type that cannot be copied is retained.
  void attach(NSObject& object, std::shared_ptr<T> value) const {
    object.setAssociatedObject(this, held(std::move(value)));
  }

 private:
  [[nodiscard]] std::shared_ptr<T> held(std::shared_ptr<T> value) const {
    if (!value) return nullptr;
    // A pointer without ownership: the value lives as long as its owner wants.
    if (policy_ == AssociationPolicy::assign) return {std::shared_ptr<T>(), value.get()};
    if constexpr (std::is_copy_constructible_v<T>) {
      const bool copies = policy_ == AssociationPolicy::copy || policy_ == AssociationPolicy::copyNonatomic;
      if (copies) return std::make_shared<T>(*value);
    }
    return value;
  }
  AssociationPolicy policy_;
};

}  // namespace vistrel::KeyboardShortcuts
