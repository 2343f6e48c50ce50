#include "models/jorun.h"

#include <cstdlib>

#include "models/analog_options.h"
#include "pages/meter_percent.h"
#include "state/number_text.h"
#include "view/hourglass.h"
#include "view/screen.h"

namespace tarvo::models {

using state::Word;
using namespace state::literals;

namespace {

constexpr pages::PageIdentity kIdentity = {
    .number = 5,
    .model = "Jorun",
    .window = "Jorun",
    .code = 0x06,
    .poll = {"40002"_reg, 10},
    .pollAfter = pages::PollBlock{Jorun::kStatus, 5},
    .runKind = 6,
    .reset = Jorun::kStatus,
    .gears = "Ingranaggi6",
    .names = {.weep = "buttWEEPJorun", .reset = "buttResetJorun"},
    .hasTimerControllo = false,
};

/// A row of the input type list: its position is the register's value.
struct InputType {
  std::string_view text;
  std::int16_t fullScale;  ///< counts, tenths of a degree for the thermocouples
};
constexpr std::array<InputType, 9> kInputTypes = {{
    {"mV (-80 .. +80)", 16000},
    {"TC-J (-200.0 .. 1000.0 °C)", 10000},
    {"TC-K (-250.0 .. 1200.0 °C)", 12000},
    {"TC-R (0 .. 1750.0 °C)", 17500},
    {"TC-S (0 .. 1750.0 °C)", 17500},
    {"TC-T (-200.0 .. 400.0 °C)", 4000},
    {"TC-B (0 .. 1800.0 °C)", 18000},
    {"TC-E (-200.0 .. 800.0 °C)", 8000},
    {"TC-N (-200.0 .. 1300.0 °C)", 13000},
}};
constexpr std::int16_t kFullScaleAtLoad = 16000;

constexpr std::array<const char*, 4> kHeadings = {"Burnout", "Input Type", "Filter", "Measured Value"};

/// First release with seven baud rates and a calibration.
constexpr int kReleaseOfCalibration = 3;
constexpr int kFirstStatusBit = 8;

std::size_t At(int index) {
  return static_cast<std::size_t>(index);
}

std::vector<view::ListRow> InputTypeRows() {
  std::vector<view::ListRow> rows;
  rows.reserve(kInputTypes.size());
  for (const InputType& type : kInputTypes) rows.push_back({type.text});
  return rows;
}

std::string TipOf(state::Register first, int input, const char* text) {
  return std::to_string((first + input).Number()) + " - " + text + std::to_string(input + 1);
}

std::string LampTip(int lamp) {
  const bool overflow = lamp < Jorun::kInputs;
  return "40012." + std::to_string(kFirstStatusBit + lamp) + (overflow ? " - Overflow input " : " - Burn-out input ") +
         std::to_string(lamp % Jorun::kInputs + 1);
}

}  // namespace

Jorun::Jorun(pages::PageContext& context, calibration::DlgCalForm& calibration)
    : DevicePage(context, kIdentity),
      labelJorun(
          [this](int i) { return view::Label(*this, "labelJorun", kHeadings[At(i) % kHeadings.size()], "", i); }),
      cbInputTypeJorun([this](int i) {
        const std::vector<view::ListRow> rows = InputTypeRows();
        return view::ComboBox(*this, "cbInputTypeJorun", rows, TipOf(kInputType1, i, "Input Type "), i);
      }),
      cbFilterJorun([this](int i) {
        return view::ComboBox(*this, "cbFilterJorun", kFilterLevels, TipOf(kFilter1, i, "Input Filter "), i);
      }),
      ValueJorun(
          [this](int i) { return view::Label(*this, "ValueJorun", "00000", TipOf(kValue1, i, "Input Value "), i); }),
      BargJorun([this](int i) { return view::ARMetor(*this, "BargJorun", i); }),
      OverflowJorun([this](int i) {
        return view::Lamp(*this, "OverflowJorun", i < kInputs ? "Overflow" : "Burnout", LampTip(i), i);
      }),
      buttCal([this](int i) { return view::Button(*this, "buttCal", "CAL", "Open Calibration window", i); }),
      CheckJorun([this](int i) {
        return view::CheckBox(*this, "CheckJorun", kAnalogOptions[At(i)].caption, kAnalogOptions[At(i)].toolTip, i);
      }),
      calibration_(calibration),
      flags_({{
          {CheckJorun[0], kFlags, 0x0002, 0xFFFD},
          {CheckJorun[1], kFlags, 0x0004, 0xFFFB},
          {CheckJorun[2], kFlags, 0x0008, 0xFFF7},
      }}),
      images_(MakeImages()),
      fields_(MakeFields()) {
  TieFlags(flags_);
  BindParity(CheckJorun[2], OptionEven, OptionOdd, kFlags);
  BindEdit(labAddressJorun, 1, 255);
  for (int i = 0; i < kInputs; ++i) {
    view::ComboBox& type = cbInputTypeJorun[i];
    type.OnSelect = [this, &type, i] { SetFullScaleTC(i + 1, type.ListIndex()); };
    type.ListIndex = 0;
    cbFilterJorun[i].ListIndex = 0;
    view::ARMetor& bar = BargJorun[i];
    pages::MakeBar(bar);
    buttCal[i].OnClick = [this, i] { return CalClick(i); };
  }
}

std::vector<pages::ImageWrite> Jorun::MakeImages() {
  std::vector<pages::ImageWrite> images;
  images.push_back({"40067"_reg, [this] { return FlagsShown(); }});
  const auto add = [&images](state::Register first, const auto& combos) {
    for (int i = 0; i < kInputs; ++i) {
      const view::ComboBox& combo = combos[i];
      images.push_back({first + i, [&combo] { return Word(static_cast<unsigned>(combo.ListIndex())); }});
    }
  };
  add("40068"_reg, cbInputTypeJorun);
  add("40072"_reg, cbFilterJorun);
  images.push_back({kStoredAddress, [this] { return pages::AddressWord(labAddressJorun, cbBaudJorun); }});
  return images;
}

std::vector<pages::FileField> Jorun::MakeFields() {
  std::vector<pages::FileField> fields;
  fields.push_back({AddressField(labAddressJorun, cbBaudJorun).write, ToCopy(kAddress)});
  fields.push_back({[this] { return std::to_string(OptionsField(CheckJorun, OptionOdd)); }, ToCopy(kFlags)});
  for (int i = 0; i < kInputs; ++i) {
    fields.push_back({PositionField(cbInputTypeJorun[i]).write, ToCopy(kInputType1 + i)});
  }
  for (int i = 0; i < kInputs; ++i) fields.push_back({PositionField(cbFilterJorun[i]).write, ToCopy(kFilter1 + i)});
  return fields;
}

// What Start, the poll and the search do.

void Jorun::Load() {
  DevicePage::Load();
  cbBaudJorun.ListIndex = 1;
  InitFullScaleTC();
  version_ = Version::kTooOld;
  versionChecked_ = false;
}

void Jorun::CheckFWVersion(int release) {
  pages::ShowRates(cbBaudJorun, release >= kReleaseOfCalibration);
}

core::Task<> Jorun::ApplyFirmware(int /*release*/) {
  if (versionChecked_) co_return;
  version_ = co_await CheckVersion();
}

core::Task<Jorun::Version> Jorun::CheckVersion() {
  const view::Hourglass hourglass(GetScreen());
  const PortVisit visit(*this);
  const std::optional<Word> identity = co_await ReadOne("40001"_reg);
  versionChecked_ = true;
  if (!identity) co_return Version::kUnread;
  if (identity->High() != kIdentity.code) co_return Version::kOtherModule;
  CheckFWVersion(identity->Low());
  co_return identity->Low() >= kReleaseOfCalibration ? Version::kCalibrates : Version::kTooOld;
}

void Jorun::InitFullScaleTC() {
  State().FullScaleTC.fill(kFullScaleAtLoad);
}

void Jorun::SetFullScaleTC(int input, int type) {
  if (type < 0 || At(type) >= kInputTypes.size()) return;
  State().FullScaleTC.at(At(input - 1)) = kInputTypes[At(type)].fullScale;
}

core::Task<> Jorun::ManageJorun() {
  for (int i = 0; i < kInputs; ++i) {
    cbInputTypeJorun[i].ListIndex = Polled(kInputType1 + i).Unsigned();
    cbFilterJorun[i].ListIndex = Polled(kFilter1 + i).Unsigned();
  }
  ShowFlags(Polled(kFlags));
  if (InSession()) co_await ShowAddressOf(kStoredAddress, labAddressJorun, cbBaudJorun);
}

core::Task<> Jorun::ManageContinueJorun() {
  for (int i = 0; i < kInputs; ++i) ValueJorun[i].Caption = std::to_string(Polled(kValue1 + i).Signed());
  for (int lamp = 0; lamp < 2 * kInputs; ++lamp) {
    const bool lit = Polled(kStatus).Has(1U << (kFirstStatusBit + lamp));
    OverflowJorun[lamp].BackColor = lit ? view::kRed : view::kDarkRed;
  }
  for (const std::int16_t fullScale : State().FullScaleTC) {
    if (fullScale >= 1) continue;
    co_await GetScreen().MsgBox("FullScaleTC non inizializzato", view::Icon::kCritical);
    co_return;
  }
  for (int i = 0; i < kInputs; ++i) {
    pages::ShowSigned(BargJorun[i], Polled(kValue1 + i).Signed(), State().FullScaleTC[At(i)]);
  }
}

core::Task<> Jorun::ReadInputType() {
  const view::Hourglass hourglass(GetScreen());
  SetupModcomOCX();
  const PortClose closes(*this);
  if (!ModCom1.PortOpen()) OpenPort();
  for (int i = 0; i < kInputs; ++i) {
    const std::optional<Word> type = co_await ReadOne(kInputType1 + i);
    if (!type) continue;
    SetFullScaleTC(i + 1, type->Unsigned());
    cbInputTypeJorun[i].ListIndex = type->Unsigned();
  }
  co_await ReadFlagsDirect();
}

core::Task<> Jorun::ReadFlagsDirect() {
  const std::optional<Word> flags = co_await ReadOne(kFlags);
  if (flags) ShowFlags(*flags);
  co_await ShowAddressOf(kStoredAddress, labAddressJorun, cbBaudJorun);
  for (int i = 0; i < kInputs; ++i) {
    const std::optional<Word> type = co_await ReadOne(kInputType1 + i);
    if (type) cbInputTypeJorun[i].ListIndex = type->Unsigned();
  }
  for (int i = 0; i < kInputs; ++i) {
    const std::optional<Word> filter = co_await ReadOne(kFilter1 + i);
    if (filter) cbFilterJorun[i].ListIndex = filter->Unsigned();
  }
}

core::Task<> Jorun::SetupFormFromFile() {
  // The whole high byte is the baud code here.
  labAddressJorun.Caption = std::to_string(Copy(kAddress).Low());
  cbBaudJorun.SelectCode(Copy(kAddress).High());
  ShowFlags(Copy(kFlags));
  for (int i = 0; i < kInputs; ++i) {
    cbInputTypeJorun[i].ListIndex = Copy(kInputType1 + i).Signed();
    cbFilterJorun[i].ListIndex = Copy(kFilter1 + i).Signed();
  }
  co_return;
}

void Jorun::EnableLabelsComm(bool enable) {
  for (view::ComboBox& type : cbInputTypeJorun) type.Enabled = enable;
  for (view::ComboBox& filter : cbFilterJorun) filter.Enabled = enable;
  for (view::CheckBox& check : CheckJorun) check.Enabled = enable;
  for (view::Button& calibrate : buttCal) calibrate.Enabled = enable;
  const bool parity = enable && CheckJorun[2].Value() != 0;
  OptionEven.Enabled = parity;
  OptionOdd.Enabled = parity;
  const std::array<view::Control*, 4> others = {&cbBaudJorun, &labAddressJorun, &WEEP, &*Reset};
  for (view::Control* other : others) other->Enabled = enable;
}

void Jorun::EnableInputs(int mode) {
  const bool enabled = mode == 1;
  for (view::Button& calibrate : buttCal) calibrate.Enabled = enabled;
  for (view::ComboBox& type : cbInputTypeJorun) type.Enabled = enabled;
  for (view::ComboBox& filter : cbFilterJorun) filter.Enabled = enabled;
  for (view::CheckBox& check : CheckJorun) check.Enabled = enabled;
  const std::array<view::Control*, 6> others = {&OptionEven,      &OptionOdd, &cbBaudJorun,
                                                &labAddressJorun, &WEEP,      &*Reset};
  for (view::Control* other : others) other->Enabled = enabled;
}

// What the user does.

core::Task<> Jorun::CalClick(int input) {
  // An open port is that of a reading under way, of another click's too.
  if (!InSession() && ModCom1.PortOpen()) co_return;
  version_ = co_await CheckVersion();
  std::string refusal;
  switch (version_) {
    case Version::kCalibrates:
      break;
    case Version::kTooOld:
      refusal = "Calibration impossible, firmware version is too old ";
      break;
    case Version::kOtherModule:
      refusal = "Calibration impossible,  module is not Jorun";
      break;
    case Version::kUnread:
      refusal = "Calibration impossible, unable to read";
      break;
  }
  if (!refusal.empty()) {
    co_await GetScreen().MsgBox(std::move(refusal), view::Icon::kCritical);
    co_return;
  }
  co_await WithPollHeld(calibration_.ShowFor(input));
}

// How it looks.

view::Node Jorun::Arrangement() const {
  std::vector<view::Node> inputs;
  inputs.reserve(kInputs);
  for (int i = 0; i < kInputs; ++i) {
    inputs.push_back(view::Row({
        view::Text("Input " + std::to_string(i + 1)),
        view::Show(cbInputTypeJorun[i]),
        view::Show(cbFilterJorun[i]),
        view::Show(ValueJorun[i]),
        view::Show(BargJorun[i]),
        view::Show(OverflowJorun[i]),
        view::Show(OverflowJorun[i + kInputs]),
        view::Show(buttCal[i]),
    }));
  }
  std::vector<std::string> headings = {"Input", labelJorun[1].Caption(), labelJorun[2].Caption(),
                                       labelJorun[3].Caption()};
  return view::Column({
      HeadLine("Four thermocouple inputs"),
      view::Frame("Inputs", view::Table(std::move(headings), std::move(inputs))),
      view::Row({
          view::Frame("Options",
                      view::Column({view::Show(CheckJorun[0]), view::Show(CheckJorun[1]), view::Show(CheckJorun[2]),
                                    view::Row({view::Show(OptionEven), view::Show(OptionOdd)})})),
          view::Frame("Module", view::Column({
                                    view::Field(Label14.Caption(), view::Show(labAddressJorun)),
                                    view::Field(Label15.Caption(), view::Show(cbBaudJorun)),
                                })),
      }),
      view::Space(),
      Foot(),
  });
}

}  // namespace tarvo::models
