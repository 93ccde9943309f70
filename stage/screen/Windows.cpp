#include "stage/screen/Windows.h"

#include <memory>
#include <span>

#include <X11/Xatom.h>
#include <X11/Xutil.h>

namespace vistrel::stage {
namespace {

struct XFreer {
  void operator()(void* memory) const { XFree(memory); }
};

template <class T>
using XOwned = std::unique_ptr<T, XFreer>;

struct Property {
  Atom type = None;
  int format = 0;
  unsigned long count = 0;  // NOLINT(google-runtime-int): Xlib's own type
  XOwned<unsigned char> data;
};

Property property(const Screen& screen, Window window, Atom name) {
  Property result;
  unsigned long rest = 0;  // NOLINT(google-runtime-int): Xlib's own type
  unsigned char* data = nullptr;
  XGetWindowProperty(screen.display(), window, name, 0, 4096, False, AnyPropertyType, &result.type,
                     &result.format, &result.count, &rest, &data);
  result.data.reset(data);
  return result;
}

std::vector<std::string> texts(const Screen& screen, const Property& found) {
  if (!found.data) return {};
  if (found.format == 8) return {std::string(reinterpret_cast<const char*>(found.data.get()), found.count)};
  std::vector<std::string> result;
  if (found.format != 32) return result;
  // Xlib hands 32-bit properties over as longs.
  for (const long value : std::span(reinterpret_cast<const long*>(found.data.get()), found.count)) {
    if (found.type != XA_ATOM) {
      result.push_back(std::to_string(value));
      continue;
    }
    const XOwned<char> name(XGetAtomName(screen.display(), static_cast<Atom>(value)));
    if (name) result.emplace_back(name.get());
  }
  return result;
}

std::vector<std::string> texts(const Screen& screen, Window window, const char* name) {
  return texts(screen, property(screen, window, screen.atom(name)));
}

std::string firstText(const Screen& screen, Window window, const char* name) {
  const auto all = texts(screen, window, name);
  return all.empty() ? std::string() : all.front();
}

WindowFacts factsOf(const Screen& screen, Window window, const XWindowAttributes& attributes) {
  WindowFacts facts;
  facts.id = window;
  facts.place = {0, 0, attributes.width, attributes.height};
  facts.isManaged = attributes.override_redirect == False;
  Window child = None;
  XTranslateCoordinates(screen.display(), window, screen.root(), 0, 0, &facts.place.x, &facts.place.y,
                        &child);
  facts.name = firstText(screen, window, "_NET_WM_NAME");
  if (facts.name.empty()) facts.name = firstText(screen, window, "WM_NAME");
  XClassHint hint{};
  if (XGetClassHint(screen.display(), window, &hint) != 0) {
    const XOwned<char> instance(hint.res_name);
    const XOwned<char> name(hint.res_class);
    facts.className = name.get();
  }
  const std::string processId = firstText(screen, window, "_NET_WM_PID");
  if (!processId.empty()) facts.processId = std::stoi(processId);
  facts.states = texts(screen, window, "_NET_WM_STATE");
  facts.types = texts(screen, window, "_NET_WM_WINDOW_TYPE");
  return facts;
}

void collect(const Screen& screen, Window parent, std::vector<WindowFacts>& into) {
  Window root = None;
  Window above = None;
  Window* children = nullptr;
  unsigned count = 0;
  if (XQueryTree(screen.display(), parent, &root, &above, &children, &count) == 0) return;
  const XOwned<Window> owned(children);
  for (const Window child : std::span(children, count)) {
    XWindowAttributes attributes{};
    if (XGetWindowAttributes(screen.display(), child, &attributes) == 0) continue;
    if (attributes.map_state != IsViewable || attributes.c_class != InputOutput) continue;
    into.push_back(factsOf(screen, child, attributes));
    into.back().parent = parent;
    collect(screen, child, into);
  }
}

}  // namespace

std::vector<WindowFacts> visibleWindows(const Screen& screen) {
  std::vector<WindowFacts> result;
  collect(screen, screen.root(), result);
  return result;
}

WindowFacts focusedWindow(const Screen& screen) {
  Window window = None;
  int revert = 0;
  XGetInputFocus(screen.display(), &window, &revert);
  while (window > PointerRoot && window != screen.root()) {
    XWindowAttributes attributes{};
    if (XGetWindowAttributes(screen.display(), window, &attributes) == 0) break;
    WindowFacts facts = factsOf(screen, window, attributes);
    if (facts.processId != 0) return facts;
    Window root = None;
    Window* children = nullptr;
    unsigned count = 0;
    if (XQueryTree(screen.display(), window, &root, &window, &children, &count) == 0) break;
    const XOwned<Window> owned(children);
  }
  return {};
}

void askManager(const Screen& screen, Window window, const std::string& message, int value) {
  XEvent event{};
  event.xclient.type = ClientMessage;
  event.xclient.window = window;
  event.xclient.message_type = screen.atom(message);
  event.xclient.format = 32;
  event.xclient.data.l[0] = value;
  XSendEvent(screen.display(), screen.root(), False, SubstructureNotifyMask | SubstructureRedirectMask,
             &event);
  XFlush(screen.display());
}

std::vector<std::string> rootProperty(const Screen& screen, const std::string& name) {
  return texts(screen, screen.root(), name.c_str());
}

}  // namespace vistrel::stage
