#pragma once

/// The names of logind on the system bus (org.freedesktop.login1).
namespace vistrel::session::logind {

inline constexpr const char* kService = "org.freedesktop.login1";
inline constexpr const char* kPath = "/org/freedesktop/login1";
inline constexpr const char* kManager = "org.freedesktop.login1.Manager";

}  // namespace vistrel::session::logind
