// The Hollin page against a simulated module: its flags and its lock, and what the user stores.

#include <array>

#include "e2e/page_bench.h"

namespace tarvo {
namespace {

using test::BoxJson;
using test::kNothing;
using test::kValueDialog;

const std::string kUpdated = BoxJson("EEProm updated! Please reset module to apply changes.", "information");
const std::string kReset = BoxJson("Module is Resetted!", "information");
const std::string kFixed = "com port fixed, baud rate fixed : ";

class HollinPage : public test::PageBench {
 protected:
  HollinPage() : PageBench(test::PageNames{.model = "Hollin", .label = "MenuHollin"}) {}

  static std::string Member(const std::string& array, int index) { return array + '(' + std::to_string(index) + ')'; }

  /// A click that opens the value dialog, and what it takes.
  void Edit(const std::string& label, const std::string& text) const {
    EXPECT_EQ(Do("click " + label), kValueDialog);
    EXPECT_EQ(EnterValue(text), kNothing);
    EXPECT_EQ(Get(label + ".Caption"), text);
  }
  void Commit() const {
    EXPECT_EQ(Do("click WEEPHollin"), kUpdated);
    EXPECT_EQ(Do("answer OK"), kNothing);
  }
  /// Until the module is back.
  void Reset() const {
    EXPECT_EQ(Do("click ResetHollin"), kReset);
    EXPECT_EQ(Do("answer OK"), kNothing);
    Do("wait 350ms");
  }
  /// What a register of the module holds, whatever its line.
  std::string Held(int number) const {
    const std::string answer = simulator->Order("com1 get " + std::to_string(number));
    EXPECT_TRUE(answer.starts_with("ok ")) << answer;
    return answer.substr(answer.rfind(' ') + 1);
  }
};

TEST_F(HollinPage, ShowsTheFlagsOfTheModule) {
  OpenSession("hollin:40003=0x7502,fw=9");
  EXPECT_EQ(Get("FirmwHollin.Caption"), "Firmware rel: 9");
  constexpr std::array<const char*, 6> kValues = {"1", "1", "0", "1", "0", "1"};
  for (int i = 0; i < 6; ++i) {
    EXPECT_EQ(Get(Member("CheckHollin", i) + ".Value"), kValues[static_cast<std::size_t>(i)]) << i;
  }
  EXPECT_EQ(Get("OptionHollin2.Value"), "true");
  EXPECT_EQ(Get("OptionHollin1.Value"), "false");
  EXPECT_EQ(Get("CheckHollinBitOrder.Value"), "1");
}

TEST_F(HollinPage, LocksItsSettingsInASession) {
  OpenSession("hollin");
  for (const std::string name : {"CheckHollin(0)", "CheckHollin(5)", "CheckHollinBitOrder", "OptionHollin2",
                                 "ValueHollin(0)", "WEEPHollin", "ResetHollin"}) {
    EXPECT_EQ(console->Try("click " + name).Error(), name + " is disabled");
  }
  EXPECT_FALSE(console->Try("choose FilterHollin(0) 1").Ok());
  StopSession();
  EXPECT_EQ(Do("choose FilterHollin(0) 1"), kNothing);
  EXPECT_EQ(Do("click CheckHollin(5)"), kNothing);
}

TEST_F(HollinPage, KeepsTheLastInputSelected) {
  OpenSession("hollin:40003=0x0600");
  StopSession();
  EXPECT_EQ(Do("click CheckHollin(2)"), kNothing);
  EXPECT_EQ(Get("CheckHollin(2).Value"), "0");
  EXPECT_EQ(Do("click CheckHollin(3)"), kNothing);
  EXPECT_EQ(Get("CheckHollin(3).Value"), "1");
}

TEST_F(HollinPage, CommitsWhatWasEditedAndFindsItAfterTheReset) {
  StartSimulator("hollin:40003=0x0103,40021=5000");
  OpenConsole();
  StartSession();
  StopSession();
  Edit("ValueHollin(1)", "2000");
  Edit("ValueHollin(14)", "-1");
  Do("choose FilterHollin(2) 6");
  for (const char* control : {"OptionHollin2", "CheckHollin(5)", "CheckHollin(3)"}) {
    EXPECT_EQ(Do(std::string("click ") + control), kNothing);
  }
  Commit();
  ExpectOffline();
  EXPECT_EQ(Held(40003), std::to_string(0x0103)) << "in force only from the reset on";
  EXPECT_EQ(Held(40067), std::to_string(0x3502));
  EXPECT_EQ(Held(40066), std::to_string(0x0101));
  Reset();
  ExpectOffline();
  EXPECT_EQ(Register(3), 0x3502) << "a commit loses the bits without a control";
  EXPECT_EQ(Register(8), 2000);
  EXPECT_EQ(Register(15), 0xFFFF);
  StartSession();
  EXPECT_EQ(Get("ValueHollin(1).Caption"), "2000");
  EXPECT_EQ(Get("ValueHollin(14).Caption"), "-1");
  EXPECT_EQ(Get("FilterHollin(2).ListIndex"), "6");
  EXPECT_EQ(Get("OptionHollin2.Value"), "true");
  EXPECT_EQ(Get("ValueGaven(2).Caption"), "1000") << "the new scale is in force";
}

TEST_F(HollinPage, TellsTheLineOfThePCAndNeverMovesTheModule) {
  StartSimulator("hollin:addr=9,line=38400e81");
  OpenConsole();
  EXPECT_EQ(Get("StatusBar1(1).Text"), kFixed + "9600,n,8,1");
  EXPECT_EQ(Do("click LabPCSetup"), kNothing);
  EXPECT_EQ(Do("choose PCBaudRate 38400"), kNothing);
  EXPECT_EQ(Do("click Option4"), kNothing);
  EXPECT_EQ(Do("click PCAddress"), kValueDialog);
  EXPECT_EQ(EnterValue("9"), kNothing);
  EXPECT_EQ(Do("click MenuHollin"), kNothing);
  EXPECT_EQ(Get("StatusBar1(1).Text"), kFixed + "38400,e,8,1");
  Commit();
  EXPECT_EQ(Held(40066), std::to_string(0x0309));
  Reset();
  StartSession();
}

TEST_F(HollinPage, IsShownAsTextWithItsInterface) {
  OpenSession("hollin");
  const std::string page = console->Try("show").Line();
  for (const char* words :
       {"PLC Interface Settings", "Selected Registers", "INPUT #1", "STATUS", "Data", "Rev. Bit Order"}) {
    EXPECT_THAT(page, testing::HasSubstr(words));
  }
}

}  // namespace
}  // namespace tarvo
