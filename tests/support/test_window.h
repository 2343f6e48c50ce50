#pragma once

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/fault.h"
#include "core/scheduler.h"
#include "support/bare_window.h"
#include "view/screen.h"

namespace tarvo::test {

/// What happened, in order.
using Log = std::vector<std::string>;

/// A window that writes down what befalls it ("Belk Load"). Controls come with a window that derives from it.
class TestWindow : public BareWindow {
 public:
  TestWindow(view::Screen& screen, std::string_view name, Log& log) : BareWindow(screen, name), log_(log) {}
  ~TestWindow() override { CancelTasks(); }

  void Load() override { Note("Load"); }
  core::Task<> Activate() override {
    Note("Activate");
    if (activateTime > core::Duration::zero()) {
      co_await GetScheduler().Sleep(activateTime);
      Note("Activate ends");
    }
  }
  void Deactivate() override { Note("Deactivate"); }
  core::Task<bool> QueryUnload() override {
    Note("QueryUnload");
    co_return mayClose;
  }
  void Unload() override { Note("Unload"); }
  void KeyDown(view::Key key) override { Note("KeyDown " + std::to_string(static_cast<int>(key))); }

  /// How long Activate waits.
  core::Duration activateTime{};
  bool mayClose = true;

  /// A handler that writes `text` down.
  view::Handler Noting(std::string text) {
    return [this, text] { return NoteTask(text); };
  }
  /// A handler that writes `before`, waits, and writes `after`.
  view::Handler Waiting(std::string before, core::Duration duration, std::string after) {
    return [this, before, duration, after] { return WaitTask(before, duration, after); };
  }
  /// A handler that ends with a fault.
  view::Handler Failing(std::string description) {
    return [description] { return FailTask(description); };
  }

 protected:
  void Note(std::string_view what) { log_.push_back(Name() + " " + std::string(what)); }
  Log& GetLog() { return log_; }

 private:
  core::Task<> NoteTask(std::string text) {
    log_.push_back(std::move(text));
    co_return;
  }
  core::Task<> WaitTask(std::string before, core::Duration duration, std::string after) {
    log_.push_back(std::move(before));
    co_await GetScheduler().Sleep(duration);
    log_.push_back(std::move(after));
  }
  static core::Task<> FailTask(std::string description) {
    throw core::Fault(description);
    co_return;
  }

  Log& log_;
};

/// A front that keeps what it was told.
class TestWatcher final : public view::Watcher {
 public:
  void ControlsChanged(std::span<view::Control* const> changed) override {
    std::vector<std::string> names;
    for (const view::Control* control : changed) names.push_back(control->Name());
    notices.push_back(std::move(names));
    if (onNotice) std::exchange(onNotice, nullptr)();
  }
  void StageChanged() override { ++stageNotices; }

  /// The names of the controls of each notice.
  std::vector<std::vector<std::string>> notices;
  int stageNotices = 0;
  /// Runs in the next notice of controls, once.
  std::function<void()> onNotice;
};

}  // namespace tarvo::test
