#include "platform/settings_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <optional>
#include <string>

#include "support/another_process.h"
#include "support/pseudo_terminal.h"
#include "support/temporary_folder.h"

namespace tarvo::platform {
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;

void Put(const fs::path& path, const std::string& content) {
  std::ofstream(path, std::ios::binary) << content;
}

std::string ContentOf(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::ptrdiff_t EntriesIn(const fs::path& folder) {
  return std::distance(fs::directory_iterator(folder), fs::directory_iterator());
}

/// Sets or clears a variable of the environment until this object ends.
class Variable {
 public:
  Variable(const char* name, const std::optional<std::string>& value) : name_(name) {
    if (const char* old = getenv(name)) old_ = old;
    Set(value);
  }
  Variable(const Variable&) = delete;
  Variable& operator=(const Variable&) = delete;
  ~Variable() { Set(old_); }

 private:
  void Set(const std::optional<std::string>& value) const {
    if (value) {
      setenv(name_, value->c_str(), 1);
    } else {
      unsetenv(name_);
    }
  }

  const char* name_;
  std::optional<std::string> old_;
};

bool AsOrdinaryUser(const std::function<bool()>& check) {
  return test::InAnotherProcess(test::User::kOrdinary, [&] { return check() ? 1 : 0; }) == 1;
}

class SettingsFileTest : public testing::Test {
 protected:
  test::TemporaryFolder folder;
  fs::path path = folder / "Tarvo.conf";
};

TEST_F(SettingsFileTest, IsFoundInTheConfigurationFolder) {
  const Variable home("HOME", "/home/ada");
  const Variable folderSet("XDG_CONFIG_HOME", "/home/ada/settings");
  EXPECT_EQ(SettingsFile::DefaultPath(), "/home/ada/settings/Tarvo/Tarvo.conf");
  {
    const Variable unset("XDG_CONFIG_HOME", std::nullopt);
    EXPECT_EQ(SettingsFile::DefaultPath(), "/home/ada/.config/Tarvo/Tarvo.conf");
  }
  // A path that is not absolute does not count.
  for (const char* ignored : {"", "settings"}) {
    const Variable bad("XDG_CONFIG_HOME", ignored);
    EXPECT_EQ(SettingsFile::DefaultPath(), "/home/ada/.config/Tarvo/Tarvo.conf");
  }
}

TEST_F(SettingsFileTest, ReadsWhatIsThere) {
  Put(path, "# mine\nCOM1=/dev/ttyUSB0\nAUTOSCAN=TRUE\n");
  SettingsFile file(path);
  EXPECT_TRUE(file.Load().Ok());
  EXPECT_EQ(file.Value("COM1"), "/dev/ttyUSB0");
  EXPECT_EQ(file.Value("AUTOSCAN"), "TRUE");
  EXPECT_EQ(file.Value("COM2"), std::nullopt);
}

TEST_F(SettingsFileTest, AMissingFileIsAnEmptyOne) {
  for (const fs::path& missing : {path, folder / "no" / "such" / "folder", fs::path()}) {
    SettingsFile file(missing);
    EXPECT_TRUE(file.Load().Ok()) << missing;
    EXPECT_EQ(file.Value("COM1"), std::nullopt);
  }
}

struct BadRow {
  const char* what;
  std::function<void(const fs::path&)> make;
  const char* told;
};

const BadRow kBadRows[] = {
    {"a folder", [](const fs::path& at) { fs::create_directory(at); }, "it is a folder."},
    {"a pipe", [](const fs::path& at) { ASSERT_EQ(mkfifo(at.c_str(), 0600), 0); }, "it is not a file."},
    // A device of the test's own, in a folder that takes no files: a store that went wrong could replace a real one.
    {"a device",
     [](const fs::path& at) {
       static const test::PseudoTerminal device;
       fs::create_symlink(device.Name(), at);
     },
     "it is not a file."},
    {"a link to itself", [](const fs::path& at) { fs::create_symlink(at, at); }, "Too many levels of symbolic links."},
    {"binary junk", [](const fs::path& at) { Put(at, std::string("COM1=a\n\0\x01\xFF", 10)); },
     "it is damaged (not a text)."},
    {"a file too large", [](const fs::path& at) { Put(at, "COM1=a\n" + std::string(1 << 20, '\n')); },
     "it is larger than 1 MiB."},
};

TEST_F(SettingsFileTest, TellsWhyItCannotBeReadAndHasNoSettings) {
  for (const BadRow& row : kBadRows) {
    SCOPED_TRACE(row.what);
    row.make(path);
    SettingsFile file(path);
    const core::Status status = file.Load();
    EXPECT_FALSE(status.Ok());
    EXPECT_THAT(status.Description(), AllOf(HasSubstr("The settings file " + path.string()), EndsWith(row.told)));
    EXPECT_EQ(file.Value("COM1"), std::nullopt);
    fs::remove_all(path);
  }
}

TEST_F(SettingsFileTest, ChangesNothingThatItCannotRead) {
  for (const BadRow& row : kBadRows) {
    SCOPED_TRACE(row.what);
    row.make(path);
    const fs::file_type type = fs::symlink_status(path).type();
    const std::string content = type == fs::file_type::regular ? ContentOf(path) : "";
    SettingsFile file(path);
    EXPECT_FALSE(file.Store("COM1", "b").Ok());
    EXPECT_EQ(fs::symlink_status(path).type(), type);
    EXPECT_EQ(type == fs::file_type::regular ? ContentOf(path) : "", content);
    fs::remove_all(path);
  }
  EXPECT_EQ(EntriesIn(folder.Path()), 0);
}

TEST_F(SettingsFileTest, TellsMissingRights) {
  Put(path, "COM1=a\n");
  fs::permissions(folder.Path(), fs::perms::all);
  fs::permissions(path, fs::perms::none);
  EXPECT_TRUE(AsOrdinaryUser([&] {
    SettingsFile file(path);
    return file.Load().Description() == "The settings file " + path.string() + " cannot be read: Permission denied.";
  }));
}

TEST_F(SettingsFileTest, ForgetsTheOldSettingsWhenTheFileTurnsBad) {
  Put(path, "COM1=a\n");
  SettingsFile file(path);
  ASSERT_TRUE(file.Load().Ok());
  Put(path, std::string(1, '\0'));
  EXPECT_FALSE(file.Load().Ok());
  EXPECT_EQ(file.Value("COM1"), std::nullopt);
}

TEST_F(SettingsFileTest, StoresOneValueAndKeepsEveryOtherLine) {
  Put(path, "# mine\r\nunknown line\nAUTOSCAN=TRUE\n\nCOM1=/dev/ttyUSB0");
  SettingsFile file(path);
  EXPECT_TRUE(file.Store("AUTOSCAN", "FALSE").Ok());
  EXPECT_EQ(ContentOf(path), "# mine\r\nunknown line\nAUTOSCAN=FALSE\n\nCOM1=/dev/ttyUSB0");
  EXPECT_EQ(file.Value("AUTOSCAN"), "FALSE");
  EXPECT_EQ(EntriesIn(folder.Path()), 1);
}

TEST_F(SettingsFileTest, KeepsWhatAnotherWroteMeanwhile) {
  SettingsFile file(path);
  ASSERT_TRUE(file.Load().Ok());
  Put(path, "COM1=a\n");
  EXPECT_TRUE(file.Store("AUTOSCAN", "TRUE").Ok());
  EXPECT_EQ(ContentOf(path), "COM1=a\nAUTOSCAN=TRUE\n");
}

TEST_F(SettingsFileTest, MakesItsFolder) {
  const fs::path deep = folder / "a" / "Tarvo" / "Tarvo.conf";
  SettingsFile file(deep);
  EXPECT_TRUE(file.Store("AUTOSCAN", "TRUE").Ok());
  EXPECT_EQ(ContentOf(deep), "AUTOSCAN=TRUE\n");
}

TEST_F(SettingsFileTest, ReplacesTheFileAsAWhole) {
  Put(path, "AUTOSCAN=TRUE\n");
  // Whoever has the old file open still reads all of it.
  std::ifstream old(path, std::ios::binary);
  SettingsFile file(path);
  EXPECT_TRUE(file.Store("AUTOSCAN", "FALSE").Ok());
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(old), {}), "AUTOSCAN=TRUE\n");
}

