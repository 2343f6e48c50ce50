#include "models/gaven.h"

#include "models/analog_options.h"
#include "state/number_text.h"

namespace tarvo::models {

using namespace state::literals;

namespace {

constexpr pages::PageIdentity kIdentity = {
    .number = 4,
    .model = "Gaven",
    .window = "Gaven",
    .code = 0x07,
    .poll = {"40002"_reg, 11},
    .pollAfter = pages::PollBlock{"40013"_reg, 12},
    .runKind = 5,
    .reset = AnalogInputs::kStatus,
    .gears = "Ingranaggi5",
};

/// First release with 1200 and 2400 baud.
constexpr int kReleaseOfSevenRates = 2;

}  // namespace

Gaven::Gaven(pages::PageContext& context)
    : AnalogInputs(context, kIdentity),
      CheckGaven([this](int i) {
        const AnalogOption& option = kAnalogOptions.at(static_cast<std::size_t>(i));
        return view::CheckBox(*this, "CheckGaven", option.caption, option.toolTip, i);
      }),
      flags_({{
          {CheckGaven[0], kFlags, 0x0002, 0xFFFD},
          {CheckGaven[1], kFlags, 0x0004, 0xFFFB},
          {CheckGaven[2], kFlags, 0x0008, 0xFFF7},
      }}),
      images_(MakeImages()),
      fields_(MakeFields()) {
  BindFlags(flags_);
  BindParity(CheckGaven[2], OptionGaven1, OptionGaven2, kFlags);
  BindEdit(AddressGaven, 1, 255);
}

std::vector<pages::ImageWrite> Gaven::MakeImages() {
  // Made anew from the controls: bit 0 and those above 4 are lost, which is meant.
  std::vector<pages::ImageWrite> images = InputImages([this] { return FlagsShown(); });
  images.push_back({kStoredAddress, [this] { return pages::AddressWord(AddressGaven, BaudGaven); }});
  return images;
}

std::vector<pages::FileField> Gaven::MakeFields() {
  std::vector<pages::FileField> fields;
  fields.push_back(AddressField(AddressGaven, BaudGaven));
  fields.push_back({[this] { return std::to_string(OptionsField(CheckGaven, OptionGaven2)); },
                    [this](const std::string& text) { ShowFlags(state::LowWord(text)); }});
  for (view::ComboBox& filter : Filter) fields.push_back(PositionField(filter));
  for (const InputRow& row : kInputRows) fields.push_back(TextField(Value[row.fullScale]));
  for (const InputRow& row : kInputRows) fields.push_back(TextField(Value[row.startScale]));
  return fields;
}

// What Start, the poll and the search do.

void Gaven::Load() {
  DevicePage::Load();
  BaudGaven.ListIndex = 1;
  versionChecked_ = false;
}

void Gaven::Deactivate() {
  DevicePage::Deactivate();
  versionChecked_ = false;
}

void Gaven::CheckFWVersion(int release) {
  pages::ShowRates(BaudGaven, release >= kReleaseOfSevenRates);
  versionChecked_ = true;
}

core::Task<> Gaven::ApplyFirmware(int release) {
  if (!versionChecked_) CheckFWVersion(release);
  co_return;
}

void Gaven::GavenEnableControls(int mode) {
  const bool enabled = mode == 1;
  EnableScales(enabled);
  for (view::Label& value : Value) value.Enabled = enabled;
  for (view::CheckBox& check : CheckGaven) check.Enabled = enabled;
  const std::array<view::Control*, 6> others = {&OptionGaven1, &OptionGaven2, &BaudGaven,
                                                &AddressGaven, &WEEP,         &*Reset};
  for (view::Control* other : others) other->Enabled = enabled;
}

// How it looks.

view::Node Gaven::Arrangement() const {
  return view::Column({
      HeadLine("Four analog inputs"),
      InputsCard(),
      view::Row({
          view::Frame("Options",
                      view::Column({view::Show(CheckGaven[0]), view::Show(CheckGaven[1]), view::Show(CheckGaven[2]),
                                    view::Row({view::Show(OptionGaven1), view::Show(OptionGaven2)})})),
          view::Frame("Module", view::Column({
                                    view::Field(Label11.Caption(), view::Show(AddressGaven)),
                                    view::Field(Label12.Caption(), view::Show(BaudGaven)),
                                })),
      }),
      view::Space(),
      Foot(),
  });
}

}  // namespace tarvo::models
