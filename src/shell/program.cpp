#include "shell/program.h"

#include "models/belk.h"
#include "pages/change_value.h"
#include "pages/page_table.h"
#include "shell/main_window.h"

namespace tarvo::shell {

struct Program::Parts {
  explicit Parts(const Services& services)
      : screen(services.scheduler),
        context{screen, state, services.ports, mainWindow, table, changeValue, services.programFolder} {
    windows = {&belk, &changeValue, &mainWindow};
    mainWindow.SetPages(context);
    screen.SetMain(&mainWindow);
  }

  ~Parts() {
    // No task outlives what it uses, and tasks of one window use others.
    for (view::Window* window : windows) window->CancelTasks();
  }

  view::Screen screen;
  state::SharedState state;
  pages::PageTable table{state};
  pages::ChangeValue changeValue{screen, state};
  MainWindow mainWindow{screen, state};
  pages::PageContext context;
  models::Belk belk{context};
  std::vector<view::Window*> windows;
  bool starting = true;
};

Program::Program(const Services& services) : parts_(std::make_unique<Parts>(services)) {}

Program::~Program() = default;

void Program::Start() {
  parts_->mainWindow.Spawn(Load());
}

core::Task<> Program::Load() {
  parts_->mainWindow.EnableNavigation();
  co_await parts_->mainWindow.ShowFirstPage();
  parts_->starting = false;
}

bool Program::Starting() const {
  return parts_->starting;
}

bool Program::Ended() const {
  return parts_->mainWindow.Ended();
}

view::Screen& Program::GetScreen() {
  return parts_->screen;
}

state::SharedState& Program::State() {
  return parts_->state;
}

const std::vector<view::Window*>& Program::Windows() const {
  return parts_->windows;
}

view::Window* Program::FindWindow(std::string_view name) const {
  for (view::Window* window : parts_->windows) {
    if (window->Name() == name) return window;
  }
  return nullptr;
}

std::string_view Version() {
  return TARVO_VERSION;
}

}  // namespace tarvo::shell
