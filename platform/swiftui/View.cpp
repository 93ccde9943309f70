#include "swiftui/View.h"

#include <utility>

namespace vistrel::swiftui {

namespace {

template <class Change>
View modified(const View& view, Change change) {
  View copy = view;
  change(copy);
  return copy;
}

Views* childrenOf(View::Content& content) {
  if (auto* stack = std::get_if<StackContent>(&content)) return &stack->children;
  if (auto* form = std::get_if<FormContent>(&content)) return &form->rows;
  if (auto* picker = std::get_if<PickerContent>(&content)) return &picker->choices;
  if (auto* toggle = std::get_if<ToggleContent>(&content)) return &toggle->label;
  return nullptr;
}

}  // namespace

View View::frame(Frame value) const {
  return modified(*this, [&](View& view) { view.frameValue = value; });
}

View View::padding(const EdgeInsets& value) const {
  return modified(*this, [&](View& view) { view.paddingValue = value; });
}

View View::offset(double x, double y) const {
  return modified(*this, [&](View& view) {
    view.offsetX = x;
    view.offsetY = y;
  });
}

View View::opacity(double value) const {
  return modified(*this, [&](View& view) { view.opacityValue = value; });
}

View View::font(Font value, FontWeight weightValue) const {
  return modified(*this, [&](View& view) {
    view.fontValue = value;
    view.weight = weightValue;
  });
}

View View::multilineTextAlignment(TextAlignment value) const {
  return modified(*this, [&](View& view) { view.textAlignment = value; });
}

View View::fixedHeight() const {
  return modified(*this, [](View& view) { view.hasFixedHeight = true; });
}

View View::onAppear(std::function<void()> action) const {
  return modified(*this, [&](View& view) { view.appearAction = std::move(action); });
}

View View::accessibilityHint(std::string text) const {
  return modified(*this, [&](View& view) { view.hint = std::move(text); });
}

View View::tag(std::int64_t value) const {
  return modified(*this, [&](View& view) { view.tagValue = value; });
}

const Views& View::children() const {
  static const Views none;
  const auto* found = childrenOf(const_cast<Content&>(content));
  return found ? *found : none;
}

void View::walk(const std::function<void(View&)>& visit) {
  visit(*this);
  auto* inside = childrenOf(content);
  if (!inside) return;
  for (View& child : *inside) child.walk(visit);
}

void View::walk(const std::function<void(const View&)>& visit) const {
  visit(*this);
  for (const View& child : children()) child.walk(visit);
}

std::string View::text() const {
  const auto* found = std::get_if<TextContent>(&content);
  return found ? found->text : std::string();
}

View Text(std::string text) { return View(TextContent{std::move(text)}); }

View Image(std::shared_ptr<NSImage> image, std::string label) {
  return View(ImageContent{std::move(image), std::move(label)});
}

View Divider() { return View(DividerContent{}); }

View HStack(Views children) { return View(StackContent{Axis::Horizontal, std::move(children)}); }

View VStack(Views children) { return View(StackContent{Axis::Vertical, std::move(children)}); }

View Form(Views rows) { return View(FormContent{std::move(rows)}); }

View Picker(std::string label, Binding<std::int64_t> selection, PickerStyle style, Views choices) {
  return View(PickerContent{std::move(label), std::move(selection), style, std::move(choices)});
}

View Toggle(View label, Binding<bool> isOn) {
  return View(ToggleContent{std::move(isOn), {std::move(label)}});
}

View LinkButton(std::string title, std::function<void()> action) {
  return View(LinkContent{std::move(title), std::move(action)});
}

View Hosted(std::shared_ptr<const NSViewRepresentable> representable) {
  return View(HostedContent{std::move(representable), nullptr});
}

Views ForEach(std::size_t count, const std::function<View(std::size_t)>& make) {
  Views views;
  for (std::size_t i = 0; i < count; ++i) views.push_back(make(i).tag(static_cast<std::int64_t>(i)));
  return views;
}

}  // namespace vistrel::swiftui
