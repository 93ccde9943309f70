#pragma once

#include <optional>
#include <string>

namespace vistrel::backend {

/// What ships with the program: found beside it in a build tree and under the install prefix otherwise.
class Resources {
 public:
  virtual ~Resources() = default;
  /// Absolute path of the folder that holds images, storyboards, string tables and pages.
  [[nodiscard]] virtual std::string resourceDirectory() const = 0;
  /// Absolute path of the running program.
  [[nodiscard]] virtual std::string executablePath() const = 0;
  /// Content of the file at an absolute path; nothing when it cannot be read.
  [[nodiscard]] virtual std::optional<std::string> read(const std::string& path) const = 0;
  [[nodiscard]] virtual bool isDirectory(const std::string& path) const = 0;
  /// The text in the user's language (UTF-8); `text` itself where there is no translation.
  [[nodiscard]] virtual std::string translation(const std::string& text) const = 0;
};

}  // namespace vistrel::backend
