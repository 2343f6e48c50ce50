#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/scope.h"
#include "core/task.h"
#include "view/arrangement.h"
#include "view/control.h"

namespace tarvo::view {

class Screen;

/// A window: named controls, the events that it takes, and the tasks that its handlers run as.
class Window {
 public:
  Window(Screen& screen, std::string_view name, std::string_view caption);
  Window(const Window&) = delete;
  Window& operator=(const Window&) = delete;
  virtual ~Window();

  const std::string& Name() const { return name_; }
  std::string Caption;
  Screen& GetScreen() const { return screen_; }
  core::Scheduler& GetScheduler() const;

  const std::vector<Control*>& Controls() const { return controls_; }
  /// The control of that name ("TotIN(0)"), null when there is none.
  Control* Find(std::string_view name) const;

  /// True for a page that no navigation leads to: only `Screen::Open` shows it.
  virtual bool Hidden() const { return false; }
  /// How the window looks: made anew at each call.
  virtual Node Arrangement() const = 0;

  /// Runs once, when the window is first shown or first touched; a modal window, each time it is shown.
  virtual void Load() {}
  /// Runs each time the window comes to the front.
  virtual core::Task<> Activate();
  virtual void Deactivate() {}
  /// The user asks to close; false refuses.
  virtual core::Task<bool> QueryUnload();
  /// The last chance before the window goes.
  virtual void Unload() {}
  /// A key, before any control sees it.
  virtual void KeyDown(Key /*key*/) {}

  void EnsureLoaded();
  bool Loaded() const { return loaded_; }

  /// Starts `task`, owned by this window. A fault that it does not catch is shown in a message box.
  void Spawn(core::Task<> task, std::shared_ptr<core::Origin> origin = nullptr);

  /// Ends every task of the window. Whoever owns windows calls it before any of them goes, for tasks use the controls.
  void CancelTasks() { scope_.Cancel(); }

 private:
  friend class Control;
  friend class Screen;

  Screen& screen_;
  std::string name_;
  std::vector<Control*> controls_;
  bool loaded_ = false;
  core::Scope scope_;
};

}  // namespace tarvo::view
