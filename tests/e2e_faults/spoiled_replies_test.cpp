// Replies that are lost, damaged, foreign, late or refuse, while a session polls.

#include <ostream>

#include "fault_bench.h"

namespace tarvo {
namespace {

using namespace test;  // the times of a request

/// A fault by which a try gets no reply.
struct Fault {
  const char* name;
  const char* order;
  /// What a try costs by it: nothing came, so that the reply's time must be over, or all came and was wrong.
  bool waits;
};

void PrintTo(const Fault& fault, std::ostream* out) {
  *out << fault.name;
}

const Fault kFaults[] = {{"Silence", "com1 silence", true},
                         {"WrongCrc", "com1 wrong-crc", false},
                         {"Truncated", "com1 truncated", true},
                         {"OtherAddress", "com1 other-address", true},
                         {"Late", "com1 late 700ms", true}};

Milliseconds CostOf(const Fault& fault) {
  return fault.waits ? kTry : kFrames;
}

class SpoiledReply : public FaultBench, public ::testing::WithParamInterface<Fault> {};

INSTANTIATE_TEST_SUITE_P(By, SpoiledReply, ::testing::ValuesIn(kFaults),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_P(SpoiledReply, IsHiddenByTheNextTry) {
  OpenSession();
  // The try, the probe that proves the line in step, the poll anew.
  WatchInVain(std::string(GetParam().order) + " 1", kNotOk, kNextPoll + CostOf(GetParam()) + 2 * kFrames + kMachine);
  EXPECT_EQ(simulator->Order("com1 fault"), "ok com1 fault none");
  EXPECT_EQ(Get("TotIN(0).Caption"), "111");
  ExpectRight("222");
}

TEST_P(SpoiledReply, CostsNoMoreThanItsTry) {
  OpenSession();
  const Milliseconds limit = kNextPoll + CostOf(GetParam()) + 2 * kFrames + kMachine;
  const Milliseconds seen =
      Watch(std::string(GetParam().order) + " 1\ncom1 set 40003 222", "PollBuffer(1) = 222", limit);
  if (GetParam().waits) {
    EXPECT_GE(seen, kReplyTimeout);
  }
  Until("TotIN(0).Caption = 222", "500ms");
}

TEST_P(SpoiledReply, IsToldAfterAsManyTriesAsThereAre) {
  OpenSession();
  const Milliseconds limit = kNextPoll + kTries * CostOf(GetParam()) + kMachine;
  const Milliseconds seen = Watch(GetParam().order, kError, limit);
  if (GetParam().waits) {
    EXPECT_GE(seen, kTries * kReplyTimeout);
  }
  EXPECT_EQ(Get("TotIN(0).Caption"), "111");
  EXPECT_EQ(Get("StartComm"), "-1");
}

TEST_P(SpoiledReply, IsForgottenWhenTheLineIsRightAgain) {
  OpenSession();
  Watch(GetParam().order, kError, kNextPoll + kTries * CostOf(GetParam()) + kMachine);
  // The last spoiled try, and the first good one with its probe.
  Watch("com1 set 40003 222\ncom1 clear", kOk, CostOf(GetParam()) + kNextPoll + 2 * kFrames + kMachine);
  Until("TotIN(0).Caption = 222", "500ms");
  ExpectRight("333");
}

class Session : public FaultBench {};

TEST_F(Session, TakesNothingFromADamagedReply) {
  OpenSession();
  // The bit that is flipped lies in the counter of input 4.
  WatchInVain("com1 wrong-crc 1", "PollBuffer(4) != 0", kNextPoll + 3 * kFrames + kMachine);
  WatchInVain("com1 wrong-crc", "PollBuffer(4) != 0", kNextPoll + kTries * kFrames + kMachine);
  EXPECT_EQ(Get("MessageBelk.Caption"), kWrongComm);
}

TEST_F(Session, SeesNothingOfNoiseBeforeReplies) {
  OpenSession();
  for (int value = 200; value < 205; ++value) {
    Watch("com1 noise\ncom1 set 40003 " + std::to_string(value), "PollBuffer(1) = " + std::to_string(value),
          kNextPoll + kFrames + kMachine);
  }
  WatchInVain("com1 noise", kNotOk, Milliseconds(1000));
  EXPECT_NE(simulator->Order("com1 fault"), "ok com1 fault none");
  Order("com1 clear");
  ExpectRight("222");
}

TEST_F(Session, IsToldOfAnExceptionAtOnceSinceNobodyAsksAgain) {
  OpenSession();
  // A second try would get a good reply and hide it.
  Watch("com1 exception 1", kError, kNextPoll + kFrames + kMachine);
  Until(kOk, "500ms");
  ExpectRight("222");
}

TEST_F(Session, IsToldOfExceptionsUntilTheyEnd) {
  OpenSession();
  Watch("com1 exception", kError, kNextPoll + kFrames + kMachine);
  WatchInVain("com1 set 40003 222", "MessageBelk.Caption != \"" + kWrongComm + '"', Milliseconds(500));
  EXPECT_EQ(Get("TotIN(0).Caption"), "111");
  Watch("com1 clear", kOk, kNextPoll + kFrames + kMachine);
  Until("TotIN(0).Caption = 222", "500ms");
}

TEST_F(Session, ShowsAChangeThatIsRefusedSpringBack) {
  OpenSession();
  Watch("com1 exception", kError, kNextPoll + kFrames + kMachine);
  // The end of a poll, a read and a write.
  EXPECT_LE(TimeOf("click CheckBelk2"), 3 * kFrames + kMachine);
  Order("com1 clear");
  Until("CheckBelk2.Value = 0", "1s");
  Until(kOk, "500ms");
  EXPECT_EQ(Held("40009"), "0");
  Do("click CheckBelk2");
  EXPECT_EQ(Held("40009"), "1");
}

TEST_F(Session, KeepsTheMessageOfALineThatFailsForLong) {
  OpenSession();
  Watch("com1 silence", kError, kNextPoll + kTries * kTry + kMachine);
  WatchInVain("com1 set 40003 222", "MessageBelk.Caption != \"" + kWrongComm + '"', Milliseconds(1000));
  // Stop lets the request under way end.
  EXPECT_LE(TimeOf("click StopBelk"), kTries * kTry + kMachine);
  ExpectOffline();
  EXPECT_EQ(Get("TotIN(0).Caption"), "111");
}

class Start : public FaultBench {
 protected:
  void OpenPage() {
    StartSimulator("belk:40003=111");
    OpenConsole();
  }
};

TEST_F(Start, OutlivesTwoLostReplies) {
  OpenPage();
  Order("com1 silence 2");
  const Milliseconds took = TimeOf("click StartBelk");
  EXPECT_GE(took, 2 * kReplyTimeout);
  // The two tries; a probe, the identity and the first poll.
  EXPECT_LE(took, 2 * kTry + 3 * kFrames + kMachine);
  EXPECT_EQ(Get("MessageBelk.Caption"), "OK");
  EXPECT_EQ(Get("TotIN(0).Caption"), "111");
  ExpectRight("222");
}

TEST_F(Start, GivesUpAfterThree) {
  OpenPage();
  Order("com1 silence 3");
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(Do("click StartBelk"), kNotBelk);
  const auto took = std::chrono::steady_clock::now() - start;
  EXPECT_GE(took, kTries * kReplyTimeout);
  EXPECT_LE(took, kTries * kTry + kMachine);
  EXPECT_EQ(Do("answer OK"), kNothing);
  ExpectOffline();
  EXPECT_EQ(simulator->Order("com1 fault"), "ok com1 fault none") << "three requests went out, no more";
  StartSession();
  ExpectRight("222");
}

TEST_F(Start, TellsARefusedIdentityAtOnce) {
  OpenPage();
  Order("com1 exception 1");
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(Do("click StartBelk"), kNotBelk);
  EXPECT_LE(std::chrono::steady_clock::now() - start, kFrames + kMachine);
  EXPECT_EQ(Do("answer OK"), kNothing);
  StartSession();
}

}  // namespace
}  // namespace tarvo
