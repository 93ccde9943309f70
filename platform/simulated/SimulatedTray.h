#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "backend/StatusArea.h"

namespace vistrel::simulated {

/// A tray whose host draws the menu itself, as a StatusNotifierItem host does, and which can be told not to
/// report the close of a menu.
class SimulatedTray final : public backend::StatusArea {
 public:
  void setClient(backend::StatusAreaClient* client) override { client_ = client; }
  void setIcon(const std::string& imagePath) override { icons.push_back(imagePath); }
  void hideIcon() override { icons.emplace_back(); }
  void setToolTip(const std::string& text) override { toolTip = text; }
  void setHighlighted(bool highlighted) override { isHighlighted = highlighted; }
  void mirrorMenu(std::shared_ptr<NSMenu> menu) override { mirrored = std::move(menu); }
  void popUpMenu(std::shared_ptr<NSMenu> menu) override { poppedUp = std::move(menu); }
  void dismissMenu() override { poppedUp.reset(); }
  [[nodiscard]] std::optional<Rect> iconFrame() override { return frame; }
  [[nodiscard]] bool tellsOfReleases() override { return isReleaseTold; }
  [[nodiscard]] bool hasTray() override { return isThere; }

  [[nodiscard]] backend::StatusAreaClient& client() const { return *client_; }
  /// File name of the icon on screen without its ending; empty when there is none.
  [[nodiscard]] std::string shownIcon() const {
    return icons.empty() ? std::string() : std::filesystem::path(icons.back()).stem().string();
  }

  /// Every icon that was shown, in order; an empty text for "hidden".
  std::vector<std::string> icons;
  std::string toolTip;
  bool isHighlighted = false;
  std::shared_ptr<NSMenu> mirrored;
  std::shared_ptr<NSMenu> poppedUp;
  bool isReleaseTold = true;
  bool isThere = true;
  std::optional<Rect> frame = Rect{1200, 2, 24, 24};

 private:
  backend::StatusAreaClient* client_ = nullptr;
};

}  // namespace vistrel::simulated
