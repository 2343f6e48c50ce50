#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "support/page_fixture.h"

namespace tarvo::test {

inline constexpr char kNotAnOswin[] = "ERROR! Module is not Oswin or communication failed";
inline constexpr char kThisIsNoOswin[] = "This is not a Oswin";
inline constexpr char kSwitchOffAndOn[] = "Switch the module off and on to restart it.";

inline PageNames OswinNames() {
  return {.model = "Oswin",
          .label = "labOswin",
          .menu = "menuOswin",
          .start = "StartOswin",
          .stop = "StopNerith",
          .message = "labMessage"};
}

/// The page `frmOswin` not shown yet, and its module on COM1: 9600,n,8,1, address 1, firmware release 5, all channels a
/// PT100 in degrees without a filter.
class OswinModule : public PageFixture {
 protected:
  static constexpr int kStatus = 40002;
  static constexpr int kMeasure1 = 40003;
  static constexpr int kResistance1 = 40016;
  static constexpr int kAddress = 40035;
  static constexpr int kBaud = 40036;
  static constexpr int kChannel1 = 40037;
  static constexpr int kChannels = 4;
  /// What Start reads before there is a session.
  static constexpr int kRequestsBeforeTheSession = 1;

  /// Elements of `PollBuffer`.
  static constexpr std::size_t kPolledStatus = 0;
  static constexpr std::size_t kPolledResistance1 = 5;

  /// A poll with what becomes visible by it, wherever the two timers stand.
  static constexpr core::Duration kThroughAPoll = core::milliseconds(1000);

  OswinModule() : PageFixture(OswinNames()) {
    Set(kIdentity, 0x1605);
    Set(kAddress, 0x0100);
    Set(kBaud, 0x0100);
  }

  void Set(int number, int word) { module[number] = static_cast<std::uint16_t>(word); }
  void SetFour(int first, const std::array<int, kChannels>& words) {
    for (int i = 0; i < kChannels; ++i) Set(first + i, words.at(static_cast<std::size_t>(i)));
  }

  // Channels count from 0.
  static std::string Measure(int channel) { return Member("labTI_RTD", channel); }
  static std::string Resistance(int channel) { return Member("labRES_RTD", channel); }
  static std::string ChannelFail(int channel) { return Member("labChannelFail", channel); }
  static std::string SensorFail(int channel) { return Member("labSensorFail", channel); }
  static std::string Filter(int channel) { return Member("cbFilter", channel); }
  static std::string Rejection(int channel) { return Member("chkRejection", channel); }
  static std::string Comp(int channel) { return Member("chkComp", channel); }
  static std::string Units(int channel) { return Member("cbUnits", channel); }
  static std::string SensorType(int channel) { return Member("cbSensorType", channel); }

  std::vector<std::string> Four(std::string (*name)(int)) const {
    return {Text(name(0)), Text(name(1)), Text(name(2)), Text(name(3))};
  }
  std::vector<bool> FourVisible(std::string (*name)(int)) const {
    return {Visible(name(0)), Visible(name(1)), Visible(name(2)), Visible(name(3))};
  }
  /// A channel as its controls show it, in the bits of its register.
  int ChannelShown(int channel) const {
    int word = ListIndex(Filter(channel)) + 64 * ListIndex(SensorType(channel)) + 32 * ListIndex(Units(channel));
    if (Checked(Rejection(channel))) word += 8;
    if (Checked(Comp(channel))) word += 16;
    return word;
  }
  std::vector<int> ChannelsShown() const {
    return {ChannelShown(0), ChannelShown(1), ChannelShown(2), ChannelShown(3)};
  }
  std::string Message() const { return Text("frmOswin.labMessage"); }
  std::string Panel1() const { return Text("MDIForm1.StatusBar1(1)"); }
  std::string Panel2() const { return Text("MDIForm1.StatusBar1(2)"); }

