#include "support/allocation_counter.h"
#include "support/ferrun_fixture.h"

#if TARVO_COUNTS_ALLOCATIONS

namespace tarvo::test {
namespace {

class FerrunSteadyPolling : public FerrunFixture {};

TEST_F(FerrunSteadyPolling, AllocatesNothingWhileEverythingChanges) {
  module.BeforeRead = [this](int, int) {
    Set(kFlags, module[kFlags] + 29);
    Set(kStatus, ~module[kStatus]);
    for (const int reg : {kOutput, kUserValue, kMeasured}) Set(reg, module[reg] + 997);
  };
  module.SetLogging(false);
  StartSession();
  Run(std::chrono::seconds(5));
  const std::size_t before = Allocations();
  const int requests = module.Requests();
  Run(std::chrono::minutes(1));
  EXPECT_EQ(Allocations(), before);
  EXPECT_EQ(module.Requests(), requests + 60 * 20);
}

}  // namespace
}  // namespace tarvo::test

#endif
