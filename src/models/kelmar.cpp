#include "models/kelmar.h"

#include <string>

#include "pages/status_panels.h"
#include "state/number_text.h"

namespace tarvo::models {

using state::Word;
using namespace state::literals;

namespace {

constexpr pages::PageIdentity kIdentity = {
    .number = 7,
    .model = "Kelmar",
    .window = "Kelmar",
    .code = 0x0C,
    .poll = {"40002"_reg, 10},
    .pollAfter = pages::PollBlock{ThermocoupleInputs::kStatus, 5},
    .runKind = 6,
    .reset = ThermocoupleInputs::kStatus,
    .hasTimerControllo = false,
};

constexpr ThermocoupleTexts kTexts = {
    .typeList = "InputTypeKelmar",
    .filterList = "FilterKelmar",
    .unread = "0",
    .calTip = "Open Cal window",
    .calibrates = 1,
};

/// The first speaks of bit 2 where bit 1 is meant.
constexpr PlcTips kTips = {
    .checks = {"40003.2-Speed Up Acquisition", "40003.8-Channel 1", "40003.9-Channel #2", "40003.10-Channel #3",
               "40003.11- Channel #4", "40003.12-Status"},
    .scaled = "40003.13-Scaled Input",
    .raw = "40003.13-Real Input",
    .bitOrder = "40003.14-Reversed Bit Order",
};

constexpr int kDisplayOn = -1;

/// What a choice of scaled leaves in element 1 of what was polled last, whatever that is.
constexpr unsigned kLeftByScaled = 239;

}  // namespace

Kelmar::Kelmar(pages::PageContext& context, calibration::DlgCalForm& calibration)
    : PlcPage(context, kIdentity, kTips, kTexts, calibration),
      images_(InputImages([this] { return ReadFlagsFromForm(); })),
      fields_(MakeFields()) {
  Option1.OnClick = [this] { return ScaledClick(); };
  Option2.OnClick = [this] { return RawClick(); };
}

std::vector<pages::FileField> Kelmar::MakeFields() {
  std::vector<pages::FileField> fields;
  fields.push_back({[this] { return std::to_string(ReadFlagsFromForm().Unsigned()); },
                    [this](const std::string& text) { ShowBoxes(state::LowWord(text)); }});
  for (view::ComboBox& type : InputType) fields.push_back(PositionField(type));
  for (view::ComboBox& filter : Filter) fields.push_back(PositionField(filter));
  return fields;
}

// What Start, the poll and the search do.

void Kelmar::Load() {
  ThermocoupleInputs::Load();
  Context().status.passing.Text = "Load Kelmar window";
}

core::Task<> Kelmar::Activate() {
  Context().status.passing.Text = "Load Kelmar window";
  co_return;
}

core::Task<> Kelmar::ApplyFirmware(int /*release*/) {
  EnableInputs(0);
  co_return;
}

void Kelmar::Starting() {
  // 1 is not the number that turns the display on: the release that was just shown goes, which is meant.
  KelmarCommLabels(1);
}

void Kelmar::KelmarCommLabels(int state) {
  if (state == kDisplayOn) {
    Context().status.connection.Text = pages::ConnectionLine("Connected to Kelmar, ", ModCom1);
    return;
  }
  Message.Caption = "";
  Firmware.Caption = "Firmware rel: ";
  CleanKelmar();
  Context().status.connection.Text = "";
}

void Kelmar::CleanKelmar() {
  for (view::Lamp& lamp : Overflow) lamp.BackColor = view::kDarkRed;
  for (view::ARMetor& bar : Barg) bar.SetPercent(0);
  for (view::Label& value : Value) value.Caption = "0";
}

/// Raw or scaled is not in it, neither in a commit nor in a file: that is meant.
Word Kelmar::ReadFlagsFromForm() const {
  return FlagsShown();
}

// What the user does.

core::Task<> Kelmar::RawClick() {
  ShowRaw(true);
  return ChangeRegister(kFlags, pages::Setting(kRaw));
}

/// Takes effect with a commit only. What it stores the next poll overwrites: both are meant.
core::Task<> Kelmar::ScaledClick() {
  ShowRaw(false);
  State().PollBuffer[1] = Word(kLeftByScaled);
  co_return;
}

void Kelmar::EnableInputs(int mode) {
  const bool enabled = mode == 1;
  EnableInputRows(enabled);
  EnablePlc(enabled);
  WEEP.Enabled = enabled;
  Reset->Enabled = enabled;
}

// How it looks.

view::Node Kelmar::Arrangement() const {
  return view::Column({
      HeadLine("Four thermocouple inputs, second generation"),
      InputsCard(),
      PlcCards(),
      view::Space(),
      Foot(),
  });
}

}  // namespace tarvo::models
