#include "desktop/qt_scheduler.h"

#include <unistd.h>

#include <QApplication>
#include <QCheckBox>
#include <QElapsedTimer>
#include <QTest>
#include <array>
#include <memory>

#include "desktop/front.h"
#include "support/desktop_windows.h"

namespace tarvo::test {
namespace {

using core::Call;
using core::milliseconds;
using testing::ElementsAre;

class Pipe {
 public:
  Pipe() { EXPECT_EQ(pipe(ends_.data()), 0); }
  ~Pipe() {
    CloseWriter();
    close(ends_[0]);
  }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;

  int Reader() const { return ends_[0]; }
  void Write(char byte) const { EXPECT_EQ(write(ends_[1], &byte, 1), 1); }
  char Read() const {
    char byte = 0;
    EXPECT_EQ(read(ends_[0], &byte, 1), 1);
    return byte;
  }
  void CloseWriter() {
    if (ends_[1] >= 0) close(ends_[1]);
    ends_[1] = -1;
  }

 private:
  std::array<int, 2> ends_{-1, -1};
};

class QtLoop : public testing::Test {
 protected:
  bool RunUntil(const std::function<bool()>& done) { return QTest::qWaitFor(done, 3000); }
  std::function<void()> Note(std::string what) {
    return [this, what] { written.push_back(what); };
  }

  desktop::QtScheduler scheduler;
  std::vector<std::string> written;
};

TEST_F(QtLoop, PostedCallsRunInOrderAndNotAtOnce) {
  Call first(scheduler, Note("first"));
  Call second(scheduler, Note("second"));
  first.Post();
  second.Post();
  EXPECT_TRUE(written.empty());
  EXPECT_TRUE(RunUntil([&] { return written.size() == 2; }));
  EXPECT_THAT(written, ElementsAre("first", "second"));
}

TEST_F(QtLoop, TimersRunByTheirTimeNotByTheirOrder) {
  Call late(scheduler, Note("late"));
  Call early(scheduler, Note("early"));
  late.After(milliseconds(40));
  early.After(milliseconds(10));
  EXPECT_TRUE(RunUntil([&] { return written.size() == 2; }));
  EXPECT_THAT(written, ElementsAre("early", "late"));
}

TEST_F(QtLoop, ATimerNeverComesEarly) {
  const core::TimePoint due = scheduler.Now() + milliseconds(15);
  core::TimePoint ran;
  Call call(scheduler, [&] { ran = scheduler.Now(); });
  call.At(due);
  EXPECT_TRUE(RunUntil([&] { return ran != core::TimePoint(); }));
  EXPECT_GE(ran, due);
}

TEST_F(QtLoop, ACancelledTimerDoesNotRun) {
  Call cancelled(scheduler, Note("cancelled"));
  Call other(scheduler, Note("other"));
  cancelled.After(milliseconds(5));
  other.After(milliseconds(20));
  cancelled.Cancel();
  EXPECT_TRUE(RunUntil([&] { return !written.empty(); }));
  EXPECT_THAT(written, ElementsAre("other"));
}

TEST_F(QtLoop, ACallThatPostsItselfLetsTheWindowRun) {
  std::unique_ptr<Call> busy;
  int turns = 0;
  busy = std::make_unique<Call>(scheduler, [&] {
    ++turns;
    busy->Post();
  });
  busy->Post();
  bool timerRan = false;
  QTimer::singleShot(20, [&] { timerRan = true; });
  EXPECT_TRUE(RunUntil([&] { return timerRan; }));
  EXPECT_GT(turns, 1);
}

TEST_F(QtLoop, ADescriptorThatHasBytesIsTold) {
  const Pipe pipe;
  const core::DescriptorWatch watch(scheduler, pipe.Reader(), [&](core::DescriptorEvents events) {
    EXPECT_TRUE(events.readable);
    EXPECT_FALSE(events.lost);
    written.push_back(std::string(1, pipe.Read()));
  });
  pipe.Write('a');
  pipe.Write('b');
  EXPECT_TRUE(RunUntil([&] { return written.size() == 2; }));
  EXPECT_THAT(written, ElementsAre("a", "b"));
}

TEST_F(QtLoop, AWatchThatEndedIsNotTold) {
  const Pipe pipe;
  auto watch = std::make_unique<core::DescriptorWatch>(scheduler, pipe.Reader(),
                                                       [&](core::DescriptorEvents) { written.push_back("told"); });
  pipe.Write('a');
  watch.reset();
  QTest::qWait(30);
  EXPECT_TRUE(written.empty());
}

TEST_F(QtLoop, OneWatchMayEndAnotherAndBeReplacedInItsOwnTurn) {
  const Pipe first;
  const Pipe second;
  std::unique_ptr<core::DescriptorWatch> other;
  std::unique_ptr<core::DescriptorWatch> next;
  const core::DescriptorWatch watch(scheduler, first.Reader(), [&](core::DescriptorEvents) {
    first.Read();
    written.push_back("first");
    other.reset();
    next = std::make_unique<core::DescriptorWatch>(scheduler, second.Reader(), [&](core::DescriptorEvents) {
      second.Read();
      written.push_back("next");
    });
  });
  other = std::make_unique<core::DescriptorWatch>(scheduler, second.Reader(),
                                                  [&](core::DescriptorEvents) { written.push_back("other"); });
  first.Write('a');
  second.Write('b');
  EXPECT_TRUE(RunUntil([&] { return written.size() == 2; }));
  EXPECT_THAT(written, ElementsAre("first", "next"));
}

TEST_F(QtLoop, ALostDescriptorIsToldAndDoesNotSpin) {
  Pipe pipe;
  int lost = 0;
  const core::DescriptorWatch watch(scheduler, pipe.Reader(),
                                    [&](core::DescriptorEvents events) { lost += events.lost ? 1 : 0; });
  pipe.CloseWriter();
  EXPECT_TRUE(RunUntil([&] { return lost > 0; }));
  lost = 0;
  QTest::qWait(50);
  EXPECT_EQ(lost, 0);
}

TEST_F(QtLoop, AfterAHardWaitBytesComeBeforeTimeOutsAndAnOverdueTimerRunsOnce) {
  const Pipe pipe;
  const core::DescriptorWatch watch(scheduler, pipe.Reader(), [&](core::DescriptorEvents) {
    pipe.Read();
    written.push_back("bytes");
  });
  Call timeOut(scheduler, Note("time-out"));
  timeOut.After(milliseconds(5));
  Call waits(scheduler, [&] {
    pipe.Write('a');
    scheduler.Block(milliseconds(30));
    written.push_back("waited");
  });
  waits.Post();
  EXPECT_TRUE(RunUntil([&] { return written.size() >= 3; }));
  QTest::qWait(30);
  EXPECT_THAT(written, ElementsAre("waited", "bytes", "time-out"));
}

TEST_F(QtLoop, AGestureThatWaitsHardLetsBytesComeBeforeTimeOuts) {
  const Pipe pipe;
  const core::DescriptorWatch watch(scheduler, pipe.Reader(), [&](core::DescriptorEvents) {
    pipe.Read();
    written.push_back("bytes");
  });
  Call timeOut(scheduler, Note("time-out"));
  timeOut.After(milliseconds(5));
  pipe.Write('a');
  scheduler.Block(milliseconds(30));
  EXPECT_TRUE(written.empty());
  EXPECT_TRUE(RunUntil([&] { return written.size() == 2; }));
  EXPECT_THAT(written, ElementsAre("bytes", "time-out"));
}

class LiveWindow : public QtLoop {
 protected:
  LiveWindow() {
    screen.SetMain(&main);
    front.StageChanged();
    page.Spawn(Show());
  }
  core::Task<> Show() { co_await screen.ShowPage(&page); }
  core::Task<> WaitAWhile() {
    co_await scheduler.Sleep(milliseconds(100));
    ended = true;
  }
  template <class Widget = QWidget>
  Widget* Find(const char* name) {
    return front.Window()->template findChild<Widget*>(name);
  }

