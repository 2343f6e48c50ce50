#include "bus/rawlink/frm_plug_and_play.h"

#include <optional>
#include <utility>

#include "core/fault.h"
#include "view/screen.h"

namespace tarvo::bus {

namespace {

/// Milliseconds that each exchange gives the module, a hard wait.
constexpr std::int32_t kWait = 200;

}  // namespace

FrmPlugAndPlay::FrmPlugAndPlay(view::Screen& screen, state::SharedState& state, PortOpener& opener)
    : Window(screen, "frmPlugAndPlay", "Plug and Play"),
      Parameter(
          [this](int i) { return view::Label(*this, "Parameter", "", "Register " + std::to_string(40001 + i), i); }),
      MSComm1(*this, "MSComm1", opener),
      state_(state) {
  TimerRefresh.OnTimer = [this] { return TimerRefreshTick(); };
}

void FrmPlugAndPlay::ShowParameter(int number, const std::string& text) {
  if (number < 0 || number >= kParameters) throw core::Fault(core::kSubscriptOutOfRange);
  Parameter[number].Caption = text;
}

void FrmPlugAndPlay::Load() {
  index_ = 0;
}

core::Task<> FrmPlugAndPlay::Activate() {
  // Nobody else sets the exchange up: it goes to the module that PC-Setup names.
  state_.NrFinestra = -1;
  Link.SlaveByte = static_cast<std::uint8_t>(state_.ModuleAddress);
  Link.WordCount = 1;
  Link.ParameterCount = kParameters - 1;
  MSComm1.CommPort = state_.PCPort;
  MSComm1.Settings = state_.PCSettings;
  const core::Status opened = MSComm1.SetPortOpen(true);
  TimerRefresh.Enabled = opened.Ok();
  if (opened.Ok()) co_return;
  std::string text = opened.GetFault().Advice();
  if (text.empty()) text = opened.Description();
  co_await GetScreen().MsgBox(std::move(text), view::Icon::kExclamation);
}

void FrmPlugAndPlay::Deactivate() {
  TimerRefresh.Enabled = false;
  (void)MSComm1.SetPortOpen(false);
}

core::Task<> FrmPlugAndPlay::TimerRefreshTick() {
  std::optional<std::string> fault;
  try {
    Link.ExchangeParameter(*this, index_, kWait);
    index_ = index_ < Link.ParameterCount ? index_ + 1 : 0;
  } catch (const core::Fault& met) {
    fault = met.what();
  }
  // The tick lasts as long as the box stands, so that a line which babbles does not pile up one a second.
  if (fault) co_await GetScreen().MsgBox(*fault, view::Icon::kExclamation);
}

view::Node FrmPlugAndPlay::Arrangement() const {
  constexpr int kColumns = 2;
  std::vector<view::Node> columns;
  for (int column = 0; column < kColumns; ++column) {
    std::vector<view::Node> fields;
    for (int row = 0; row < kParameters / kColumns; ++row) {
      const view::Label& value = Parameter[column * kParameters / kColumns + row];
      fields.push_back(view::Field(value.ToolTipText(), view::Show(value)));
    }
    columns.push_back(view::Column(std::move(fields)));
  }
  return view::Column({
      view::Head(Caption, "Registers read by raw exchanges", {}),
      view::Frame("Parameters", view::Row(std::move(columns))),
      view::Space(),
  });
}

}  // namespace tarvo::bus
