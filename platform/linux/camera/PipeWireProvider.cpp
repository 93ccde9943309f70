#include "linux/camera/PipeWireProvider.h"

#include <spa/utils/keys.h>

#include <algorithm>
#include <set>
#include <utility>

#include "base/Unicode.h"
#include "linux/camera/CameraError.h"
#include "linux/camera/DeviceLocation.h"
#include "linux/camera/PipeWireDevice.h"

namespace vistrel::camera {
namespace {

constexpr std::chrono::milliseconds kPatience{250};

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

bool isBuiltIn(const PipeWireNode& node, const std::string& device) {
  if (const auto* location = node.property(SPA_KEY_API_LIBCAMERA_LOCATION))
    return *location == "front" || *location == "back";
  return !device.empty() && deviceLocationOf(device) == DeviceLocation::BuiltIn;
}

std::string pathOf(const PipeWireNode& node, const std::string& device) {
  if (!device.empty()) return placeOf(device);
  for (const char* key : {PW_KEY_OBJECT_PATH, PW_KEY_NODE_NAME})
    if (const auto* path = node.property(key)) return *path;
  return {};
}

}  // namespace

void PipeWireProvider::readPlaces() {
  std::map<std::string, Place> places;
  for (const auto& node : graph_->nodes()) {
    const std::string device = node->v4l2Path();
    const auto known = places_.find(idOf(*node));
    places[idOf(*node)] = known != places_.end() && known->second.device == device
                              ? known->second
                              : Place{device,
                                      pathOf(*node, device),
                                      device.empty() ? "" : usbProductOf(device),
                                      isBuiltIn(*node, device),
                                      {}};
  }
  places_ = std::move(places);
}

// One camera may come through the session manager's V4L2 and through its libcamera monitor; libcamera's names
// end with the USB product.
bool PipeWireProvider::isSeenThroughV4l2(const PipeWireNode& node) const {
  const auto* name = node.property(SPA_KEY_API_LIBCAMERA_PATH);
  return name && std::any_of(graph_->nodes().begin(), graph_->nodes().end(), [&](const auto& other) {
           const std::string& product = places_.at(idOf(*other)).usbProduct;
           return !product.empty() && !other->modes().empty() && name->ends_with("-" + product);
         });
}

std::vector<CameraEntry> PipeWireProvider::cameras() {
  (void)graph_->refresh();
  readPlaces();
  std::vector<CameraEntry> entries;
  std::set<std::string> devices;
  for (const auto& node : graph_->nodes()) {
    const Place& place = places_.at(idOf(*node));
    // Infrared and grey-only sensors have no mode that can be shown, nor have metadata.
    if (node->modes().empty() || isSeenThroughV4l2(*node)) continue;
    if (!place.device.empty() && !devices.insert(place.device).second) continue;
    CameraEntry entry;
    entry.path = place.path;
    entry.device.id = idOf(*node);
    entry.device.localizedName = nameOf(*node);
    entry.device.isBuiltIn = place.isBuiltIn;
    entries.push_back(std::move(entry));
  }
  return entries;
}

std::optional<V4l2Answer> PipeWireProvider::askKernel(const PipeWireNode& node,
                                                      std::chrono::milliseconds& waited) {
  const auto device = node.v4l2Path();
  if (device.empty() || waited >= kPatience) return std::nullopt;
  const auto asked = system_.now();
  const auto question = node.isSuspended() ? V4l2Asked::All : V4l2Asked::Source;
  auto answer = askV4l2(system_, device, question, asked + kPatience - waited);
  waited += std::chrono::ceil<std::chrono::milliseconds>(system_.now() - asked);
  if (answer && answer->isBusy) waited += graph_->refresh();
  return answer;
}

// A kernel that does not answer in time does not undo what it said before.
std::optional<PixelSize> PipeWireProvider::sourceSizeOf(const std::string& id,
                                                        const std::optional<V4l2Answer>& answer) {
  const auto place = places_.find(id);
  if (place == places_.end()) return answer ? answer->sourceSize : std::nullopt;
  if (answer && answer->sourceSize) place->second.sourceSize = answer->sourceSize;
  return place->second.sourceSize;
}

Result<std::unique_ptr<CaptureDevice>> PipeWireProvider::open(const std::string& id) {
  auto waited = graph_->refresh();
  const auto find = [&] {
    const auto& nodes = graph_->nodes();
    const auto found =
        std::find_if(nodes.begin(), nodes.end(), [&](const auto& n) { return idOf(*n) == id; });
    return found == nodes.end() ? nullptr : found->get();
  };
  auto* node = find();
  if (node && node->isInError()) {
    waited += graph_->clearError(*node);
    node = find();
  }
  if (node && node->isInError()) return errorOfMessage(node->lastError(), groupOf(node->v4l2Path()));
  const auto answer = node ? askKernel(*node, waited) : std::nullopt;
  node = find();
  if (!node) return errorOf(CameraError::Gone);
  // A reader that came meanwhile has PipeWire hold the device, and shares it.
  if (answer && answer->isBusy && node->isSuspended()) return errorOf(CameraError::Busy);
  return std::unique_ptr<CaptureDevice>(
      std::make_unique<PipeWireDevice>(graph_, *node, sourceSizeOf(id, answer), waited));
}

}  // namespace vistrel::camera
