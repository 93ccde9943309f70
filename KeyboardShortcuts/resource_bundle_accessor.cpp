#include "KeyboardShortcuts/resource_bundle_accessor.h"

#include <string>

#include "base/Log.h"

namespace vistrel::KeyboardShortcuts {

namespace {

constexpr const char* kBundleName = "KeyboardShortcuts_KeyboardShortcuts";

Bundle findOrStop() {
  auto found = findResourceBundle();
  if (!found) {
    fatalError(std::string("KeyboardShortcuts/resource_bundle_accessor: unable to find bundle named ") +
               kBundleName);
  }
  return *found;
}

}  // namespace

std::optional<Bundle> findResourceBundle() {
  // The program is one executable: the bundle that holds this code is the main one.
  const Bundle& main = Bundle::main();
  const Bundle& ofThisCode = main;
  for (const auto& folder : {main.resourcePath(), ofThisCode.resourcePath(), main.bundlePath()}) {
    if (auto bundle = Bundle::open(folder + "/" + kBundleName + ".bundle")) return bundle;
  }
  return std::nullopt;
}

const Bundle& resourceBundle() {
  static const Bundle bundle = findOrStop();
  return bundle;
}

}  // namespace vistrel::KeyboardShortcuts
