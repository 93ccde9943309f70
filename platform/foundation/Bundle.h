#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>

namespace vistrel {

/// A folder of resources, and for the main bundle the program itself.
class Bundle {
 public:
  /// The bundle of the running program.
  static const Bundle& main();
  /// The bundle in a folder; none when there is no such folder.
  [[nodiscard]] static std::optional<Bundle> open(const std::string& path);

  /// The identifier; none for a bundle that is not the program's.
  [[nodiscard]] std::optional<std::string> identifier() const;
  [[nodiscard]] const std::string& resourcePath() const { return resourcePath_; }
  [[nodiscard]] const std::string& bundlePath() const { return bundlePath_; }
  /// Texts from "Info.json" in the bundle, such as "CFBundleShortVersionString"; read anew each time.
  [[nodiscard]] std::map<std::string, std::string> infoDictionary() const;
  /// The content of a resource; none when it is missing.
  [[nodiscard]] std::optional<std::string> resource(const std::string& name) const;
  /// The text for `key`: in the user's language by the backend, else in English by the bundle's string table
  /// ("en.lproj/Localizable.json", read once), else the key itself.
  [[nodiscard]] std::string localizedString(const std::string& key) const;

 private:
  Bundle(std::string bundlePath, std::string resourcePath);
  std::string bundlePath_;
  std::string resourcePath_;
  mutable std::optional<std::map<std::string, std::string>> englishTexts_;
};

}  // namespace vistrel
