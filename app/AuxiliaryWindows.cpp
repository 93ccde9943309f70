#include "app/AuxiliaryWindows.h"

#include <string>

#include "appkit/NSApplication.h"
#include "appkit/NSWindow.h"
#include "swiftui/NSHostingView.h"
#include "views/AboutView.h"
#include "views/PreferencesView.h"

namespace vistrel {

namespace {

constexpr Rect kPreferencesContent{0, 0, 480, 360};
constexpr Rect kAboutContent{0, 0, 480, 420};

std::shared_ptr<NSWindow> makeWindow(const Rect& content, const std::string& title,
                                     const std::string& autosaveName) {
  auto window = NSWindow::create(content, NSWindowStyleMask::Titled | NSWindowStyleMask::Closable,
                                 NSBackingStoreType::Buffered, false);
  window->center();
  window->setTitle(title);
  window->setFrameAutosaveName(autosaveName);
  return window;
}

void present(NSWindow& window) {
  window.makeKeyAndOrderFront(nullptr);
  window.setReleasedWhenClosed(false);
  NSApplication::shared().activateIgnoringOtherApps(true);
}

}  // namespace

std::shared_ptr<NSWindow> openPreferencesWindow() {
  auto view = std::make_shared<PreferencesView>();
  auto window = makeWindow(kPreferencesContent, "Preferences", "Preferences Window");
  window->setContentView(std::make_shared<NSHostingView>(std::move(view)));
  present(*window);
  return window;
}

std::shared_ptr<NSWindow> openAboutWindow() {
  auto window = makeWindow(kAboutContent, "About Vistrel", "About Window");
  window->setContentView(std::make_shared<NSHostingView>(std::make_shared<AboutView>(window)));
  present(*window);
  return window;
}

}  // namespace vistrel
