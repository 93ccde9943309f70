#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "backend/Keyboard.h"
#include "linux/keyboard/HotKeyGrabs.h"
#include "linux/keyboard/X11Keyboard.h"

namespace vistrel::keyboard {

class ShortcutPortal;

/// Hot keys by whoever can serve them: the desktop's portal as soon as it has bound them, a grab of the X
/// server until then and where no portal serves. Never by both, for both would tell of the same press.
class DesktopHotKeys final : public backend::HotKeys {
 public:
  DesktopHotKeys(HotKeyGrabs& grabs, X11Keyboard& keyboard, x11::X11Connection& connection);
  ~DesktopHotKeys() override;

  bool grab(std::uint32_t token, backend::HotKeyCombination combination) override;
  void release(std::uint32_t token) override;
  void setHandler(std::function<void(std::uint32_t, backend::HotKeyPhase)> handler) override;

 private:
  struct Entry {
    std::uint32_t token;
    backend::HotKeyCombination combination;
    std::string id;  ///< for the portal; empty when it has no words for the combination
    std::string trigger;
    bool isGrabbed = false;
    bool isServed = false;  ///< by the portal
    bool isHeld = false;
  };
  void changed();
  void servedByPortal(const std::function<bool(const Entry&)>& isServed);
  void pressedByPortal(const std::string& id);
  void releasedByPortal(const std::string& id);
  void releaseWhatIsHeld();
  void refused();
  void told(std::uint32_t token, backend::HotKeyPhase phase);
  [[nodiscard]] std::vector<std::uint32_t> tokensOf(const std::string& id) const;
  [[nodiscard]] Entry* find(std::uint32_t token);

  HotKeyGrabs& grabs_;
  X11Keyboard& keyboard_;
  x11::X11Connection& connection_;
  std::vector<Entry> entries_;
  std::function<void(std::uint32_t, backend::HotKeyPhase)> handler_;
  std::unique_ptr<ShortcutPortal> portal_;
  std::unique_ptr<desktop::Registration> change_;
  std::unique_ptr<desktop::Registration> missingRelease_;
  bool tellsReleases_ = false;  ///< the portal has told of one
  bool hasComplained_ = false;
};

}  // namespace vistrel::keyboard
