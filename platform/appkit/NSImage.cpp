#include "appkit/NSImage.h"

#include "foundation/Bundle.h"

namespace vistrel {

std::shared_ptr<NSImage> NSImage::imageNamed(const std::string& name) {
  const std::string resource = "images/" + name + ".svg";
  if (!Bundle::main().resource(resource)) return nullptr;
  return std::make_shared<NSImage>(name, Bundle::main().resourcePath() + "/" + resource);
}

}  // namespace vistrel
