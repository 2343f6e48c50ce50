// The main window: start-up, menus, page list, family selector, lock of the navigation, help, About.

#include <array>

#include "shell/shell_fixture.h"
#include "shell/version.h"

namespace tarvo::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class MainWindow : public ShellFixture {
 protected:
  std::string Version() const { return std::string(shell::Version()); }
};

// Start-up.

TEST_F(MainWindow, StartsWithTheDefaults) {
  State().PollBuffer.fill(state::Word(7));
  State().StartComm = state::kTrue;
  State().EscPressed = 1;
  State().FamilyShown = state::kFalse;
  OpenQuietly();
  EXPECT_EQ(State().PCPort, 1);
  EXPECT_EQ(State().ModuleAddress, 1);
  EXPECT_EQ(State().PCSettings, "9600,n,8,1");
  EXPECT_EQ(State().StartComm, state::kFalse);
  EXPECT_EQ(State().EscPressed, 0);
  EXPECT_EQ(State().FamilyShown, state::kTrue);
  EXPECT_EQ(State().SearchRunning, state::kFalse);
  EXPECT_EQ(State().NrFinestra, -1);
  for (const state::Word word : State().PollBuffer) EXPECT_EQ(word.Unsigned(), 0);
}

TEST_F(MainWindow, StartsWithHome) {
  OpenQuietly();
  EXPECT_EQ(PageName(), "Home");
  EXPECT_TRUE(NothingInFront());
  EXPECT_FALSE(Hourglass());
}

TEST_F(MainWindow, HasNameAndVersionInItsTitle) {
  OpenQuietly();
  EXPECT_EQ(program.FindWindow("MDIForm1")->Caption, "Tarvo " + Version());
}

TEST_F(MainWindow, TestsEachPortOnceAtTheStart) {
  std::vector<int> opened;
  ports.BeforeOpen = [&](int comPort) { opened.push_back(comPort); };
  OpenQuietly();
  EXPECT_THAT(opened, ElementsAre(1, 2, 3, 4));
  EXPECT_EQ(line.Opens(), 1);
  EXPECT_FALSE(line.IsOpen());
  EXPECT_THAT(line.Writes(), IsEmpty());
}

TEST_F(MainWindow, EnablesOnlyThePortsThatOpenAtTheStart) {
  ports.SetFault(3, core::kPermissionDenied);
  OpenQuietly();
  EXPECT_TRUE(Enabled("PCsetup.SetCOM1"));
  for (const char* name : {"PCsetup.SetCOM2", "PCsetup.SetCOM3", "PCsetup.SetCOM4"}) {
    EXPECT_FALSE(Enabled(name)) << name;
  }
  EXPECT_TRUE(NothingInFront());
}

// Texts.

struct Named {
  const char* name;
  const char* caption;
};

TEST_F(MainWindow, NamesItsMenusAndLabels) {
  OpenQuietly();
  constexpr auto kNamed = std::to_array<Named>({{"FileMNU", "&File"},
                                                {"ExitMNU", "&Exit"},
                                                {"MenuOptions", "&Options"},
                                                {"MenuPCSetup", "PCSetup"},
                                                {"menuEnableCheckConnection", "&Enable  Check  Connection"},
                                                {"mnuCheckconnection", "&Check Connection"},
                                                {"mnuVesk", "Vesk  Devices"},
                                                {"HelpMNU", "&Help"},
                                                {"ContentsMNU", "&Contents"},
                                                {"frmAbout", "&About"},
                                                {"LabHome", "Home"},
                                                {"LabPCSetup", "PC-Setup"},
                                                {"labBelk", "Belk"},
                                                {"CheckEnableCheckConnection", "Enable Check Connection"}});
  for (const Named& named : kNamed) EXPECT_EQ(Text(std::string("MDIForm1.") + named.name), named.caption) << named.name;
  EXPECT_EQ(ToolTip("MDIForm1.cbSelectDevice"), "Set devices family");
  EXPECT_THAT(List("MDIForm1.cbSelectDevice"), ElementsAre("Vesk DEVICES", "OTHER DEVICES!"));
  EXPECT_EQ(ToolTip("MDIForm1.buttCheckDevice"), "Check if a device is on-line");
}

