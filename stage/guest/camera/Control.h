#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "stage/guest/camera/Descriptors.h"

namespace vistrel::stage {

/// Answers the control transfers: the standard ones, and the agreement on a mode (probe and commit).
class Control {
 public:
  Control(std::vector<Mode> modes, std::string name, std::string serial);

  /// What goes to the host, empty where nothing does. None: not understood.
  std::optional<Bytes> answer(const UsbRequest& request);

  [[nodiscard]] const Mode& mode() const;
  /// The agreed time from one frame to the next, in 100 ns.
  [[nodiscard]] std::uint32_t interval() const;
  /// Counts what ends the stream's present frame: a new agreement, a cleared endpoint.
  [[nodiscard]] int restarts() const { return restarts_; }

 private:
  static constexpr std::size_t kAgreementBytes = 26;
  using Agreement = std::array<std::uint8_t, kAgreementBytes>;

  std::optional<Bytes> answerStandard(std::uint8_t request, std::uint16_t value);
  [[nodiscard]] std::optional<Bytes> describe(std::uint16_t value) const;
  std::optional<Bytes> answerAgreement(std::uint8_t request, std::uint8_t selector, const Bytes& data);
  void settle(Agreement& agreement) const;
  [[nodiscard]] const Mode& find(const Agreement& agreement) const;

  std::vector<Mode> modes_;
  std::array<std::string, 4> texts_;
  Agreement probe_{};
  Agreement commit_{};
  int restarts_ = 0;
};

}  // namespace vistrel::stage
