#include "shell/main_window.h"

#include <algorithm>
#include <array>
#include <string>

#include "models/nerith.h"
#include "pages/device_page.h"
#include "shell/load_form.h"
#include "shell/version.h"
#include "view/screen.h"

namespace tarvo::shell {

using state::kFalse;
using state::kTrue;

namespace {

constexpr std::array<view::ListRow, 2> kFamilies = {{{"Vesk DEVICES"}, {"OTHER DEVICES!"}}};

/// `NrFinestra` of Dravo.
constexpr int kDravo = 2;

std::string TitleAndVersion(const char* between) {
  return kTitle + std::string(between) + std::string(Version());
}

}  // namespace

MainWindow::MainWindow(view::Screen& screen, state::SharedState& state, pages::ChangeValue& changeValue,
                       const Services& services)
    : Window(screen, "MDIForm1", TitleAndVersion(" ")),
      cbSelectDevice(*this, "cbSelectDevice", kFamilies, "Set devices family"),
      StatusBar1([this](int i) { return view::Panel(*this, "StatusBar1", i + 1); }),
      MSComm1(*this, "MSComm1", services.ports),
      ModCom1(*this, "ModCom1", services.ports),
      about(screen),
      home(screen, state, StatusBar1[0]),
      pcSetup({screen, state, services.ports, changeValue, StatusBar1[0]}),
      frmKeyb(screen, state, TitleAndVersion("  ")),
      state_(state),
      changeValue_(changeValue),
      help_(services.help),
      textFiles_(services.files),
      settings_(screen, state, services.values),
      search_({state, ModCom1, MSComm1, frmKeyb, StatusBar1[0], StatusBar1[1]}, *this),
      entries_{
          {LabHome, MenuHome, &home, -1, std::nullopt}, {LabPCSetup, MenuPCSetup, &pcSetup, -1, std::nullopt},
          {labBelk, MenuBelk, nullptr, 0, kTrue},       {labCobin, MenuCobin, nullptr, 1, kTrue},
          {labDravo, MenuDravo, nullptr, 2, kTrue},     {labFerrun, MenuFerrun, nullptr, 3, kTrue},
          {labGaven, MenuGaven, nullptr, 4, kTrue},     {labJorun, menuJorun, nullptr, 5, kTrue},
          {labLumet, mnuLumet, nullptr, 6, kTrue},      {labKelmar, menuKelmar, nullptr, 7, kFalse},
          {labHollin, MenuHollin, nullptr, 8, kFalse},  {labNerith, menuNerith, nullptr, 9, kTrue},
          {labMarlo, mnuMarlo, nullptr, 10, kTrue},     {LabQuenby, mnuQuenby, nullptr, 11, kTrue},
          {labOswin, menuOswin, nullptr, 12, kTrue},
      },
      navigation_{&cbSelectDevice, &buttCheckDevice, &mnuCheckconnection, &Command1} {
  for (const Entry& entry : entries_) {
    entry.label.OnClick = [this, &entry] { return LabelClick(entry); };
    entry.item.OnClick = entry.label.OnClick;
  }
  cbSelectDevice.OnSelect = [this] { ShowFamily(); };
  buttCheckDevice.OnClick = [this] { return SearchClick(); };
  mnuCheckconnection.OnClick = buttCheckDevice.OnClick;
  CheckEnableCheckConnection.OnClick = [this] { return SetConnectionClick(); };
  menuEnableCheckConnection.OnClick = CheckEnableCheckConnection.OnClick;
  Command1.OnClick = [this] { return Command1Click(); };
  OpenMNU.OnClick = [this] { return files_->Open(); };
  SaveMNU.OnClick = [this] { return files_->Save(); };
  ExitMNU.OnClick = [this] { return ExitClick(); };
  ContentsMNU.OnClick = [this] { return ContentsClick(); };
  frmAbout.OnClick = [this] { return AboutClick(); };
  MSComm1.OnComm = [this](bus::MSComm::Event event) { LineEvent(event); };
  screen.Guard = [this](const view::Control& control) { return WhyLocked(control); };
}

void MainWindow::SetPages(pages::PageContext& context, models::Nerith& nerith) {
  context_ = &context;
  nerith_ = &nerith;
  files_.emplace(GetScreen(), state_, context.table, textFiles_);
}

// Start-up.

core::Task<> MainWindow::StartUp() {
  state_.FamilyShown = kTrue;
  EnableNavigation();
  state_.SearchRunning = kFalse;
  state_.pageReadDone = kFalse;
  state_.pageEntered = kFalse;
  state_.EscPressed = 0;
  state_.AutoScan = 1;
  co_await settings_.ReadAutoScan();
  ShowAutoScan();
  state_.PCPort = 1;
  state_.ModuleAddress = 1;
  ScanPorts();
  state_.PCSettings = "9600,n,8,1";
  pcSetup.ShowLine();
  state_.StartComm = kFalse;
  OpenMNU.Enabled = false;
  SaveMNU.Enabled = false;
  state_.PollBuffer.fill(state::Word());
  co_await GoTo(entries_.front());
  if (state_.AutoScan == 1) co_await search_.CheckIfDeviceIsOnLine();
}

// Page list.

core::Task<> MainWindow::LabelClick(const Entry& entry) {
  if (entry.family) state_.FamilyShown = *entry.family;
  EnableNavigation();
  return GoTo(entry);
}

core::Task<> MainWindow::GoTo(const Entry& entry) {
  for (const Entry& other : entries_) other.label.BackColor = 0;
  entry.label.BackColor = view::kHighlight;
  view::Window* page = entry.window != nullptr ? entry.window : context_->table.Page(entry.page);
  const bool shown = co_await GetScreen().ShowPage(page);
  if (!shown) co_return;
  state_.NrFinestra = entry.page;
  const bool hasFile = entry.window == nullptr;
  OpenMNU.Enabled = hasFile;
  SaveMNU.Enabled = hasFile;
}

const MainWindow::Entry& MainWindow::EntryOf(int page) const {
  return *std::find_if(entries_.begin(), entries_.end(), [&](const Entry& entry) { return entry.page == page; });
}

void MainWindow::DisableNavigation() {
  for (view::Control* control : navigation_) control->Enabled = false;
  for (const Entry& entry : entries_) {
    entry.label.Enabled = false;
    entry.item.Enabled = false;
  }
}

void MainWindow::EnableNavigation() {
  for (view::Control* control : navigation_) control->Enabled = true;
  for (const Entry& entry : entries_) {
    entry.label.Enabled = true;
    entry.item.Enabled = true;
  }
  cbSelectDevice.ListIndex = state_.FamilyShown == kTrue ? 0 : 1;
  ShowFamily();
}

void MainWindow::ShowFamily() {
  state_.FamilyShown = cbSelectDevice.ListIndex() == 0 ? kTrue : kFalse;
  for (const Entry& entry : entries_) {
    if (entry.family) entry.label.Visible = *entry.family == state_.FamilyShown;
  }
}

void MainWindow::DisableTimers() {
  view::Timer& timer = *context_->table.Page(kDravo)->TimerControllo;
  controlloHeld_ = timer.Enabled;
  timer.Enabled = false;
}

void MainWindow::ReEnableTimers() {
  context_->table.Page(kDravo)->TimerControllo->Enabled = controlloHeld_;
}

std::string MainWindow::WhyLocked(const view::Control& control) const {
  if (!GetScreen().Working()) return {};
  const bool leadsAway = &control == &OpenMNU || &control == &SaveMNU ||
                         std::find(navigation_.begin(), navigation_.end(), &control) != navigation_.end() ||
                         std::any_of(entries_.begin(), entries_.end(), [&](const Entry& entry) {
                           return &control == &entry.label || &control == &entry.item;
                         });
  return leadsAway ? control.Name() + " is locked until the page has done its work on the module" : std::string();
}

// Search.

void MainWindow::SetConnection() {
  state_.AutoScan = state_.AutoScan == 0 ? 1 : 0;
  ShowAutoScan();
}

core::Task<> MainWindow::SetConnectionClick() {
  SetConnection();
  co_return;
}

core::Task<> MainWindow::Command1Click() {
  co_await GetScreen().ShowPage(nerith_);
}

void MainWindow::ShowAutoScan() {
  menuEnableCheckConnection.Value = state_.AutoScan;
  CheckEnableCheckConnection.Value = state_.AutoScan;
}

void MainWindow::LockRtdSettings() {
  nerith_->EnsureLoaded();
  nerith_->NerithEnableControls(false);
}

core::Task<> MainWindow::LeaveForHome() {
  return GoTo(entries_.front());
}

void MainWindow::ScanPorts() {
  pcSetup.TestPorts(MSComm1);
}

core::Task<> MainWindow::LoadForm(state::Word identity) {
  state_.PCPort = ModCom1.CommPort;
  state_.PCSettings = ModCom1.Settings();
  state_.ModuleAddress = ModCom1.ModuleAddr;
  pcSetup.ShowLine();

  const FoundModel* found = FindModel(identity);
  if (found == nullptr) {
    StatusBar1[1].Text = "Module Unknown";
    co_return;
  }
  (void)ModCom1.SetPortOpen(false);
  pages::DevicePage& page = *context_->table.Page(found->page);
  for (const FoundStep step : found->steps) {
    switch (step) {
      case FoundStep::kClick:
        co_await LabelClick(EntryOf(found->page));
        break;
      case FoundStep::kShow:
        co_await GetScreen().ShowPage(&page);
        break;
      case FoundStep::kSetFound:
        nerith_->SetFound(identity);
        break;
      case FoundStep::kReadOnce:
        if (state_.pageReadDone == kFalse) co_await page.ReadEEPromFlags();
        state_.pageReadDone = kTrue;
        break;
      case FoundStep::kEntered:
        state_.pageEntered = kTrue;
        break;
      case FoundStep::kCheckFWVersion:
        co_await page.CheckFoundFirmware(identity.Low());
        break;
      case FoundStep::kReadEEPromFlags:
        co_await page.ReadEEPromFlags();
        break;
    }
  }
  StatusBar1[1].Text = pages::ConnectionLine("Connected to " + std::string(found->text) + ", ", ModCom1);
}

void MainWindow::LineEvent(bus::MSComm::Event event) {
  using Event = bus::MSComm::Event;
  switch (event) {
    case Event::kBreak:
    case Event::kFraming:
    case Event::kOverrun:
    case Event::kParity:
    case Event::kTransmitFull:
    case Event::kDeviceControl:
      EnableNavigation();
      break;
    default:
      break;
  }
}

// Help.

core::Task<> MainWindow::ContentsClick() {
  help_.Open([this](std::string manual) { Spawn(SayWhere(std::move(manual))); });
  co_return;
}

core::Task<> MainWindow::SayWhere(std::string manual) {
  const std::string text = manual.empty()
                               ? "The manual is not installed on this machine."
                               : "This machine has no program that shows the manual. It is in the file\n" + manual;
  co_await GetScreen().MsgBox(text, view::Icon::kInformation);
}

core::Task<> MainWindow::AboutClick() {
  return GetScreen().ShowModal(about);
}

// Exit.

bool MainWindow::MustStopFirst() const {
  return state_.StartComm != kFalse || GetScreen().Working();
}

core::Task<> MainWindow::ExitClick() {
  if (MustStopFirst()) {
    co_await GetScreen().MsgBox(pages::kStopFirst, view::Icon::kNone);
    co_return;
  }
  context_->table.KillAllTimers();
  CloseAllForms();
  co_await StoreAndUnload(true);
}

core::Task<bool> MainWindow::QueryUnload() {
  if (MustStopFirst()) {
    co_await GetScreen().MsgBox(pages::kStopFirst, view::Icon::kExclamation);
    co_return false;
  }
  co_await StoreAndUnload(false);
  co_return true;
}

core::Task<> MainWindow::StoreAndUnload(bool formsClosed) {
  if (state_.SearchRunning == kTrue) co_return;
  co_await settings_.WriteAutoScan(state_.AutoScan);
  if (!formsClosed) CloseAllForms();
  ended_ = true;
}

void MainWindow::CloseAllForms() {
  for (const Entry& entry : entries_) {
    if (entry.window == nullptr) context_->table.Page(entry.page)->Unload();
  }
  home.Unload();
  pcSetup.Unload();
  changeValue_.Unload();
}

view::Node MainWindow::Arrangement() const {
  std::vector<view::Node> labels;
  labels.reserve(entries_.size());
  for (const Entry& entry : entries_) labels.push_back(view::Show(entry.label));
  return view::Column({
      view::Row({view::Show(cbSelectDevice), view::Show(buttCheckDevice), view::Space(), view::Show(Command1),
                 view::Show(CheckEnableCheckConnection)}),
      view::Row({view::PageList(std::move(labels)), view::PagePlace()}),
      view::Row({view::Show(StatusBar1[0]), view::Show(StatusBar1[1])}),
  });
}

}  // namespace tarvo::shell
