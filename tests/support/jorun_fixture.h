#pragma once

#include <string>
#include <vector>

#include "support/input_page_fixture.h"
#include "support/thermocouple_inputs.h"

namespace tarvo::test {

/// The page `Jorun` with its module on COM1: firmware release 3, 9600,n,8,1, address 1, spans 10000, all else 0.
class JorunFixture : public InputPageFixture, protected ThermocoupleInputs {
 protected:
  static constexpr int kStoredZero1 = 40085;
  static constexpr int kStoredSpan1 = 40089;

  JorunFixture() : InputPageFixture(kJorun) {
    for (int input = 0; input < kInputs; ++input) module[kSpan1 + input] = module[kStoredSpan1 + input] = 10000;
  }

  static std::string TypeList(int input) { return Member("cbInputTypeJorun", input); }
  static std::string Filter(int input) { return Member("cbFilterJorun", input); }
  static std::string Value(int input) { return Member("ValueJorun", input); }
  static std::string Cal(int input) { return Member("buttCal", input); }

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
};

}  // namespace tarvo::test
