#include "models/gaven.h"

#include <optional>

#include "models/analog_options.h"
#include "pages/meter_percent.h"
#include "state/number_text.h"

namespace tarvo::models {

using state::Word;
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
    .reset = Gaven::kStatus,
    .gears = "Ingranaggi5",
};

/// Members of `ValueGaven` and `OverflowGaven` that belong to an input.
struct InputRow {
  int startScale;
  int fullScale;
  int scaled;
  int raw;
  int underflow;
  int overflow;
};
constexpr std::array<InputRow, Gaven::kInputs> kInputRows = {{
    {0, 1, 2, 3, 0, 1},
    {6, 7, 5, 4, 2, 3},
    {10, 11, 9, 8, 4, 5},
    {14, 15, 13, 12, 6, 7},
}};

/// Members of `OverflowGaven` that the bits from 8 on of the status light.
constexpr std::array<int, 8> kLampOfBit = {1, 0, 3, 2, 5, 4, 7, 6};
/// The same for the one paint at Start, whose order is another; that is meant.
constexpr std::array<int, 8> kLampOfBitAtStart = {1, 3, 5, 7, 0, 2, 4, 6};

constexpr std::array<const char*, Gaven::kHeadings> kHeadingTexts = {
    "Start Scale", "Full Scale", "Filter", "Scaled Input (0..10000)", "Raw Input", "Underflow", "Overflow"};

constexpr int kFirstStatusBit = 8;
constexpr int kReleaseOfSevenRates = 2;

std::size_t At(int index) {
  return static_cast<std::size_t>(index);
}

std::string TipOf(state::Register first, int input, const char* text) {
  return std::to_string((first + input).Number()) + " - " + text + std::to_string(input + 1);
}

/// What a member of `ValueGaven` says of itself.
std::string ValueTip(int label) {
  for (int input = 0; input < Gaven::kInputs; ++input) {
    const InputRow& row = kInputRows[At(input)];
    if (label == row.startScale) return TipOf(Gaven::kStartScale1, input, "Init Scale input ");
    if (label == row.fullScale) return TipOf(Gaven::kFullScale1, input, "Full Scale input ");
    if (label == row.scaled) return TipOf(Gaven::kScaled1, input, "Input ") + " value scaled 0.10000";
    if (label == row.raw) return TipOf(Gaven::kRaw1, input, "Input ") + " value";
  }
  return {};
}

std::string LampTip(int lamp) {
  int bit = 0;
  while (kLampOfBit[At(bit)] != lamp) ++bit;
  return "40016." + std::to_string(kFirstStatusBit + bit) +
         (lamp % 2 == 0 ? " - Underflow Input " : " - Overflow Input ") + std::to_string(lamp / 2 + 1);
}

}  // namespace

