#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using testing::IsEmpty;

const fs::path kRoot = TARVO_SOURCE_DIR;

/// The rooms of the house and what each may include besides itself.
const std::map<std::string, std::set<std::string>> kMayInclude = {
    {"core", {}},
    {"view", {"core"}},
    {"state", {"core"}},
    {"bus", {"core", "view", "state"}},
    {"calibration", {"core", "view", "state", "bus"}},
    {"pages", {"core", "view", "state", "bus"}},
    {"models", {"core", "view", "state", "bus", "calibration", "pages"}},
    {"config", {"core", "view", "state", "bus", "pages"}},
    {"shell", {"core", "view", "state", "bus", "calibration", "pages", "models", "config"}},
    {"platform", {"core", "view", "state", "bus", "config", "shell"}},
};

std::vector<fs::path> SourcesBelow(const fs::path& folder) {
  std::vector<fs::path> sources;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    const std::string extension = entry.path().extension().string();
    if (extension == ".h" || extension == ".cpp") sources.push_back(entry.path());
  }
  return sources;
}

/// What the file includes, without quotes or brackets.
std::vector<std::string> IncludesOf(const fs::path& source) {
  std::vector<std::string> includes;
  std::ifstream file(source);
  for (std::string line; std::getline(file, line);) {
    if (!line.starts_with("#include ") || line.size() < 12) continue;
    includes.push_back(line.substr(10, line.find_last_of("\">") - 10));
  }
  return includes;
}

std::string FirstFolder(const std::string& path) {
  const auto slash = path.find('/');
  return slash == std::string::npos ? std::string() : path.substr(0, slash);
}

TEST(Includes, GoDownTheHouseOrStayInTheirRoom) {
  std::vector<std::string> upward;
  std::size_t checked = 0;
  for (const fs::path& source : SourcesBelow(kRoot / "src")) {
    const std::string room = FirstFolder(fs::relative(source, kRoot / "src").generic_string());
    ASSERT_TRUE(kMayInclude.contains(room)) << source << " stands in a room that nobody knows";
    for (const std::string& include : IncludesOf(source)) {
      const std::string target = FirstFolder(include);
      if (!kMayInclude.contains(target)) continue;
      ++checked;
      if (target != room && !kMayInclude.at(room).contains(target)) {
        upward.push_back(fs::relative(source, kRoot).generic_string() + " includes " + include);
      }
    }
  }
  EXPECT_GT(checked, 50U);
  EXPECT_THAT(upward, IsEmpty());
}

TEST(Includes, KeepTheToolkitOutOfTheProgram) {
  std::vector<std::string> toolkit;
  for (const char* folder : {"src", "console", "simulator"}) {
    for (const fs::path& source : SourcesBelow(kRoot / folder)) {
      for (const std::string& include : IncludesOf(source)) {
        if (include.starts_with("Q")) toolkit.push_back(source.generic_string() + " includes " + include);
      }
    }
  }
  EXPECT_THAT(toolkit, IsEmpty());
}

TEST(Includes, KeepTheSystemInPlatform) {
  const std::set<std::string> system = {"termios.h", "fcntl.h", "unistd.h", "poll.h", "sys/ioctl.h", "libserialport.h"};
  std::vector<std::string> found;
  for (const fs::path& source : SourcesBelow(kRoot / "src")) {
    if (source.generic_string().find("/src/platform/") != std::string::npos) continue;
    for (const std::string& include : IncludesOf(source)) {
      if (system.contains(include)) found.push_back(source.generic_string() + " includes " + include);
    }
  }
  EXPECT_THAT(found, IsEmpty());
}

/// Every "file includes target" below `folder` whose target is one of `forbidden`.
std::vector<std::string> IncludesOfRooms(const fs::path& folder, const std::set<std::string>& forbidden) {
  std::vector<std::string> found;
  for (const fs::path& source : SourcesBelow(folder)) {
    for (const std::string& include : IncludesOf(source)) {
      if (forbidden.contains(FirstFolder(include))) found.push_back(source.generic_string() + " includes " + include);
    }
  }
  return found;
}

TEST(Includes, KeepTheFrontsOutOfTheProgram) {
  EXPECT_THAT(IncludesOfRooms(kRoot / "src", {"desktop", "console", "simulator"}), IsEmpty());
}

TEST(Includes, KeepThePagesOutOfTheSimulator) {
  EXPECT_THAT(IncludesOfRooms(kRoot / "simulator", {"pages", "models", "shell", "config", "calibration"}), IsEmpty());
}

}  // namespace
