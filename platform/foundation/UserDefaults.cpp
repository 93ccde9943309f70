#include "foundation/UserDefaults.h"

#include <charconv>
#include <utility>

#include "backend/Backend.h"
#include "base/Json.h"
#include "base/Log.h"
#include "foundation/ProcessState.h"

namespace vistrel {

namespace {

using Value = UserDefaults::Value;

constexpr const char* kInterfaceStyleKey = "AppleInterfaceStyle";

Value fromJson(const json::Value& value) {
  if (const auto* text = value.text()) return *text;
  if (const auto* boolean = value.boolean()) return *boolean;
  if (const auto* integer = value.integer()) return *integer;
  if (const auto* real = value.real()) return *real;
  return std::monostate{};
}

json::Value simpleJson(std::monostate /*strange*/) { return {nullptr}; }
json::Value simpleJson(const auto& simple) { return {simple}; }

json::Value toJson(const Value& value) {
  return std::visit([](const auto& simple) { return simpleJson(simple); }, value);
}

/// The members of a preferences file; none when it cannot be read as one. An empty file is an empty store.
std::optional<json::Object> parseFile(const std::optional<std::string>& bytes) {
  if (!bytes || bytes->empty()) return json::Object{};
  if (bytes->size() >= backend::UserFiles::kTooLarge) return std::nullopt;
  const auto value = json::parse(*bytes);
  if (!value || !value->object()) return std::nullopt;
  return *value->object();
}

std::string withMember(json::Object members, const std::string& key, const Value& value) {
  const auto sameKey = [&](const auto& member) { return member.name == key; };
  std::erase_if(members, sameKey);
  members.push_back({key, toJson(value)});
  return json::writeIndented(json::Value{std::move(members)}) + "\n";
}

std::string decimalText(double value) {
  char buffer[64];
  const auto end = std::to_chars(buffer, buffer + sizeof buffer, value).ptr;
  return {buffer, end};
}

}  // namespace

UserDefaults& UserDefaults::standard() { return ProcessState<UserDefaults>::shared(); }

void UserDefaults::registerDefaults(const std::map<std::string, Value>& values) {
  for (const auto& [key, value] : values) registered_.insert_or_assign(key, value);
}

void UserDefaults::reset() {
  stored_.reset();
  registered_.clear();
  lastWarning_.clear();
}

// What is wrong with a file stays wrong: one line is enough for it.
void UserDefaults::warnOnce(const std::string& text) const {
  if (std::exchange(lastWarning_, text) != text) Log::warning("vistrel: the preferences " + text);
}

void UserDefaults::setAside(const std::string& unreadable) const {
  tellSetAside(backend::current().userFiles().setPreferencesAside(unreadable));
}

void UserDefaults::tellSetAside(const Result<std::optional<std::string>>& path) const {
  if (!path) return warnOnce("cannot be read or written: " + path.error().message);
  const auto& other = path.value();
  if (other) warnOnce("file could not be read and was set aside as " + *other);
}

UserDefaults::Map UserDefaults::load() const {
  Map stored;
  const auto bytes = backend::current().userFiles().readPreferences();
  if (!bytes) {
    warnOnce("cannot be read or written: " + bytes.error().message);
    return stored;
  }
  const auto members = parseFile(bytes.value());
  if (!members) setAside(bytes.value().value_or(""));
  for (const auto& [key, member] : members.value_or(json::Object())) {
    stored.insert_or_assign(key, fromJson(member));
  }
  return stored;
}

UserDefaults::Map& UserDefaults::stored() const {
  if (!stored_) stored_ = load();
  return *stored_;
}

std::optional<Value> UserDefaults::find(const std::string& key) const {
  if (key == kInterfaceStyleKey) {
    return backend::current().session().isDark() ? std::optional<Value>("Dark") : std::nullopt;
  }
  if (const auto found = stored().find(key); found != stored().end()) return found->second;
  if (const auto found = registered_.find(key); found != registered_.end()) return found->second;
  return std::nullopt;
}

std::int64_t UserDefaults::integerForKey(const std::string& key) const {
  const auto value = find(key);
  if (!value) return 0;
  if (const auto* integer = std::get_if<std::int64_t>(&*value)) return *integer;
  if (const auto* boolean = std::get_if<bool>(&*value)) return *boolean ? 1 : 0;
  if (const auto* real = std::get_if<double>(&*value); real && *real > -9e18 && *real < 9e18) {
    return static_cast<std::int64_t>(*real);
  }
  return 0;
}

bool UserDefaults::boolForKey(const std::string& key) const {
  const auto value = find(key);
  if (!value) return false;
  if (const auto* boolean = std::get_if<bool>(&*value)) return *boolean;
  return integerForKey(key) != 0;
}

std::optional<std::string> UserDefaults::stringForKey(const std::string& key) const {
  const auto value = find(key);
  if (!value) return std::nullopt;
  if (const auto* text = std::get_if<std::string>(&*value)) return *text;
  if (const auto* boolean = std::get_if<bool>(&*value)) return *boolean ? "1" : "0";
  if (const auto* integer = std::get_if<std::int64_t>(&*value)) return std::to_string(*integer);
  if (const auto* real = std::get_if<double>(&*value)) return decimalText(*real);
  return std::nullopt;
}

std::optional<Value> UserDefaults::objectForKey(const std::string& key) const { return find(key); }

void UserDefaults::setObject(Value value, const std::string& key) {
  Map& values = stored();
  const auto edit = [key, value](const std::optional<std::string>& present) -> std::optional<std::string> {
    const auto members = parseFile(present);
    return members ? std::optional(withMember(*members, key, value)) : std::nullopt;
  };
  backend::current().userFiles().editPreferences(edit, [this](const auto& path) { tellSetAside(path); });
  values.insert_or_assign(key, std::move(value));
}

}  // namespace vistrel
