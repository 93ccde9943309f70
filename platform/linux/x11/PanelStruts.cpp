#include "linux/x11/PanelStruts.h"

#include <algorithm>
#include <array>
#include <optional>

namespace vistrel::x11 {

namespace {

// Thickness on the left, the right, the top and the bottom, then where each begins and ends along its edge.
using Property = std::array<std::uint32_t, 12>;
constexpr std::uint32_t kPartialLength = 12;
constexpr std::uint32_t kWholeLength = 4;
constexpr std::uint32_t kMostWindows = 1024;

struct Desktop {
  int width = 0;
  int height = 0;
};

Desktop desktopOf(X11Connection& connection) {
  const auto cookie = xcb_get_geometry(connection.get(), connection.root());
  const auto reply = connection.wait(xcb_get_geometry_reply, cookie);
  return reply ? Desktop{reply->width, reply->height} : Desktop{};
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

// The older property has no ends: its strips are as long as the desktop.
std::optional<Property> read(const xcb_get_property_reply_t* reply) {
  if (!reply || reply->format != 32 || reply->value_len < kWholeLength) return std::nullopt;
  const auto* values = static_cast<const std::uint32_t*>(xcb_get_property_value(reply));
  Property property{};
  for (std::size_t end = 5; end < property.size(); end += 2) property[end] = UINT32_MAX;
  std::copy_n(values, std::min(reply->value_len, kPartialLength), property.begin());
  return property;
}

void append(std::vector<Strut>& struts, const Property& property, Desktop desktop) {
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

}  // namespace

bool isWorkAreaTold(X11Connection& connection) {
  if (!connection.isOpen()) return false;
  const auto area = connection.atom("_NET_WORKAREA");
  const auto cookie = xcb_get_property(connection.get(), 0, connection.root(), area, XCB_ATOM_CARDINAL, 0, 4);
  const auto reply = connection.wait(xcb_get_property_reply, cookie);
  return reply && reply->value_len == 4;
}

std::vector<Strut> panelStruts(X11Connection& connection) {
  if (!connection.isOpen()) return {};
  struct Question {
    xcb_get_property_cookie_t partial;
    xcb_get_property_cookie_t whole;
  };
  const auto partial = connection.atom("_NET_WM_STRUT_PARTIAL");
  const auto whole = connection.atom("_NET_WM_STRUT");
  // All is asked before the first answer is waited for.
  std::vector<Question> questions;
  for (const auto window : managedWindows(connection)) {
    const auto ask = [&](xcb_atom_t property) {
      return xcb_get_property(connection.get(), 0, window, property, XCB_ATOM_CARDINAL, 0, kPartialLength);
    };
    questions.push_back({ask(partial), ask(whole)});
  }
  const Desktop desktop = desktopOf(connection);
  std::vector<Strut> struts;
  for (const auto& question : questions) {
    const auto exact = connection.wait(xcb_get_property_reply, question.partial);
    const auto rough = connection.wait(xcb_get_property_reply, question.whole);
    const auto property = read(exact.get());
    if (const auto known = property ? property : read(rough.get())) append(struts, *known, desktop);
  }
  return struts;
}

}  // namespace vistrel::x11