  /// What the page's reading of its module brings over the line, in this order.
  static const std::vector<std::string>& SettingsReads() {
    static const std::vector<std::string> reads = {"reads 40001", "reads 40035", "reads 40036", "reads 40037",
                                                   "reads 40038", "reads 40039", "reads 40040"};
    return reads;
  }
  /// What one poll brings over the line, in this order.
  static const std::vector<std::string>& PollReads() {
    static const std::vector<std::string> reads = {"reads 40002 x5", "reads 40016", "reads 40017", "reads 40018",
                                                   "reads 40019"};
    return reads;
  }
  /// What the session's gestures brought over the line: all but its polls.
  std::vector<std::string> Exchanges() {
    std::vector<std::string> exchanges = module.TakeLog();
    for (const std::string& poll : PollReads()) std::erase(exchanges, poll);
    return exchanges;
  }

  /// The request after so many others is refused.
  void RefuseAfter(int requests) {
    for (int i = 0; i < requests; ++i) module.Next(ModuleFault::None());
    module.Next(ModuleFault::Exception(4));
  }
  /// Leaves the page and comes back, so that it reads its module once more.
  void VisitAnew() {
    Click("MDIForm1.LabHome");
    Click("MDIForm1.labOswin");
  }
  /// Sets the address that the program speaks to, as the user does, and comes back.
  void SetPcAddress(const std::string& address) {
    Click("MDIForm1.LabPCSetup");
    Edit("PCAddress", address);
    Click("MDIForm1.labOswin");
  }
  /// Edits a value by its dialog.
  void Edit(const std::string& control, const std::string& text) {
    Click(control);
    AnswerChangeValue(text);
    ASSERT_TRUE(NothingInFront());
  }
  void RunThroughAPoll() { Run(kThroughAPoll); }
  /// Lets time go by until a poll has just ended.
  void RunToAPollsEnd() {
    module.ForgetLog();
    ASSERT_TRUE(RunUntil([this] {
      const bool last = !module.Log().empty() && module.Log().back().starts_with("reads 40019");
      return last && !Modcom().CommBusy();
    }));
    module.ForgetLog();
  }

  /// The page without a session, and quiet.
  void ExpectOffline() {
    EXPECT_FALSE(InSession());
    EXPECT_TRUE(TimersRest());
    EXPECT_FALSE(PortOpen());
    EXPECT_FALSE(line.IsOpen());
    EXPECT_FALSE(Hourglass());
    EXPECT_TRUE(NothingInFront());
    for (const char* name : {"StartOswin", "WEEPGaven", "ResetGaven", "MDIForm1.labOswin", "MDIForm1.menuOswin",
                             "MDIForm1.LabHome", "MDIForm1.buttCheckDevice"}) {
      EXPECT_TRUE(Enabled(name)) << name;
    }
    module.ForgetLog();
    Run(std::chrono::seconds(2));
    EXPECT_THAT(module.TakeLog(), testing::IsEmpty());
  }
  /// A session that polls as if nothing had happened.
  void ExpectSessionGoesOn() {
    EXPECT_TRUE(InSession());
    EXPECT_TRUE(PortOpen());
    EXPECT_TRUE(TimersRun());
    EXPECT_FALSE(Hourglass());
    EXPECT_TRUE(NothingInFront());
    EXPECT_FALSE(Enabled("StartOswin"));
    EXPECT_FALSE(Enabled("MDIForm1.labOswin"));
    RunToAPollsEnd();
    std::vector<std::string> expected;
    for (int poll = 0; poll < 2; ++poll) expected.insert(expected.end(), PollReads().begin(), PollReads().end());
    Run(core::milliseconds(1000));
    EXPECT_THAT(module.TakeLog(), testing::ElementsAreArray(expected));
    EXPECT_EQ(Message(), "OK");
  }
};

/// The page shown, and its module read by it.
class OswinFixture : public OswinModule {
 protected:
  OswinFixture() {
    OpenPage();
    module.ForgetLog();
  }
};

}  // namespace tarvo::test
