#include "foundation/Bundle.h"

#include <utility>

#include "backend/Backend.h"
#include "base/Json.h"
#include "base/Program.h"

namespace vistrel {

namespace {

std::string parentFolder(const std::string& path) { return path.substr(0, path.find_last_of('/')); }

std::optional<json::Value> readJson(const std::string& path) {
  const auto bytes = backend::current().resources().read(path);
  return bytes ? json::parse(*bytes) : std::nullopt;
}

}  // namespace

Bundle::Bundle(std::string bundlePath, std::string resourcePath)
    : bundlePath_(std::move(bundlePath)), resourcePath_(std::move(resourcePath)) {}

const Bundle& Bundle::main() {
  // Made anew when the backend changes, as it does between tests.
  static std::unique_ptr<Bundle> bundle;
  const auto& resources = backend::current().resources();
  Bundle fresh(parentFolder(resources.executablePath()), resources.resourceDirectory());
  if (!bundle || bundle->resourcePath_ != fresh.resourcePath_ || bundle->bundlePath_ != fresh.bundlePath_) {
    bundle = std::make_unique<Bundle>(std::move(fresh));
  }
  return *bundle;
}

std::optional<Bundle> Bundle::open(const std::string& path) {
  if (!backend::current().resources().isDirectory(path)) return std::nullopt;
  return Bundle(path, path);
}

std::optional<std::string> Bundle::identifier() const {
  if (resourcePath_ != backend::current().resources().resourceDirectory()) return std::nullopt;
  return program::kIdentifier;
}

std::optional<std::string> Bundle::resource(const std::string& name) const {
  return backend::current().resources().read(resourcePath_ + "/" + name);
}

std::map<std::string, std::string> Bundle::infoDictionary() const {
  std::map<std::string, std::string> result;
  const auto info = readJson(resourcePath_ + "/Info.json");
  if (!info || !info->object()) return result;
  for (const auto& [key, value] : *info->object()) {
    if (const auto* text = value.text()) result[key] = *text;
  }
  return result;
}

std::optional<std::string> Bundle::lookUp(const std::string& language, const std::string& key) const {
  const auto table = readJson(resourcePath_ + "/" + language + ".lproj/Localizable.json");
  const auto* entry = table ? table->member(key) : nullptr;
  const auto* text = entry ? entry->text() : nullptr;
  return text ? std::optional(*text) : std::nullopt;
}

std::string Bundle::localizedString(const std::string& key) const {
  const std::string wanted = backend::current().resources().preferredLanguage();
  for (const auto& language : {wanted, wanted.substr(0, wanted.find('_')), std::string("en")}) {
    if (language.empty()) continue;
    if (const auto text = lookUp(language, key)) return *text;
  }
  return key;
}

}  // namespace vistrel
