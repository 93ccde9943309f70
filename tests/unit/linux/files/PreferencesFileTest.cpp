#include "linux/files/PreferencesFile.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "linux/FileDescriptor.h"
#include "tests/unit/linux/PollReactor.h"

namespace vistrel::files {
namespace {

namespace fs = std::filesystem;

class PreferencesFileTest : public testing::Test {
 protected:
  PreferencesFileTest() { fs::create_directories(folder_); }
  ~PreferencesFileTest() override { fs::remove_all(folder_); }

  static std::string read(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  static void write(const fs::path& path, const std::string& text) { std::ofstream(path) << text; }
  /// Adds a letter to the content; what begins with '?' makes no sense.
  void add(PreferencesFile& file, char letter) {
    const auto edit = [letter](const std::optional<std::string>& present) -> std::optional<std::string> {
      if (present && present->starts_with('?')) return std::nullopt;
      return present.value_or("") + letter;
    };
    file.editPreferences(edit, [this](const auto& outcome) {
      outcomes_.push_back(outcome ? outcome.value().value_or("fine") : outcome.error().message);
    });
  }
  void addAndWait(char letter) {
    PreferencesFile file(reactor_, folder_);
    add(file, letter);
    EXPECT_TRUE(reactor_.runUntil([&] { return !outcomes_.empty(); }));
  }
  std::size_t files() { return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder_), {})); }

  const fs::path folder_ = fs::temp_directory_path() / ("preferences-test-" + std::to_string(::getpid()));
  const fs::path path_ = folder_ / "preferences.json";
  desktop::PollReactor reactor_;
  std::vector<std::string> outcomes_;
};

TEST_F(PreferencesFileTest, WaitsForNoDiskAndLosesNothingAtAnOrderlyEnd) {
  {
    PreferencesFile file(reactor_, folder_);
    const desktop::FileDescriptor lock(::open(folder_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    ASSERT_EQ(::flock(lock.get(), LOCK_EX), 0);
    for (const char letter : {'a', 'b', 'c'}) add(file, letter);
    EXPECT_FALSE(fs::exists(path_)) << "nobody waited for the lock";
    ::flock(lock.get(), LOCK_UN);
  }
  EXPECT_EQ(read(path_), "abc");
  EXPECT_EQ(outcomes_, std::vector<std::string>(3, "fine"));
}

TEST_F(PreferencesFileTest, LeavesOneFileForThisUserAlone) {
  write(path_, "x");
  fs::permissions(path_, fs::perms(0644));
  write(folder_ / "preferences.json.new", "of a process that was killed");
  addAndWait('a');
  EXPECT_EQ(read(path_), "xa");
  EXPECT_EQ(fs::status(path_).permissions(), fs::perms(0600));
  EXPECT_EQ(files(), 1U);
}

TEST_F(PreferencesFileTest, FollowsALinkThatLeadsNowhereYet) {
  fs::create_symlink("elsewhere.json", path_);
  addAndWait('a');
  EXPECT_TRUE(fs::is_symlink(path_));
  EXPECT_EQ(read(folder_ / "elsewhere.json"), "a");
}

TEST_F(PreferencesFileTest, SetsAsideUnderTheNextNumber) {
  write(path_, "?");
  for (const char* number : {"1", "1000", "x", "99999999999999999999"})
    write(path_.string() + ".unreadable-" + number, "old");
  addAndWait('a');
  EXPECT_EQ(outcomes_, std::vector<std::string>{path_.string() + ".unreadable-1001"});
  EXPECT_EQ(read(path_), "a");
  EXPECT_EQ(read(path_.string() + ".unreadable-1001"), "?");
}

TEST_F(PreferencesFileTest, RefusesWhatWouldBeTooLarge) {
  const std::string large(backend::UserFiles::kTooLarge - 1, 'x');
  write(path_, large);
  addAndWait('a');
  EXPECT_NE(outcomes_[0].find("larger than 1 MiB"), std::string::npos);
  EXPECT_EQ(read(path_), large);
}

}  // namespace
}  // namespace vistrel::files
