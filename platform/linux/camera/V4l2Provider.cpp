#include "linux/camera/V4l2Provider.h"

#include <algorithm>
#include <string_view>

#include "linux/camera/CameraError.h"
#include "linux/camera/V4l2Device.h"

namespace vistrel::camera {
namespace {

constexpr std::string_view kNodePrefix = "video";
constexpr std::chrono::milliseconds kLookPatience{250};

}  // namespace

V4l2Provider::V4l2Provider(desktop::Reactor& reactor, V4l2System& system, const std::string& folder)
    : reactor_(reactor),
      system_(system),
      folder_(folder),
      watch_(reactor, folder, [this](const std::string& name, FileWatch::Change change) {
        if (name.starts_with(kNodePrefix)) changed(folder_ + "/" + name, change);
      }) {
  for (const auto& path : system_.nodes())
    if (!system_.isAlias(path)) look(path);
}

std::vector<CameraEntry> V4l2Provider::cameras() {
  watch_.drain();
  std::vector<CameraEntry> entries;
  for (auto& [path, node] : nodes_) {
    // What is known of a camera holds until it is known better: an opening may have to wait after this.
    const auto deadline = node.camera ? system_.now() : node.deadline;
    if (const auto answer = node.probe->await(deadline)) node.camera = *answer;
    if (!node.camera) continue;
    CameraEntry entry;
    const auto& label = node.camera->label;
    entry.path = label.place;
    entry.device.id = idOf(path, node);
    entry.device.localizedName = label.name;
    entry.device.isBuiltIn = label.attachment == DeviceLocation::BuiltIn;
    entries.push_back(std::move(entry));
  }
  return entries;
}

Result<std::unique_ptr<CaptureDevice>> V4l2Provider::open(const std::string& id) {
  watch_.drain();
  const auto found = std::find_if(nodes_.begin(), nodes_.end(),
                                  [&](const auto& node) { return idOf(node.first, node.second) == id; });
  if (found == nodes_.end()) return errorOf(CameraError::Gone);
  const auto& [path, node] = *found;
  const auto& camera = node.camera;
  return V4l2Device::open(reactor_, system_, {path, node.seat},
                          camera ? camera->modes : std::vector<VideoMode>());
}

void V4l2Provider::changed(const std::string& path, FileWatch::Change change) {
  if (system_.isAlias(path)) return;
  Node& node = nodes_[path];
  if (change != FileWatch::Change::Permissions) node.camera.reset();
  if (change == FileWatch::Change::Appeared) {
    ++node.arrivals;
    node.seat = std::make_shared<V4l2Seat>();
  }
  look(path);
}

void V4l2Provider::look(const std::string& path) {
  Node& node = nodes_[path];
  if (!node.probe) node.probe = std::make_shared<V4l2Probe>(system_, path);
  if (node.probe->look()) node.deadline = system_.now() + kLookPatience;
}

std::string V4l2Provider::idOf(const std::string& path, const Node& node) {
  return std::string(kIdPrefix) + path + "#" + std::to_string(node.arrivals);
}

}  // namespace vistrel::camera
