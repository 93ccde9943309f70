#include "KeyboardShortcuts/RecorderCocoa.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "KeyboardShortcuts/KeyboardShortcuts.h"
#include "appkit/NSAlert.h"
#include "appkit/NSApplication.h"
#include "appkit/NSMenu.h"
#include "appkit/NSWindow.h"
#include "base/KeyCodes.h"
#include "foundation/UserDefaults.h"
#include "simulated/SimulatedDesktop.h"

namespace vistrel::KeyboardShortcuts {
namespace {

using Flags = NSEventModifierFlags;

constexpr const char* kIdle = "Record Shortcut";
constexpr const char* kListening = "Press Shortcut";

class RecorderTest : public ::testing::Test {
 protected:
  RecorderTest() {
    desktop.keys.layout[kVK_ANSI_A] = "a";
    window->setContentView(content);
    recorder->setLayout(layoutAt({100, 50, 130, 22}));
    content->addSubview(recorder);
    window->makeKeyAndOrderFront(nullptr);
    window->pointerDidEnter();
  }

  static ViewLayout layoutAt(const Rect& frame) {
    ViewLayout layout;
    layout.left = frame.x;
    layout.top = frame.y;
    layout.width = frame.width;
    layout.height = frame.height;
    return layout;
  }
  void record() { window->makeFirstResponder(recorder.get()); }
  bool press(std::uint16_t keyCode, std::uint64_t flags = 0) {
    return window->handleEvent(
        NSEvent::keyEvent({.modifierFlags = {flags}, .keyCode = keyCode}, window.get()));
  }
  bool releaseAt(Point place) {
    return window->handleEvent(
        NSEvent::mouseEvent({.type = NSEventType::LeftMouseUp, .location = place}, window.get()));
  }
  // All that must agree about whether it records.
  void expectRecording(bool isRecording, const std::string& what) {
    EXPECT_EQ(recorder->isRecording(), isRecording) << what;
    EXPECT_EQ(isPaused(), isRecording) << what;
    EXPECT_EQ(desktop.keys.isCaptured, isRecording) << what;
    EXPECT_EQ(recorder->placeholderString(), isRecording ? kListening : kIdle) << what;
    EXPECT_EQ(window->firstResponder() == recorder.get(), isRecording) << what;
    EXPECT_EQ(recorder->showsCancelButton(), !recorder->stringValue().empty()) << what;
  }
  void takeBySystem(const Shortcut& shortcut) {
    desktop.keys.symbolic = {{static_cast<std::uint32_t>(shortcut.carbonKeyCode()),
                              static_cast<std::uint32_t>(shortcut.carbonModifiers())}};
  }

