// A port that vanishes, and comes back.

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "core/sanitizer.h"
#include "fault_bench.h"

namespace tarvo {
namespace {

using namespace test;  // the times of a request
namespace fs = std::filesystem;

class Unplugged : public FaultBench {
 protected:
  void Unplug() const { Watch("com1 unplug", kError, kNextPoll + kMachine); }

  fs::path Proc() const { return fs::path("/proc") / std::to_string(console->Process().Id()); }
  std::ptrdiff_t Descriptors() const {
    return std::distance(fs::directory_iterator(Proc() / "fd"), fs::directory_iterator());
  }
  /// In pages.
  int ResidentMemory() const {
    int size = 0;
    int resident = 0;
    std::ifstream(Proc() / "statm") >> size >> resident;
    return resident;
  }
  /// Of the processor, used so far.
  Milliseconds Used() const {
    std::ifstream stat(Proc() / "stat");
    std::string skipped;
    std::getline(stat, skipped, ')');
    for (int field = 3; field < 14; ++field) stat >> skipped;
    long user = 0;
    long system = 0;
    stat >> user >> system;
    return Milliseconds((user + system) * 1000 / sysconf(_SC_CLK_TCK));
  }
};

TEST_F(Unplugged, IsToldByTheNextPoll) {
  OpenSession();
  Unplug();
  EXPECT_EQ(Get("TotIN(0).Caption"), "111");
  EXPECT_EQ(Get("StartComm"), "-1");
}

TEST_F(Unplugged, EndsARequestThatWaits) {
  OpenSession();
  Order("com1 silence 1000");
  AwaitFault("silence 999");
  EXPECT_LT(Watch("com1 unplug", kError, kMachine), kReplyTimeout);
}

TEST_F(Unplugged, FailsEveryFurtherRequestAtOnce) {
  OpenSession();
  Unplug();
  for (int i = 0; i < 5; ++i) EXPECT_LE(TimeOf("click CheckBelk2"), kMachine);
  EXPECT_EQ(Get("MessageBelk.Caption"), kWrongComm);
}

TEST_F(Unplugged, LeavesTheProcessorAlone) {
  OpenSession();
  Unplug();
  const Milliseconds before = Used();
  Do("wait 500ms");
  EXPECT_LE(Used() - before, Milliseconds(50)) << "a hung-up descriptor is ready for ever";
}

TEST_F(Unplugged, LetsStopWork) {
  OpenSession();
  Unplug();
  EXPECT_LE(TimeOf("click StopBelk"), kMachine);
  ExpectOffline();
}

TEST_F(Unplugged, LetsNoSessionStart) {
  OpenSession();
  Unplug();
  StopSession();
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(Do("click StartBelk"), kNotBelk);
  EXPECT_LE(std::chrono::steady_clock::now() - start, kMachine);
  EXPECT_EQ(Do("answer OK"), kNothing);
  ExpectOffline();
}

TEST_F(Unplugged, EndsAStartThatWaits) {
  StartSimulator("belk");
  OpenConsole();
  Order("com1 silence 1000");
  console->Send("click StartBelk");
  AwaitFault("silence 999");
  const auto start = std::chrono::steady_clock::now();
  Order("com1 unplug");
  EXPECT_EQ(console->Receive("click StartBelk").Modal(), kNotBelk);
  EXPECT_LE(std::chrono::steady_clock::now() - start, kMachine);
}

TEST_F(Unplugged, WorksAgainOncePluggedInAndStarted) {
  OpenSession();
  Unplug();
  StopSession();
  Order("com1 set 40003 222\ncom1 plug");
  StartSession();
  EXPECT_EQ(Get("TotIN(0).Caption"), "222");
  ExpectRight("333");
}

TEST_F(Unplugged, StaysLostUntilTheUserStartsAnew) {
  OpenSession();
  Watch("com1 unplug\ncom1 plug", kError, kNextPoll + kMachine);
  WatchInVain("com1 set 40003 222", kOk, Milliseconds(600));
  EXPECT_EQ(Get("TotIN(0).Caption"), "111");
  StopSession();
  StartSession();
  EXPECT_EQ(Get("TotIN(0).Caption"), "222");
}

TEST_F(Unplugged, LeavesNothingBehindAHundredTimes) {
  OpenSession();
  constexpr int kCycles = 100;
  constexpr int kSettled = 20;  // by then all that is kept for later use has its size
  std::ptrdiff_t descriptors = 0;
  int memory = 0;
  for (int cycle = 1; cycle <= kCycles; ++cycle) {
    Watch("com1 unplug", kError, kNextPoll + kMachine);
    StopSession();
    if (cycle == kSettled) {
      descriptors = Descriptors();
      memory = ResidentMemory();
    }
    if (cycle == kCycles) break;
    Order("com1 plug");
    StartSession();
    if (HasFailure()) FAIL() << "in cycle " << cycle;
  }
  EXPECT_EQ(Descriptors(), descriptors);
  // The sanitizer holds back what was freed.
  if (TARVO_ADDRESS_SANITIZER == 0) {
    EXPECT_EQ(ResidentMemory(), memory);
  }
  Order("com1 plug");
  StartSession();
  ExpectRight("222");
}

}  // namespace
}  // namespace tarvo
