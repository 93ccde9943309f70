#include "simulated/SimulatedTray.h"

#include <filesystem>

namespace vistrel::simulated {

std::string SimulatedTray::shownIcon() const {
  return icons.empty() ? std::string() : std::filesystem::path(icons.back()).stem().string();
}

}  // namespace vistrel::simulated
