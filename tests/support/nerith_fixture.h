#pragma once

#include <algorithm>
#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "pages/device_page.h"
#include "support/page_fixture.h"

namespace tarvo::test {

inline constexpr char kNerithPoll[] = "reads 40002 x5";
inline constexpr char kNotANerith[] = "ERROR! Module is not Nerith or communication failed";
inline constexpr char kThisIsNoNerith[] = "This is not a Pellor or Nerith";
inline constexpr char kBrokenSensor[] = "Sensor unconnected or damaged";

inline PageNames NerithNames() {
  return {.model = "Nerith", .menu = "menuNerith", .stop = "StopOswin", .message = "labMessage"};
}

/// A module that the page `frmNerith` is for.
struct NerithKind {
  const char* name;
  int code;
  int channels;

  friend void PrintTo(const NerithKind& kind, std::ostream* out) { *out << kind.name; }
};
inline constexpr NerithKind kNerith = {"Nerith", 0x0800, 4};
inline constexpr NerithKind kPellor = {"Pellor", 0x0900, 3};

/// The page `frmNerith` not shown yet, and its module on COM1: a Nerith, firmware release 18, 9600,n,8,1, address 1.
/// It tells degrees Celsius without digits; everything else is 0.
class NerithModule : public PageFixture {
 protected:
  static constexpr int kStatus = 40002;
  static constexpr int kValue1 = 40003;
  static constexpr int kSerial = 40035;
  static constexpr int kSystem = 40040;
  static constexpr int kMostChannels = 4;
  /// What Start reads before there is a session.
  static constexpr int kRequestsBeforeTheSession = 1;

  /// The first release with the newer layout, and the last one before it.
  static constexpr int kNew = 18;
  static constexpr int kOld = 17;

  static constexpr int kCelsius = 1;
  /// In the second register of a channel.
  static constexpr int kBurned = 0x4000;
  /// In the first register of a channel, with new firmware.
  static constexpr int kResistance = 0x0400;

  NerithModule() : PageFixture(NerithNames()) {
    SetKind(kNerith, kNew);
    Set(kSerial, 0x0401);
    Set(kSystem, kCelsius);
  }

  void Set(int number, int word) { module[number] = static_cast<std::uint16_t>(word); }
  void SetKind(const NerithKind& kind, int firmware) { Set(kIdentity, kind.code | firmware); }
  // Channels count from 0 here, as the page's arrays do.
  static int First(int channel) { return 40062 + 16 * channel; }
  static int Second(int channel) { return 40063 + 16 * channel; }
  void SetChannel(int channel, int first, int second) {
    Set(First(channel), first);
    Set(Second(channel), second);
  }

  static std::string Sensor(int channel) { return Member("cbSensorType", channel); }
  static std::string Dump(int channel) { return Member("cbDumpFactor", channel); }
  static std::string Range(int channel) { return Member("cbRangePT100", channel); }
  static std::string Conv(int channel) { return Member("chkConv", channel); }
  static std::string Burned(int channel) { return Member("chkBurnedSensor", channel); }
  static std::string Value(int channel) { return Member("labTI_RTD", channel); }
  static std::string Failed(int channel) { return Member("labChannelFail", channel); }
  static std::string Broken(int channel) { return Member("labSensorFail", channel); }
  /// The label that heads the value of a channel.
  static std::string Heading(int channel) {
    constexpr int kIndexes[] = {4, 3, 7, 10};
    return Member("labelGaven", kIndexes[channel]);
  }
  /// The controls of a channel that its presence enables.
  static std::vector<std::string> ChannelControls(int channel) {
    return {Sensor(channel), Dump(channel), Range(channel), Conv(channel), Burned(channel)};
  }

  std::vector<std::string> Values() const { return {Text(Value(0)), Text(Value(1)), Text(Value(2)), Text(Value(3))}; }
  std::string Message() const { return Text("frmNerith.labMessage"); }
  std::string Panel1() const { return Text("MDIForm1.StatusBar1(1)"); }
  std::string Panel2() const { return Text("MDIForm1.StatusBar1(2)"); }

  /// What a full reading of the settings brings over the line, in this order.
  static std::vector<std::string> SettingsReads(int channels = kMostChannels) {
    std::vector<std::string> reads = {"reads 40001", "reads 40035", "reads 40040"};
    for (int i = 0; i < channels; ++i) {
      reads.push_back("reads " + std::to_string(First(i)));
      reads.push_back("reads " + std::to_string(Second(i)));
    }
    return reads;
  }
  /// What went over the line since the last call, the polls of a session left out.
  std::vector<std::string> Exchanges() { return TakeExchanges(kNerithPoll); }
  /// How often the module was polled since the log was last taken.
  long Polls() const { return std::count(module.Log().begin(), module.Log().end(), kNerithPoll); }

  /// Time for a poll, which comes every half second, and the decode after it.
  void RunThroughADecode() { Run(core::milliseconds(900)); }

  void Enter() { Click("MDIForm1.labNerith"); }
  /// Leaves the page and comes back, which reads the module anew.
  void VisitAnew() {
    Click("MDIForm1.LabHome");
    Enter();
  }
  /// Starts a session on the module as it is, with the page read anew before.
  void StartAnew() {
    VisitAnew();
    StartSession();
    RunThroughADecode();
    module.ForgetLog();
  }
  /// Edits the address by its dialog.
  void EditAddress(std::string_view text) {
    Click("labModuleAddress");
    AnswerChangeValue(text);
    ASSERT_TRUE(NothingInFront());
  }

  /// The page without a session, and quiet.
  void ExpectOffline() {
    EXPECT_FALSE(InSession());
    EXPECT_TRUE(TimersRest());
    EXPECT_FALSE(PortOpen());
    EXPECT_FALSE(line.IsOpen());
    EXPECT_FALSE(Hourglass());
    EXPECT_TRUE(NothingInFront());
    for (const char* name : {"StartNerith", "WEEPGaven", "ResetGaven", "MDIForm1.labNerith", "MDIForm1.menuNerith",
                             "MDIForm1.LabHome", "MDIForm1.buttCheckDevice", "MDIForm1.Command1"}) {
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
    RunUntilTheBusIsFree();
    module.ForgetLog();
    Run(std::chrono::seconds(3));
    EXPECT_THAT(module.TakeLog(), testing::AllOf(testing::SizeIs(6), testing::Each(std::string(kNerithPoll))));
    EXPECT_EQ(Message(), "OK");
  }
};

/// The page shown, and its module read by it.
class NerithFixture : public NerithModule {
 protected:
  NerithFixture() {
    OpenPage();
    module.ForgetLog();
  }
};

}  // namespace tarvo::test
