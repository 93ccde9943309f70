#include <gtest/gtest.h>

#include <functional>

#include "app/PreferenceKeys.h"
#include "appkit/NSWindow.h"
#include "base/KeyCodes.h"
#include "tests/unit/app/Program.h"

namespace vistrel {
namespace {

using Type = NSEventType;
constexpr std::uint64_t kControl = NSEventModifierFlags::kControl;
constexpr Point kMiddle{213, 120};
constexpr Point kLowerLeft{0, 240};

/// The mirror of a showing, and a hand at it.
struct Hand : test::Program {
  Hand() {
    launchWith({"A"});
    desktop.simulatedSession.pointer = {0, 799};
    desktop.clickIcon();
  }
  bool send(const std::shared_ptr<NSEvent>& event) const {
    return mirror().view().window()->handleEvent(event);
  }
  void wheel(double steps, Point at) const {
    send(
        NSEvent::mouseEvent({.type = Type::ScrollWheel, .location = at, .scrollingDeltaY = steps}, window()));
  }
  void drag(Point from, Point to) const {
    send(NSEvent::mouseEvent({.type = Type::RightMouseDown, .location = from}, window()));
    send(NSEvent::mouseEvent({.type = Type::RightMouseDragged, .location = to}, window()));
    send(NSEvent::mouseEvent({.type = Type::RightMouseUp, .location = to}, window()));
  }
  bool key(std::uint16_t code, const char* text, std::uint64_t flags = 0, Type type = Type::KeyDown) const {
    return send(NSEvent::keyEvent({type, {flags}, code, false, text}, window()));
  }
  [[nodiscard]] NSWindow* window() const { return mirror().view().window(); }
  [[nodiscard]] bool isMirrored() const { return mirror().previewLayer()->isMirrored(); }
};

TEST(PictureGestures, MagnifyAndMoveThePartThatIsSeen) {
  struct Row {
    const char* description;
    std::function<void(Hand&)> act;
    Rect part;  // of the picture as the camera sends it
  };
  const Rect whole{0, 0, 1, 1};
  const Rect middle{.25, .25, .5, .5};
  const auto twice = [](const Hand& h) { h.wheel(4, kMiddle); };
  const Row rows[] = {
      {"four steps", twice, middle},
      {"no more than four times", [](Hand& h) { h.wheel(40, kMiddle); }, {.375, .375, .25, .25}},
      {"around the pointer", [](Hand& h) { h.wheel(4, kLowerLeft); }, {.5, .5, .5, .5}},
      {"and back", [&](Hand& h) { twice(h), h.wheel(-9, kLowerLeft); }, whole},
      {"a pinch",
       [](Hand& h) {
         h.send(NSEvent::mouseEvent({.type = Type::Magnify, .location = kMiddle, .magnification = 1},
                                    h.window()));
       },
       middle},
      {"the picture goes with the pointer",
       [&](Hand& h) { twice(h), h.drag({0, 0}, {42.6, -24}); },
       {.3, .3, .5, .5}},
      {"to the edge", [&](Hand& h) { twice(h), h.drag({0, 0}, {999, 999}); }, {.5, 0, .5, .5}},
      {"a move whose press went to a menu",
       [&](Hand& h) {
         twice(h), h.drag({0, 0}, {0, 0});
         h.send(NSEvent::mouseEvent({.type = Type::RightMouseDragged, .location = {99, 99}}, h.window()));
       },
       middle},
      {"the keys", [](Hand& h) { h.key(24, "=", kControl), h.key(24, "+", kControl); }, middle},
      {"a layout without Latin letters",
       [](Hand& h) { h.wheel(4, kMiddle), h.key(27, "\u00df", kControl); },
       {.1464, .1464, .7071, .7071}},
      {"the arrows", [&](Hand& h) { twice(h), h.key(kVK_LeftArrow, "", kControl); }, {.3125, .25, .5, .5}},
      {"zero", [&](Hand& h) { twice(h), h.key(kVK_ANSI_0, "0", kControl); }, whole},
      {"without Control", [](Hand& h) { h.key(kVK_ANSI_Equal, "+"); }, whole},
      {"the next showing", [&](Hand& h) { twice(h), h.desktop.clickIcon(), h.desktop.clickIcon(); }, whole},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.description);
    Hand hand;
    row.act(hand);
    const Rect part = hand.mirror().previewLayer()->contentsRect();
    EXPECT_NEAR(part.x, row.part.x, .001);
    EXPECT_NEAR(part.y, row.part.y, .001);
    EXPECT_NEAR(part.width, row.part.width, .001);
    EXPECT_NEAR(part.height, row.part.height, .001);
  }
}

TEST(PictureGestures, ShowThePictureAsOthersSeeIt) {
  for (const bool hasReader : {false, true}) {
    Hand hand;
    hand.desktop.simulatedSession.hasScreenReader = hasReader;
    for (const bool isOtherPress : {false, true}) {
      EXPECT_TRUE(hand.key(kVK_ANSI_M, "m"));
      EXPECT_EQ(hand.isMirrored(), hasReader && isOtherPress);
      hand.key(kVK_ANSI_M, "m", 0, Type::KeyUp);
      EXPECT_EQ(hand.isMirrored(), !hasReader || isOtherPress);
    }
    EXPECT_FALSE(hand.key(kVK_ANSI_M, "m", kControl));
    for (const bool isMenu : {false, true}) {
      hand.key(kVK_ANSI_M, "m");
      EXPECT_EQ(hand.isMirrored(), hasReader && isMenu);
      isMenu ? hand.mirror().availableCamerasPopupButton().performClick(nullptr)
             : hand.window()->didLoseFocus();
      EXPECT_EQ(hand.isMirrored(), !hasReader || isMenu);
    }
    hand.desktop.clickIcon();
    hand.desktop.clickIcon();
    EXPECT_TRUE(hand.isMirrored());
  }
}

}  // namespace
}  // namespace vistrel
