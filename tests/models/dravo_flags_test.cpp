// The check boxes of the Dravo page: what a click does beside the flags, and what a commit makes of it.

#include "support/dravo_fixture.h"
#include "support/flag_boxes.h"

namespace tarvo::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class DravoFlag : public DravoFixture, public testing::WithParamInterface<FlagBox> {
 protected:
  const char* Box() const { return GetParam().box; }
  int Mask() const { return GetParam().mask; }
};

INSTANTIATE_TEST_SUITE_P(Boxes, DravoFlag, testing::ValuesIn(kDravoFlags),
                         [](const auto& given) { return given.param.box; });

TEST_P(DravoFlag, ClickedInTheMiddleOfAPollLosesNothing) {
  StartSession();
  const History message(At("MessageDravo"), "Caption");
  RunIntoAPoll();
  Set(kUserValue, 999);  // too late for this poll
  module.ForgetLog();
  Click(Box());
  EXPECT_THAT(module.TakeLog(), ElementsAre("reads 40010", Writing(kFlags, Mask())));
  Run(std::chrono::seconds(1));
  EXPECT_TRUE(Checked(Box()));
  EXPECT_THAT(message.Entries(), IsEmpty());
  EXPECT_EQ(Text("InputTechDravo"), "999");
}

TEST_P(DravoFlag, IsCommittedFromTheViewByItsMask) {
  Click(Box());
  Click("WEEPDravo");
  AnswerOk();
  EXPECT_THAT(module.TakeLog(), testing::Contains(Writing(40074, Mask())));
}

}  // namespace
}  // namespace tarvo::test
