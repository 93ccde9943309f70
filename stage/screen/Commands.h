#pragma once

#include <functional>
#include <map>
#include <span>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "stage/screen/Input.h"
#include "stage/screen/Screen.h"

namespace vistrel::stage {

using Words = std::vector<std::string>;

/// The commands of the screen program: words in, one JSON object out.
class Commands {
 public:
  explicit Commands(const Screen& screen);

  /// An unknown command or a wrong argument gives an object with "error".
  [[nodiscard]] nlohmann::json perform(const Words& words) const;
  [[nodiscard]] std::string names() const;

 private:
  using Command = std::function<nlohmann::json(const Words& arguments)>;
  void addPointer();
  void addKeyboard();
  void addSight();
  void addWindows();

  const Screen& screen_;
  Input input_;
  std::map<std::string, Command> commands_;
};

}  // namespace vistrel::stage
