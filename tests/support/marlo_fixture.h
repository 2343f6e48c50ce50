#pragma once

#include <array>
#include <string>
#include <utility>
#include <vector>

#include "support/page_fixture.h"

namespace tarvo::test {

inline constexpr char kMarloPoll[] = "reads 40002 x8";
inline constexpr char kNotAMarlo[] = "ERROR! Module is not Marlo or communication failed";
inline constexpr char kThisIsNoMarlo[] = "This module is not a Marlo";

/// Ten lamps and the register whose bits they show.
struct MarloRow {
  const char* lamps;
  int source;
};

inline constexpr std::array<MarloRow, 6> kMarloRows = {{{"shDamage", 40004},
                                                        {"shDefault", 40005},
                                                        {"shOpen", 40006},
                                                        {"shShorted", 40007},
                                                        {"shHot", 40008},
                                                        {"shOpenedMask", 40015}}};

/// The page `frmMarlo` with its module: firmware release 17, all outputs and lamps off but the opened mask, a supply of
/// 24 V, a threshold of 18 V, a delay of 5.
class MarloFixture : public PageFixture {
 protected:
  static constexpr int kStatus = 40002;
  static constexpr int kOutputs = 40003;
  static constexpr int kDamage = 40004;
  static constexpr int kDefaults = 40005;
  static constexpr int kSupply = 40009;
  static constexpr int kAddress = 40010;
  static constexpr int kBaud = 40011;
  static constexpr int kOptions = 40012;
  static constexpr int kSafeTime = 40013;
  static constexpr int kOpenedMask = 40015;
  static constexpr int kLimits = 40016;
  static constexpr int kFirmware = 40023;

  static constexpr int kCount = 10;
  static constexpr int kStatusLamps = 5;
  static constexpr int kRed = 0x0000FF;
  static constexpr int kGreen = 0x00FF00;

  enum class Entered { kYes, kNotYet };

  /// On the page, its module read, unless told otherwise.
  explicit MarloFixture(Entered entered = Entered::kYes)
      : PageFixture(
            PageNames{.model = "Marlo", .menu = "mnuMarlo", .start = "buttStartMarlo", .stop = "buttStopMarlo"}) {
    module[kIdentity] = 0x0D07;
    module[kFirmware] = 17;
    module[kSupply] = 240;
    module[kAddress] = 0x0100;
    module[kBaud] = 0x0100;
    module[kOpenedMask] = 0x03FF;
    module[kLimits] = 0x05B4;
    if (entered == Entered::kNotYet) return;
    OpenPage();
    module.ForgetLog();
  }

  void Set(int number, int word) { module[number] = static_cast<std::uint16_t>(word); }

  /// Leaves the page and comes back: it reads its module anew.
  void Reenter() {
    Click("MDIForm1.LabHome");
    module.ForgetLog();
    OpenPage();
  }
  /// The page is entered while the module refuses all. After silence the line would be probed first.
  void EnterInVain() {
    module.Always(ModuleFault::Exception(4));
    Reenter();
    module.Always(ModuleFault::None());
    module.ForgetLog();
  }

  /// What a reading of the module brings over the line, after `before` and before `after`.
  static std::vector<std::string> Reading(std::vector<std::string> before = {},
                                          const std::vector<std::string>& after = {}) {
    for (const int number :
         {40001, 40003, 40010, 40011, 40009, 40004, 40005, 40006, 40007, 40008, 40015, 40002, 40013, 40012, 40016}) {
      before.push_back("reads " + std::to_string(number));
    }
    before.insert(before.end(), after.begin(), after.end());
    return before;
  }
  /// The same for what entering the page brings.
  static std::vector<std::string> EntryReading() { return Reading({"reads 40023"}); }
  /// What the session's gestures brought over the line: all but its polls.
  std::vector<std::string> Exchanges() { return TakeExchanges(kMarloPoll); }

  static std::string Out(int output) { return Member("buttOUTMarlo", output); }
  /// The outputs that are shown as on.
  int OutputsShown() const {
    int word = 0;
    for (int i = 0; i < kCount; ++i) {
      if (Picture(Out(i)) == 2) {
        word |= 1 << i;
      } else {
        EXPECT_EQ(Picture(Out(i)), 1) << i;
      }
    }
    return word;
  }
  /// The lamps of an array that are red; the others must be green.
  int RedLamps(const char* lamps, int count = kCount) const {
    int word = 0;
    for (int i = 0; i < count; ++i) {
      const std::string lamp = Member(lamps, i);
      if (BackColor(lamp) == kRed) {
        word |= 1 << i;
      } else {
        EXPECT_EQ(BackColor(lamp), kGreen) << lamp;
      }
    }
    return word;
  }

  std::string Panel1() const { return Text("MDIForm1.StatusBar1(1)"); }
  std::string Panel2() const { return Text("MDIForm1.StatusBar1(2)"); }
  int Beeps() const { return program.GetScreen().Beeps(); }

  /// The focus leaves a control; to the end of what that starts, or to a box.
  void Leave(std::string_view name) {
    const view::GestureResult result = program.GetScreen().Leave(At(name));
    ASSERT_TRUE(result.taken) << name << ": " << result.refusal;
    ASSERT_TRUE(RunUntil([&] { return BoxInFront() != nullptr || result.run == nullptr || result.run->Done(); }));
  }
  /// Edits a value of the page by its dialog.
  void Edit(std::string_view control, std::string_view text) {
    Click(control);
    AnswerChangeValue(text);
    ASSERT_TRUE(NothingInFront());
  }
  void ExpectOffline() {
    EXPECT_FALSE(InSession());
    EXPECT_TRUE(TimersRest());
    EXPECT_FALSE(PortOpen());
    EXPECT_FALSE(line.IsOpen());
    EXPECT_TRUE(Enabled("buttStartMarlo"));
    EXPECT_TRUE(Enabled("MDIForm1.labMarlo"));
    EXPECT_TRUE(Enabled("MDIForm1.mnuMarlo"));
    EXPECT_FALSE(Hourglass());
    EXPECT_TRUE(NothingInFront());
    module.ForgetLog();
    Run(std::chrono::seconds(1));
    EXPECT_THAT(module.TakeLog(), testing::IsEmpty());
  }
};

}  // namespace tarvo::test
