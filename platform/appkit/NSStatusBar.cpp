#include "appkit/NSStatusBar.h"

#include <cmath>
#include <utility>

#include "appkit/NSApplication.h"
#include "appkit/NSMenu.h"
#include "appkit/NSStatusItem.h"
#include "backend/Backend.h"
#include "foundation/ProcessState.h"

namespace vistrel {

namespace {

// How far a pointer strays between the press and the release of one click, in points.
constexpr double kClickSlop = 6;

bool isOnIcon(Point location) {
  const auto icon = backend::current().statusArea().iconFrame();
  return icon && icon->inset(-kClickSlop, -kClickSlop).contains(location);
}

std::shared_ptr<NSEvent> pressOf(backend::PointerButton button, std::uint64_t modifiers, Point location) {
  const bool isRight = button == backend::PointerButton::Right;
  return NSEvent::mouseEvent({.type = isRight ? NSEventType::RightMouseDown : NSEventType::LeftMouseDown,
                              .location = location,
                              .modifierFlags = {modifiers}});
}

}  // namespace

// Remembers the press that closed the popover or the menu until the click of that press has come, or another
// press.
class NSStatusBar::PressWatch final : public backend::OutsidePressClient {
 public:
  PressWatch(NSStatusBar& bar, Point location)
      : bar_(bar), location_(location), wasOnIcon_(isOnIcon(location)) {
    backend::current().windows().setOutsidePressClient(this);
  }
  PressWatch(const PressWatch&) = delete;
  PressWatch& operator=(const PressWatch&) = delete;
  ~PressWatch() override { backend::current().windows().setOutsidePressClient(nullptr); }
  void pressBegan() override { bar_.closingPress_.reset(); }
  void pressedOutside(Point /*location*/, Press /*press*/) override {}

  /// Hosts tell of a click at its release, and not where it was; the pointer may be anywhere by then. Where
  /// the icon is may not be known.
  [[nodiscard]] bool isOfClickAt(Point pointer) const {
    return wasOnIcon_ || std::hypot(pointer.x - location_.x, pointer.y - location_.y) <= kClickSlop;
  }

 private:
  NSStatusBar& bar_;
  Point location_;
  bool wasOnIcon_;
};

NSStatusBar::NSStatusBar() = default;

NSStatusBar& NSStatusBar::system() { return ProcessState<NSStatusBar>::shared(); }

void NSStatusBar::reset() {
  item_ = nullptr;
  shownMenu_.reset();
  closingPress_.reset();
  isHostOpening_ = false;
}

std::shared_ptr<NSStatusItem> NSStatusBar::statusItemWithLength(double /*length*/) {
  backend::current().statusArea().setClient(this);
  auto item = std::make_shared<NSStatusItem>(*this);
  item_ = item.get();
  return item;
}

void NSStatusBar::itemDidChange(const NSStatusItem& item) {
  const auto image = item.button()->image();
  if (isPresent(item) && image) backend::current().statusArea().setIcon(image->path());
}

// The newest item is the one on screen: an older one that ends after it was made takes nothing away.
void NSStatusBar::itemWillEnd(const NSStatusItem& item) {
  if (!isPresent(item)) return;
  item_ = nullptr;
  // The bar outlives the backend, which both of these need for their end.
  shownMenu_.reset();
  closingPress_.reset();
  backend::current().statusArea().hideIcon();
}

void NSStatusBar::setHighlighted(const NSStatusItem& item, bool isHighlighted) {
  if (isPresent(item)) backend::current().statusArea().setHighlighted(isHighlighted);
}

void NSStatusBar::setToolTip(const NSStatusItem& item, const std::string& text) {
  if (isPresent(item)) backend::current().statusArea().setToolTip(text);
}

void NSStatusBar::mirrorMenu(const NSStatusItem& item, std::shared_ptr<NSMenu> menu) {
  if (isPresent(item)) backend::current().statusArea().mirrorMenu(std::move(menu));
}

void NSStatusBar::openMenu(const NSStatusItem& item) {
  if (!isPresent(item)) return;
  shownMenu_ = item.menu();
  isShownByHost_ = isHostOpening_;
  if (!isHostOpening_) backend::current().statusArea().popUpMenu(shownMenu_);
}

void NSStatusBar::endShowing() {
  const auto menu = std::exchange(shownMenu_, nullptr);
  if (!menu) return;
  backend::current().statusArea().dismissMenu();
  if (menu->delegate()) menu->delegate()->menuDidClose(*menu);
}

// Where the host tells of a click as the button goes down, the click was told before this.
void NSStatusBar::closedByPress(Point location) {
  closingPress_.reset();
  if (!backend::current().statusArea().tellsOfReleases()) return;
  closingPress_ = std::make_unique<PressWatch>(*this, location);
}

void NSStatusBar::popoverWillOpen() { closingPress_.reset(); }

void NSStatusBar::statusIconPressed(backend::PointerButton button, std::uint64_t modifiers, Point location) {
  endShowing();
  const bool belongsToClosingPress = closingPress_ && closingPress_->isOfClickAt(location);
  closingPress_.reset();
  if (button == backend::PointerButton::Middle) return;
  const auto press = pressOf(button, modifiers, location);
  if (!belongsToClosingPress || press->asksForMenu()) send(press);
}

void NSStatusBar::statusMenuWillOpen() {
  endShowing();
  closingPress_.reset();
  isHostOpening_ = true;
  send(pressOf(backend::PointerButton::Right, 0, backend::current().session().pointerLocation()));
  isHostOpening_ = false;
}

// A menu that the program draws may have closed by a press on the icon; after any other end, the press of the
// next click makes this one forgotten.
void NSStatusBar::statusMenuDidClose() {
  const bool wasOurs = shownMenu_ && !isShownByHost_;
  endShowing();
  if (wasOurs) closedByPress(backend::current().session().pointerLocation());
}

void NSStatusBar::statusMenuItemChosen(std::shared_ptr<NSMenuItem> item) {
  endShowing();
  // From the button, so that the action reaches the delegate whichever window has the keyboard.
  const auto button = item_ ? item_->button() : nullptr;
  NSMenu::performActionForItem(item, button.get());
}

void NSStatusBar::send(const std::shared_ptr<NSEvent>& press) {
  if (!item_) return;
  const auto button = item_->button();
  if ((button->actionMask() & maskOf(press->type())) == 0) return;
  NSApplication::shared().withCurrentEvent(press, [&] { button->sendAction(); });
}

}  // namespace vistrel
