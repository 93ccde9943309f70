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
};

[[nodiscard]] std::optional<Evil> evilFromName(std::string_view name);

/// Makes what the buffer says of the frame in it a lie of that kind.
void spoil(Evil kind, spa_buffer& buffer);

}  // namespace vistrel::stage
