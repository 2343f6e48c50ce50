#include "support/allocation_counter.h"
#include "support/belk_fixture.h"

#if TARVO_COUNTS_ALLOCATIONS

namespace tarvo::test {
namespace {

class SteadyPolling : public BelkFixture {
 protected:
  /// Calls of operator new in so much time of polling, once all that is made on first use is there.
  std::size_t AllocationsIn(core::Duration duration) {
    Run(std::chrono::seconds(5));
    const std::size_t before = Allocations();
    const int requests = module.Requests();
    Run(duration);
    requests_ = module.Requests() - requests;
    return Allocations() - before;
  }
  void StartQuietSession() {
    module.SetLogging(false);
    StartSession();
  }

  int requests_ = 0;
};

TEST_F(SteadyPolling, IsSeenByTheCounterWhenItAllocates) {
  StartQuietSession();
  module.SetLogging(true);
  EXPECT_GT(AllocationsIn(std::chrono::seconds(1)), 0U);
}

TEST_F(SteadyPolling, AllocatesNothingWhileNothingChanges) {
  StartQuietSession();
  EXPECT_EQ(AllocationsIn(std::chrono::seconds(60)), 0U);
  EXPECT_EQ(requests_, 60 * 20);
}

/// A front that only counts what it is told.
class CountingFront final : public view::Watcher {
 public:
  void ControlsChanged(std::span<view::Control* const> changed) override { controls += changed.size(); }
  void StageChanged() override {}
  std::size_t controls = 0;
};

TEST_F(SteadyPolling, AllocatesNothingWhileEverythingChanges) {
  module.BeforeRead = [this](int, int) {
    for (int i = 0; i < kInputs; ++i) module[kCounter1 + i] = static_cast<std::uint16_t>(module[kCounter1 + i] + 997);
    module[kStatus] = static_cast<std::uint16_t>(~module[kStatus]);
    module[kFlags] = static_cast<std::uint16_t>(module[kFlags] + 29);
  };
  CountingFront front;
  const view::Screen::Subscription subscription = program.GetScreen().Subscribe(front);
  StartQuietSession();
  EXPECT_EQ(AllocationsIn(std::chrono::seconds(60)), 0U);
  EXPECT_EQ(requests_, 60 * 20);
  EXPECT_GT(front.controls, 1000U);
}

TEST_F(SteadyPolling, AllocatesNothingWhileTheModuleIsSilent) {
  StartQuietSession();
  module.Always(ModuleFault::Unheard());
  EXPECT_EQ(AllocationsIn(std::chrono::seconds(60)), 0U);
}

}  // namespace
}  // namespace tarvo::test

#endif
