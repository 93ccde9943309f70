#pragma once

#include "stage/camera/RawPicture.h"

namespace vistrel::stage {

/// Draws somebody in front of two walls into the lines above `bottom`, with letters on the shirt, by which
/// mirroring is seen. The walls are as red and as blue, and the plant as green,
/// as the halves and the block of the test picture, so that the screen's reader finds the picture.
void drawPerson(RawPicture& picture, int bottom);

}  // namespace vistrel::stage
