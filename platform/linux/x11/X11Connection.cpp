#include "linux/x11/X11Connection.h"

#include <xkbcommon/xkbcommon-x11.h>

#include <chrono>
#include <utility>

namespace vistrel::x11 {

namespace {

constexpr unsigned kEventKindBits = 0x7F;

struct XkbAnyEvent {
  std::uint8_t response_type;
  std::uint8_t xkbType;
};

constexpr std::uint16_t kXkbEvents =
    XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY | XCB_XKB_EVENT_TYPE_STATE_NOTIFY;
constexpr std::uint16_t kMapParts = XCB_XKB_MAP_PART_KEY_TYPES | XCB_XKB_MAP_PART_KEY_SYMS |
                                    XCB_XKB_MAP_PART_MODIFIER_MAP | XCB_XKB_MAP_PART_VIRTUAL_MODS |
                                    XCB_XKB_MAP_PART_VIRTUAL_MOD_MAP;
constexpr std::uint16_t kKeyboardParts =
    XCB_XKB_NKN_DETAIL_KEYCODES | XCB_XKB_NKN_DETAIL_GEOMETRY | XCB_XKB_NKN_DETAIL_DEVICE_ID;

void selectXkbEvents(xcb_connection_t* connection) {
  xcb_xkb_select_events_details_t details = {};
  details.affectNewKeyboard = details.newKeyboardDetails = kKeyboardParts;
  // The layout alone: held and locked modifiers would wake us with every key.
  details.affectState = details.stateDetails = XCB_XKB_STATE_PART_GROUP_STATE;
  xcb_xkb_select_events_aux(connection, XCB_XKB_ID_USE_CORE_KBD, kXkbEvents, 0, 0, kMapParts, kMapParts,
                            &details);
}

}  // namespace

X11Connection::X11Connection(desktop::Reactor& reactor)
    : reactor_(reactor), connection_(xcb_connect(nullptr, nullptr)) {
  if (!isOpen()) return;
  root_ = rootOf(connection_);
  startXkb();
  flush();
  watch_ = reactor_.watch(xcb_get_file_descriptor(connection_), [this] { becameReadable(); });
  readEvents();
}

X11Connection::~X11Connection() {
  watch_.reset();
  xcb_disconnect(connection_);
}

bool X11Connection::isOpen() const { return xcb_connection_has_error(connection_) == 0; }

void X11Connection::startXkb() {
  std::uint8_t firstEvent = 0;
  if (xkb_x11_setup_xkb_extension(connection_, XKB_X11_MIN_MAJOR_XKB_VERSION, XKB_X11_MIN_MINOR_XKB_VERSION,
                                  XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr, &firstEvent,
                                  nullptr) == 0) {
    return;
  }
  firstXkbEvent_ = firstEvent;
  selectXkbEvents(connection_);
}

xcb_atom_t X11Connection::atom(const char* name) {
  const xcb_atom_t atom = atomOf(connection_, name);
  readEvents();
  return atom;
}

int X11Connection::xkbKind(const xcb_generic_event_t& event) const {
  if ((event.response_type & kEventKindBits) != static_cast<unsigned>(firstXkbEvent_)) return -1;
  return reinterpret_cast<const XkbAnyEvent&>(event).xkbType;
}

std::shared_ptr<X11Connection::Handler> X11Connection::subscribe(Delivery delivery, Handler handler) {
  auto shared = std::make_shared<Handler>(std::move(handler));
  std::erase_if(subscribers_, [](const Subscriber& subscriber) { return subscriber.handler.expired(); });
  subscribers_.push_back({delivery, shared});
  return shared;
}

bool X11Connection::succeeds(xcb_void_cookie_t cookie) {
  const Reply<xcb_generic_error_t> error(xcb_request_check(connection_, cookie));
  readEvents();
  return !error && isOpen();
}

void X11Connection::readEvents() {
  while (auto* event = xcb_poll_for_event(connection_)) {
    unheard_.emplace_back(event);
    tell(Delivery::WhenRead, *event);
  }
  if (!unheard_.empty()) deliverLater();
}

void X11Connection::becameReadable() {
  readEvents();
  // A connection that broke stays readable for ever.
  if (!isOpen()) watch_.reset();
  deliver();
}

void X11Connection::deliverLater() {
  if (!delivery_) delivery_ = reactor_.after(std::chrono::milliseconds(0), [this] { deliver(); });
}

void X11Connection::deliver() {
  delivery_.reset();
  while (!unheard_.empty()) {
    const auto event = std::move(unheard_.front());
    unheard_.pop_front();
    tell(Delivery::FromMainLoop, *event);
  }
}

void X11Connection::tell(Delivery delivery, const xcb_generic_event_t& event) {
  const auto snapshot = subscribers_;
  for (const auto& subscriber : snapshot) {
    const auto handler = subscriber.handler.lock();
    if (handler && subscriber.delivery == delivery) (*handler)(event);
  }
}

}  // namespace vistrel::x11
