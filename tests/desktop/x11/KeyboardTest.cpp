#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <thread>

#include "KeyboardShortcuts/CarbonKeyboardShortcuts.h"
#include "linux/keyboard/SessionBus.h"
#include "tests/desktop/x11/ServerFixture.h"

namespace vistrel::x11 {
namespace {

using keyboard::SessionBus;
using KeyboardShortcuts::Shortcut;
using Combinations = std::vector<std::pair<std::int64_t, std::int64_t>>;

class KeyboardTest : public ServerTest {
 protected:
  KeyboardTest() { desktop.realKeyboard = &keyboard; }

  DesktopWithKeyboard desktop;
};

TEST_F(KeyboardTest, ShowsWhatTheLatinLayoutPrints) {
  struct {
    const char* layout;
    std::uint8_t group;
    std::vector<std::pair<std::uint16_t, const char*>> keys;
  } const rows[] = {
      {"us", 0, {{kVK_ANSI_A, "a"}, {kVK_ANSI_Y, "y"}, {kVK_ANSI_Keypad7, "7"}, {kVK_ANSI_KeypadEnter, ""}}},
      {"de", 0, {{kVK_ANSI_Y, "z"}, {kVK_ANSI_Minus, "ß"}, {kVK_ANSI_Grave, "^"}, {kVK_ANSI_Equal, "´"}}},
      {"fr",
       0,
       {{kVK_ANSI_A, "q"}, {kVK_ANSI_Semicolon, "m"}, {kVK_ANSI_1, "&"}, {kVK_ANSI_LeftBracket, "^"}}},
      {"us,ru", 1, {{kVK_ANSI_A, "a"}}},
      {"ru,de", 0, {{kVK_ANSI_Y, "z"}}},
      {"ru", 0, {{kVK_ANSI_A, "a"}, {kVK_ANSI_Y, "y"}, {kVK_Function, ""}}},
  };
  for (const auto& row : rows) {
    setLayout(row.layout);
    lock(0, row.group);
    for (const auto& [key, text] : row.keys)
      EXPECT_EQ(keyboard.displayCharacter(key), text) << row.layout << key;
    unlock();
  }
}

TEST_F(KeyboardTest, DisplaysTheRowsOfLettersAndTheSpecialKeys) {
  constexpr std::int64_t kLetters[] = {
      kVK_ANSI_Q, kVK_ANSI_W, kVK_ANSI_E, kVK_ANSI_R, kVK_ANSI_T, kVK_ANSI_Y,         kVK_ANSI_U,
      kVK_ANSI_I, kVK_ANSI_O, kVK_ANSI_P, kVK_ANSI_A, kVK_ANSI_S, kVK_ANSI_D,         kVK_ANSI_F,
      kVK_ANSI_G, kVK_ANSI_H, kVK_ANSI_J, kVK_ANSI_K, kVK_ANSI_L, kVK_ANSI_Semicolon, kVK_ANSI_Z,
      kVK_ANSI_X, kVK_ANSI_C, kVK_ANSI_V, kVK_ANSI_B, kVK_ANSI_N, kVK_ANSI_M};
  constexpr std::int64_t kSpecial[] = {36,  51,  117, 119, 53,  114, 115, 49, 48, 116, 121, 126,
                                       124, 125, 123, 122, 120, 99,  118, 96, 97, 98,  100, 101,
                                       109, 103, 111, 105, 107, 113, 106, 64, 79, 80,  90};
  const std::string special =
      " ↩ ⌫ ⌦ ↘ ⎋ ?\u20DD ↖ ⎵ ⇥ ⇞ ⇟ ↑ → ↓ ←"
      " F1 F2 F3 F4 F5 F6 F7 F8 F9 F10 F11 F12 F13 F14 F15 F16 F17 F18 F19 F20";
  for (const auto& [layout, letters] : {std::pair{"us", "QWERTYUIOPASDFGHJKL;ZXCVBNM"},
                                        {"de", "QWERTZUIOPASDFGHJKLÖYXCVBNM"},
                                        {"fr", "AZERTYUIOPQSDFGHJKLMWXCVBN,"}}) {
    setLayout(layout);
    std::string shown;
    for (const auto key : kLetters) shown += Shortcut(key).description();
    for (const auto key : kSpecial) shown.append(" ").append(Shortcut(key).description());
    EXPECT_EQ(shown, letters + special) << layout;
  }
}

const std::filesystem::path& settingsFolder() {
  static const std::filesystem::path folder = std::getenv("XDG_CONFIG_HOME");
  return folder;
}

void write(const std::filesystem::path& path, const std::string& text) {
  std::filesystem::create_directories(path.parent_path());
  std::ofstream(path) << text;
}

void writeGnomeSettings() {
  write(settingsFolder() / "glib-2.0/settings/keyfile", R"([org/gnome/desktop/wm/keybindings]
close=['<Nonsense>F9', '<Super>F9']
minimize=['']
begin-move=['disabled']
[org/gnome/settings-daemon/plugins/media-keys]
custom-keybindings=['nonsense', '//', '/org/own/first/', '/org/own/none/', '/org/own/second/']
[org/own/first]
binding='<Primary><Alt>k'
[org/own/second]
binding=''
[org/cinnamon/desktop/keybindings]
custom-list=['mine', 'no/path/']
[org/cinnamon/desktop/keybindings/custom-keybindings/mine]
binding=['<Super>F9']
)");
}

void writeXfceSettings() {
  const std::string set = "xfconf-query -c xfce4-keyboard-shortcuts -n -p '/commands/custom/";
  for (const auto* property : {"<Primary><Alt>Delete' -t string -s lock", "<Nonsense>F1' -t string -s lock",
                               "<Super>F9' -t string -s ''", "override' -t bool -s true"}) {
    ASSERT_EQ(std::system((set + property).c_str()), 0);
  }
}

TEST_F(KeyboardTest, KnowsTheShortcutsOfThePresentDesktop) {
  writeGnomeSettings();
  writeXfceSettings();
  write(settingsFolder() / "kglobalshortcutsrc",
        "[kwin]\nKill=Meta+Ctrl+D,none,Kill\nOff=none,Meta+F9,Off\n");
  setLayout("de");
  struct {
    const char* desktop;
    Combinations taken;
    Combinations free;
  } const rows[] = {
      {"XFCE",
       {{kVK_ForwardDelete, controlKey | optionKey}, {kVK_F4, optionKey}},
       {{kVK_F9, cmdKey}, {kVK_F2, optionKey}, {kVK_F1, 0}, {kVK_F4, optionKey | shiftKey}}},
      {"KDE", {{kVK_ANSI_D, controlKey | cmdKey}}, {{kVK_F9, cmdKey}, {kVK_F4, optionKey}}},
      {"X-Cinnamon",
       {{kVK_F4, optionKey}, {kVK_ANSI_T, controlKey | optionKey}, {kVK_F9, cmdKey}},
       {{kVK_F5, 0}}},
      {"MATE",
       {{kVK_F4, optionKey}, {kVK_F2, optionKey}, {kVK_ANSI_L, controlKey | optionKey}},
       {{kVK_F9, cmdKey}}},
      // Of the window manager, mutter, the shell, the media keys and the user's own.
      {"ubuntu:GNOME",
       {{kVK_F9, cmdKey},
        {kVK_Tab, optionKey},
        {kVK_ANSI_Grave, cmdKey},
        {kVK_LeftArrow, cmdKey},
        {kVK_F1, controlKey | optionKey},
        {kVK_ANSI_S, cmdKey},
        {kVK_ANSI_L, cmdKey},
        {kVK_VolumeUp, 0},
        {kVK_VolumeUp, controlKey},
        {kVK_ANSI_K, controlKey | optionKey}},
       {{kVK_F4, optionKey},
        {kVK_ANSI_H, cmdKey},
        {kVK_F7, optionKey},
        {kVK_F9, 0},
        {kVK_ANSI_J, controlKey | optionKey | shiftKey | cmdKey}}},
  };
  for (const auto& row : rows) {
    ::setenv("XDG_CURRENT_DESKTOP", row.desktop, 1);
    for (const auto& [code, modifiers] : row.taken) {
      EXPECT_TRUE(Shortcut(code, modifiers).isTakenBySystem()) << row.desktop << code;
    }
    for (const auto& [code, modifiers] : row.free) {
      EXPECT_FALSE(Shortcut(code, modifiers).isTakenBySystem()) << row.desktop << code;
    }
  }
}

/// Stands in for KDE's service: the window manager has two shortcuts, and the portal has bound one for
/// Vistrel.
class KdeService {
 public:
  KdeService() {
    process_ = g_subprocess_new(G_SUBPROCESS_FLAGS_NONE, nullptr, "/usr/bin/python3", "-m", "dbusmock", kName,
                                "/kglobalaccel", "org.kde.KGlobalAccel", nullptr);
    while (!bus_.hasOwner(kName)) std::this_thread::yield();
    mock("AddMethod", g_variant_new("(sssss)", "", "allComponents", "", "ao", "ret = ['/kwin', '/ours']"));
    addComponent("/kwin", "'kwin', 'KWin', 'default', '', [0x09000033, 0x11000016], [0x11000017]");
    addComponent("/ours", "'org.vistrel.Vistrel', '', 'default', '', [0x0C00005A], []");
  }
  KdeService(const KdeService&) = delete;
  KdeService& operator=(const KdeService&) = delete;
  ~KdeService() {
    g_subprocess_force_exit(process_);
    g_subprocess_wait(process_, nullptr, nullptr);
    g_object_unref(process_);
  }

