// The Gaven page against a simulated module: what the user changes and stores.

#include "e2e/page_bench.h"

namespace tarvo {
namespace {

using test::BoxJson;
using test::kNothing;
using test::kValueDialog;

const std::string kNotGaven = BoxJson("ERROR! Module is not Gaven or communication failed", "critical");
const std::string kUpdated = BoxJson("EEProm updated! Please reset module to apply changes.", "information");
const std::string kReset = BoxJson("Module is Resetted!", "information");
const std::string kResetAndStopped = BoxJson("Module is Resetted! Comunication Stopped", "information");

class GavenPage : public test::PageBench {
 protected:
  GavenPage() : PageBench("Gaven") {}

  static std::string Member(const std::string& array, int index) { return array + '(' + std::to_string(index) + ')'; }

  /// A click that opens the value dialog, and what it takes.
  void Edit(const std::string& label, const std::string& text) const {
    EXPECT_EQ(Do("click " + label), kValueDialog);
    EXPECT_EQ(EnterValue(text), kNothing);
    EXPECT_EQ(Get(label + ".Caption"), text);
  }
  void Commit() const {
    EXPECT_EQ(Do("click WEEPGaven"), kUpdated);
    EXPECT_EQ(Do("answer OK"), kNothing);
  }
  /// Until the module is back.
  void Reset(const std::string& box) const {
    EXPECT_EQ(Do("click ResetGaven"), box);
    EXPECT_EQ(Do("answer OK"), kNothing);
    Do("wait 350ms");
  }
};

TEST_F(GavenPage, TogglesTheFlagsInTheModule) {
  OpenSession("gaven:40003=0x0041");
  for (int i = 0; i < 3; ++i) Do("click " + Member("CheckGaven", i));
  Do("click OptionGaven2");
  Do("click CheckGaven(1)");
  StopSession();
  EXPECT_EQ(Register(3), 0x0041 | 0x02 | 0x08 | 0x10);
  StartSession();
  EXPECT_EQ(Get("CheckGaven(0).Value"), "1");
  EXPECT_EQ(Get("CheckGaven(1).Value"), "0");
  EXPECT_EQ(Get("CheckGaven(2).Value"), "1");
  EXPECT_EQ(Get("OptionGaven2.Value"), "true");
}

TEST_F(GavenPage, KeepsWhatWasCommittedThroughAResetInASession) {
  OpenSession("gaven:40021=5000,40003=0x01");
  Edit("ValueGaven(1)", "2000");
  Edit("ValueGaven(14)", "-1");
  Do("choose FilterGaven(2) 6");
  Do("click CheckGaven(0)");
  Commit();
  EXPECT_EQ(Get("ValueGaven(2).Caption"), "0") << "in force only from the reset on";
  Reset(kResetAndStopped);
  ExpectOffline();
  StartSession();
  EXPECT_EQ(Get("ValueGaven(1).Caption"), "2000");
  EXPECT_EQ(Get("ValueGaven(14).Caption"), "-1");
  EXPECT_EQ(Get("FilterGaven(2).ListIndex"), "6");
  EXPECT_EQ(Get("CheckGaven(0).Value"), "1");
  EXPECT_EQ(Get("ValueGaven(2).Caption"), "1000") << "the new scale is in force";
  StopSession();
  EXPECT_EQ(Register(3), 0x02) << "a commit loses bit 0";
  EXPECT_EQ(Register(15), 0xFFFF);
}

TEST_F(GavenPage, KeepsWhatWasCommittedWithoutASession) {
  StartSimulator("gaven");
  OpenConsole();
  Edit("ValueGaven(7)", "-10000");
  Do("choose FilterGaven(0) 3");
  Commit();
  Reset(kReset);
  ExpectOffline();
  EXPECT_EQ(Register(9), 55536);
  EXPECT_EQ(Register(4), 3);
  StartSession();
  EXPECT_EQ(Get("ValueGaven(7).Caption"), "-10000");
  EXPECT_EQ(Get("FilterGaven(0).ListIndex"), "3");
}

TEST_F(GavenPage, ForgetsAtAResetWhatWasNotCommitted) {
  OpenSession("gaven:40008=500");
  Do("click CheckGaven(0)");
  Edit("ValueGaven(1)", "700");
  Reset(kResetAndStopped);
  StartSession();
  EXPECT_EQ(Get("CheckGaven(0).Value"), "0");
  EXPECT_EQ(Get("ValueGaven(1).Caption"), "500");
}

TEST_F(GavenPage, MovesTheModuleToAnotherAddressAndLine) {
  OpenSession("gaven");
  Edit("AddressGaven", "9");
  Do("choose BaudGaven \"38400\"");
  Do("click CheckGaven(2)");
  Commit();
  Reset(kResetAndStopped);
  EXPECT_EQ(Do("click StartGaven"), kNotGaven);
  EXPECT_EQ(Do("answer OK"), kNothing);
  const test::Polled polled = test::RunMbpoll(Device(), "-a 9 -b 38400 -P even -r 2 -c 2");
  EXPECT_EQ(polled.registers, (std::map<int, int>{{2, 0x0309}, {3, 0x08}})) << polled.errors;
}

TEST_F(GavenPage, HasTheSlowRatesByTheFirmware) {
  OpenSession("gaven:fw=1");
  EXPECT_EQ(Get("FirmwGaven.Caption"), "Firmware rel: 1");
  EXPECT_EQ(Get("BaudGaven.List"), R"(["4800","9600","19200","38400","57600"])");
  StartSimulator("gaven:fw=2");
  OpenConsole();
  StartSession();
  EXPECT_EQ(Get("BaudGaven.List"), R"(["1200","2400","4800","9600","19200","38400","57600"])");
}

}  // namespace
}  // namespace tarvo
