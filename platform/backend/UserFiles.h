#pragma once

#include <functional>
#include <optional>
#include <string>

#include "base/Result.h"

namespace vistrel::backend {

/// The file that keeps the user's preferences, as bytes. One file in the user's configuration folder
/// (XDG Base Directory), shared with other processes. Main thread only.
class UserFiles {
 public:
  virtual ~UserFiles() = default;

  /// No preferences are that large: a file that reaches this many bytes is cut off there, and unreadable.
  static constexpr std::size_t kTooLarge = std::size_t{1} << 20U;

  /// The whole file; nothing when there is none. What is no file at all is an error.
  virtual Result<std::optional<std::string>> readPreferences() = 0;

  /// What the content shall be instead of `present`; nothing when that makes no sense. Touches nothing else,
  /// since it may be called on another thread.
  using Edit = std::function<std::optional<std::string>(const std::optional<std::string>& present)>;
  /// Told on the main thread how it went: where a content that made no sense was set aside, if there was one.
  using Edited = std::function<void(const Result<std::optional<std::string>>& setAside)>;
  /// Under a lock that excludes other processes: hands the present content to `edit` and puts what it answers
  /// in its place, whole or not at all. A content that makes no sense is moved out of the way, and `edit` is
  /// asked again with none. Waits for no disk: one edit comes after the other, and a desktop that ends in an
  /// orderly way finishes them first.
  virtual void editPreferences(Edit edit, Edited edited) = 0;

  /// Moves the file out of the way without deleting it, under the same lock, and answers its new path;
  /// nothing when its content is no longer the `unreadable` one, because another process was faster.
  virtual Result<std::optional<std::string>> setPreferencesAside(const std::string& unreadable) = 0;
};

}  // namespace vistrel::backend
