#pragma once

#include <array>
#include <string_view>

#include "base/Program.h"

namespace vistrel::keyboard {

/// Under what KDE files the shortcuts that its portal has bound for Vistrel: the application id or, without
/// one, the portal's session.
inline constexpr std::array<std::string_view, 2> kOurKdeComponents = {program::kIdentifier, "token_vistrel"};

}  // namespace vistrel::keyboard
