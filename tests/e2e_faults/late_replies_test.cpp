// Replies that come when nobody waits for them any more. Each carries a value that the module had only when it was
// made: if it is ever shown, a late reply has passed for the reply to a later request.

#include "fault_bench.h"

namespace tarvo {
namespace {

using namespace test;  // the times of a request

class LateReply : public FaultBench {
 protected:
  /// The next reply is late and alone carries 666.
  void OrderStale(const std::string& time) {
    Order("com1 set 40003 666\ncom1 late " + time + " 1");
    AwaitFault("none");
    Order("com1 set 40003 222");
  }
  /// That value never gets in, nor is it shown.
  void ExpectNever(const std::string& value, Milliseconds limit) const {
    WatchInVain("com1 fault", "PollBuffer(1) = " + value, limit);
    EXPECT_EQ(Get("TotIN(0).Caption"), "222");
    ExpectRight("333");
  }
};

TEST_F(LateReply, IsNotTakenWhenItComesDuringTheNextRequest) {
  OpenSession();
  // The next try goes out at 0.54 s.
  OrderStale("600ms");
  ExpectNever("666", Milliseconds(1200));
  EXPECT_EQ(Get("MessageBelk.Caption"), "OK");
}

TEST_F(LateReply, IsNoHarmAtTheVeryEndOfItsTime) {
  for (const char* time : {"490ms", "500ms", "510ms"}) {
    OpenSession();
    OrderStale(time);
    // Just in time it is good, and the value of that moment.
    Until("TotIN(0).Caption = 222", "3s");
    ExpectRight("333");
    StopSession();
  }
}

TEST_F(LateReply, IsNotTakenWhenItComesAfterTheLastTryAndBeforeTheNextRequest) {
  StartSimulator("belk:40003=111");
  OpenConsole();
  // The replies to all three tries come at once, while the box is still in front and nobody asks.
  Order("com1 set 40001 0x0203\ncom1 late 1700ms 1");
  EXPECT_EQ(Do("click StartBelk"), kNotBelk);
  Order("com1 set 40001 0x0103");
  Do("wait 300ms");
  EXPECT_EQ(Do("answer OK"), kNothing);
  StartSession();
  EXPECT_EQ(Get("TotIN(0).Caption"), "111");
  ExpectRight("222");
}

TEST_F(LateReply, IsNotTakenByASessionThatIsStartedWhileItIsOnItsWay) {
  StartSimulator("belk:40003=111");
  OpenConsole();
  Order("com1 set 40001 0x0203\ncom1 late 1900ms 1");
  EXPECT_EQ(Do("click StartBelk"), kNotBelk);
  Order("com1 set 40001 0x0103");
  EXPECT_EQ(Do("answer OK"), kNothing);
  StartSession();
  ExpectRight("222");
}

TEST_F(LateReply, IsNeverTakenThoughAllAreLate) {
  OpenSession();
  // Each reply comes while a later request waits, for as long as the order stands.
  Watch("com1 set 40003 666\ncom1 late 700ms", kError, kNextPoll + kTries * kTry + kMachine);
  WatchInVain("com1 set 40003 667", "PollBuffer(1) != 111", Milliseconds(1000));
  Order("com1 set 40003 222\ncom1 clear");
  ExpectNever("667", Milliseconds(1200));
}

}  // namespace
}  // namespace tarvo
