#include "linux/x11/PanelStruts.h"

#include <algorithm>
#include <array>

namespace vistrel::x11 {

namespace {

// Thickness on the left, the right, the top and the bottom, then where each begins and ends along its edge.
using Property = std::array<std::uint32_t, 12>;
constexpr std::uint32_t kPartialLength = 12;
constexpr std::uint32_t kWholeLength = 4;
constexpr std::uint32_t kMostWindows = 1024;
// A dock is long and thin; what is not is an icon or a gadget of it.
constexpr int kLeastLengthOfThickness = 4;

PixelSize desktopOf(X11Connection& connection) {
  const auto cookie = xcb_get_geometry(connection.get(), connection.root());
  const auto reply = connection.wait(xcb_get_geometry_reply, cookie);
  return reply ? PixelSize{reply->width, reply->height} : PixelSize{};
}

std::vector<xcb_window_t> managedWindows(X11Connection& connection) {
  const auto list = connection.atom("_NET_CLIENT_LIST");
  const auto cookie =
      xcb_get_property(connection.get(), 0, connection.root(), list, XCB_ATOM_WINDOW, 0, kMostWindows);
  const auto reply = connection.wait(xcb_get_property_reply, cookie);
  if (!reply || reply->format != 32) return {};
  const auto* first = static_cast<const xcb_window_t*>(xcb_get_property_value(reply.get()));
  return {first, first + reply->value_len};
}

std::span<const std::uint32_t> valuesIn(const xcb_get_property_reply_t* reply) {
  if (!reply || reply->format != 32) return {};
  return {static_cast<const std::uint32_t*>(xcb_get_property_value(reply)), reply->value_len};
}

// All of them or none.
std::vector<std::uint32_t> numbersOfRoot(X11Connection& connection, const char* name, std::uint32_t count) {
  const auto atom = connection.atom(name);
  const auto cookie =
      xcb_get_property(connection.get(), 0, connection.root(), atom, XCB_ATOM_CARDINAL, 0, count);
  const auto reply = connection.wait(xcb_get_property_reply, cookie);
  const auto values = valuesIn(reply.get());
  if (values.size() < count) return {};
  return {values.begin(), values.end()};
}

// The older property has no ends: its strips are as long as the desktop.
std::optional<Property> read(std::span<const std::uint32_t> values) {
  if (values.size() < kWholeLength) return std::nullopt;
  Property property{};
  for (std::size_t end = 5; end < property.size(); end += 2) property[end] = UINT32_MAX;
  std::copy_n(values.begin(), std::min<std::size_t>(values.size(), kPartialLength), property.begin());
  return property;
}

void append(std::vector<Strut>& struts, const Property& property, PixelSize desktop) {
  const auto within = [](std::uint32_t value, int most) {
    return static_cast<int>(std::min(value, static_cast<std::uint32_t>(most)));
  };
  for (const auto edge : {Strut::Edge::Left, Strut::Edge::Right, Strut::Edge::Top, Strut::Edge::Bottom}) {
    const auto index = static_cast<std::size_t>(edge);
    const bool isUpright = edge == Strut::Edge::Left || edge == Strut::Edge::Right;
    const int across = isUpright ? desktop.width : desktop.height;
    const int along = isUpright ? desktop.height : desktop.width;
    const int thickness = within(property[index], across);
    const int begin = within(property[4 + 2 * index], along);
    const int length = std::min(within(property[5 + 2 * index], along) + 1, along) - begin;
    if (thickness == 0 || length <= 0) continue;
    const int offset = edge == Strut::Edge::Left || edge == Strut::Edge::Top ? 0 : across - thickness;
    struts.push_back(isUpright ? Strut{edge, offset, begin, thickness, length}
                               : Strut{edge, begin, offset, length, thickness});
  }
}

struct Atoms {
  xcb_atom_t partial;
  xcb_atom_t whole;
  xcb_atom_t type;
  xcb_atom_t dock;

