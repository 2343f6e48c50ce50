#pragma once

#include <string>
#include <vector>

#include "support/page_fixture.h"

namespace tarvo::test {

inline constexpr char kCobinPoll[] = "reads 40002 x5";
inline constexpr char kNotACobin[] = "ERROR! Module is not Cobin or communication failed";

/// The page `Cobin` with its module: firmware release 3, all outputs and safe states off, safe time 50, no flag set.
class CobinFixture : public PageFixture {
 protected:
  static constexpr int kOutputs = 40002;
  static constexpr int kSafeStates = 40003;
  static constexpr int kSafeTime = 40004;
  static constexpr int kFlags = 40005;
  static constexpr int kReset = 40007;
  static constexpr int kStoredSafeStates = 40067;
  static constexpr int kStoredSafeTime = 40068;
  static constexpr int kStoredFlags = 40069;
  static constexpr int kStoredCommunication = 40070;  ///< address and rate: the page takes them from here
  static constexpr int kOutputCount = 5;

  /// Elements of `PollBuffer`.
  static constexpr std::size_t kPolledOutputs = 0;
  static constexpr std::size_t kPolledSafeStates = 1;
  static constexpr std::size_t kPolledFlags = 3;

  CobinFixture() : PageFixture("Cobin") {
    module[kIdentity] = 0x0203;
    module[kSafeTime] = 50;
    module[40006] = 0x0101;
    module[kStoredCommunication] = 0x0101;
    OpenPage();
  }

  void SetRelease(int release) { module[kIdentity] = static_cast<std::uint16_t>(0x0200 | release); }
  void Set(int number, int word) { module[number] = static_cast<std::uint16_t>(word); }

  void SetPolled(std::size_t element, int word) {
    State().PollBuffer.at(element) = state::Word(static_cast<unsigned>(word));
  }
  /// What the session's clicks brought over the line: all but its polls.
  std::vector<std::string> Exchanges() { return TakeExchanges(kCobinPoll); }

  /// A session that its reset has ended: the one state without a session in which outputs and safe states take a click.
  /// Forgets what that brought over the line.
  void ResetASession() {
    StartSession();
    Click("ResetCobin");
    ASSERT_NE(BoxInFront(), nullptr);
    AnswerOk();
    ASSERT_FALSE(InSession());
    module.ForgetLog();
    ports.ForgetAttempts();
  }

  /// Outputs count from 0 here, their controls from 1.
  static std::string Out(int output) { return "OutCobin" + std::to_string(output + 1); }
  static std::string Safe(int output) { return "SafeCobin" + std::to_string(output + 1); }
};

}  // namespace tarvo::test