TEST_F(MainWindow, HangsItsItemsUnderTheirMenus) {
  OpenQuietly();
  const auto menuOf = [this](const std::string& item) {
    const view::MenuItem* menu = dynamic_cast<view::MenuItem&>(At("MDIForm1." + item)).Menu();
    return menu == nullptr ? std::string() : menu->Name();
  };
  EXPECT_EQ(menuOf("ExitMNU"), "FileMNU");
  for (const char* item : {"MenuHome", "MenuPCSetup", "menuEnableCheckConnection", "mnuCheckconnection"}) {
    EXPECT_EQ(menuOf(item), "MenuOptions") << item;
  }
  EXPECT_EQ(menuOf("MenuBelk"), "mnuVesk");
  for (const char* item : {"ContentsMNU", "frmAbout"}) EXPECT_EQ(menuOf(item), "HelpMNU") << item;
}

// The page list.

struct Row {
  const char* starter;
  const char* page;
  int number;
};
void PrintTo(const Row& row, std::ostream* out) {
  *out << row.starter;
}

class PageList : public ShellFixture, public testing::WithParamInterface<Row> {};

TEST_P(PageList, LeadsToItsPage) {
  OpenQuietly();
  // From another page, so that something changes.
  Click(std::string_view(GetParam().page) == "Belk" ? "MDIForm1.LabPCSetup" : "MDIForm1.labBelk");
  ASSERT_NE(PageName(), GetParam().page);
  Click(std::string("MDIForm1.") + GetParam().starter);
  EXPECT_EQ(PageName(), GetParam().page);
  EXPECT_EQ(State().NrFinestra, GetParam().number);
  EXPECT_TRUE(NothingInFront());
}

INSTANTIATE_TEST_SUITE_P(Rows, PageList,
                         testing::Values(Row{"LabHome", "Home", -1}, Row{"MenuHome", "Home", -1},
                                         Row{"LabPCSetup", "PCsetup", -1}, Row{"MenuPCSetup", "PCsetup", -1},
                                         Row{"labBelk", "Belk", 0}, Row{"MenuBelk", "Belk", 0}),
                         [](const auto& given) { return std::string(given.param.starter); });

TEST_F(MainWindow, ShowsTheFamilyOfAPageThatIsOpened) {
  OpenQuietly();
  Choose("MDIForm1.cbSelectDevice", 1);
  ASSERT_FALSE(Visible("MDIForm1.labBelk"));
  Click("MDIForm1.MenuBelk");
  EXPECT_EQ(State().FamilyShown, state::kTrue);
  EXPECT_EQ(ListIndex("MDIForm1.cbSelectDevice"), 0);
  EXPECT_TRUE(Visible("MDIForm1.labBelk"));
}

TEST_F(MainWindow, LeavesTheFamilyForHomeAndPcSetup) {
  OpenQuietly();
  for (const std::int16_t family : {state::kFalse, state::kTrue}) {
    Choose("MDIForm1.cbSelectDevice", family == state::kTrue ? 0 : 1);
    for (const char* starter : {"LabHome", "LabPCSetup", "MenuHome", "MenuPCSetup"}) {
      Click(std::string("MDIForm1.") + starter);
      EXPECT_EQ(State().FamilyShown, family) << starter;
      EXPECT_EQ(Visible("MDIForm1.labBelk"), family == state::kTrue) << starter;
    }
  }
}

