#include "platform/poll_loop.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "platform/file_descriptor.h"
#include "support/allocation_counter.h"

namespace tarvo::platform {
namespace {

using core::Call;
using core::DescriptorEvents;
using core::DescriptorWatch;
using core::milliseconds;
using testing::ElementsAre;

/// A way for bytes to come in.
class Pipe {
 public:
  Pipe() {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0) throw std::runtime_error("no pipe can be made");
    in_ = FileDescriptor(ends[0]);
    out_ = FileDescriptor(ends[1]);
  }

  int In() const { return in_.Get(); }
  void Put() const { ASSERT_EQ(write(out_.Get(), "x", 1), 1); }
  void Empty() const {
    char byte = 0;
    while (read(in_.Get(), &byte, 1) == 1) continue;
  }
  void HangUp() { out_ = FileDescriptor(); }

 private:
  FileDescriptor in_;
  FileDescriptor out_;
};

TEST(PollLoop, SleepsUntilATimerIsDue) {
  PollLoop loop;
  bool fired = false;
  Call timer(loop, [&] { fired = true; });
  const core::TimePoint start = loop.Now();
  timer.After(milliseconds(20));
  loop.RunOnce(std::chrono::minutes(1));
  EXPECT_TRUE(fired);
  EXPECT_GE(loop.Now() - start, milliseconds(20));
  EXPECT_LT(loop.Now() - start, std::chrono::seconds(30));
}

TEST(PollLoop, WakesWhenBytesArrive) {
  PollLoop loop;
  Pipe pipe;
  DescriptorEvents told;
  DescriptorWatch watch(loop, pipe.In(), [&](DescriptorEvents events) { told = events; });
  std::thread sender([&] {
    std::this_thread::sleep_for(milliseconds(20));
    pipe.Put();
  });
  const core::TimePoint start = loop.Now();
  loop.RunOnce(std::chrono::minutes(1));
  EXPECT_TRUE(told.readable);
  EXPECT_FALSE(told.lost);
  EXPECT_LT(loop.Now() - start, std::chrono::seconds(30));
  sender.join();
}

TEST(PollLoop, TellsAHangUpAsLost) {
  PollLoop loop;
  Pipe pipe;
  DescriptorEvents told;
  DescriptorWatch watch(loop, pipe.In(), [&](DescriptorEvents events) { told = events; });
  pipe.HangUp();
  loop.RunOnce(milliseconds(0));
  EXPECT_TRUE(told.lost);
}

TEST(PollLoop, DoesNotSleepWhileACallIsPosted) {
  PollLoop loop;
  bool called = false;
  Call call(loop, [&] { called = true; });
  call.Post();
  const core::TimePoint start = loop.Now();
  loop.RunOnce(std::chrono::minutes(1));
  EXPECT_TRUE(called);
  EXPECT_LT(loop.Now() - start, std::chrono::seconds(30));
}

TEST(PollLoop, TakesALimitThatHasGoneByAsNoTime) {
  PollLoop loop;
  Pipe pipe;
  bool told = false;
  DescriptorWatch watch(loop, pipe.In(), [&](DescriptorEvents) { told = true; });
  pipe.Put();
  loop.RunOnce(-milliseconds(1));
  EXPECT_TRUE(told);
}

TEST(PollLoop, TellsDescriptorsBeforeTimersAfterAHardWait) {
  PollLoop loop;
  Pipe pipe;
  std::vector<std::string> order;
  DescriptorWatch watch(loop, pipe.In(), [&](DescriptorEvents) {
    pipe.Empty();
    order.push_back("bytes");
  });
  Call timer(loop, [&] { order.push_back("timer"); });
  Call blocking(loop, [&] {
    pipe.Put();
    loop.Block(milliseconds(10));
    order.push_back("blocked");
  });
  timer.After(milliseconds(5));
  blocking.Post();
  EXPECT_TRUE(loop.RunUntil([&] { return order.size() == 3; }, std::chrono::seconds(10)));
  EXPECT_THAT(order, ElementsAre("blocked", "bytes", "timer"));
}

TEST(PollLoop, FiresAnOverdueTimerOnce) {
  PollLoop loop;
  int fired = 0;
  Call timer(loop, [&] { ++fired; });
  timer.After(milliseconds(1));
  loop.Block(milliseconds(20));
  EXPECT_FALSE(loop.RunUntil([] { return false; }, milliseconds(10)));
  EXPECT_EQ(fired, 1);
}

TEST(PollLoop, RunUntilEndsAtItsLimit) {
  PollLoop loop;
  const core::TimePoint start = loop.Now();
  EXPECT_FALSE(loop.RunUntil([] { return false; }, milliseconds(20)));
  EXPECT_GE(loop.Now() - start, milliseconds(20));
}

TEST(PollLoop, RunUntilRunsNothingWhenItIsDoneAlready) {
  PollLoop loop;
  bool called = false;
  Call call(loop, [&] { called = true; });
  call.Post();
  EXPECT_TRUE(loop.RunUntil([] { return true; }));
  EXPECT_FALSE(called);
}

TEST(PollLoop, AWatchMayEndItself) {
  PollLoop loop;
  Pipe pipe;
  int told = 0;
  std::optional<DescriptorWatch> watch;
  watch.emplace(loop, pipe.In(), [&](DescriptorEvents) {
    ++told;
    watch.reset();
  });
  pipe.Put();
  loop.RunOnce(milliseconds(0));
  loop.RunOnce(milliseconds(0));
  EXPECT_EQ(told, 1);
}

TEST(PollLoop, AWatchThatAnotherReplacedIsNotToldOfOldEvents) {
  PollLoop loop;
  Pipe first;
  Pipe second;
  Pipe quiet;
  bool quietTold = false;
  bool replaced = false;
  std::optional<DescriptorWatch> later;
  DescriptorWatch earlier(loop, first.In(), [&](DescriptorEvents) {
    if (replaced) return;
    replaced = true;
    // At the same address as the one that has something to tell.
    later.emplace(loop, quiet.In(), [&](DescriptorEvents) { quietTold = true; });
  });
  later.emplace(loop, second.In(), [](DescriptorEvents) { FAIL() << "an ended watch was told"; });
  first.Put();
  second.Put();
  loop.RunOnce(milliseconds(0));
  EXPECT_TRUE(replaced);
  EXPECT_FALSE(quietTold);
}

#if TARVO_COUNTS_ALLOCATIONS
TEST(PollLoop, ASteadyTurnAllocatesNothing) {
  PollLoop loop;
  Pipe pipe;
  int bytes = 0;
  int ticks = 0;
  DescriptorWatch watch(loop, pipe.In(), [&](DescriptorEvents) {
    pipe.Empty();
    ++bytes;
  });
  Call timer(loop, [&] {
    ++ticks;
    pipe.Put();
    timer.After(core::microseconds(100));
  });
  timer.Post();
  const auto turns = [&](int count) {
    for (int turn = 0; turn < count; ++turn) loop.RunOnce(milliseconds(100));
  };
  turns(10);
  const std::size_t before = test::Allocations();
  turns(100);
  const std::size_t after = test::Allocations();
  EXPECT_EQ(after - before, 0U);
  EXPECT_GT(bytes, 20);
  EXPECT_GT(ticks, 20);
}
#endif

}  // namespace
}  // namespace tarvo::platform
