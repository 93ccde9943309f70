#include "foundation/Json.h"

#include <cmath>
#include <nlohmann/json.hpp>

namespace vistrel::json {

namespace {

using Library = nlohmann::ordered_json;

constexpr std::size_t kLongestText = 1U << 20U;
constexpr int kDeepestNesting = 64;

Value fromLibrary(const Library& value);

Value objectFrom(const Library& value) {
  Object object;
  for (const auto& [name, member] : value.items()) object.emplace_back(name, fromLibrary(member));
  return Value{std::move(object)};
}

Value arrayFrom(const Library& value) {
  Array array;
  for (const auto& element : value) array.push_back(fromLibrary(element));
  return Value{std::move(array)};
}

Value numberFrom(const Library& value) {
  if (value.is_number_unsigned()) {
    const auto number = value.get<std::uint64_t>();
    if (number > static_cast<std::uint64_t>(INT64_MAX)) return Value{static_cast<double>(number)};
    return Value{static_cast<std::int64_t>(number)};
  }
  if (value.is_number_integer()) return Value{value.get<std::int64_t>()};
  return Value{value.get<double>()};
}

Value fromLibrary(const Library& value) {
  if (value.is_object()) return objectFrom(value);
  if (value.is_array()) return arrayFrom(value);
  if (value.is_string()) return Value{value.get<std::string>()};
  if (value.is_boolean()) return Value{value.get<bool>()};
  if (value.is_number()) return numberFrom(value);
  return Value{nullptr};
}

Library toLibrary(const Value& value);

struct LibraryWriter {
  Library operator()(const Array& array) const {
    Library result = Library::array();
    for (const auto& element : array) result.push_back(toLibrary(element));
    return result;
  }
  Library operator()(const Object& object) const {
    Library result = Library::object();
    for (const auto& [name, member] : object) result[name] = toLibrary(member);
    return result;
  }
  template <class T>
  Library operator()(const T& simple) const {
    return Library(simple);
  }
};

Library toLibrary(const Value& value) { return std::visit(LibraryWriter{}, value.content); }

std::string dump(const Value& value, int indentation) {
  return toLibrary(value).dump(indentation, ' ', false, Library::error_handler_t::replace);
}

}  // namespace

const Value* Value::member(std::string_view name) const {
  const Object* members = object();
  if (!members) return nullptr;
  const Value* found = nullptr;
  for (const auto& [key, value] : *members) {
    if (key == name) found = &value;
  }
  return found;
}

std::optional<double> Value::number() const {
  if (const auto* whole = integer()) return static_cast<double>(*whole);
  if (const auto* fraction = real()) return *fraction;
  return std::nullopt;
}

std::optional<Value> parse(std::string_view text) {
  if (text.size() > kLongestText) return std::nullopt;
  bool isTooDeep = false;
  const auto watchDepth = [&](int depth, Library::parse_event_t event, Library&) {
    const bool opens =
        event == Library::parse_event_t::object_start || event == Library::parse_event_t::array_start;
    if (opens && depth >= kDeepestNesting) isTooDeep = true;
    return !isTooDeep;
  };
  const Library value = Library::parse(text, watchDepth, false);
  if (value.is_discarded() || isTooDeep) return std::nullopt;
  return fromLibrary(value);
}

std::string write(const Value& value) { return dump(value, -1); }

std::string writeIndented(const Value& value) { return dump(value, 2); }

}  // namespace vistrel::json