TEST_F(SettingsFileTest, KeepsTheRightsOfTheFile) {
  Put(path, "AUTOSCAN=TRUE\n");
  const fs::perms rights = fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read;
  fs::permissions(path, rights);
  SettingsFile file(path);
  EXPECT_TRUE(file.Store("AUTOSCAN", "FALSE").Ok());
  EXPECT_EQ(fs::status(path).permissions(), rights);
}

TEST_F(SettingsFileTest, KeepsALinkAndChangesTheFileBehindIt) {
  const fs::path real = folder / "real.conf";
  Put(real, "AUTOSCAN=TRUE\n");
  fs::create_symlink(real, path);
  SettingsFile file(path);
  EXPECT_TRUE(file.Store("AUTOSCAN", "FALSE").Ok());
  EXPECT_TRUE(fs::is_symlink(path));
  EXPECT_EQ(ContentOf(real), "AUTOSCAN=FALSE\n");
}

TEST_F(SettingsFileTest, AStoreThatFailsSaysSoAndLeavesTheFile) {
  Put(path, "AUTOSCAN=TRUE\n");
  fs::permissions(path, fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
  fs::permissions(folder.Path(),
                  fs::perms::owner_read | fs::perms::owner_exec | fs::perms::others_read | fs::perms::others_exec);
  EXPECT_TRUE(AsOrdinaryUser([&] {
    SettingsFile file(path);
    const core::Status status = file.Store("AUTOSCAN", "FALSE");
    return status.Description() == "The settings file " + path.string() + " cannot be written: Permission denied.";
  }));
  EXPECT_EQ(ContentOf(path), "AUTOSCAN=TRUE\n");
  EXPECT_EQ(EntriesIn(folder.Path()), 1);
  fs::permissions(folder.Path(), fs::perms::owner_all);
}

TEST_F(SettingsFileTest, TellsWhereAFileStandsInTheFoldersPlace) {
  Put(folder / "Tarvo", "");
  SettingsFile file(folder / "Tarvo" / "Tarvo.conf");
  EXPECT_THAT(file.Load().Description(), EndsWith("cannot be read: Not a directory."));
  EXPECT_FALSE(file.Store("AUTOSCAN", "TRUE").Ok());
}

TEST_F(SettingsFileTest, AUserWithoutAHomeCannotStore) {
  SettingsFile file{fs::path()};
  EXPECT_THAT(file.Store("AUTOSCAN", "TRUE").Description(), HasSubstr("no home folder"));
}

}  // namespace
}  // namespace tarvo::platform
