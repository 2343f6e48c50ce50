// The roads out of the program, and what is stored on them.

#include "e2e/shell_bench.h"

namespace tarvo {
namespace {

using test::BoxJson;
using test::ConsoleReply;
using test::kMustStop;
using test::kNothing;
using testing::HasSubstr;

class Exit : public test::ShellBench {
 protected:
  /// Nothing is on any port.
  void OpenAlone(const std::string& settings) {
    WriteSettings(settings);
    console = OpenShell({}, Settings());
  }
};

struct Road {
  std::string command;
  std::string icon;
};
void PrintTo(const Road& road, std::ostream* out) {
  *out << road.command;
}

class ExitRoad : public Exit, public testing::WithParamInterface<Road> {};

TEST_P(ExitRoad, IsClosedInASessionAndOpenAfterIt) {
  OpenBelkSession("belk");
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(Do(GetParam().command), BoxJson(kMustStop, GetParam().icon));
    EXPECT_EQ(Do("answer OK"), kNothing);
    LetPoll();
    EXPECT_EQ(Get("StartComm"), "-1");
    EXPECT_EQ(Get("MessageBelk.Caption"), "OK");
  }
  EXPECT_EQ(ReadSettings(), "AUTOSCAN=FALSE\n");
  StopSession();
  SendAndEnd(GetParam().command);
  EXPECT_EQ(ReadSettings(), "AUTOSCAN=FALSE\n");
}

TEST_P(ExitRoad, StoresTheSwitchAndKeepsForeignLines) {
  const std::string before = "# my bench\nCOM1=/nowhere\r\nFOREIGN = 1 2 3\n";
  const std::string after = "\n\n# the end";
  OpenAlone(before + "AUTOSCAN=FALSE" + after);
  EXPECT_EQ(Do("click menuEnableCheckConnection"), kNothing);
  SendAndEnd(GetParam().command);
  EXPECT_EQ(ReadSettings(), before + "AUTOSCAN=TRUE" + after);
}

TEST_P(ExitRoad, MakesAMissingFile) {
  // Without a port the search at the start is over at once.
  console = OpenShell({}, folder / "new" / "Tarvo.conf");
  EXPECT_EQ(Get("AutoScan"), "1");
  EXPECT_EQ(Do("click CheckEnableCheckConnection"), kNothing);
  SendAndEnd(GetParam().command);
  std::ifstream file(folder / "new" / "Tarvo.conf");
  std::string text;
  std::getline(file, text);
  EXPECT_EQ(text, "AUTOSCAN=FALSE");
}

INSTANTIATE_TEST_SUITE_P(
    Roads, ExitRoad, testing::Values(Road{"quit", "none"}, Road{"close", "exclamation"}, Road{"click ExitMNU", "none"}),
    [](const auto& given) { return given.param.command.substr(0, given.param.command.find(' ')); });

TEST_F(Exit, ByTheEndOfInputStoresNothing) {
  const std::string settings = "AUTOSCAN=FALSE\n";
  OpenAlone(settings);
  EXPECT_EQ(Do("click menuEnableCheckConnection"), kNothing);
  EXPECT_EQ(Get("AutoScan"), "1");
  console->Process().EndInput();
  ExpectEnds();
  EXPECT_EQ(ReadSettings(), settings);
}

TEST_F(Exit, ByTheEndOfInputInASessionFreesThePort) {
  OpenBelkSession("belk");
  console->Process().EndInput();
  ExpectEnds();
  OpenBelk();
  StartSession();
}

TEST_F(Exit, KeepsTheSwitchForTheNextRun) {
  OpenAlone("AUTOSCAN=FALSE\n");
  EXPECT_EQ(Do("click CheckEnableCheckConnection"), kNothing);
  SendAndEnd("quit");
  console = OpenShell({}, Settings());
  EXPECT_EQ(Get("AutoScan"), "1");
  EXPECT_EQ(Get("StatusBar1(2).Text"), "No devices on line");
  EXPECT_EQ(Do("click CheckEnableCheckConnection"), kNothing);
  SendAndEnd("quit");
  console = OpenShell({}, Settings());
  EXPECT_EQ(Get("AutoScan"), "0");
  EXPECT_EQ(Get("StatusBar1(2).Text"), "");
}

TEST_F(Exit, TellsThatNothingCanBeStoredAndEnds) {
  // Nobody makes files there, the superuser neither.
  console = OpenShell({}, "/proc/tarvo-test/settings");
  EXPECT_EQ(Get("AutoScan"), "1");
  const ConsoleReply reply = console->Try("quit");
  ASSERT_THAT(reply.Modal(), HasSubstr("\"window\":\"MsgBox\""));
  EXPECT_THAT(reply.Modal(), HasSubstr(" Registry Key Entry:"));
  EXPECT_THAT(reply.Modal(), HasSubstr("Key="));
  EXPECT_THAT(reply.Modal(), HasSubstr("DLL Returned="));
  // A second one may tell of the store that could not be made.
  for (int i = 0; i < 3; ++i) console->Process().Write("answer OK\n");
  ExpectEnds();
}

TEST_F(Exit, EndsAScriptAndStoresTheSwitch) {
  WriteSettings("AUTOSCAN=FALSE\n");
  std::ofstream(folder / "script") << "click menuEnableCheckConnection\nquit\nclick Nothing\n";
  test::ChildProcess program({TARVO_CONSOLE, "--settings", Settings().string(), "--com1", (folder / "no").string(),
                              (folder / "script").string()});
  EXPECT_EQ(program.WaitWithin(), 0);
  EXPECT_EQ(ReadSettings(), "AUTOSCAN=TRUE\n");
}

// The switch itself.

class Switch : public Exit, public testing::WithParamInterface<std::string> {};

TEST_P(Switch, IsFlippedAndShownByBothControls) {
  OpenAlone("AUTOSCAN=FALSE\n");
  for (const std::string on : {"1", "0", "1"}) {
    EXPECT_EQ(Do("click " + GetParam()), kNothing);
    EXPECT_EQ(Get("AutoScan"), on);
    EXPECT_EQ(Get("menuEnableCheckConnection.Value"), on);
    EXPECT_EQ(Get("CheckEnableCheckConnection.Value"), on);
  }
}

INSTANTIATE_TEST_SUITE_P(Controls, Switch, testing::Values("menuEnableCheckConnection", "CheckEnableCheckConnection"),
                         [](const auto& given) { return given.param; });

}  // namespace
}  // namespace tarvo
