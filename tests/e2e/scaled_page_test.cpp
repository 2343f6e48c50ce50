// The pages of inputs with a raw and a scaled value against a simulated module: what they have alike.

#include <array>
#include <ostream>

#include "e2e/page_bench.h"

namespace tarvo {
namespace {

using test::BoxJson;
using test::kLampOff;
using test::kLampOn;
using test::kNothing;
using test::kWrongComm;
using test::Life;

struct ScaledPage {
  const char* model;
  const char* module;  ///< as the simulator calls it
  const char* label;
  const char* number;
  const char* sister;  ///< a module of another model
  int untouched;       ///< register of it that no button may write
  /// More of the module that the search finds, and what the page shows of that.
  const char* settings;
  std::vector<std::pair<std::string, std::string>> found;

  friend void PrintTo(const ScaledPage& page, std::ostream* out) { *out << page.model; }
};

const ScaledPage& Gaven() {
  static const ScaledPage page = {"Gaven", "gaven", "labGaven", "4",
                                  "belk",  11,      "40003=0",  {{"BaudGaven.Text", "38400"}}};
  return page;
}

const ScaledPage& Hollin() {
  static const ScaledPage page = {"Hollin",
                                  "hollin",
                                  "MenuHollin",
                                  "8",
                                  "gaven",
                                  67,
                                  "40003=0x1800",
                                  {{"StatusBar1(1).Text", "com port fixed, baud rate fixed : 38400,n,8,1"},
                                   {"CheckHollin(4).Value", "1"},
                                   {"CheckHollin(5).Value", "1"}}};
  return page;
}

class ScaledPageProgram : public test::PageBench, public testing::WithParamInterface<ScaledPage> {
 protected:
  ScaledPageProgram() : PageBench(test::PageNames{.model = GetParam().model, .label = GetParam().label}) {}

  static std::string Member(const std::string& array, int index) { return array + '(' + std::to_string(index) + ')'; }
  /// "Start" gives "StartGaven".
  static std::string Own(const std::string& control) { return control + GetParam().model; }
  static std::string Own(const std::string& array, int index) { return Member(Own(array), index); }
  static std::string Module(const std::string& options = {}) {
    return GetParam().module + (options.empty() ? std::string() : ":" + options);
  }
  std::string Caption(const std::string& label) const { return Get(label + ".Caption"); }
};

INSTANTIATE_TEST_SUITE_P(Pages, ScaledPageProgram, testing::Values(Gaven(), Hollin()),
                         [](const auto& given) { return given.param.model; });

TEST_P(ScaledPageProgram, ShowsRawAndScaledValues) {
  OpenSession(
      Module("40003=0x0100,40017=1000,40018=65535,40019=2,40020=32768,40021=55536,40022=10001,40023=50,40024=7"));
  const std::pair<int, const char*> scaled[] = {{2, "1000"}, {5, "-1"}, {9, "2"}, {13, "-32768"}};
  for (const auto& [element, text] : scaled) EXPECT_EQ(Caption(Member("ValueGaven", element)), text) << element;
  const std::pair<int, const char*> raw[] = {{3, "-10000"}, {4, "10001"}, {8, "50"}, {12, "7"}};
  for (const auto& [element, text] : raw) EXPECT_EQ(Caption(Own("Value", element)), text) << element;
  LetPoll();
  EXPECT_EQ(Get(Own("Barg", 0) + ".Percent"), "100");
  EXPECT_EQ(Get(Own("Barg", 0) + ".FillColor"), "255");
  EXPECT_EQ(Get(Own("Barg", 1) + ".Percent"), "100");
  EXPECT_EQ(Get(Own("Barg", 1) + ".FillColor"), std::to_string(0xFF8080));
  EXPECT_EQ(Get(Own("Barg", 2) + ".Percent"), "0");
}

TEST_P(ScaledPageProgram, ShowsOverAndUnderflowOfEachInput) {
  OpenSession(Module("40016=0x9600"));
  LetPoll();
  constexpr std::array<bool, 8> kLit = {true, false, false, true, false, true, true, false};
  for (int i = 0; i < 8; ++i) {
    EXPECT_EQ(Get(Own("Overflow", i) + ".BackColor"), kLit[static_cast<std::size_t>(i)] ? kLampOn : kLampOff) << i;
  }
}

TEST_P(ScaledPageProgram, ShowsALivingModule) {
  OpenSession(Module(), Life::kLive);
  for (const int raw : {3, 4, 8, 12}) {
    const std::string label = Own("Value", raw);
    Until(label + ".Caption != " + Caption(label));
  }
}

TEST_P(ScaledPageProgram, RefusesAModuleOfAnotherModel) {
  const std::string refusal =
      BoxJson(std::string("ERROR! Module is not ") + GetParam().model + " or communication failed", "critical");
  StartSimulator(GetParam().sister);
  OpenConsole();
  for (const char* button : {"Start", "WEEP", "Reset"}) {
    EXPECT_EQ(Do("click " + Own(button)), refusal) << button;
    EXPECT_EQ(Do("answer OK"), kNothing);
    ExpectOffline();
  }
  EXPECT_EQ(Register(GetParam().untouched), 0);
}

TEST_P(ScaledPageProgram, TellsAVanishedModuleAndTakesItBack) {
  OpenSession(Module("40021=77"));
  simulator->Freeze();
  Until(Own("Message") + ".Caption = \"" + kWrongComm + "\"");
  EXPECT_EQ(Caption(Own("Value", 3)), "77");
  simulator->Thaw();
  Until(Own("Message") + ".Caption = OK");
}

TEST_P(ScaledPageProgram, IsFoundByTheSearch) {
  StartSimulator(Module(std::string("line=38400n81,40008=1234,40015=65535,40006=2,") + GetParam().settings));
  OpenConsole();
  Do("click LabHome");
  Do("nowait click buttCheckDevice");
  Until("StatusBar1(2).Text contains Connected", "20s");
  Do("idle within 5s");
  EXPECT_EQ(Get("StatusBar1(2).Text"),
            std::string("Connected to ") + GetParam().model + ", COM1,38400,n,8,1  Module Address:1");
  EXPECT_EQ(Get("NrFinestra"), GetParam().number);
  ExpectOffline();
  EXPECT_EQ(Caption(Own("Value", 1)), "1234");
  EXPECT_EQ(Caption(Own("Value", 14)), "-1");
  EXPECT_EQ(Get(Own("Filter", 2) + ".ListIndex"), "2");
  for (const auto& [name, value] : GetParam().found) EXPECT_EQ(Get(name), value) << name;
  StartSession();
}

TEST_P(ScaledPageProgram, IsShownAsTextWithItsFourInputs) {
  OpenSession(Module("40021=4321"));
  const std::string page = console->Try("show").Line();
  for (const char* words : {"Input 1", "Input 2", "Input 3", "Input 4", "Start Scale", "Raw Input", "4321"}) {
    EXPECT_THAT(page, testing::HasSubstr(words));
  }
}

}  // namespace
}  // namespace tarvo
