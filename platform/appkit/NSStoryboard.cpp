#include "appkit/NSStoryboard.h"

#include <map>
#include <utility>

#include "appkit/NSControl.h"
#include "appkit/NSPopUpButton.h"
#include "appkit/NSView.h"
#include "base/Json.h"
#include "foundation/Bundle.h"

namespace vistrel {

namespace {

std::map<std::string, NSStoryboard::Factory>& classes() {
  static std::map<std::string, NSStoryboard::Factory> value;
  return value;
}

std::string textOf(const json::Value& object, const char* name) {
  const auto* member = object.member(name);
  const auto* text = member ? member->text() : nullptr;
  return text ? *text : std::string();
}

// In the user's language.
std::string shownTextOf(const json::Value& object, const char* name) {
  const std::string text = textOf(object, name);
  return text.empty() ? text : Bundle::main().localizedString(text);
}

std::optional<double> numberOf(const json::Value& object, const char* name) {
  const auto* member = object.member(name);
  return member ? member->number() : std::nullopt;
}

ViewLayout layoutOf(const json::Value& view) {
  const auto* layout = view.member("layout");
  if (!layout) return {};
  return {numberOf(*layout, "left"),
          numberOf(*layout, "top"),
          numberOf(*layout, "right"),
          numberOf(*layout, "bottom"),
          numberOf(*layout, "width"),
          numberOf(*layout, "height"),
          numberOf(*layout, "scaledMargin").value_or(0)};
}

std::shared_ptr<NSView> makePopUpButton(const json::Value& view) {
  auto button = std::make_shared<NSPopUpButton>();
  const auto* pullsDown = view.member("pullsDown");
  button->setPullsDown(pullsDown && pullsDown->boolean() && *pullsDown->boolean());
  return button;
}

std::shared_ptr<NSView> makeTextField(const json::Value& view) {
  auto field = std::make_shared<NSTextField>();
  field->setStringValue(shownTextOf(view, "text"));
  return field;
}

std::shared_ptr<NSView> makeImageView(const json::Value& view) {
  auto imageView = std::make_shared<NSImageView>();
  imageView->setImage(NSImage::imageNamed(textOf(view, "image")));
  return imageView;
}

std::shared_ptr<NSView> makeBareView(const json::Value& view) {
  const std::string type = textOf(view, "class");
  if (type == "NSPopUpButton") return makePopUpButton(view);
  if (type == "NSTextField") return makeTextField(view);
  if (type == "NSImageView") return makeImageView(view);
  return std::make_shared<NSView>();
}

std::shared_ptr<NSView> makeView(const json::Value& source, NSViewController& controller) {
  auto view = makeBareView(source);
  view->setLayout(layoutOf(source));
  view->setAccessibilityLabel(shownTextOf(source, "label"));
  view->setAccessibilityHelp(shownTextOf(source, "help"));
  const auto* subviews = source.member("subviews");
  if (subviews && subviews->array()) {
    for (const auto& child : *subviews->array()) view->addSubview(makeView(child, controller));
  }
  const std::string outlet = textOf(source, "outlet");
  if (!outlet.empty()) controller.connectOutlet(outlet, view);
  return view;
}

}  // namespace

NSStoryboard NSStoryboard::storyboardWithName(const std::string& name, const Bundle& bundle) {
  return NSStoryboard(bundle.resource(name + ".storyboard.json"));
}

void NSStoryboard::registerClass(const std::string& name, Factory factory) {
  classes().insert_or_assign(name, std::move(factory));
}

std::shared_ptr<NSViewController> NSStoryboard::instantiateController(const std::string& identifier) const {
  const auto document = source_ ? json::parse(*source_) : std::nullopt;
  const auto* scenes = document ? document->member("scenes") : nullptr;
  const auto* scene = scenes ? scenes->member(identifier) : nullptr;
  const auto* view = scene ? scene->member("view") : nullptr;
  if (!view) return nullptr;
  const auto factory = classes().find(textOf(*scene, "controller"));
  if (factory == classes().end()) return nullptr;
  auto controller = factory->second();
  controller->setView(makeView(*view, *controller));
  return controller;
}

}  // namespace vistrel
