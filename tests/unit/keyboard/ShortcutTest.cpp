#include "KeyboardShortcuts/Shortcut.h"

#include <gtest/gtest.h>

#include "KeyboardShortcuts/ModifierFlags.h"
#include "KeyboardShortcuts/Storage.h"
#include "appkit/NSMenu.h"
#include "tests/unit/keyboard/FakeDesktop.h"

namespace vistrel::KeyboardShortcuts {
namespace {

constexpr std::uint64_t kCommand = NSEventModifierFlags::kCommand;
constexpr std::uint64_t kShift = NSEventModifierFlags::kShift;
const Name kName("test");

class ShortcutTest : public ::testing::Test {
 protected:
  testing::FakeDesktop desktop;
};

TEST_F(ShortcutTest, keepsTheFourModifiersAlone) {
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

TEST_F(ShortcutTest, comesFromKeyEventsAlone) {
  NSEvent::Key key{NSEventType::KeyDown, {kCommand | NSEventModifierFlags::kCapsLock}, 49};
  EXPECT_EQ(Shortcut::fromEvent(*NSEvent::keyEvent(key)), Shortcut(49, 0x100));
  key.type = NSEventType::KeyUp;
  EXPECT_EQ(Shortcut::fromEvent(*NSEvent::keyEvent(key)), Shortcut(49, 0x100));
  key.type = NSEventType::FlagsChanged;
  EXPECT_EQ(Shortcut::fromEvent(*NSEvent::keyEvent(key)), std::nullopt);
  EXPECT_EQ(Shortcut::fromEvent(*NSEvent::mouseEvent({})), std::nullopt);
}

TEST_F(ShortcutTest, hasTheKeysOfTheKeyboard) {
  EXPECT_EQ(Key::a.rawValue, 0);
  EXPECT_EQ(Key::five.rawValue, 23);
  EXPECT_EQ(Key::rightCommand.rawValue, 54);
  EXPECT_EQ(Key::delete_.rawValue, 51);
  EXPECT_EQ(Key::backtick.rawValue, 50);
  EXPECT_EQ(Key::f20.rawValue, 90);
  EXPECT_EQ(Key::keypad9.rawValue, 92);
  int keys = 0;
  for (std::uint16_t code = 0; code < 128; ++code) {
    const auto evdev = evdevFromVirtualKeyCode(code);
    if (!evdev) continue;
    ++keys;
    EXPECT_EQ(virtualKeyCodeFromEvdev(*evdev), code);
  }
  EXPECT_EQ(keys,
            113);  // the named keys less Function, which never reaches the desktop, and the key beside Z
  EXPECT_EQ(evdevFromVirtualKeyCode(kVK_Function), std::nullopt);
}

TEST_F(ShortcutTest, readsWhatIsStored) {
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

TEST_F(ShortcutTest, showsTheKey) {
  desktop.characters = {{kVK_ANSI_A, "a"}, {kVK_ANSI_S, "ß"}, {kVK_ANSI_Equal, "^"}, {kVK_Space, "x"}};
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
  desktop.hasKeymap = false;
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

TEST_F(ShortcutTest, findsTheMenuItemThatHasIt) {
  desktop.characters = {{kVK_ANSI_Q, "q"}, {kVK_ANSI_W, "w"}, {kVK_ANSI_E, "e\u0301"}};
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
  desktop.hasKeymap = false;
  EXPECT_EQ(Shortcut(Key::q, {kCommand}).matchingMenuItem(menu), nullptr);
}

TEST_F(ShortcutTest, knowsWhatTheDesktopTook) {
  const auto entry = [](std::any enabled, std::any code, std::any modifiers) {
    return std::map<std::string, std::any>{{"kHISymbolicHotKeyEnabled", std::move(enabled)},
                                           {"kHISymbolicHotKeyCode", std::move(code)},
                                           {"kHISymbolicHotKeyModifiers", std::move(modifiers)}};
  };
  using Integer = std::int64_t;
  EXPECT_FALSE(Shortcut(49, 0x100).isTakenBySystem());
  desktop.desktopShortcuts = {{entry(false, Integer{49}, Integer{0x100}),
                               entry(1, Integer{49}, Integer{0x100}),
                               entry(true, std::string("49"), Integer{0x100}),
                               entry(true, Integer{49}, {}),
                               {},
                               entry(true, Integer{36}, Integer{0x500})}};
  EXPECT_FALSE(Shortcut(49, 0x100).isTakenBySystem());
  EXPECT_TRUE(Shortcut(36, 0x100).isTakenBySystem());
  desktop.desktopShortcuts->push_back(entry(true, Integer{49}, Integer{0x100}));
  EXPECT_TRUE(Shortcut(49, 0x100).isTakenBySystem());
}

}  // namespace
}  // namespace vistrel::KeyboardShortcuts
