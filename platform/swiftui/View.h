#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "appkit/NSImage.h"
#include "swiftui/NSViewRepresentable.h"

namespace vistrel::swiftui {

class View;
using Views = std::vector<View>;

enum class Axis { Horizontal, Vertical };
enum class Alignment { Center, Leading, Trailing, Top };
enum class Font { Body, Headline, Subheadline, Caption };
enum class FontWeight { Regular, Semibold };
enum class TextAlignment { Leading, Center };
enum class PickerStyle { Default, Segmented, RadioGroup };

/// Distances in points; leading is the side on which a line of text begins.
struct EdgeInsets {
  double top = 0;
  double leading = 0;
  double bottom = 0;
  double trailing = 0;
  [[nodiscard]] static EdgeInsets all(double distance) { return {distance, distance, distance, distance}; }
  bool operator==(const EdgeInsets&) const = default;
};

/// A size that is asked for, per axis, and where a smaller content lies in it.
struct Frame {
  std::optional<double> width;
  std::optional<double> height;
  Alignment alignment = Alignment::Center;
  bool operator==(const Frame&) const = default;
};

/// A value that lives elsewhere, as a control reads and writes it.
template <class T>
struct Binding {
  std::function<T()> get;
  std::function<void(const T&)> set;
  /// The user chose a value: sets it unless it was chosen already.
  void choose(const T& value) const {
    if (get() != value) set(value);
  }
};

/// What the views of each kind consist of.
struct TextContent {
  std::string text;
};
struct ImageContent {
  std::shared_ptr<NSImage> image;  ///< null: nothing is drawn
  std::string label;               ///< for the screen reader
};
struct DividerContent {};
/// Children in a line, centred across it, with the toolkit's own distance between them.
struct StackContent {
  Axis axis = Axis::Vertical;
  Views children;
};
/// Rows of labelled controls: the labels in one column, the controls in the next.
struct FormContent {
  Views rows;
};
/// A choice of one from several; `selection` is the tag of the chosen one.
struct PickerContent {
  std::string label;
  Binding<std::int64_t> selection;
  PickerStyle style = PickerStyle::Default;
  Views choices;
};
/// A check box.
struct ToggleContent {
  Binding<bool> isOn;
  Views label;
};
/// A text that runs an action, drawn as a link.
struct LinkContent {
  std::string title;
  std::function<void()> action;
};
struct HostedContent {
  std::shared_ptr<const NSViewRepresentable> representable;
  std::shared_ptr<NSView> view;  ///< set by the hosting view
};

/// A declarative view: a plain value that says what is shown, by what kind of view and with what modifiers.
/// The padding lies outside the frame, the offset moves what is drawn without moving its place.
class View {
 public:
  using Content = std::variant<TextContent, ImageContent, DividerContent, StackContent, FormContent,
                               PickerContent, ToggleContent, LinkContent, HostedContent>;

  explicit View(Content kind) : content(std::move(kind)) {}

  [[nodiscard]] View frame(Frame value) const;
  [[nodiscard]] View padding(const EdgeInsets& value) const;
  [[nodiscard]] View offset(double x, double y) const;
  [[nodiscard]] View opacity(double value) const;
  [[nodiscard]] View font(Font value, FontWeight weightValue = FontWeight::Regular) const;
  [[nodiscard]] View multilineTextAlignment(TextAlignment value) const;
  /// Keeps the ideal height whatever the space.
  [[nodiscard]] View fixedHeight() const;
  /// Runs `action` when the view comes on screen.
  [[nodiscard]] View onAppear(std::function<void()> action) const;
  /// What the control is for, as a screen reader says it after the name.
  [[nodiscard]] View accessibilityHint(std::string text) const;
  /// What a picker's selection is when this choice is the chosen one.
  [[nodiscard]] View tag(std::int64_t value) const;

  /// The views inside this one, in order.
  [[nodiscard]] const Views& children() const;
  /// Runs `visit` on this view and all inside it, outer ones first.
  void walk(const std::function<void(View&)>& visit);
  void walk(const std::function<void(const View&)>& visit) const;
  /// The text of a text; empty for any other view.
  [[nodiscard]] std::string text() const;

  Content content;
  Frame frameValue;
  EdgeInsets paddingValue;
  double offsetX = 0;
  double offsetY = 0;
  double opacityValue = 1;
  Font fontValue = Font::Body;
  FontWeight weight = FontWeight::Regular;
  TextAlignment textAlignment = TextAlignment::Leading;
  bool hasFixedHeight = false;
  std::function<void()> appearAction;
  std::int64_t tagValue = 0;
  std::string hint;
};

/// The toolkit's padding where none is given, in points.
inline constexpr double kDefaultPadding = 16;

[[nodiscard]] View Text(std::string text);
[[nodiscard]] View Image(std::shared_ptr<NSImage> image, std::string label);
[[nodiscard]] View Divider();
[[nodiscard]] View HStack(Views children);
[[nodiscard]] View VStack(Views children);
[[nodiscard]] View Form(Views rows);
[[nodiscard]] View Picker(std::string label, Binding<std::int64_t> selection, PickerStyle style,
                          Views choices);
[[nodiscard]] View Toggle(View label, Binding<bool> isOn);
[[nodiscard]] View LinkButton(std::string title, std::function<void()> action);
[[nodiscard]] View Hosted(std::shared_ptr<const NSViewRepresentable> representable);
/// One view an index from 0, each tagged by its index.
[[nodiscard]] Views ForEach(std::size_t count, const std::function<View(std::size_t)>& make);

}  // namespace vistrel::swiftui
