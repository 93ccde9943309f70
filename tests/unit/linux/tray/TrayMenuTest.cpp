#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "linux/qt/MenuRows.h"
#include "linux/tray/MenuPlan.h"

namespace vistrel::tray {
namespace {

using Names = std::vector<std::string>;

// "-" is a separator; what stands before ":" is the title, behind it the action.
std::vector<MenuRow> rows(const Names& names) {
  std::vector<MenuRow> result;
  for (const auto& name : names) {
    const auto colon = name.find(':');
    if (name == "-") {
      result.push_back({MenuRow::Kind::Separator, {}, {}});
    } else {
      result.push_back({MenuRow::Kind::Item, name.substr(0, colon),
                        colon == std::string::npos ? "choose" : name.substr(colon + 1)});
    }
  }
  return result;
}

// Follows the steps as a menu would, and tells how many rows stayed.
int rowsKept(const Names& present, const Names& wanted) {
  const auto before = rows(present);
  const auto after = rows(wanted);
  std::vector<MenuRow> shown;
  int kept = 0;
  for (const auto& step : planMenu(before, after)) {
    if (step.kind == MenuStep::Kind::Remove) continue;
    if (step.kind == MenuStep::Kind::Keep) {
      EXPECT_EQ(before[step.present], after[step.wanted]);
      ++kept;
    }
    shown.push_back(after[step.wanted]);
  }
  EXPECT_EQ(shown, after);
  return kept;
}

TEST(TrayMenu, AsManyRowsStayAsCan) {
  struct Case {
    Names present;
    Names wanted;
    int kept;
  };
  const Case cases[] = {
      {{"One", "-", "Quit:quit"}, {"One", "-", "Quit:quit"}, 3},
      {{"One", "-", "Quit:quit"}, {"One", "Two", "-", "Quit:quit"}, 3},
      {{"One", "Two", "-", "Quit:quit"}, {"Two", "-", "Quit:quit"}, 3},
      {{"One", "Two", "-"}, {"Two", "One", "-"}, 2},
      {{"Same", "Same", "-"}, {"Same", "-"}, 2},
      {{"Quit:choose", "-"}, {"Quit:quit", "-"}, 1},
      {{"Vistrel:"}, {"-", "Quit:quit"}, 0},
      {{}, {"One"}, 0},
  };
  for (const auto& [present, wanted, kept] : cases) EXPECT_EQ(rowsKept(present, wanted), kept);
}

TEST(TrayMenu, TitlesAreTextOnOneLine) {
  struct Case {
    std::string title;
    const char* row;
    const char* qtLabel;
    const char* busLabel;
  };
  const Case cases[] = {
      {"Camera", "Camera", "Camera", "Camera"},
      {"A & B & C", "A & B & C", "A && B && C", "A && B & C"},
      {"Cam_1 & 2", "Cam_1 & 2", "Cam_1 && 2", "Cam__1 && 2"},
      {"R&", "R&", "R&&", "R&"},
      {"two\nlines\t<b>bold</b>", "two lines <b>bold</b>", "two lines <b>bold</b>", "two lines <b>bold</b>"},
      {"", "(no name)", "(no name)", "(no name)"},
      {"\n \u200f", "(no name)", "(no name)", "(no name)"},
  };
  for (const auto& [title, row, qtLabel, busLabel] : cases) {
    const QString text = qt::menuRowText(title);
    EXPECT_EQ(text.toStdString(), row);
    EXPECT_EQ(qt::labelForQtMenu(text).toStdString(), qtLabel);
    EXPECT_EQ(qt::labelForBusMenu(text).toStdString(), busLabel);
  }
}

TEST(TrayMenu, ALongTitleLosesItsMiddleAndNoHalfCharacter) {
  std::string title = "Begin";
  for (int i = 0; i < 500; ++i) title += "e\u0301";
  title += "End";
  const std::string row = qt::menuRowText(title).toStdString();
  EXPECT_LT(row.size(), 200U);
  EXPECT_TRUE(row.starts_with("Begin") && row.ends_with("End"));
  EXPECT_NE(row.find("e\u0301…e\u0301"), std::string::npos);
}

}  // namespace
}  // namespace vistrel::tray
