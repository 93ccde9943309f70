#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vistrel {

/// An address (RFC 3986).
class URL {
 public:
  /// None when the text is empty or holds what no address may hold: a blank, a control or non-ASCII
  /// character, a sign outside the reserved and unreserved ones, a broken percent escape.
  [[nodiscard]] static std::optional<URL> create(std::string_view text);
  /// The address of a file, from its absolute path.
  [[nodiscard]] static URL fileUrl(std::string_view path);

  [[nodiscard]] const std::string& absoluteString() const { return text_; }

 private:
  explicit URL(std::string text) : text_(std::move(text)) {}
  std::string text_;
};

}  // namespace vistrel
