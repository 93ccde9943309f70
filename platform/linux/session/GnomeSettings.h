#pragma once

#include <functional>
#include <memory>
#include <optional>

namespace vistrel::session {

/// GNOME's own setting for light or dark (GSettings, "org.gnome.desktop.interface", "color-scheme"), live.
class GnomeSettings {
 public:
  /// None where the desktop has no such setting. `handler` is called from the main loop when it changes.
  [[nodiscard]] static std::unique_ptr<GnomeSettings> open(std::function<void()> handler);
  GnomeSettings(const GnomeSettings&) = delete;
  GnomeSettings& operator=(const GnomeSettings&) = delete;
  ~GnomeSettings();

  /// None while the setting says neither.
  [[nodiscard]] std::optional<bool> prefersDark() const;

 private:
  struct Handle;
  GnomeSettings(std::unique_ptr<Handle> handle, std::function<void()> handler);

  std::unique_ptr<Handle> handle_;
  std::function<void()> handler_;
};

}  // namespace vistrel::session
