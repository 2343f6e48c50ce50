// The page of the PC's line settings.

#include <array>
#include <tuple>

#include "shell/shell_fixture.h"

namespace tarvo::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::array<const char*, 7> kSpeeds = {"1200", "2400", "4800", "9600", "19200", "38400", "57600"};
constexpr std::array<const char*, 3> kParities = {"Option3", "Option4", "Option5"};
constexpr std::array<char, 3> kLetters = {'n', 'e', 'o'};
constexpr std::array<const char*, 4> kPorts = {"SetCOM1", "SetCOM2", "SetCOM3", "SetCOM4"};

class PcSetup : public ShellFixture {
 protected:
  void OpenPage() {
    if (PageName().empty()) OpenQuietly();
    Click("MDIForm1.LabPCSetup");
    ASSERT_EQ(PageName(), "PCsetup");
  }
  /// The page as it is shown again after the shared values were set elsewhere.
  void OpenPageOn(const std::string& settings, int port = 1, int address = 1) {
    OpenPage();
    Click("MDIForm1.LabHome");
    State().PCSettings = settings;
    State().PCPort = port;
    State().ModuleAddress = address;
    OpenPage();
  }
  std::string SelectedOf(std::span<const char* const> options) const {
    std::string selected;
    for (const char* option : options) {
      if (Checked(option)) selected += option;
    }
    return selected;
  }
};

TEST_F(PcSetup, NamesItsControls) {
  OpenPage();
  EXPECT_THAT(List("PCBaudRate"), testing::ElementsAreArray(kSpeeds));
  EXPECT_EQ(Text("Option3"), "&None");
  EXPECT_EQ(Text("Option4"), "&Even");
  EXPECT_EQ(Text("Option5"), "O&dd");
  for (std::size_t i = 0; i < kPorts.size(); ++i) EXPECT_EQ(Text(kPorts[i]), "Com&" + std::to_string(i + 1));
}

TEST_F(PcSetup, ShowsTheDefaults) {
  OpenPage();
  EXPECT_EQ(Text("PCBaudRate"), "9600");
  EXPECT_EQ(SelectedOf(kParities), "Option3");
  EXPECT_EQ(SelectedOf(kPorts), "SetCOM1");
  EXPECT_EQ(Text("PCAddress"), "1");
}

// Speed and parity.

using Pair = std::tuple<std::size_t, std::size_t>;

class PcSetupPair : public PcSetup, public testing::WithParamInterface<Pair> {
 protected:
  std::size_t Speed() const { return std::get<0>(GetParam()); }
  std::size_t Parity() const { return std::get<1>(GetParam()); }
  std::string Settings() const { return std::string(kSpeeds.at(Speed())) + ',' + kLetters.at(Parity()) + ",8,1"; }
};

TEST_P(PcSetupPair, IsSetBySpeedAndThenParity) {
  OpenPage();
  Choose("PCBaudRate", static_cast<int>(Speed()));
  EXPECT_EQ(State().PCSettings, std::string(kSpeeds.at(Speed())) + ",n,8,1");
  Click(kParities.at(Parity()));
  EXPECT_EQ(State().PCSettings, Settings());
}

TEST_P(PcSetupPair, IsSetByParityAndThenSpeed) {
  OpenPage();
  Click(kParities.at(Parity()));
  EXPECT_EQ(State().PCSettings, std::string("9600,") + kLetters.at(Parity()) + ",8,1");
  Choose("PCBaudRate", static_cast<int>(Speed()));
  EXPECT_EQ(State().PCSettings, Settings());
}

TEST_P(PcSetupPair, IsOnlyPaintedWhenThePageIsShown) {
  OpenPageOn(Settings());
  EXPECT_EQ(ListIndex("PCBaudRate"), static_cast<int>(Speed()));
  EXPECT_EQ(SelectedOf(kParities), kParities.at(Parity()));
  EXPECT_EQ(State().PCSettings, Settings());
}

INSTANTIATE_TEST_SUITE_P(All, PcSetupPair,
                         testing::Combine(testing::Range<std::size_t>(0, 7), testing::Range<std::size_t>(0, 3)),
                         [](const auto& given) {
                           return std::string(kSpeeds.at(std::get<0>(given.param))) +
                                  kLetters.at(std::get<1>(given.param));
                         });