TEST_F(MainWindow, HighlightsTheLabelThatWasClickedAlone) {
  OpenQuietly();
  const std::array<std::string, 3> labels = {"MDIForm1.LabHome", "MDIForm1.LabPCSetup", "MDIForm1.labBelk"};
  for (const std::string& clicked : labels) {
    Click(clicked);
    for (const std::string& label : labels) {
      EXPECT_EQ(BackColor(label) == view::kHighlight, label == clicked) << label << " after " << clicked;
    }
  }
}

TEST_F(MainWindow, HighlightsTheLabelBehindAMenuItem) {
  OpenQuietly();
  Click("MDIForm1.MenuPCSetup");
  EXPECT_EQ(BackColor("MDIForm1.LabPCSetup"), view::kHighlight);
  EXPECT_NE(BackColor("MDIForm1.labBelk"), view::kHighlight);
}

TEST_F(MainWindow, KeepsAPageThatWasLeftAsItWas) {
  OpenQuietly();
  Click("MDIForm1.labBelk");
  Click("FilterBelk");
  AnswerChangeValue("77");
  Click("MDIForm1.LabHome");
  Click("MDIForm1.labBelk");
  EXPECT_EQ(Text("FilterBelk"), "77");
}

TEST_F(MainWindow, ShowsThePageOfTheLastOfTwoQuickClicks) {
  OpenQuietly();
  ClickAndGoOn("MDIForm1.labBelk");
  ClickAndGoOn("MDIForm1.LabPCSetup");
  scheduler.RunReady();
  EXPECT_EQ(PageName(), "PCsetup");
  EXPECT_EQ(State().NrFinestra, -1);
  ClickAndGoOn("MDIForm1.LabHome");
  ClickAndGoOn("MDIForm1.labBelk");
  scheduler.RunReady();
  EXPECT_EQ(PageName(), "Belk");
  EXPECT_EQ(State().NrFinestra, 0);
}

// The family selector.

TEST_F(MainWindow, ShowsTheFamilyThatIsChosen) {
  OpenQuietly();
  EXPECT_EQ(ListIndex("MDIForm1.cbSelectDevice"), 0);
  EXPECT_TRUE(Visible("MDIForm1.labBelk"));
  Choose("MDIForm1.cbSelectDevice", 1);
  EXPECT_EQ(State().FamilyShown, state::kFalse);
  EXPECT_FALSE(Visible("MDIForm1.labBelk"));
  EXPECT_NE(RefusalOf("MDIForm1.labBelk"), "");
  EXPECT_TRUE(Visible("MDIForm1.LabHome"));
  EXPECT_TRUE(Visible("MDIForm1.LabPCSetup"));
  Choose("MDIForm1.cbSelectDevice", 0);
  EXPECT_EQ(State().FamilyShown, state::kTrue);
  EXPECT_TRUE(Visible("MDIForm1.labBelk"));
  EXPECT_TRUE(Enabled("MDIForm1.labBelk"));
}

TEST_F(MainWindow, KeepsThePageWhenAnotherFamilyIsChosen) {
  OpenQuietly();
  Click("MDIForm1.labBelk");
  Choose("MDIForm1.cbSelectDevice", 1);
  EXPECT_EQ(PageName(), "Belk");
  EXPECT_EQ(State().NrFinestra, 0);
}

// A session's lock.

constexpr const char* kLocked[] = {"LabHome", "LabPCSetup", "cbSelectDevice",    "buttCheckDevice",
                                   "labBelk", "MenuBelk",   "mnuCheckconnection"};

TEST_F(MainWindow, LocksItsNavigationInASession) {
  OpenQuietly();
  StartSession();
  for (const char* name : kLocked) EXPECT_FALSE(Enabled(std::string("MDIForm1.") + name)) << name;
  for (const char* name : {"LabHome", "LabPCSetup", "labBelk", "MenuHome", "MenuPCSetup", "MenuBelk", "buttCheckDevice",
                           "mnuCheckconnection"}) {
    EXPECT_NE(RefusalOf(std::string("MDIForm1.") + name), "") << name;
  }
  EXPECT_FALSE(program.GetScreen().Choose(At("MDIForm1.cbSelectDevice"), 1).taken);
  EXPECT_EQ(PageName(), "Belk");
  EXPECT_TRUE(InSession());
}

