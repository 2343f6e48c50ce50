#include "models/jorun.h"

#include "models/analog_options.h"

namespace tarvo::models {

using namespace state::literals;

namespace {

constexpr pages::PageIdentity kIdentity = {
    .number = 5,
    .model = "Jorun",
    .window = "Jorun",
    .code = 0x06,
    .poll = {"40002"_reg, 10},
    .pollAfter = pages::PollBlock{ThermocoupleInputs::kStatus, 5},
    .runKind = 6,
    .reset = ThermocoupleInputs::kStatus,
    .gears = "Ingranaggi6",
    .names = {.weep = "buttWEEPJorun", .reset = "buttResetJorun"},
    .hasTimerControllo = false,
};

/// First release with seven baud rates and a calibration.
constexpr int kReleaseOfCalibration = 3;

constexpr ThermocoupleTexts kTexts = {
    .typeList = "cbInputTypeJorun",
    .filterList = "cbFilterJorun",
    .unread = "00000",
    .calTip = "Open Calibration window",
    .calibrates = kReleaseOfCalibration,
};

}  // namespace

Jorun::Jorun(pages::PageContext& context, calibration::DlgCalForm& calibration)
    : ThermocoupleInputs(context, kIdentity, kTexts, calibration),
      CheckJorun([this](int i) {
        const AnalogOption& option = kAnalogOptions.at(static_cast<std::size_t>(i));
        return view::CheckBox(*this, "CheckJorun", option.caption, option.toolTip, i);
      }),
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
}

std::vector<pages::ImageWrite> Jorun::MakeImages() {
  std::vector<pages::ImageWrite> images = InputImages([this] { return FlagsShown(); });
  images.push_back({kStoredAddress, [this] { return pages::AddressWord(labAddressJorun, cbBaudJorun); }});
  return images;
}

std::vector<pages::FileField> Jorun::MakeFields() {
  std::vector<pages::FileField> fields;
  fields.push_back({AddressField(labAddressJorun, cbBaudJorun).write, ToCopy(kAddress)});
  fields.push_back({[this] { return std::to_string(OptionsField(CheckJorun, OptionOdd)); }, ToCopy(kFlags)});
  for (int i = 0; i < kInputs; ++i) {
    fields.push_back({PositionField(InputType[i]).write, ToCopy(kInputType1 + i)});
  }
  for (int i = 0; i < kInputs; ++i) fields.push_back({PositionField(Filter[i]).write, ToCopy(kFilter1 + i)});
  return fields;
}

// What Start, the poll and the search do.

void Jorun::Load() {
  ThermocoupleInputs::Load();
  cbBaudJorun.ListIndex = 1;
}

void Jorun::CheckFWVersion(int release) {
  pages::ShowRates(cbBaudJorun, release >= kReleaseOfCalibration);
}

core::Task<> Jorun::ApplyFirmware(int /*release*/) {
  if (!VersionChecked()) co_await CheckVersion();
}

core::Task<> Jorun::SetupFormFromFile() {
  pages::ShowAddressWord(Copy(kAddress), labAddressJorun, cbBaudJorun, pages::kWholeHighByte);
  ShowFlags(Copy(kFlags));
  for (int i = 0; i < kInputs; ++i) {
    InputType[i].ListIndex = Copy(kInputType1 + i).Signed();
    Filter[i].ListIndex = Copy(kFilter1 + i).Signed();
  }
  co_return;
}

void Jorun::EnableLabelsComm(bool enable) {
  EnableInputRows(enable);
  for (view::CheckBox& check : CheckJorun) check.Enabled = enable;
  const bool parity = enable && CheckJorun[2].Value() != 0;
  OptionEven.Enabled = parity;
  OptionOdd.Enabled = parity;
  const std::array<view::Control*, 4> others = {&cbBaudJorun, &labAddressJorun, &WEEP, &*Reset};
  for (view::Control* other : others) other->Enabled = enable;
}

void Jorun::EnableInputs(int mode) {
  const bool enabled = mode == 1;
  EnableInputRows(enabled);
  for (view::CheckBox& check : CheckJorun) check.Enabled = enabled;
  const std::array<view::Control*, 6> others = {&OptionEven,      &OptionOdd, &cbBaudJorun,
                                                &labAddressJorun, &WEEP,      &*Reset};
  for (view::Control* other : others) other->Enabled = enabled;
}

// How it looks.

view::Node Jorun::Arrangement() const {
  return view::Column({
      HeadLine("Four thermocouple inputs"),
      InputsCard(),
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
