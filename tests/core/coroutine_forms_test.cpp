// The forms of coroutine code that this program is written in. GCC 12 miscompiles neighbours of some of them, so each
// is checked for its value and for the instances that it makes and frees.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "core/frame_pool.h"
#include "core/task.h"
#include "core/virtual_scheduler.h"
#include "core/wait_list.h"
#include "support/instance_counter.h"
#include "support/task_runner.h"

namespace tarvo::core {
namespace {

using test::Instance;
using testing::ElementsAre;

/// A value with all that compilers have got wrong: heap memory, and a count of its instances.
struct Message {
  std::string text;
  std::vector<std::string> buttons;
  Instance instance;
};

/// Runs a task to its end in virtual time and checks that nothing of it is left.
class CoroutineForms : public testing::Test {
 protected:
  template <class T>
  T ResultOf(Task<T> task) {
    std::optional<T> result;
    runner_.Start(Keep(std::move(task), result));
    EXPECT_TRUE(scheduler_.RunUntil([&] { return runner_.Idle(); }, std::chrono::minutes(1)));
    EXPECT_THAT(runner_.Faults(), ElementsAre());
    return result ? std::move(*result) : T();
  }

  void TearDown() override {
    EXPECT_TRUE(runner_.Idle());
    EXPECT_EQ(Instance::Alive(), 0);
    EXPECT_EQ(FramePool::InUse(), frames_);
  }

  VirtualScheduler scheduler_;

 private:
  template <class T>
  static Task<> Keep(Task<T> task, std::optional<T>& result) {
    T value = co_await std::move(task);
    result = std::move(value);
  }