TEST_F(MainWindow, OpensItsNavigationAfterStop) {
  OpenQuietly();
  StartSession();
  Click("StopBelk");
  for (const char* name : kLocked) EXPECT_TRUE(Enabled(std::string("MDIForm1.") + name)) << name;
  for (const char* name : {"LabHome", "MenuPCSetup", "MenuHome", "labBelk", "MenuBelk"}) {
    EXPECT_EQ(RefusalOf(std::string("MDIForm1.") + name), "") << name;
    scheduler.RunReady();
  }
}

TEST_F(MainWindow, BringsTheSameFamilyBackAfterStop) {
  OpenQuietly();
  Click("MDIForm1.labBelk");
  Choose("MDIForm1.cbSelectDevice", 1);
  Click("StartBelk");
  ASSERT_TRUE(InSession());
  Click("StopBelk");
  EXPECT_EQ(State().FamilyShown, state::kFalse);
  EXPECT_EQ(ListIndex("MDIForm1.cbSelectDevice"), 1);
  EXPECT_FALSE(Visible("MDIForm1.labBelk"));
}

// The switch of the search at start-up.

class SearchSwitch : public MainWindow, public testing::WithParamInterface<const char*> {
 protected:
  void ExpectSwitch(int on) {
    EXPECT_EQ(State().AutoScan, on);
    EXPECT_EQ(Number("MDIForm1.menuEnableCheckConnection", "Value"), on);
    EXPECT_EQ(Number("MDIForm1.CheckEnableCheckConnection", "Value"), on);
  }
};

TEST_P(SearchSwitch, IsFlippedAndShownByBothControls) {
  OpenQuietly();
  ExpectSwitch(0);
  for (const int on : {1, 0, 1}) {
    Click(std::string("MDIForm1.") + GetParam());
    ExpectSwitch(on);
  }
  EXPECT_FALSE(State().SearchRunning);
  EXPECT_EQ(values.Kept("AUTOSCAN"), "FALSE");
}

TEST_P(SearchSwitch, IsShownByBothAtTheStart) {
  OpenProgram();
  ASSERT_TRUE(RunUntil([this] { return !program.Starting(); }));
  ExpectSwitch(1);
  Click(std::string("MDIForm1.") + GetParam());
  ExpectSwitch(0);
}

INSTANTIATE_TEST_SUITE_P(Controls, SearchSwitch,
                         testing::Values("menuEnableCheckConnection", "CheckEnableCheckConnection"),
                         [](const auto& given) { return std::string(given.param); });

// Help.

TEST_F(MainWindow, OpensTheManualOnceForEachClick) {
  OpenQuietly();
  Click("MDIForm1.ContentsMNU");
  EXPECT_EQ(help.Openings(), 1);
  EXPECT_TRUE(NothingInFront());
  Click("MDIForm1.ContentsMNU");
  EXPECT_EQ(help.Openings(), 2);
}

TEST_F(MainWindow, TellsWhereTheManualIsWhenNothingOpensIt) {
  OpenQuietly();
  Click("MDIForm1.ContentsMNU");
  help.Fail("/somewhere/manual.html");
  Run(core::milliseconds(10));
  ASSERT_NE(BoxInFront(), nullptr);
  EXPECT_THAT(BoxInFront()->text, HasSubstr("/somewhere/manual.html"));
  AnswerOk();
  EXPECT_TRUE(NothingInFront());
}

TEST_F(MainWindow, OpensTheManualInASessionToo) {
  OpenQuietly();
  StartSession();
  Click("MDIForm1.ContentsMNU");
  EXPECT_EQ(help.Openings(), 1);
  EXPECT_TRUE(InSession());
}

}  // namespace
}  // namespace tarvo::test
