#pragma once

#include <array>
#include <string>
#include <vector>

#include "bus/modcom/modcom.h"
#include "core/scope.h"
#include "core/virtual_scheduler.h"
#include "support/bare_window.h"
#include "support/memory_module.h"
#include "support/memory_port.h"
#include "support/run_task.h"
#include "support/task_runner.h"
#include "view/screen.h"

namespace tarvo::bus {

/// A `ModCom` on COM1 with a module at address 1 behind it. The port is closed at first.
class ModComBench {
 public:
  ModComBench() {
    Ports.Connect(1, Line);
    for (int i = 0; i < 12; ++i) Module[40001 + i] = static_cast<std::uint16_t>(100 + i);
    Scheduler.Run(core::milliseconds(100));
  }

  /// Opens the port; true when that went well.
  bool Open() {
    const bool good = ModCom1.SetPortOpen(true).Ok();
    // The line counts as busy when the port is opened.
    Scheduler.Run(core::milliseconds(50));
    return good;
  }

  core::Task<Outcome> ReadOne(state::Register source, state::Word* data) {
    co_return co_await ModCom1.ReadPLC(source, *data);
  }
  core::Task<Outcome> ReadBlock(std::int16_t count) {
    co_return co_await ModCom1.ReadPLC(state::Register(40002), Block, count, kFormat);
  }
  core::Task<Outcome> WriteOne(state::Register target, state::Word value) {
    co_return co_await ModCom1.WritePLC(target, value);
  }
  /// Reads one register and writes down "<name> <outcome>".
  core::Task<> NotedRead(std::string name) {
    state::Word data;
    const Outcome outcome = co_await ModCom1.ReadPLC(state::Register(40002), data);
    Notes.push_back(name + " " + NameOf(outcome.GetKind()));
  }
  /// Waits for a free bus and writes down "<name> free".
  core::Task<> NotedFree(std::string name) {
    co_await ModCom1.Free();
    Notes.push_back(name + (ModCom1.CommBusy() ? " busy" : " free"));
  }
  template <class T>
  T ResultOf(core::Task<T> task) {
    return test::RunTask(Scheduler, std::move(task));
  }

  core::VirtualScheduler Scheduler;
  view::Screen Screen{Scheduler};
  test::MemoryLine Line{Scheduler};
  test::MemoryModule Module{Scheduler, Line};
  test::MemoryPorts Ports;
  test::BareWindow Window{Screen};
  ModCom ModCom1{Window, "ModCom1", Ports};
  std::array<state::Word, 20> Block{};
  std::vector<std::string> Notes;
  test::TaskRunner Tasks;
};

}  // namespace tarvo::bus
