#include "linux/files/Autostart.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "linux/files/DesktopEntry.h"

namespace vistrel::files {
namespace {

namespace fs = std::filesystem;

constexpr const char* kLabel = "org.vistrel.Test";

// Autostart folders of a test's own, gone with it.
class AutostartTest : public ::testing::Test {
 protected:
  AutostartTest() {
    std::string pattern = (fs::temp_directory_path() / "autostart.XXXXXX").string();
    root_ = ::mkdtemp(pattern.data());
  }
  ~AutostartTest() override { fs::remove_all(root_); }

  [[nodiscard]] std::string user() const { return root_ + "/user/autostart"; }
  [[nodiscard]] std::string system() const { return root_ + "/system/autostart"; }
  [[nodiscard]] std::string entry() const { return user() + "/" + kLabel + ".desktop"; }
  Autostart autostart(const std::string& program = "/bin/true") const {
    return {AutostartFolders{user(), {system()}}, program, "ubuntu:MATE"};
  }
  static void write(const std::string& path, const std::string& text) {
    fs::create_directories(fs::path(path).parent_path());
    std::ofstream(path) << text;
  }
  static std::string read(const std::string& path) {
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
  }
  bool isEnabled() const {
    auto place = autostart();
    const auto items = place.items();
    if (!items) return false;
    for (const auto& item : items.value()) {
      if (item.label == kLabel) return item.isEnabled;
    }
    return false;
  }

