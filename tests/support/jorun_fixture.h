#pragma once

#include <array>
#include <string>
#include <vector>

#include "support/page_fixture.h"

namespace tarvo::test {

/// The poll that a session goes on with.
inline constexpr char kJorunPoll[] = "reads 40012 x5";
inline constexpr char kNotAJorun[] = "ERROR! Module is not Jorun or communication failed";

/// The page `Jorun` with its module on COM1: firmware release 3, 9600,n,8,1, address 1, spans 10000, all else 0.
class JorunFixture : public PageFixture {
 protected:
  static constexpr int kCommunication = 40002;
  static constexpr int kFlags = 40003;
  static constexpr int kType1 = 40004;
  static constexpr int kFilter1 = 40008;
  static constexpr int kStatus = 40012;
  static constexpr int kReset = 40012;
  static constexpr int kValue1 = 40013;
  static constexpr int kZero1 = 40021;
  static constexpr int kSpan1 = 40025;
  static constexpr int kStoredCommunication = 40066;
  static constexpr int kStoredZero1 = 40085;
  static constexpr int kStoredSpan1 = 40089;
  static constexpr int kInputs = 4;
  static constexpr int kLamps = 8;

  static constexpr int kNegativeColour = 255;
  static constexpr int kPositiveColour = 0xFF8080;

  /// A row of the lists of input types; its place is the register's value.
  struct TypeRow {
    const char* text;
    int fullScale;
  };
  static constexpr std::array<TypeRow, 9> kTypes = {{{"mV (-80 .. +80)", 16000},
                                                     {"TC-J (-200.0 .. 1000.0 °C)", 10000},
                                                     {"TC-K (-250.0 .. 1200.0 °C)", 12000},
                                                     {"TC-R (0 .. 1750.0 °C)", 17500},
                                                     {"TC-S (0 .. 1750.0 °C)", 17500},
                                                     {"TC-T (-200.0 .. 400.0 °C)", 4000},
                                                     {"TC-B (0 .. 1800.0 °C)", 18000},
                                                     {"TC-E (-200.0 .. 800.0 °C)", 8000},
                                                     {"TC-N (-200.0 .. 1300.0 °C)", 13000}}};

  JorunFixture() : PageFixture("Jorun") {
    SetRelease(3);
    module[kCommunication] = module[kStoredCommunication] = 0x0101;
    for (int input = 0; input < kInputs; ++input) module[kSpan1 + input] = module[kStoredSpan1 + input] = 10000;
    OpenPage();
  }

  void SetRelease(int release) { module[kIdentity] = static_cast<std::uint16_t>(0x0600 | release); }
  /// Any value that fits 16 bits with or without sign.
  void Set(int number, int value) { module[number] = static_cast<std::uint16_t>(value); }

  static std::string TypeList(int input) { return Member("cbInputTypeJorun", input); }
  static std::string Filter(int input) { return Member("cbFilterJorun", input); }
  static std::string Value(int input) { return Member("ValueJorun", input); }
  static std::string Lamp(int element) { return Member("OverflowJorun", element); }
  static std::string Bar(int input) { return Member("BargJorun", input); }
  static std::string Cal(int input) { return Member("buttCal", input); }
  int FillColor(int input) const { return Number(Bar(input), "FillColor"); }

  /// What the page locks while a session runs, but for the kinds of parity.
  static std::vector<std::string> Settings() {
    std::vector<std::string> names = {"CheckJorun(0)",   "CheckJorun(1)", "CheckJorun(2)", "cbBaudJorun",
                                      "labAddressJorun", "buttWEEPJorun", "buttResetJorun"};
    for (int input = 0; input < kInputs; ++input) {
      names.insert(names.end(), {TypeList(input), Filter(input), Cal(input)});
    }
    return names;
  }
  void ExpectSettingsEnabled(bool enabled) const {
    for (const std::string& name : Settings()) EXPECT_EQ(Enabled(name), enabled) << name;
  }

  void ExpectFiveRates() const {
    EXPECT_THAT(List("cbBaudJorun"), testing::ElementsAre("4800", "9600", "19200", "38400", "57600"));
    EXPECT_THAT(ItemData("cbBaudJorun"), testing::ElementsAre(0, 1, 2, 3, 4));
  }
  void ExpectSevenRates() const {
    EXPECT_THAT(List("cbBaudJorun"), testing::ElementsAre("1200", "2400", "4800", "9600", "19200", "38400", "57600"));
    EXPECT_THAT(ItemData("cbBaudJorun"), testing::ElementsAre(6, 7, 0, 1, 2, 3, 4));
  }

  /// What went over the line, the polls of a session left out.
  std::vector<std::string> Exchanges() { return TakeExchanges(kJorunPoll); }
};

}  // namespace tarvo::test
