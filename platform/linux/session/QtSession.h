#pragma once

#include <QObject>

#include "backend/Session.h"
#include "linux/Reactor.h"
#include "linux/qt/SingleShot.h"
#include "linux/session/ActivationWatch.h"
#include "linux/session/Announcer.h"
#include "linux/session/ColorScheme.h"
#include "linux/session/ContrastSetting.h"
#include "linux/session/ScreenReader.h"
#include "linux/session/ScreenWatch.h"
#include "linux/session/TerminationSignals.h"

namespace vistrel::session {

class SingleInstance;

/// The program's place in the user's session on an X11 desktop.
class QtSession final : public QObject, public backend::Session {
 public:
  QtSession(desktop::Reactor& reactor, x11::X11Connection& x11, SingleInstance& instance);

  /// The first client is launched by the main loop, once it is known whether the desktop is dark.
  void setClient(backend::SessionClient* client) override;
  [[nodiscard]] std::vector<backend::Screen> screens() override { return screenWatch_.screens(); }
  [[nodiscard]] Point pointerLocation() override;
  [[nodiscard]] bool isDark() override { return colorScheme_.isDark(); }
  [[nodiscard]] bool isScreenReaderOn() override { return screenReader_.isOn(); }
  void announce(const std::string& text) override { announcer_.announce(text); }
  [[nodiscard]] bool increasesContrast() override { return contrast_.contrast() == qt::Contrast::High; }
  [[nodiscard]] Version platformVersion() override { return {12, 0, 0}; }
  bool openUrl(const std::string& url) override;

  /// Answers whether the desktop has a place for the icon.
  void setTrayQuestion(std::function<bool()> question) { hasTray_ = std::move(question); }
  /// Told of changed screens before the client is.
  void setScreenHandler(std::function<void()> handler) { screenHandler_ = std::move(handler); }

  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  using Report = void (backend::SessionClient::*)();
  void report(Report what);
  void launchWhenReady();
  void launch();
  void waitForTray();
  void watchEndOfSession();

  desktop::Reactor& reactor_;
  SingleInstance& instance_;
  backend::SessionClient* client_ = nullptr;
  std::function<void()> screenHandler_;
  std::function<bool()> hasTray_;
  std::unique_ptr<qt::SingleShot> waiting_;
  bool isReady_ = false;
  bool isLaunched_ = false;
  ScreenWatch screenWatch_;
  ActivationWatch activation_;
  Announcer announcer_;
  ContrastSetting contrast_;
  ColorScheme colorScheme_;
  ScreenReader screenReader_;
  TerminationSignals signals_;
};

}  // namespace vistrel::session
