// Any bytes as the preferences file: what is written parses, and no member of the old file is lost.
#include <optional>
#include <string>

#include "base/Json.h"
#include "foundation/UserDefaults.h"
#include "simulated/SimulatedDesktop.h"
#include "tests/fuzz/Bytes.h"

using namespace vistrel;

static constexpr const char* kKey = "selectedIcon";

static json::Object othersIn(const std::optional<json::Value>& file) {
  json::Object members = *file->object();
  std::erase_if(members, [](const json::Member& member) { return member.name == kKey; });
  return members;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t length) {
  const std::string old(reinterpret_cast<const char*>(data), length);
  simulated::SimulatedDesktop desktop("/nowhere");
  desktop.files.preferences = old;
  auto& store = UserDefaults::standard();
  store.setInteger(2, kKey);
  fuzz::check(store.integerForKey(kKey) == 2, "the value is not there");
  const auto before = json::parse(old);
  const auto after = json::parse(desktop.files.preferences.value());
  fuzz::check(after && after->object(), "what was written does not parse");
  const bool wasFile = old.empty() || (before && before->object());
  fuzz::check(wasFile == desktop.files.setAside.empty(), "set aside without a reason, or lost");
  if (wasFile && !old.empty())
    fuzz::check(json::write({othersIn(before)}) == json::write({othersIn(after)}), "a member was lost");
  return 0;
}
