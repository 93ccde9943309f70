#include "views/PreferencesView.h"

#include <optional>
#include <string>

#include "KeyboardShortcuts/Recorder.h"
#include "LaunchAtLogin/LaunchAtLogin.h"
#include "app/Notifications.h"
#include "app/PreferenceKeys.h"
#include "foundation/Bundle.h"
#include "foundation/NotificationCenter.h"

namespace vistrel {

using swiftui::Alignment;
using swiftui::Binding;
using swiftui::EdgeInsets;
using swiftui::PickerStyle;
using swiftui::Text;
using swiftui::View;

namespace {

constexpr double kContentWidth = 460;
constexpr double kFormPadding = 10;
constexpr double kRowPadding = 6;
constexpr double kShortcutRowShift = -124;
constexpr double kHelpLeading = 206;
constexpr double kHelpTop = -10;
constexpr double kHelpOpacity = 0.8;
constexpr swiftui::Frame kIconFrame{200, 20, Alignment::Leading};
constexpr swiftui::Frame kSizeFrame{180, 20, Alignment::Leading};
constexpr EdgeInsets kTogglePadding{kRowPadding, 0, kRowPadding, kRowPadding};

const std::vector<std::shared_ptr<NSImage>>& iconImages() {
  static const auto images = [] {
    std::vector<std::shared_ptr<NSImage>> loaded;
    loaded.reserve(preference::kIcons.size());
    for (const char* name : preference::kIcons) loaded.push_back(NSImage::imageNamed(name));
    return loaded;
  }();
  return images;
}

std::string localized(const char* key) { return Bundle::main().localizedString(key); }

void announce(const std::string& name) { NotificationCenter::defaultCenter().post(name); }

// An index that no control can have written shows what the program makes of it.
template <std::size_t N>
std::int64_t orFirst(std::int64_t index) {
  return index >= 0 && index < static_cast<std::int64_t>(N) ? index : 0;
}

std::int64_t orSecond(std::int64_t index) { return index == 0 ? 0 : 1; }

// A missing image leaves its number to choose by.
View iconChoice(const std::shared_ptr<NSImage>& image, std::size_t index) {
  const std::string number = std::to_string(index + 1);
  return image ? swiftui::Image(image, localized("Icon") + " " + number) : Text(number);
}

}  // namespace

PreferencesView::PreferencesView()
    : defaults_(UserDefaults::standard()),
      selectorIndexIcon_(*this, 0),
      icons_(iconImages()),
      selectorIndexSize_(*this, 0),
      isVideoMirrored_(*this, true),
      selectorIndexDismissBehavior_(*this, 0),
      openAtLogin_(*this, false) {
  selectorIndexIcon_.set(defaults_.integerForKey(preference::kSelectedIcon));
  selectorIndexSize_.set(defaults_.integerForKey(preference::kSelectedPopoverSize));
  selectorIndexDismissBehavior_.set(defaults_.integerForKey(preference::kDismiss));
  isVideoMirrored_.set(defaults_.boolForKey(preference::kSelectedMirroring));
}

View PreferencesView::body() {
  auto form = swiftui::Form({iconPicker(), sizePicker(), shortcutRow(), dismissSection(), mirroringToggle(),
                             swiftui::Divider(), loginToggle()});
  return swiftui::VStack({form.padding(EdgeInsets::all(kFormPadding))}).frame({kContentWidth, std::nullopt});
}

Binding<std::int64_t> PreferencesView::indexBinding(Index& state, const char* key,
                                                    std::int64_t (*shown)(std::int64_t)) {
  return {[&state, shown] { return shown(state.get()); },
          [this, &state, key](std::int64_t index) {
            state.set(index);
            defaults_.setInteger(index, key);
            announce(notification::dataChanged());
          }};
}

View PreferencesView::iconPicker() {
  const auto selection =
      indexBinding(selectorIndexIcon_, preference::kSelectedIcon, orFirst<preference::kIcons.size()>);
  const auto choices =
      swiftui::ForEach(icons_.size(), [this](std::size_t i) { return iconChoice(icons_[i], i); });
  return swiftui::Picker(localized("Menu bar icon:"), selection, PickerStyle::Segmented, choices)
      .frame(kIconFrame)
      .padding(EdgeInsets::all(kRowPadding))
      .accessibilityHint(localized("What Vistrel looks like in the tray"))
      .onAppear([this] { selectorIndexIcon_.set(defaults_.integerForKey(preference::kSelectedIcon)); });
}

View PreferencesView::sizePicker() {
  const auto selection =
      indexBinding(selectorIndexSize_, preference::kSelectedPopoverSize, orFirst<preference::kSizes.size()>);
  const auto choices = swiftui::ForEach(preference::kSizes.size(),
                                        [](std::size_t i) { return Text(preference::kSizes[i].name); });
  return swiftui::Picker(localized("Popover size:"), selection, PickerStyle::Default, choices)
      .frame(kSizeFrame)
      .padding(EdgeInsets::all(kRowPadding))
      .accessibilityHint(localized("How large the mirror is"))
      .onAppear(
          [this] { selectorIndexSize_.set(defaults_.integerForKey(preference::kSelectedPopoverSize)); });
}

View PreferencesView::shortcutRow() {
  const auto recorder = std::make_shared<KeyboardShortcuts::Recorder>(shortcutName::toggleShortcutMode());
  return swiftui::HStack({Text(localized("Keyboard shortcut:")), swiftui::Hosted(recorder)})
      .offset(kShortcutRowShift, 0);
}

View PreferencesView::dismissSection() {
  const auto selection = indexBinding(selectorIndexDismissBehavior_, preference::kDismiss, orSecond);
  const auto choices = swiftui::ForEach(preference::kDismissBehaviors.size(),
                                        [](std::size_t i) { return Text(preference::kDismissBehaviors[i]); });
  const auto picker =
      swiftui::Picker(localized("Close popover when:"), selection, PickerStyle::RadioGroup, choices)
          .padding(EdgeInsets::all(kRowPadding))
          .accessibilityHint(localized("What closes the mirror"))
          .onAppear(
              [this] { selectorIndexDismissBehavior_.set(defaults_.integerForKey(preference::kDismiss)); });
  const auto help = Text(localized("Useful if you'd like to detach the popover and keep it always in front."))
                        .font(swiftui::Font::Subheadline)
                        .padding({.top = kHelpTop, .leading = kHelpLeading, .bottom = kRowPadding})
                        .opacity(kHelpOpacity);
  return swiftui::VStack({picker, help});
}

View PreferencesView::mirroringToggle() {
  const Binding<bool> isOn{[this] { return isVideoMirrored_.get(); },
                           [this](bool isMirrored) {
                             isVideoMirrored_.set(isMirrored);
                             defaults_.setBool(isMirrored, preference::kSelectedMirroring);
                             announce(notification::mirroringChanged());
                           }};
  return swiftui::Toggle(Text(localized("Mirror video")), isOn)
      .padding(kTogglePadding)
      .accessibilityHint(localized("Shows left and right as a mirror does"))
      .onAppear([this] { isVideoMirrored_.set(defaults_.boolForKey(preference::kSelectedMirroring)); });
}

View PreferencesView::loginToggle() {
  const Binding<bool> isOn{[this] { return openAtLogin_.get(); },
                           [this](bool isEnabled) {
                             openAtLogin_.set(isEnabled);
                             LaunchAtLogin::setEnabled(isEnabled);
                           }};
  return swiftui::Toggle(Text(localized("Open Vistrel at login")), isOn)
      .padding(kTogglePadding)
      .accessibilityHint(localized("Puts the icon into the tray whenever you log in"))
      .onAppear([this] { openAtLogin_.set(LaunchAtLogin::isEnabled()); });
}

}  // namespace vistrel
