#include <benchmark/benchmark.h>

#include <array>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/sections.h"
#include "core/virtual_scheduler.h"
#include "models/belk.h"
#include "shell/program.h"
#include "support/memory_files.h"
#include "support/memory_help.h"
#include "support/memory_module.h"
#include "support/memory_port.h"
#include "support/memory_values.h"

namespace tarvo::bench {

namespace {

/// Counts the controls that a front would have to look at anew.
class CountingFront final : public view::Watcher {
 public:
  void ControlsChanged(std::span<view::Control* const> changed) override { controls += changed.size(); }
  void StageChanged() override { ++stages; }

  std::size_t controls = 0;
  std::size_t stages = 0;
};

/// The program in a session with a Belk module, all in memory and in virtual time.
class Session {
 public:
  Session() {
    module_.SetLogging(false);
    module_[40001] = 0x0103;
    module_[40008] = 10;
    module_[40010] = 0x0101;
    ports_.Connect(1, line_);
    program_ = std::make_unique<shell::Program>(shell::Services{scheduler_, ports_, values_, help_, files_, "."});
    values_.Keep("AUTOSCAN", "FALSE");
    program_->Start();
    scheduler_.RunReady();
    program_->GetScreen().Click(*program_->FindWindow("MDIForm1")->Find("labBelk"));
    page_ = dynamic_cast<models::Belk*>(program_->GetScreen().Page());
    if (page_ == nullptr) throw std::runtime_error("the page shown is not Belk");
    program_->GetScreen().Click(page_->Start);
    scheduler_.Run(std::chrono::seconds(5));
    if (program_->State().StartComm != state::kTrue) throw std::runtime_error("no session");
    subscription_ = program_->GetScreen().Subscribe(front_);
  }

  /// Gives the nine polled registers other values than they had.
  void ChangeAll() {
    ++step_;
    auto& block = program_->State().PollBuffer;
    block[0] = state::Word((step_ & 1) != 0 ? 0x1F1F : 0x0000);
    for (std::size_t i = 1; i <= models::Belk::kInputs; ++i) block[i] = state::Word((step_ * 997 + 11000 * i) & 0xFFFF);
    block[6] = state::Word(1 + step_ % 254);
    block[7] = state::Word((step_ & 1) != 0 ? 0x00BF : 0x0000);
    block[8] = state::Word(0x0101 + step_ % 8);
  }

  /// What the decode's timer does, and the turn's end, at which the front is told.
  void Decode() {
    page_->Spawn(page_->TimerGestioneLetture.OnTimer());
    // The least of time: virtual time that stands still for many turns counts as a mistake.
    scheduler_.Run(core::Duration(1));
  }

  /// Polls for so long; the module's values stay as they are.
  void Poll(core::Duration duration) { scheduler_.Run(duration); }
  int Requests() const { return module_.Requests(); }
  const CountingFront& Front() const { return front_; }

 private:
  core::VirtualScheduler scheduler_;
  test::MemoryLine line_{scheduler_};
  test::MemoryPorts ports_;
  test::MemoryValues values_;
  test::MemoryHelp help_;
  test::MemoryFiles files_;
  test::MemoryModule module_{scheduler_, line_};
  std::unique_ptr<shell::Program> program_;
  models::Belk* page_ = nullptr;
  CountingFront front_;
  view::Screen::Subscription subscription_;
  unsigned step_ = 0;
};

void DecodeOfNineChanged(benchmark::State& state) {
  Session session;
  for ([[maybe_unused]] auto _ : state) {
    session.ChangeAll();
    session.Decode();
  }
  state.counters["notices"] = static_cast<double>(session.Front().controls) / static_cast<double>(state.iterations());
}

void DecodeOfNothingNew(benchmark::State& state) {
  Session session;
  for ([[maybe_unused]] auto _ : state) session.Decode();
}

/// Keeps what the runs gave.
class Collector final : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context& /*context*/) override { return true; }
  void ReportRuns(const std::vector<Run>& done) override {
    for (const Run& run : done) {
      if (run.run_type == Run::RT_Iteration) runs.push_back(run);
    }
  }

  std::vector<Run> runs;
};

/// The median of some runs, in microseconds; and the notices of an iteration.
struct Result {
  double microseconds = 0;
  double notices = 0;
};

Result Run(const char* name, void (*function)(benchmark::State&), bool quick) {
  benchmark::ClearRegisteredBenchmarks();
  benchmark::RegisterBenchmark(name, function)
      ->Unit(benchmark::kMicrosecond)
      ->MinTime(quick ? 0.05 : 0.5)
      ->Repetitions(quick ? 1 : 5);
  Collector collector;
  benchmark::RunSpecifiedBenchmarks(&collector);
  std::vector<double> times;
  for (const auto& run : collector.runs) times.push_back(run.GetAdjustedRealTime());
  if (times.empty()) throw std::runtime_error(std::string(name) + " gave no result");
  const auto& counters = collector.runs.front().counters;
  const auto notices = counters.find("notices");
  return {Quantile(times, 0.5), notices == counters.end() ? 0 : notices->second.value};
}

}  // namespace

void MeasurePoll(const Options& options, Report& report) {
  Tell("decode and notice of a poll");
  constexpr double kBar = 20;
  const Result changed = Run("nine changed", DecodeOfNineChanged, options.quick);
  const Result same = Run("nothing new", DecodeOfNothingNew, options.quick);
  report.Add({"decode and notice of a poll, nine values changed (" + Number(changed.notices, 0) + " controls told)",
              Number(changed.microseconds, 2) + " us", "nothing new: " + Number(same.microseconds, 2) + " us",
              "at most " + Number(kBar, 0) + " us", changed.microseconds <= kBar});

  Session session;
  const std::size_t before = session.Front().controls + session.Front().stages;
  const int requests = session.Requests();
  session.Poll(std::chrono::minutes(1));
  const std::size_t notices = session.Front().controls + session.Front().stages - before;
  const int polls = session.Requests() - requests;
  report.Add({"controls that a front is told of in " + std::to_string(polls) + " polls with nothing new",
              std::to_string(notices), "", "0", notices == 0 && polls > 0});
}

}  // namespace tarvo::bench
