#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>

#include "e2e/belk_bench.h"

namespace tarvo::test {

using Milliseconds = std::chrono::milliseconds;

/// Of the bus: what a request costs at most, at 9600 baud.
constexpr int kTries = 3;
constexpr Milliseconds kReplyTimeout{500};
constexpr Milliseconds kFrames{45};  ///< silence, request, the module's pause, the longest reply, silence after it
constexpr Milliseconds kTry = kReplyTimeout + kFrames;

/// Until the poll under way has ended and the next one goes out: one tick of its timer, two when it just missed one.
constexpr Milliseconds kNextPoll{100};
/// The timer that turns what was polled into what is shown.
constexpr Milliseconds kDecode{200};
/// What a busy machine may add. Less than a try, so that one try too many does not hide in it.
constexpr Milliseconds kMachine{300};

/// A session with a Belk on a line that goes wrong when ordered.
class FaultBench : public BelkBench {
 protected:
  /// Input 1 has counted 111.
  void OpenSession() { BelkBench::OpenSession("belk:40003=111"); }

  /// Hands orders to the simulator, a line each, all taken in one go.
  void Order(const std::string& orders) const {
    const std::string answers = simulator->Order(orders);
    EXPECT_THAT(answers, ::testing::Not(::testing::HasSubstr("error: "))) << orders;
  }
  /// What a register of the module holds.
  std::string Held(const std::string& reg) const {
    const std::string answer = simulator->Order("com1 get " + reg);
    return answer.substr(answer.rfind(' ') + 1);
  }
  /// Until that much of the ordered fault is left: "silence 2", or "none".
  void AwaitFault(const std::string& left) const {
    const auto over = std::chrono::steady_clock::now() + Milliseconds(3000);
    std::string answer;
    while (std::chrono::steady_clock::now() < over) {
      answer = simulator->Order("com1 fault");
      if (answer == "ok com1 fault " + left) return;
      std::this_thread::sleep_for(Milliseconds(2));
    }
    ADD_FAILURE() << left << " was waited for, " << answer;
  }

  /// The console watches for `condition` while the orders are given. Gives how long after them it came, and fails when
  /// it has not within `limit`.
  Milliseconds Watch(const std::string& orders, const std::string& condition, Milliseconds limit) const {
    const std::string command = "until " + condition + " within " + std::to_string(limit.count()) + "ms";
    console->Send(command);
    const auto start = std::chrono::steady_clock::now();
    Order(orders);
    const ConsoleReply reply = console->Receive(command);
    EXPECT_TRUE(reply.Ok()) << orders << ": " << reply.Error();
    return std::chrono::duration_cast<Milliseconds>(std::chrono::steady_clock::now() - start);
  }
  /// The other way: `condition` must not come within `limit`.
  void WatchInVain(const std::string& orders, const std::string& condition, Milliseconds limit) const {
    const std::string command = "until " + condition + " within " + std::to_string(limit.count()) + "ms";
    console->Send(command);
    Order(orders);
    EXPECT_FALSE(console->Receive(command).Ok()) << orders << ": " << condition;
  }

  /// How long the command takes.
  Milliseconds TimeOf(const std::string& command) const {
    const auto start = std::chrono::steady_clock::now();
    console->Do(command);
    return std::chrono::duration_cast<Milliseconds>(std::chrono::steady_clock::now() - start);
  }

  /// The next exchanges are right: "OK", and a value that the module has from now on is shown.
  void ExpectRight(const std::string& value) const {
    Watch("com1 set 40003 " + value, "TotIN(0).Caption = " + value, kNextPoll + kFrames + kDecode + kMachine);
    EXPECT_EQ(Get("MessageBelk.Caption"), "OK");
    EXPECT_EQ(Get("StartComm"), "-1");
  }

  static inline const std::string kError = "MessageBelk.Caption = \"" + kWrongComm + '"';
  static inline const std::string kOk = "MessageBelk.Caption = OK";
  static inline const std::string kNotOk = "MessageBelk.Caption != OK";
};

}  // namespace tarvo::test