  simulated::SimulatedDesktop desktop{VISTREL_RESOURCES};
  Name name{"unitTest"};
  std::vector<std::optional<Shortcut>> changes;
  std::shared_ptr<NSView> content = std::make_shared<NSView>();
  std::shared_ptr<NSWindow> window =
      NSWindow::create({0, 0, 480, 360}, 3, NSBackingStoreType::Buffered, false);
  std::shared_ptr<RecorderCocoa> recorder =
      std::make_shared<RecorderCocoa>(name, [this](const std::optional<Shortcut>& shortcut) {
        EXPECT_EQ(getShortcut(name), shortcut) << "told after the store";
        changes.push_back(shortcut);
      });
  const Shortcut commandA{kVK_ANSI_A, cmdKey};
};

TEST_F(RecorderTest, LooksLikeAFieldThatOnlyAClickReaches) {
  EXPECT_FALSE(recorder->canBecomeKeyView());
  EXPECT_EQ(recorder->intrinsicContentSize().width, 130);
  EXPECT_EQ(dynamic_cast<NSSearchFieldCell&>(*recorder->cell()).searchButtonCell(), nullptr);
  record();
  EXPECT_FALSE(recorder->currentEditor()->isCaretVisible());
}

TEST_F(RecorderTest, DecidesAboutEachKey) {
  struct Case {
    const char* what;
    std::uint64_t flags;
    const char* textAfter;
    std::uint16_t keyCode;
    bool isSwallowed;
    bool staysRecording;
    int beeps;
  };
  const Case cases[] = {
      {"a letter alone", 0, "⌘A", kVK_ANSI_A, true, true, 1},
      {"a letter with lock, keypad and function flags",
       Flags::kCapsLock | Flags::kNumericPad | Flags::kFunction, "⌘A", kVK_ANSI_A, true, true, 1},
      {"a function key alone", Flags::kFunction, "F5", kVK_F5, true, false, 0},
      {"a function key that few keyboards have", 0, "F20", kVK_F20, true, false, 0},
      {"a letter with a modifier", Flags::kControl | Flags::kCapsLock, "⌃A", kVK_ANSI_A, true, false, 0},
      {"three keys", Flags::kControl | Flags::kOption, "⌃⌥⎵", kVK_Space, true, false, 0},
      {"Tab alone", 0, "⌘A", kVK_Tab, false, false, 0},
      {"Shift and Tab", Flags::kShift, "⇧⇥", kVK_Tab, true, false, 0},
      {"Escape alone", 0, "⌘A", kVK_Escape, true, false, 0},
      {"Escape with a modifier", Flags::kCommand, "⌘⎋", kVK_Escape, true, false, 0},
      {"Backspace", 0, "", kVK_Delete, true, true, 0},
      {"Delete", Flags::kFunction, "", kVK_ForwardDelete, true, true, 0},
      {"Delete with a modifier", Flags::kOption, "⌥⌦", kVK_ForwardDelete, true, false, 0},
      {"a key without a place", 0, "⌘A", NSEvent::kNoKeyCode, true, true, 1},
      {"the same with a modifier", Flags::kControl, "⌘A", NSEvent::kNoKeyCode, true, true, 1},
  };
  for (const auto& c : cases) {
    setShortcut(commandA, name);
    desktop.keys.beeps = 0;
    record();
    expectRecording(true, c.what);
    EXPECT_EQ(press(c.keyCode, c.flags), c.isSwallowed) << c.what;
    expectRecording(c.staysRecording, c.what);
    EXPECT_EQ(desktop.keys.beeps, c.beeps) << c.what;
    EXPECT_EQ(recorder->stringValue(), c.textAfter) << c.what;
    const auto stored = getShortcut(name);
    EXPECT_EQ(stored ? stored->description() : "", c.textAfter) << c.what;
    window->makeFirstResponder(nullptr);
  }
}

TEST_F(RecorderTest, TellsOfEachRecordingAndEachClear) {
  record();
  press(kVK_ForwardDelete);
  EXPECT_TRUE(changes.empty()) << "nothing is shown, so there is nothing to clear";
  press(kVK_ANSI_A, Flags::kCommand);
  recorder->userChangedText("");
  expectRecording(true, "the clear button was clicked while idle");
  EXPECT_EQ(changes, (std::vector<std::optional<Shortcut>>{commandA, std::nullopt}));
  EXPECT_EQ(UserDefaults::standard().objectForKey("KeyboardShortcuts_unitTest"), UserDefaults::Value(false));
  EXPECT_TRUE(desktop.simulatedHotKeys.grabs.empty());
}

TEST_F(RecorderTest, EndsAtAReleaseOutsideItsMargin) {
  struct Case {
    Point place;
    bool staysRecording;
  };
  for (const auto& [place, stays] : {Case{{98, 60}, true}, Case{{96, 60}, false}, Case{{232, 74}, true},
                                     Case{{150, 76}, false}, Case{{165, 61}, true}}) {
    record();
    EXPECT_TRUE(releaseAt(place)) << "the release is swallowed";
    expectRecording(stays, std::to_string(place.x) + ", " + std::to_string(place.y));
  }
  record();
  const auto other = NSWindow::create({600, 0, 480, 360}, 3, NSBackingStoreType::Buffered, false);
  other->handleEvent(
      NSEvent::mouseEvent({.type = NSEventType::RightMouseUp, .location = {165, 61}}, other.get()));
  expectRecording(false, "the same place in another window");
}

TEST_F(RecorderTest, RefusesWhatTheMenuOrTheSystemUses) {
  auto menu = std::make_shared<NSMenu>();
  auto submenu = std::make_shared<NSMenu>();
  auto item = std::make_shared<NSMenuItem>("Find 100%…", "find:", "a");
  item->setKeyEquivalentModifierMask({Flags::kCommand});
  submenu->addItem(item);
  menu->addItem(std::make_shared<NSMenuItem>("Edit"));
  menu->itemArray().front()->setSubmenu(submenu);
  NSApplication::shared().setMainMenu(menu);
  takeBySystem(commandA);

  std::vector<std::string> titles;
  const auto answer = [&] {
    const auto alert = desktop.windowSystem.alerts.back();
    titles.push_back(alert->messageText());
    EXPECT_EQ(alert->informativeText().empty(), titles.size() == 1) << alert->informativeText();
    EXPECT_EQ(window->attachedSheet(), alert);
    EXPECT_FALSE(isPaused()) << "recording has ended while the alert is up";
    window->closeRequested();
    EXPECT_TRUE(window->isVisible()) << "the window waits for its sheet";
    alert->respond(NSModalResponse::FirstButton);
  };
  record();
  desktop.loop.onceModal(answer);
  EXPECT_TRUE(press(kVK_ANSI_A, Flags::kCommand));
  expectRecording(true, "after the menu's alert");
  NSApplication::shared().setMainMenu(nullptr);
  desktop.loop.onceModal(answer);
  press(kVK_ANSI_A, Flags::kCommand);
  expectRecording(true, "after the system's alert");
  ASSERT_EQ(titles.size(), 2U);
  EXPECT_NE(titles[0].find("“Find 100%…”"), std::string::npos) << titles[0];
  EXPECT_NE(titles[1].find("desktop"), std::string::npos) << titles[1];
  EXPECT_EQ(getShortcut(name), std::nullopt);
  EXPECT_TRUE(changes.empty());
}

TEST_F(RecorderTest, WaitsForItsOwnAlert) {
  const auto second = std::make_shared<RecorderCocoa>(name);
  const auto other = NSWindow::create({600, 0, 480, 360}, 3, NSBackingStoreType::Buffered, false);
  other->setContentView(std::make_shared<NSView>());
  other->contentView()->addSubview(second);
  other->makeKeyAndOrderFront(nullptr);
  takeBySystem(commandA);
  auto& alerts = desktop.windowSystem.alerts;
  desktop.loop.onceModal([&] {
    other->makeFirstResponder(second.get());
    other->handleEvent(
        NSEvent::keyEvent({.modifierFlags = {Flags::kCommand}, .keyCode = kVK_ANSI_A}, other.get()));
    EXPECT_TRUE(second->isRecording());
    EXPECT_FALSE(recorder->isRecording()) << "its loop is around this one";
  });
  desktop.loop.onceModal([&] { alerts[0]->respond(NSModalResponse::FirstButton); });
  desktop.loop.onceModal([&] {
    EXPECT_FALSE(second->isRecording()) << "its alert is still up";
    EXPECT_EQ(other->attachedSheet(), alerts[1]);
    alerts[1]->respond(NSModalResponse::FirstButton);
  });
  record();
  press(kVK_ANSI_A, Flags::kCommand);
  EXPECT_TRUE(recorder->isRecording());
  EXPECT_FALSE(NSApplication::shared().isModal());
}

TEST_F(RecorderTest, LeavesNothingSwitchedOnHoweverItEnds) {
  record();
  window->close();
  expectRecording(false, "the window closed under it");
  window->makeKeyAndOrderFront(nullptr);

  takeBySystem(commandA);
  record();
  desktop.loop.onceModal([&] { window->close(); });
  press(kVK_ANSI_A, Flags::kCommand);
  expectRecording(false, "the window closed under its alert");
  window->makeKeyAndOrderFront(nullptr);

  record();
  window->didLoseFocus();
  EXPECT_FALSE(desktop.keys.isCaptured) << "another window took the focus by force";
  window->didGainFocus();
  expectRecording(true, "the focus came back");
  recorder->removeFromSuperview();
  EXPECT_FALSE(isPaused());
  EXPECT_FALSE(desktop.keys.isCaptured);

  content->addSubview(recorder);
  desktop.keys.refusesCapture = true;
  record();
  EXPECT_TRUE(recorder->isRecording()) << "a refused capture costs no more than itself";
  desktop.keys.refusesCapture = false;
  window->pointerDidLeave();
  EXPECT_FALSE(desktop.keys.isCaptured) << "another program's menu may want the keyboard";
  window->pointerDidEnter();
  expectRecording(true, "the pointer came back");
  recorder->removeFromSuperview();
  recorder->becomeFirstResponder();
  recorder.reset();
  EXPECT_FALSE(isPaused()) << "the control died while it recorded without a window";
}

TEST_F(RecorderTest, ShowsTheShortcutOfItsName) {
  setShortcut(commandA, Name("another"));
  EXPECT_EQ(recorder->stringValue(), "");
  setShortcut(commandA, name);
  EXPECT_EQ(recorder->stringValue(), "⌘A");
  record();
  recorder->setShortcutName(Name(name.rawValue(), Shortcut(kVK_F5)));
  desktop.loop.settle();
  expectRecording(true, "a name of equal raw value");
  recorder->setShortcutName(Name("another"));
  EXPECT_EQ(recorder->stringValue(), "⌘A");
  EXPECT_TRUE(recorder->showsCancelButton());
  recorder->setShortcutName(Name("unknown"));
  EXPECT_EQ(recorder->stringValue(), "");
  expectRecording(true, "the focus goes in a later turn");
  desktop.loop.settle();
  expectRecording(false, "a name of another raw value");
}

}  // namespace
}  // namespace vistrel::KeyboardShortcuts
