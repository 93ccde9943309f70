#pragma once

#include <set>
#include <string>

namespace vistrel::keyboard {

/// The shortcuts, by the portal's ids, that the user has denied to the program: kept in a file beside the
/// preferences, for a desktop would ask at every login. No denial, no file.
class DeniedShortcuts {
 public:
  DeniedShortcuts();
  [[nodiscard]] bool contains(const std::string& id) const { return ids_.contains(id); }
  void insert(const std::string& id);
  void remove(const std::string& id);

 private:
  void write() const;

  std::string folder_;
  std::set<std::string> ids_;
};

}  // namespace vistrel::keyboard
