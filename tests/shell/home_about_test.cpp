// The start page and the About window.

#include "shell/shell_fixture.h"
#include "shell/version.h"

namespace tarvo::test {
namespace {

class Home : public ShellFixture {
 protected:
  std::string Version() const { return std::string(shell::Version()); }
};
using About = Home;

TEST_F(Home, ShowsTheRelease) {
  OpenQuietly();
  EXPECT_EQ(Text("Home.Label2"), "Release: " + Version());
  EXPECT_NE(FindControl("Home.Label3"), nullptr);
  EXPECT_NE(FindControl("Home.Picture1"), nullptr);
}

TEST_F(Home, HasFiveGears) {
  OpenQuietly();
  for (const char* gear : {"gear1", "gear2", "gear3", "gear4", "gear5"}) {
    EXPECT_NE(FindControl(std::string("Home.") + gear), nullptr) << gear;
  }
}

TEST_F(Home, ClearsTheFirstPanelEachTimeItIsShown) {
  OpenQuietly();
  Click("MDIForm1.labBelk");
  SetPanel("MDIForm1.StatusBar1(1)", "passing");
  SetPanel("MDIForm1.StatusBar1(2)", "staying");
  Click("MDIForm1.LabHome");
  EXPECT_EQ(Panel1(), "");
  EXPECT_EQ(Panel2(), "staying");
}

TEST_F(Home, NotesEscape) {
  OpenQuietly();
  PressKey(view::Key::kEscape);
  EXPECT_EQ(State().EscPressed, 1);
  EXPECT_EQ(PageName(), "Home");
}

TEST_F(Home, NotesNoOtherKey) {
  OpenQuietly();
  PressKey(view::Key::kEnter);
  EXPECT_EQ(State().EscPressed, 0);
}

TEST_F(Home, NeverTouchesTheBus) {
  OpenQuietly();
  const int attempts = ports.Attempts();
  Click("MDIForm1.LabHome");
  Run(std::chrono::seconds(5));
  EXPECT_EQ(ports.Attempts(), attempts);
}

TEST_F(About, TellsNameAndVersion) {
  OpenQuietly();
  Click("MDIForm1.frmAbout");
  EXPECT_EQ(WindowInFront(), "About");
  EXPECT_EQ(program.FindWindow("About")->Caption, "About Tarvo");
  EXPECT_EQ(Text("About.lblTitle"), "Series Vesk setup tool");
  EXPECT_EQ(Text("About.lblVersion"), "Version " + Version());
}

TEST_F(About, ClosesByItsButtonItsBoxAndEscape) {
  OpenQuietly();
  Click("MDIForm1.frmAbout");
  Click("About.cmdOK");
  EXPECT_TRUE(NothingInFront());
  Click("MDIForm1.frmAbout");
  Close();
  EXPECT_TRUE(NothingInFront());
  Click("MDIForm1.frmAbout");
  PressKey(view::Key::kEscape);
  EXPECT_TRUE(NothingInFront());
  EXPECT_FALSE(program.Ended());
}

TEST_F(About, ActivatesThePageBehindItWhenItCloses) {
  OpenQuietly();
  Click("MDIForm1.frmAbout");
  SetPanel("MDIForm1.StatusBar1(1)", "passing");
  Click("About.cmdOK");
  EXPECT_EQ(Panel1(), "");
}

TEST_F(About, CoversTheMainWindow) {
  OpenQuietly();
  Click("MDIForm1.frmAbout");
  EXPECT_NE(RefusalOf("MDIForm1.labBelk"), "");
  EXPECT_NE(RefusalOf("MDIForm1.ExitMNU"), "");
}

TEST_F(About, LeavesASessionRunning) {
  OpenQuietly();
  StartSession();
  Click("MDIForm1.frmAbout");
  Run(core::milliseconds(300));
  Click("About.cmdOK");
  EXPECT_TRUE(InSession());
  module.ForgetLog();
  Run(core::milliseconds(300));
  EXPECT_THAT(module.TakeLog(), testing::SizeIs(6));
  EXPECT_EQ(Text("MessageBelk"), "OK");
}

}  // namespace
}  // namespace tarvo::test
