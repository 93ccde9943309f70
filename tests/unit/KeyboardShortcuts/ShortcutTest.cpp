#include "KeyboardShortcuts/Shortcut.h"

#include <gtest/gtest.h>

#include "KeyboardShortcuts/ModifierFlags.h"
#include "KeyboardShortcuts/Name.h"
#include "appkit/NSMenu.h"
#include "base/KeyCodes.h"
#include "foundation/UserDefaults.h"
#include "simulated/SimulatedDesktop.h"

namespace vistrel::KeyboardShortcuts {
namespace {

constexpr std::uint64_t kCommand = NSEventModifierFlags::kCommand;
constexpr std::uint64_t kShift = NSEventModifierFlags::kShift;
const Name kName("test");

class ShortcutTest : public ::testing::Test {
 protected:
  simulated::SimulatedDesktop desktop{""};
};

TEST_F(ShortcutTest, KeepsTheFourModifiersAlone) {
  struct {
    std::int64_t bits;
    std::uint64_t flags;
  } const rows[] = {
      {0x100, 0x100000}, {0x200, 0x20000}, {0x800, 0x80000}, {0x1000, 0x40000}, {0x1B00, 0x1E0000}};
  for (const auto& row : rows) {
    EXPECT_EQ(modifierFlags(row.bits | 0x400).rawValue, row.flags);
    EXPECT_EQ(carbon({row.flags | 0xA10000 | 0xFFFF}), row.bits);
  }
  EXPECT_EQ(Shortcut(0, 0x1700).carbonModifiers(), 0x1300);
  EXPECT_EQ(Shortcut(Key::f1, {kShift | kCommand}), Shortcut(122, 0x300));
}

TEST_F(ShortcutTest, ComesFromKeyEventsAlone) {
  NSEvent::Key key{NSEventType::KeyDown, {kCommand | NSEventModifierFlags::kCapsLock}, 49};
  EXPECT_EQ(Shortcut::fromEvent(*NSEvent::keyEvent(key)), Shortcut(kVK_Space, cmdKey));
  key.type = NSEventType::KeyUp;
  EXPECT_EQ(Shortcut::fromEvent(*NSEvent::keyEvent(key)), Shortcut(kVK_Space, cmdKey));
  key.type = NSEventType::FlagsChanged;
  EXPECT_EQ(Shortcut::fromEvent(*NSEvent::keyEvent(key)), std::nullopt);
  EXPECT_EQ(Shortcut::fromEvent(*NSEvent::mouseEvent({})), std::nullopt);
}

TEST_F(ShortcutTest, HasTheKeysOfTheKeyboard) {
  // The virtual key codes and Linux event codes as published; 0 for the key that never reaches the desktop.
  struct {
    std::vector<Key> keys;
    std::vector<std::int64_t> codes;
    std::vector<std::uint16_t> evdev;
  } const groups[] = {
      {{Key::a, Key::b, Key::c, Key::d, Key::e, Key::f, Key::g, Key::h, Key::i, Key::j, Key::k, Key::l,
        Key::m},
       {0, 11, 8, 2, 14, 3, 5, 4, 34, 38, 40, 37, 46},
       {30, 48, 46, 32, 18, 33, 34, 35, 23, 36, 37, 38, 50}},
      {{Key::n, Key::o, Key::p, Key::q, Key::r, Key::s, Key::t, Key::u, Key::v, Key::w, Key::x, Key::y,
        Key::z},
       {45, 31, 35, 12, 15, 1, 17, 32, 9, 13, 7, 16, 6},
       {49, 24, 25, 16, 19, 31, 20, 22, 47, 17, 45, 21, 44}},
      {{Key::zero, Key::one, Key::two, Key::three, Key::four, Key::five, Key::six, Key::seven, Key::eight,
        Key::nine},
       {29, 18, 19, 20, 21, 23, 22, 26, 28, 25},
       {11, 2, 3, 4, 5, 6, 7, 8, 9, 10}},
      {{Key::capsLock, Key::shift, Key::function, Key::control, Key::option, Key::command, Key::rightCommand,
        Key::rightOption, Key::rightControl, Key::rightShift},
       {57, 56, 63, 59, 58, 55, 54, 61, 62, 60},
       {58, 42, 0, 29, 56, 125, 126, 100, 97, 54}},
      {{Key::return_, Key::backslash, Key::backtick, Key::comma, Key::equal, Key::minus, Key::period,
        Key::quote, Key::semicolon, Key::slash, Key::space},
       {36, 42, 50, 43, 24, 27, 47, 39, 41, 44, 49},
       {28, 43, 41, 51, 13, 12, 52, 40, 39, 53, 57}},
      {{Key::tab, Key::leftBracket, Key::rightBracket, Key::pageUp, Key::pageDown, Key::home, Key::end,
        Key::upArrow, Key::rightArrow, Key::downArrow},
       {48, 33, 30, 116, 121, 115, 119, 126, 124, 125},
       {15, 26, 27, 104, 109, 102, 107, 103, 106, 108}},
      {{Key::leftArrow, Key::escape, Key::delete_, Key::deleteForward, Key::help, Key::mute, Key::volumeUp,
        Key::volumeDown},
       {123, 53, 51, 117, 114, 74, 72, 73},
       {105, 1, 14, 111, 110, 113, 115, 114}},
      {{Key::f1, Key::f2, Key::f3, Key::f4, Key::f5, Key::f6, Key::f7, Key::f8, Key::f9, Key::f10},
       {122, 120, 99, 118, 96, 97, 98, 100, 101, 109},
       {59, 60, 61, 62, 63, 64, 65, 66, 67, 68}},
      {{Key::f11, Key::f12, Key::f13, Key::f14, Key::f15, Key::f16, Key::f17, Key::f18, Key::f19, Key::f20},
       {103, 111, 105, 107, 113, 106, 64, 79, 80, 90},
       {87, 88, 183, 184, 185, 186, 187, 188, 189, 190}},
      {{Key::keypad0, Key::keypad1, Key::keypad2, Key::keypad3, Key::keypad4, Key::keypad5, Key::keypad6,
        Key::keypad7, Key::keypad8, Key::keypad9},
       {82, 83, 84, 85, 86, 87, 88, 89, 91, 92},
       {82, 79, 80, 81, 75, 76, 77, 71, 72, 73}},
      {{Key::keypadClear, Key::keypadDecimal, Key::keypadDivide, Key::keypadEnter, Key::keypadEquals,
        Key::keypadMinus, Key::keypadMultiply, Key::keypadPlus},
       {71, 65, 75, 76, 81, 78, 67, 69},
       {69, 83, 98, 96, 117, 74, 55, 78}}};
  std::size_t count = 0;
  for (const auto& [keys, codes, evdev] : groups) {
    for (std::size_t i = 0; i < keys.size(); ++i, ++count) {
      EXPECT_EQ(keys[i].rawValue, codes[i]) << i;
      EXPECT_EQ(evdevFromVirtualKeyCode(keys[i].rawValue).value_or(0), evdev[i]) << codes[i];
      if (evdev[i] == 0) continue;
      EXPECT_EQ(virtualKeyCodeFromEvdev(evdev[i]), codes[i]);
    }
  }
  EXPECT_EQ(count, 113U);
}

TEST_F(ShortcutTest, ReadsWhatIsStored) {
  const auto commandSpace = Shortcut(49, 256);
  const std::string huge(2U << 20U, ' ');
  const std::string deep = std::string(70, '[') + std::string(70, ']');
  struct {
    std::string text;
    std::optional<Shortcut> expected;
  } const rows[] = {
      {R"({"carbonKeyCode":49,"carbonModifiers":256})", commandSpace},
      {R"( {"carbonModifiers" : 256, "more": [1], "carbonKeyCode": 49} )", commandSpace},
      {R"({"carbonKeyCode":-9223372036854775808,"carbonModifiers":0})", Shortcut(INT64_MIN)},
      {R"({"carbonKeyCode":49})", std::nullopt},
      {R"({"carbonKeyCode":"49","carbonModifiers":256})", std::nullopt},
      {R"({"carbonKeyCode":49.5,"carbonModifiers":256})", std::nullopt},
      {R"({"carbonKeyCode":9223372036854775808,"carbonModifiers":0})", std::nullopt},
      {R"({"carbonKeyCode":null,"carbonModifiers":true})", std::nullopt},
      {R"([49,256])", std::nullopt},
      {"0", std::nullopt},
      {"", std::nullopt},
      {"\xff{}", std::nullopt},
      {R"({"carbonKeyCode":49,"carbonModifiers":256)" + huge + "}", std::nullopt},
  };
  for (const auto& row : rows) {
    UserDefaults::standard().setString(row.text, storageKey(kName));
    EXPECT_EQ(Shortcut::fromName(kName), row.expected) << row.text.substr(0, 60);
    EXPECT_TRUE(hasStoredValue(kName));
    EXPECT_EQ(UserDefaults::standard().stringForKey("KeyboardShortcuts_test"), row.text);
  }
  EXPECT_EQ(commandSpace.encode(), R"({"carbonKeyCode":49,"carbonModifiers":256})");
  const std::string start = R"({"carbonKeyCode":49,"carbonModifiers":256)";
  EXPECT_EQ(Shortcut::decode(start + R"(,"x":)" + deep + "}"), std::nullopt);
  std::string crowd;
  for (int i = 0; crowd.size() < 1'000'000; ++i) crowd += ",\"" + std::to_string(i) + "\":0";
  EXPECT_EQ(Shortcut::decode(start + crowd + "}"), commandSpace);
  const auto foreign = Shortcut::decode(R"({"carbonKeyCode":49,"carbonModifiers":1280})");
  EXPECT_EQ(foreign->carbonModifiers(), 1280);
  EXPECT_NE(foreign, commandSpace);
}

TEST_F(ShortcutTest, ShowsTheKey) {
  desktop.keys.layout = {{kVK_ANSI_A, "a"}, {kVK_ANSI_S, "ß"}, {kVK_ANSI_Equal, "^"}, {kVK_Space, "x"}};
  struct {
    Shortcut shortcut;
    std::string shown;
    std::string menu;
  } const rows[] = {
      {Shortcut(Key::a), "A", "a"},
      {Shortcut(Key::a, {kShift | kCommand}), "⇧⌘A", "a"},
      {Shortcut(Key::a, {0x1E0000}), "⌃⌥⇧⌘A", "a"},
      {Shortcut(Key::s), "SS", "ß"},
      {Shortcut(Key::equal), "^", "^"},
      {Shortcut(Key::q, {kCommand}), "⌘", ""},
      {Shortcut(Key::space, {kCommand}), "⌘⎵", " "},
      {Shortcut(Key::escape), "⎋", "⎋"},
      {Shortcut(Key::return_), "↩", "↩"},
      {Shortcut(Key::tab), "⇥", "⇥"},
      {Shortcut(Key::delete_), "⌫", "⌫"},
      {Shortcut(Key::deleteForward), "⌦", "⌦"},
      {Shortcut(Key::home), "↖", "↖"},
      {Shortcut(Key::end), "↘", "↘"},
      {Shortcut(Key::pageUp), "⇞", "⇞"},
      {Shortcut(Key::pageDown), "⇟", "⇟"},
      {Shortcut(Key::upArrow), "↑", "↑"},
      {Shortcut(Key::rightArrow), "→", "→"},
      {Shortcut(Key::downArrow), "↓", "↓"},
      {Shortcut(Key::leftArrow), "←", "←"},
      {Shortcut(Key::help), "?\u20DD", "?\u20DD"},
      {Shortcut(Key::f1), "F1", "\uF704"},
      {Shortcut(Key::f5, {kCommand}), "⌘F5", "\uF708"},
      {Shortcut(Key::f20), "F20", "\uF717"},
      {Shortcut(65536), "\uFFFD", ""},
      {Shortcut(-1), "\uFFFD", ""},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(row.shortcut.description(), row.shown);
    EXPECT_EQ(row.shortcut.keyEquivalentText(), row.menu) << row.shown;
  }
  desktop.keys.hasLayout = false;
  EXPECT_EQ(Shortcut(Key::a, {kCommand}).description(), "⌘\uFFFD");
  EXPECT_EQ(Shortcut(Key::a).keyEquivalentText(), "");
  EXPECT_EQ(Shortcut(Key::f1).keyEquivalentText(), "\uF704");
}

std::shared_ptr<NSMenuItem> addItem(NSMenu& menu, const std::string& key, std::uint64_t mask) {
  auto item = std::make_shared<NSMenuItem>("item", "", key);
  item->setKeyEquivalentModifierMask({mask});
  menu.addItem(item);
  return item;
}

TEST_F(ShortcutTest, FindsTheMenuItemThatHasIt) {
  desktop.keys.layout = {{kVK_ANSI_Q, "q"}, {kVK_ANSI_W, "w"}, {kVK_ANSI_E, "e\u0301"}};
  NSMenu menu;
  addItem(menu, "Q", kCommand);
  addItem(menu, "q", kCommand | NSEventModifierFlags::kFunction);
  addItem(menu, "\uF704", 0);
  const auto parent = addItem(menu, "", 0);
  const auto quit = addItem(menu, "q", kCommand);
  const auto shifted = addItem(menu, "q", kCommand | kShift);
  addItem(menu, "w", 0);
  auto inner = std::make_shared<NSMenu>();
  parent->setSubmenu(std::make_shared<NSMenu>());
  const auto deeper = addItem(*parent->submenu(), "\u00e9", kCommand);
  deeper->setSubmenu(inner);
  const auto nested = addItem(*inner, "w", 0);
  const auto escape = addItem(*inner, "⎋", 0);

  EXPECT_EQ(Shortcut(Key::q, {kCommand}).matchingMenuItem(menu), quit);
  EXPECT_EQ(Shortcut(Key::q, {kCommand | kShift}).matchingMenuItem(menu), shifted);
  EXPECT_EQ(Shortcut(Key::w).matchingMenuItem(menu), nested);
  EXPECT_EQ(Shortcut(Key::e, {kCommand}).matchingMenuItem(menu), deeper);
  EXPECT_EQ(Shortcut(Key::escape).matchingMenuItem(menu), escape);
  EXPECT_EQ(Shortcut(Key::f1).matchingMenuItem(menu), nullptr);
  desktop.keys.hasLayout = false;
  EXPECT_EQ(Shortcut(Key::q, {kCommand}).matchingMenuItem(menu), nullptr);
}

TEST_F(ShortcutTest, KnowsWhatTheDesktopTook) {
  EXPECT_FALSE(Shortcut(kVK_Space, cmdKey).isTakenBySystem());
  desktop.keys.symbolic = {{kVK_Return, cmdKey | 0x400}};
  EXPECT_FALSE(Shortcut(kVK_Space, cmdKey).isTakenBySystem());
  EXPECT_TRUE(Shortcut(kVK_Return, cmdKey).isTakenBySystem());
  desktop.keys.symbolic->push_back({kVK_Space, cmdKey});
  EXPECT_TRUE(Shortcut(kVK_Space, cmdKey).isTakenBySystem());
}

}  // namespace
}  // namespace vistrel::KeyboardShortcuts
