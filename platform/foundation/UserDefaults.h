#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <variant>

#include "base/Result.h"

namespace vistrel {

template <class State>
class ProcessState;

/// The user's preferences: typed values under text keys, kept in one file. Reads never fail: a missing key,
/// or a value that says nothing about what is asked for, reads as 0, false or nothing. Nothing is lost that
/// another process writes meanwhile: a write changes its own key only. Main thread only.
class UserDefaults {
 public:
  /// The last kind is what no typed read understands and nobody writes: a list, an object, null.
  using Value = std::variant<bool, std::int64_t, double, std::string, std::monostate>;

  /// The store of this program.
  static UserDefaults& standard();

  /// Values that count while the store has none under the key. Not written anywhere.
  void registerDefaults(const std::map<std::string, Value>& values);

  [[nodiscard]] std::int64_t integerForKey(const std::string& key) const;
  [[nodiscard]] bool boolForKey(const std::string& key) const;
  /// A text as it stands; a number as its decimal text, a Boolean as "1" or "0".
  [[nodiscard]] std::optional<std::string> stringForKey(const std::string& key) const;
  /// Whatever is there, one of the strange kind too; none for a missing key.
  [[nodiscard]] std::optional<Value> objectForKey(const std::string& key) const;

  void setInteger(std::int64_t value, const std::string& key) { setObject(value, key); }
  void setBool(bool value, const std::string& key) { setObject(value, key); }
  void setString(std::string value, const std::string& key) { setObject(std::move(value), key); }
  void setObject(Value value, const std::string& key);

 private:
  using Map = std::map<std::string, Value>;

  friend class ProcessState<UserDefaults>;
  UserDefaults() = default;
  void reset();
  [[nodiscard]] std::optional<Value> find(const std::string& key) const;
  [[nodiscard]] Map load() const;
  [[nodiscard]] Map& stored() const;
  void setAside(const std::string& unreadable) const;
  void tellSetAside(const Result<std::optional<std::string>>& path) const;
  void warnOnce(const std::string& text) const;

  mutable std::optional<Map> stored_;
  mutable std::string lastWarning_;
  Map registered_;
};

}  // namespace vistrel
