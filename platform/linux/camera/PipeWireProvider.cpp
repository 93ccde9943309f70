#include "linux/camera/PipeWireProvider.h"

#include <spa/utils/keys.h>

#include <algorithm>
#include <string_view>

#include "base/Unicode.h"
#include "linux/camera/CameraError.h"
#include "linux/camera/DeviceLocation.h"
#include "linux/camera/PipeWireDevice.h"

namespace vistrel::camera {
namespace {

std::string idOf(const PipeWireNode& node) {
  const auto* serial = node.property(PW_KEY_OBJECT_SERIAL);
  return "pipewire:" + (serial ? *serial : std::to_string(node.globalId()));
}

// The session manager decorates its descriptions; the driver's own name is the one that V4L2 gives too.
std::string nameOf(const PipeWireNode& node) {
  for (const char* key : {SPA_KEY_API_V4L2_CAP_CARD, PW_KEY_NODE_DESCRIPTION, PW_KEY_NODE_NAME})
    if (const auto* name = node.property(key)) return unicode::repairedUtf8(*name);
  return {};
}

std::string pathOf(const PipeWireNode& node) {
  if (const auto path = node.v4l2Path(); !path.empty()) return placeOf(path);
  for (const char* key : {PW_KEY_OBJECT_PATH, PW_KEY_NODE_NAME})
    if (const auto* path = node.property(key)) return *path;
  return {};
}

bool isBuiltIn(const PipeWireNode& node) {
  if (const auto* location = node.property(SPA_KEY_API_LIBCAMERA_LOCATION))
    return *location == "front" || *location == "back";
  const std::string path = node.v4l2Path();
  return !path.empty() && deviceLocationOf(path) == DeviceLocation::BuiltIn;
}

bool isListed(const std::vector<CameraEntry>& entries, const std::string& path) {
  return std::any_of(entries.begin(), entries.end(),
                     [&](const CameraEntry& entry) { return entry.path == path; });
}

// One camera may come through the session manager's V4L2 and through its libcamera monitor; libcamera's names
// end with the USB product.
bool isSeenThroughV4l2(const PipeWireNode& node, const std::vector<std::string>& v4l2Products) {
  const auto* name = node.property(SPA_KEY_API_LIBCAMERA_PATH);
  return name && std::any_of(v4l2Products.begin(), v4l2Products.end(),
                             [&](const std::string& product) { return name->ends_with("-" + product); });
}

std::vector<std::string> v4l2Products(const PipeWireGraph& graph) {
  std::vector<std::string> products;
  for (const auto& node : graph.nodes())
    if (const auto path = node->v4l2Path(); !path.empty() && !node->modes().empty())
      if (auto product = usbProductOf(path); !product.empty()) products.push_back(std::move(product));
  return products;
}

}  // namespace

std::vector<CameraEntry> PipeWireProvider::cameras() {
  (void)graph_->refresh();
  std::vector<CameraEntry> entries;
  const auto products = v4l2Products(*graph_);
  for (const auto& node : graph_->nodes()) {
    const std::string path = pathOf(*node);
    // Infrared and grey-only sensors have no mode that can be shown.
    if (node->modes().empty() || (!node->v4l2Path().empty() && isListed(entries, path))) continue;
    if (isSeenThroughV4l2(*node, products)) continue;
    entries.push_back(
        {{.id = idOf(*node), .localizedName = nameOf(*node), .isBuiltIn = isBuiltIn(*node)}, path});
  }
  return entries;
}

Result<std::unique_ptr<CaptureDevice>> PipeWireProvider::open(const std::string& id) {
  const auto waited = graph_->refresh();
  for (const auto& node : graph_->nodes()) {
    if (idOf(*node) != id) continue;
    if (node->isInError()) return errorOfMessage(node->lastError(), groupOf(node->v4l2Path()));
    return std::unique_ptr<CaptureDevice>(std::make_unique<PipeWireDevice>(graph_, *node, waited));
  }
  return errorOf(CameraError::Gone);
}

}  // namespace vistrel::camera