 private:
  std::string root_;
};

TEST_F(AutostartTest, ReadsWhatADesktopWouldStart) {
  struct Case {
    const char* what;
    std::string text;
    bool isEnabled;
  };
  const std::string head = "[Desktop Entry]\nType=Application\n";
  const Case cases[] = {
      {"plain", head + "Exec=/bin/true\n", true},
      {"blanks, comments and line ends of another system",
       "# by hand\n\n [Desktop Entry]\r\n Exec = true \r\n", true},
      {"hidden", head + "Exec=/bin/true\nHidden=true\n", false},
      {"switched off by a desktop", head + "Exec=/bin/true\nX-GNOME-Autostart-enabled=false\n", false},
      {"switched off by MATE", head + "Exec=/bin/true\nX-MATE-Autostart-enabled=false\n", false},
      {"for this desktop", head + "Exec=/bin/true\nOnlyShowIn=GNOME;MATE;\n", true},
      {"for another desktop", head + "Exec=/bin/true\nOnlyShowIn=GNOME;KDE\n", false},
      {"not for this desktop", head + "Exec=/bin/true\nNotShowIn=MATE;\n", false},
      {"not for another desktop", head + "Exec=/bin/true\nNotShowIn=GNOME;\n", true},
      {"switched on by both", head + "Exec=true\nHidden=false\nX-GNOME-Autostart-enabled=true\n", true},
      {"a key of another group", head + "Exec=/bin/true\n\n[Desktop Action x]\nHidden=true\n", true},
      {"a program that is gone", head + "Exec=/gone\nTryExec=/gone/vistrel\n", false},
      {"nothing to start", head, false},
      {"no group", "Exec=/bin/true\n", false},
      {"no text", std::string("\xff\xfe[Desktop Entry]\nExec=x\n"), false},
      {"empty", "", false},
      {"far too large", head + "Exec=/bin/true\n" + std::string(2U << 20U, '#'), false},
  };
  for (const auto& c : cases) {
    write(entry(), c.text);
    EXPECT_EQ(isEnabled(), c.isEnabled) << c.what;
  }
  fs::remove(entry());
  ASSERT_EQ(::mkfifo(entry().c_str(), 0600), 0);
  EXPECT_FALSE(isEnabled()) << "a pipe is never opened";
  fs::remove(entry());
  write(system() + "/" + kLabel + ".desktop", head + "Exec=/bin/true\n");
  EXPECT_TRUE(isEnabled()) << "the system's entry counts";
  write(entry(), head + "Exec=/bin/true\nHidden=true\n");
  EXPECT_FALSE(isEnabled()) << "the user's outranks it";
}

TEST_F(AutostartTest, WritesOneEntryAndTakesItAwayAgain) {
  for (const char* program : {"/bin/true", "/tmp/a dir/\"odd\" $p`a\\th%u/vistrel", "/tmp/tab\there"}) {
    auto place = autostart(program);
    ASSERT_TRUE(place.setEnabled(kLabel, true)) << program;
    const auto written = DesktopEntry::parse(read(entry()));
    ASSERT_TRUE(written);
    EXPECT_EQ(written->value("TryExec"), program);
    EXPECT_EQ(written->value("Exec"), "env VISTREL_AUTOSTART=1 " + DesktopEntry::quotedArgument(program));
    ASSERT_TRUE(place.setEnabled(kLabel, false));
    EXPECT_FALSE(fs::exists(entry())) << program;
    EXPECT_TRUE(place.setEnabled(kLabel, false)) << "twice is nothing";
  }
  EXPECT_EQ(DesktopEntry::quotedArgument("/a $b%\\c"), R"("/a \$b%%\\c")");
  auto place = autostart("/a b\\c");
  ASSERT_TRUE(place.setEnabled(kLabel, true));
  EXPECT_NE(read(entry()).find("Exec=env VISTREL_AUTOSTART=1 \"/a b\\\\\\\\c\"\n"), std::string::npos)
      << "escaped twice: " << read(entry());
  EXPECT_EQ(std::distance(fs::directory_iterator(user()), fs::directory_iterator()), 1)
      << "nothing left over";
}

TEST_F(AutostartTest, KeepsWhatOthersWrote) {
  const std::string foreign =
      "# mine\n[Desktop Entry]\nName[de]=Spiegel\nExec=/old\nHidden=true\nX-GNOME-Autostart-enabled=false\n"
      "X-MATE-Autostart-enabled=false\nOnlyShowIn=KDE;\nX-MATE-Autostart-Delay=5\n\n[Desktop Action "
      "x]\nExec=keep\n";
  write(entry(), foreign);
  ASSERT_TRUE(autostart().setEnabled(kLabel, true));
  EXPECT_TRUE(isEnabled());
  const std::string enabled = read(entry());
  for (const char* kept :
       {"# mine\n", "Name[de]=Spiegel\n", "Delay=5\n", "\n\n[Desktop Action x]\nExec=keep\n"}) {
    EXPECT_NE(enabled.find(kept), std::string::npos) << kept << enabled;
  }
  ASSERT_TRUE(autostart().setEnabled(kLabel, false));
  EXPECT_FALSE(isEnabled());
  EXPECT_NE(read(entry()).find("Delay=5\n"), std::string::npos) << "hidden, not removed";

  fs::remove(entry());
  write(system() + "/" + kLabel + ".desktop", "[Desktop Entry]\nExec=/bin/true\n");
  ASSERT_TRUE(autostart().setEnabled(kLabel, false));
  EXPECT_FALSE(isEnabled()) << "the system's entry is hidden by one of the user's";
  ASSERT_TRUE(autostart().setEnabled(kLabel, true));
  EXPECT_TRUE(isEnabled());
}

TEST_F(AutostartTest, SaysWhatItCannotDo) {
  write(user(), "a file where the folder should be");
  EXPECT_FALSE(autostart().setEnabled(kLabel, true));
  EXPECT_FALSE(autostart().items()) << "no folder can be read";
  EXPECT_TRUE(autostart().setEnabled(kLabel, false)) << "there is nothing to switch off";
  fs::remove(user());
  fs::create_directories(user());
  fs::create_directories(user() + "/" + kLabel + ".desktop");
  EXPECT_FALSE(autostart().setEnabled(kLabel, true)) << "a folder in the entry's place";
  fs::remove_all(user());
  fs::create_symlink("elsewhere", user());
  EXPECT_FALSE(autostart().setEnabled(kLabel, true)) << "a link that leads nowhere";
  fs::create_directories(fs::path(user()).parent_path() / "elsewhere");
  EXPECT_TRUE(autostart().setEnabled(kLabel, true)) << "a link to a folder serves";
  EXPECT_TRUE(isEnabled());
  if (::geteuid() == 0) GTEST_SKIP() << "the superuser may write everywhere";
  ::chmod(user().c_str(), 0500);
  EXPECT_FALSE(autostart().setEnabled(kLabel, false)) << "a folder without leave to write";
  ::chmod(user().c_str(), 0700);
}

}  // namespace
}  // namespace vistrel::files
