#include "linux/camera/V4l2Provider.h"

#include <string.h>  // strnlen, which is POSIX only

#include <cerrno>
#include <optional>
#include <string_view>

#include "foundation/Unicode.h"
#include "linux/camera/Attachment.h"
#include "linux/camera/Problem.h"
#include "linux/camera/V4l2Device.h"
#include "linux/camera/V4l2Formats.h"

namespace vistrel::capture {
namespace {

constexpr std::string_view kIdPrefix = "v4l2:";
constexpr std::string_view kNodePrefix = "video";

// The kernel cuts a long name off, if need be in the middle of a character.
std::string cardOf(const v4l2_capability& capability) {
  const auto* card = reinterpret_cast<const char*>(capability.card);
  return unicode::repairedUtf8({card, strnlen(card, sizeof capability.card)});
}

// A camera that may not be opened now is still one: choosing it tells why.
bool mayBecomeUsable(int error) { return error == -EACCES || error == -EPERM || error == -EBUSY; }

}  // namespace

V4l2Provider::V4l2Provider(Reactor& reactor, V4l2System& system, const std::string& folder)
    : reactor_(reactor),
      system_(system),
      folder_(folder),
      watch_(reactor, folder, [this](const std::string& name) {
        if (name.starts_with(kNodePrefix)) look(folder_ + "/" + name);
      }) {
  for (const auto& path : system_.nodes()) look(path);
}

std::vector<CameraEntry> V4l2Provider::cameras() {
  watch_.drain();
  std::vector<CameraEntry> entries;
  for (const auto& [path, name] : names_) {
    CameraEntry entry;
    entry.path = path;
    entry.device.id = std::string(kIdPrefix) + path;
    entry.device.localizedName = name;
    entry.device.isBuiltIn = attachmentOf(path) == Attachment::BuiltIn;
    entries.push_back(std::move(entry));
  }
  return entries;
}

Result<std::unique_ptr<CaptureDevice>> V4l2Provider::open(const std::string& id) {
  if (!id.starts_with(kIdPrefix)) return errorOf(Problem::Gone);
  return V4l2Device::open(reactor_, system_, id.substr(kIdPrefix.size()));
}

void V4l2Provider::look(const std::string& path) {
  if (auto name = cameraAt(path))
    names_[path] = *std::move(name);
  else
    names_.erase(path);
}

std::optional<std::string> V4l2Provider::cameraAt(const std::string& path) {
  const int fd = system_.open(path);
  if (fd < 0) {
    const auto label = system_.label(path);
    const bool isFirst = label.index == 0 && !label.name.empty();
    return mayBecomeUsable(fd) && isFirst ? std::optional(label.name) : std::nullopt;
  }
  v4l2_capability capability{};
  const bool isCamera = system_.ioctl(fd, VIDIOC_QUERYCAP, &capability) >= 0 &&
                        capturesPictures(capability) && !modesOf(system_, fd).empty();
  system_.close(fd);
  return isCamera ? std::optional(cardOf(capability)) : std::nullopt;
}

}  // namespace vistrel::capture
