// The PC's line settings, and two programs that want one port.

#include <array>

#include "e2e/shell_bench.h"

namespace tarvo {
namespace {

using test::kNotBelk;
using test::kNothing;
using test::kValueDialog;
using testing::HasSubstr;

class PcSetup : public test::ShellBench {
 protected:
  void OpenPage(const std::vector<std::string>& devices = {}) {
    WriteSettings("AUTOSCAN=FALSE\n");
    console = OpenShell(devices, Settings());
    EXPECT_EQ(Do("click LabPCSetup"), kNothing);
  }
};

TEST_F(PcSetup, SetsAllPairsOfSpeedAndParity) {
  OpenPage();
  const std::array<std::pair<std::string, std::string>, 3> parities = {
      {{"Option3", "n"}, {"Option4", "e"}, {"Option5", "o"}}};
  const std::array<std::string, 7> speeds = {"1200", "2400", "4800", "9600", "19200", "38400", "57600"};
  for (const auto& [option, letter] : parities) {
    EXPECT_EQ(Do("click " + option), kNothing);
    for (std::size_t i = 0; i < speeds.size(); ++i) {
      const std::string settings = speeds.at(i) + "," + letter + ",8,1";
      EXPECT_EQ(Do("choose PCBaudRate " + std::to_string(i)), kNothing);
      EXPECT_EQ(Get("PCSettings"), settings);
      EXPECT_EQ(Get("PCBaudRate.Text"), speeds.at(i));
      // Away and back: the page only paints.
      Do("click LabHome");
      Do("click LabPCSetup");
      EXPECT_EQ(Get("PCSettings"), settings);
      EXPECT_EQ(Get("PCBaudRate.ListIndex"), std::to_string(i));
      EXPECT_EQ(Get(option + ".Value"), "true");
    }
  }
}

TEST_F(PcSetup, EditsTheAddressWithinItsBounds) {
  OpenPage();
  for (const std::string address : {"255", "1", "200"}) {
    EXPECT_EQ(Do("click PCAddress"), kValueDialog);
    EXPECT_EQ(EnterValue(address), kNothing);
    EXPECT_EQ(Get("PCAddress.Caption"), address);
    EXPECT_EQ(Get("ModuleAddress"), address);
  }
  EXPECT_EQ(Do("click PCAddress"), kValueDialog);
  EXPECT_EQ(EnterValue("256"), kValueDialog);
  EXPECT_EQ(Get("Text1.Text"), "255");
  EXPECT_EQ(EnterValue("0"), kValueDialog);
  EXPECT_EQ(Get("Text1.Text"), "1");
  EXPECT_EQ(Do("key Text1 Escape"), kNothing);
  EXPECT_EQ(Get("PCAddress.Caption"), "200");
  EXPECT_EQ(Get("ModuleAddress"), "200");
}

TEST_F(PcSetup, EnablesThePortsThatOpenAndNamesTheirDevices) {
  StartSimulator("belk");
  std::ofstream(folder / "file") << "text";
  OpenPage({"", Device(), "/dev/null", (folder / "file").string()});
  for (const std::string port : {"SetCOM1", "SetCOM3", "SetCOM4"}) {
    EXPECT_EQ(Get(port + ".Enabled"), "false") << port;
    EXPECT_FALSE(console->Try("click " + port).Ok()) << port;
  }
  EXPECT_EQ(Get("SetCOM2.Enabled"), "true");
  EXPECT_THAT(Get("SetCOM2.ToolTipText"), HasSubstr(Device()));
  EXPECT_EQ(Get("SetCOM1.Value"), "true");
  EXPECT_EQ(Do("click SetCOM2"), kNothing);
  EXPECT_EQ(Get("PCPort"), "2");
  EXPECT_EQ(Get("SetCOM1.Value"), "false");
  EXPECT_EQ(Do("click labBelk"), kNothing);
  StartSession();
}

TEST_F(PcSetup, SeesAPortComeAndGo) {
  OpenPage({Device()});
  EXPECT_EQ(Get("SetCOM1.Enabled"), "false");
  StartSimulator("belk");
  Do("click LabHome");
  Do("click LabPCSetup");
  EXPECT_EQ(Get("SetCOM1.Enabled"), "true");
  simulator->Kill();
  Do("click LabHome");
  Do("click LabPCSetup");
  EXPECT_EQ(Get("SetCOM1.Enabled"), "false");
}

TEST_F(PcSetup, SetsTheLineOfTheSession) {
  StartSimulator("belk:addr=248,line=19200o81");
  OpenBelk();
  SetPcLine("19200", "Option5", "248");
  StartSession();
}

TEST_F(PcSetup, OfTwoProgramsShowsThePortToOneAtATime) {
  OpenBelkSession("belk:40003=123");
  const std::unique_ptr<test::ConsoleProcess> first = std::move(console);
  OpenPage({Device()});
  EXPECT_EQ(Get("SetCOM1.Enabled"), "false");
  EXPECT_EQ(Do("click labBelk"), kNothing);
  for (const std::string button : {"StartBelk", "WEEPBelk", "ResetBelk"}) {
    EXPECT_EQ(Do("click " + button), kNotBelk);
    EXPECT_EQ(Do("answer OK"), kNothing);
  }
  ExpectOffline();
  first->Do("wait 200ms");
  EXPECT_EQ(first->Get("MessageBelk.Caption"), "OK");
  EXPECT_EQ(first->Get("TotIN(0).Caption"), "123");
  EXPECT_EQ(first->Do("click StopBelk"), kNothing);

  EXPECT_EQ(Do("click LabPCSetup"), kNothing);
  EXPECT_EQ(Get("SetCOM1.Enabled"), "true");
  EXPECT_EQ(Do("click labBelk"), kNothing);
  StartSession();
  EXPECT_EQ(first->Do("click LabPCSetup"), kNothing);
  EXPECT_EQ(first->Get("SetCOM1.Enabled"), "false");
}

}  // namespace
}  // namespace tarvo
