#pragma once

#include <memory>
#include <string>
#include <utility>

#include "foundation/Bundle.h"

namespace vistrel {

inline constexpr const char* NSImageNameSmartBadgeTemplate = "NSSmartBadgeTemplate";

/// A scalable picture from the program's resources.
class NSImage {
 public:
  /// The image of that name in the main bundle ("images/NAME.svg"); null when there is none.
  [[nodiscard]] static std::shared_ptr<NSImage> imageNamed(const std::string& name) {
    const std::string resource = "images/" + name + ".svg";
    if (!Bundle::main().resource(resource)) return nullptr;
    return std::make_shared<NSImage>(name, Bundle::main().resourcePath() + "/" + resource);
  }

  NSImage(std::string name, std::string path) : name_(std::move(name)), path_(std::move(path)) {}
  [[nodiscard]] const std::string& name() const { return name_; }
  /// Absolute path of an SVG file.
  [[nodiscard]] const std::string& path() const { return path_; }
  /// A template is drawn in the color of the text around it.
  [[nodiscard]] bool isTemplate() const { return name_.ends_with("Template"); }

 private:
  std::string name_;
  std::string path_;
};

}  // namespace vistrel
