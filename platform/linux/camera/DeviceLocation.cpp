#include "linux/camera/DeviceLocation.h"

#include <grp.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <array>
#include <cctype>
#include <fstream>
#include <system_error>
#include <vector>

namespace vistrel::camera {
namespace {

namespace fs = std::filesystem;

std::string firstWord(const fs::path& file) {
  std::ifstream stream(file);
  std::string word;
  stream >> word;
  return word;
}

// The node's own folder and every one above it, up to the bus; empty when the kernel knows no such node.
std::vector<fs::path> placesOf(const std::string& devicePath, const fs::path& sysfs) {
  std::error_code error;
  const auto root = fs::canonical(sysfs, error);
  const auto node = fs::canonical(sysfs / "class/video4linux" / fs::path(devicePath).filename(), error);
  std::vector<fs::path> places;
  if (error) return places;
  for (fs::path place = node; place.has_relative_path() && place != root; place = place.parent_path())
    places.push_back(place);
  return places;
}

bool isVirtual(const fs::path& place) { return place.string().find("/virtual/") != std::string::npos; }

// The folder of the USB device among `places`; empty for a node that hangs elsewhere.
fs::path usbDeviceAmong(const std::vector<fs::path>& places) {
  std::error_code ignored;
  for (const fs::path& place : places)
    if (fs::exists(place / "idVendor", ignored)) return place;
  return {};
}

bool isDigit(char c) { return std::isdigit(static_cast<unsigned char>(c)) != 0; }

// The digits at the front of `text`, without leading zeros, taken off it.
std::string_view takeNumber(std::string_view& text) {
  std::size_t end = 0;
  while (end < text.size() && isDigit(text[end])) ++end;
  auto number = text.substr(0, end);
  text.remove_prefix(end);
  while (number.size() > 1 && number.front() == '0') number.remove_prefix(1);
  return number;
}

}  // namespace

DeviceLocation deviceLocationOf(const std::string& devicePath, const fs::path& sysfs) {
  const auto places = placesOf(devicePath, sysfs);
  if (places.empty()) return DeviceLocation::External;
  std::error_code ignored;
  for (const fs::path& place : places) {
    const std::string word = firstWord(place / "removable");
    if (word == "fixed") return DeviceLocation::BuiltIn;
    if (word == "removable") return DeviceLocation::External;
    // What follows are the hubs, whose word says nothing of what is plugged into them.
    if (fs::exists(place / "idVendor", ignored)) break;
  }
  const bool isExternal =
      places.front().string().find("/usb") != std::string::npos || isVirtual(places.front());
  return isExternal ? DeviceLocation::External : DeviceLocation::BuiltIn;
}

std::string usbProductOf(const std::string& devicePath, const fs::path& sysfs) {
  const fs::path device = usbDeviceAmong(placesOf(devicePath, sysfs));
  return device.empty() ? "" : firstWord(device / "idVendor") + ":" + firstWord(device / "idProduct");
}

std::string placeOf(const std::string& devicePath, const fs::path& sysfs) {
  const auto places = placesOf(devicePath, sysfs);
  if (places.empty()) return devicePath;
  const fs::path& node = places.front();
  return isVirtual(node) ? node : node.parent_path().parent_path() / firstWord(node / "index");
}

// What cannot be known: whether a node that hangs elsewhere is a camera's (decoders and the queues of image
// processors have nodes too), whether one in software gives pictures or takes them, and whether the first one
// of a USB device sees colors. The others of a USB device are metadata or an infrared sensor as a rule.
bool seemsCamera(const std::string& devicePath, const fs::path& sysfs) {
  const auto places = placesOf(devicePath, sysfs);
  if (places.empty()) return false;
  if (isVirtual(places.front())) return firstWord(places.front() / "index") == "0";
  const fs::path device = usbDeviceAmong(places);
  if (device.empty()) return false;
  std::error_code error;
  const std::string place = placeOf(devicePath, sysfs);
  const fs::directory_iterator nodes(sysfs / "class/video4linux", error);
  for (auto node = nodes; !error && node != fs::directory_iterator(); node.increment(error)) {
    const std::string other = node->path().filename();
    const bool isSibling = other.starts_with("video") && usbDeviceAmong(placesOf(other, sysfs)) == device;
    if (isSibling && isPathBefore(placeOf(other, sysfs), place)) return false;
  }
  return true;
}

std::string groupOf(const std::string& devicePath) {
  struct stat node{};
  const bool isShared =
      ::stat(devicePath.c_str(), &node) == 0 && (node.st_mode & S_IRWXG) >= (S_IRGRP | S_IWGRP);
  group entry{};
  group* found = nullptr;
  std::array<char, 16384> memory{};
  if (isShared) ::getgrgid_r(node.st_gid, &entry, memory.data(), memory.size(), &found);
  return found ? found->gr_name : "";
}

bool isAlias(const std::string& devicePath, const fs::path& sysfs) {
  struct stat status{};
  if (::stat(devicePath.c_str(), &status) != 0 || !S_ISCHR(status.st_mode)) return false;
  const std::string number =
      std::to_string(major(status.st_rdev)) + ":" + std::to_string(minor(status.st_rdev));
  std::error_code error;
  const fs::path own = fs::read_symlink(sysfs / "dev/char" / number, error).filename();
  const fs::path path = devicePath;
  return !own.empty() && own != path.filename() && fs::exists(path.parent_path() / own, error);
}

bool isPathBefore(std::string_view a, std::string_view b) {
  while (!a.empty() && !b.empty()) {
    if (isDigit(a.front()) && isDigit(b.front())) {
      const auto x = takeNumber(a);
      const auto y = takeNumber(b);
      if (x != y) return x.size() != y.size() ? x.size() < y.size() : x < y;
      continue;
    }
    if (a.front() != b.front()) return a.front() < b.front();
    a.remove_prefix(1);
    b.remove_prefix(1);
  }
  return a.empty() && !b.empty();
}

}  // namespace vistrel::camera
