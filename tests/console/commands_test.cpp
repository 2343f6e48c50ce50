#include "console/commands.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "console_bench.h"

namespace tarvo::console {
namespace {

using testing::HasSubstr;
using testing::StartsWith;
using namespace std::chrono_literals;

constexpr char kBoxInFront[] =
    R"({"ok":true,"modal":{"window":"MsgBox","text":"EEProm updated! Please reset module to apply changes.",)"
    R"("caption":"Tarvo","icon":"information","buttons":["OK"]}})";

TEST(Click, RepliesWhenTheHandlerHasEnded) {
  ConsoleBench bench;
  bench.page.Ticks.Enabled = true;
  EXPECT_EQ(bench("click Slow"), kOk);
  EXPECT_EQ(bench.page.done, 1);
  EXPECT_GE(bench.page.ticks, 2) << "timers run meanwhile";
}

TEST(Click, TakesNoTimeWithoutAHandler) {
  ConsoleBench bench;
  EXPECT_EQ(bench.TimeOf("click Odd"), 0ms);
  EXPECT_TRUE(bench.page.Odd.Value());
}

TEST(Click, TogglesACheckBox) {
  ConsoleBench bench;
  EXPECT_EQ(bench("click Check"), kOk);
  EXPECT_EQ(bench("get Check.Value"), Value("1"));
}

TEST(Click, RepliesAtOnceWithNowait) {
  ConsoleBench bench;
  EXPECT_EQ(bench.TimeOf("nowait click Endless"), 0ms);
  EXPECT_FALSE(bench.screen.Idle());
  EXPECT_EQ(bench.page.done, 0);
}

TEST(Click, RepliesWhenAMessageBoxHasOpened) {
  ConsoleBench bench;
  EXPECT_EQ(bench("click Box"), kBoxInFront);
  EXPECT_EQ(bench.page.done, 0);
}

TEST(Click, RepliesWhenAModalWindowHasOpened) {
  ConsoleBench bench;
  EXPECT_EQ(bench("click TotIN(0)"), R"({"ok":true,"modal":{"window":"ChangeValue"}})");
}

TEST(Click, OnAButtonThatClosesAWindowWaitsForTheHandlerThatGoesOn) {
  ConsoleBench bench;
  bench("click TotIN(0)");
  bench("type Text1 \"42\"");
  EXPECT_EQ(bench("click OK"), kOk);
  EXPECT_EQ(bench.dialog.accepted, 1);
  EXPECT_EQ(bench("get TotIN(0).Caption"), Value(R"("42")"));
}

TEST(Click, WithABoxAboveAWindowGoesOnAboveTheWindow) {
  ConsoleBench bench;
  bench("click TotIN(0)");
  bench("type Text1 99999");
  EXPECT_THAT(bench("click OK"), HasSubstr(R"("text":"Overflow","caption":"Tarvo","icon":"exclamation")"));
  EXPECT_EQ(bench("answer OK"), R"({"ok":true,"modal":{"window":"ChangeValue"}})");
  EXPECT_EQ(bench.dialog.accepted, 0);
}

TEST(Click, FailsAndSaysWhy) {
  ConsoleBench bench;
  EXPECT_EQ(bench("click Disabled"), Failure("Disabled is disabled"));
  EXPECT_EQ(bench("click Hidden"), Failure("Hidden is hidden"));
  EXPECT_EQ(bench("click TotIN(1)"), Failure("TotIN(1) takes no click"));
  EXPECT_EQ(bench("nowait click Disabled"), Failure("Disabled is disabled"));
  bench("click TotIN(0)");
  EXPECT_EQ(bench("click Slow"),
            R"({"ok":false,"error":"Slow is behind ChangeValue","modal":{"window":"ChangeValue"}})");
}

TEST(Choose, TakesAPositionOrATextOrItsBeginning) {
  struct Row {
    const char* wanted;
    int index;
  };
  const Row rows[] = {{"0", 0}, {"2", 2}, {"\"TC-K\"", 3}, {"TC-J", 4}, {"\"9\"", 1}, {"38400", 2}, {"\"3\"", 2}};
  for (const Row& row : rows) {
    ConsoleBench bench;
    EXPECT_EQ(bench(std::string("choose Rate ") + row.wanted), kOk) << row.wanted;
    EXPECT_EQ(bench.page.Rate.ListIndex(), row.index) << row.wanted;
  }
}

TEST(Choose, FailsForWhatIsNoEntry) {
  ConsoleBench bench;
  EXPECT_EQ(bench("choose Rate \"TC\""), Failure(R"(2 entries of Rate begin with \"TC\")"));
  EXPECT_EQ(bench("choose Rate 5"), Failure(R"(Rate has no entry \"5\")"));
  EXPECT_EQ(bench("choose Rate -1"), Failure(R"(Rate has no entry \"-1\")"));
  EXPECT_EQ(bench("choose Rate \"tc-k\""), Failure(R"(Rate has no entry \"tc-k\")"));
  EXPECT_EQ(bench("choose Slow 0"), Failure("Slow is no list"));
  bench.page.Rate.Enabled = false;
  EXPECT_EQ(bench("choose Rate nonsense"), Failure("Rate is disabled"));
  EXPECT_EQ(bench.page.Rate.ListIndex(), 1);
}

TEST(Type, ReplacesTheText) {
  ConsoleBench bench;
  bench("click TotIN(0)");
  EXPECT_THAT(bench("type Text1 \"1 2\""), StartsWith(R"({"ok":true,)"));
  bench("type Text1 3");
  EXPECT_EQ(bench.dialog.Text1.Text(), "3");
  EXPECT_THAT(bench("type MinValue 3"), HasSubstr("MinValue takes no text"));
}

TEST(Key, InAControlWaitsForWhatItCloses) {
  ConsoleBench bench;
  bench("click TotIN(0)");
  bench("type Text1 5");
  EXPECT_EQ(bench("key Text1 Enter"), kOk);
  EXPECT_EQ(bench.page.TotIN[0].Caption(), "5");
}

TEST(Key, AloneGoesToTheWindowInFront) {
  ConsoleBench bench;
  EXPECT_EQ(bench("key Escape"), kOk);
  EXPECT_EQ(bench.page.escapes, 1);
  bench("click TotIN(0)");
  EXPECT_EQ(bench("key Escape"), kOk);
  EXPECT_EQ(bench.page.escapes, 1);
}

TEST(Key, IsEnterOrEscape) {
  ConsoleBench bench;
  EXPECT_EQ(bench("key F1"), Failure("there is no key F1, only Enter and Escape"));
  EXPECT_EQ(bench("key Slow Tab"), Failure("there is no key Tab, only Enter and Escape"));
  EXPECT_EQ(bench("key Missing Enter"), Failure("there is no Missing here"));
}

TEST(Leave, RunsTheHandlerOfTheLostFocus) {
  ConsoleBench bench;
  bench("click TotIN(0)");
  EXPECT_THAT(bench("leave Text1"), StartsWith(R"({"ok":true,)"));
  EXPECT_EQ(bench.dialog.left, 1);
}

TEST(Answer, WaitsForTheHandlerThatGoesOn) {
  ConsoleBench bench;
  bench("click Box");
  EXPECT_EQ(bench("answer OK"), kOk);
  EXPECT_EQ(bench.page.done, 1);
}

TEST(Answer, RepliesAtOnceWithNowait) {
  ConsoleBench bench;
  bench("click Box");
  EXPECT_EQ(bench("nowait answer OK"), kOk);
  EXPECT_EQ(bench.page.done, 0);
}

TEST(Answer, FailsWithoutAnythingToAnswer) {
  ConsoleBench bench;
  EXPECT_EQ(bench("answer OK"), Failure("nothing waits for an answer"));
  bench("click Box");
  EXPECT_THAT(bench("answer Yes"),
              HasSubstr(R"("error":"the message box has no button Yes","modal":{"window":"MsgBox")"));
  bench("answer OK");
  bench("click TotIN(0)");
  EXPECT_THAT(bench("answer OK"), HasSubstr("ChangeValue takes no answer"));
}

TEST(Answer, GoesToTheFileDialogAsAPathOrCancel) {
  ConsoleBench bench;
  EXPECT_EQ(bench("click File"), R"({"ok":true,"modal":{"window":"OpenFile","filter":"All Files (*.txt) | *.txt"}})");
  EXPECT_EQ(bench("answer \"/tmp/with blank.txt\""), kOk);
  EXPECT_EQ(bench.page.path, "/tmp/with blank.txt");
  bench("click File");
  bench("answer Cancel");
  EXPECT_EQ(bench.page.path, "cancelled");
}

TEST(Answer, ToABoxThatNoGestureLedToRunsWhatWaitsForIt) {
  ConsoleBench bench;
  bench.screen.ReportFault("Overflow");
  EXPECT_EQ(bench("answer OK"), kOk);
}

TEST(Get, GivesAPropertyAsItsType) {
  ConsoleBench bench;
  EXPECT_EQ(bench("get TotIN(0).Caption"), Value(R"("17")"));
  EXPECT_EQ(bench("get TotIN(0).Enabled"), Value("true"));
  EXPECT_EQ(bench("get Check.Value"), Value("0"));
  EXPECT_EQ(bench("get Even.Value"), Value("true"));
  EXPECT_EQ(bench("get Overflow.BackColor"), Value("64"));
  EXPECT_EQ(bench("get Rate.List"), Value(R"(["4800","9600","38400","TC-K","TC-J"])"));
  EXPECT_EQ(bench("get Rate.ItemData"), Value("[0,1,3,7,8]"));
  EXPECT_EQ(bench("get Meter.Percent"), Value("28"));
  EXPECT_EQ(bench("get Ticks.Interval"), Value("100"));
}

TEST(Get, GivesAllPropertiesInTheirOrder) {
  ConsoleBench bench;
  EXPECT_EQ(bench("get TotIN(0)"),
            R"({"ok":true,"properties":{"Caption":"17","BackColor":0,"Enabled":true,"Visible":true,)"
            R"("ToolTipText":"40003 - Counter"},"modal":null})");
}

TEST(Dump, GivesEveryControlOfThePage) {
  ConsoleBench bench;
  const std::string reply = bench("dump");
  EXPECT_THAT(reply, StartsWith(R"j({"ok":true,"controls":{"TotIN(0)":{"Caption":"17",)j"));
  for (const view::Control* control : bench.page.Controls()) {
    EXPECT_THAT(reply, HasSubstr("\"" + control->Name() + "\":{")) << control->Name();
  }
}

TEST(Dump, GivesTheWindowThatIsNamed) {
  ConsoleBench bench;
  EXPECT_EQ(
      bench("dump Jorun"),
      R"({"ok":true,"controls":{"StartJorun":{"Caption":"Start","Enabled":true,"Visible":true,"ToolTipText":""}},)"
      R"("modal":null})");
}

TEST(Dump, FailsWithoutAPage) {
  ConsoleBench bench;
  bench.main.Spawn([](view::Screen& screen) -> core::Task<> { co_await screen.ShowPage(nullptr); }(bench.screen));
  EXPECT_EQ(bench("dump"), Failure("no page is on the screen"));
}

TEST(Wait, LetsTheProgramRunThatLong) {
  ConsoleBench bench;
  bench.page.Ticks.Enabled = true;
  EXPECT_EQ(bench.TimeOf("wait 1.05s"), 1050ms);
  EXPECT_EQ(bench.page.ticks, 10);
  EXPECT_EQ(bench("wait soon"), Failure(R"(\"soon\" is no time such as 300ms, 1.5s or 2m)"));
}

TEST(Until, EndsWhenTheConditionHolds) {
  ConsoleBench bench;
  bench.page.Ticks.Enabled = true;
  EXPECT_EQ(bench.TimeOf("until TotIN(1).Caption = 5 within 5s"), 500ms);
  EXPECT_EQ(bench.TimeOf("until TotIN(1).Caption > 9 within 5s"), 500ms);
  EXPECT_EQ(bench("until TotIN(1).Caption < 11 within 5s"), kOk);
  EXPECT_EQ(bench("until MessageBelk.Caption contains K within 5s"), kOk);
  EXPECT_EQ(bench("until MessageBelk.Caption != \"\" within 5s"), kOk);
}

TEST(Until, LooksBeforeAnyTurn) {
  ConsoleBench bench;
  EXPECT_EQ(bench.TimeOf("until StartComm = 0 within 5s"), 0ms);
}

TEST(Until, FailsWhenTheTimeIsOver) {
  ConsoleBench bench;
  const core::TimePoint start = bench.scheduler.Now();
  EXPECT_EQ(bench("until TotIN(1).Caption = 18 within 1.5s"), Failure(R"(TotIN(1).Caption is \"17\" after 1.5s)"));
  EXPECT_EQ(bench.scheduler.Now() - start, 1500ms);
}

TEST(Until, WaitsForAWindowToOpen) {
  ConsoleBench bench;
  bench("nowait click TotIN(0)");
  EXPECT_THAT(bench("until MinValue.Caption contains Min within 1s"), StartsWith(R"({"ok":true,)"));
  ConsoleBench closed;
  EXPECT_EQ(closed("until MinValue.Caption contains Min within 1s"), Failure("there is no MinValue here, after 1s"));
}

TEST(Until, FailsAtOnceForWhatCannotHold) {
  struct Row {
    const char* line;
    const char* error;
  };
  const Row rows[] = {
      {"until Missing.Caption = 1 within 1s", "there is no Missing here"},
      {"until TotIN(0).Text = 1 within 1s", "TotIN(0) has no property Text"},
      {"until TotIN(0) = 1 within 1s", "a property is missing after TotIN(0)"},
      {"until TotIN(0).Caption == 1 within 1s", R"(\"==\" is none of = != < > contains)"},
      {"until TotIN(0).Caption = 1 in 1s", R"(\"within\" and a time are missing)"},
      {"until TotIN(0).Caption = 1 within long", R"(\"long\" is no time such as 300ms, 1.5s or 2m)"},
      {"until TotIN(0).Caption = 1", "usage: until NAME.Property = VALUE within 5s"},
  };
  ConsoleBench bench;
  const core::TimePoint start = bench.scheduler.Now();
  for (const Row& row : rows) EXPECT_EQ(bench(row.line), Failure(row.error)) << row.line;
  EXPECT_EQ(bench.scheduler.Now(), start);
}

TEST(Idle, EndsWhenNoHandlerIsUnderWay) {
  ConsoleBench bench;
  bench.page.Ticks.Enabled = true;
  bench("nowait click Slow");
  EXPECT_EQ(bench.TimeOf("idle within 10s"), 300ms);
  EXPECT_EQ(bench("idle within 10s"), kOk);
}

TEST(Idle, FailsWhileAHandlerWaits) {
  ConsoleBench bench;
  bench("nowait click Endless");
  EXPECT_EQ(bench("idle within 2m"), Failure("a handler is still under way after 2m"));
  EXPECT_EQ(bench("idle 2m"), Failure("usage: idle within 10s"));
}

TEST(Open, ShowsAHiddenPageAndRepliesWhenItIsThere) {
  ConsoleBench bench;
  EXPECT_EQ(bench.TimeOf("open frmUnlisted"), 300ms);
  EXPECT_EQ(bench.screen.Page(), &bench.unlisted);
  EXPECT_EQ(bench("get Parameter.Caption"), Value(R"("1")"));
}

TEST(Open, RepliesAtOnceWithNowait) {
  ConsoleBench bench;
  EXPECT_EQ(bench("nowait open frmUnlisted"), kOk);
  EXPECT_FALSE(bench.screen.Idle());
  EXPECT_EQ(bench("idle within 1s"), kOk);
  EXPECT_EQ(bench.screen.Page(), &bench.unlisted);
}

TEST(Open, OfAPageThatNavigationLeadsToFails) {
  ConsoleBench bench;
  EXPECT_EQ(bench("open Jorun"), Failure("Jorun is no hidden page"));
  EXPECT_EQ(bench("open ChangeValue"), Failure("ChangeValue is no hidden page"));
  EXPECT_EQ(bench.screen.Page(), &bench.page);
}

TEST(Open, OfWhatIsNoWindowFails) {
  ConsoleBench bench;
  EXPECT_EQ(bench("open frmUnlist"), Failure("there is no window frmUnlist"));
  EXPECT_EQ(bench("open Slow"), Failure("there is no window Slow"));
}

TEST(Open, OfThePageThatIsShownFails) {
  ConsoleBench bench;
  bench("open frmUnlisted");
  EXPECT_EQ(bench("open frmUnlisted"), Failure("frmUnlisted is on the screen"));
}

TEST(Open, BehindSomethingModalFails) {
  ConsoleBench bench;
  bench("click TotIN(0)");
  EXPECT_EQ(bench("open frmUnlisted"), R"({"ok":false,"error":"frmUnlisted would be behind what is in front",)"
                                       R"("modal":{"window":"ChangeValue"}})");
  EXPECT_EQ(bench.screen.Page(), &bench.page);
}

TEST(Open, WithAPageThatRefusesToBeLeftTellsItsBoxAndStays) {
  ConsoleBench bench;
  bench.page.mayBeLeft = false;
  EXPECT_EQ(bench("open frmUnlisted"),
            R"({"ok":true,"modal":{"window":"MsgBox","text":"Stop first!","caption":"Tarvo","icon":"exclamation",)"
            R"("buttons":["OK"]}})");
  EXPECT_EQ(bench("answer OK"), kOk);
  EXPECT_EQ(bench.screen.Page(), &bench.page);
}

TEST(Close, ClosesTheModalWindowInFrontAndWaitsForItsOpener) {
  ConsoleBench bench;
  bench("click TotIN(0)");
  EXPECT_EQ(bench("close"), kOk);
  EXPECT_EQ(bench.page.done, 1);
  EXPECT_FALSE(bench.main.ended);
}

TEST(Close, ElseClosesTheMainWindow) {
  ConsoleBench bench;
  EXPECT_EQ(bench("close"), kOk);
  EXPECT_TRUE(bench.main.ended);
}

TEST(Quit, IsTheMenusExit) {
  ConsoleBench bench;
  bench.main.ExitMNU.Enabled = false;
  EXPECT_EQ(bench("quit"), Failure("ExitMNU is disabled"));
  bench.main.ExitMNU.Enabled = true;
  EXPECT_EQ(bench("quit"), kOk);
  EXPECT_TRUE(bench.main.ended);
}

TEST(Help, NamesEveryCommand) {
  ConsoleBench bench;
  const std::string help = bench("help");
  for (const char* name : {"click", "choose", "type", "key", "leave", "answer", "get", "dump", "show", "wait", "until",
                           "idle", "open", "close", "quit", "help", "nowait"}) {
    EXPECT_THAT(help, HasSubstr(std::string(name))) << name;
    EXPECT_EQ(Parse(name).error.starts_with("there is no command"), false) << name;
  }
}

TEST(Help, TellsWhichPageCanBeOpened) {
  ConsoleBench bench(Style::kPerson);
  EXPECT_THAT(bench("help"), testing::ContainsRegex("\nopen WINDOW  +[^\n]*frmPlugAndPlay\n"));
}

TEST(Commands, ThatAreWrittenWronglySayWhatIsMeant) {
  struct Row {
    const char* line;
    const char* error;
  };
  const Row rows[] = {
      {"klick Slow", "there is no command klick, see help"},
      {"click", "usage: click NAME"},
      {"click Slow Box", "usage: click NAME"},
      {"type Text1", R"(usage: type NAME \"12\")"},
      {"show all", "usage: show"},
      {"open", "usage: open WINDOW"},
      {"open frmUnlisted now", "usage: open WINDOW"},
      {"nowait", "a command is missing after nowait"},
      {"nowait get Slow", "nowait goes before a gesture, which get is not"},
      {"click \"Slow", "a quote is not closed"},
  };
  ConsoleBench bench;
  for (const Row& row : rows) EXPECT_EQ(bench(row.line), Failure(row.error)) << row.line;
}

TEST(Commands, ThatAreEmptyGetNoReply) {
  ConsoleBench bench;
  EXPECT_EQ(bench(""), "");
  EXPECT_EQ(bench("   # a comment"), "");
}

TEST(Commands, TakeLinesWithAnyEnd) {
  ConsoleBench bench;
  EXPECT_EQ(bench("get TotIN(0).Caption\r"), Value(R"("17")"));
}

TEST(Commands, RefuseALineWithoutEnd) {
  ConsoleBench bench;
  EXPECT_EQ(bench("click " + std::string(Console::kLongestLine, 'x')), Failure("the line is too long"));
}

}  // namespace
}  // namespace tarvo::console
