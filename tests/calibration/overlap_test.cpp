// What comes while the calibration dialog is still at work.

#include "calibration/calibration_fixture.h"

namespace tarvo::test {
namespace {

using testing::Contains;
using testing::IsEmpty;
using testing::Not;

class CalibrationOverlap : public CalibrationFixture {
 protected:
  /// A click on what may be locked meanwhile.
  void TryClick(std::string_view name) { (void)program.GetScreen().Click(At(Of(name))); }
  void AwaitRest() {
    Run(core::milliseconds(600));
    EXPECT_TRUE(PortAtRest());
    EXPECT_FALSE(Hourglass());
    EXPECT_EQ(WindowInFront(), kDialog);
  }
};

TEST_F(CalibrationOverlap, OfTwoReadsLeavesTheValue) {
  OpenFilled();
  Set(kValue1, 77);
  TryClick("buttRead(0)");
  TryClick("buttRead(0)");
  AwaitRest();
  EXPECT_EQ(Field("tbActualValue(0)"), "77");
  EXPECT_EQ(Status(), "Try to Read value");
}

TEST_F(CalibrationOverlap, OfSetAndReadLosesNothing) {
  OpenFilled();
  Set(kValue1, 77);
  TryClick("buttSet");
  TryClick("buttRead(0)");
  AwaitRest();
  EXPECT_THAT(Status(), Not(testing::HasSubstr("Unable")));
}

TEST_F(CalibrationOverlap, OfSetAndTheFirstTickFillsTheFields) {
  Open();
  Type(Of("tbSpan"), "10100");
  Type(Of("tbZero"), "1");
  Run(core::milliseconds(990));
  TryClick("buttSet");
  Run(kFillsItself);
  AwaitRest();
  EXPECT_EQ(module[kStoredSpan1], 10100);
  EXPECT_EQ(Field("tbSpan"), "10100");
  ExpectSteps(true, false, false);
}

TEST_F(CalibrationOverlap, OfTwoSetsLeavesAllFourRegisters) {
  OpenFilled();
  Type(Of("tbSpan"), "10100");
  Type(Of("tbZero"), "1");
  TryClick("buttSet");
  TryClick("buttSet");
  AwaitRest();
  EXPECT_EQ(Status(), "Try to write values");
  EXPECT_EQ(module[kSpan1], 10100);
  EXPECT_EQ(module[kStoredSpan1], 10100);
}

TEST_F(CalibrationOverlap, OfSetAndOkWritesAllFourOrTellsIt) {
  OpenFilled();
  Type(Of("tbSpan"), "10100");
  Type(Of("tbZero"), "1");
  TryClick("buttSet");
  ASSERT_TRUE(RunUntil([this] { return module.Log().size() == 1; }));
  TryClick("OKButton");
  Run(std::chrono::seconds(2));
  EXPECT_EQ(module[kZero1], 1);
  EXPECT_EQ(module[kSpan1], 10100);
  EXPECT_EQ(module[kStoredZero1], 1);
  EXPECT_EQ(module[kStoredSpan1], 10100);
  EXPECT_TRUE(PortAtRest());
  EXPECT_FALSE(Hourglass());
}

}  // namespace
}  // namespace tarvo::test
