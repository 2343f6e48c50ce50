// The flags of the Cobin page, 40005: what they leave alone.

#include "support/cobin_fixture.h"
#include "support/flag_boxes.h"

namespace tarvo::test {
namespace {

using testing::ElementsAre;

/// A check box of 40005, one case each.
class CobinFlag : public CobinFixture, public testing::WithParamInterface<FlagBox> {};

INSTANTIATE_TEST_SUITE_P(Boxes, CobinFlag, testing::ValuesIn(kCobinFlags),
                         [](const auto& given) { return given.param.box; });

TEST_P(CobinFlag, LeavesSafeStatesAndOutputsAlone) {
  Set(kOutputs, 0x0A);
  Set(kSafeStates, 0x15);
  StartSession();
  Click(GetParam().box);
  Click(GetParam().box);
  EXPECT_EQ(module[kOutputs], 0x0A);
  EXPECT_EQ(module[kSafeStates], 0x15);
}

class CobinFlags : public CobinFixture {};

TEST_F(CobinFlags, SafeStateBoxClearsNeitherThePatternNorTheHighByte) {
  Set(kSafeStates, 0x15);
  Set(kFlags, 0xAB80);
  StartSession();
  Click("CheckCobin1");
  EXPECT_THAT(Exchanges(), ElementsAre("reads 40005", "writes 40005 = 0xAB00"));
  EXPECT_EQ(module[kSafeStates], 0x15);
}

}  // namespace
}  // namespace tarvo::test
