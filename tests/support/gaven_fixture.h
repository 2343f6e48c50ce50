#pragma once

#include <array>
#include <string>
#include <vector>

#include "support/page_fixture.h"

namespace tarvo::test {

/// The poll that a session goes on with.
inline constexpr char kGavenPoll[] = "reads 40013 x12";
inline constexpr char kNotAGaven[] = "ERROR! Module is not Gaven or communication failed";

/// The page `Gaven` with its module on COM1: firmware release 2, 9600,n,8,1, address 1, all else 0.
class GavenFixture : public PageFixture {
 protected:
  static constexpr int kCommunication = 40002;
  static constexpr int kFlags = 40003;
  static constexpr int kFilter1 = 40004;
  static constexpr int kFullScale1 = 40008;
  static constexpr int kStartScale1 = 40012;
  static constexpr int kStatus = 40016;
  static constexpr int kReset = 40016;
  static constexpr int kScaled1 = 40017;
  static constexpr int kRaw1 = 40021;
  static constexpr int kStoredCommunication = 40066;
  static constexpr int kInputs = 4;

  /// Which element of `ValueGaven` shows what of an input.
  struct Row {
    int start;
    int full;
    int scaled;
    int raw;
  };
  static constexpr std::array<Row, kInputs> kRows = {{{0, 1, 2, 3}, {6, 7, 5, 4}, {10, 11, 9, 8}, {14, 15, 13, 12}}};
  static constexpr int kValues = 16;
  static constexpr int kLamps = 8;

  GavenFixture() : PageFixture("Gaven") {
    SetRelease(2);
    module[kCommunication] = module[kStoredCommunication] = 0x0101;
    OpenPage();
  }

  void SetRelease(int release) { module[kIdentity] = static_cast<std::uint16_t>(0x0700 | release); }
  /// Any value that fits 16 bits with or without sign.
  void Set(int number, int value) { module[number] = static_cast<std::uint16_t>(value); }

  static std::string Value(int element) { return Member("ValueGaven", element); }
  static std::string Lamp(int element) { return Member("OverflowGaven", element); }
  static std::string Bar(int input) { return Member("BargGaven", input); }
  int FillColor(int input) const { return Number(Bar(input), "FillColor"); }

  /// The elements of `OverflowGaven` that are lit; the others must be dark.
  std::vector<int> LitLamps() const {
    std::vector<int> lit;
    for (int i = 0; i < kLamps; ++i) {
      if (BackColor(Lamp(i)) == 255) {
        lit.push_back(i);
      } else {
        EXPECT_EQ(BackColor(Lamp(i)), 64) << i;
      }
    }
    return lit;
  }

  /// What the session's gestures brought over the line: all but its polls.
  std::vector<std::string> Exchanges() { return TakeExchanges(kGavenPoll); }
};

}  // namespace tarvo::test
