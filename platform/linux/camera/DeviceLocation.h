#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace vistrel::camera {

enum class DeviceLocation { BuiltIn, External };

/// Whether the camera behind a node such as "/dev/video0" is part of the machine: by the kernel's word where
/// it gives one ("removable" of the USB port), else built in unless it hangs on USB or exists in software
/// only.
[[nodiscard]] DeviceLocation deviceLocationOf(const std::string& devicePath,
                                              const std::filesystem::path& sysfs = "/sys");

/// The "vendor:product" of the USB device behind such a node; empty for one that hangs elsewhere.
[[nodiscard]] std::string usbProductOf(const std::string& devicePath,
                                       const std::filesystem::path& sysfs = "/sys");

/// Where such a node is attached, which the order of plugging does not change: the kernel's path of its
/// device and its number there. Of one that exists in software only and of one that the kernel does not know,
/// the number that it bears is all there is.
[[nodiscard]] std::string placeOf(const std::string& devicePath, const std::filesystem::path& sysfs = "/sys");

/// Whether such a node is a camera's, as far as can be known without opening it: the first one of a device
/// on USB or in software.
[[nodiscard]] bool seemsCamera(const std::string& devicePath, const std::filesystem::path& sysfs = "/sys");

/// The group that may read and write such a node; empty where there is no such group.
[[nodiscard]] std::string groupOf(const std::string& devicePath);

/// True for another name, such as a link's, of a node that is there under the kernel's own name, too: the
/// node's number decides.
[[nodiscard]] bool isAlias(const std::string& devicePath, const std::filesystem::path& sysfs = "/sys");

/// Orders paths as people do: "/dev/video2" before "/dev/video10".
[[nodiscard]] bool isPathBefore(std::string_view a, std::string_view b);

}  // namespace vistrel::camera
