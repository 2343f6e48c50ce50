#pragma once

#include <string>
#include <vector>

#include "support/plc_page_fixture.h"
#include "support/thermocouple_inputs.h"

namespace tarvo::test {

/// The page `Kelmar` with its module on COM1: firmware release 1, 9600,n,8,1, address 1, spans 10000, all else 0.
class KelmarFixture : public PlcPageFixture, protected ThermocoupleInputs {
 protected:
  KelmarFixture() : PlcPageFixture(kKelmar) {
    for (int input = 0; input < kInputs; ++input) Set(kSpan1 + input, 10000);
  }

  static std::string TypeList(int input) { return Member("InputTypeKelmar", input); }
  static std::string Filter(int input) { return Member("FilterKelmar", input); }
  static std::string Value(int input) { return Member("ValueKelmar", input); }
  static std::string Cal(int input) { return Member("buttCal", input); }

  /// All that `EnableInputs` holds.
  static std::vector<std::string> Settings() {
    std::vector<std::string> names = {"CheckKelmarBitOrder", "ResetKelmar", "WEEPKelmar"};
    for (int box = 0; box < kBoxes; ++box) names.push_back(Member("CheckKelmar", box));
    for (int input = 0; input < kInputs; ++input) {
      names.insert(names.end(), {TypeList(input), Filter(input), Cal(input)});
    }
    return names;
  }
  void ExpectSettingsEnabled(bool enabled) const {
    for (const std::string& name : Settings()) EXPECT_EQ(Enabled(name), enabled) << name;
  }
};

}  // namespace tarvo::test
