#include "foundation/Bundle.h"

#include <utility>

#include "backend/Backend.h"
#include "base/Json.h"
#include "base/Program.h"

namespace vistrel {

namespace {

std::string parentFolder(const std::string& path) { return path.substr(0, path.find_last_of('/')); }

// The members of a JSON object that are texts; empty when it cannot be read.
std::map<std::string, std::string> readTexts(const std::string& path) {
  std::map<std::string, std::string> result;
  const auto bytes = backend::current().resources().read(path);
  const auto value = bytes ? json::parse(*bytes) : std::nullopt;
  if (!value || !value->object()) return result;
  for (const auto& [key, member] : *value->object()) {
    if (const auto* text = member.text()) result[key] = *text;
  }
  return result;
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
  return readTexts(resourcePath_ + "/Info.json");
}

std::string Bundle::localizedString(const std::string& key) const {
  auto translated = backend::current().resources().translation(key);
  if (translated != key) return translated;
  if (!englishTexts_) englishTexts_ = readTexts(resourcePath_ + "/en.lproj/Localizable.json");
  const auto found = englishTexts_->find(key);
  return found == englishTexts_->end() ? key : found->second;
}

}  // namespace vistrel
