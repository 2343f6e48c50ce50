#include "console/show.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "console/painter.h"
#include "console/text.h"
#include "console_bench.h"

namespace tarvo::console {
namespace {

using testing::HasSubstr;
using testing::Not;

TEST(Show, DrawsTheMainWindowAroundItsPage) {
  ConsoleBench bench;
  bench.main.StatusBar1[1].Text = "Connected to Belk, COM1,38400,n,8,1";
  bench.page.Player.Playing = true;
  bench.page.StatoIN[0].Picture = 2;
  bench.page.Overflow.BackColor = view::kRed;
  bench.page.Odd.Enabled = false;
  bench.page.Check.Value = 1;
  EXPECT_EQ("\n" + Show(bench.screen, {.width = 88}), R"(
┌─ Tarvo ──────────────────────────────────────────────────────────────────────────────┐
│ File                                                                                 │
├──────────┬───────────────────────────────────────────────────────────────────────────┤
│ ▸ Belk   │ Belk  Five inputs          Firmware rel:  3   ● OK   [running]   < Slow > │
│   Cobin  │ ╭─ Inputs ──────────────────────────────────────────────────────────────╮ │
│          │ │     Counter                                                Overflow   │ │
│          │ │ ●   [  17 ]   ██████████░░░░░░░░░░░░░░░░░░░░░░░░░░░  28%   ● Overflow │ │
│          │ │ ○      17                                                             │ │
│          │ ╰───────────────────────────────────────────────────────────────────────╯ │
│          │ ╭─ Flags ────────────────────╮ ╭─ Module ───────────────────────────────╮ │
│          │ │ [x] Negate Inputs          │ │ Module Baud Rate   [ 9600 ▾]           │ │
│          │ │ (•) Even  · · Odd          │ │ Filter             [    17 ]           │ │
│          │ ╰────────────────────────────╯ ╰────────────────────────────────────────╯ │
│          │                                                              · Disabled · │
├──────────┴──────────────┬────────────────────────────────────────────────────────────┤
│                         │ Connected to Belk, COM1,38400,n,8,1                        │
└─────────────────────────┴────────────────────────────────────────────────────────────┘
)");
}

TEST(Show, KeepsToAsciiWhereTheLocaleHasNoMore) {
  ConsoleBench bench;
  bench.page.Message.Caption = "40 °C";
  const std::string text = Show(bench.screen, {.utf8 = false});
  EXPECT_TRUE(std::all_of(text.begin(), text.end(), [](char c) { return c == '\n' || (c >= ' ' && c <= '~'); }))
      << text;
  EXPECT_THAT(text, HasSubstr("40 ?C"));
  EXPECT_THAT(text, HasSubstr("+- Inputs ---"));
}

TEST(Show, HasLinesOfOneWidth) {
  ConsoleBench bench;
  for (const int width : {20, 60, 100, 140}) {
    std::istringstream lines(Show(bench.screen, {.width = width}));
    std::string line;
    std::getline(lines, line);
    const std::size_t columns = Decode(line).size();
    EXPECT_GE(columns, static_cast<std::size_t>(width));
    while (std::getline(lines, line)) EXPECT_EQ(Decode(line).size(), columns) << line;
  }
}

TEST(Show, LeavesOutWhatIsHidden) {
  ConsoleBench bench;
  EXPECT_THAT(Show(bench.screen, {}), Not(HasSubstr("Hidden")));
  bench.page.Check.Visible = false;
  bench.page.Even.Visible = false;
  bench.page.Odd.Visible = false;
  EXPECT_THAT(Show(bench.screen, {}), Not(HasSubstr("Flags")));
}

TEST(Show, MarksAMessageThatIsNotOk) {
  ConsoleBench bench;
  bench.page.Message.Caption = "Communication Error";
  EXPECT_THAT(Show(bench.screen, {}), HasSubstr("! Communication Error"));
}

TEST(Show, PutsAHeadThatIsTooLongOnTwoLines) {
  ConsoleBench bench;
  EXPECT_THAT(Show(bench.screen, {.width = 68}),
              testing::ContainsRegex("Belk +Firmware.+ < Slow > │\n.+│ Five inputs +│\n"));
  bench.page.Message.Caption = "ERROR! Module is not Belk or communication failed";
  EXPECT_THAT(Show(bench.screen, {.width = 90}),
              testing::ContainsRegex("Belk  Five inputs +│\n.+│ +Firmware.+ < Slow > │\n"));
}

TEST(Show, MarksAPageThatCannotBeReachedWithoutMovingTheOthers) {
  ConsoleBench bench;
  const std::string before = Show(bench.screen, {});
  EXPECT_THAT(before, HasSubstr("│ ▸ Belk   │"));
  bench.main.labBelk.Enabled = false;
  const std::string after = Show(bench.screen, {});
  EXPECT_THAT(after, HasSubstr("│ ▸·Belk·  │"));
  EXPECT_EQ(Decode(after).size(), Decode(before).size());
}

TEST(Show, DrawsABarByItsPercent) {
  struct Row {
    int percent;
    const char* bar;
  };
  const Row rows[] = {
      {0, "░░░░░░░░░░   0%"}, {100, "██████████ 100%"}, {55, "█████░░░░░  55%"}, {-20, "░░░░░░░░░░ -20%"}};
  ConsoleBench bench;
  const Painter painter(bench.screen, kUnicodeGlyphs);
  for (const Row& row : rows) {
    bench.page.Meter.SetPercent(row.percent);
    EXPECT_EQ(Encode(painter.Paint(view::Show(bench.page.Meter), 15).Lines().front()), row.bar);
  }
}

TEST(Show, DrawsTheModalWindowInFrontAlone) {
  ConsoleBench bench;
  bench("click TotIN(0)");
  bench("type Text1 42");
  EXPECT_EQ("\n" + Show(bench.screen, {}), R"(
┌─ Change Value ─────────────────────────┐
│                                        │
│  [42__________]                        │
│  Min Value :1                          │
│                                < OK >  │
│                                        │
└────────────────────────────────────────┘
)");
}

TEST(Show, DrawsTheMessageBoxInFront) {
  ConsoleBench bench;
  bench.page.Spawn([](view::Screen& screen) -> core::Task<> {
    std::vector<std::string> buttons;
    buttons.emplace_back("Yes");
    buttons.emplace_back("No");
    co_await screen.Ask("This text is so long that it has to go on in a second line.\nAnd it has one of its own.",
                        view::Icon::kQuestion, std::move(buttons));
  }(bench.screen));
  EXPECT_EQ("\n" + Show(bench.screen, {}), R"(
┌─ Tarvo ────────────────────────────────────────────────────────────┐
│                                                                    │
│  (?)  This text is so long that it has to go on in a second line.  │
│       And it has one of its own.                                   │
│                                                                    │
│                          < Yes >   < No >                          │
│                                                                    │
└────────────────────────────────────────────────────────────────────┘
)");
}

TEST(Show, BreaksALongTextAtItsBlanks) {
  ConsoleBench bench;
  bench.screen.ReportFault(std::string(50, 'a') + " " + std::string(50, 'b') + std::string(80, 'c'));
  const std::string text = Show(bench.screen, {});
  EXPECT_THAT(text, HasSubstr("  " + std::string(50, 'a') + "  "));
  EXPECT_THAT(text, HasSubstr("  " + std::string(50, 'b') + std::string(10, 'c') + "  "));
  EXPECT_THAT(text, HasSubstr("  " + std::string(60, 'c') + "  "));
}

TEST(Show, DrawsTheFileDialogInFront) {
  ConsoleBench bench;
  bench("click File");
  EXPECT_THAT(Show(bench.screen, {}), testing::AllOf(HasSubstr("─ Open ─"), HasSubstr("All Files (*.txt) | *.txt")));
}

TEST(Show, IsATextInJson) {
  ConsoleBench bench;
  EXPECT_THAT(bench("show"), testing::StartsWith(R"({"ok":true,"value":"┌─ Tarvo ─)"));
}

}  // namespace
}  // namespace tarvo::console
