#pragma once

#include <filesystem>

namespace vistrel::session {

/// The lid of a laptop. Nothing watches it: whoever wants to know asks, which is seldom.
class Lid {
 public:
  /// `buttons` is the kernel's folder of lids.
  explicit Lid(std::filesystem::path buttons = "/proc/acpi/button/lid") : buttons_(std::move(buttons)) {}

  /// By logind's word (`LidClosed`), or the kernel's where logind does not answer at once. False without a
  /// lid.
  [[nodiscard]] bool isClosed() const;

 private:
  [[nodiscard]] bool isClosedByKernel() const;

  std::filesystem::path buttons_;
};

}  // namespace vistrel::session
