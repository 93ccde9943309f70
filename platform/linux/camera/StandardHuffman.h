#pragma once

#include "linux/camera/JpegHeader.h"

namespace vistrel::camera {

/// The typical codes of ITU-T T.81, annex K.3, which hold where a camera sends none. `isChroma` chooses the
/// second of each.
[[nodiscard]] const HuffmanSpec& standardDcCode(bool isChroma);
[[nodiscard]] const HuffmanSpec& standardAcCode(bool isChroma);

}  // namespace vistrel::camera
