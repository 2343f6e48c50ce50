#pragma once

#include <algorithm>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "bus/line_settings.h"
#include "shell/shell_fixture.h"

namespace tarvo::test {

/// A search in virtual time. Nothing is on a port until a test puts it there.
class SearchFixture : public ShellFixture {
 protected:
  static constexpr char kButton[] = "MDIForm1.buttCheckDevice";
  /// What a port costs on a line where nothing answers, and what bytes, pauses and turns may add to it.
  static constexpr core::milliseconds kSilence{2000};
  static constexpr core::milliseconds kBytes{250};

  /// A Belk, or with another identity something else, on a port of its own.
  MemoryModule& PutModule(int comPort, int baud, int identity = 0x0103, int address = 1) {
    Played& played = played_.emplace_back(scheduler, address);
    MakeBelk(played.module);
    played.module[kIdentity] = static_cast<std::uint16_t>(identity);
    played.module.Line.baud = baud;
    ports.Connect(comPort, played.line);
    return played.module;
  }
  /// A device that opens and says nothing.
  MemoryLine& PutSilence(int comPort) {
    MemoryLine& silent = silent_.emplace_back(scheduler);
    ports.Connect(comPort, silent);
    return silent;
  }
  MemoryLine& LineOf(std::size_t played) { return played_.at(played).line; }

  void OpenWithoutSearch() {
    values.Keep("AUTOSCAN", "FALSE");
    OpenProgram();
  }

  bool Searching() const { return State().SearchRunning == state::kTrue; }
  /// Begins a search and leaves it under way.
  void BeginSearch(std::string_view starter = kButton) {
    began_ = scheduler.Now();
    run_ = ClickAndGoOn(starter);
    scheduler.RunReady();
  }
  bool SearchOver() const { return !Searching() && (run_ == nullptr || run_->Done()); }
  void EndSearch() {
    ASSERT_TRUE(RunUntil([this] { return SearchOver() || BoxInFront() != nullptr; }));
  }
  /// A whole search from the button, or from what else starts it.
  void RunSearch(std::string_view starter = kButton) {
    BeginSearch(starter);
    EndSearch();
    took_ = scheduler.Now() - began_;
  }
  core::Duration Took() const { return took_; }

  /// What went over the line but for the short reads by which the bus proves that answers are in step.
  static std::vector<std::string> Asked(MemoryModule& of) {
    std::vector<std::string> log = of.TakeLog();
    std::erase_if(log, [](const std::string& entry) { return entry.starts_with("reads 40001 x"); });
    return log;
  }

  /// The program as any search leaves it, whatever its end.
  void ExpectSearchIsOver() {
    EXPECT_FALSE(Searching());
    EXPECT_TRUE(NothingInFront());
    EXPECT_EQ(State().StartComm, state::kFalse);
    EXPECT_EQ(State().EscPressed, 0);
    EXPECT_FALSE(Hourglass());
    EXPECT_FALSE(Get<bool>("MDIForm1.ModCom1", "PortOpen"));
    for (const char* name :
         {"LabHome", "LabPCSetup", "labBelk", "MenuBelk", "buttCheckDevice", "mnuCheckconnection", "cbSelectDevice"}) {
      EXPECT_TRUE(Enabled(std::string("MDIForm1.") + name)) << name;
    }
    for (const Played& played : played_) EXPECT_FALSE(played.line.IsOpen());
    for (const MemoryLine& silent : silent_) EXPECT_FALSE(silent.IsOpen());
    const int attempts = ports.Attempts();
    Run(std::chrono::seconds(5));
    EXPECT_EQ(ports.Attempts(), attempts);
  }
  void ExpectNothingFound() {
    EXPECT_EQ(Panel2(), kNothingFound);
    EXPECT_EQ(State().PCPort, 1);
    EXPECT_EQ(State().PCSettings, "9600,n,8,1");
    EXPECT_EQ(State().ModuleAddress, 1);
    ExpectSearchIsOver();
  }
  /// `settings` as "38400,n,8,1".
  void ExpectFound(int comPort, const std::string& settings) {
    EXPECT_EQ(State().PCPort, comPort);
    EXPECT_EQ(State().PCSettings, settings);
    EXPECT_EQ(State().ModuleAddress, 1);
    EXPECT_EQ(Panel2(), "Connected to Belk, COM" + std::to_string(comPort) + "," + settings + "  Module Address:1");
    EXPECT_EQ(PageName(), "Belk");
    EXPECT_EQ(State().NrFinestra, 0);
    ExpectSearchIsOver();
  }

 private:
  std::deque<Played> played_;
  std::deque<MemoryLine> silent_;
  core::TimePoint began_{};
  core::Duration took_{};
  std::shared_ptr<view::GestureRun> run_;
};

}  // namespace tarvo::test
