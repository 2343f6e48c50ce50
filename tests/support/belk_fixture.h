#pragma once

#include <gmock/gmock.h>

#include <array>
#include <cstdio>
#include <string>
#include <vector>

#include "support/program_fixture.h"

namespace tarvo::test {

inline constexpr char kBelkPoll[] = "reads 40002 x9";
inline constexpr char kPollFailed[] = "ERROR! Wrong Comm.";
inline constexpr char kNotABelk[] = "ERROR! Module is not Belk or communication failed";
inline constexpr char kMustStopFirst[] = "Communication must be stopped before exit !";

/// The page `Belk` with its module on COM1: firmware release 3, 9600,n,8,1, address 1, filter 10, no flag set.
class BelkFixture : public ProgramFixture {
 protected:
  static constexpr int kIdentity = 40001;
  static constexpr int kStatus = 40002;
  static constexpr int kCounter1 = 40003;
  static constexpr int kFilter = 40008;
  static constexpr int kFlags = 40009;
  static constexpr int kCommunication = 40010;
  static constexpr int kInputs = 5;

  /// Elements of `PollBuffer`.
  static constexpr std::size_t kPolledStatus = 0;
  static constexpr std::size_t kPolledCounter1 = 1;
  static constexpr std::size_t kPolledFlags = 7;

  BelkFixture() {
    module[kIdentity] = 0x0103;
    module[kFilter] = 10;
    module[kCommunication] = 0x0101;
  }

  void SetRelease(int release) { module[kIdentity] = static_cast<std::uint16_t>(0x0100 | release); }

  /// Presses Start and forgets what that read.
  void StartSession() {
    Click("StartBelk");
    ASSERT_TRUE(InSession()) << (BoxInFront() == nullptr ? "no session, no box" : BoxInFront()->text);
    module.ForgetLog();
  }
  bool InSession() const { return State().StartComm == state::kTrue; }
  bool TimersRun() const { return Enabled("TimerLetturaSeriale") && Enabled("TimerGestioneLetture"); }
  bool TimersRest() const { return !Enabled("TimerLetturaSeriale") && !Enabled("TimerGestioneLetture"); }
  /// Time for one poll and for one decode after it.
  void RunThroughADecode() { Run(core::milliseconds(300)); }
  /// Lets time go by until a poll is under way.
  void RunIntoAPoll() {
    ASSERT_TRUE(RunUntil([this] { return !Modcom().CommBusy(); }));
    ASSERT_TRUE(RunUntil([this] { return Modcom().CommBusy(); }));
  }

  /// "TotIN" and 2 give "TotIN(2)".
  static std::string Member(const char* array, int index) {
    return std::string(array) + "(" + std::to_string(index) + ")";
  }
  static std::string Bar(int input) { return "BargBelk" + std::to_string(input + 1); }
  /// "writes 40009 = 0x0081"
  static std::string Writing(int number, int word) {
    std::array<char, 40> text{};
    std::snprintf(text.data(), text.size(), "writes %d = 0x%04X", number, static_cast<unsigned>(word) & 0xFFFFU);
    return text.data();
  }
  /// What the session's clicks brought over the line: all but its polls.
  std::vector<std::string> Exchanges() { return TakeExchanges(kBelkPoll); }
  int Polled(std::size_t element) const { return State().PollBuffer.at(element).Unsigned(); }
};

}  // namespace tarvo::test
