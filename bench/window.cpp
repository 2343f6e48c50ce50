#include <chrono>
#include <fstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "bench/peer.h"
#include "bench/process.h"
#include "bench/sections.h"
#include "bench/x_server.h"
#include "support/child_process.h"
#include "support/temporary_folder.h"

namespace tarvo::bench {

namespace {

using Command = std::vector<std::string>;
using std::chrono::steady_clock;

double SecondsSince(steady_clock::time_point start) {
  return std::chrono::duration<double>(steady_clock::now() - start).count();
}

/// Median of the times from the start of a program to its first mapped window, in seconds.
double StartOf(const Command& command, int repetitions, XServer& server) {
  std::vector<double> times;
  // The first one only brings the files into memory.
  for (int i = 0; i <= repetitions; ++i) {
    server.Forget();
    const auto start = steady_clock::now();
    const test::ChildProcess program(command);
    server.WaitForWindow();
    if (i > 0) times.push_back(SecondsSince(start));
  }
  return Quantile(times, 0.5);
}

double ResidentOfBareWindow(XServer& server) {
  server.Forget();
  const test::ChildProcess program({TARVO_BARE_WINDOW});
  server.WaitForWindow();
  std::this_thread::sleep_for(std::chrono::seconds(1));
  return ResidentOf(program.Id());
}

struct Load {
  double processor = 0;       // % of a core
  double resident = 0;        // MB
  double pollsPerSecond = 0;  // that the peer saw
};

Load LoadOfSession(const Command& window, std::chrono::seconds duration, XServer& server) {
  PeerPlan plan;
  plan.registers = PeerPlan::Registers::kBelk;
  plan.pace = PeerPlan::Pace::kWhole;
  const Peer peer(plan);
  Command command = window;
  command.insert(command.end(), {"--com1", peer.Device(), "--click", "labBelk", "--click", "StartBelk"});
  server.Forget();
  const test::ChildProcess program(command);
  server.WaitForWindow();
  constexpr std::chrono::seconds kUntilSteady(3);
  std::this_thread::sleep_for(kUntilSteady);

  const std::uint64_t polls = peer.Seen().requests;
  const double before = ProcessorTimeOf(program.Id());
  const auto start = steady_clock::now();
  std::this_thread::sleep_for(duration);
  const double gone = SecondsSince(start);
  Load load;
  load.processor = 100 * (ProcessorTimeOf(program.Id()) - before) / gone;
  load.resident = ResidentOf(program.Id());
  load.pollsPerSecond = static_cast<double>(peer.Seen().requests - polls) / gone;
  return load;
}

}  // namespace

void MeasureWindow(const Options& options, Report& report) {
  constexpr double kProcessorBar = 3;
  constexpr double kMemoryBar = 48;
  constexpr double kStartBar = 0.12;
  constexpr double kPollsPerSecond = 20;
  XServer server;
  const test::TemporaryFolder folder;
  const std::string settings = (folder / "settings").string();
  std::ofstream(settings) << "AUTOSCAN=FALSE\n";
  const Command window = {TARVO_WINDOW, "--settings", settings};

  const std::chrono::seconds duration(options.quick ? 4 : 30);
  Tell("the window in a session, nine values changing, " + std::to_string(duration.count()) + " s");
  const double bareResident = ResidentOfBareWindow(server);
  const Load load = LoadOfSession(window, duration, server);
  if (load.pollsPerSecond < 0.95 * kPollsPerSecond) {
    throw std::runtime_error("the window polled " + Number(load.pollsPerSecond, 1) + " times a second, not 20");
  }
  const std::string polls = Number(load.pollsPerSecond, 1) + " polls/s";
  report.Add({"tarvo in a session, nine values changing, processor", Number(load.processor, 2) + " % of a core", polls,
              "at most " + Number(kProcessorBar, 0) + " %", load.processor <= kProcessorBar});
  report.Add({"tarvo in a session, nine values changing, resident", Number(load.resident, 1) + " MB",
              "bare Qt window " + Number(bareResident, 1) + " MB", "at most " + Number(kMemoryBar, 0) + " MB",
              load.resident <= kMemoryBar});

  const int repetitions = options.quick ? 3 : 10;
  Tell("start to first mapped window, " + std::to_string(repetitions) + " times");
  const double bare = StartOf({TARVO_BARE_WINDOW}, repetitions, server);
  const double start = StartOf(window, repetitions, server);
  report.Add({"tarvo, start to first mapped window, median of " + std::to_string(repetitions), Number(start, 3) + " s",
              "bare Qt window " + Number(bare, 3) + " s", "at most " + Number(kStartBar, 2) + " s",
              start <= kStartBar});
}

}  // namespace tarvo::bench
