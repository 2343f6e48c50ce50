#include "models/marlo.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "bus/modcom/register_access.h"
#include "state/number_text.h"
#include "view/hourglass.h"
#include "view/screen.h"

namespace tarvo::models {

using state::kFalse;
using state::kTrue;
using state::Register;
using state::Word;
using namespace state::literals;

namespace {

constexpr pages::PageIdentity kIdentity = {
    .number = 10,
    .model = "Marlo",
    .window = "frmMarlo",
    .code = 0x0D,
    .poll = {Marlo::kStatus, 8},
    .runKind = 2,
    .reset = std::nullopt,
    // This page shows the release that a register of its own tells.
    .firmware = "",
    .connected = "Connected to Marlo , ",
    .names = {.start = "buttStartMarlo", .stop = "buttStopMarlo", .weep = "buttWEEPMarlo", .firmware = "labFW"},
    .updated = {"EEProm updated! Now you have to restart the module ", view::Icon::kExclamation},
    .setupLinkParams = 6,
    .hasTimerControllo = false,
};

struct StatusName {
  unsigned mask;
  const char* caption;
  const char* tip;
};
constexpr std::array<StatusName, Marlo::kStatusLamps> kStatusNames = {{
    {0x01, "Short Circuit", "40002.0 - Short circuit on output"},
    {0x02, "Open Output", "40002.1 - Open circuit on output"},
    {0x04, "Temp. over range", "40002.2 - Driver overtemperature "},
    {0x08, "Module Error", "40002.3 - General error"},
    {0x40, "V. under threshold", "40002.6 - Output supply undervoltage"},
}};

struct RowName {
  const char* caption;
  const char* tip;
};
/// The sixth carries the tool tip of the fifth, which is meant.
constexpr std::array<RowName, Marlo::kLampRows> kRowNames = {{
    {"Diagnostic", "40004.0-40004.9 - DIAGNOSTICS"},
    {"Default Outputs", "40005.0-40005.9 - DEFAULT OUTPUTS"},
    {"Opened Outputs", "40006.0-40006.9 - OPENED OUTPUTS"},
    {"Shorted Outputs", "40007.0-40007.9 - SHORTED OUTPUTS"},
    {"Hot Outputs", "40008.0-40008.9 - HOT OUTPUTS"},
    {"Opened Mask", "40008.0-40008.9 - HOT OUTPUTS"},
}};

constexpr std::array<view::ListRow, 4> kFailLeds = {{{"always on"}, {"slow blink"}, {"fast blink"}, {"double flash"}}};

constexpr unsigned kResetTimeout = 0x0001;
constexpr unsigned kFailLed = 0x0002;
constexpr unsigned kFailLedMode = 0x0300;
constexpr unsigned kParityBits = 0x0003;
constexpr unsigned kLowConf = 0x000F;
constexpr unsigned kBaudBits = 0x0700;
constexpr unsigned kParityEven = 1;
constexpr unsigned kParityOdd = 2;

/// Between two writes to the EEPROM.
constexpr int kSettle = 200;

constexpr unsigned BitOf(int output) {
  return 0x0001U << output;
}

/// The first button says output 2, as the second does: that is meant.
std::string OutputTip(int output) {
  const int told = std::max(output, 1);
  return "40003." + std::to_string(told) + " - Output " + std::to_string(told + 1);
}

/// Holds the button of an output while its click works.
class OutputPause {
 public:
  explicit OutputPause(view::ImageBox& button) : button_(button) { button_.Enabled = false; }
  OutputPause(const OutputPause&) = delete;
  OutputPause& operator=(const OutputPause&) = delete;
  ~OutputPause() { button_.Enabled = true; }

