#pragma once

#include <string>
#include <vector>

#include "support/page_fixture.h"

namespace tarvo::test {

inline constexpr char kBelkPoll[] = "reads 40002 x9";
inline constexpr char kNotABelk[] = "ERROR! Module is not Belk or communication failed";

/// The page `Belk` with its module on COM1: firmware release 3, 9600,n,8,1, address 1, filter 10, no flag set.
class BelkFixture : public PageFixture {
 protected:
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

  BelkFixture() : PageFixture("Belk") {
    SetRelease(3);
    module[kFilter] = 10;
    module[kCommunication] = 0x0101;
    OpenPage();
  }

  void SetRelease(int release) { module[kIdentity] = static_cast<std::uint16_t>(0x0100 | release); }

  static std::string Bar(int input) { return "BargBelk" + std::to_string(input + 1); }
  /// What the session's clicks brought over the line: all but its polls.
  std::vector<std::string> Exchanges() { return TakeExchanges(kBelkPoll); }
};

}  // namespace tarvo::test
