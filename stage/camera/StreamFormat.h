#pragma once

#include <cstdint>
#include <optional>

#include <spa/pod/builder.h>

#include "stage/camera/Options.h"

namespace vistrel::stage {

/// What a reader asked for; without a raw format it is MJPEG.
struct ChosenFormat {
  std::optional<std::uint32_t> rawFormat;
  spa_rectangle size{};
  spa_fraction rate{};
};

/// An offer as PipeWire's parameter (SPA_PARAM_EnumFormat), in the builder's memory.
const spa_pod* describe(spa_pod_builder& builder, const Offer& offer);
/// None for a format that makes no sense.
[[nodiscard]] std::optional<ChosenFormat> parseFormat(const spa_pod* format);
[[nodiscard]] bool matches(const Offer& offer, const ChosenFormat& chosen);

}  // namespace vistrel::stage
