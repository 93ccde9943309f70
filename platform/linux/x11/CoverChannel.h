#pragma once

#include <cstddef>

namespace vistrel::x11 {

/// How `InputCover` and the program that shows its windows speak: packets on this descriptor of that program.
/// To it each packet is all the rectangles (`xcb_rectangle_t`) that are to be covered; from it there is one
/// byte, once it can cover something. It ends with the other end of the channel.
inline constexpr int kCoverChannel = 0;
inline constexpr std::size_t kMostCoverParts = 256;

}  // namespace vistrel::x11
