#include "console/console.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "console_bench.h"

namespace tarvo::console {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

TEST(Script, StopsAtTheFirstFailureAndNamesItsLine) {
  ConsoleBench bench;
  std::istringstream script("# a bench\n\nclick Odd\nclick Disabled\nclick Even\n");
  std::ostringstream errors;
  EXPECT_EQ(bench.console.RunScript(script, "bench.txt", errors), 1);
  EXPECT_EQ(errors.str(), "bench.txt:4: Disabled is disabled\n");
  EXPECT_EQ(bench.out.str(), std::string(kOk) + "\n" + Failure("Disabled is disabled") + "\n");
  EXPECT_TRUE(bench.page.Odd.Value());
}

TEST(Script, EndsWithStatusZeroWhenAllSucceeds) {
  ConsoleBench bench;
  std::istringstream script("click Odd\nget Odd.Value");
  std::ostringstream errors;
  EXPECT_EQ(bench.console.RunScript(script, "bench.txt", errors), 0);
  EXPECT_EQ(errors.str(), "");
  EXPECT_EQ(bench.out.str(), std::string(kOk) + "\n" + Value("true") + "\n");
}

TEST(Script, EndsWithTheProgram) {
  ConsoleBench bench;
  std::istringstream script("quit\nclick Missing\n");
  std::ostringstream errors;
  EXPECT_EQ(bench.console.RunScript(script, "bench.txt", errors), 0);
  EXPECT_EQ(bench.out.str(), std::string(kOk) + "\n");
}

TEST(Script, ForAPersonTellsAFailureOnce) {
  ConsoleBench bench(Style::kPerson);
  std::istringstream script("click Missing\n");
  std::ostringstream errors;
  EXPECT_EQ(bench.console.RunScript(script, "bench.txt", errors), 1);
  EXPECT_EQ(bench.out.str(), "");
  EXPECT_EQ(errors.str(), "bench.txt:1: there is no Missing here\n");
}

TEST(TypedLines, GoOnAfterAFailure) {
  ConsoleBench bench;
  bench.console.Arrive("click Disabled");
  bench.console.Arrive("");
  bench.console.Arrive("click Odd");
  bench.console.EndInput();
  bench.console.RunTyped("");
  EXPECT_EQ(bench.out.str(), Failure("Disabled is disabled") + "\n" + kOk + "\n");
}

TEST(TypedLines, AreDoneInOrderAlsoWhenTheyArriveMeanwhile) {
  ConsoleBench bench;
  core::Call typing(bench.scheduler, [&] {
    bench.console.Arrive("get Odd.Value");
    bench.console.EndInput();
  });
  typing.After(core::milliseconds(100));
  bench.console.Arrive("click Slow");
  bench.console.Arrive("click Odd");
  bench.console.RunTyped("");
  EXPECT_EQ(bench.out.str(), std::string(kOk) + "\n" + kOk + "\n" + Value("true") + "\n");
}

TEST(TypedLines, EndWithTheProgram) {
  ConsoleBench bench;
  bench.console.Arrive("nowait click Endless");
  bench.console.Arrive("quit");
  bench.console.Arrive("click Odd");
  bench.console.RunTyped("");
  EXPECT_EQ(bench.out.str(), std::string(kOk) + "\n" + kOk + "\n");
  EXPECT_FALSE(bench.page.Odd.Value());
}

TEST(TypedLines, GetAReplyWhenTheProgramEndsWhileTheyWait) {
  ConsoleBench bench;
  core::Call end(bench.scheduler, [&] { bench.main.ended = true; });
  end.After(core::milliseconds(100));
  bench.console.Arrive("click Endless");
  bench.console.RunTyped("");
  EXPECT_EQ(bench.out.str(), std::string(kOk) + "\n");
}

TEST(TypedLines, AreAwaitedWithAPrompt) {
  ConsoleBench bench(Style::kPerson);
  core::Call typing(bench.scheduler, [&] {
    bench.console.Arrive("get TotIN(0).Caption");
    bench.console.EndInput();
  });
  typing.After(core::milliseconds(100));
  bench.console.RunTyped("> ");
  EXPECT_EQ(bench.out.str(), "> 17\n");
}

/// A bench whose start-up takes three seconds, or until Escape is pressed.
class StartUp : public testing::Test {
 protected:
  StartUp() {
    bench.starting = true;
    end.After(std::chrono::seconds(3));
  }

  core::Duration Gone() const { return bench.scheduler.Now() - start; }