 private:
  void mock(const char* method, GVariant* arguments) {
    EXPECT_TRUE(bus_.call(kName, "/kglobalaccel", "org.freedesktop.DBus.Mock", method, arguments)) << method;
  }
  void addComponent(const char* path, const std::string& action) {
    const std::string answer = "ret = [('name', 'title', " + action + ")]";
    const auto* object =
        "(%s, 'org.kde.kglobalaccel.Component', @a{sv} {}, "
        "[('allShortcutInfos', '', 'a(ssssssaiai)', %s)])";
    mock("AddObject", g_variant_new_parsed(object, path, answer.c_str()));
  }

  static constexpr const char* kName = "org.kde.kglobalaccel";
  SessionBus bus_;
  GSubprocess* process_;
};

TEST_F(KeyboardTest, AsksKdesServiceWhereItRuns) {
  ::setenv("XDG_CURRENT_DESKTOP", "KDE", 1);
  write(settingsFolder() / "kglobalshortcutsrc", "[kwin]\nKill=Meta+Ctrl+D,none,Kill\n");
  const Shortcut inFile(kVK_ANSI_D, controlKey | cmdKey);
  EXPECT_TRUE(inFile.isTakenBySystem());
  const KdeService service;
  for (const auto& taken : {Shortcut(kVK_F4, optionKey), Shortcut(kVK_PageUp, cmdKey)})
    EXPECT_TRUE(taken.isTakenBySystem()) << taken.description();
  for (const auto& free : {inFile, Shortcut(kVK_PageDown, cmdKey), Shortcut(kVK_ANSI_Z, kControlOption)})
    EXPECT_FALSE(free.isTakenBySystem()) << free.description();
}

TEST_F(KeyboardTest, FindsTheDesktopThatRuns) {
  ::unsetenv("XDG_CURRENT_DESKTOP");
  User manager;
  EXPECT_TRUE(manager.grabKey(kVK_F4, XCB_MOD_MASK_1));
  EXPECT_TRUE(manager.grabKey(kVK_Space, XCB_MOD_MASK_1 | XCB_MOD_MASK_CONTROL));
  EXPECT_TRUE(Shortcut(kVK_F4, optionKey).isTakenBySystem());
  EXPECT_TRUE(Shortcut(kVK_Space, kControlOption).isTakenBySystem());
  for (const auto& free : {Shortcut(kVK_F5, optionKey), Shortcut(kVK_F4), Shortcut(kVK_F12, cmdKey)}) {
    EXPECT_FALSE(free.isTakenBySystem()) << free.description();
  }
  EXPECT_TRUE(manager.grabKey(kVK_F5, XCB_MOD_MASK_1)) << "what was tried is given back";
  const SessionBus bus;
  std::ignore = bus.call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                         "RequestName", g_variant_new("(su)", "org.kde.kglobalaccel", 0));
  const auto file = settingsFolder() / "kglobalshortcutsrc";
  setLayout("us");
  write(file, "[kwin]\nKill=Meta+Ctrl+D,none,Kill\nLess=Meta+<,none,Less\n");
  for (const auto& shortcut : {Shortcut(kVK_ANSI_D, controlKey | cmdKey), Shortcut(kVK_ISO_Section, cmdKey),
                               Shortcut(kVK_ANSI_Comma, cmdKey | shiftKey)}) {
    EXPECT_TRUE(shortcut.isTakenBySystem()) << shortcut.description();
  }
  EXPECT_FALSE(Shortcut(kVK_F4, optionKey).isTakenBySystem()) << "the desktop knows better";
  std::filesystem::remove(file);
  EXPECT_TRUE(Shortcut(kVK_F4, optionKey).isTakenBySystem());
  ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
  EXPECT_TRUE(Shortcut(kVK_F4, optionKey).isTakenBySystem());
}

}  // namespace
}  // namespace vistrel::x11
