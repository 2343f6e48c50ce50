#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "bus/rawlink/frm_plug_and_play.h"
#include "core/virtual_scheduler.h"
#include "state/shared_state.h"
#include "support/bare_window.h"
#include "support/memory_port.h"
#include "view/screen.h"

namespace tarvo::bus {

using RawFrame = std::vector<std::uint8_t>;

/// The bytes of `frame` as a text, one character a byte.
inline std::string TextOf(const RawFrame& frame) {
  return {frame.begin(), frame.end()};
}

/// The page of the raw exchange in virtual time, not shown, with a line in memory on COM1 and nothing behind it.
class RawBench {
 public:
  RawBench() {
    Ports.Connect(1, Line);
    Screen.SetMain(&Main);
  }
  RawBench(const RawBench&) = delete;
  RawBench& operator=(const RawBench&) = delete;
  ~RawBench() {
    Main.EndTasks();
    Page.CancelTasks();
  }

  bool OpenPort() { return Page.MSComm1.SetPortOpen(true).Ok(); }

  /// Each request is answered by `frame`, `delay` after it.
  void Answer(RawFrame frame, core::Duration delay = core::milliseconds(50)) {
    Line.OnWrite = [this, frame = std::move(frame), delay](std::span<const std::uint8_t> /*request*/) {
      Line.Deliver(frame, delay);
    };
  }

  /// What went out, each send by itself.
  std::vector<RawFrame> Sent() const {
    std::vector<RawFrame> frames;
    for (const auto& write : Line.Writes()) frames.push_back(write.bytes);
    return frames;
  }

  /// The texts of the page's parameters.
  std::vector<std::string> Shown() const {
    std::vector<std::string> texts;
    for (const view::Label& parameter : Page.Parameter) texts.push_back(parameter.Caption());
    return texts;
  }
  /// What they would be with another text at `index`.
  std::vector<std::string> ShownWith(std::size_t index, const std::string& text) const {
    std::vector<std::string> texts = Shown();
    texts.at(index) = text;
    return texts;
  }

  /// Shows `page` in the main window as far as that goes in no time.
  void Show(view::Window* page) {
    Main.Spawn(ShowTask(page));
    Scheduler.RunReady();
  }
  void Open() { Show(&Page); }

  /// The text of the message box in front; empty when there is none.
  std::string BoxText() const {
    const view::Modal* front = Screen.Front();
    const view::MessageBox* box = front == nullptr ? nullptr : front->AsMessageBox();
    return box == nullptr ? std::string() : box->text;
  }

  core::VirtualScheduler Scheduler;
  view::Screen Screen{Scheduler};
  state::SharedState State;
  test::MemoryLine Line{Scheduler};
  test::MemoryPorts Ports;
  test::BareWindow Main{Screen, "MDIForm1"};
  test::BareWindow Other{Screen, "Belk"};
  FrmPlugAndPlay Page{Screen, State, Ports};

 private:
  core::Task<> ShowTask(view::Window* page) { co_await Screen.ShowPage(page); }
};

}  // namespace tarvo::bus
