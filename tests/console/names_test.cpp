#include "console/names.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "console_bench.h"

namespace tarvo::console {
namespace {

TEST(Names, OfAModalWindowGoBeforeThoseOfThePageAndTheMainWindow) {
  ConsoleBench bench;
  EXPECT_EQ(bench("get Shared.Caption"), Value(R"("of the page")"));
  bench("click TotIN(0)");
  EXPECT_EQ(bench("get Shared.Caption"), R"({"ok":true,"value":"of the dialog","modal":{"window":"ChangeValue"}})");
}

TEST(Names, OfAModalWindowAreFoundUnderAMessageBox) {
  ConsoleBench bench;
  bench("click TotIN(0)");
  bench("type Text1 99999");
  bench("click OK");
  EXPECT_THAT(bench("get Text1.Text"), testing::HasSubstr(R"("value":"99999","modal":{"window":"MsgBox")"));
}

TEST(Names, OfTheMainWindowComeAfterThePage) {
  ConsoleBench bench;
  EXPECT_EQ(bench("get labBelk.Caption"), Value(R"("Belk")"));
  EXPECT_EQ(bench("get StatusBar1(2).Text"), Value(R"("")"));
  EXPECT_EQ(bench("get StatusBar1(0).Text"), Failure("there is no StatusBar1(0) here"));
}

TEST(Names, OfSharedValuesComeLast) {
  ConsoleBench bench;
  bench.state.RunKind = 1;
  bench.state.PollCount = 9;
  EXPECT_EQ(bench("get RunKind.Caption"), Value(R"("of the page")"));
  EXPECT_EQ(bench("get PollCount.Caption"), Value(R"("of the main window")"));
}

TEST(Names, CanBeFixedByTheirWindow) {
  ConsoleBench bench;
  EXPECT_EQ(bench("get MDIForm1.Shared.Caption"), Value(R"("of the main window")"));
  EXPECT_EQ(bench("get ChangeValue.Shared.Caption"), Value(R"("of the dialog")"));
  EXPECT_EQ(bench("get Jorun.StartJorun.Caption"), Value(R"("Start")"));
  EXPECT_EQ(bench("get Belk.TotIN(1).Caption"), Value(R"("17")"));
}

TEST(Names, OfAWindowAloneStandForItsCaption) {
  ConsoleBench bench;
  EXPECT_EQ(bench("get ChangeValue"), R"({"ok":true,"properties":{"Caption":"Change Value"},"modal":null})");
  EXPECT_EQ(bench("get ChangeValue.Caption"), Value(R"("Change Value")"));
}

TEST(Names, ThatAreUnknownSaySo) {
  struct Row {
    const char* line;
    const char* error;
  };
  const Row rows[] = {
      {"get StartBlek", "there is no StartBlek here"},
      {"get StartJorun.Caption", "there is no StartJorun here"},
      {"get TotIN(2)", "there is no TotIN(2) here"},
      {"get Jorun.TotIN(0).Caption", "Jorun has no TotIN(0)"},
      {"get Jorun.TotIN", "Jorun has no property TotIN"},
      {"get TotIN(0).Text", "TotIN(0) has no property Text"},
      {"get TotIN(0).Caption.x", "TotIN(0) has no property Caption.x"},
      {"get .", "there is no  here"},
      {"get PollBuffer(20)", "there is no PollBuffer(20) here"},
      {"get PollBuffer(-1)", "there is no PollBuffer(-1) here"},
      {"get PollBuffer(x)", "there is no PollBuffer(x) here"},
      {"get StartComm(0)", "there is no StartComm(0) here"},
      {"get StartComm.Value", "there is no StartComm here"},
      {"click Jorun.TotIN(0)", "Jorun has no TotIN(0)"},
      {"click StartComm", "there is no StartComm here"},
      {"click Jorun.StartJorun", "StartJorun is not on the screen"},
      {"dump Cobin", "there is no window Cobin"},
  };
  ConsoleBench bench;
  for (const Row& row : rows) EXPECT_EQ(bench(row.line), Failure(row.error)) << row.line;
}

TEST(Names, OfSharedValuesGiveTheirPresentValue) {
  ConsoleBench bench;
  bench.state.PCSettings = "38400,e,8,1";
  bench.state.PCPort = 2;
  bench.state.ModuleAddress = 17;
  bench.state.StartComm = state::kTrue;
  bench.state.NrFinestra = 3;
  bench.state.PollRegister = state::Register(40002);
  bench.state.PollBuffer[3] = state::Word(0xFFFF);
  bench.state.FileFields[1] = "1025";
  bench.state.ReadStep = 4;
  bench.state.EscPressed = 1;
  bench.state.GearStep = 5;
  bench.state.FamilyShown = 0;
  bench.state.ChangeValueMin = -5;
  bench.state.ChangeValueMax = 65535;
  bench.state.ChangeValueResult = "12";
  bench.state.ChangeValueOk = -1;
  struct Row {
    const char* name;
    const char* value;
  };
  const Row rows[] = {
      {"PCSettings", R"("38400,e,8,1")"},
      {"PCPort", "2"},
      {"ModuleAddress", "17"},
      {"StartComm", "-1"},
      {"NrFinestra", "3"},
      {"PollRegister", "40002"},
      {"PollBuffer(3)", "65535"},
      {"FileFields(1)", R"("1025")"},
      {"PollBuffer(19)", "0"},
      {"PollBuffer", "[0,0,0,65535,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0]"},
      {"ReadStep", "4"},
      {"EscPressed", "1"},
      {"GearStep", "5"},
      {"FamilyShown", "0"},
      {"ChangeValueMin", "-5"},
      {"ChangeValueMax", "65535"},
      {"ChangeValueResult", R"("12")"},
      {"ChangeValueOk", "-1"},
  };
  for (const Row& row : rows) EXPECT_EQ(bench(std::string("get ") + row.name), Value(row.value)) << row.name;
}

TEST(Names, OfBeepsAndThePointerExistHereOnly) {
  ConsoleBench bench;
  EXPECT_EQ(bench("get Beeps"), Value("0"));
  EXPECT_EQ(bench("get MousePointer"), Value(R"("default")"));
  bench.screen.Beep();
  bench.screen.SetMousePointer(view::Screen::Pointer::kHourglass);
  EXPECT_EQ(bench("get Beeps"), Value("1"));
  EXPECT_EQ(bench("get MousePointer"), Value(R"("hourglass")"));
}

}  // namespace
}  // namespace tarvo::console