Gaven::Gaven(pages::PageContext& context)
    : DevicePage(context, kIdentity),
      labelGaven([this](int i) { return view::Label(*this, "labelGaven", kHeadingTexts[At(i % kHeadings)], "", i); }),
      ValueGaven([this](int i) { return view::Label(*this, "ValueGaven", "0", ValueTip(i), i); }),
      OverflowGaven([this](int i) {
        return view::Lamp(*this, "OverflowGaven", i % 2 == 0 ? "Underflow" : "Overflow", LampTip(i), i);
      }),
      BargGaven([this](int i) { return view::ARMetor(*this, "BargGaven", i); }),
      FilterGaven([this](int i) {
        return view::ComboBox(*this, "FilterGaven", kFilterLevels, TipOf(kFilter1, i, "Input Filter "), i);
      }),
      CheckGaven([this](int i) {
        return view::CheckBox(*this, "CheckGaven", kAnalogOptions[At(i)].caption, kAnalogOptions[At(i)].toolTip, i);
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
  for (const InputRow& row : kInputRows) {
    BindEdit(ValueGaven[row.startScale], -10000, 10000);
    BindEdit(ValueGaven[row.fullScale], -10000, 10000);
  }
  for (view::ComboBox& filter : FilterGaven) filter.ListIndex = 0;
  for (int i = 0; i < kInputs; ++i) {
    pages::MakeBar(BargGaven[i]);
    // It shows the raw input all the same.
    BargGaven[i].ToolTipText = ValueGaven[kInputRows[At(i)].scaled].ToolTipText();
  }
}

std::vector<pages::ImageWrite> Gaven::MakeImages() {
  const auto number = [this](int label) {
    return [this, label] { return state::ToWord(ValueGaven[label].Caption()); };
  };
  std::vector<pages::ImageWrite> images;
  // Made anew from the controls: bit 0 and those above 4 are lost, which is meant.
  images.push_back({"40067"_reg, [this] { return FlagsShown(); }});
  for (int i = 0; i < kInputs; ++i) {
    images.push_back({"40068"_reg + i, [this, i] { return Word(static_cast<unsigned>(FilterGaven[i].ListIndex())); }});
  }
  for (int i = 0; i < kInputs; ++i) images.push_back({"40072"_reg + i, number(kInputRows[At(i)].fullScale)});
  for (int i = 0; i < kInputs; ++i) images.push_back({"40076"_reg + i, number(kInputRows[At(i)].startScale)});
  images.push_back({kStoredAddress, [this] { return pages::AddressWord(AddressGaven, BaudGaven); }});
  return images;
}

std::vector<pages::FileField> Gaven::MakeFields() {
  std::vector<pages::FileField> fields;
  fields.push_back(AddressField(AddressGaven, BaudGaven));
  fields.push_back({[this] { return std::to_string(OptionsField(CheckGaven, OptionGaven2)); },
                    [this](const std::string& text) { ShowFlags(state::LowWord(text)); }});
  for (view::ComboBox& filter : FilterGaven) fields.push_back(PositionField(filter));
  for (const InputRow& row : kInputRows) fields.push_back(TextField(ValueGaven[row.fullScale]));
  for (const InputRow& row : kInputRows) fields.push_back(TextField(ValueGaven[row.startScale]));
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

core::Task<> Gaven::ManageGaven1() {
  for (int i = 0; i < kInputs; ++i) {
    FilterGaven[i].ListIndex = Polled(kFilter1 + i).Unsigned();
    ShowValue(kInputRows[At(i)].fullScale, Polled(kFullScale1 + i));
  }
  ShowValue(kInputRows[0].startScale, Polled(kStartScale1));
  ShowFlags(Polled(kFlags));
  if (InSession()) co_await ShowAddressOf(kStoredAddress, AddressGaven, BaudGaven);
}

core::Task<> Gaven::ManageGaven2() {
  for (int i = 1; i < kInputs; ++i) ShowValue(kInputRows[At(i)].startScale, Polled(kStartScale1 + i));
  ShowInputs();
  ShowOverflows(kLampOfBitAtStart);
  co_return;
}

core::Task<> Gaven::ManageContinueGaven() {
  ShowInputs();
  ShowOverflows(kLampOfBit);
  for (int i = 0; i < kInputs; ++i) pages::ShowSigned(BargGaven[i], Polled(kRaw1 + i).Signed());
  co_return;
}

core::Task<> Gaven::ShowRegisters() {
  for (int i = 0; i < kInputs; ++i) {
    const std::optional<Word> filter = co_await ReadOne(kFilter1 + i);
    if (filter) FilterGaven[i].ListIndex = filter->Unsigned();
  }
  for (int i = 0; i < kInputs; ++i) {
    const std::optional<Word> fullScale = co_await ReadOne(kFullScale1 + i);
    if (fullScale) ShowValue(kInputRows[At(i)].fullScale, *fullScale);
  }
  for (int i = 0; i < kInputs; ++i) {
    const std::optional<Word> startScale = co_await ReadOne(kStartScale1 + i);
    if (startScale) ShowValue(kInputRows[At(i)].startScale, *startScale);
  }
  const std::optional<Word> flags = co_await ReadOne(kFlags);
  if (flags) ShowFlags(*flags);
  co_await ShowAddressOf(kStoredAddress, AddressGaven, BaudGaven);
}

void Gaven::ShowValue(int label, Word value) {
  ValueGaven[label].Caption = std::to_string(value.Signed());
}

void Gaven::ShowInputs() {
  for (int i = 0; i < kInputs; ++i) {
    ShowValue(kInputRows[At(i)].scaled, Polled(kScaled1 + i));
    ShowValue(kInputRows[At(i)].raw, Polled(kRaw1 + i));
  }
}

void Gaven::ShowOverflows(std::span<const int> lampOfBit) {
  unsigned bit = 1U << kFirstStatusBit;
  for (const int lamp : lampOfBit) {
    OverflowGaven[lamp].BackColor = Polled(kStatus).Has(bit) ? view::kRed : view::kDarkRed;
    bit <<= 1;
  }
}

void Gaven::GavenEnableControls(int mode) {
  const bool enabled = mode == 1;
  for (view::Label& value : ValueGaven) value.Enabled = enabled;
  for (view::ComboBox& filter : FilterGaven) filter.Enabled = enabled;
  for (view::CheckBox& check : CheckGaven) check.Enabled = enabled;
  const std::array<view::Control*, 6> others = {&OptionGaven1, &OptionGaven2, &BaudGaven,
                                                &AddressGaven, &WEEP,         &*Reset};
  for (view::Control* other : others) other->Enabled = enabled;
}

// How it looks.

view::Node Gaven::Arrangement() const {
  std::vector<std::string> headings = {"Input"};
  // The lamps say themselves what they are.
  for (int i = 0; i < kHeadings - 2; ++i) headings.push_back(labelGaven[i].Caption());
  std::vector<view::Node> inputs;
  for (int i = 0; i < kInputs; ++i) {
    const InputRow& row = kInputRows[At(i)];
    inputs.push_back(view::Row({
        view::Text("Input " + std::to_string(i + 1)),
        view::Show(ValueGaven[row.startScale]),
        view::Show(ValueGaven[row.fullScale]),
        view::Show(FilterGaven[i]),
        view::Show(ValueGaven[row.scaled]),
        view::Show(ValueGaven[row.raw]),
        view::Show(BargGaven[i]),
        view::Show(OverflowGaven[row.underflow]),
        view::Show(OverflowGaven[row.overflow]),
    }));
  }
  return view::Column({
      HeadLine("Four analog inputs"),
      view::Frame("Inputs", view::Table(std::move(headings), std::move(inputs))),
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
