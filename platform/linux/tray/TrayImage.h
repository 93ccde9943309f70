#pragma once

#include <QIcon>
#include <string>

namespace vistrel::tray {

/// A scalable image as a tray icon, plain and highlighted. A tray has no highlight of its own:
/// StatusNotifierItem and XEmbed know an icon and nothing else, so the highlighted look is a plate behind the
/// picture.
class TrayImage {
 public:
  enum class Look { Plain, Highlighted };

  TrayImage() = default;
  /// `path` is the absolute path of an SVG file.
  explicit TrayImage(const std::string& path);

  [[nodiscard]] const QIcon& icon(Look look) const;

 private:
  QIcon plain_;
  QIcon highlighted_;
};

}  // namespace vistrel::tray
