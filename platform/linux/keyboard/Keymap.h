#pragma once

#include <xkbcommon/xkbcommon.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "linux/x11/X11Connection.h"

namespace vistrel::keyboard {

/// The X server's keymap, seen through the layout that types a to z: the present one if it does, else the
/// first that does, else plain us. Read again only after the server said that it changed. Main thread only.
class Keymap {
 public:
  explicit Keymap(x11::X11Connection& connection);

  /// The unshifted text of a key by its Linux event code, on the keypad that of its digits; a dead key gives
  /// its accent alone. Empty for a key without text; none when no keymap can be had.
  [[nodiscard]] std::optional<std::string> text(std::uint16_t evdevCode);

  /// The unshifted symbol of a key, on the keypad that of its digits; none for a key without one.
  [[nodiscard]] std::optional<xkb_keysym_t> symbolOn(std::uint16_t evdevCode);
  /// The same on the plain us layout, whatever the server's is.
  [[nodiscard]] static std::optional<xkb_keysym_t> plainSymbolOn(std::uint16_t evdevCode);

  struct Place {
    std::uint16_t evdevCode;
    bool isShifted;  ///< it takes Shift to get the symbol there
  };
  /// The keys that give a symbol.
  [[nodiscard]] std::vector<Place> find(xkb_keysym_t symbol);

 private:
  struct Unref {
    void operator()(xkb_context* context) const { xkb_context_unref(context); }
    void operator()(xkb_keymap* keymap) const { xkb_keymap_unref(keymap); }
    void operator()(xkb_state* state) const { xkb_state_unref(state); }
  };
  using KeymapPointer = std::unique_ptr<xkb_keymap, Unref>;

  void eventCame(const xcb_generic_event_t& event);
  [[nodiscard]] bool update();
  void readKeymap();
  void chooseLayout();
  [[nodiscard]] bool typesLatin(xkb_layout_index_t layout) const;

  x11::X11Connection& connection_;
  std::unique_ptr<xkb_context, Unref> context_;
  KeymapPointer server_;
  KeymapPointer plain_;
  xkb_keymap* chosen_ = nullptr;
  xkb_layout_index_t chosenLayout_ = 0;
  xkb_layout_index_t presentLayout_ = 0;
  std::shared_ptr<x11::X11Connection::Handler> subscription_;
};

}  // namespace vistrel::keyboard
