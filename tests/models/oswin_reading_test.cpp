// How the Oswin page reads its module without a session: when it is entered, and what it makes of the registers.

#include "support/oswin_fixture.h"

namespace tarvo::test {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::StartsWith;

constexpr char kConnected[] = "Connected to  Oswin , COM1,9600,n,8,1  Module Address:1";

// Entering the page.

class OswinEntry : public OswinModule {
 protected:
  /// Clicks on the page's label and lets time go by until the module has taken so many requests.
  void EnterUntilRequest(int requests) {
    ClickAndGoOn("MDIForm1.labOswin");
    ASSERT_TRUE(RunUntil([&] { return module.Requests() == requests; }));
  }
  /// As the page is once its module is read, or could not be.
  void ExpectEntered() {
    EXPECT_EQ(Page().Name(), "frmOswin");
    EXPECT_EQ(State().NrFinestra, 12);
    EXPECT_EQ(State().pageReadDone, state::kTrue);
    ExpectOffline();
  }
};

TEST_F(OswinEntry, ReadsTheModuleOneRegisterAtATime) {
  Click("MDIForm1.labOswin");
  EXPECT_THAT(module.TakeLog(), ElementsAreArray(SettingsReads()));
  ExpectEntered();
}

TEST_F(OswinEntry, TellsTheConnectionInTheStatusBar) {
  Click("MDIForm1.labOswin");
  EXPECT_EQ(Panel2(), kConnected);
}

TEST_F(OswinEntry, IsTheSameByTheMenu) {
  Click("MDIForm1.menuOswin");
  EXPECT_THAT(module.TakeLog(), ElementsAreArray(SettingsReads()));
  ExpectEntered();
}

TEST_F(OswinEntry, KeepsTheUserOnThePageUntilTheModuleIsRead) {
  EnterUntilRequest(2);
  EXPECT_TRUE(Hourglass());
  for (const char* name : {"LabHome", "labBelk", "MenuBelk", "buttCheckDevice"}) {
    EXPECT_NE(RefusalOf(std::string("MDIForm1.") + name), "") << name;
  }
  RunUntilIdle();
  ExpectEntered();
}

TEST_F(OswinEntry, HasItsNumberOnlyWhenTheModuleIsRead) {
  EnterUntilRequest(7);
  EXPECT_EQ(State().NrFinestra, -1);
  EXPECT_EQ(State().pageReadDone, state::kFalse);
  RunUntilIdle();
  ExpectEntered();
}

TEST_F(OswinEntry, ReadsTheModuleAgainAtEachVisit) {
  OpenPage();
  for (int visit = 0; visit < 2; ++visit) {
    Click("MDIForm1.LabHome");
    EXPECT_EQ(State().pageReadDone, state::kFalse);
    module.ForgetLog();
    Click("MDIForm1.labOswin");
    EXPECT_THAT(module.TakeLog(), ElementsAreArray(SettingsReads()));
  }
  ExpectEntered();
}

TEST_F(OswinEntry, ReadsNothingWhenADialogOverThePageCloses) {
  OpenPage();
  module.ForgetLog();
  Edit("labModuleAddress", "7");
  Click("labModuleAddress");
  Click("ChangeValue.Cancel");
  EXPECT_EQ(ports.Attempts(), 0);
  EXPECT_EQ(Text("labModuleAddress"), "7");
  ExpectEntered();
}

TEST_F(OswinEntry, SpeaksToTheAddressOfPcSetup) {
  module.Address = 9;
  Set(kAddress, 0x0900);
  OpenPage();
  ASSERT_THAT(module.TakeLog(), IsEmpty());
  SetPcAddress("9");
  // After the silence the bus first proves that answers are in step.
  EXPECT_THAT(TakeExchanges("reads 40001 x4"), ElementsAreArray(SettingsReads()));
  EXPECT_EQ(Panel2(), "Connected to  Oswin , COM1,9600,n,8,1  Module Address:9");
  EXPECT_EQ(Text("labModuleAddress"), "9");
}

TEST_F(OswinEntry, TellsAnotherModuleAndReadsNoMoreOfIt) {
  for (const int identity : {0x0805, 0x0905, 0x1505, 0x1705, 0x9605, 0x0016, 0x0000}) {
    SCOPED_TRACE(identity);
    Click("MDIForm1.LabHome");
    Set(kIdentity, identity);
    module.ForgetLog();
    Click("MDIForm1.labOswin");
    EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001"));
    EXPECT_EQ(Panel2(), kThisIsNoOswin);
    ExpectEntered();
  }
}

TEST_F(OswinEntry, TellsASilentModuleAsAnother) {
  module.Always(ModuleFault::Unheard());
  Click("MDIForm1.labOswin");
  EXPECT_EQ(Panel2(), kThisIsNoOswin);
  module.Always(ModuleFault::None());
  ExpectEntered();
}

TEST_F(OswinEntry, TellsAPortThatIsNotThereAsAnotherModule) {
  State().PCPort = 2;
  Click("MDIForm1.labOswin");
  EXPECT_EQ(Panel2(), kThisIsNoOswin);
  ExpectEntered();
}

TEST_F(OswinEntry, HasItsListsThoughTheFirstVisitMetNoModule) {
  Set(kIdentity, 0);
  Click("MDIForm1.labOswin");
  Set(kIdentity, 0x1605);
  SetFour(kChannel1, {0x00, 0x60, 0x80, 0xE0});
  VisitAnew();
  for (int i = 0; i < kChannels; ++i) {
    EXPECT_THAT(List(SensorType(i)), ElementsAre("0-PT100", "1-PT500", "2-PT1000", "3-NI100")) << i;
    EXPECT_THAT(List(Units(i)), ElementsAre("°C", "ohm")) << i;
  }
  EXPECT_THAT(ChannelsShown(), ElementsAre(0x00, 0x60, 0x80, 0xE0));
}

// What the registers show.

class OswinReading : public OswinFixture {
 protected:
  /// Another visit to a module whose line settings are these.
  void VisitWith(int address, int baud) {
    Set(kAddress, address);
    Set(kBaud, baud);
    VisitAnew();
  }
};

TEST_F(OswinReading, TakesTheAddressFromTheHighByte) {
  for (const int address : {1, 2, 127, 128, 255}) {
    VisitWith(address << 8, 0x0100);
    EXPECT_EQ(Text("labModuleAddress"), std::to_string(address));
  }
}

TEST_F(OswinReading, TakesTheParityFromTheTwoLowestBits) {
  for (const int others : {0x0000, 0x00FC, 0x0300, 0xFF00}) {
    SCOPED_TRACE(others);
    VisitWith(others | 1, 0x0100);
    EXPECT_TRUE(Checked("checkParity"));
    EXPECT_TRUE(Checked("OptionEven"));
    EXPECT_FALSE(Checked("OptionOdd"));
    EXPECT_TRUE(Enabled("OptionEven"));
    EXPECT_TRUE(Enabled("OptionOdd"));
    VisitWith(others | 2, 0x0100);
    EXPECT_TRUE(Checked("checkParity"));
    EXPECT_FALSE(Checked("OptionEven"));
    EXPECT_TRUE(Checked("OptionOdd"));
    EXPECT_TRUE(Enabled("OptionEven"));
    EXPECT_TRUE(Enabled("OptionOdd"));
    VisitWith(others, 0x0100);
    EXPECT_FALSE(Checked("checkParity"));
    EXPECT_FALSE(Enabled("OptionEven"));
    EXPECT_FALSE(Enabled("OptionOdd"));
  }
}

TEST_F(OswinReading, SelectsNoOptionByTheUnknownParity) {
  for (const int before : {1, 2}) {
    VisitWith(0x0100 | before, 0x0100);
    VisitWith(0x0103, 0x0100);
    EXPECT_TRUE(Checked("checkParity")) << before;
    EXPECT_EQ(Checked("OptionEven"), before == 1);
    EXPECT_EQ(Checked("OptionOdd"), before == 2);
    VisitWith(0x0100, 0x0100);
    VisitWith(0x0103, 0x0100);
    EXPECT_TRUE(Checked("checkParity")) << before;
  }
}

TEST_F(OswinReading, TakesEachRateByItsCodeInTheHighByte) {
  const std::pair<int, const char*> rates[] = {{6, "1200"},  {7, "2400"},  {0, "4800"}, {1, "9600"},
                                               {2, "19200"}, {3, "38400"}, {4, "57600"}};
  int position = 0;
  for (const auto& [code, rate] : rates) {
    for (const int low : {0x00, 0xFF, code == 0 ? 0x06 : 0x00}) {
      VisitWith(0x0100, code << 8 | low);
      EXPECT_EQ(Text("cbBaudRate"), rate) << low;
      EXPECT_EQ(ListIndex("cbBaudRate"), position) << low;
    }
    ++position;
  }
}

TEST_F(OswinReading, LeavesTheRateOnACodeThatHasNone) {
  VisitWith(0x0100, 0x0300);
  for (const int code : {5, 8, 0x81, 0xFF}) {
    VisitWith(0x0100, code << 8);
    EXPECT_EQ(Text("cbBaudRate"), "38400") << code;
  }
}

TEST_F(OswinReading, ShowsEachSettingOfEachChannel) {
  // Every word with a filter that there is, four at a time; the bits above are none of the page's.
  for (int word = 0; word < 256; word += 8) {
    for (const int filter : {0, 1, 2, 3}) {
      const int shown = word | filter;
      SetFour(kChannel1, {shown, 0xAB00 | (shown ^ 0xF8), 0xFF00 | shown, shown ^ 0x50});
      VisitAnew();
      EXPECT_THAT(ChannelsShown(), ElementsAre(shown, shown ^ 0xF8, shown, shown ^ 0x50));
    }
  }
}

TEST_F(OswinReading, KeepsTheFilterThatItShowedOnOneThatThereIsNot) {
  SetFour(kChannel1, {0, 1, 2, 3});
  VisitAnew();
  for (const int filter : {4, 5, 6, 7}) {
    SetFour(kChannel1, {0xC0 | filter, 0x80 | filter, 0x18 | filter, 0x20 | filter});
    VisitAnew();
    EXPECT_THAT(ChannelsShown(), ElementsAre(0xC0, 0x81, 0x1A, 0x23)) << filter;
  }
}

TEST_F(OswinReading, SetsTheMeasuresToZero) {
  SetFour(kMeasure1, {11, 22, 33, 44});
  StartSession();
  RunThroughAPoll();
  Click("StopNerith");
  ASSERT_THAT(Four(&Measure), ElementsAre("1.1", "2.2", "3.3", "4.4"));
  VisitAnew();
  EXPECT_THAT(Four(&Measure), Each(std::string("0")));
}

TEST_F(OswinReading, SetsTheMeasuresToZeroBeforeItMeetsAnotherModule) {
  SetFour(kMeasure1, {11, 22, 33, 44});
  SetFour(kChannel1, {0x41, 0x82, 0xC3, 0x38});
  VisitWith(0x0702, 0x0400);
  StartSession();
  RunThroughAPoll();
  Click("StopNerith");
  Set(kIdentity, 0x0805);
  SetFour(kChannel1, {0, 0, 0, 0});
  VisitWith(0x0100, 0x0100);
  EXPECT_THAT(Four(&Measure), Each(std::string("0")));
  EXPECT_THAT(ChannelsShown(), ElementsAre(0x41, 0x82, 0xC3, 0x38));
  EXPECT_EQ(Text("labModuleAddress"), "7");
  EXPECT_EQ(Text("cbBaudRate"), "57600");
  EXPECT_TRUE(Checked("OptionOdd"));
}

TEST_F(OswinReading, LeavesAddressAndParityThatCannotBeRead) {
  VisitWith(0x0702, 0x0400);
  Set(kAddress, 0x0801);
  Set(kBaud, 0x0200);
  RefuseAfter(1);
  module.ForgetLog();
  VisitAnew();
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40001", "reads 40035: exception 4", "reads 40036", "reads 40037",
                                            "reads 40038", "reads 40039", "reads 40040"));
  EXPECT_EQ(Text("labModuleAddress"), "7");
  EXPECT_TRUE(Checked("checkParity"));
  EXPECT_TRUE(Checked("OptionOdd"));
  EXPECT_EQ(Text("cbBaudRate"), "19200");
}

