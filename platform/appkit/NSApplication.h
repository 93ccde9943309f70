#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "appkit/NSEvent.h"
#include "appkit/NSResponder.h"
#include "backend/Session.h"

namespace vistrel {

template <class State>
class ProcessState;

class NSMenu;
class NSWindow;

inline constexpr const char* NSApplicationDidChangeScreenParametersNotification =
    "NSApplicationDidChangeScreenParametersNotification";

/// What the application tells its delegate, under the platform's names.
class NSApplicationDelegate {
 public:
  virtual ~NSApplicationDelegate() = default;
  virtual void applicationDidFinishLaunching() = 0;
  virtual bool applicationShouldHandleReopen(bool hasVisibleWindows) = 0;
  /// An action of the program's desktop entry, by its name there.
  virtual void applicationPerformAction(const std::string& action) = 0;
  virtual void applicationWillResignActive() = 0;
  virtual void applicationWillTerminate() = 0;
};

/// The one application object: the end of every responder chain, the current event, the windows on screen and
/// the modal loops. Main thread only.
class NSApplication final : public NSResponder, public backend::SessionClient {
 public:
  static NSApplication& shared();

  /// `delegateObject` is the same object as `delegate`; it answers actions that nobody before it takes.
  void setDelegate(NSApplicationDelegate* delegate, NSObject* delegateObject);
  /// Runs the main loop; returns the exit status.
  int run();
  /// Runs the terminate step, once, and ends the main loop.
  void terminate(NSObject* sender);

  [[nodiscard]] const std::shared_ptr<NSEvent>& currentEvent() const { return currentEvent_; }
  /// Queues an event; it is dispatched in a later turn of the loop.
  void postEvent(std::shared_ptr<NSEvent> event, bool atStart);
  /// Makes `event` current, runs the event monitors over it, and gives it to its window. True when a monitor
  /// swallowed it or the window took it.
  bool sendEvent(const std::shared_ptr<NSEvent>& event);
  /// Runs `work` with `event` as the current one.
  void withCurrentEvent(const std::shared_ptr<NSEvent>& event, const std::function<void()>& work);

  /// Sends an action without a target along the chain: from `start` where one is given, else from the key
  /// window's first responder; then the application and its delegate. False when nobody answers.
  bool sendAction(const Selector& action, NSObject* sender, NSResponder* start = nullptr);
  bool perform(const Selector& selector, NSObject* sender) override;
  [[nodiscard]] bool respondsToSelector(const Selector& selector) const override;

  /// Brings the program's front window before all others, with the focus.
  void activateIgnoringOtherApps(bool ignoringOtherApps);
  [[nodiscard]] bool isActive() const { return isActive_; }

  [[nodiscard]] const std::shared_ptr<NSMenu>& mainMenu() const { return mainMenu_; }
  void setMainMenu(std::shared_ptr<NSMenu> menu) { mainMenu_ = std::move(menu); }

  /// The windows on screen, the front one last. Each lives at least as long as it is here.
  [[nodiscard]] const std::vector<std::shared_ptr<NSWindow>>& windows() const { return windows_; }
  [[nodiscard]] NSWindow* keyWindow() const;

  /// Delivers events until `stopModal` for the same window, which may be none; answers its code. One that is
  /// stopped while another runs inside it returns after that one.
  int runModalForWindow(NSWindow* window);
  void stopModal(int code, const NSWindow* window);
  [[nodiscard]] bool isModal() const { return !modals_.empty(); }

  // For windows: they put themselves on the list while they are on screen.
  /// The window will order front as soon as it is ready, or is mapped before if the main loop has to wait.
  void windowWillOrderFront(const std::shared_ptr<NSWindow>& window) { comingWindow_ = window; }
  void mapComingWindow();
  void windowDidOrderFront(const std::shared_ptr<NSWindow>& window);
  void windowDidOrderOut(NSWindow* window);
  void windowDidBecomeKey(NSWindow* window);

  // SessionClient
  void didFinishLaunching() override;
  void reopen() override;
  void actionRequested(const std::string& action) override;
  void didBecomeActive() override;
  void willResignActive() override;
  void screensDidChange() override;
  void appearanceDidChange() override;
  void contrastDidChange() override;
  void terminateRequested() override;

 private:
  friend class ProcessState<NSApplication>;
  NSApplication() = default;
  void reset();
  void dispatchQueuedEvent();

  NSApplicationDelegate* delegate_ = nullptr;
  NSObject* delegateObject_ = nullptr;
  std::shared_ptr<NSEvent> currentEvent_;
  std::deque<std::shared_ptr<NSEvent>> queue_;
  std::shared_ptr<NSMenu> mainMenu_;
  std::vector<std::shared_ptr<NSWindow>> windows_;
  std::weak_ptr<NSWindow> comingWindow_;
  struct Modal {
    const NSWindow* window;
    int code = 0;
    bool isStopped = false;
  };
  std::vector<Modal> modals_;
  bool isActive_ = false;
  bool isTerminating_ = false;
};

}  // namespace vistrel