  std::size_t frames_ = FramePool::InUse();
  test::TaskRunner runner_;
};

/// Each waits once, so that its frame is really left and come back to.
Task<int> Later(Scheduler& scheduler, int value) {
  co_await scheduler.Sleep(milliseconds(1));
  co_return value;
}

Task<std::string> TextLater(Scheduler& scheduler, std::string text) {
  co_await scheduler.Sleep(milliseconds(1));
  co_return text + " later";
}

Task<std::string> Describe(Scheduler& scheduler, Message message) {
  co_await scheduler.Sleep(milliseconds(1));
  std::string described = message.text;
  for (const std::string& button : message.buttons) described += " [" + button + "]";
  co_return described;
}

Task<std::string> NameTheValueThenAwait(Scheduler& scheduler) {
  Message message;
  message.text = "A text that is too long for the small string's own room";
  message.buttons.emplace_back("Yes");
  message.buttons.emplace_back("No");
  Task<std::string> task = Describe(scheduler, std::move(message));
  std::string described = co_await std::move(task);
  co_return described;
}

TEST_F(CoroutineForms, ANamedValueIsMovedIntoATaskThatIsAwaited) {
  EXPECT_EQ(ResultOf(NameTheValueThenAwait(scheduler_)),
            "A text that is too long for the small string's own room [Yes] [No]");
}

Task<std::string> PassNamedArguments(Scheduler& scheduler) {
  Message message;
  message.text = "text";
  std::string described = co_await Describe(scheduler, std::move(message));
  const std::string own = "own";
  described += co_await TextLater(scheduler, own);
  co_return described;
}

TEST_F(CoroutineForms, ParametersGoByValue) {
  EXPECT_EQ(ResultOf(PassNamedArguments(scheduler_)), "textown later");
}

Task<std::string> AwaitInConditions(Scheduler& scheduler) {
  std::string path;
  if (co_await Later(scheduler, 1) == 1) path += "a";
  if (const int value = co_await Later(scheduler, 2); value == 2) {
    path += "b";
  } else {
    path += "-";
  }
  if (const bool agreed = co_await Later(scheduler, 0) != 0; !agreed) path += "c";
  if (co_await Later(scheduler, 1) == 1 && co_await Later(scheduler, 0) == 1) path += "-";
  if (co_await Later(scheduler, 0) == 1 || co_await Later(scheduler, 1) == 1) path += "d";
  if (co_await TextLater(scheduler, "x") == "x later") path += "e";
  co_return path;
}

TEST_F(CoroutineForms, AnAwaitStandsInACondition) {
  EXPECT_EQ(ResultOf(AwaitInConditions(scheduler_)), "abcde");
}

Task<int> AwaitInLoops(Scheduler& scheduler) {
  int sum = 0;
  for (int i = 0; i < 5; ++i) {
    const Instance each;
    sum += co_await Later(scheduler, i);
    if (i == 3) continue;
  }
  while (co_await Later(scheduler, sum) < 15) {
    const Instance each;
    co_await scheduler.Sleep(milliseconds(1));
    ++sum;
    if (sum == 14) {
      sum += 100;
      break;
    }
  }
  for (const std::string& text : std::vector<std::string>(3, "abc")) {
    sum += co_await Later(scheduler, static_cast<int>(text.size()));
  }
  do {
    ++sum;
  } while (co_await Later(scheduler, sum) < 125);
  co_return sum;
}

TEST_F(CoroutineForms, AnAwaitStandsInEachKindOfLoop) {
  EXPECT_EQ(ResultOf(AwaitInLoops(scheduler_)), 125);
}

Task<int> SwitchOnANamedValue(Scheduler& scheduler) {
  const int kind = co_await Later(scheduler, 2);
  int result = 0;
  switch (kind) {
    case 1:
      result = co_await Later(scheduler, 10);
      break;
    case 2:
      result = co_await Later(scheduler, 20);
      break;
    default:
      break;
  }
  co_return result;
}

TEST_F(CoroutineForms, ASwitchGoesByANamedValue) {
  EXPECT_EQ(ResultOf(SwitchOnANamedValue(scheduler_)), 20);
}

Task<int> ChooseBetween(Scheduler& scheduler, bool first) {
  std::optional<Instance> chosen;
  int result = 0;
  if (first) {
    result = co_await Later(scheduler, 1);
    chosen.emplace();
  } else {
    result = co_await Later(scheduler, 2);
  }
  co_return result;
}

TEST_F(CoroutineForms, AChoiceBetweenTwoAwaitsIsAnIf) {
  EXPECT_EQ(ResultOf(ChooseBetween(scheduler_, true)), 1);
  EXPECT_EQ(ResultOf(ChooseBetween(scheduler_, false)), 2);
}

Task<int> AddTo(Scheduler& scheduler, int base, Instance /*held*/) {
  const int more = co_await Later(scheduler, 1);
  co_return base + more;
}

/// A capturing lambda that gives a task is no coroutine itself.
Task<int> CallHandlers(Scheduler& scheduler) {
  const Instance captured;
  int base = 38;
  base += 2;
  const std::function<Task<int>()> handler = [&scheduler, base, captured] { return AddTo(scheduler, base, captured); };
  const int first = co_await handler();
  Task<int> task = handler();
  const int second = co_await std::move(task);
  co_return first + second;
}

TEST_F(CoroutineForms, ALambdaThatCapturesGivesATaskAndIsNone) {
  EXPECT_EQ(ResultOf(CallHandlers(scheduler_)), 82);
}

Task<int> CallPlainLambda(Scheduler& scheduler) {
  auto addOne = [](Scheduler& given, int value) -> Task<int> {
    const int more = co_await Later(given, 1);
    co_return value + more;
  };
  const int result = co_await addOne(scheduler, 5);
  co_return result;
}

TEST_F(CoroutineForms, ALambdaWithoutCapturesMayBeACoroutine) {
  EXPECT_EQ(ResultOf(CallPlainLambda(scheduler_)), 6);
}

/// Gives a task on, without being a coroutine.
Task<std::string> Forward(Scheduler& scheduler, std::string text) {
  text += "!";
  return TextLater(scheduler, std::move(text));
}

Task<std::string> AwaitForwarded(Scheduler& scheduler) {
  std::string text = co_await Forward(scheduler, "text");
  co_return text;
}

TEST_F(CoroutineForms, AFunctionGivesATaskOn) {
  EXPECT_EQ(ResultOf(AwaitForwarded(scheduler_)), "text! later");
}

/// An operation as the bus has them: an awaiter in the caller's frame with a destructor and a result that owns memory.
class Operation {
 public:
  Operation(Scheduler& scheduler, std::vector<int>& ended, int number)
      : ended_(ended), number_(number), text_("operation "), call_(scheduler, [this] { frame_.resume(); }) {}
  Operation(const Operation&) = delete;
  Operation& operator=(const Operation&) = delete;
  ~Operation() { ended_.push_back(number_); }

  bool await_ready() const noexcept { return number_ == 0; }
  void await_suspend(std::coroutine_handle<> frame) {
    frame_ = frame;
    call_.After(milliseconds(1));
  }
  std::string await_resume() const { return text_ + std::to_string(number_); }

