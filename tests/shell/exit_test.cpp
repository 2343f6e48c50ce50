// The roads out of the program, and the stored switch.

#include "shell/search_fixture.h"

namespace tarvo::test {
namespace {

using testing::HasSubstr;

class Exit : public ShellFixture {
 protected:
  void ExpectRefused(view::Icon icon) {
    EXPECT_THAT(BoxInFront(), IsBox(kMustStopFirst, icon));
    AnswerOk();
    EXPECT_FALSE(program.Ended());
    EXPECT_TRUE(InSession());
    EXPECT_EQ(values.Sets(), 0);
    module.ForgetLog();
    Run(core::milliseconds(500));
    EXPECT_THAT(module.TakeLog(), testing::SizeIs(10));
  }
};

TEST_F(Exit, IsRefusedInASessionOnEachRoad) {
  OpenQuietly();
  StartSession();
  Click("MDIForm1.ExitMNU");
  ExpectRefused(view::Icon::kNone);
  Close();
  ExpectRefused(view::Icon::kExclamation);
  ClosePage();
  ExpectRefused(view::Icon::kExclamation);
}

TEST_F(Exit, IsRefusedAsOftenAsItIsTried) {
  OpenQuietly();
  StartSession();
  for (int i = 0; i < 3; ++i) {
    Close();
    ExpectRefused(view::Icon::kExclamation);
  }
}

TEST_F(Exit, WorksFromEachPage) {
  for (const char* label : {"LabHome", "LabPCSetup", "labBelk"}) {
    SCOPED_TRACE(label);
    MemoryValues ownValues;
    ownValues.Keep("AUTOSCAN", "FALSE");
    shell::Program other(shell::Services{scheduler, ports, ownValues, help, files, "."});
    other.Start();
    scheduler.RunReady();
    EXPECT_TRUE(other.GetScreen().Click(*other.FindWindow("MDIForm1")->Find(label)).taken);
    scheduler.RunReady();
    EXPECT_TRUE(other.GetScreen().Click(*other.FindWindow("MDIForm1")->Find("ExitMNU")).taken);
    scheduler.RunReady();
    EXPECT_TRUE(other.Ended());
    EXPECT_EQ(ownValues.Kept("AUTOSCAN"), "FALSE");
  }
}

TEST_F(Exit, WorksAfterStop) {
  OpenQuietly();
  StartSession();
  Click("StopBelk");
  Click("MDIForm1.ExitMNU");
  EXPECT_TRUE(NothingInFront());
  EXPECT_TRUE(program.Ended());
}

TEST_F(Exit, DisablesEveryTimerOfThePage) {
  OpenQuietly();
  Click("MDIForm1.labBelk");
  constexpr const char* kTimers[] = {"Belk.TimerControllo", "Belk.TimerGestioneLetture", "Belk.TimerIngranaggi",
                                     "Belk.TimerLetturaSeriale"};
  for (const char* timer : kTimers) dynamic_cast<view::Timer&>(At(timer)).Enabled = true;
  Click("MDIForm1.ExitMNU");
  for (const char* timer : kTimers) EXPECT_FALSE(Enabled(timer)) << timer;
  EXPECT_TRUE(program.Ended());
}

TEST_F(Exit, ByTheCloseBoxLeavesNoPortOpen) {
  OpenQuietly();
  Click("MDIForm1.labBelk");
  ASSERT_TRUE(Modcom().SetPortOpen(true).Ok());
  Close();
  EXPECT_TRUE(program.Ended());
  EXPECT_FALSE(line.IsOpen());
}

TEST_F(Exit, ByTheMenuLeavesNoPortOpen) {
  OpenQuietly();
  Click("MDIForm1.labBelk");
  ASSERT_TRUE(Modcom().SetPortOpen(true).Ok());
  Click("MDIForm1.ExitMNU");
  EXPECT_TRUE(program.Ended());
  EXPECT_FALSE(line.IsOpen());
}

// The stored switch.

class StoredSwitch : public SearchFixture {
 protected:
  void OpenToTheEnd() {
    OpenProgram();
    ASSERT_TRUE(RunUntil([this] { return !program.Starting(); }));
  }
  /// Answers what stands in front until nothing does; gives the boxes' texts.
  std::vector<std::string> AnswerBoxes() {
    std::vector<std::string> texts;
    while (texts.size() < 10) {
      Run(core::milliseconds(10));
      if (BoxInFront() == nullptr) break;
      texts.push_back(BoxInFront()->text);
      EXPECT_EQ(BoxInFront()->caption, "Tarvo");
      EXPECT_TRUE(program.GetScreen().Answer("OK").taken);
    }
    return texts;
  }
};

struct Stored {
  const char* name;
  std::optional<std::string> text;
  int autoScan;
};
void PrintTo(const Stored& stored, std::ostream* out) {
  *out << stored.name;
}

class StoredText : public StoredSwitch, public testing::WithParamInterface<Stored> {};

TEST_P(StoredText, DecidesTheSearchAtTheStart) {
  if (GetParam().text) values.Keep("AUTOSCAN", *GetParam().text);
  PutModule(1, 38400);
  OpenToTheEnd();
  EXPECT_EQ(State().AutoScan, GetParam().autoScan);
  EXPECT_EQ(PageName(), GetParam().autoScan == 1 ? "Belk" : "Home");
  EXPECT_TRUE(NothingInFront());
}

INSTANTIATE_TEST_SUITE_P(Texts, StoredText,
                         testing::Values(Stored{"Missing", std::nullopt, 1}, Stored{"Empty", "", 1},
                                         Stored{"True", "TRUE", 1}, Stored{"False", "FALSE", 0},
                                         Stored{"SmallTrue", "true", 0}, Stored{"Number", "1", 0},
                                         Stored{"Garbage", "perhaps", 0}),
                         [](const auto& given) { return std::string(given.param.name); });

TEST_F(StoredSwitch, KeepsItsDefaultInAStoreWithoutIt) {
  values.Keep("COM1", "/dev/ttyUSB0");
  OpenToTheEnd();
  EXPECT_EQ(State().AutoScan, 1);
  EXPECT_TRUE(NothingInFront());
}

TEST_F(StoredSwitch, IsStoredByTheMenusExit) {
  OpenWithoutSearch();
  Click("MDIForm1.menuEnableCheckConnection");
  Click("MDIForm1.ExitMNU");
  EXPECT_TRUE(program.Ended());
  EXPECT_EQ(values.Kept("AUTOSCAN"), "TRUE");
}

TEST_F(StoredSwitch, IsStoredByTheCloseBox) {
  values.Keep("AUTOSCAN", "TRUE");
  OpenToTheEnd();
  Click("MDIForm1.CheckEnableCheckConnection");
  Close();
  EXPECT_TRUE(program.Ended());
  EXPECT_EQ(values.Kept("AUTOSCAN"), "FALSE");
}

TEST_F(StoredSwitch, IsStoredOnceInAStoreThatIsMade) {
  OpenToTheEnd();
  ASSERT_FALSE(values.Exists());
  Click("MDIForm1.ExitMNU");
  EXPECT_TRUE(program.Ended());
  EXPECT_TRUE(NothingInFront());
  EXPECT_EQ(values.Kept("AUTOSCAN"), "TRUE");
  EXPECT_EQ(values.Sets(), 1);
}

TEST_F(StoredSwitch, IsNotStoredByTheUnloadOfASearch) {
  PutSilence(1);
  values.Keep("AUTOSCAN", "TRUE");
  OpenProgram();
  Run(core::milliseconds(100));
  ASSERT_TRUE(Searching());
  program.FindWindow("MDIForm1")->Unload();
  Run(core::milliseconds(10));
  EXPECT_EQ(values.Sets(), 0);
  EXPECT_EQ(BoxInFront(), nullptr);
}

TEST_F(StoredSwitch, ToldUnreadableLeavesTheDefault) {
  constexpr int kNoRight = 13;
  values.Keep("AUTOSCAN", "FALSE");
  values.OpenError = kNoRight;
  OpenProgram();
  const std::vector<std::string> told = AnswerBoxes();
  EXPECT_THAT(told, testing::ElementsAre(testing::AllOf(HasSubstr("Error Opening Registry Key Entry:"),
                                                        HasSubstr("Key="), HasSubstr("DLL Returned=13"))));
  ASSERT_TRUE(RunUntil([this] { return !program.Starting(); }));
  EXPECT_EQ(State().AutoScan, 1);
}

TEST_F(StoredSwitch, ToldDamagedLeavesTheDefault) {
  constexpr int kDamaged = 5;
  values.Keep("AUTOSCAN", "FALSE");
  values.RetrieveError = kDamaged;
  OpenProgram();
  const std::vector<std::string> told = AnswerBoxes();
  EXPECT_THAT(told, testing::ElementsAre(testing::AllOf(HasSubstr("Error Retrieving Registry Key Entry:"),
                                                        HasSubstr("Key="), HasSubstr("DLL Returned=5"))));
  ASSERT_TRUE(RunUntil([this] { return !program.Starting(); }));
  EXPECT_EQ(State().AutoScan, 1);
}

TEST_F(StoredSwitch, ToldThatItCannotBeStoredLetsTheProgramEnd) {
  constexpr int kReadOnly = 30;
  OpenWithoutSearch();
  values.SetError = kReadOnly;
  ASSERT_TRUE(program.GetScreen().Click(At("MDIForm1.ExitMNU")).taken);
  const std::vector<std::string> told = AnswerBoxes();
  EXPECT_THAT(told, testing::Contains(testing::AllOf(HasSubstr("Error Setting Registry Key Entry:"), HasSubstr("Key="),
                                                     HasSubstr("DLL Returned=30"))));
  EXPECT_TRUE(program.Ended());
}

TEST_F(StoredSwitch, ToldThatItsStoreCannotBeMadeLetsTheProgramEnd) {
  constexpr int kNoRight = 13;
  OpenToTheEnd();
  values.CreateError = kNoRight;
  ASSERT_TRUE(program.GetScreen().Click(At("MDIForm1.ExitMNU")).taken);
  const std::vector<std::string> told = AnswerBoxes();
  EXPECT_THAT(told, testing::Contains(testing::AllOf(HasSubstr("Error Creating Registry Key Entry:"), HasSubstr("Key="),
                                                     HasSubstr("DLL Returned=13"))));
  EXPECT_TRUE(program.Ended());
}

}  // namespace
}  // namespace tarvo::test
