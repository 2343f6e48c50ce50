// A page's settings in files of the real system, opened and saved through the console.

#include <sys/stat.h>
#include <unistd.h>

#include "e2e/shell_bench.h"

namespace tarvo {
namespace {

using test::BoxJson;
using test::kNothing;

namespace fs = std::filesystem;

const std::string kLoaded = BoxJson("Data correctly loaded! Press 'WRITE EEPROM' to update Belk", "information");
const std::string kAlreadyOpen = BoxJson("File already open", "exclamation");
const std::string kStopFirst = BoxJson("Communication must be stopped", "exclamation");

class PageFiles : public test::ShellBench {
 protected:
  /// The console with the Belk page on its screen and nothing on any port.
  void OpenPage() {
    WriteSettings("AUTOSCAN=FALSE\n");
    console = OpenShell({}, Settings());
    EXPECT_EQ(Do("click labBelk"), kNothing);
  }
  std::string PathOf(const std::string& name) const { return (folder / name).string(); }

  /// What stands in front when the file of that path was opened or saved.
  std::string Open(const std::string& path) {
    EXPECT_EQ(Do("click OpenMNU"), R"({"window":"OpenFile","filter":"All Files (*.txt) | *.txt"})");
    return Do("answer \"" + path + "\"");
  }
  std::string Save(const std::string& path) {
    EXPECT_EQ(Do("click SaveMNU"), R"({"window":"SaveFile","filter":"Text Files (*.txt) | *.txt"})");
    return Do("answer \"" + path + "\"");
  }
  /// A fault of it, and the channel that it leaves open.
  void ExpectOpenFails(const std::string& path, const std::string& fault) {
    EXPECT_EQ(Open(path), BoxJson(fault, "exclamation"));
    ExpectChannelOpen();
  }
  void ExpectSaveFails(const std::string& path, const std::string& fault) {
    EXPECT_EQ(Save(path), BoxJson(fault, "none"));
    ExpectChannelOpen();
  }
  void ExpectChannelOpen() {
    EXPECT_EQ(Do("answer OK"), kNothing);
    Put("good.txt", kGood);
    EXPECT_EQ(Open(PathOf("good.txt")), kAlreadyOpen);
    EXPECT_EQ(Do("answer OK"), kNothing);
    EXPECT_EQ(Get("FilterBelk.Caption"), "1");
  }