TEST_F(OswinReading, GoesOnToTheChannelsWhenTheRateCannotBeRead) {
  SetFour(kChannel1, {0x41, 0x82, 0xC3, 0x38});
  RefuseAfter(2);
  VisitAnew();
  EXPECT_THAT(ChannelsShown(), ElementsAre(0x41, 0x82, 0xC3, 0x38));
  EXPECT_THAT(Panel1(), testing::Not(StartsWith("Unable to read")));
}

TEST_F(OswinReading, KeepsAChannelThatCannotBeReadAndTellsItsRegister) {
  for (int failing = 0; failing < kChannels; ++failing) {
    SCOPED_TRACE(failing);
    SetFour(kChannel1, {0x41, 0x82, 0xC3, 0x38});
    VisitAnew();
    SetFour(kChannel1, {0xFA, 0xFA, 0xFA, 0xFA});
    RefuseAfter(3 + failing);
    VisitAnew();
    std::vector<int> expected = {0xFA, 0xFA, 0xFA, 0xFA};
    const std::vector<int> before = {0x41, 0x82, 0xC3, 0x38};
    expected.at(static_cast<std::size_t>(failing)) = before.at(static_cast<std::size_t>(failing));
    EXPECT_EQ(ChannelsShown(), expected);
    EXPECT_EQ(Panel1(), "Unable to read : " + std::to_string(kChannel1 + failing));
    ExpectOffline();
  }
}

