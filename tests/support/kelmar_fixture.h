#pragma once

#include <array>
#include <string>
#include <vector>

#include "support/plc_page_fixture.h"

namespace tarvo::test {

/// The page `Kelmar` with its module on COM1: firmware release 1, 9600,n,8,1, address 1, spans 10000, all else 0.
class KelmarFixture : public PlcPageFixture {
 protected:
  static constexpr int kType1 = 40004;
  static constexpr int kFilter1 = 40008;
  static constexpr int kStatus = 40012;
  static constexpr int kValue1 = 40013;
  static constexpr int kSpan1 = 40025;

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

  KelmarFixture() : PlcPageFixture(KelmarPage()) {
    for (int input = 0; input < kInputs; ++input) Set(kSpan1 + input, 10000);
  }

  static std::string TypeList(int input) { return Member("InputTypeKelmar", input); }
  static std::string Filter(int input) { return Member("FilterKelmar", input); }
  static std::string Value(int input) { return Member("ValueKelmar", input); }
  static std::string Lamp(int element) { return Member("OverflowKelmar", element); }
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
