#include "linux/camera/PipeWireGraph.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string_view>
#include <utility>

#include "base/Program.h"

namespace vistrel::camera {
namespace {

constexpr std::chrono::milliseconds kPatience{250};

bool isCamera(const char* type, const spa_dict* properties) {
  if (std::strcmp(type, PW_TYPE_INTERFACE_Node) != 0 || !properties) return false;
  const char* mediaClass = spa_dict_lookup(properties, PW_KEY_MEDIA_CLASS);
  const std::string_view name = mediaClass ? mediaClass : "";
  return name == "Video/Source" || name == "Video/Source/Virtual";
}

std::uint32_t numberIn(const spa_dict& properties, const char* key) {
  std::uint32_t number = PW_ID_ANY;
  spa_atou32(spa_dict_lookup(&properties, key), &number, 10);
  return number;
}

}  // namespace

PipeWireGraph::PipeWireGraph(desktop::Reactor& reactor) : loop_(reactor) { loop_.add(*this); }

PipeWireGraph::~PipeWireGraph() {
  finishSuspending();
  disconnect();
  loop_.remove(*this);
}

bool PipeWireGraph::connect() {
  if (core_) return true;
  if (!loop_.get()) return false;
  context_.reset(pw_context_new(
      loop_.get(),
      pw_properties_new(PW_KEY_APP_NAME, program::kName, PW_KEY_APP_ID, program::kIdentifier, nullptr), 0));
  if (context_) loop_.adoptFrames(*context_);
  if (context_) core_.reset(pw_context_connect(context_.get(), nullptr, 0));
  if (!core_) {
    loop_.releaseFrames();
    context_.reset();
    return false;
  }
  static const pw_core_events coreEvents = [] {
    pw_core_events e{};
    e.version = PW_VERSION_CORE_EVENTS;
    e.done = onDone;
    e.error = onError;
    return e;
  }();
  static const pw_registry_events registryEvents = [] {
    pw_registry_events e{};
    e.version = PW_VERSION_REGISTRY_EVENTS;
    e.global = onGlobal;
    e.global_remove = onGlobalRemove;
    return e;
  }();
  pw_core_add_listener(core_.get(), &coreListener_, &coreEvents, this);
  registry_.reset(pw_core_get_registry(core_.get(), PW_VERSION_REGISTRY, 0));
  pw_registry_add_listener(registry_.get(), &registryListener_, &registryEvents, this);
  isLost_ = hangs_ = false;
  sync();
  return true;
}

std::chrono::milliseconds PipeWireGraph::refresh() {
  using Clock = std::chrono::steady_clock;
  if (!core_) return {};
  const auto start = Clock::now();
  const auto patience = hangs_ ? std::chrono::milliseconds(0) : kPatience;
  const bool isCurrent = loop_.waitUntil([this] { return !core_ || answered_ == awaited_; }, patience);
  hangs_ = !isCurrent;
  return std::chrono::ceil<std::chrono::milliseconds>(Clock::now() - start);
}

PipeWireNode* PipeWireGraph::find(std::uint32_t globalId) {
  const auto found =
      std::find_if(nodes_.begin(), nodes_.end(), [&](auto& n) { return n->globalId() == globalId; });
  return found == nodes_.end() ? nullptr : found->get();
}

const std::string* PipeWireGraph::linkError(std::uint32_t reader) const {
  for (const auto& link : links_)
    if (link->reader() == reader && link->error()) return &*link->error();
  return nullptr;
}

void PipeWireGraph::readerLeft(std::uint32_t camera, std::uint32_t reader) {
  PipeWireNode* node = find(camera);
  const bool isLast = std::none_of(links_.begin(), links_.end(), [&](const auto& link) {
    return link->camera() == camera && link->reader() != reader;
  });
  if (node && isLast) node->suspendAfter(reader);
}

std::chrono::milliseconds PipeWireGraph::clearError(PipeWireNode& node) {
  node.suspendAfter(PW_ID_ANY);
  sync();
  return refresh();
}

// The daemon drops what it has not read of a connection that ends.
void PipeWireGraph::finishSuspending() {
  using Clock = std::chrono::steady_clock;
  const auto isDone = [this] {
    return std::none_of(nodes_.begin(), nodes_.end(), [](const auto& node) { return node->isSuspendDue(); });
  };
  const auto deadline = Clock::now() + kPatience;
  if (hangs_ || isDone() || !loop_.waitUntil(isDone, kPatience) || !core_) return;
  sync();
  loop_.waitUntil([this] { return !core_ || answered_ == awaited_; },
                  std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()));
}

