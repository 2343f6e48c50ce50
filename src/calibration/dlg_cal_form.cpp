#include "calibration/dlg_cal_form.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

#include "core/fault.h"
#include "state/number_text.h"
#include "view/hourglass.h"
#include "view/screen.h"

namespace tarvo::calibration {

using state::Register;
using state::Word;
using namespace state::literals;

namespace {

// Of input 1; each other input's stand behind it.
constexpr Register kValue = "40013"_reg;
constexpr Register kZero = "40021"_reg;
constexpr Register kSpan = "40025"_reg;
constexpr Register kStoredZero = "40085"_reg;
constexpr Register kStoredSpan = "40089"_reg;

constexpr std::int32_t kPlainSpan = 10000;
constexpr std::int32_t kLowestSpan = 8000;
constexpr std::int32_t kHighestSpan = 12000;
constexpr std::int32_t kMostZero = 1000;

constexpr std::size_t kLow = 0;
constexpr std::size_t kHigh = 1;

std::string TextOf(Word word) {
  return std::to_string(word.Signed());
}

}  // namespace

/// One routine on the bus: the port is open as long as it lives. The last one closes it.
class DlgCalForm::BusWork {
 public:
  explicit BusWork(DlgCalForm& dialog) : dialog_(dialog), hourglass_(dialog.GetScreen()) {
    ++dialog_.works_;
    bus::ModCom& modCom = dialog_.ModCom1;
    modCom.ModuleAddr = dialog_.state_.ModuleAddress;
    if (modCom.PortOpen()) return;
    modCom.CommPort = dialog_.state_.PCPort;
    modCom.Settings = dialog_.state_.PCSettings;
    modCom.LinkParamA = 2;
    modCom.LinkParamB = 2;
    // A port that does not open shows as a value that is not read or written.
    (void)modCom.SetPortOpen(true);
  }
  BusWork(const BusWork&) = delete;
  BusWork& operator=(const BusWork&) = delete;
  ~BusWork() {
    if (--dialog_.works_ > 0) return;
    (void)dialog_.ModCom1.SetPortOpen(false);
    dialog_.tellIdle_.Post();
  }