TEST_F(OswinReading, TellsTheLastOfSeveralChannelsThatCannotBeRead) {
  RefuseAfter(3);
  module.Next(ModuleFault::None());
  module.Next(ModuleFault::Exception(4));
  VisitAnew();
  EXPECT_EQ(Panel1(), "Unable to read : 40039");
}

TEST_F(OswinReading, LeavesAllFourChannelsEnabled) {
  for (int i = 0; i < kChannels; ++i) {
    for (const std::string& name : {Filter(i), Rejection(i), Comp(i), Units(i), SensorType(i)}) {
      EXPECT_TRUE(Enabled(name)) << name;
    }
  }
}

// The search.

class OswinSearch : public OswinModule {
 protected:
  /// From its button up to its end.
  void Search() {
    Click("MDIForm1.buttCheckDevice");
    ASSERT_TRUE(RunUntil([this] { return State().SearchRunning == state::kFalse && program.GetScreen().Idle(); }));
  }
};

TEST_F(OswinSearch, DoesNotKnowTheModel) {
  Search();
  EXPECT_EQ(Panel2(), "Module Unknown");
  EXPECT_EQ(State().NrFinestra, -1);
  EXPECT_EQ(Page().Name(), "Home");
  EXPECT_THAT(module.TakeLog(), Each(StartsWith("reads 40001")));
}

TEST_F(OswinSearch, LeavesThePageForTheUserToOpen) {
  OpenPage();
  Search();
  EXPECT_EQ(Page().Name(), "Home");
  EXPECT_EQ(State().pageReadDone, state::kFalse);
  Set(kChannel1, 0x82);
  Click("MDIForm1.labOswin");
  EXPECT_EQ(ChannelShown(0), 0x82);
  EXPECT_TRUE(Enabled("cbBaudRate"));
  EXPECT_TRUE(Enabled(SensorType(3)));
  StartSession();
  ExpectSessionGoesOn();
}

}  // namespace
}  // namespace tarvo::test
