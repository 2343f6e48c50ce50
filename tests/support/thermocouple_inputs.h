#pragma once

#include <array>

namespace tarvo::test {

/// What the modules of four thermocouple inputs have alike.
struct ThermocoupleInputs {
  static constexpr int kType1 = 40004;
  static constexpr int kFilter1 = 40008;
  static constexpr int kStatus = 40012;
  static constexpr int kValue1 = 40013;
  static constexpr int kZero1 = 40021;
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
};

}  // namespace tarvo::test
