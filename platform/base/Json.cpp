#include "base/Json.h"

#include <cmath>
#include <nlohmann/json.hpp>

namespace vistrel::json {

namespace {

using Library = nlohmann::ordered_json;

constexpr std::size_t kLongestText = 1U << 20U;
constexpr std::size_t kDeepestNesting = 64;

/// Builds a value while the library reads a text, in one pass; gives up at what is nested too deeply.
class Reader {
 public:
  [[nodiscard]] Value take() { return std::move(root_); }

  bool null() { return add({nullptr}); }
  bool boolean(bool value) { return add({value}); }
  bool number_integer(std::int64_t value) { return add({value}); }
  bool number_unsigned(std::uint64_t value) {
    if (value > static_cast<std::uint64_t>(INT64_MAX)) return add({static_cast<double>(value)});
    return add({static_cast<std::int64_t>(value)});
  }
  bool number_float(double value, const std::string& /*text*/) { return add({value}); }
  bool string(std::string& value) { return add({std::move(value)}); }
  bool binary(Library::binary_t& /*value*/) { return false; }
  bool key(std::string& name) {
    name_ = std::move(name);
    return true;
  }
  bool start_object(std::size_t /*size*/) { return open({Object{}}); }
  bool start_array(std::size_t /*size*/) { return open({Array{}}); }
  bool end_object() { return close(); }
  bool end_array() { return close(); }
  static bool parse_error(std::size_t, const std::string&, const nlohmann::detail::exception&) {
    return false;
  }

 private:
  // A container that is open does not move: the one around it grows only after it is closed.
  Value* place(Value value) {
    if (open_.empty()) return &(root_ = std::move(value));
    auto& content = open_.back()->content;
    if (auto* array = std::get_if<Array>(&content)) return &array->emplace_back(std::move(value));
    auto& members = std::get<Object>(content);
    members.push_back({std::move(name_), std::move(value)});
    return &members.back().value;
  }
  bool add(Value value) { return place(std::move(value)) != nullptr; }
  bool open(Value container) {
    if (open_.size() >= kDeepestNesting) return false;
    open_.push_back(place(std::move(container)));
    return true;
  }
  bool close() {
    open_.pop_back();
    return true;
  }

  Value root_{nullptr};
  std::vector<Value*> open_;
  std::string name_;
};

Library toLibrary(const Value& value);

struct LibraryWriter {
  Library operator()(const Array& array) const {
    Library result = Library::array();
    for (const auto& element : array) result.push_back(toLibrary(element));
    return result;
  }
  Library operator()(const Object& object) const {
    Library result = Library::object();
    auto& members = result.get_ref<Library::object_t&>();
    for (const auto& [name, member] : object) members.emplace_back(name, toLibrary(member));
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
  Reader reader;
  if (!Library::sax_parse(text, &reader)) return std::nullopt;
  return reader.take();
}

std::string write(const Value& value) { return dump(value, -1); }

std::string writeIndented(const Value& value) { return dump(value, 2); }

}  // namespace vistrel::json
