// Scripts that the console plays from beginning to end.

#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <sstream>

#include "e2e/belk_bench.h"

namespace tarvo {
namespace {

using test::ChildProcess;
using test::Life;
using testing::HasSubstr;

class Script : public test::BelkBench {
 protected:
  /// The console on a script of that text.
  std::unique_ptr<ChildProcess> Play(const std::string& text) {
    std::ofstream(folder / "script") << text;
    return std::make_unique<ChildProcess>(std::vector<std::string>{TARVO_CONSOLE, "--settings",
                                                                   test::SettingsWithoutSearch(folder / "settings"),
                                                                   "--com1", Device(), (folder / "script").string()});
  }
};

TEST_F(Script, OfTheDemonstrationShowsALivingModule) {
  std::ifstream file(TARVO_DEMO);
  const std::string demo(std::istreambuf_iterator<char>(file), {});
  ASSERT_THAT(demo, HasSubstr("\nwait "));
  StartSimulator("belk", Life::kLive);
  const auto playing = Play(std::regex_replace(demo, std::regex("\nwait [^\n]*"), "\nwait 600ms"));
  std::istringstream shown(playing->Output());
  EXPECT_EQ(playing->WaitWithin(), 0);
  EXPECT_EQ(playing->Errors(), "");
  std::set<std::string> fastInput;
  for (std::string line; std::getline(shown, line);) {
    if (line.find("Input 5") != std::string::npos) fastInput.insert(line);
  }
  EXPECT_GE(fastInput.size(), 2U);
}

TEST_F(Script, StopsAtTheFirstFailureAndFreesThePort) {
  StartSimulator("belk:40003=5");
  const auto playing =
      Play("click labBelk\nclick StartBelk\nuntil TotIN(0).Caption = 6 within 100ms\nclick CheckBelk2\n");
  EXPECT_EQ(playing->WaitWithin(), 1);
  EXPECT_EQ(playing->Errors(), (folder / "script").string() + ":3: TotIN(0).Caption is \"5\" after 100ms\n");
  OpenConsole();
  StartSession();
  EXPECT_EQ(Get("CheckBelk2.Value"), "0");
}

}  // namespace
}  // namespace tarvo
