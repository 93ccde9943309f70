#include "linux/keyboard/DesktopHotKeys.h"

#include <QGuiApplication>
#include <QSet>
#include <QString>
#include <algorithm>
#include <array>
#include <chrono>
#include <optional>
#include <utility>

#include "base/KeyCodes.h"
#include "base/Log.h"
#include "linux/keyboard/ShortcutPortal.h"

namespace vistrel::keyboard {

namespace {

using backend::HotKeyPhase;

// The one action that has a hot key. With the combination in it a new recording is a new id, which the
// desktop asks the user about, and the same recording keeps what the user has made of it in the desktop's
// settings.
constexpr const char* kIdPrefix = "toggleShortcutMode.";
// Longer than any desktop waits before it repeats a held key.
constexpr std::chrono::milliseconds kReleasePatience(1000);

struct Word {
  std::uint32_t modifier;
  const char* text;
};
constexpr std::array<Word, 4> kWords = {
    {{controlKey, "CTRL+"}, {optionKey, "ALT+"}, {shiftKey, "SHIFT+"}, {cmdKey, "LOGO+"}}};
constexpr std::size_t kLongestSymbolName = 64;

std::string words(std::uint32_t modifiers, xkb_keysym_t symbol) {
  std::string text;
  for (const auto& word : kWords) {
    if (modifiers & word.modifier) text += word.text;
  }
  std::array<char, kLongestSymbolName> name{};
  xkb_keysym_get_name(symbol, name.data(), name.size());
  return text + name.data();
}

// The words for a hot key in the XDG shortcuts specification, such as "CTRL+ALT+z".
struct PortalTrigger {
  std::string onThisLayout;   // with the symbol that the present layout has on the key
  std::string onPlainLayout;  // with that of the plain us layout: the same on every keyboard
};

// None for a key that no symbol is on.
std::optional<PortalTrigger> portalTrigger(backend::HotKeyCombination combination, Keymap& keymap) {
  const auto place = evdevFromVirtualKeyCode(combination.keyCode);
  const auto present = place ? keymap.symbolOn(*place) : std::nullopt;
  const auto plain = place ? Keymap::plainSymbolOn(*place) : std::nullopt;
  if (!present || !plain) return std::nullopt;
  return PortalTrigger{words(combination.modifiers, *present), words(combination.modifiers, *plain)};
}

}  // namespace

DesktopHotKeys::DesktopHotKeys(HotKeyGrabs& grabs, X11Keyboard& keyboard, x11::X11Connection& connection)
    : grabs_(grabs), keyboard_(keyboard), connection_(connection) {
  grabs_.setHandler([this](std::uint32_t token, HotKeyPhase phase) { told(token, phase); });
  portal_ = std::make_unique<ShortcutPortal>(ShortcutPortal::Handlers{
      [this](const QSet<QString>& ids) {
        servedByPortal([&](const Entry& entry) { return ids.contains(QString::fromStdString(entry.id)); });
      },
      [this] { refused(); },
      [this](const QString& id) { pressedByPortal(id.toStdString()); },
      [this](const QString& id) { releasedByPortal(id.toStdString()); },
  });
}

DesktopHotKeys::~DesktopHotKeys() { grabs_.setHandler({}); }

bool DesktopHotKeys::grab(std::uint32_t token, backend::HotKeyCombination combination) {
  Entry entry{token, combination, {}, {}};
  if (auto words = portalTrigger(combination, keyboard_.keymap())) {
    entry.id = kIdPrefix + words->onPlainLayout;
    entry.trigger = std::move(words->onThisLayout);
    // The user is at a recorder then; at a launch nobody has recorded anything.
    if (QGuiApplication::focusWindow()) portal_->recorded(QString::fromStdString(entry.id));
  }
  entry.isGrabbed = grabs_.grab(token, combination);
  if (!entry.isGrabbed && entry.id.empty()) return false;
  entries_.push_back(std::move(entry));
  changed();
  return true;
}

void DesktopHotKeys::release(std::uint32_t token) {
  grabs_.release(token);
  std::erase_if(entries_, [&](const Entry& entry) { return entry.token == token; });
  changed();
}

void DesktopHotKeys::setHandler(std::function<void(std::uint32_t, HotKeyPhase)> handler) {
  handler_ = std::move(handler);
}

// A recording gives one combination back and takes another: that is one wish.
void DesktopHotKeys::changed() {
  change_ = connection_.reactor().after(std::chrono::milliseconds(0), [this] {
    change_.reset();
    QList<PortalShortcut> shortcuts;
    for (const auto& entry : entries_) {
      if (!entry.id.empty())
        shortcuts.append({QString::fromStdString(entry.id), QString::fromStdString(entry.trigger)});
    }
    portal_->serve(std::move(shortcuts));
  });
}

void DesktopHotKeys::servedByPortal(const std::function<bool(const Entry&)>& isServed) {
  std::vector<std::uint32_t> letGo;
  for (auto& entry : entries_) {
    const bool wasServed = std::exchange(entry.isServed, isServed(entry));
    if (entry.isServed == wasServed) continue;
    // Who served it so far tells of no release any more.
    if (entry.isHeld) letGo.push_back(entry.token);
    if (entry.isServed) grabs_.release(entry.token);
    entry.isGrabbed = !entry.isServed && grabs_.grab(entry.token, entry.combination);
  }
  for (const auto token : letGo) told(token, HotKeyPhase::Released);
}

void DesktopHotKeys::pressedByPortal(const std::string& id) {
  // Portals that never tell of a release tell of a held key again and again.
  if (!tellsReleases_) {
    missingRelease_ = connection_.reactor().after(kReleasePatience, [this] { releaseWhatIsHeld(); });
  }
  for (const auto token : tokensOf(id)) told(token, HotKeyPhase::Pressed);
}

void DesktopHotKeys::releasedByPortal(const std::string& id) {
  tellsReleases_ = true;
  missingRelease_.reset();
  for (const auto token : tokensOf(id)) told(token, HotKeyPhase::Released);
}

void DesktopHotKeys::releaseWhatIsHeld() {
  missingRelease_.reset();
  const auto snapshot = entries_;
  for (const auto& entry : snapshot) {
    if (entry.isServed) told(entry.token, HotKeyPhase::Released);
  }
}

void DesktopHotKeys::refused() {
  const bool isReached = !x11::isXWayland(connection_.get());
  const bool isServed = std::all_of(entries_.begin(), entries_.end(), [&](const Entry& entry) {
    return entry.isServed || (entry.isGrabbed && isReached);
  });
  if (isServed || std::exchange(hasComplained_, true)) return;
  Log::warning(isReached
                   ? "The shortcut belongs to another program or to the desktop: record another one, or bind "
                     "a key of the desktop to \"vistrel\""
                   : "The desktop binds no shortcut for Vistrel, which hears it only while an X11 window has "
                     "the focus: bind a key of the desktop to \"vistrel\"");
}

void DesktopHotKeys::told(std::uint32_t token, HotKeyPhase phase) {
  auto* entry = find(token);
  const bool isPress = phase == HotKeyPhase::Pressed;
  if (!entry || std::exchange(entry->isHeld, isPress) == isPress) return;
  // A copy: the handler may set another.
  const auto handler = handler_;
  if (handler) handler(token, phase);
}

std::vector<std::uint32_t> DesktopHotKeys::tokensOf(const std::string& id) const {
  std::vector<std::uint32_t> tokens;
  for (const auto& entry : entries_) {
    if (entry.id == id) tokens.push_back(entry.token);
  }
  return tokens;
}

DesktopHotKeys::Entry* DesktopHotKeys::find(std::uint32_t token) {
  const auto found = std::find_if(entries_.begin(), entries_.end(),
                                  [&](const Entry& entry) { return entry.token == token; });
  return found == entries_.end() ? nullptr : &*found;
}

}  // namespace vistrel::keyboard
