#pragma once

#include <string>
#include <utility>
#include <variant>

namespace vistrel {

/// What went wrong in the outside world, in words fit to be shown or logged.
struct Error {
  std::string message;
};

/// Marks an error's words for the catalogues of other languages. Whoever shows them looks them up.
[[nodiscard]] constexpr const char* translatable(const char* words) { return words; }

/// The outcome of an operation that the outside world can refuse: a value or an `Error`.
template <class T>
class [[nodiscard]] Result {
 public:
  Result(T value) : state_(std::move(value)) {}
  Result(Error error) : state_(std::move(error)) {}

  [[nodiscard]] explicit operator bool() const { return std::holds_alternative<T>(state_); }
  /// The value; only for a successful result.
  [[nodiscard]] T& value() & { return std::get<T>(state_); }
  [[nodiscard]] const T& value() const& { return std::get<T>(state_); }
  [[nodiscard]] T&& value() && { return std::get<T>(std::move(state_)); }
  /// The error; only for a failed result.
  [[nodiscard]] const Error& error() const { return std::get<Error>(state_); }

 private:
  std::variant<T, Error> state_;
};

template <>
class [[nodiscard]] Result<void> {
 public:
  Result() = default;
  Result(Error error) : error_(std::move(error)), failed_(true) {}

  [[nodiscard]] explicit operator bool() const { return !failed_; }
  [[nodiscard]] const Error& error() const { return error_; }

 private:
  Error error_;
  bool failed_ = false;
};

}  // namespace vistrel
