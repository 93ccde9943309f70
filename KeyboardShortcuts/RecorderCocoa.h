#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "KeyboardShortcuts/KeyboardCapture.h"
#include "KeyboardShortcuts/LocalEventMonitor.h"
#include "KeyboardShortcuts/Name.h"
#include "KeyboardShortcuts/Shortcut.h"
#include "appkit/NSSearchField.h"
#include "foundation/NotificationCenter.h"

namespace vistrel::KeyboardShortcuts {

/// The control by which the user sets, replaces and clears the shortcut of a name. It shows the stored
/// shortcut; a click starts recording, and the next acceptable key press is stored. It refuses combinations
/// that a menu item of the program or the desktop uses already. Made by `std::make_shared`. Main thread only.
class RecorderCocoa : public NSSearchField, public NSSearchFieldDelegate {
 public:
  /// Told the new shortcut after a recording, or none after a clear.
  using OnChange = std::function<void(const std::optional<Shortcut>&)>;

  explicit RecorderCocoa(Name shortcutName, OnChange onChange = {});
  ~RecorderCocoa() override;
  /// The platform's other ways to make a control; both stop the program.
  [[noreturn]] static void initWithCoder();
  [[noreturn]] static void initWithFrame();

  [[nodiscard]] const Name& shortcutName() const { return shortcutName_; }
  /// Another name's shortcut is shown, and the focus leaves the window's controls in a later turn.
  void setShortcutName(const Name& name);
  [[nodiscard]] bool isRecording() const { return eventMonitor_ != nullptr; }

  /// Only a click gives the control the focus.
  [[nodiscard]] bool canBecomeKeyView() const override { return false; }
  [[nodiscard]] Size intrinsicContentSize() const override;
  bool becomeFirstResponder() override;

  // NSSearchFieldDelegate
  void controlTextDidChange(NSSearchField& field) override;
  void controlTextDidEndEditing(NSSearchField& field) override;

 private:
  enum class Verdict { Swallow, PassOn };

  void observeChanges();
  void refreshText();
  void showClearButtonPerText();
  void startWatching();
  void endRecording();
  void resumeRecording();

  [[nodiscard]] Verdict handle(const NSEvent& event);
  [[nodiscard]] bool isOutside(const NSEvent& event) const;
  [[nodiscard]] Verdict handleKey(const NSEvent& event);
  [[nodiscard]] std::optional<Verdict> handlePlainKey(const NSEvent& event);
  void pressClearButton();
  void consider(const Shortcut& shortcut);
  void refuse(const std::string& title, const std::string& explanation);
  void accept(const Shortcut& shortcut);
  void showAlert(const std::string& title, const std::string& explanation);

  std::shared_ptr<LocalEventMonitor> eventMonitor_;
  std::unique_ptr<KeyboardCapture> capture_;
  OnChange onChange_;
  ObservationToken observer_;
  Name shortcutName_;
  std::shared_ptr<NSButtonCell> cancelButton_;
};

}  // namespace vistrel::KeyboardShortcuts