  ConsoleBench bench;
  core::TimePoint start = bench.scheduler.Now();
  core::Call end{bench.scheduler, [this] { bench.starting = false; }};
};

TEST_F(StartUp, HoldsTheFirstReply) {
  EXPECT_EQ(bench("get TotIN(0).Caption"), Value(R"("17")"));
  EXPECT_EQ(Gone(), std::chrono::seconds(3));
}

TEST_F(StartUp, TakesEscapeAtOnce) {
  EXPECT_EQ(bench("key Escape"), kOk);
  EXPECT_EQ(Gone(), core::Duration::zero());
  EXPECT_EQ(bench.page.escapes, 1);
}

TEST_F(StartUp, TakesEscapeWhileAnEarlierLineWaits) {
  int escapesAtOnce = 0;
  core::Call typing(bench.scheduler, [&] {
    bench.console.Arrive("key Escape");
    escapesAtOnce = bench.page.escapes;
    bench.console.EndInput();
  });
  typing.After(std::chrono::seconds(1));
  bench.console.Arrive("get TotIN(0).Caption");
  bench.console.RunTyped("");
  EXPECT_EQ(escapesAtOnce, 1);
  EXPECT_EQ(bench.page.escapes, 1) << "once only";
  EXPECT_EQ(bench.out.str(), Value(R"("17")") + "\n" + kOk + "\n");
}

TEST_F(StartUp, HoldsEveryOtherKey) {
  bench("key Slow Escape");
  EXPECT_EQ(Gone(), std::chrono::seconds(3));
}

TEST_F(StartUp, InAScriptTakesOneLineAfterTheOther) {
  std::istringstream script("get TotIN(0).Caption\nkey Escape\n");
  std::ostringstream errors;
  EXPECT_EQ(bench.console.RunScript(script, "bench.txt", errors), 0);
  EXPECT_EQ(Gone(), std::chrono::seconds(3));
}

TEST(JsonReply, TellsWhatKindOfFileDialogAndWhichIconStandInFront) {
  ConsoleBench bench;
  bench.page.Spawn([](view::Screen& screen) -> core::Task<> {
    std::string filter = "*.txt";
    co_await screen.AskForFile(true, std::move(filter));
  }(bench.screen));
  EXPECT_EQ(ToJson(Reply{}, bench.screen), R"({"ok":true,"modal":{"window":"SaveFile","filter":"*.txt"}})");

  struct Row {
    view::Icon icon;
    const char* name;
  };
  const Row rows[] = {{view::Icon::kNone, "none"},
                      {view::Icon::kCritical, "critical"},
                      {view::Icon::kQuestion, "question"},
                      {view::Icon::kExclamation, "exclamation"},
                      {view::Icon::kInformation, "information"}};
  for (const Row& row : rows) {
    bench.page.Spawn([](view::Screen& screen, view::Icon icon) -> core::Task<> {
      std::vector<std::string> buttons;
      buttons.emplace_back("Yes");
      buttons.emplace_back("No");
      co_await screen.Ask("Sure?", icon, std::move(buttons), "Ask");
    }(bench.screen, row.icon));
    EXPECT_EQ(ToJson(Reply{}, bench.screen),
              R"({"ok":true,"modal":{"window":"MsgBox","text":"Sure?","caption":"Ask","icon":")" +
                  std::string(row.name) + R"(","buttons":["Yes","No"]}})");
  }
}

TEST(PersonReply, IsShortAndReadable) {
  ConsoleBench bench(Style::kPerson);
  EXPECT_EQ(bench("click Odd"), "ok\n");
  EXPECT_EQ(bench("get Odd.Value"), "true\n");
  EXPECT_EQ(bench("get Rate.List"), "4800, 9600, 38400, TC-K, TC-J\n");
  EXPECT_EQ(bench("get Ticks"), "Interval  100\nEnabled   false\n");
  EXPECT_EQ(bench("click Disabled"), "error: Disabled is disabled\n");
  EXPECT_THAT(bench("dump Jorun"), StartsWith("StartJorun  Caption=\"Start\"  Enabled=true"));
  EXPECT_EQ(bench("click Box"),
            "ok\n  in front: Tarvo: \"EEProm updated! Please reset module to apply changes.\"  < OK >\n");
}

TEST(PersonReply, MovesNoCursor) {
  ConsoleBench bench(Style::kPerson);
  bench.page.Message.Caption = "\x1b[2J\x07gone";
  EXPECT_EQ(bench("get MessageBelk.Caption"), " [2J gone\n");
}

}  // namespace
}  // namespace tarvo::console
