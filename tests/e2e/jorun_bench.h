#pragma once

#include <string>

#include "e2e/shell_bench.h"

namespace tarvo::test {

inline const std::string kNotJorun = BoxJson("ERROR! Module is not Jorun or communication failed", "critical");

/// The console on the simulator's com1 with the Jorun page on its screen.
class JorunBench : public ShellBench {
 protected:
  void OpenJorun() {
    WriteSettings("AUTOSCAN=FALSE\n");
    console = OpenShell({Device()}, Settings());
    EXPECT_EQ(Do("click labJorun"), kNothing);
  }
  void StartJorun() {
    EXPECT_EQ(Do("click StartJorun"), kNothing);
    EXPECT_EQ(Get("StartComm"), "-1");
    Until("MessageJorun.Caption = OK");
  }
  void StopJorun() {
    EXPECT_EQ(Do("click StopJorun"), kNothing);
    EXPECT_EQ(Get("StartComm"), "0");
  }
  /// All of it: simulator, console, session.
  void OpenJorunSession(const std::string& module, Life life = Life::kStill) {
    StartSimulator(module, life);
    OpenJorun();
    StartJorun();
  }
  /// As the world outside gives it.
  void Set(int number, int value) {
    const std::string order = "com1 set " + std::to_string(number) + ' ' + std::to_string(value);
    EXPECT_EQ(simulator->Order(order), "ok " + order);
  }
};

}  // namespace tarvo::test
