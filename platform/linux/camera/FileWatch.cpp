#include "linux/camera/FileWatch.h"

#include <sys/inotify.h>

#include <utility>
#include <vector>

namespace vistrel::camera {
namespace {

constexpr std::uint32_t kChanges = IN_CREATE | IN_DELETE | IN_MOVED_TO | IN_MOVED_FROM | IN_ATTRIB;

FileWatch::Change changeOf(std::uint32_t mask) {
  if (mask & (IN_CREATE | IN_MOVED_TO)) return FileWatch::Change::Appeared;
  return mask & IN_ATTRIB ? FileWatch::Change::Permissions : FileWatch::Change::Disappeared;
}

}  // namespace

FileWatch::FileWatch(desktop::Reactor& reactor, const std::string& folder, Handler handler)
    : handler_(std::move(handler)), inotify_(::inotify_init1(IN_CLOEXEC | IN_NONBLOCK)) {
  if (!inotify_ || ::inotify_add_watch(inotify_.get(), folder.c_str(), kChanges) < 0) return;
  registration_ = reactor.watch(inotify_.get(), [this] { drain(); });
}

// The handler may destroy this watch: everything is read before it is told.
void FileWatch::drain() {
  std::vector<std::pair<std::string, Change>> changes;
  alignas(inotify_event) char buffer[4096];
  for (ssize_t size = 0; (size = ::read(inotify_.get(), buffer, sizeof buffer)) > 0;) {
    for (ssize_t at = 0; at < size;) {
      const auto* event = reinterpret_cast<const inotify_event*>(buffer + at);
      if (event->len > 0) changes.emplace_back(event->name, changeOf(event->mask));
      at += static_cast<ssize_t>(sizeof *event + event->len);
    }
  }
  const auto handler = handler_;
  for (const auto& [name, change] : changes) handler(name, change);
}

}  // namespace vistrel::camera
