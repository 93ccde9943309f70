#include "linux/x11/HostMenuWatch.h"

#include <span>
#include <utility>
#include <vector>

namespace vistrel::x11 {

HostMenuWatch::HostMenuWatch(X11Connection& connection) : connection_(connection) {
  if (!connection_.isOpen()) return;
  windowType_ = connection_.atom("_NET_WM_WINDOW_TYPE");
  popupMenu_ = connection_.atom("_NET_WM_WINDOW_TYPE_POPUP_MENU");
}

void HostMenuWatch::start(std::function<void()> closed) {
  stop();
  if (!connection_.isOpen()) return;
  closed_ = std::move(closed);
  wasSeen_ = false;
  subscription_ = connection_.subscribe(X11Connection::Delivery::FromMainLoop,
                                        [this](const auto& event) { eventCame(event); });
  listen(Listening::On);
  look();
}

void HostMenuWatch::stop() {
  if (!std::exchange(subscription_, nullptr)) return;
  closed_ = nullptr;
  listen(Listening::Off);
}

void HostMenuWatch::listen(Listening listening) {
  const std::uint32_t mask =
      listening == Listening::On ? std::uint32_t{XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY} : 0;
  xcb_change_window_attributes(connection_.get(), connection_.root(), XCB_CW_EVENT_MASK, &mask);
  connection_.flush();
}

void HostMenuWatch::eventCame(const xcb_generic_event_t& event) {
  const auto kind = event.response_type & 0x7FU;
  if (kind == XCB_MAP_NOTIFY || kind == XCB_UNMAP_NOTIFY || kind == XCB_DESTROY_NOTIFY) look();
}

void HostMenuWatch::look() {
  if (!subscription_) return;
  const bool isThere = isMenuOnScreen();
  const bool isGone = wasSeen_ && !isThere;
  wasSeen_ = wasSeen_ || isThere;
  if (!isGone) return;
  const auto closed = std::exchange(closed_, nullptr);
  stop();
  closed();
}

bool HostMenuWatch::isMenuOnScreen() {
  if (!connection_.isOpen()) return false;
  const auto cookie = xcb_query_tree(connection_.get(), connection_.root());
  const auto tree = connection_.wait(xcb_query_tree_reply, cookie);
  if (!tree) return false;
  // A tray host waits meanwhile: all is asked before the first answer is waited for.
  std::vector<Question> questions;
  for (const auto window : std::span(xcb_query_tree_children(tree.get()), tree->children_len))
    questions.push_back(ask(window));
  bool isThere = false;
  for (const Question& question : questions) isThere = isMenu(question) || isThere;
  connection_.readEvents();
  return isThere;
}

HostMenuWatch::Question HostMenuWatch::ask(xcb_window_t window) {
  auto* x = connection_.get();
  return {xcb_get_window_attributes(x, window),
          xcb_get_property(x, 0, window, windowType_, XCB_ATOM_ATOM, 0, 1)};
}

bool HostMenuWatch::isMenu(const Question& question) {
  auto* x = connection_.get();
  const Reply<xcb_get_window_attributes_reply_t> attributes(
      xcb_get_window_attributes_reply(x, question.attributes, nullptr));
  const Reply<xcb_get_property_reply_t> type(xcb_get_property_reply(x, question.type, nullptr));
  if (!attributes || !type || attributes->map_state != XCB_MAP_STATE_VIEWABLE) return false;
  if (attributes->override_redirect == 0 || type->value_len == 0) return false;
  return *static_cast<const xcb_atom_t*>(xcb_get_property_value(type.get())) == popupMenu_;
}

}  // namespace vistrel::x11