void PipeWireGraph::onDone(void* data, std::uint32_t id, int seq) {
  if (id == PW_ID_CORE) static_cast<PipeWireGraph*>(data)->answered_ = seq;
}

void PipeWireGraph::onError(void* data, std::uint32_t id, int, int result, const char*) {
  if (id == PW_ID_CORE && result == -EPIPE) static_cast<PipeWireGraph*>(data)->isLost_ = true;
}

void PipeWireGraph::onGlobal(void* data, std::uint32_t id, std::uint32_t, const char* type, std::uint32_t,
                             const spa_dict* properties) {
  auto& graph = *static_cast<PipeWireGraph*>(data);
  if (isCamera(type, properties)) graph.announced_.push_back(id);
  if (properties && std::strcmp(type, PW_TYPE_INTERFACE_Link) == 0)
    graph.announcedLinks_.push_back(
        {id, numberIn(*properties, PW_KEY_LINK_OUTPUT_NODE), numberIn(*properties, PW_KEY_LINK_INPUT_NODE)});
}

// An identifier may be used again at once, so the order of the two lists matters: one that was announced and
// removed in the same iteration is gone.
void PipeWireGraph::onGlobalRemove(void* data, std::uint32_t id) {
  auto& graph = *static_cast<PipeWireGraph*>(data);
  std::erase(graph.announced_, id);
  std::erase_if(graph.announcedLinks_, [id](const AnnouncedLink& link) { return link.globalId == id; });
  graph.removed_.push_back(id);
}

void PipeWireGraph::afterIteration() {
  if (!core_) return;
  if (isLost_) {
    disconnect();
    isLossUntold_ = true;
    return;
  }
  dropRemoved();
  bindAnnounced();
  bool asked = false;
  for (auto& node : nodes_) {
    node->suspendIfDue();
    asked = node->askForFormats() || asked;
  }
  if (asked) sync();
  if (answered_ != awaited_) return;
  hangs_ = false;
  for (auto& node : nodes_) node->answered();
}

void PipeWireGraph::dropRemoved() {
  const auto drop = [](auto& objects, std::uint32_t id) {
    std::erase_if(objects, [id](const auto& object) { return object->globalId() == id; });
  };
  for (const auto id : removed_) {
    drop(nodes_, id);
    drop(links_, id);
  }
  removed_.clear();
}

void PipeWireGraph::bindAnnounced() {
  bindNodes();
  for (const auto& [id, camera, reader] : announcedLinks_) {
    PipeWireNode* node = find(camera);
    if (!node) continue;
    node->readerCame(reader);
    links_.push_back(std::make_unique<PipeWireLink>(registry_.get(), id, camera, reader));
  }
  announcedLinks_.clear();
}

void PipeWireGraph::bindNodes() {
  if (announced_.empty()) return;
  for (const auto id : announced_) nodes_.push_back(std::make_unique<PipeWireNode>(registry_.get(), id));
  announced_.clear();
  sync();
}

void PipeWireGraph::sync() { awaited_ = pw_core_sync(core_.get(), PW_ID_CORE, 0); }

void PipeWireGraph::disconnect() {
  if (!core_) return;
  loop_.tellConnectionLost();
  nodes_.clear();
  links_.clear();
  announced_.clear();
  announcedLinks_.clear();
  removed_.clear();
  spa_hook_remove(&registryListener_);
  registry_.reset();
  spa_hook_remove(&coreListener_);
  core_.reset();
  loop_.releaseFrames();
  context_.reset();
  answered_ = awaited_ = 0;
}

void PipeWireGraph::deliver() {
  if (!std::exchange(isLossUntold_, false)) return;
  if (lostHandler_) lostHandler_();
}

}  // namespace vistrel::camera
