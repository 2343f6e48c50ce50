#include "models/thermocouple_inputs.h"

#include <optional>
#include <utility>

#include "models/analog_options.h"
#include "pages/meter_percent.h"
#include "view/hourglass.h"
#include "view/screen.h"

namespace tarvo::models {

using state::Word;
using namespace state::literals;

namespace {

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
  const bool overflow = lamp < ThermocoupleInputs::kInputs;
  return "40012." + std::to_string(kFirstStatusBit + lamp) + (overflow ? " - Overflow input " : " - Burn-out input ") +
         std::to_string(lamp % ThermocoupleInputs::kInputs + 1);
}

}  // namespace

ThermocoupleInputs::ThermocoupleInputs(pages::PageContext& context, const pages::PageIdentity& identity,
                                       const ThermocoupleTexts& texts, calibration::DlgCalForm& calibration)
    : DevicePage(context, identity),
      Headings([&](int i) {
        return view::Label(*this, "label" + std::string(identity.model), kHeadings[At(i) % kHeadings.size()], "", i);
      }),
      InputType([&](int i) {
        const std::vector<view::ListRow> rows = InputTypeRows();
        return view::ComboBox(*this, texts.typeList, rows, TipOf(kInputType1, i, "Input Type "), i);
      }),
      Filter([&](int i) {
        return view::ComboBox(*this, texts.filterList, kFilterLevels, TipOf(kFilter1, i, "Input Filter "), i);
      }),
      Value([&](int i) {
        return view::Label(*this, "Value" + std::string(identity.model), texts.unread,
                           TipOf(kValue1, i, "Input Value "), i);
      }),
      Barg([&](int i) { return view::ARMetor(*this, "Barg" + std::string(identity.model), i); }),
      Overflow([&](int i) {
        return view::Lamp(*this, "Overflow" + std::string(identity.model), i < kInputs ? "Overflow" : "Burnout",
                          LampTip(i), i);
      }),
      buttCal([&](int i) { return view::Button(*this, "buttCal", "CAL", texts.calTip, i); }),
      texts_(texts),
      calibration_(calibration) {
  for (int i = 0; i < kInputs; ++i) {
    view::ComboBox& type = InputType[i];
    type.OnSelect = [this, &type, i] { SetFullScaleTC(i + 1, type.ListIndex()); };
    type.ListIndex = 0;
    Filter[i].ListIndex = 0;
    pages::MakeBar(Barg[i]);
    buttCal[i].OnClick = [this, i] { return CalClick(i); };
  }
}

std::vector<pages::ImageWrite> ThermocoupleInputs::InputImages(std::function<Word()> flags) {
  std::vector<pages::ImageWrite> images;
  images.reserve(2 + 2 * kInputs);
  images.push_back({"40067"_reg, std::move(flags)});
  const auto add = [&images](state::Register first, const auto& combos) {
    for (int i = 0; i < kInputs; ++i) {
      const view::ComboBox& combo = combos[i];
      images.push_back({first + i, [&combo] { return Word(static_cast<unsigned>(combo.ListIndex())); }});
    }
  };
  add("40068"_reg, InputType);
  add("40072"_reg, Filter);
  return images;
}

void ThermocoupleInputs::Load() {
  DevicePage::Load();
  InitFullScaleTC();
  versionChecked_ = false;
}

core::Task<ThermocoupleInputs::Version> ThermocoupleInputs::CheckVersion() {
  const view::Hourglass hourglass(GetScreen());
  const PortVisit visit(*this);
  const std::optional<Word> identity = co_await ReadOne("40001"_reg);
  versionChecked_ = true;
  if (!identity) co_return Version::kUnread;
  if (identity->High() != Identity().code) co_return Version::kOtherModule;
  CheckFWVersion(identity->Low());
  co_return identity->Low() >= texts_.calibrates ? Version::kCalibrates : Version::kTooOld;
}

void ThermocoupleInputs::InitFullScaleTC() {
  State().FullScaleTC.fill(kFullScaleAtLoad);
}

void ThermocoupleInputs::SetFullScaleTC(int input, int type) {
  if (type < 0 || At(type) >= kInputTypes.size()) return;
  State().FullScaleTC.at(At(input - 1)) = kInputTypes[At(type)].fullScale;
}

