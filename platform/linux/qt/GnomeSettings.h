#pragma once

#include <functional>
#include <memory>

namespace vistrel::qt {

/// GNOME's own setting for light or dark (GSettings, "org.gnome.desktop.interface", "color-scheme"), live.
class GnomeSettings {
 public:
  /// None where the desktop has no such setting. `handler` is called from the main loop when it changes.
  [[nodiscard]] static std::unique_ptr<GnomeSettings> open(std::function<void(bool isDark)> handler);
  GnomeSettings(const GnomeSettings&) = delete;
  GnomeSettings& operator=(const GnomeSettings&) = delete;
  ~GnomeSettings();

  [[nodiscard]] bool prefersDark() const;

 private:
  struct Handle;
  GnomeSettings(std::unique_ptr<Handle> handle, std::function<void(bool isDark)> handler);

  std::unique_ptr<Handle> handle_;
  std::function<void(bool isDark)> handler_;
};

}  // namespace vistrel::qt