  view::Screen screen{scheduler};
  TestPage page{screen};
  TestMain main{screen, page};
  desktop::Front front{screen, [this] { return main.ended; }};
  bool ended = false;
};

TEST_F(LiveWindow, TakesGesturesWhileAHandlerWaits) {
  page.Start.OnClick = [this] { return WaitAWhile(); };
  ASSERT_TRUE(RunUntil([&] { return Find("Start") != nullptr; }));
  QTest::mouseClick(Find("Start"), Qt::LeftButton);
  QTest::mouseClick(Find("Fast"), Qt::LeftButton, Qt::NoModifier, QPoint(8, Find("Fast")->height() / 2));
  EXPECT_TRUE(RunUntil([&] { return Find<QCheckBox>("Fast")->isChecked(); }));
  EXPECT_FALSE(ended);
  EXPECT_TRUE(RunUntil([&] { return ended; }));
}

TEST_F(LiveWindow, PaintsWhatChangedBeforeAHardWait) {
  ASSERT_TRUE(RunUntil([&] { return Find("Over(0)") != nullptr; }));
  ASSERT_TRUE(QTest::qWaitForWindowExposed(front.Window()));
  QTest::qWait(50);
  class Counter : public QObject {
   public:
    int paints = 0;

   protected:
    bool eventFilter(QObject* /*watched*/, QEvent* event) override {
      if (event->type() == QEvent::Paint) ++paints;
      return false;
    }
  } counter;
  Find("Over(0)")->installEventFilter(&counter);
  page.Over[0].BackColor = view::kRed;
  scheduler.Block(milliseconds(1));
  EXPECT_EQ(counter.paints, 1);
}

}  // namespace
}  // namespace tarvo::test