 private:
  DlgCalForm& dialog_;
  view::Hourglass hourglass_;
};

DlgCalForm::DlgCalForm(view::Screen& screen, state::SharedState& state, bus::PortOpener& ports)
    : Window(screen, "dlgCalForm", "Calibration Window"),
      ModCom1(*this, "ModCom1", ports),
      buttRead([this](int i) {
        const bool low = static_cast<std::size_t>(i) == kLow;
        return view::Button(*this, "buttRead", low ? "Read &low value" : "Read &high value",
                            low ? "read low value" : "read high value", i);
      }),
      tbActualValue([this](int i) { return view::TextBox(*this, "tbActualValue", "", i); }),
      tbValueToSet([this](int i) { return view::TextBox(*this, "tbValueToSet", "", i); }),
      state_(state),
      tellIdle_(screen.GetScheduler(), [this] { idle_.WakeAll(); }) {
  for (view::TextBox& shown : tbActualValue) shown.Enabled = false;
  for (view::Button* unused : {&buttExit, &CancelButton}) {
    unused->Visible = false;
    unused->Enabled = false;
  }
  for (const std::size_t row : {kLow, kHigh}) buttRead[row].OnClick = [this, row] { return ReadClick(row); };
  buttCalibra.OnClick = [this] { return CalibraClick(); };
  buttReset.OnClick = [this] { return ResetClick(); };
  buttSet.OnClick = [this] { return SetClick(); };
  OKButton.OnClick = [this] { return OkClick(); };
  for (view::TextBox& wanted : tbValueToSet) wanted.OnKey = [this](view::Key key) { return ValueKey(key); };
  for (view::TextBox* field : {&tbSpan, &tbZero}) field->OnKey = [this](view::Key key) { return LineKey(key); };
  timerStartComm.OnTimer = [this] { return StartCommTick(); };
}

core::Task<> DlgCalForm::ShowFor(int input) {
  input_ = input;
  Caption = "Calibration Window, Input  " + std::to_string(input + 1);
  return GetScreen().ShowModal(*this);
}

void DlgCalForm::Load() {
  const std::array<view::TextBox*, 6> fields = {
      &tbActualValue[kLow], &tbValueToSet[kLow], &tbActualValue[kHigh], &tbValueToSet[kHigh], &tbSpan, &tbZero};
  for (view::TextBox* field : fields) field->Text = "";
  StatusBar1.Text = "";
  LockAll(false);
  timerStartComm.Enabled = true;
}

core::Task<bool> DlgCalForm::QueryUnload() {
  LockAll(true);
  while (works_ > 0) co_await idle_.Wait();
  // A reset that ended meanwhile has started it.
  timerStartComm.Enabled = false;
  co_return true;
}

void DlgCalForm::LockAll(bool locked) {
  const std::array<view::Control*, 4> always = {&buttReset, &buttSet, &tbSpan, &tbZero};
  for (view::Control* control : always) control->Enabled = !locked;
  EnableRow(kLow, false);
  EnableRow(kHigh, false);
  buttCalibra.Enabled = false;
}

void DlgCalForm::EnableRow(std::size_t row, bool enabled) {
  buttRead[row].Enabled = enabled;
  tbValueToSet[row].Enabled = enabled;
}

// The bus.

core::Task<> DlgCalForm::ReadSpanAndZero() {
  const BusWork work(*this);
  StatusBar1.Text = "Read Span and Zero ";
  std::optional<Word> zero;
  co_await ModCom1.ReadPLC(kZero + input_, zero);
  co_await ModCom1.Free();
  std::optional<Word> span;
  co_await ModCom1.ReadPLC(kSpan + input_, span);
  co_await ModCom1.Free();
  if (!zero || !span) {
    StatusBar1.Text = "Unable To Read";
    co_return;
  }
  tbZero.Text = TextOf(*zero);
  tbSpan.Text = TextOf(*span);
  EnableRow(kLow, true);
}

core::Task<std::string> DlgCalForm::ReadActualValue(std::size_t row) {
  const BusWork work(*this);
  StatusBar1.Text = "Try to Read value";
  std::optional<Word> value;
  co_await ModCom1.ReadPLC(kValue + input_, value);
  co_await ModCom1.Free();
  if (!value) {
    StatusBar1.Text = "Unable to Read value";
    co_return std::string();
  }
  if (row == kLow) {
    EnableRow(kHigh, true);
  } else {
    buttCalibra.Enabled = true;
  }
  co_return TextOf(*value);
}

core::Task<std::int16_t> DlgCalForm::WriteSpanAndZero(std::int32_t m, std::int32_t q) {
  struct Step {
    Register target;
    Word value;
  };
  const Word zero = state::ToWord(std::to_string(q));
  const Word span = state::ToWord(std::to_string(m));
  const BusWork work(*this);
  StatusBar1.Text = "Try to write values";
  const std::array<Step, 4> steps = {
      {{kZero + input_, zero}, {kSpan + input_, span}, {kStoredZero + input_, zero}, {kStoredSpan + input_, span}}};
  bool written = false;
  for (const Step& step : steps) {
    const bus::Outcome outcome = co_await ModCom1.WritePLC(step.target, step.value);
    co_await ModCom1.Free();
    // An earlier one that failed stops nothing: only the last one counts.
    written = outcome.Good();
    if (!written) StatusBar1.Text = "Unable To write " + std::to_string(step.target.Number());
  }
  co_return written ? std::int16_t{1} : std::int16_t{0};
}

// The calculation.

core::Task<DlgCalForm::Line> DlgCalForm::Calibrating(double x1, double x2, double y1, double y2) {
  Line line;
  if (!(x2 > x1)) {
    co_await SayCritical("Invalid fields: X2 <=  X1 ");
    co_return line;
  }
  const double slope = (y2 - y1) / (x2 - x1);
  const std::int32_t m = state::RoundToInteger(slope);
  const std::int32_t q = state::RoundToInteger(y1 - slope * x1);
  line.m = std::clamp(m, kLowestSpan, kHighestSpan);
  line.q = std::clamp(q, -kMostZero, kMostZero);
  if (line.m != m || line.q != q) co_await SayCritical("Warning: m or q limited to maximum value.");
  line.result = co_await WriteSpanAndZero(line.m, line.q);
  co_return line;
}

// What the user does.

core::Task<> DlgCalForm::ReadClick(std::size_t row) {
  if (tbSpan.Text() != std::to_string(kPlainSpan) || tbZero.Text() != "0") {
    std::vector<std::string> buttons = {"Yes", "No"};
    const std::string answer =
        co_await GetScreen().Ask("Warning: you have to reset the module before read, do you want reset  the module?",
                                 view::Icon::kQuestion, std::move(buttons));
    if (answer != "Yes") co_return;
    co_await ResetClick();
  }
  const std::string value = co_await ReadActualValue(row);
  tbActualValue[row].Text = value;
}

core::Task<> DlgCalForm::CalibraClick() {
  const bool incomplete = tbValueToSet[kLow].Text().empty() || tbValueToSet[kHigh].Text().empty();
  const std::array<view::TextBox*, 6> fields = {
      &tbSpan, &tbZero, &tbActualValue[kLow], &tbActualValue[kHigh], &tbValueToSet[kLow], &tbValueToSet[kHigh]};
  const bool valid = std::all_of(fields.begin(), fields.end(),
                                 [](const view::TextBox* field) { return state::IsNumeric(field->Text()); });
  if (!valid) {
    co_await SayCritical("Invalid Fields");
    co_return;
  }
  // The test before has caught it already; it is there all the same.
  if (incomplete) {
    co_await SayCritical("Incomplete or incorrect fields, you must fill the form ");
    co_return;
  }
  const double span = state::ToInteger(tbSpan.Text());
  const double zero = state::ToInteger(tbZero.Text());
  const double x1 = state::ToNumber(tbActualValue[kLow].Text()) / span - zero;
  const double x2 = state::ToNumber(tbActualValue[kHigh].Text()) / span - zero;
  const double y1 = state::ToNumber(tbValueToSet[kLow].Text());
  const double y2 = state::ToNumber(tbValueToSet[kHigh].Text());
  const Line line = co_await Calibrating(x1, x2, y1, y2);
  if (line.result < 1) co_return;
  tbZero.Text = std::to_string(line.q);
  tbSpan.Text = std::to_string(line.m);
  StatusBar1.Text = "Calculated values : Zero = " + std::to_string(line.q) + " , Span =" + std::to_string(line.m);
}

core::Task<> DlgCalForm::ResetClick() {
  StatusBar1.Text = "Write Span and Zero ";
  const std::int16_t result = co_await WriteSpanAndZero(kPlainSpan, 0);
  if (result != 1) co_return;
  timerStartComm.Enabled = true;
  buttCalibra.Enabled = false;
  EnableRow(kLow, false);
  EnableRow(kHigh, false);
}

core::Task<> DlgCalForm::SetClick() {
  if (!state::IsNumeric(tbSpan.Text()) || !state::IsNumeric(tbZero.Text())) {
    co_await SayCritical("Invalid values m,q");
    co_return;
  }
  const std::int32_t m = state::ToInteger(tbSpan.Text());
  const std::int32_t q = state::ToInteger(tbZero.Text());
  co_await WriteSpanAndZero(m, q);
}

core::Task<> DlgCalForm::OkClick() {
  co_await QueryUnload();
  GetScreen().CloseModal(*this);
}

core::Task<> DlgCalForm::ValueKey(view::Key key) {
  if (key == view::Key::kEscape) {
    co_await OkClick();
  } else if (buttCalibra.Enabled) {
    co_await CalibraClick();
  }
}

core::Task<> DlgCalForm::LineKey(view::Key key) {
  return key == view::Key::kEscape ? OkClick() : SetClick();
}

core::Task<> DlgCalForm::StartCommTick() {
  timerStartComm.Enabled = false;
  return ReadSpanAndZero();
}

core::Task<> DlgCalForm::SayCritical(std::string text) {
  co_await GetScreen().MsgBox(std::move(text), view::Icon::kCritical);
}

// How it looks.

view::Node DlgCalForm::Arrangement() const {
  std::vector<view::Node> points;
  for (const std::size_t row : {kLow, kHigh}) {
    points.push_back(
        view::Row({view::Show(buttRead[row]), view::Show(tbActualValue[row]), view::Show(tbValueToSet[row])}));
  }
  return view::Column({
      view::Table({"", Label3.Caption(), Label4.Caption()}, std::move(points)),
      view::Row({view::Show(Label5), view::Space(), view::Show(buttCalibra)}),
      view::Row({
          view::Field(Label2.Caption(), view::Show(tbSpan)),
          view::Field(Label1.Caption(), view::Show(tbZero)),
          view::Show(buttReset),
          view::Show(buttSet),
      }),
      view::Show(StatusBar1),
      view::Row({view::Space(), view::Show(OKButton)}),
  });
}

}  // namespace tarvo::calibration
