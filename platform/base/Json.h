#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace vistrel::json {

struct Value;
struct Member;
using Array = std::vector<Value>;
/// Members in the order in which they are written; of a name that is read twice the last one counts.
using Object = std::vector<Member>;

/// A JSON value (RFC 8259). Integers keep the full signed 64-bit range; any other number is a double.
struct Value {
  std::variant<std::nullptr_t, bool, std::int64_t, double, std::string, Array, Object> content;

  [[nodiscard]] const Object* object() const { return std::get_if<Object>(&content); }
  [[nodiscard]] const Array* array() const { return std::get_if<Array>(&content); }
  [[nodiscard]] const std::string* text() const { return std::get_if<std::string>(&content); }
  [[nodiscard]] const std::int64_t* integer() const { return std::get_if<std::int64_t>(&content); }
  [[nodiscard]] const bool* boolean() const { return std::get_if<bool>(&content); }
  [[nodiscard]] const double* real() const { return std::get_if<double>(&content); }
  /// The member of an object; none for another kind of value or a missing member.
  [[nodiscard]] const Value* member(std::string_view name) const;
  /// A number of either kind as a double.
  [[nodiscard]] std::optional<double> number() const;
};

struct Member {
  std::string name;
  Value value;
};

/// Reads a text. None when it is not JSON, not UTF-8, over 1 MiB, or nested deeper than 64 levels.
[[nodiscard]] std::optional<Value> parse(std::string_view text);

/// Compact text, no white space, members in their order.
[[nodiscard]] std::string write(const Value& value);

/// The same, indented by two blanks, for files that people read.
[[nodiscard]] std::string writeIndented(const Value& value);

}  // namespace vistrel::json
