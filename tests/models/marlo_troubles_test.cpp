// Several gestures at once on the Marlo page, and a line that goes in the middle of one.

#include "support/marlo_fixture.h"

namespace tarvo::test {
namespace {

constexpr const char* kGestures[] = {"buttOUTMarlo(0)", "shDamage(0)",   "shDefault(3)",
                                     "shOpenedMask(2)", "buttWEEPMarlo", "buttStartMarlo"};

class MarloTroubles : public MarloFixture, public testing::WithParamInterface<const char*> {
 protected:
  /// Lets the handlers of all gestures end; answers what they ask.
  void RunOut() {
    const auto idle = [this] { return program.GetScreen().Idle(); };
    ASSERT_TRUE(RunUntil([&] { return idle() || BoxInFront() != nullptr; }));
    while (BoxInFront() != nullptr) {
      AnswerOk();
      ASSERT_TRUE(RunUntil([&] { return idle() || BoxInFront() != nullptr; }));
    }
  }
  /// A page that can be used as if nothing had been.
  void ExpectFree() {
    if (InSession()) Click("buttStopMarlo");
    EXPECT_TRUE(Enabled("buttOUTMarlo(0)"));
    EXPECT_TRUE(Enabled("buttWEEPMarlo"));
    ExpectOffline();
  }
};

INSTANTIATE_TEST_SUITE_P(Gestures, MarloTroubles, testing::ValuesIn(kGestures), [](const auto& given) {
  const std::string name = given.param;
  return name.substr(0, name.find('('));
});

TEST_P(MarloTroubles, TearNoWordWhenAnotherGestureComesMeanwhile) {
  for (const char* other : kGestures) {
    for (const int after : {0, 10, 30, 60, 250, 700}) {
      SCOPED_TRACE(std::string(other) + " after " + std::to_string(after) + " ms");
      Set(kOutputs, 0x03F0);
      Set(kDamage, 0x03F1);
      Set(kDefaults, 0x03F1);
      Set(kOpenedMask, 0x03F8);
      ClickAndGoOn(GetParam());
      Run(core::milliseconds(after));
      program.GetScreen().Click(At(other));  // may well be refused
      RunOut();
      EXPECT_EQ(module[kOutputs] & ~0x0001, 0x03F0);
      EXPECT_EQ(module[kDamage] & ~0x0001, 0x03F0);
      EXPECT_EQ(module[kDefaults] & ~0x0008, 0x03F1);
      EXPECT_EQ(module[kOpenedMask] & ~0x0004, 0x03F8);
      ExpectFree();
    }
  }
}

TEST_P(MarloTroubles, LeaveThePageFreeWhenThePortVanishesMeanwhile) {
  for (int after = 0; after < 1600; after += 37) {
    SCOPED_TRACE(after);
    line.PlugIn();
    const auto run = ClickAndGoOn(GetParam());
    Run(core::milliseconds(after));
    if (run->Done()) break;
    line.Lose();
    RunOut();
    ExpectFree();
  }
}

TEST_P(MarloTroubles, LeaveThePageFreeWhenThePortDoesNotOpen) {
  ports.SetFault(1, core::kPermissionDenied);
  Click(GetParam());
  RunOut();
  EXPECT_FALSE(InSession());
  ExpectFree();
}

}  // namespace
}  // namespace tarvo::test
