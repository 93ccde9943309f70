#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "appkit/NSViewController.h"
#include "foundation/Bundle.h"

namespace vistrel {

/// A resource that describes scenes: a controller each, with the layout of its view tree and its outlets.
/// "NAME.storyboard.json" in the bundle.
class NSStoryboard {
 public:
  [[nodiscard]] static NSStoryboard storyboardWithName(const std::string& name, const Bundle& bundle);

  /// A new controller with its view tree and outlets; null when the storyboard or the scene is missing or
  /// cannot be read, or the controller's class is unknown.
  [[nodiscard]] std::shared_ptr<NSViewController> instantiateController(const std::string& identifier) const;

  using Factory = std::function<std::shared_ptr<NSViewController>()>;
  /// Makes a class of controllers known by name to every storyboard.
  static void registerClass(const std::string& name, Factory factory);

 private:
  explicit NSStoryboard(std::optional<std::string> source) : source_(std::move(source)) {}
  std::optional<std::string> source_;
};

}  // namespace vistrel