  static Atoms of(X11Connection& connection) {
    return {connection.atom("_NET_WM_STRUT_PARTIAL"), connection.atom("_NET_WM_STRUT"),
            connection.atom("_NET_WM_WINDOW_TYPE"), connection.atom("_NET_WM_WINDOW_TYPE_DOCK")};
  }
};

struct Question {
  xcb_window_t window;
  xcb_get_property_cookie_t partial;
  xcb_get_property_cookie_t whole;
  xcb_get_property_cookie_t types;
};

Question ask(X11Connection& connection, xcb_window_t window, const Atoms& atoms) {
  const auto property = [&](xcb_atom_t name, xcb_atom_t type) {
    return xcb_get_property(connection.get(), 0, window, name, type, 0, kPartialLength);
  };
  return {window, property(atoms.partial, XCB_ATOM_CARDINAL), property(atoms.whole, XCB_ATOM_CARDINAL),
          property(atoms.type, XCB_ATOM_ATOM)};
}

bool holds(const xcb_get_property_reply_t* reply, xcb_atom_t wanted) {
  if (!reply || reply->format != 32) return false;
  const auto* first = static_cast<const xcb_atom_t*>(xcb_get_property_value(reply));
  return std::find(first, first + reply->value_len, wanted) != first + reply->value_len;
}

std::vector<xcb_window_t> childrenOf(X11Connection& connection, xcb_query_tree_cookie_t cookie) {
  const auto reply = connection.wait(xcb_query_tree_reply, cookie);
  if (!reply) return {};
  const auto* first = xcb_query_tree_children(reply.get());
  return {first, first + xcb_query_tree_children_length(reply.get())};
}

/// The windows on the desktop, and those inside them: a window manager puts what it manages into frames.
std::vector<xcb_window_t> windowsInTwoLayers(X11Connection& connection) {
  auto windows = childrenOf(connection, xcb_query_tree(connection.get(), connection.root()));
  std::vector<xcb_query_tree_cookie_t> questions;
  questions.reserve(windows.size());
  for (const auto window : windows) questions.push_back(xcb_query_tree(connection.get(), window));
  for (const auto question : questions) {
    const auto inner = childrenOf(connection, question);
    windows.insert(windows.end(), inner.begin(), inner.end());
  }
  return windows;
}

/// The strip that a dock covers which reserves none: only one along an edge of the desktop hides what lies
/// there.
std::optional<Strut> stripOf(X11Connection& connection, xcb_window_t window, PixelSize desktop) {
  using Edge = Strut::Edge;
  const auto sizeAsked = xcb_get_geometry(connection.get(), window);
  const auto placeAsked = xcb_translate_coordinates(connection.get(), window, connection.root(), 0, 0);
  const auto stateAsked = xcb_get_window_attributes(connection.get(), window);
  const auto size = connection.wait(xcb_get_geometry_reply, sizeAsked);
  const auto place = connection.wait(xcb_translate_coordinates_reply, placeAsked);
  const auto state = connection.wait(xcb_get_window_attributes_reply, stateAsked);
  if (!size || !place || !state || state->map_state != XCB_MAP_STATE_VIEWABLE) return std::nullopt;
  Strut strut{Edge::Top, place->dst_x, place->dst_y, size->width, size->height};
  if (strut.width >= kLeastLengthOfThickness * strut.height) {
    if (strut.y + strut.height >= desktop.height) strut.edge = Edge::Bottom;
    return strut.y <= 0 || strut.edge == Edge::Bottom ? std::optional(strut) : std::nullopt;
  }
  if (strut.height < kLeastLengthOfThickness * strut.width) return std::nullopt;
  strut.edge = strut.x + strut.width >= desktop.width ? Edge::Right : Edge::Left;
  return strut.x <= 0 || strut.edge == Edge::Right ? std::optional(strut) : std::nullopt;
}

}  // namespace

std::vector<Strut> strutsIn(std::span<const std::uint32_t> values, PixelSize desktop) {
  std::vector<Strut> struts;
  if (const auto property = read(values)) append(struts, *property, desktop);
  return struts;
}

Rect workAreaIn(PixelSize root, const Rect& told, PixelSize toldDesktop) {
  const auto isToldOf = [&](PixelSize desktop) {
    return told.maxX() == desktop.width || told.maxY() == desktop.height;
  };
  if (isToldOf(root) || !isToldOf(toldDesktop) || toldDesktop.width == 0) return told;
  const double factor = static_cast<double>(root.width) / toldDesktop.width;
  return {told.x * factor, told.y * factor, told.width * factor, told.height * factor};
}

std::optional<Rect> workArea(X11Connection& connection) {
  if (!connection.isOpen()) return std::nullopt;
  const auto area = numbersOfRoot(connection, "_NET_WORKAREA", 4);
  if (area.empty()) return std::nullopt;
  const auto size = numbersOfRoot(connection, "_NET_DESKTOP_GEOMETRY", 2);
  const Rect told{1.0 * area[0], 1.0 * area[1], 1.0 * area[2], 1.0 * area[3]};
  if (size.empty()) return told;
  return workAreaIn(desktopOf(connection), told, {static_cast<int>(size[0]), static_cast<int>(size[1])});
}

std::vector<Strut> panelStruts(X11Connection& connection) {
  if (!connection.isOpen()) return {};
  // Where no work area is told the list of windows may leave out the panels, too.
  const auto windows = workArea(connection) ? managedWindows(connection) : windowsInTwoLayers(connection);
  std::vector<Question> questions;
  const auto atoms = Atoms::of(connection);
  questions.reserve(windows.size());
  // All is asked before the first answer is waited for.
  for (const auto window : windows) questions.push_back(ask(connection, window, atoms));
  const PixelSize desktop = desktopOf(connection);
  std::vector<Strut> struts;
  for (const auto& question : questions) {
    const auto exact = connection.wait(xcb_get_property_reply, question.partial);
    const auto rough = connection.wait(xcb_get_property_reply, question.whole);
    const auto types = connection.wait(xcb_get_property_reply, question.types);
    const auto property = read(valuesIn(exact.get()));
    if (const auto known = property ? property : read(valuesIn(rough.get()))) {
      append(struts, *known, desktop);
    } else if (holds(types.get(), atoms.dock)) {
      if (const auto strut = stripOf(connection, question.window, desktop)) struts.push_back(*strut);
    }
  }
  return struts;
}

}  // namespace vistrel::x11
