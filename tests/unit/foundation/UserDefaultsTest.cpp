#include "foundation/UserDefaults.h"

#include <gtest/gtest.h>

#include "simulated/SimulatedDesktop.h"

namespace vistrel {
namespace {

TEST(UserDefaults, ReadsEachTypeByTheStoresRules) {
  struct Case {
    std::string json;
    std::int64_t integer;
    bool boolean;
    std::optional<std::string> text;
  };
  const std::vector<Case> cases = {{"7", 7, true, "7"},
                                   {"0", 0, false, "0"},
                                   {"-9223372036854775808", INT64_MIN, true, "-9223372036854775808"},
                                   {"2.5", 2, true, "2.5"},
                                   {"true", 1, true, "1"},
                                   {"false", 0, false, "0"},
                                   {"\"7\"", 0, false, "7"},
                                   {"null", 0, false, std::nullopt},
                                   {"[1]", 0, false, std::nullopt}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.json);
    simulated::SimulatedDesktop desktop(VISTREL_RESOURCES);
    desktop.files.preferences = "{\"key\": " + c.json + "}";
    auto& store = UserDefaults::standard();
    store.registerDefaults({{"key", std::int64_t{9}}});
    EXPECT_EQ(store.integerForKey("key"), c.integer);
    EXPECT_EQ(store.boolForKey("key"), c.boolean);
    EXPECT_EQ(store.stringForKey("key"), c.text);
    EXPECT_TRUE(store.objectForKey("key").has_value());
    EXPECT_EQ(store.objectForKey("missing"), std::nullopt);
  }
}

TEST(UserDefaults, WritesItsOwnKeyOnly) {
  simulated::SimulatedDesktop desktop(VISTREL_RESOURCES);
  auto& store = UserDefaults::standard();
  store.registerDefaults({{"mirrored", true}});
  EXPECT_TRUE(store.boolForKey("mirrored"));
  desktop.files.preferences = R"({"other": {"deep": [1, "x"]}, "size": 1})";
  store.setInteger(2, "size");
  store.setBool(false, "mirrored");
  EXPECT_EQ(desktop.files.preferences,
            "{\n  \"other\": {\n    \"deep\": [\n      1,\n      \"x\"\n    ]\n  },\n"
            "  \"size\": 2,\n  \"mirrored\": false\n}\n");
  EXPECT_FALSE(store.boolForKey("mirrored"));
}

TEST(UserDefaults, SurvivesWhatTheDiskDoes) {
  for (const std::string& unreadable :
       {std::string("{\"size\": 1"), std::string("[]"), std::string("\xff\xfe"),
        "{}" + std::string(backend::UserFiles::kTooLarge, ' ')}) {
    simulated::SimulatedDesktop desktop(VISTREL_RESOURCES);
    auto& store = UserDefaults::standard();
    desktop.files.preferences = unreadable;
    EXPECT_EQ(store.integerForKey("size"), 0);
    EXPECT_EQ(desktop.files.setAside, std::vector<std::string>{unreadable});
    // Another program breaks the file between two writes.
    desktop.files.preferences = unreadable;
    store.setInteger(2, "size");
    EXPECT_EQ(desktop.files.setAside.size(), 2U);
    EXPECT_EQ(desktop.files.preferences, "{\n  \"size\": 2\n}\n");
    desktop.files.writeError = "disk full";
    store.setInteger(1, "size");
    EXPECT_EQ(store.integerForKey("size"), 1);
  }
}

}  // namespace
}  // namespace vistrel
