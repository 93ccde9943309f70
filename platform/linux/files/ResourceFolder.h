#pragma once

#include <string>

#include "backend/Resources.h"

namespace vistrel::files {

/// The resources beside the program in a build tree ("resources"), else under its install prefix
/// ("../share/vistrel"), and the catalogues of other languages (gettext; `LANGUAGE`, then the locale's
/// messages) in "locale" or "../share/locale".
class ResourceFolder final : public backend::Resources {
 public:
  ResourceFolder();

  [[nodiscard]] std::string resourceDirectory() const override { return directory_; }
  [[nodiscard]] std::string executablePath() const override { return executable_; }
  [[nodiscard]] std::optional<std::string> read(const std::string& path) const override;
  [[nodiscard]] bool isDirectory(const std::string& path) const override;
  [[nodiscard]] std::string translation(const std::string& text) const override;

 private:
  std::string executable_;
  std::string directory_;
};

}  // namespace vistrel::files
