// The flags of the Lumet page, 40020: what a click does in a session and out of one.

#include "support/flag_boxes.h"
#include "support/lumet_fixture.h"

namespace tarvo::test {
namespace {

using testing::IsEmpty;

class LumetFlag : public LumetFixture, public testing::WithParamInterface<FlagBox> {
 protected:
  const char* Box() const { return GetParam().box; }
};

INSTANTIATE_TEST_SUITE_P(Boxes, LumetFlag, testing::ValuesIn(kLumetFlags),
                         [](const auto& given) { return given.param.box; });

TEST_P(LumetFlag, WithoutASessionChangesTheBoxAlone) {
  for (std::size_t i = 0; i < 20; ++i) SetPolled(i, 0x4000 + static_cast<int>(i));
  Click(Box());
  EXPECT_TRUE(Checked(Box()));
  Click(Box());
  EXPECT_FALSE(Checked(Box()));
  for (std::size_t i = 0; i < 20; ++i) EXPECT_EQ(Polled(i), 0x4000 + static_cast<int>(i)) << i;
  Run(std::chrono::seconds(1));
  EXPECT_EQ(ports.Attempts(), 0);
  EXPECT_TRUE(TimersRest());
}

TEST_P(LumetFlag, WithoutASessionLeavesTheModuleOfTheLastOne) {
  Set(kFlags, 0xFFFF);
  Visit();
  module.ForgetLog();
  Click(Box());
  EXPECT_FALSE(Checked(Box()));
  Run(std::chrono::seconds(1));
  EXPECT_EQ(module[kFlags], 0xFFFF);
  EXPECT_THAT(module.TakeLog(), IsEmpty());
}

class LumetFlags : public LumetFixture {};

TEST_F(LumetFlags, AutoresetBoxNeverTouchesARegister) {
  for (const bool session : {false, true}) {
    if (session) StartSession();
    Click("CheckLumet3");
    EXPECT_TRUE(Checked("CheckLumet3"));
    Run(std::chrono::seconds(1));
    EXPECT_TRUE(Checked("CheckLumet3"));
    Click("CheckLumet3");
    EXPECT_FALSE(Checked("CheckLumet3"));
    EXPECT_THAT(Exchanges(), IsEmpty());
  }
  EXPECT_EQ(module[kFlags], 0);
}

TEST_F(LumetFlags, ClicksAtTheEndOfASessionLeaveItEnded) {
  StartSession();
  RunIntoAPoll();
  ClickAndGoOn("CheckLumet2");
  Click("StopLumet");
  RunUntilIdle();
  ExpectOffline();
}

}  // namespace
}  // namespace tarvo::test
