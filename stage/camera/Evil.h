#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include <pipewire/pipewire.h>

namespace vistrel::stage {

/// What a camera lies about.
enum class Evil {
  HugeStride,
  NegativeStride,
  OddStride,
  LongSize,
  ShortSize,
  NoSize,
  FarOffset,
  Corrupted,
  Formats,       ///< it offers two thousand
  HugeFormats,   ///< sizes that no picture has
  Renegotiates,  ///< it offers its formats anew with every tenth frame
  ShortChoice,   ///< its rates are a choice that is shorter than its own head
  EmptyValues,   ///< its rates are values of no bytes
  HugeValues,    ///< a rate is longer than all that is described
};

[[nodiscard]] std::optional<Evil> evilFromName(std::string_view name);

/// Makes what an offer of several rates says of them a lie of that kind.
void spoilOffer(Evil kind, spa_pod& offer);
/// Makes what the buffer says of the frame in it a lie of that kind.
void spoil(Evil kind, spa_buffer& buffer);

}  // namespace vistrel::stage
