#pragma once

#include <gmock/gmock.h>

#include <array>
#include <cstdio>
#include <string>
#include <utility>

#include "support/page_names.h"
#include "support/program_fixture.h"

namespace tarvo::test {

inline constexpr char kPollFailed[] = "ERROR! Wrong Comm.";
inline constexpr char kMustStopFirst[] = "Communication must be stopped before exit !";

/// The page of one module model, whose module is on COM1: 9600,n,8,1, address 1.
class PageFixture : public ProgramFixture {
 protected:
  static constexpr int kIdentity = 40001;

  /// `model` as the page's controls have it: "Belk" for "StartBelk".
  explicit PageFixture(std::string model) : PageFixture(PageNames{std::move(model)}) {}
  explicit PageFixture(PageNames names) : names_(std::move(names)) {}

  /// Shows the page and forgets what the program's start-up did to the ports.
  void OpenPage() {
    Click(names_.label);
    ports.ForgetAttempts();
    line.ForgetCounts();
  }

  /// Presses Start and forgets what that read.
  void StartSession() {
    Click(names_.start);
    ASSERT_TRUE(InSession()) << (BoxInFront() == nullptr ? "no session, no box" : BoxInFront()->text);
    module.ForgetLog();
  }
  /// Presses Start and lets time go by until the module has taken so many requests.
  void StartUntilRequest(int requests) {
    const int before = module.Requests();
    ClickAndGoOn(names_.start);
    ASSERT_TRUE(RunUntil([&] { return module.Requests() == before + requests; }));
  }
  const PageNames& Names() const { return names_; }
  std::string NotOurs() const { return "ERROR! Module is not " + names_.model + " or communication failed"; }
  bool InSession() const { return State().StartComm == state::kTrue; }
  bool TimersRun() const { return Enabled("TimerLetturaSeriale") && Enabled("TimerGestioneLetture"); }
  bool TimersRest() const { return !Enabled("TimerLetturaSeriale") && !Enabled("TimerGestioneLetture"); }
  /// Time for one poll and for one decode after it.
  void RunThroughADecode() { Run(core::milliseconds(300)); }
  /// Lets time go by until no gesture's handler is under way.
  void RunUntilIdle() {
    ASSERT_TRUE(RunUntil([this] { return program.GetScreen().Idle(); }));
  }
  /// Lets time go by until no request is under way.
  void RunUntilTheBusIsFree() {
    ASSERT_TRUE(RunUntil([this] { return !Modcom().CommBusy(); }));
  }
  /// Lets time go by until a poll is under way.
  void RunIntoAPoll() {
    RunUntilTheBusIsFree();
    ASSERT_TRUE(RunUntil([this] { return Modcom().CommBusy(); }));
  }

  /// "TotIN" and 2 give "TotIN(2)".
  static std::string Member(const char* array, int index) {
    return std::string(array) + "(" + std::to_string(index) + ")";
  }
  /// "writes 40009 = 0x0081"
  static std::string Writing(int number, int word) {
    std::array<char, 40> text{};
    std::snprintf(text.data(), text.size(), "writes %d = 0x%04X", number, static_cast<unsigned>(word) & 0xFFFFU);
    return text.data();
  }
  int Polled(std::size_t element) const { return State().PollBuffer.at(element).Unsigned(); }

 private:
  PageNames names_;
};

}  // namespace tarvo::test