 private:
  view::ImageBox& button_;
};

/// Tenths as a number of wholes: 24 gives "2.4", 20 gives "2".
std::string TenthsText(int tenths) {
  return tenths % 10 == 0 ? std::to_string(tenths / 10) : state::WithDecimals(tenths, 1);
}

/// The rows of lamps that a click changes.
constexpr std::array<Marlo::ClickRow, 3> kClickRows = {{
    {Marlo::kDiagnostics, 0xFFFF, false},
    {Marlo::kDefaults, 0xFFFF, true},
    {Marlo::kOpenedMask, 0x03FF, true},
}};

}  // namespace

Marlo::Marlo(pages::PageContext& context)
    : DevicePage(context, kIdentity),
      buttOUTMarlo([this](int i) { return view::ImageBox(*this, "buttOUTMarlo", OutputTip(i), i); }),
      LabelOUT([this](int i) { return view::Label(*this, "LabelOUT", "Out-" + std::to_string(i + 1), "", i); }),
      shStatus([this](int i) {
        const StatusName& name = kStatusNames.at(static_cast<std::size_t>(i));
        return view::Lamp(*this, "shStatus", name.caption, name.tip, i);
      }),
      shDamage([this](int i) { return view::Lamp(*this, "shDamage", "", kRowNames[0].tip, i); }),
      shDefault([this](int i) { return view::Lamp(*this, "shDefault", "", kRowNames[1].tip, i); }),
      shOpen([this](int i) { return view::Lamp(*this, "shOpen", "", kRowNames[2].tip, i); }),
      shShorted([this](int i) { return view::Lamp(*this, "shShorted", "", kRowNames[3].tip, i); }),
      shHot([this](int i) { return view::Lamp(*this, "shHot", "", kRowNames[4].tip, i); }),
      shOpenedMask([this](int i) { return view::Lamp(*this, "shOpenedMask", "", "", i); }),
      labNum([this](int i) {
        return view::Label(*this, i == 0 ? "labNum" : "labNum" + std::to_string(i + 1), "1 2 3 4 5 6 7 8 9 10");
      }),
      labRow([this](int i) {
        const RowName& name = kRowNames.at(static_cast<std::size_t>(i));
        return view::Label(*this, "labRow", name.caption, name.tip, i);
      }),
      checkMask([this](int i) {
        return view::CheckBox(*this, "checkMask", "Out" + std::to_string(i + 1), "Press button to enable diagnostic",
                              i);
      }),
      ComboFailLed(*this, "ComboFailLed", kFailLeds, "40012.8-40012.9 led activation mode"),
      fields_(MakeFields()) {
  WEEP.Caption = "&Write";
  WEEP.ToolTipText = "Write settings to eeprom: serial settings, safety timeout, diagnostic mask";
  WEEP.OnClick = [this] { return WEEPMarloClick(); };
  txtVoltage.Text = "0";
  txtVoltage.Locked = true;
  txtValTreshold.Text = "0";
  txtDelay.Text = "0";
  ComboFailLed.ListIndex = 0;
  OptionEven.Value = true;
  checkParity.OnChange = [this] {
    OptionEven.Enabled = checkParity.Value() != 0;
    OptionOdd.Enabled = checkParity.Value() != 0;
  };
  checkParity.OnChange();
  for (int i = 0; i < kCount; ++i) {
    buttOUTMarlo[i].OnClick = [this, i] { return OutputClick(i); };
    for (const ClickRow& row : kClickRows) {
      (*RowOf(row.target))[i].OnClick = [this, &row, i] { return LampClick(row, i); };
    }
    checkMask[i].OnClick = [this, i] { return MaskClick(i); };
  }
  BindEdit(labAddressMarlo, 1, 255);
  BindEdit(labSafetimeMarlo, 0, 65535);
  BindNumber(txtDelay, "Delay is not numeric !");
  BindNumber(txtValTreshold, "Val Treshold is not numeric !");
}

std::vector<pages::FileField> Marlo::MakeFields() {
  std::vector<pages::FileField> fields;
  fields.push_back({[this] { return std::to_string(cbBaudMarlo.SelectedCode() * 256 | lowConf_); },
                    [this](const std::string& text) {
                      const Word baud = state::LowWord(text);
                      lowConf_ = baud.And(kLowConf).Low();
                      cbBaudMarlo.SelectCode(baud.And(kBaudBits).High());
                    }});
  fields.push_back({[this] {
                      const std::int32_t address = state::ToInteger(labAddressMarlo.Caption());
                      return std::to_string(static_cast<std::int32_t>(ParityCode()) | address * 256);
                    },
                    [this](const std::string& text) {
                      const Word address = state::LowWord(text);
                      ShowParity(static_cast<unsigned>(address.And(kParityBits).Low()));
                      labAddressMarlo.Caption = std::to_string(address.High());
                    }});
  fields.push_back(
      {[this] { return std::to_string(state::ToInteger(labSafetimeMarlo.Caption())); },
       [this](const std::string& text) { labSafetimeMarlo.Caption = std::to_string(state::ToInteger(text)); }});
  fields.push_back({[this] { return std::to_string(OptionsShown().Unsigned()); },
                    [this](const std::string& text) { ShowOptions(state::LowWord(text)); }});
  const std::size_t number = fields.size() + 1;
  fields.push_back({[this, number] { return StoredThreshold(State().FileFields.at(number)); },
                    [this](const std::string& text) {
                      const std::int32_t stored = state::ToInteger(text);
                      txtValTreshold.Text = TenthsText(stored & 0xFF);
                      txtDelay.Text = std::to_string(stored / 256);
                    }});
  return fields;
}

/// Threshold and delay for the file, tenths kept. Texts that are no numbers leave the field as it was.
std::string Marlo::StoredThreshold(const std::string& last) const {
  if (!NumbersTyped()) return last;
  const std::int32_t threshold = state::RoundToInteger(state::ToNumber(txtValTreshold.Text()) * 10);
  return std::to_string(threshold | state::RoundToInteger(state::ToNumber(txtDelay.Text()) * 256));
}

// What Start, the poll and the search do.

void Marlo::Load() {
  DevicePage::Load();
  cbBaudMarlo.ListIndex = 1;
  State().pageReadDone = kFalse;
}

core::Task<> Marlo::Activate() {
  // A return from a dialog in a session leaves the session as it is.
  if (Enters()) State().StartComm = kFalse;
  if (State().pageEntered != kFalse) co_return;
  Start.Enabled = false;
  co_await CheckFWVersion();
  co_await ReadEEPromFlags();
  State().pageEntered = kTrue;
  State().pageReadDone = kTrue;
}

void Marlo::Deactivate() {
  DevicePage::Deactivate();
  pageRead_ = false;
  State().pageEntered = kFalse;
  State().pageReadDone = kFalse;
  Context().status.connection.Text = "";
}

core::Task<> Marlo::CheckFWVersion() {
  const view::Hourglass hourglass(GetScreen());
  const PortVisit visit(*this);
  const std::optional<Word> release = co_await ReadOne(kRelease);
  if (release) Firmware.Caption = "Firmware rel: " + std::to_string(release->Unsigned());
}

core::Task<> Marlo::CheckFoundFirmware(int /*release*/) {
  return CheckFWVersion();
}

core::Task<> Marlo::ApplyFirmware(int /*release*/) {
  co_await CheckFWVersion();
  if (!pageRead_) co_await ReadEEPromFlags();
}

core::Task<> Marlo::ReadEEPromFlags() {
  const bool ours = co_await ReadSettings();
  if (ours) {
    pageRead_ = true;
  } else {
    Context().status.connection.Text = "This module is not a Marlo";
  }
  Start.Enabled = true;
}

core::Task<> Marlo::ShowRegisters() {
  const std::optional<Word> outputs = co_await ReadOne(kOutputs);
  if (outputs) PaintOutputs(*outputs);
  const std::optional<Word> address = co_await ReadOne(kAddress);
  if (address) {
    ShowParity(static_cast<unsigned>(address->And(kParityBits).Low()));
    labAddressMarlo.Caption = std::to_string(address->High());
  }
  const std::optional<Word> baud = co_await ReadOne(kBaud);
  if (baud) {
    lowConf_ = baud->And(kLowConf).Low();
    cbBaudMarlo.SelectCode(baud->And(kBaudBits).High());
  }
  const std::optional<Word> voltage = co_await ReadOne(kVoltage);
  if (voltage) ShowVoltage(*voltage);
  for (const Register row : {kDiagnostics, kDefaults, kOpened, kShorted, kHot, kOpenedMask}) {
    const std::optional<Word> bits = co_await ReadOne(row);
    if (bits) PaintBits(row, *bits);
  }
  const std::optional<Word> status = co_await ReadOne(kStatus);
  if (status) PaintStatus(*status);
  const std::optional<Word> safeTime = co_await ReadOne(kSafeTime);
  if (safeTime) labSafetimeMarlo.Caption = std::to_string(safeTime->Unsigned());
  co_await ReadFlags();
}

core::Task<> Marlo::ReadFlags() {
  const std::optional<Word> options = co_await ReadOne(kOptions);
  if (options) ShowOptions(*options);
  const std::optional<Word> threshold = co_await ReadOne(kThreshold);
  if (threshold) {
    // The tenths of a volt are not shown, which is meant.
    txtValTreshold.Text = std::to_string(threshold->Low() / 10);
    txtDelay.Text = std::to_string(threshold->High());
  }
}

void Marlo::ShowOptions(Word options) {
  CheckResetTimeout.Value = options.Has(kResetTimeout) ? 1 : 0;
  CheckFailLed.Value = options.Has(kFailLed) ? 1 : 0;
  ComboFailLed.ListIndex = options.And(kFailLedMode).High();
}

core::Task<> Marlo::ManageContinue() {
  ManageMarlo();
  co_return;
}

void Marlo::ManageMarlo() {
  PaintOutputs(Polled(kOutputs));
  for (const Register row : {kDiagnostics, kDefaults, kOpened, kShorted, kHot}) PaintBits(row, Polled(row));
  ShowVoltage(Polled(kVoltage));
  PaintStatus(Polled(kStatus));
}

void Marlo::PaintOutputs(Word outputs) {
  for (int i = 0; i < kCount; ++i) buttOUTMarlo[i].Picture = outputs.Has(BitOf(i)) ? 2 : 1;
}

void Marlo::PaintBits(Register source, Word bits) {
  view::ControlArray<view::Lamp, kCount>* row = RowOf(source);
  if (row == nullptr) return;
  for (int i = 0; i < kCount; ++i) (*row)[i].BackColor = bits.Has(BitOf(i)) ? view::kRed : view::kGreen;
}

void Marlo::PaintStatus(Word status) {
  for (std::size_t i = 0; i < kStatusNames.size(); ++i) {
    shStatus[i].BackColor = status.Has(kStatusNames[i].mask) ? view::kRed : view::kGreen;
  }
}

void Marlo::ShowVoltage(Word voltage) {
  txtVoltage.Text = TenthsText(voltage.Unsigned());
}

void Marlo::ShowParity(unsigned code) {
  checkParity.Value = code == kParityEven || code == kParityOdd ? 1 : 0;
  (code == kParityOdd ? OptionOdd : OptionEven).Value = true;
}

view::ControlArray<view::Lamp, Marlo::kCount>* Marlo::RowOf(Register source) {
  const std::array<std::pair<Register, view::ControlArray<view::Lamp, kCount>*>, kLampRows> rows = {{
      {kDiagnostics, &shDamage},
      {kDefaults, &shDefault},
      {kOpened, &shOpen},
      {kShorted, &shShorted},
      {kHot, &shHot},
      {kOpenedMask, &shOpenedMask},
  }};
  for (const auto& [target, row] : rows) {
    if (target == source) return row;
  }
  return nullptr;
}

// What the user does.

core::Task<> Marlo::OutputClick(int output) {
  if (PortIsTaken()) co_return;
  const view::Hourglass hourglass(GetScreen());
  const OutputPause held(buttOUTMarlo[output]);
  if (InSession()) {
    const PollPause pause(*this);
    co_await ModCom1.Free();
    co_await Toggle(output);
  } else {
    {
      const PortVisit visit(*this);
      co_await Toggle(output);
    }
    co_await ReadEEPromFlags();
  }
}

core::Task<> Marlo::Toggle(int output) {
  const std::optional<Word> outputs = co_await ReadOne(kOutputs);
  if (!outputs) co_return;
  const unsigned mask = BitOf(output);
  const Word toggled = outputs->Has(mask) ? outputs->And(~mask) : outputs->Or(mask);
  if (InSession()) {
    co_await WriteAndKeep(kOutputs, toggled);
    co_return;
  }
  co_await ModCom1.WritePLC(kOutputs, toggled);
  co_await ModCom1.Free();
}

core::Task<> Marlo::LampClick(const ClickRow& row, int lamp) {
  if (InSession()) {
    GetScreen().Beep();
    co_return;
  }
  if (PortIsTaken()) co_return;
  const view::Hourglass hourglass(GetScreen());
  const PortVisit visit(*this);
  if (!visit.Opened().Ok() && row.setsToo) {
    const std::string text = "ERROR " + visit.Opened().Description();
    co_await GetScreen().MsgBox(text, view::Icon::kExclamation);
    co_return;
  }
  co_await ChangeLamp(row, lamp);
}

core::Task<> Marlo::ChangeLamp(const ClickRow& row, int lamp) {
  const int read = co_await bus::ReadRegister(ModCom1, row.target);
  const unsigned mask = BitOf(lamp);
  Word value(static_cast<unsigned>(read));
  // A word with bit 15 goes back as it came, but for the one that is all ones.
  if (read >= -1) {
    view::Lamp& face = (*RowOf(row.target))[lamp];
    if (value.Has(mask & row.mask)) {
      value = value.And(~mask & row.mask);
      face.BackColor = view::kGreen;
    } else if (row.setsToo) {
      value = value.Or(mask).And(row.mask);
      face.BackColor = view::kRed;
    }
  }
  co_await bus::WriteRegister(ModCom1, row.target, value.Unsigned(), Context().status.passing);
  if (!row.setsToo) Context().status.passing.Text = "Diagnostic Led can only be set to 0";
}

void Marlo::BindNumber(view::TextBox& text, const char* complaint) {
  text.OnLeave = [this, &text, complaint] { return Normalise(text, complaint); };
  text.OnKey = [this, &text, complaint](view::Key key) { return NumberKey(text, complaint, key); };
}

core::Task<> Marlo::NumberKey(view::TextBox& text, const char* complaint, view::Key key) {
  if (key == view::Key::kEnter) co_await Normalise(text, complaint);
}

core::Task<> Marlo::Normalise(view::TextBox& text, const char* complaint) {
  if (!state::IsNumeric(text.Text())) {
    co_await GetScreen().MsgBox(complaint, view::Icon::kExclamation);
    co_return;
  }
  text.Text = state::PointToComma(text.Text());
}

/// In a session too it closes the port at its end, and the polling stays off: that is meant.
core::Task<> Marlo::WEEPMarloClick() {
  if (PortIsTaken()) co_return;
  const view::Hourglass hourglass(GetScreen());
  const DeedPause deeds(*this);
  std::optional<PollPause> pause;
  if (InSession()) {
    pause.emplace(*this);
    pause->LeaveOff();
  }
  PortVisit visit(*this);
  const int session = Session();
  const Word identity(static_cast<unsigned>(co_await bus::ReadRegister(ModCom1, "40001"_reg)));
  // A Stop meanwhile has ended all.
  if (session != Session()) co_return;
  if (IsOurs(identity)) {
    visit.CloseAnyway();
    co_await Commit();
  } else {
    co_await SayWrongModule();
    co_await EndSession();
  }
}

core::Task<> Marlo::WriteEEprom() {
  // Taken before the first write, so that a text which is no number tears nothing.
  const std::int32_t safeTime = state::ToInteger(labSafetimeMarlo.Caption());
  const std::int32_t address = state::ToInteger(labAddressMarlo.Caption());
  const std::optional<std::int32_t> threshold = ThresholdAndDelay();
  co_await WriteStored(kBaud, cbBaudMarlo.SelectedCode() * 256);
  co_await WriteStored(kSafeTime, safeTime);
  co_await WriteFlags(threshold);
  bus::wait(GetScheduler(), kSettle);
  co_await WriteStored(kAddress, static_cast<std::int32_t>(ParityCode()) | (address * 256));
}

/// The word of threshold and delay; nothing when one of the texts is no number.
std::optional<std::int32_t> Marlo::ThresholdAndDelay() const {
  if (!NumbersTyped()) return std::nullopt;
  const double volts = std::trunc(state::ToNumber(txtValTreshold.Text()));
  const double delay = std::trunc(state::ToNumber(txtDelay.Text()));
  return state::RoundToInteger(volts * 10) | state::RoundToInteger(delay * 256);
}

bool Marlo::NumbersTyped() const {
  return state::IsNumeric(txtValTreshold.Text()) && state::IsNumeric(txtDelay.Text());
}

unsigned Marlo::ParityCode() const {
  if (checkParity.Value() == 0) return 0;
  return OptionEven.Value() ? kParityEven : kParityOdd;
}

Word Marlo::OptionsShown() const {
  unsigned options = CheckResetTimeout.Value() != 0 ? kResetTimeout : 0;
  if (CheckFailLed.Value() != 0) options |= kFailLed;
  return Word(options | (static_cast<unsigned>(ComboFailLed.ListIndex()) << 8));
}

core::Task<> Marlo::WriteFlags(std::optional<std::int32_t> threshold) {
  co_await WriteStored(kOptions, OptionsShown().Unsigned());
  if (!threshold) {
    co_await GetScreen().MsgBox("Val Treshold or Delay fields are  not numeric !", view::Icon::kExclamation);
    co_return;
  }
  co_await WriteStored(kThreshold, *threshold);
}

core::Task<> Marlo::WriteStored(Register target, std::int32_t value) {
  bus::wait(GetScheduler(), kSettle);
  co_await bus::WriteRegister(ModCom1, target, value, Context().status.passing);
}

core::Task<> Marlo::MaskClick(int output) {
  view::CheckBox& mask = checkMask[output];
  mask.BackColor = mask.Value() != 0 ? view::kRed : view::kGreen;
  co_return;
}

void Marlo::MarloEnableControls(bool enabled) {
  const std::array<view::Control*, 10> edits = {
      &cbBaudMarlo,  &labAddressMarlo, &labSafetimeMarlo, &checkParity, &CheckResetTimeout,
      &CheckFailLed, &ComboFailLed,    &txtValTreshold,   &txtDelay,    &WEEP};
  for (view::Control* edit : edits) edit->Enabled = enabled;
  for (view::CheckBox& mask : checkMask) mask.Enabled = enabled;
  if (checkParity.Value() == 0) return;
  OptionEven.Enabled = enabled;
  OptionOdd.Enabled = enabled;
}

// How it looks.

view::Node Marlo::Arrangement() const {
  std::vector<std::string> columns = {""};
  std::vector<view::Node> outputs = {view::Text("Outputs")};
  std::vector<view::Node> masks;
  columns.reserve(kCount + 1);
  outputs.reserve(kCount + 1);
  masks.reserve(kCount);
  for (int i = 0; i < kCount; ++i) {
    columns.push_back(LabelOUT[i].Caption());
    outputs.push_back(view::Show(buttOUTMarlo[i]));
    masks.push_back(view::Show(checkMask[i]));
  }
  std::vector<view::Node> rows;
  rows.reserve(kLampRows + 1);
  rows.push_back(view::Row(std::move(outputs)));
  const std::array<const view::ControlArray<view::Lamp, kCount>*, kLampRows> lampRows = {
      &shDamage, &shDefault, &shOpen, &shShorted, &shHot, &shOpenedMask};
  for (std::size_t row = 0; row < lampRows.size(); ++row) {
    std::vector<view::Node> cells = {view::Show(labRow[row])};
    cells.reserve(kCount + 1);
    for (const view::Lamp& lamp : *lampRows[row]) cells.push_back(view::Show(lamp));
    rows.push_back(view::Row(std::move(cells)));
  }
  std::vector<view::Node> status;
  status.reserve(kStatusLamps + 1);
  for (const view::Lamp& lamp : shStatus) status.push_back(view::Show(lamp));
  status.push_back(view::Field("Supply (V)", view::Show(txtVoltage)));
  const auto maskColumn = [&](int first) {
    std::vector<view::Node> column(masks.begin() + first, masks.begin() + first + kCount / 2);
    return view::Column(std::move(column));
  };
  return view::Column({
      HeadLine("Ten digital outputs with diagnostics"),
      view::Scroller(view::Column({
          view::Row({
              view::Frame("Outputs", view::Table(std::move(columns), std::move(rows))),
              view::Frame("Status", view::Column(std::move(status))),
          }),
          view::Row({
              view::Frame("Serial line", view::Column({
                                             view::Field("Module Baud Rate", view::Show(cbBaudMarlo)),
                                             view::Field("Module Address", view::Show(labAddressMarlo)),
                                             view::Show(checkParity),
                                             view::Row({view::Show(OptionEven), view::Show(OptionOdd)}),
                                         })),
              view::Frame("Settings", view::Column({
                                          view::Field("Safe time", view::Show(labSafetimeMarlo)),
                                          view::Field("Output thr. (V)", view::Show(txtValTreshold)),
                                          view::Field("S.C. Delay ", view::Show(txtDelay)),
                                          view::Show(CheckResetTimeout),
                                          view::Row({view::Show(CheckFailLed), view::Show(ComboFailLed)}),
                                      })),
              view::Frame("Diagnostics Mask", view::Row({maskColumn(0), maskColumn(kCount / 2)})),
          }),
      })),
      Foot(),
  });
}

}  // namespace tarvo::models
