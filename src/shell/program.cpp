#include "shell/program.h"

#include "bus/rawlink/frm_plug_and_play.h"
#include "models/belk.h"
#include "models/cobin.h"
#include "models/dravo.h"
#include "models/ferrun.h"
#include "models/gaven.h"
#include "models/hollin.h"
#include "models/jorun.h"
#include "models/kelmar.h"
#include "models/lumet.h"
#include "models/marlo.h"
#include "models/nerith.h"
#include "models/oswin.h"
#include "models/quenby.h"
#include "pages/change_value.h"
#include "pages/dlg_set_new_value.h"
#include "pages/page_table.h"
#include "shell/main_window.h"

namespace tarvo::shell {

struct Program::Parts {
  explicit Parts(const Services& services)
      : screen(services.scheduler),
        mainWindow(screen, state, changeValue, services),
        context{screen, state,       services.ports,        mainWindow, mainWindow.Panels(),
                table,  changeValue, services.programFolder} {
    windows = {&belk,
               &cobin,
               &dravo,
               &ferrun,
               &gaven,
               &jorun,
               &lumet,
               &kelmar,
               &hollin,
               &nerith,
               &marlo,
               &quenby,
               &oswin,
               &dlgCalForm,
               &frmPlugAndPlay,
               &mainWindow.home,
               &mainWindow.pcSetup,
               &mainWindow.about,
               &mainWindow.frmKeyb,
               &changeValue,
               &dlgSetNewValue,
               &mainWindow};
    mainWindow.SetPages(context, nerith);
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
  pages::DlgSetNewValue dlgSetNewValue{screen, state};
  MainWindow mainWindow;
  pages::PageContext context;
  models::Belk belk{context};
  models::Cobin cobin{context};
  models::Dravo dravo{context};
  models::Ferrun ferrun{context};
  models::Gaven gaven{context};
  calibration::DlgCalForm dlgCalForm{screen, state, context.ports};
  models::Jorun jorun{context, dlgCalForm};
  models::Lumet lumet{context};
  models::Kelmar kelmar{context, dlgCalForm};
  models::Hollin hollin{context};
  models::Nerith nerith{context};
  models::Marlo marlo{context};
  models::Quenby quenby{context, dlgSetNewValue};
  models::Oswin oswin{context};
  bus::FrmPlugAndPlay frmPlugAndPlay{screen, state, context.ports};
  std::vector<view::Window*> windows;
  bool starting = true;
};

Program::Program(const Services& services) : parts_(std::make_unique<Parts>(services)) {}

Program::~Program() = default;

void Program::Start() {
  parts_->mainWindow.Spawn(Load());
}

core::Task<> Program::Load() {
  co_await parts_->mainWindow.StartUp();
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

config::SettingsFiles& Program::Files() {
  return parts_->mainWindow.Files();
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

}  // namespace tarvo::shell
