#include "camera/PictureGestures.h"

#include <array>
#include <cmath>
#include <utility>

#include "appkit/NSEvent.h"
#include "appkit/NSPopUpButton.h"
#include "appkit/NSWindow.h"
#include "appkit/NSWorkspace.h"
#include "base/KeyCodes.h"

namespace vistrel {

namespace {

// Four steps of a wheel, or two of the keys, show half of the picture's width.
const double kWheelStep = std::pow(2, 0.25);
const double kKeyStep = std::sqrt(2);
// Of the glass, for each press of an arrow key.
constexpr double kPanStep = 0.125;

struct Direction {
  std::uint16_t key;
  double across;
  double down;
};
constexpr std::array<Direction, 4> kDirections = {
    {{kVK_LeftArrow, -1, 0}, {kVK_RightArrow, 1, 0}, {kVK_UpArrow, 0, -1}, {kVK_DownArrow, 0, 1}}};

// Those of Control, Option and Command that are held.
std::uint64_t commandKeysOf(const NSEvent& event) {
  using Flags = NSEventModifierFlags;
  return event.modifierFlags().rawValue & (Flags::kControl | Flags::kOption | Flags::kCommand);
}

}  // namespace

void PictureGestures::setLayer(std::shared_ptr<AVCaptureVideoPreviewLayer> layer) {
  layer_ = std::move(layer);
  draggedTo_.reset();
  wasMirrored_.reset();
  heldKey_.reset();
  keyboardObservers_ = {};
  if (!layer_) return;
  // The release of a held key goes to whoever has the keyboard then.
  auto& center = NotificationCenter::defaultCenter();
  const auto keyboardGoes = [this](auto&) {
    if (heldKey_) showAsBefore();
  };
  keyboardObservers_ = {center.addObserver(NSWindowDidResignKeyNotification, nullptr, keyboardGoes),
                        center.addObserver(NSPopUpButtonWillPopUpNotification, nullptr, keyboardGoes)};
}

Point PictureGestures::inLayer(Point inWindow) const {
  return layer_->owner() ? layer_->owner()->convertPointFromWindow(inWindow) : inWindow;
}

// What is done by a key is done where the user points, if that is in the glass.
Point PictureGestures::pointerOrCenter() const {
  const NSView* view = layer_->owner();
  const NSWindow* window = view ? view->window() : nullptr;
  if (!window) return {};
  const Point pointer = NSEvent::mouseLocation();
  const Point inView = inLayer({pointer.x - window->frame().x, pointer.y - window->frame().y});
  return view->bounds().contains(inView) ? inView : view->bounds().center();
}

void PictureGestures::scrollWheel(const NSEvent& event) {
  if (layer_)
    layer_->magnify(std::pow(kWheelStep, event.scrollingDeltaY()), inLayer(event.locationInWindow()));
}

void PictureGestures::magnify(const NSEvent& event) {
  if (layer_) layer_->magnify(1 + event.magnification(), inLayer(event.locationInWindow()));
}

void PictureGestures::rightMouseDown(const NSEvent& event) { draggedTo_ = event.locationInWindow(); }

// The picture goes with the pointer. The press of a button that is held may have gone to a menu.
void PictureGestures::rightMouseDragged(const NSEvent& event) {
  const Point to = event.locationInWindow();
  const Point from = std::exchange(draggedTo_, to).value_or(to);
  if (layer_) layer_->pan(from.x - to.x, from.y - to.y);
}

void PictureGestures::rightMouseUp() { draggedTo_.reset(); }

bool PictureGestures::performKeyEquivalent(const NSEvent& event) {
  if (!layer_) return false;
  const std::uint64_t held = commandKeysOf(event);
  if (held == NSEventModifierFlags::kControl) return magnifyByKey(event) || panByKey(event);
  return held == 0 && mirrorByKey(event);
}

bool PictureGestures::magnifyByKey(const NSEvent& event) {
  if (event.types('+', kVK_ANSI_Equal) || event.types('=', kVK_ANSI_Equal)) {
    layer_->magnify(kKeyStep, pointerOrCenter());
  } else if (event.types('-', kVK_ANSI_Minus)) {
    layer_->magnify(1 / kKeyStep, pointerOrCenter());
  } else if (event.types('0', kVK_ANSI_0)) {
    layer_->resetMagnification();
  } else {
    return false;
  }
  return true;
}

bool PictureGestures::panByKey(const NSEvent& event) {
  for (const auto& [key, across, down] : kDirections) {
    if (event.keyCode() != key) continue;
    const Rect glass = layer_->owner() ? layer_->owner()->bounds() : Rect{};
    layer_->pan(across * kPanStep * glass.width, down * kPanStep * glass.height);
    return true;
  }
  return false;
}

// A screen reader's user presses a key and does not hold it.
bool PictureGestures::mirrorByKey(const NSEvent& event) {
  if (!event.types('m', kVK_ANSI_M)) return false;
  if (event.isARepeat()) return true;
  if (wasMirrored_) {
    showAsBefore();
  } else {
    showAsSent();
    if (!NSWorkspace::shared().isVoiceOverEnabled()) heldKey_ = event.keyCode();
  }
  return true;
}

void PictureGestures::keyUp(const NSEvent& event) {
  if (heldKey_ == event.keyCode() && !event.isARepeat()) showAsBefore();
}

void PictureGestures::showAsSent() {
  auto* connection = layer_->connection();
  if (!connection) return;
  wasMirrored_ = connection->isVideoMirrored();
  connection->setVideoMirrored(false);
  layer_->setNeedsDisplay();
}

void PictureGestures::showAsBefore() {
  heldKey_.reset();
  const auto wasMirrored = std::exchange(wasMirrored_, std::nullopt);
  if (!wasMirrored) return;
  layer_->connection()->setVideoMirrored(*wasMirrored);
  layer_->setNeedsDisplay();
}

}  // namespace vistrel