core::Task<> ThermocoupleInputs::ManageFirst() {
  for (int i = 0; i < kInputs; ++i) {
    const int type = Polled(kInputType1 + i).Unsigned();
    // Also when the list shows the type already: another page of thermocouples may have changed what all share.
    SetFullScaleTC(i + 1, type);
    InputType[i].ListIndex = type;
    Filter[i].ListIndex = Polled(kFilter1 + i).Unsigned();
  }
  ShowFlags(Polled(kFlags));
  if (InSession()) co_await ShowSettings();
}

core::Task<> ThermocoupleInputs::ManageContinue() {
  for (int i = 0; i < kInputs; ++i) Value[i].Caption = std::to_string(Polled(kValue1 + i).Signed());
  for (int lamp = 0; lamp < 2 * kInputs; ++lamp) {
    const bool lit = Polled(kStatus).Has(1U << (kFirstStatusBit + lamp));
    Overflow[lamp].BackColor = lit ? view::kRed : view::kDarkRed;
  }
  for (const std::int16_t fullScale : State().FullScaleTC) {
    if (fullScale >= 1) continue;
    co_await GetScreen().MsgBox("FullScaleTC non inizializzato", view::Icon::kCritical);
    co_return;
  }
  for (int i = 0; i < kInputs; ++i) {
    pages::ShowSigned(Barg[i], Polled(kValue1 + i).Signed(), State().FullScaleTC[At(i)]);
  }
}

core::Task<> ThermocoupleInputs::ReadInputType() {
  const view::Hourglass hourglass(GetScreen());
  const PortVisit visit(*this);
  for (int i = 0; i < kInputs; ++i) {
    const std::optional<Word> type = co_await ReadOne(kInputType1 + i);
    if (!type) continue;
    SetFullScaleTC(i + 1, type->Unsigned());
    InputType[i].ListIndex = type->Unsigned();
  }
  co_await ReadFlagsDirect();
}

core::Task<> ThermocoupleInputs::ReadFlagsDirect() {
  const std::optional<Word> flags = co_await ReadOne(kFlags);
  if (flags) ShowFlags(*flags);
  co_await ShowSettings();
  for (int i = 0; i < kInputs; ++i) {
    const std::optional<Word> type = co_await ReadOne(kInputType1 + i);
    if (type) InputType[i].ListIndex = type->Unsigned();
  }
  for (int i = 0; i < kInputs; ++i) {
    const std::optional<Word> filter = co_await ReadOne(kFilter1 + i);
    if (filter) Filter[i].ListIndex = filter->Unsigned();
  }
}

void ThermocoupleInputs::EnableInputRows(bool enabled) {
  for (view::Button& calibrate : buttCal) calibrate.Enabled = enabled;
  for (view::ComboBox& type : InputType) type.Enabled = enabled;
  for (view::ComboBox& filter : Filter) filter.Enabled = enabled;
}

core::Task<> ThermocoupleInputs::CalClick(int input) {
  if (PortIsTaken()) co_return;
  const Version version = co_await CheckVersion();
  std::string refusal;
  switch (version) {
    case Version::kCalibrates:
      break;
    case Version::kTooOld:
      refusal = "Calibration impossible, firmware version is too old ";
      break;
    case Version::kOtherModule:
      refusal = "Calibration impossible,  module is not " + std::string(Identity().model);
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

view::Node ThermocoupleInputs::InputsCard() const {
  std::vector<view::Node> inputs;
  inputs.reserve(kInputs);
  for (int i = 0; i < kInputs; ++i) {
    inputs.push_back(view::Row({
        view::Text("Input " + std::to_string(i + 1)),
        view::Show(InputType[i]),
        view::Show(Filter[i]),
        view::Show(Value[i]),
        view::Show(Barg[i]),
        view::Show(Overflow[i]),
        view::Show(Overflow[i + kInputs]),
        view::Show(buttCal[i]),
    }));
  }
  std::vector<std::string> headings = {"Input", Headings[1].Caption(), Headings[2].Caption(), Headings[3].Caption()};
  return view::Frame("Inputs", view::Table(std::move(headings), std::move(inputs)));
}

}  // namespace tarvo::models
