#include "platform/settings_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <optional>
#include <string>

#include "support/another_process.h"
#include "support/environment_variable.h"
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

bool AsOrdinaryUser(const std::function<bool()>& check) {
  return test::InAnotherProcess(test::User::kOrdinary, [&] { return check() ? 1 : 0; }) == 1;
}

class SettingsFileTest : public testing::Test {
 protected:
  test::TemporaryFolder folder;
  fs::path path = folder / "Tarvo.conf";
};

TEST_F(SettingsFileTest, IsFoundInTheConfigurationFolder) {
  const test::EnvironmentVariable home("HOME", "/home/ada");
  const test::EnvironmentVariable folderSet("XDG_CONFIG_HOME", "/home/ada/settings");
  EXPECT_EQ(SettingsFile::DefaultPath(), "/home/ada/settings/Tarvo/Tarvo.conf");
  {
    const test::EnvironmentVariable unset("XDG_CONFIG_HOME", std::nullopt);
    EXPECT_EQ(SettingsFile::DefaultPath(), "/home/ada/.config/Tarvo/Tarvo.conf");
  }
  // A path that is not absolute does not count.
  for (const char* ignored : {"", "settings"}) {
    const test::EnvironmentVariable bad("XDG_CONFIG_HOME", ignored);
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
  int opened;  // what `Open` gives
  int error;   // what `Retrieve` and `Set` give
};

const BadRow kBadRows[] = {
    {"a folder", [](const fs::path& at) { fs::create_directory(at); }, "it is a folder.", EISDIR, EISDIR},
    {"a pipe", [](const fs::path& at) { ASSERT_EQ(mkfifo(at.c_str(), 0600), 0); }, "it is not a file.", ENXIO, ENXIO},
    // A device of the test's own, in a folder that takes no files: a store that went wrong could replace a real one.
    {"a device",
     [](const fs::path& at) {
       static const test::PseudoTerminal device;
       fs::create_symlink(device.Name(), at);
     },
     "it is not a file.", ENXIO, ENXIO},
    {"a link to itself", [](const fs::path& at) { fs::create_symlink(at, at); }, "Too many levels of symbolic links.",
     ELOOP, ELOOP},
    {"binary junk", [](const fs::path& at) { Put(at, std::string("COM1=a\n\0\x01\xFF", 10)); },
     "it is damaged (not a text).", 0, EILSEQ},
    {"a file too large", [](const fs::path& at) { Put(at, "COM1=a\n" + std::string(1 << 20, '\n')); },
     "it is larger than 1 MiB.", 0, EFBIG},
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

TEST_F(SettingsFileTest, GivesTheErrorOfWhatItCannotRead) {
  for (const BadRow& row : kBadRows) {
    SCOPED_TRACE(row.what);
    row.make(path);
    SettingsFile file(path);
    EXPECT_EQ(file.Open(), row.opened);
    std::optional<std::string> text;
    EXPECT_EQ(file.Retrieve("COM1", text), row.error);
    EXPECT_EQ(text, std::nullopt);
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
    EXPECT_EQ(file.Set("COM1", "b"), row.error);
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

TEST_F(SettingsFileTest, RetrievesWhatIsThere) {
  Put(path, "AUTOSCAN=TRUE\nEMPTY=\n");
  SettingsFile file(path);
  EXPECT_EQ(file.Open(), 0);
  std::optional<std::string> text;
  EXPECT_EQ(file.Retrieve("AUTOSCAN", text), 0);
  EXPECT_EQ(text, "TRUE");
  EXPECT_EQ(file.Retrieve("EMPTY", text), 0);
  EXPECT_EQ(text, "");
  EXPECT_EQ(file.Retrieve("COM1", text), 0);
  EXPECT_EQ(text, std::nullopt);
}

TEST_F(SettingsFileTest, AMissingFileCanNeitherBeOpenedNorSet) {
  for (const fs::path& missing : {path, folder / "no" / "such" / "folder", fs::path()}) {
    SCOPED_TRACE(missing);
    SettingsFile file(missing);
    EXPECT_EQ(file.Open(), SettingsFile::kMissing);
    std::optional<std::string> text;
    EXPECT_EQ(file.Retrieve("AUTOSCAN", text), SettingsFile::kMissing);
    EXPECT_EQ(file.Set("AUTOSCAN", "TRUE"), SettingsFile::kMissing);
  }
  EXPECT_EQ(EntriesIn(folder.Path()), 0);
}

TEST_F(SettingsFileTest, CreatesAnEmptyFileAndItsFolder) {
  const fs::path deep = folder / "a" / "Tarvo" / "Tarvo.conf";
  SettingsFile file(deep);
  EXPECT_EQ(file.Create(), 0);
  EXPECT_EQ(file.Open(), 0);
  EXPECT_EQ(file.Set("AUTOSCAN", "TRUE"), 0);
  EXPECT_EQ(ContentOf(deep), "AUTOSCAN=TRUE\n");
}

TEST_F(SettingsFileTest, CreatesAFileInTheFolderOfTheDay) {
  EXPECT_EQ(test::InAnotherProcess(test::User::kSame,
                                   [&] {
                                     fs::current_path(folder.Path());
                                     SettingsFile file("own.conf");
                                     return file.Create() == 0 && file.Set("AUTOSCAN", "TRUE") == 0 ? 1 : 0;
                                   }),
            1);
  EXPECT_EQ(ContentOf(folder / "own.conf"), "AUTOSCAN=TRUE\n");
}

TEST_F(SettingsFileTest, CreateLeavesAFileThatIsThere) {
  Put(path, "COM1=a\n");
  SettingsFile file(path);
  EXPECT_EQ(file.Create(), 0);
  EXPECT_EQ(ContentOf(path), "COM1=a\n");
}

TEST_F(SettingsFileTest, CreateTellsWhatStandsInTheWay) {
  fs::create_directory(path);
  EXPECT_EQ(SettingsFile(path).Create(), EISDIR);
  Put(folder / "Tarvo", "");
  EXPECT_EQ(SettingsFile(folder / "Tarvo" / "Tarvo.conf").Create(), ENOTDIR);
  EXPECT_EQ(SettingsFile(fs::path()).Create(), ENOENT);
}

TEST_F(SettingsFileTest, StoresOneValueAndKeepsEveryOtherLine) {
  Put(path, "# mine\r\nunknown line\nAUTOSCAN=TRUE\n\nCOM1=/dev/ttyUSB0");
  SettingsFile file(path);
  EXPECT_EQ(file.Set("AUTOSCAN", "FALSE"), 0);
  EXPECT_EQ(ContentOf(path), "# mine\r\nunknown line\nAUTOSCAN=FALSE\n\nCOM1=/dev/ttyUSB0");
  EXPECT_EQ(file.Value("AUTOSCAN"), "FALSE");
  EXPECT_EQ(EntriesIn(folder.Path()), 1);
}

TEST_F(SettingsFileTest, TwoInstancesKeepWhatTheOtherWrote) {
  Put(path, "COM1=a\n");
  SettingsFile one(path);
  SettingsFile other(path);
  ASSERT_EQ(one.Open(), 0);
  ASSERT_EQ(other.Open(), 0);
  EXPECT_EQ(one.Set("AUTOSCAN", "TRUE"), 0);
  EXPECT_EQ(other.Set("COM2", "b"), 0);
  EXPECT_EQ(ContentOf(path), "COM1=a\nAUTOSCAN=TRUE\nCOM2=b\n");
}

TEST_F(SettingsFileTest, OneInstanceSeesWhatTheOtherWroteOnceItOpensAnew) {
  Put(path, "AUTOSCAN=TRUE\n");
  SettingsFile one(path);
  SettingsFile other(path);
  ASSERT_EQ(one.Open(), 0);
  ASSERT_EQ(other.Set("AUTOSCAN", "FALSE"), 0);
  std::optional<std::string> text;
  EXPECT_EQ(one.Retrieve("AUTOSCAN", text), 0);
  EXPECT_EQ(text, "TRUE");
  EXPECT_EQ(one.Open(), 0);
  EXPECT_EQ(one.Retrieve("AUTOSCAN", text), 0);
  EXPECT_EQ(text, "FALSE");
}

TEST_F(SettingsFileTest, ReplacesTheFileAsAWhole) {
  Put(path, "AUTOSCAN=TRUE\n");
  // Whoever has the old file open still reads all of it.
  std::ifstream old(path, std::ios::binary);
  SettingsFile file(path);
  EXPECT_EQ(file.Set("AUTOSCAN", "FALSE"), 0);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(old), {}), "AUTOSCAN=TRUE\n");
}

TEST_F(SettingsFileTest, KeepsTheRightsOfTheFile) {
  Put(path, "AUTOSCAN=TRUE\n");
  const fs::perms rights = fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read;
  fs::permissions(path, rights);
  SettingsFile file(path);
  EXPECT_EQ(file.Set("AUTOSCAN", "FALSE"), 0);
  EXPECT_EQ(fs::status(path).permissions(), rights);
}

TEST_F(SettingsFileTest, KeepsALinkAndChangesTheFileBehindIt) {
  const fs::path real = folder / "real.conf";
  Put(real, "AUTOSCAN=TRUE\n");
  fs::create_symlink(real, path);
  SettingsFile file(path);
  EXPECT_EQ(file.Set("AUTOSCAN", "FALSE"), 0);
  EXPECT_TRUE(fs::is_symlink(path));
  EXPECT_EQ(ContentOf(real), "AUTOSCAN=FALSE\n");
}

constexpr fs::perms kReadOnly = fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read;

TEST_F(SettingsFileTest, AReadOnlyFileStaysThoughTheFolderTakesNewOnes) {
  Put(path, "AUTOSCAN=TRUE\n");
  fs::permissions(folder.Path(), fs::perms::all);
  fs::permissions(path, kReadOnly);
  EXPECT_TRUE(AsOrdinaryUser([&] {
    SettingsFile file(path);
    return file.Open() == 0 && file.Set("AUTOSCAN", "FALSE") == EACCES && file.Value("AUTOSCAN") == "TRUE";
  }));
  EXPECT_EQ(ContentOf(path), "AUTOSCAN=TRUE\n");
  EXPECT_EQ(fs::status(path).permissions(), kReadOnly);
}

TEST_F(SettingsFileTest, AFolderThatTakesNoFilesLeavesTheFile) {
  Put(path, "AUTOSCAN=TRUE\n");
  fs::permissions(path, fs::perms::all);
  fs::permissions(folder.Path(), kReadOnly | fs::perms::owner_exec | fs::perms::others_exec);
  EXPECT_TRUE(AsOrdinaryUser([&] {
    SettingsFile file(path);
    SettingsFile beside(folder / "new.conf");
    return file.Set("AUTOSCAN", "FALSE") == EACCES && beside.Create() == EACCES;
  }));
  EXPECT_EQ(ContentOf(path), "AUTOSCAN=TRUE\n");
  EXPECT_EQ(EntriesIn(folder.Path()), 1);
  fs::permissions(folder.Path(), fs::perms::owner_all);
}

TEST_F(SettingsFileTest, AFileThatMayNotBeReadGivesItsErrorEverywhere) {
  Put(path, "AUTOSCAN=TRUE\n");
  fs::permissions(folder.Path(), fs::perms::all);
  fs::permissions(path, fs::perms::owner_write | fs::perms::others_write);
  EXPECT_TRUE(AsOrdinaryUser([&] {
    SettingsFile file(path);
    std::optional<std::string> text;
    return file.Open() == EACCES && file.Retrieve("AUTOSCAN", text) == EACCES && file.Set("AUTOSCAN", "x") == EACCES;
  }));
  EXPECT_EQ(ContentOf(path), "AUTOSCAN=TRUE\n");
}

TEST_F(SettingsFileTest, TellsWhereAFileStandsInTheFoldersPlace) {
  Put(folder / "Tarvo", "");
  SettingsFile file(folder / "Tarvo" / "Tarvo.conf");
  EXPECT_THAT(file.Load().Description(), EndsWith("cannot be read: Not a directory."));
  EXPECT_EQ(file.Open(), ENOTDIR);
  EXPECT_EQ(file.Set("AUTOSCAN", "TRUE"), ENOTDIR);
}

}  // namespace
}  // namespace tarvo::platform
