#include "linux/files/PreferencesFile.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <utility>
#include <vector>

#include "base/Log.h"
#include "base/Program.h"
#include "linux/Threads.h"
#include "linux/files/FileTools.h"
#include "linux/files/LockedFile.h"

namespace vistrel::files {

namespace {

constexpr const char* kName = "preferences.json";
constexpr std::chrono::seconds kEndingPatience(10);

using Outcome = Result<std::optional<std::string>>;

struct Order {
  backend::UserFiles::Edit edit;
  backend::UserFiles::Edited edited;
};

Result<LockedFile> openLocked(const std::string& folder) {
  return LockedFile::open(folder, kName, backend::UserFiles::kTooLarge);
}

// The next content; the file is set aside where the present one makes no sense.
Result<std::optional<std::string>> edited(const LockedFile& file, const Order& order,
                                          const std::optional<std::string>& content,
                                          std::optional<std::string>& aside) {
  if (auto wanted = order.edit(content)) return wanted;
  auto moved = file.setAside();
  if (!moved) return moved.error();
  aside = std::move(moved).value();
  return order.edit(std::nullopt);
}

Outcome carryOut(const std::string& folder, const std::vector<Order>& orders) {
  if (auto made = makeFolders(folder); !made) return made.error();
  auto file = openLocked(folder);
  if (!file) return file.error();
  const auto present = file.value().read();
  if (!present) return present.error();
  std::optional<std::string> aside;
  auto content = present.value();
  for (const auto& order : orders) {
    auto next = edited(file.value(), order, content, aside);
    if (!next) return next.error();
    content = std::move(next).value();
  }
  if (!content || (!aside && content == present.value())) return aside;
  if (auto written = file.value().replace(*content); !written) return written.error();
  return aside;
}

}  // namespace

/// What the main thread and the one that writes both touch; it lives as long as the longer of them.
struct PreferencesFile::Shared : std::enable_shared_from_this<Shared> {
  Shared(desktop::Reactor& loop, std::string place) : folder(std::move(place)), reactor(&loop) {}

  void write();
  void tell();

  const std::string folder;
  std::mutex mutex;
  std::condition_variable hasEnded;
  desktop::Reactor* reactor;  // null once nobody is there to be told
  bool isWriting = false;
  std::vector<Order> waiting;
  std::vector<std::pair<Edited, Outcome>> done;
};

void PreferencesFile::Shared::write() {
  std::unique_lock lock(mutex);
  while (!waiting.empty()) {
    const auto orders = std::exchange(waiting, {});
    lock.unlock();
    const Outcome outcome = carryOut(folder, orders);
    lock.lock();
    for (const auto& order : orders) done.emplace_back(order.edited, outcome);
    if (reactor)
      reactor->post([self = weak_from_this()] {
        if (const auto shared = self.lock()) shared->tell();
      });
  }
  isWriting = false;
  hasEnded.notify_all();
}

void PreferencesFile::Shared::tell() {
  std::unique_lock lock(mutex);
  const auto due = std::exchange(done, {});
  lock.unlock();
  for (const auto& [edited, outcome] : due) edited(outcome);
}

PreferencesFile::PreferencesFile(desktop::Reactor& reactor)
    : PreferencesFile(reactor, configurationFolder() + "/" + program::kIdentifier) {}

PreferencesFile::PreferencesFile(desktop::Reactor& reactor, std::string folder)
    : shared_(std::make_shared<Shared>(reactor, std::move(folder))) {}

PreferencesFile::~PreferencesFile() {
  {
    std::unique_lock lock(shared_->mutex);
    shared_->reactor = nullptr;
    const bool isWritten =
        shared_->hasEnded.wait_for(lock, kEndingPatience, [this] { return !shared_->isWriting; });
    if (!isWritten)
      Log::warning("vistrel: the disk takes too long, so the last change of the preferences may be lost");
  }
  shared_->tell();
}

Result<std::optional<std::string>> PreferencesFile::readPreferences() {
  return readFile(shared_->folder + "/" + kName, kTooLarge);
}

Result<std::optional<std::string>> PreferencesFile::setPreferencesAside(const std::string& unreadable) {
  const auto file = openLocked(shared_->folder);
  if (!file) return file.error();
  const auto present = file.value().read();
  if (!present) return present.error();
  if (present.value() != unreadable) return std::optional<std::string>();
  auto aside = file.value().setAside();
  if (!aside) return aside.error();
  return std::optional(std::move(aside).value());
}

void PreferencesFile::editPreferences(Edit edit, Edited edited) {
  std::unique_lock lock(shared_->mutex);
  shared_->waiting.push_back({std::move(edit), std::move(edited)});
  if (std::exchange(shared_->isWriting, true)) return;
  auto thread = desktop::startThread([shared = shared_] { shared->write(); });
  if (thread) return std::move(thread).value().detach();
  lock.unlock();
  shared_->write();
}

}  // namespace vistrel::files
