#include "linux/camera/PipeWireLink.h"

namespace vistrel::camera {

PipeWireLink::PipeWireLink(pw_registry* registry, std::uint32_t globalId, std::uint32_t camera,
                           std::uint32_t reader)
    : globalId_(globalId),
      camera_(camera),
      reader_(reader),
      proxy_(static_cast<pw_link*>(
          pw_registry_bind(registry, globalId, PW_TYPE_INTERFACE_Link, PW_VERSION_LINK, 0))) {
  static const pw_link_events events = [] {
    pw_link_events e{};
    e.version = PW_VERSION_LINK_EVENTS;
    e.info = onInfo;
    return e;
  }();
  if (proxy_) pw_link_add_listener(proxy_.get(), &listener_, &events, this);
}

PipeWireLink::~PipeWireLink() {
  if (proxy_) spa_hook_remove(&listener_);
}

void PipeWireLink::onInfo(void* data, const pw_link_info* info) {
  if (!(info->change_mask & PW_LINK_CHANGE_MASK_STATE) || info->state != PW_LINK_STATE_ERROR) return;
  static_cast<PipeWireLink*>(data)->error_ = info->error ? info->error : "";
}

}  // namespace vistrel::camera
