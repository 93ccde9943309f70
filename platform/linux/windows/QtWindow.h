#pragma once

#include <QPointer>
#include <memory>
#include <optional>

#include "appkit/NSWindow.h"
#include "backend/Windows.h"
#include "linux/widgets/ViewTree.h"
#include "linux/windows/ButtonMenu.h"
#include "linux/windows/ContentPointer.h"
#include "linux/windows/HidingWatch.h"
#include "linux/windows/PopupWatch.h"
#include "linux/windows/Shell.h"
#include "linux/windows/ShellAttributes.h"
#include "linux/windows/X11Windows.h"

namespace vistrel::windows {

/// What all windows share.
struct Surroundings {
  X11Windows x11;
  HidingWatch hiding;
  PopupWatch popups;
};

/// The native window of an `NSWindow`.
class QtWindow final : public backend::NativeWindow, private ShellClient, private widgets::ViewClient {
 public:
  QtWindow(NSWindow& window, backend::WindowClient& client, Surroundings& surroundings);
  ~QtWindow() override;

  void contentDidChange() override;
  void show() override;
  void hide() override;
  [[nodiscard]] bool isOnScreen() const override;
  void attributesDidChange() override;
  void viewDidChange(NSView& view) override;
  void firstResponderDidChange(NSView* view) override;
  void popUpMenu(NSPopUpButton& button) override;
  void activate() override;

  [[nodiscard]] NSWindow& window() const { return window_; }
  [[nodiscard]] QWidget& widget() const { return *shell_; }

 private:
  // ShellClient
  void shellCloseRequested() override;
  void shellActivated() override;
  void shellDeactivated() override;
  void shellMoved() override;
  void shellScaled() override;
  void shellUnexposed() override;
  void shellStateChanged() override;
  void shellDragBegan() override;
  [[nodiscard]] bool shellCanBeTornOff() const override { return window_.kind() == NSWindowKind::Popover; }
  bool shellDragHandedOver() override;
  void shellDragged(QPoint position) override;
  void shellPointerEntered() override;
  void shellPointerLeft() override;
  bool shellFilter(QEvent& event) override;
  // ViewClient
  void focusWanted(NSView& view) override;
  void clicked(NSView& view) override;

  [[nodiscard]] std::shared_ptr<NSEvent> translated(QEvent& event);
  void addCloseButton();
  void popupClosed();
  void tellPresence();
  void menuClosed();

  /// Marks a stretch in which native events are the echo of a command and not news.
  class CommandScope {
   public:
    explicit CommandScope(QtWindow& window) : window_(window) { ++window_.commands_; }
    ~CommandScope() { --window_.commands_; }
    CommandScope(const CommandScope&) = delete;
    CommandScope& operator=(const CommandScope&) = delete;

   private:
    QtWindow& window_;
  };

  NSWindow& window_;
  backend::WindowClient& client_;
  X11Windows& x11_;
  HidingWatch& hiding_;
  Shell* shell_;
  widgets::ViewTree tree_;
  QPointer<ButtonMenu> menu_;
  ShellAttributes attributes_;
  ContentPointer pointer_;
  std::shared_ptr<NSView> builtContent_;
  int commands_ = 0;
  bool mayBeMisplaced_ = false;  ///< nothing has moved it since it was shown
  std::optional<backend::Hiding> toldHiding_;
  bool wasKeyLast_ = false;
  // Reports that wait for the main loop are dropped with the window.
  QObject context_;
};

}  // namespace vistrel::windows