  void Put(const std::string& name, const std::string& content) const {
    std::ofstream(folder / name, std::ios::binary) << content;
  }
  std::string Bytes(const std::string& name) const {
    std::ifstream file(folder / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  static constexpr char kFirstView[] = "\"DATAFORMAT 1.0 Belk\"\r\n\"1\"\r\n\"0\"\r\n\"257\"\r\n";
  static constexpr char kGood[] = "\"DATAFORMAT 1.0 Belk\"\r\n\"200\"\r\n\"169\"\r\n\"785\"\r\n";
};

TEST_F(PageFiles, AreSavedByteForByte) {
  OpenPage();
  EXPECT_EQ(Save(PathOf("new.txt")), kNothing);
  EXPECT_EQ(Bytes("new.txt"), kFirstView);
}

TEST_F(PageFiles, TakeThePlaceOfLongerOnes) {
  OpenPage();
  Put("old.txt", std::string(100000, 'x'));
  EXPECT_EQ(Save(PathOf("old.txt")), kNothing);
  EXPECT_EQ(Bytes("old.txt"), kFirstView);
}

TEST_F(PageFiles, GetNoEndingOfTheirOwn) {
  OpenPage();
  EXPECT_EQ(Save(PathOf("module of bench 2")), kNothing);
  EXPECT_EQ(Bytes("module of bench 2"), kFirstView);
}

TEST_F(PageFiles, AreLoadedAndSavedAgain) {
  OpenPage();
  Put("in.txt", kGood);
  EXPECT_EQ(Open(PathOf("in.txt")), kLoaded);
  EXPECT_EQ(Do("answer OK"), kNothing);
  EXPECT_EQ(Get("FilterBelk.Caption"), "200");
  EXPECT_EQ(Get("AddressBelk.Caption"), "17");
  EXPECT_EQ(Get("BaudBelk.Text"), "38400");
  EXPECT_EQ(Get("CheckBelk1.Value"), "1");
  EXPECT_EQ(Get("FileFields(1)"), "200");
  EXPECT_EQ(Get("FileFields(3)"), "785");
  EXPECT_EQ(Get("FileFields(20)"), "");
  EXPECT_EQ(Save(PathOf("out.txt")), kNothing);
  EXPECT_EQ(Bytes("out.txt"), kGood);
  EXPECT_EQ(Bytes("in.txt"), kGood);
}

TEST_F(PageFiles, HoldWhatASessionReadAndRestWhileItRuns) {
  OpenBelkSession("belk:40008=77");
  for (const std::string item : {"OpenMNU", "SaveMNU"}) {
    EXPECT_EQ(Do("click " + item), kStopFirst);
    EXPECT_EQ(Do("answer OK"), kNothing);
  }
  StopSession();
  EXPECT_EQ(Save(PathOf("read.txt")), kNothing);
  EXPECT_EQ(Bytes("read.txt"), "\"DATAFORMAT 1.0 Belk\"\r\n\"77\"\r\n\"" + Get("PollBuffer(7)") + "\"\r\n\"257\"\r\n");
}

TEST_F(PageFiles, AreNotTouchedByACancelledDialog) {
  OpenPage();
  EXPECT_NE(Do("click SaveMNU"), kNothing);
  EXPECT_EQ(Do("answer Cancel"), kNothing);
  EXPECT_NE(Do("click OpenMNU"), kNothing);
  EXPECT_EQ(Do("answer Cancel"), kNothing);
  EXPECT_FALSE(fs::exists("Cancel"));
  EXPECT_EQ(Save(PathOf("new.txt")), kNothing);
}

TEST_F(PageFiles, AreOfferedOnDevicePagesOnly) {
  OpenPage();
  Do("click LabHome");
  EXPECT_EQ(console->Try("click OpenMNU").Error(), "OpenMNU is disabled");
  EXPECT_EQ(console->Try("click SaveMNU").Error(), "SaveMNU is disabled");
}

TEST_F(PageFiles, OfAnotherModelAreRefused) {
  OpenPage();
  Put("cobin.txt", "\"DATAFORMAT 1.0 Cobin\"\r\n\"0\"\r\n\"5\"\r\n\"0\"\r\n\"257\"\r\n");
  EXPECT_EQ(Open(PathOf("cobin.txt")), BoxJson("Error on Data format", "critical"));
  EXPECT_EQ(Do("answer OK"), kNothing);
  Put("in.txt", kGood);
  EXPECT_EQ(Open(PathOf("in.txt")), kLoaded);
}

TEST_F(PageFiles, ThatAreMissingAreNotFound) {
  OpenPage();
  ExpectOpenFails(PathOf("missing.txt"), "File not found");
}

TEST_F(PageFiles, InAMissingFolderAreNotFoundByTheirPath) {
  OpenPage();
  ExpectOpenFails(PathOf("nowhere/in.txt"), "Path not found");
}

TEST_F(PageFiles, AreNotSavedIntoAMissingFolder) {
  OpenPage();
  ExpectSaveFails(PathOf("nowhere/out.txt"), "Path not found");
}

TEST_F(PageFiles, BelowAFileHaveNoPath) {
  OpenPage();
  Put("plain", "text");
  ExpectOpenFails(PathOf("plain/in.txt"), "Path not found");
}

TEST_F(PageFiles, AreNoFoldersToOpen) {
  OpenPage();
  ExpectOpenFails(folder.Path().string(), "Permission denied");
}

TEST_F(PageFiles, AreNoFoldersToSave) {
  OpenPage();
  ExpectSaveFails(folder.Path().string(), "Permission denied");
}

TEST_F(PageFiles, WithNothingInThemEndTooSoon) {
  OpenPage();
  Put("empty.txt", "");
  ExpectOpenFails(PathOf("empty.txt"), "Input past end of file");
}

TEST_F(PageFiles, ThatAreDamagedLeaveTheSessionUsable) {
  StartSimulator("belk");
  OpenBelk();
  Put("bad.txt", "\"DATAFORMAT 1.0 Belk\"\r\n\"200\"\r\n\"169\"\r\n\"much\"\r\n");
  EXPECT_EQ(Open(PathOf("bad.txt")), BoxJson("Type mismatch", "exclamation"));
  EXPECT_EQ(Do("answer OK"), kNothing);
  StartSession();
}

TEST_F(PageFiles, ThatArePipesOrDevicesHoldNothingUp) {
  ASSERT_EQ(mkfifo(PathOf("pipe").c_str(), 0600), 0);
  for (const std::string& path : {PathOf("pipe"), std::string("/dev/zero"), std::string("/dev/full")}) {
    OpenPage();
    ExpectOpenFails(path, "Device unavailable");
    OpenPage();
    ExpectSaveFails(path, "Device unavailable");
  }
}

TEST_F(PageFiles, BehindALoopOfLinksHoldNothingUp) {
  fs::create_symlink("loop.txt", folder / "loop.txt");
  OpenPage();
  ExpectOpenFails(PathOf("loop.txt"), "Device unavailable");
}

/// Run as a user whom the system's rights bind.
class PageFilesOfAUser : public PageFiles {
 protected:
  void OpenPageAsAUser() {
    WriteSettings("AUTOSCAN=FALSE\n");
    std::vector<std::string> runner;
    if (geteuid() == 0) {
      runner = {"setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"};
      fs::permissions(folder.Path(), fs::perms::all);
    }
    console = std::make_unique<test::ConsoleProcess>(
        std::vector<std::string>{"--settings", Settings().string(), "--com1", PathOf("no-com1")}, runner);
    EXPECT_EQ(Do("click labBelk"), kNothing);
  }
};

TEST_F(PageFilesOfAUser, AreNotOpenedWithoutTheRight) {
  Put("secret.txt", kGood);
  fs::permissions(folder / "secret.txt", fs::perms::none);
  OpenPageAsAUser();
  ExpectOpenFails(PathOf("secret.txt"), "Permission denied");
}

TEST_F(PageFilesOfAUser, AreNotSavedWithoutTheRight) {
  Put("kept.txt", kGood);
  fs::permissions(folder / "kept.txt", fs::perms::owner_read);
  OpenPageAsAUser();
  ExpectSaveFails(PathOf("kept.txt"), "Permission denied");
  EXPECT_EQ(Bytes("kept.txt"), kGood);
}

TEST_F(PageFilesOfAUser, AreNotMadeInAFolderWithoutTheRight) {
  fs::create_directory(folder / "locked");
  fs::permissions(folder / "locked", fs::perms::owner_read | fs::perms::owner_exec);
  OpenPageAsAUser();
  ExpectSaveFails(PathOf("locked/new.txt"), "Permission denied");
  EXPECT_FALSE(fs::exists(folder / "locked" / "new.txt"));
}

}  // namespace
}  // namespace tarvo
