#include <chrono>
#include <stdexcept>
#include <string>
#include <thread>

#include "bench/process.h"
#include "bench/sections.h"
#include "support/child_process.h"
#include "support/quiet_settings.h"
#include "support/simulator_process.h"
#include "support/temporary_folder.h"

namespace tarvo::bench {

namespace {

void Do(test::ChildProcess& console, const std::string& command) {
  console.Write(command + "\n");
  const std::string reply = console.ReadUntil("\n");
  if (!reply.starts_with("{\"ok\":true")) throw std::runtime_error(command + ": " + reply);
}

}  // namespace

void MeasureConsole(const Options& options, Report& report) {
  constexpr double kProcessorBar = 1;
  constexpr double kMemoryBar = 12;
  const std::chrono::seconds duration(options.quick ? 4 : 30);
  Tell("the console in a session with the simulator, " + std::to_string(duration.count()) + " s");
  const test::TemporaryFolder folder;
  const test::SimulatorProcess simulator({"--com1", "belk:addr=1,line=9600n81,fw=3"}, folder.Path());
  test::ChildProcess console({TARVO_CONSOLE, "--json", "--settings", test::SettingsWithoutSearch(folder / "settings"),
                              "--com1", (folder / "com1").string()});
  Do(console, "click labBelk");
  Do(console, "click StartBelk");
  Do(console, "until MessageBelk.Caption = OK within 5s");
  const double before = ProcessorTimeOf(console.Id());
  const auto start = std::chrono::steady_clock::now();
  std::this_thread::sleep_for(duration);
  const std::chrono::duration<double> gone = std::chrono::steady_clock::now() - start;
  const double processor = 100 * (ProcessorTimeOf(console.Id()) - before) / gone.count();
  const double memory = ResidentOf(console.Id());
  // It was a session up to the end.
  Do(console, "until MessageBelk.Caption = OK within 1s");
  report.Add({"tarvo-console in a session, processor", Number(processor, 2) + " % of a core", "",
              "at most " + Number(kProcessorBar, 0) + " %", processor <= kProcessorBar});
  report.Add({"tarvo-console in a session, resident", Number(memory, 1) + " MB", "",
              "at most " + Number(kMemoryBar, 0) + " MB", memory <= kMemoryBar});
}

}  // namespace tarvo::bench