 private:
  std::vector<int>& ended_;
  int number_;
  std::string text_;
  Instance instance_;
  std::coroutine_handle<> frame_;
  Call call_;
};

Operation Operate(Scheduler& scheduler, std::vector<int>& ended, int number) {
  return {scheduler, ended, number};
}

Task<std::string> AwaitOperations(Scheduler& scheduler, std::vector<int>& ended) {
  std::string first = co_await Operate(scheduler, ended, 1);
  EXPECT_THAT(ended, ElementsAre(1));
  const std::string ready = co_await Operate(scheduler, ended, 0);
  EXPECT_THAT(ended, ElementsAre(1, 0));
  if (co_await Operate(scheduler, ended, 2) != "operation 2") co_return "wrong";
  co_await Operate(scheduler, ended, 3);
  for (int i = 4; i < 6; ++i) first += "," + co_await Operate(scheduler, ended, i);
  co_return first + "," + ready;
}

TEST_F(CoroutineForms, AnAwaiterWithADestructorEndsOnceWithItsStatement) {
  std::vector<int> ended;
  EXPECT_EQ(ResultOf(AwaitOperations(scheduler_, ended)), "operation 1,operation 4,operation 5,operation 0");
  EXPECT_THAT(ended, ElementsAre(1, 0, 2, 3, 4, 5));
}

/// Sets a flag for as long as it lives, as the hourglass and the counted pauses do.
class WhileAlive {
 public:
  explicit WhileAlive(int& count) : count_(count) { ++count_; }
  WhileAlive(const WhileAlive&) = delete;
  WhileAlive& operator=(const WhileAlive&) = delete;
  ~WhileAlive() { --count_; }

