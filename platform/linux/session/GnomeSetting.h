#pragma once

#include <functional>
#include <memory>
#include <string>

namespace vistrel::session {

/// One of GNOME's own settings (GSettings), live.
class GnomeSetting {
 public:
  /// None where the desktop has no such setting. `handler` is called from the main loop when it changes.
  [[nodiscard]] static std::unique_ptr<GnomeSetting> open(const char* schema, const char* key,
                                                          std::function<void()> handler);
  GnomeSetting(const GnomeSetting&) = delete;
  GnomeSetting& operator=(const GnomeSetting&) = delete;
  ~GnomeSetting();

  /// The setting's text; the key must be one of text.
  [[nodiscard]] std::string text() const;
  /// Whether it is on; the key must be one of that kind.
  [[nodiscard]] bool isOn() const;

 private:
  struct Handle;
  GnomeSetting(std::unique_ptr<Handle> handle, std::function<void()> handler);

  std::unique_ptr<Handle> handle_;
  std::function<void()> handler_;
};

}  // namespace vistrel::session
