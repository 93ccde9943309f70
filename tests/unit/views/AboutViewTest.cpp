#include "views/AboutView.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "simulated/SimulatedDesktop.h"
#include "swiftui/View.h"

namespace vistrel {
namespace {

class AboutViewTest : public ::testing::Test {
 protected:
  simulated::SimulatedDesktop desktop{VISTREL_RESOURCES};
};

TEST_F(AboutViewTest, SaysTheVersionAsFarAsItIsKnown) {
  struct Case {
    const char* info;
    const char* line;
  };
  for (const auto& c : {Case{R"({"CFBundleShortVersionString": "2.0", "CFBundleVersion": "15"})", "2.0 (15)"},
                        Case{R"({"CFBundleShortVersionString": "2.0", "CFBundleVersion": 15})", "2.0"},
                        Case{R"({"CFBundleVersion": "15"})", "15"}, Case{"{}", ""}, Case{"not JSON", ""}}) {
    desktop.resourceFolder.overrides["Info.json"] = c.info;
    EXPECT_EQ(AboutView::versionLine(), c.line) << c.info;
  }
  desktop.resourceFolder.overrides["Info.json"] = std::nullopt;
  EXPECT_EQ(AboutView::versionLine(), "");
}

TEST_F(AboutViewTest, ThanksSevenWithoutBreakingANameAndLinksToPagesThatShip) {
  AboutView view;
  std::string credits;
  std::vector<std::string> links;
  view.body().walk([&](const swiftui::View& part) {
    if (part.hasFixedHeight) credits = part.text();
    if (const auto* link = std::get_if<swiftui::LinkContent>(&part.content)) {
      links.push_back(link->title);
      link->action();
    }
  });
  std::size_t commas = 0;
  for (const char c : credits) commas += c == ',';
  EXPECT_EQ(commas, 6U) << credits;
  EXPECT_NE(credits.find(", and\u00a0"), std::string::npos) << credits;
  EXPECT_TRUE(credits.ends_with(".")) << credits;
  EXPECT_EQ(links, (std::vector<std::string>{"FAQ", "© the Vistrel developers"}));
  ASSERT_EQ(desktop.simulatedSession.openedUrls.size(), 2U);
  for (const auto& url : desktop.simulatedSession.openedUrls) {
    ASSERT_TRUE(url.starts_with("file:///")) << url;
    EXPECT_TRUE(desktop.resourceFolder.read(url.substr(7))) << url;
  }
}

TEST_F(AboutViewTest, OpensAddressesAndNothingElse) {
  for (const char* broken : {"", "https://a b", "https://a/%zz", "https://ä"}) openAddress(broken);
  openAddress("https://vistrel.example/faq?a=%20b#c");
  desktop.simulatedSession.hasBrowser = false;
  openAddress("https://vistrel.example/");
  EXPECT_EQ(desktop.simulatedSession.openedUrls.size(), 1U);
}

}  // namespace
}  // namespace vistrel
