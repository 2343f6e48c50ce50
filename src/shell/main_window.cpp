#include "shell/main_window.h"

#include <string>

#include "shell/program.h"
#include "view/screen.h"

namespace tarvo::shell {

MainWindow::MainWindow(view::Screen& screen, state::SharedState& state)
    : Window(screen, "MDIForm1", "Tarvo " + std::string(Version())),
      StatusBar1([this](int i) { return view::Panel(*this, "StatusBar1", i + 1); }),
      state_(state),
      entries_{{labBelk, MenuBelk, 0, state::kTrue}} {
  for (const Entry& entry : entries_) {
    entry.label.OnClick = [this, entry] { return LabelClick(entry); };
    entry.item.OnClick = entry.label.OnClick;
  }
  ExitMNU.OnClick = [this] { return ExitClick(); };
  screen.Guard = [this](const view::Control& control) { return WhyLocked(control); };
}

void MainWindow::SetPages(pages::PageContext& context) {
  context_ = &context;
}

core::Task<> MainWindow::ShowFirstPage() {
  return LabelClick(entries_.front());
}

core::Task<> MainWindow::LabelClick(Entry entry) {
  state_.FamilyShown = entry.family;
  EnableNavigation();
  for (const Entry& other : entries_) other.label.BackColor = 0;
  entry.label.BackColor = view::kHighlight;
  const bool shown = co_await GetScreen().ShowPage(context_->table.Page(entry.page));
  if (shown) state_.NrFinestra = entry.page;
}

void MainWindow::DisableNavigation() {
  for (const Entry& entry : entries_) {
    entry.label.Enabled = false;
    entry.item.Enabled = false;
  }
}

void MainWindow::EnableNavigation() {
  for (const Entry& entry : entries_) {
    entry.label.Enabled = true;
    entry.item.Enabled = true;
  }
}

std::string MainWindow::WhyLocked(const view::Control& control) const {
  if (context_ == nullptr || context_->hourglasses == 0) return {};
  for (const Entry& entry : entries_) {
    if (&control == &entry.label || &control == &entry.item) {
      return control.Name() + " is locked until the page has done its work on the module";
    }
  }
  return {};
}

bool MainWindow::MustStopFirst() const {
  return state_.StartComm != state::kFalse || context_->hourglasses > 0;
}

core::Task<> MainWindow::ExitClick() {
  if (MustStopFirst()) {
    co_await GetScreen().MsgBox(pages::kStopFirst, view::Icon::kNone);
    co_return;
  }
  Unload();
}

core::Task<bool> MainWindow::QueryUnload() {
  if (!MustStopFirst()) co_return true;
  co_await GetScreen().MsgBox(pages::kStopFirst, view::Icon::kExclamation);
  co_return false;
}

void MainWindow::Unload() {
  for (const Entry& entry : entries_) context_->table.Page(entry.page)->Unload();
  ended_ = true;
}

view::Node MainWindow::Arrangement() const {
  std::vector<view::Node> labels;
  labels.reserve(entries_.size());
  for (const Entry& entry : entries_) labels.push_back(view::Show(entry.label));
  return view::Column({
      view::Row({view::PageList(std::move(labels)), view::PagePlace()}),
      view::Row({view::Show(StatusBar1[0]), view::Show(StatusBar1[1])}),
  });
}

}  // namespace tarvo::shell
