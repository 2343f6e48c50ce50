// A page's settings in files of the real system, opened and saved through the console.

#include <sys/stat.h>
#include <unistd.h>

#include <ostream>
#include <utility>
#include <vector>

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

/// A page's file, and what the console shows of it.
struct PageFile {
  std::string name;
  std::string module;       ///< as the simulator's command line has it
  std::string entry;        ///< of the page list or the menu
  std::string named;        ///< by the words of a good load
  std::vector<int> fields;  ///< of the file
  std::vector<int> again;   ///< what a save after its load writes
  std::vector<std::pair<std::string, std::string>> shown;

  friend void PrintTo(const PageFile& file, std::ostream* out) { *out << file.name; }
};

class FileOfAPage : public PageFiles, public testing::WithParamInterface<PageFile> {
 protected:
  static std::string Content(const std::vector<int>& fields) {
    std::string content = "\"DATAFORMAT 1.0 " + GetParam().name + "\"\r\n";
    for (const int field : fields) content += '"' + std::to_string(field) + "\"\r\n";
    return content;
  }
};

TEST_P(FileOfAPage, IsLoadedAndSavedAgain) {
  const PageFile& file = GetParam();
  StartSimulator(file.module);
  WriteSettings("AUTOSCAN=FALSE\n");
  console = OpenShell({Device()}, Settings());
  EXPECT_EQ(Do("click " + file.entry), kNothing);
  Put("in.txt", Content(file.fields));
  EXPECT_EQ(Open(PathOf("in.txt")),
            BoxJson("Data correctly loaded! Press 'WRITE EEPROM' to update " + file.named, "information"));
  EXPECT_EQ(Do("answer OK"), kNothing);
  for (const auto& [value, text] : file.shown) EXPECT_EQ(Get(value), text) << value;
  EXPECT_EQ(Save(PathOf("out.txt")), kNothing);
  EXPECT_EQ(Bytes("out.txt"), Content(file.again));
}

INSTANTIATE_TEST_SUITE_P(Pages, FileOfAPage,
                         testing::Values(PageFile{.name = "Lumet",
                                                  .module = "lumet",
                                                  .entry = "labLumet",
                                                  .named = "Jorun",
                                                  .fields = {65535, 1, 2, 3, 4, 5, 6, 7, 8, 2079, 785, 2595, 254},
                                                  .again = {65535, 1, 2, 3, 4, 5, 6, 7, 8, 2079, 785, 2595, 254},
                                                  .shown = {{"TotIN(1).Caption", "65535"},
                                                            {"CheckLumet6.Value", "1"},
                                                            {"cbCombIngressi.ListIndex", "4"},
                                                            {"AddressLumet.Caption", "17"},
                                                            {"cbTipoMisura(0).Text", "TON"},
                                                            {"FilterLumet.Caption", "254"}}},
                                         PageFile{.name = "Kelmar",
                                                  .module = "kelmar",
                                                  .entry = "menuKelmar",
                                                  .named = "Kelmar",
                                                  .fields = {29442, 8, 0, 3, 1, 6, 0, 2, 1},
                                                  .again = {21250, 8, 0, 3, 1, 6, 0, 2, 1},
                                                  .shown = {{"CheckKelmar(0).Value", "1"},
                                                            {"CheckKelmarBitOrder.Value", "1"},
                                                            {"OptionKelmar1.Value", "true"},
                                                            {"InputTypeKelmar(0).ListIndex", "8"},
                                                            {"FilterKelmar(2).Text", "2"}}},
                                         PageFile{
                                             .name = "Hollin",
                                             .module = "hollin",
                                             .entry = "MenuHollin",
                                             .named = "Hollin",
                                             .fields = {785, 25602, 1, 2, 6, 0, 10000, -10000, 500, 7, -1, 3, -9999, 1},
                                             .again = {0, 25602, 1, 2, 6, 0, 10000, -10000, 500, 7, -1, 3, -9999, 1},
                                             .shown = {{"CheckHollin(0).Value", "1"},
                                                       {"OptionHollin2.Value", "true"},
                                                       {"FilterHollin(2).Text", "6"},
                                                       {"ValueHollin(7).Caption", "-10000"},
                                                       {"ValueHollin(10).Caption", "-9999"}}},
                                         PageFile{.name = "Nerith",
                                                  .module = "nerith:fw=17",
                                                  .entry = "labNerith",
                                                  .named = "Nerith",
                                                  .fields = {3601, 42, 1795, 1280, 2, 257},
                                                  .again = {3601, 42, 1795, 1280, 2, 257},
                                                  .shown = {{"labModuleAddress.Caption", "17"},
                                                            {"cbBaudRate.Text", "38400"},
                                                            {"OptionOdd.Value", "true"},
                                                            {"cbUnits.Text", "Farenheit"},
                                                            {"cbSensorType(0).Text", "3-NI100"},
                                                            {"cbDumpFactor(1).Text", "5"}}},
                                         PageFile{.name = "Marlo",
                                                  .module = "marlo",
                                                  .entry = "labMarlo",
                                                  .named = "Marlo",
                                                  .fields = {778, 4354, 250, 771, 1465},
                                                  .again = {778, 4354, 250, 771, 1465},
                                                  .shown = {{"cbBaudMarlo.Text", "38400"},
                                                            {"labAddressMarlo.Caption", "17"},
                                                            {"labSafetimeMarlo.Caption", "250"},
                                                            {"ComboFailLed.Text", "double flash"},
                                                            {"txtValTreshold.Text", "18.5"},
                                                            {"txtDelay.Text", "5"}}},
                                         PageFile{.name = "Quenby",
                                                  .module = "quenby",
                                                  .entry = "LabQuenby",
                                                  .named = "Quenby",
                                                  .fields = {3548, 10000, 0, 5000, 968, 65535},
                                                  .again = {3548, 10000, 0, 5000, 776, 65535},
                                                  .shown = {{"CheckDelay12ms.Value", "1"},
                                                            {"cbFullScale(0).ListIndex", "1"},
                                                            {"txtVal(2).Text", "5000"},
                                                            {"labAddress.Caption", "8"},
                                                            {"cbBaud.Text", "38400"},
                                                            {"labTimeout.Caption", "65535"}}}),
                         [](const auto& given) { return given.param.name; });

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
