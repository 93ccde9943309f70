#pragma once

#include <cstdint>

namespace vistrel {

/// The outcome of a platform call: `noErr`, or one of the published negative values.
using OSStatus = std::int32_t;
/// Four characters in a number, the first one in the highest byte.
using OSType = std::uint32_t;

inline constexpr OSStatus noErr = 0;
inline constexpr OSStatus paramErr = -50;
inline constexpr OSStatus errAEWrongDataType = -1703;
inline constexpr OSStatus eventParameterNotFoundErr = -9870;
inline constexpr OSStatus eventNotHandledErr = -9874;
inline constexpr OSStatus eventHotKeyExistsErr = -9878;
inline constexpr OSStatus eventHotKeyInvalidErr = -9879;

}  // namespace vistrel