TEST_F(PcSetup, PaintsAnewEachTimeItIsShown) {
  OpenPage();
  Click("MDIForm1.LabHome");
  State().PCSettings = "57600,o,8,1";
  State().PCPort = 3;
  State().ModuleAddress = 200;
  OpenPage();
  EXPECT_EQ(Text("PCBaudRate"), "57600");
  EXPECT_EQ(SelectedOf(kParities), "Option5");
  EXPECT_EQ(SelectedOf(kPorts), "SetCOM3");
  EXPECT_EQ(Text("PCAddress"), "200");
  EXPECT_EQ(State().PCSettings, "57600,o,8,1");
  EXPECT_EQ(State().PCPort, 3);
}

TEST_F(PcSetup, LeavesSettingsThatItCannotPaint) {
  OpenPageOn("300,m,8,1");
  EXPECT_EQ(State().PCSettings, "300,m,8,1");
  EXPECT_TRUE(NothingInFront());
}

TEST_F(PcSetup, LeavesTheSettingsWhenNoSpeedIsSelected) {
  OpenPageOn("19200,e,8,1");
  dynamic_cast<view::ComboBox&>(At("PCBaudRate")).ListIndex = -1;
  EXPECT_EQ(State().PCSettings, "19200,e,8,1");
  Click("Option5");
  EXPECT_EQ(State().PCSettings, "19200,e,8,1");
}

TEST_F(PcSetup, TakesAFixedLineWhenNoSpeedIsSelectedAndThereIsNone) {
  OpenPage();
  State().PCSettings = "";
  dynamic_cast<view::ComboBox&>(At("PCBaudRate")).ListIndex = -1;
  Click("Option4");
  EXPECT_EQ(State().PCSettings, "38400,n,8,1");
}

TEST_F(PcSetup, FillsInTheDefaultsWhenThereAreNoSettings) {
  OpenPageOn("", 3, 9);
  EXPECT_EQ(State().PCSettings, "9600,n,8,1");
  EXPECT_EQ(State().PCPort, 1);
  EXPECT_EQ(State().ModuleAddress, 1);
  EXPECT_TRUE(Checked("Option3"));
}

TEST_F(PcSetup, SetsTheLineOfTheNextSession) {
  OpenPage();
  Choose("PCBaudRate", 4);
  Click("Option4");
  module.Line = {19200, bus::Parity::kEven};
  StartSession();
  EXPECT_EQ(line.Line(), module.Line);
}

// The port.

TEST_F(PcSetup, SetsThePort) {
  std::array<std::unique_ptr<MemoryLine>, 4> lines;
  for (int comPort = 2; comPort <= 4; ++comPort) {
    lines.at(static_cast<std::size_t>(comPort - 1)) = std::make_unique<MemoryLine>(scheduler);
    ports.Connect(comPort, *lines.at(static_cast<std::size_t>(comPort - 1)));
  }
  OpenPage();
  for (const int comPort : {4, 2, 3, 1, 1}) {
    Click("SetCOM" + std::to_string(comPort));
    EXPECT_EQ(State().PCPort, comPort);
    EXPECT_EQ(SelectedOf(kPorts), "SetCOM" + std::to_string(comPort));
  }
}

TEST_F(PcSetup, EnablesThePortsThatOpenNow) {
  OpenQuietly();
  MemoryLine second(scheduler);
  ports.Connect(2, second);
  ports.SetFault(1, core::kPortAlreadyOpen);
  OpenPage();
  EXPECT_FALSE(Enabled("SetCOM1"));
  EXPECT_TRUE(Enabled("SetCOM2"));
  EXPECT_FALSE(Enabled("SetCOM3"));
  EXPECT_FALSE(Enabled("SetCOM4"));
  EXPECT_NE(RefusalOf("SetCOM1"), "");
  EXPECT_FALSE(second.IsOpen());
  EXPECT_TRUE(NothingInFront());
  ports.SetFault(1, {});
  Click("MDIForm1.LabHome");
  OpenPage();
  EXPECT_TRUE(Enabled("SetCOM1"));
}

TEST_F(PcSetup, TestsEachPortOnceWhenItIsShown) {
  OpenQuietly();
  std::vector<int> opened;
  ports.BeforeOpen = [&](int comPort) { opened.push_back(comPort); };
  OpenPage();
  EXPECT_THAT(opened, ElementsAre(1, 2, 3, 4));
  EXPECT_FALSE(line.IsOpen());
  EXPECT_THAT(line.Writes(), IsEmpty());
}

