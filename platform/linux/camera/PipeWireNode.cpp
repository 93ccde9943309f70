#include "linux/camera/PipeWireNode.h"

#include <spa/node/command.h>
#include <spa/param/param.h>
#include <spa/utils/keys.h>

#include "linux/camera/PipeWireFormats.h"

namespace vistrel::camera {
namespace {

constexpr std::uint32_t kAll = UINT32_MAX;
constexpr std::string_view kV4l2Prefix = "v4l2:";

}  // namespace

PipeWireNode::PipeWireNode(pw_registry* registry, std::uint32_t globalId)
    : globalId_(globalId),
      proxy_(static_cast<pw_node*>(
          pw_registry_bind(registry, globalId, PW_TYPE_INTERFACE_Node, PW_VERSION_NODE, 0))) {
  static const pw_node_events events = [] {
    pw_node_events e{};
    e.version = PW_VERSION_NODE_EVENTS;
    e.info = onInfo;
    e.param = onParam;
    return e;
  }();
  if (proxy_) pw_node_add_listener(proxy_.get(), &listener_, &events, this);
}

PipeWireNode::~PipeWireNode() {
  if (proxy_) spa_hook_remove(&listener_);
}

const std::string* PipeWireNode::property(std::string_view key) const {
  const auto found = properties_.find(key);
  return found == properties_.end() ? nullptr : &found->second;
}

std::string PipeWireNode::v4l2Path() const {
  if (const auto* path = property(SPA_KEY_API_V4L2_PATH)) return *path;
  const auto* path = property(PW_KEY_OBJECT_PATH);
  return path && path->starts_with(kV4l2Prefix) ? path->substr(kV4l2Prefix.size()) : std::string();
}

void PipeWireNode::suspendAfter(std::uint32_t reader) {
  leaving_ = reader;
  suspendIfDue();
}

void PipeWireNode::readerCame(std::uint32_t reader) {
  if (leaving_ != reader) leaving_.reset();
}

// A camera in error is not read either.
void PipeWireNode::suspendIfDue() {
  const bool isUnread = state_ == PW_NODE_STATE_IDLE || state_ == PW_NODE_STATE_ERROR;
  if (!leaving_ || !proxy_ || !isUnread) return;
  leaving_.reset();
  const spa_command suspend = SPA_NODE_COMMAND_INIT(SPA_NODE_COMMAND_Suspend);
  pw_node_send_command(proxy_.get(), &suspend);
}

bool PipeWireNode::askForFormats() {
  if (!hasNewFormats_ || !proxy_) return false;
  hasNewFormats_ = false;
  areModesOld_ = true;
  pw_node_enum_params(proxy_.get(), 0, SPA_PARAM_EnumFormat, 0, kAll, nullptr);
  return true;
}

void PipeWireNode::answered() {
  if (areModesOld_) modes_.clear();
  areModesOld_ = false;
}

void PipeWireNode::onInfo(void* data, const pw_node_info* info) {
  auto& node = *static_cast<PipeWireNode*>(data);
  if ((info->change_mask & PW_NODE_CHANGE_MASK_PROPS) && info->props) {
    node.properties_.clear();
    for (std::uint32_t i = 0; i < info->props->n_items; ++i) {
      const auto& item = info->props->items[i];
      if (item.key && item.value) node.properties_[item.key] = item.value;
    }
  }
  if (info->change_mask & PW_NODE_CHANGE_MASK_STATE) node.recordState(*info);
  if (info->change_mask & PW_NODE_CHANGE_MASK_PARAMS) node.recordFormats(*info);
}

void PipeWireNode::recordState(const pw_node_info& info) {
  if (info.state == PW_NODE_STATE_ERROR && state_ != PW_NODE_STATE_ERROR) {
    ++errorCount_;
    lastError_ = info.error ? info.error : "";
  }
  state_ = info.state;
  if (isSuspended()) leaving_.reset();
}

// The flags of a parameter toggle with each change of its values.
void PipeWireNode::recordFormats(const pw_node_info& info) {
  for (std::uint32_t i = 0; i < info.n_params; ++i) {
    const auto& param = info.params[i];
    if (param.id != SPA_PARAM_EnumFormat || param.flags == formatFlags_) continue;
    formatFlags_ = param.flags;
    hasNewFormats_ = (param.flags & SPA_PARAM_INFO_READ) != 0;
  }
}

void PipeWireNode::onParam(void* data, int, std::uint32_t id, std::uint32_t, std::uint32_t,
                           const spa_pod* param) {
  auto& node = *static_cast<PipeWireNode*>(data);
  if (id != SPA_PARAM_EnumFormat) return;
  if (node.areModesOld_) node.modes_.clear();
  node.areModesOld_ = false;
  appendModes(param, node.modes_);
}

}  // namespace vistrel::camera
