#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "support/jorun_fixture.h"

namespace tarvo::test {

inline constexpr char kDialog[] = "dlgCalForm";
inline constexpr char kLimited[] = "Warning: m or q limited to maximum value.";
inline constexpr char kNotGreater[] = "Invalid fields: X2 <=  X1 ";
inline constexpr char kInvalidFields[] = "Invalid Fields";
inline constexpr char kInvalidSet[] = "Invalid values m,q";

/// The calibration dialog over the Jorun page, for input 1 unless told.
class CalibrationFixture : public JorunFixture {
 protected:
  static constexpr core::milliseconds kFillsItself{1000};
  /// What four writes or two reads take at most, and some more.
  static constexpr core::milliseconds kExchanges{200};

  static std::string Of(std::string_view control) { return std::string(kDialog) + "." + std::string(control); }

  /// Opens the dialog and forgets what that read.
  void Open(int input = 0) {
    input_ = input;
    Click(Cal(input));
    ASSERT_EQ(WindowInFront(), kDialog);
    module.ForgetLog();
    line.ForgetCounts();
  }
  /// The dialog as it is once it has filled itself.
  void OpenFilled(int input = 0) {
    Open(input);
    Run(kFillsItself + kExchanges);
    ASSERT_TRUE(Enabled(Of("buttRead(0)")));
    module.ForgetLog();
  }
  /// ... and once both points were read.
  void OpenWithReads(int low, int high, int input = 0) {
    OpenFilled(input);
    ReadPoint(0, low);
    ReadPoint(1, high);
    ASSERT_TRUE(Enabled(Of("buttCalibra")));
    module.ForgetLog();
  }
  /// Puts a signal on the input and presses a read button.
  void ReadPoint(int index, int value) {
    Set(kValue1 + input_, value);
    Click(Of(Member("buttRead", index)));
  }
  void Want(std::string_view low, std::string_view high) {
    Type(Of("tbValueToSet(0)"), low);
    Type(Of("tbValueToSet(1)"), high);
  }

  std::string Field(std::string_view name) const { return Text(Of(name)); }
  std::string Status() const { return Text(Of("StatusBar1(1)")); }
  bool PortAtRest() const { return !line.IsOpen(); }

  /// What the dialog lets the user press: read low, read high, calculate.
  void ExpectSteps(bool low, bool high, bool calculate) const {
    EXPECT_EQ(Enabled(Of("buttRead(0)")), low);
    EXPECT_EQ(Enabled(Of("tbValueToSet(0)")), low);
    EXPECT_EQ(Enabled(Of("buttRead(1)")), high);
    EXPECT_EQ(Enabled(Of("tbValueToSet(1)")), high);
    EXPECT_EQ(Enabled(Of("buttCalibra")), calculate);
  }
  /// Zero live, span live, then their stored copies.
  std::vector<std::string> Writes(int span, int zero) const {
    return {Writing(kZero1 + input_, zero), Writing(kSpan1 + input_, span), Writing(kStoredZero1 + input_, zero),
            Writing(kStoredSpan1 + input_, span)};
  }
  /// A box that the dialog shows, and that leaves it open.
  void ExpectBox(std::string_view text) {
    EXPECT_THAT(BoxInFront(), IsBox(std::string(text), view::Icon::kCritical));
    AnswerOk();
    EXPECT_EQ(WindowInFront(), kDialog);
    EXPECT_FALSE(Hourglass());
  }

 private:
  int input_ = 0;
};

}  // namespace tarvo::test