TEST_F(PcSetup, SelectsThePortInForceThoughItDoesNotOpen) {
  OpenPageOn("9600,n,8,1", 4);
  EXPECT_FALSE(Enabled("SetCOM4"));
  EXPECT_EQ(SelectedOf(kPorts), "SetCOM4");
  EXPECT_EQ(State().PCPort, 4);
}

TEST_F(PcSetup, SelectsNoPortForANumberThatThereIsNot) {
  for (const int comPort : {0, 5}) {
    if (PageName().empty()) OpenQuietly();
    State().PCPort = comPort;
    Click("MDIForm1.LabHome");
    OpenPage();
    EXPECT_EQ(SelectedOf(kPorts), "");
    EXPECT_EQ(State().PCPort, comPort);
  }
}

// The address.

TEST_F(PcSetup, EditsTheAddress) {
  OpenPage();
  Click("PCAddress");
  EXPECT_EQ(WindowInFront(), "ChangeValue");
  EXPECT_EQ(State().ChangeValueMin, 1);
  EXPECT_EQ(State().ChangeValueMax, 255);
  AnswerChangeValue("200");
  EXPECT_TRUE(NothingInFront());
  EXPECT_EQ(Text("PCAddress"), "200");
  EXPECT_EQ(State().ModuleAddress, 200);
}

TEST_F(PcSetup, TakesEveryAddressFromOneTo255) {
  OpenPage();
  for (const int address : {1, 2, 127, 128, 247, 248, 255}) {
    Click("PCAddress");
    AnswerChangeValue(std::to_string(address));
    EXPECT_TRUE(NothingInFront());
    EXPECT_EQ(State().ModuleAddress, address);
  }
}

TEST_F(PcSetup, BoundsTheAddress) {
  OpenPage();
  Click("PCAddress");
  AnswerChangeValue("256");
  EXPECT_EQ(Text("ChangeValue.Text1"), "255");
  AnswerChangeValue("0");
  EXPECT_EQ(Text("ChangeValue.Text1"), "1");
  EXPECT_EQ(State().ModuleAddress, 1);
  Click("ChangeValue.Cancel");
}

TEST_F(PcSetup, LeavesTheAddressWhenTheEditIsCancelled) {
  OpenPageOn("9600,n,8,1", 1, 33);
  Click("PCAddress");
  Type("ChangeValue.Text1", "44");
  Click("ChangeValue.Cancel");
  EXPECT_EQ(Text("PCAddress"), "33");
  EXPECT_EQ(State().ModuleAddress, 33);
}

TEST_F(PcSetup, ShowsTheAddressTextAsTypedAndRoundsIt) {
  OpenPage();
  Click("PCAddress");
  AnswerChangeValue("12.4");
  EXPECT_EQ(Text("PCAddress"), "12.4");
  EXPECT_EQ(State().ModuleAddress, 12);
}

TEST_F(PcSetup, ShowsTheAddressBeforeItWasEverShown) {
  OpenQuietly();
  EXPECT_EQ(Text("PCsetup.PCAddress"), "1");
}

TEST_F(PcSetup, SetsTheAddressOfTheNextSession) {
  OpenPage();
  module.Address = 248;
  Click("PCAddress");
  AnswerChangeValue("248");
  StartSession();
}

// The rest.

TEST_F(PcSetup, ClearsTheFirstPanel) {
  OpenQuietly();
  SetPanel("MDIForm1.StatusBar1(1)", "passing");
  SetPanel("MDIForm1.StatusBar1(2)", "staying");
  OpenPage();
  EXPECT_EQ(Panel1(), "");
  EXPECT_EQ(Panel2(), "staying");
}

TEST_F(PcSetup, NotesEscape) {
  OpenPage();
  PressKey(view::Key::kEscape);
  EXPECT_EQ(State().EscPressed, 1);
}

TEST_F(PcSetup, StoresNothing) {
  OpenPage();
  Choose("PCBaudRate", 0);
  Click("Option5");
  Click("PCAddress");
  AnswerChangeValue("9");
  Click("MDIForm1.LabHome");
  EXPECT_EQ(values.Sets(), 0);
}

}  // namespace
}  // namespace tarvo::test