 private:
  int& count_;
};

Task<std::string> HoldAcrossAwaits(Scheduler& scheduler, int& count) {
  std::string counts;
  {
    const WhileAlive outer(count);
    co_await scheduler.Sleep(milliseconds(1));
    counts += std::to_string(count);
    {
      const WhileAlive inner(count);
      co_await scheduler.Sleep(milliseconds(1));
      counts += std::to_string(count);
    }
    counts += std::to_string(count);
    if (co_await Later(scheduler, 1) == 1) co_return counts;
  }
  co_return "wrong";
}

TEST_F(CoroutineForms, AGuardHoldsAcrossAwaitsAndEndsWithItsBlock) {
  int count = 0;
  EXPECT_EQ(ResultOf(HoldAcrossAwaits(scheduler_, count)), "121");
  EXPECT_EQ(count, 0);
}

Task<int> FailLater(Scheduler& scheduler, Instance /*held*/) {
  const Instance local;
  co_await scheduler.Sleep(milliseconds(1));
  throw std::runtime_error("failed later");
}

Task<std::string> TryAndCatch(Scheduler& scheduler) {
  const Instance whole;
  std::string path;
  try {
    const Instance tried;
    const int value = co_await FailLater(scheduler, Instance());
    path += std::to_string(value);
  } catch (const std::runtime_error& failure) {
    path += failure.what();
    path += " " + std::to_string(Instance::Alive());
  }
  try {
    co_await scheduler.Sleep(milliseconds(1));
    const int value = co_await Later(scheduler, 7);
    path += " " + std::to_string(value);
  } catch (...) {
    path += " wrong";
  }
  // What follows a fault that awaits itself stands behind the handler, where co_await is allowed.
  bool failed = false;
  try {
    co_await FailLater(scheduler, Instance());
  } catch (const std::exception&) {
    failed = true;
  }
  if (failed) path += co_await TextLater(scheduler, " and");
  co_return path;
}

TEST_F(CoroutineForms, ATryHoldsAwaitsAndItsCatchSeesTheirFaults) {
  EXPECT_EQ(ResultOf(TryAndCatch(scheduler_)), "failed later 1 7 and later");
}

Task<std::optional<std::string>> MaybeText(Scheduler& scheduler, bool present) {
  co_await scheduler.Sleep(milliseconds(1));
  std::optional<std::string> text;
  if (present) text = "a path that is long enough to need memory of its own";
  co_return text;
}

Task<std::string> AwaitMaybe(Scheduler& scheduler) {
  const std::optional<std::string> none = co_await MaybeText(scheduler, false);
  std::optional<std::string> some = co_await MaybeText(scheduler, true);
  if (none || !some) co_return "wrong";
  co_return std::move(*some);
}

TEST_F(CoroutineForms, AnOptionalTextTravelsAsAResult) {
  EXPECT_EQ(ResultOf(AwaitMaybe(scheduler_)), "a path that is long enough to need memory of its own");
}

Task<std::unique_ptr<Message>> OwnedMessage(Scheduler& scheduler, std::unique_ptr<Message> message) {
  co_await scheduler.Sleep(milliseconds(1));
  message->text += "!";
  co_return message;
}

Task<std::string> AwaitOwned(Scheduler& scheduler) {
  auto message = std::make_unique<Message>();
  message->text = "owned";
  const std::unique_ptr<Message> back = co_await OwnedMessage(scheduler, std::move(message));
  co_return back->text;
}

TEST_F(CoroutineForms, AMoveOnlyParameterTravelsThroughAFrame) {
  EXPECT_EQ(ResultOf(AwaitOwned(scheduler_)), "owned!");
}

Task<std::string> WaitUntilTold(WaitList& list, const bool& told, std::string name) {
  const Instance held;
  while (!told) co_await list.Wait();
  co_return name + " told";
}

Task<> WakeInSteps(Scheduler& scheduler, WaitList& list, bool& told) {
  co_await scheduler.Sleep(milliseconds(1));
  list.WakeAll();
  co_await scheduler.Sleep(milliseconds(1));
  told = true;
  list.WakeAll();
}

TEST_F(CoroutineForms, AWaitLoopLooksAgainEachTimeItIsWoken) {
  WaitList list;
  bool told = false;
  test::TaskRunner waker;
  waker.Start(WakeInSteps(scheduler_, list, told));
  EXPECT_EQ(ResultOf(WaitUntilTold(list, told, "waiter")), "waiter told");
}

struct Point {
  int x = 0;
  int y = 0;
};

Task<Point> PointLater(Scheduler& scheduler, Point point) {
  co_await scheduler.Sleep(milliseconds(1));
  co_return Point{point.y, point.x};
}

Task<int> AwaitPoint(Scheduler& scheduler) {
  Point point;
  point.x = 3;
  point.y = 4;
  const auto [x, y] = co_await PointLater(scheduler, point);
  co_return 10 * x + y;
}

TEST_F(CoroutineForms, APlainStructIsTakenApartAfterAnAwait) {
  EXPECT_EQ(ResultOf(AwaitPoint(scheduler_)), 43);
}

class Page {
 public:
  explicit Page(Scheduler& scheduler) : scheduler_(scheduler) {}

  Task<int> Sum(int more) {
    const int first = co_await Twice(1);
    value_ += first;
    const int second = co_await Twice(more);
    value_ += second;
    co_return value_;
  }

 private:
  Task<int> Twice(int value) {
    co_await scheduler_.Sleep(milliseconds(1));
    co_return 2 * value;
  }

  Scheduler& scheduler_;
  int value_ = 100;
  Instance instance_;
};

/// As an operation of a page that goes on only when the one before agrees: no other local, the answer named first.
class Door {
 public:
  explicit Door(Scheduler& scheduler) : scheduler_(scheduler) {}

  Task<> Pass(bool open) {
    const bool agreed = co_await Ask(open);
    if (!agreed) co_return;
    ++passed;
    co_await Close();
  }

  int passed = 0;
  int closed = 0;

 private:
  Task<bool> Ask(bool open) {
    co_await scheduler_.Sleep(milliseconds(1));
    co_return open;
  }
  Task<> Close() {
    co_await scheduler_.Sleep(milliseconds(1));
    ++closed;
  }

  Scheduler& scheduler_;
};

TEST_F(CoroutineForms, AnAnswerIsNamedBeforeItIsLookedAt) {
  Door door(scheduler_);
  test::TaskRunner runner;
  runner.Start(door.Pass(true));
  runner.Start(door.Pass(false));
  scheduler_.Run(milliseconds(10));
  EXPECT_EQ(door.passed, 1);
  EXPECT_EQ(door.closed, 1);
}

TEST_F(CoroutineForms, AMemberFunctionMayBeACoroutine) {
  Page page(scheduler_);
  EXPECT_EQ(ResultOf(page.Sum(5)), 112);
}

}  // namespace
}  // namespace tarvo::core
