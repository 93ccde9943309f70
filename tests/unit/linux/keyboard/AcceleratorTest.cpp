#include "linux/keyboard/Accelerator.h"

#include <gtest/gtest.h>

#include "linux/keyboard/DesktopShortcuts.h"

namespace vistrel::keyboard {
namespace {

using Parsed = std::optional<Accelerator>;

TEST(AcceleratorTest, ReadsWhatGtkWrites) {
  struct {
    const char* text;
    Parsed expected;
  } const rows[] = {
      {"<Primary><Alt>Delete", Accelerator{XKB_KEY_Delete, 0x1800}},
      {"<SUPER><shift>A", Accelerator{XKB_KEY_a, 0x300}},
      {"<Control>space", Accelerator{XKB_KEY_space, 0x1000}},
      {"<Alt>F10", Accelerator{XKB_KEY_F10, 0x800}},
      {"<Super>Above_Tab", Accelerator{XKB_KEY_NoSymbol, 0x100, 41}},
      {"<Primary>1", Accelerator{XKB_KEY_1, 0x1000}},
      {"<Super>question", Accelerator{XKB_KEY_question, 0x100}},
      {"Print", Accelerator{XKB_KEY_Print, 0}},
      {"", std::nullopt},
      {"disabled", std::nullopt},
      {"<Super>", std::nullopt},
      {"<Hyper>a", std::nullopt},
      {"<Super", std::nullopt},
      {"<>a", std::nullopt},
      {"<Alt>nonsense", std::nullopt},
  };
  for (const auto& row : rows) EXPECT_EQ(parseGtkAccelerator(row.text), row.expected) << row.text;
}

TEST(AcceleratorTest, ReadsWhatQtWrites) {
  struct {
    const char* text;
    Parsed expected;
  } const rows[] = {
      {"Meta+Ctrl+D", Accelerator{XKB_KEY_d, 0x1100}},
      {"Ctrl++", Accelerator{XKB_KEY_plus, 0x1000}},
      {"+", Accelerator{XKB_KEY_plus, 0}},
      {"Alt+Shift+Esc", Accelerator{XKB_KEY_Escape, 0xA00}},
      {"Ctrl+Alt+Del", Accelerator{XKB_KEY_Delete, 0x1800}},
      {"Meta+PgUp", Accelerator{XKB_KEY_Page_Up, 0x100}},
      {"Meta+Ö", Accelerator{XKB_KEY_odiaeresis, 0x100}},
      {"Meta+\xc3", std::nullopt},
      {"Volume Mute", Accelerator{XKB_KEY_XF86AudioMute, 0}},
      {"none", std::nullopt},
      {"", std::nullopt},
      {"Meta+", std::nullopt},
      {"Nonsense+A", std::nullopt},
      {"Ctrl+A+", std::nullopt},
  };
  for (const auto& row : rows) EXPECT_EQ(parseQtAccelerator(row.text), row.expected) << row.text;
}

TEST(AcceleratorTest, ReadsTheNumbersOfKde) {
  struct {
    std::uint32_t number;
    Parsed expected;
  } const rows[] = {
      {0x14000044, Accelerator{XKB_KEY_d, 0x1100}},
      {0x0A000000 + 0x01000000, Accelerator{XKB_KEY_Escape, 0xA00}},
      {0x08000000 + 0x01000033, Accelerator{XKB_KEY_F4, 0x800}},
      {0x10000000 + 0x01000016, Accelerator{XKB_KEY_Page_Up, 0x100}},
      {0x100000D6, Accelerator{XKB_KEY_odiaeresis, 0x100}},
      {0x01000071, Accelerator{XKB_KEY_XF86AudioMute, 0}},
      {0x30000035, std::nullopt},  // a digit of the keypad
      {0x01FFFFFF, std::nullopt},
      {0, std::nullopt},
  };
  for (const auto& row : rows) EXPECT_EQ(acceleratorOfQtNumber(row.number), row.expected) << row.number;
}

TEST(AcceleratorTest, ReadsTheFileOfKde) {
  const auto found = parseKdeShortcuts(
      "[kwin]\n_k_friendly_name=Ctrl+X\nClose=Alt+F4\\tMeta+Q,Ctrl+C,Close\nOff=none,Ctrl+Y,Off\nbroken\n"
      "Comma=Ctrl+\\,,none,Comma\nBackslash=Meta+\\\\,none,B\n[org.vistrel.Vistrel]\n"
      "toggle=Ctrl+Alt+Z,,\n[services][a.desktop]\n_launch=Bad+1,,\n");
  const Accelerators expected = {
      {XKB_KEY_F4, 0x800}, {XKB_KEY_q, 0x100}, {XKB_KEY_comma, 0x1000}, {XKB_KEY_backslash, 0x100}};
  EXPECT_EQ(found, expected);
}

}  // namespace
}  // namespace vistrel::keyboard
