#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include <spa/pod/builder.h>

#include "stage/camera/Options.h"
#include "stage/camera/PictureSource.h"

namespace vistrel::stage {

/// What a reader asked for; without a raw format it is MJPEG.
struct ChosenFormat {
  std::optional<std::uint32_t> rawFormat;
  spa_rectangle size{};
  spa_fraction rate{};
};

// What a camera tells its readers, as PipeWire's parameters in the builder's memory.

/// All that the camera offers (SPA_PARAM_EnumFormat), and what an evil one adds to it.
[[nodiscard]] std::vector<const spa_pod*> describeFormats(spa_pod_builder& builder, const Options& options);
/// The buffers that the pictures need, and what is told with each. `types`: a bit for each kind of memory
/// (SPA_DATA_…) that they may have.
[[nodiscard]] std::array<const spa_pod*, 3> describeBuffers(spa_pod_builder& builder,
                                                            const PictureSource& source, int types);

/// None for a format that makes no sense.
[[nodiscard]] std::optional<ChosenFormat> parseFormat(const spa_pod* format);
[[nodiscard]] bool matches(const Offer& offer, const ChosenFormat& chosen);

}  // namespace vistrel::stage
