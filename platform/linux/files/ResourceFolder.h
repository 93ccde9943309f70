#pragma once

#include <string>

#include "backend/Resources.h"

namespace vistrel::files {

/// The resources beside the program in a build tree ("resources"), else under its install prefix
/// ("../share/vistrel").
class ResourceFolder final : public backend::Resources {
 public:
  ResourceFolder();

  [[nodiscard]] std::string resourceDirectory() const override { return directory_; }
  [[nodiscard]] std::string executablePath() const override { return executable_; }
  [[nodiscard]] std::optional<std::string> read(const std::string& path) const override;
  [[nodiscard]] bool isDirectory(const std::string& path) const override;
  [[nodiscard]] std::string preferredLanguage() const override;

 private:
  std::string executable_;
  std::string directory_;
};

}  // namespace vistrel::files
