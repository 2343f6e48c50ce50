#include "models/dravo.h"

#include <optional>

#include "pages/meter_percent.h"
#include "state/number_text.h"

namespace tarvo::models {

using state::Word;
using namespace state::literals;

namespace {

constexpr pages::PageIdentity kIdentity = {
    .number = 2,
    .model = "Dravo",
    .window = "Dravo",
    .code = 0x03,
    .poll = {Dravo::kInput, 12},
    .runKind = 3,
    .reset = Dravo::kStatus,
    .keepsCopies = true,
};

constexpr unsigned kDelay = 0x0004;

// The page keeps three bits of each byte: a type of which more are set comes back as another or as none.
constexpr unsigned kTypeBits = 0x0700;
constexpr unsigned kFilterBits = 0x0007;

/// First release with a delay and parity.
constexpr int kReleaseOfParity = 2;
/// First release with 1200 and 2400 baud.
constexpr int kReleaseOfSevenRates = 3;

constexpr std::array<std::string_view, Dravo::kStatusBits> kStatusNames = {
    "Data Programming Error", "Input Overflow",           "Input Underflow",
    "Burn Out Error",         "EEPROM Programming Error", "A/D Converter Failed"};
constexpr int kFirstStatusBit = 8;

std::size_t At(int index) {
  return static_cast<std::size_t>(index);
}

}  // namespace

Dravo::Dravo(pages::PageContext& context)
    : DevicePage(context, kIdentity),
      InputTypeDravo(*this, "InputTypeDravo", MeasureTypeRows(), "40002(H) - Input Type"),
      ValueDravo([this](int i) {
        const std::string tip = std::to_string((kScale1 + i).Number()) + " - " + std::string(kScaleNames[At(i)]);
        return view::Label(*this, "ValueDravo", "0", tip, i);
      }),
      StatusDravo([this](int i) {
        const std::string name(kStatusNames[At(i)]);
        return view::Lamp(*this, "StatusDravo", name, "40013." + std::to_string(kFirstStatusBit + i) + " - " + name, i);
      }),
      flags_({{
          {CheckDravo1, kFlags, 0x0100, 0xFEFF},
          {CheckDravo2, kFlags, 0x0200, 0xFDFF},
          {CheckDravo3, kFlags, 0x4000, 0xBFFF},
          {CheckDravo5, kFlags, kDelay, 0xFFFB},
          {CheckDravo4, kFlags, 0x0008, 0xFFF7},
      }}),
      images_(MakeImages()),
      fields_(MakeFields()) {
  BindFlags(flags_);
  BindParity(CheckDravo4, OptionDravo1, OptionDravo2, kFlags);
  BindEdit(AddressDravo, 1, 255);
  // Before anything was read every value is 0: the handler comes after the first selection.
  InputTypeDravo.ListIndex = 0;
  InputFilterDravo.ListIndex = 0;
  UnitaMisuraDravo1.Caption = limits_.unit;
  UnitaMisuraDravo2.Caption = limits_.unit;
  InputTypeDravo.OnSelect = [this] { InputTypeChange(); };
  for (std::size_t i = 0; i < decltype(ValueDravo)::Size(); ++i)
    ValueDravo[i].OnClick = [this, i] { return ValueClick(i); };
  for (view::ARMetor* bar : {&BargDravo1, &BargDravo2}) {
    pages::MakeBar(*bar);
  }
  for (view::Lamp& lamp : StatusDravo) lamp.BackColor = kButtonFace;
}

std::vector<pages::ImageWrite> Dravo::MakeImages() {
  std::vector<pages::ImageWrite> images;
  images.push_back({"40066"_reg, [this] { return InputWord(); }});
  for (int i = 0; i < kScales; ++i) {
    images.push_back({"40067"_reg + i, [this, i] { return state::ToWord(ValueDravo[i].Caption()); }});
  }
  images.push_back({"40074"_reg, [this] { return ReadEPRFLGFromForm(); }});
  images.push_back({kStoredAddress, [this] { return pages::AddressWord(AddressDravo, BaudDravo); }});
  return images;
}

std::vector<pages::FileField> Dravo::MakeFields() {
  std::vector<pages::FileField> fields;
  fields.push_back({[this] { return std::to_string(InputWord().Unsigned()); }, ToCopy(kInput)});
  for (int i = 0; i < kScales; ++i) fields.push_back({TextField(ValueDravo[i]).write, ToCopy(kScale1 + i)});
  // Flags and address change places between the file and the registers.
  fields.push_back({FromCopy(kFlags), ToCopy(kFlags)});
  fields.push_back({AddressField(AddressDravo, BaudDravo).write, ToCopy(kAddress)});
  return fields;
}

Word Dravo::InputWord() const {
  const int type = InputTypeDravo.ListIndex() + 1;
  return Word(static_cast<unsigned>(type * 256) | static_cast<unsigned>(InputFilterDravo.ListIndex()));
}

// What Start, the poll and the search do.

void Dravo::Load() {
  DevicePage::Load();
  BaudDravo.ListIndex = 1;
}

void Dravo::CheckFWVersion(int release) {
  const bool hasParity = release >= kReleaseOfParity;
  const std::array<view::Control*, 4> gated = {&CheckDravo5, &CheckDravo4, &OptionDravo1, &OptionDravo2};
  for (view::Control* control : gated) control->Enabled = hasParity;
  pages::ShowRates(BaudDravo, release >= kReleaseOfSevenRates);
}

core::Task<> Dravo::ManageDravo() {
  ShowInput(Polled(kInput));
  for (int i = 0; i < kScales; ++i) ShowScale(i, Polled(kScale1 + i));
  // The first paint leaves the Delay box as it is, which is meant.
  const unsigned delay = CheckDravo5.Value() != 0 ? kDelay : 0;
  ShowFlags(Polled(kFlags).And(0xFFFF & ~kDelay).Or(delay));
  ShowMeasured(Polled(kUserValue), Polled(kMeasured));
  ShowStatus(Polled(kStatus));
  if (InSession()) co_await ShowAddressOf(kStoredAddress, AddressDravo, BaudDravo);
}

core::Task<> Dravo::ManageContinueDravo() {
  ShowMeasured(Polled(kUserValue), Polled(kMeasured));
  // Both bars go by the second one.
  const bool changed = pages::ShowClamped(BargDravo2, Polled(kMeasured).Signed());
  if (changed) BargDravo1.SetPercent(BargDravo2.Percent());
  ShowStatus(Polled(kStatus));
  co_return;
}

core::Task<> Dravo::ShowRegisters() {
  const std::optional<Word> input = co_await ReadOne(kInput);
  if (input) ShowInput(*input);
  for (int i = 0; i < kScales; ++i) {
    const std::optional<Word> scale = co_await ReadOne(kScale1 + i);
    if (scale) ShowScale(i, *scale);
  }
  // Read as all the others are; the address shown comes from the image.
  co_await ReadOne(kAddress);
  const std::optional<Word> flags = co_await ReadOne(kFlags);
  if (flags) ShowFlags(*flags);
  const std::optional<Word> userValue = co_await ReadOne(kUserValue);
  if (userValue) InputTechDravo.Caption = std::to_string(userValue->Signed());
  const std::optional<Word> measured = co_await ReadOne(kMeasured);
  if (measured) InputScaledDravo.Caption = std::to_string(measured->Signed());
  const std::optional<Word> status = co_await ReadOne(kStatus);
  if (status) ShowStatus(*status);
  co_await ShowAddressOf(kStoredAddress, AddressDravo, BaudDravo);
}

core::Task<> Dravo::SetupFormFromFile() {
  // Only here does the type keep its whole byte.
  InputTypeDravo.ListIndex = Copy(kInput).High() - 1;
  InputFilterDravo.ListIndex = Copy(kInput).And(kFilterBits).Unsigned();
  for (int i = 0; i < kScales; ++i) ShowScale(i, Copy(kScale1 + i));
  ShowFlags(Copy(kFlags));
  ShowMeasured(Copy(kUserValue), Copy(kMeasured));
  ShowStatus(Copy(kStatus));
  pages::ShowAddressWord(Copy(kAddress), AddressDravo, BaudDravo);
  co_return;
}

void Dravo::ShowInput(Word input) {
  InputTypeDravo.ListIndex = input.And(kTypeBits).High() - 1;
  InputFilterDravo.ListIndex = input.And(kFilterBits).Unsigned();
}

void Dravo::ShowScale(int value, Word word) {
  ValueDravo[value].Caption = std::to_string(word.Signed());
}

void Dravo::ShowMeasured(Word userValue, Word measured) {
  InputTechDravo.Caption = std::to_string(userValue.Signed());
  InputScaledDravo.Caption = std::to_string(measured.Signed());
}

void Dravo::ShowStatus(Word status) {
  for (int i = 0; i < kStatusBits; ++i) {
    StatusDravo[i].BackColor = status.Has(1U << (kFirstStatusBit + i)) ? view::kRed : kButtonFace;
  }
}

// What the user does.

void Dravo::InputTypeChange() {
  const int position = InputTypeDravo.ListIndex();
  const MeasureType* type = FindMeasureType(position);
  if (type == nullptr) return;
  limits_ = *type;
  const bool scaled = position < kScaledTypes;
  ValueDravo[0].Caption = std::to_string(type->upper);
  ValueDravo[1].Caption = scaled ? "0" : std::to_string(type->lower);
  UnitaMisuraDravo1.Caption = type->unit;
  if (scaled) {
    UnitaMisuraDravo2.Caption = type->unit;
  } else {
    ValueDravo[2].Caption = std::to_string(type->upper);
    ValueDravo[3].Caption = std::to_string(type->lower);
  }
}

core::Task<> Dravo::ValueClick(std::size_t value) {
  const Bounds bounds = ScaleBounds(value, limits_, InputTypeDravo.ListIndex());
  co_await EditValue(ValueDravo[value], bounds.lower, bounds.upper);
}

// How it looks.

view::Node Dravo::Arrangement() const {
  std::vector<view::Node> status;
  for (const view::Lamp& lamp : StatusDravo) status.push_back(view::Show(lamp));
  return view::Column({
      HeadLine("Data acquisition, one input"),
      view::Row({
          view::Frame(
              "Input Settings",
              view::Column({
                  view::Field("Input Type", view::Show(InputTypeDravo)),
                  view::Field("Input Filter", view::Show(InputFilterDravo)),
                  view::Field("Full Scale", view::Row({view::Show(ValueDravo[0]), view::Show(UnitaMisuraDravo1)})),
                  view::Field("Start Scale", view::Row({view::Show(ValueDravo[1]), view::Space()})),
              })),
          view::Frame("Output (0..10000)",
                      view::Column({
                          view::Field("Input", view::Row({view::Show(InputTechDravo), view::Show(UnitaMisuraDravo2)})),
                          view::Show(BargDravo1),
                          view::Field("Measured", view::Show(InputScaledDravo)),
                          view::Show(BargDravo2),
                      })),
          view::Frame("Status Flags", view::Column(std::move(status))),
      }),
      view::Row({
          view::Frame("User Settings", view::Column({
                                           view::Field("Full Scale", view::Show(ValueDravo[2])),
                                           view::Field("Start Scale", view::Show(ValueDravo[3])),
                                       })),
          view::Frame("Calibration", view::Column({
                                         view::Field("Span", view::Show(ValueDravo[4])),
                                         view::Field("Zero", view::Show(ValueDravo[5])),
                                     })),
          view::Frame("Settings", view::Row({
                                      view::Column({view::Show(CheckDravo1), view::Show(CheckDravo2),
                                                    view::Show(CheckDravo3), view::Show(CheckDravo5)}),
                                      view::Column({view::Show(CheckDravo4),
                                                    view::Row({view::Show(OptionDravo1), view::Show(OptionDravo2)}),
                                                    view::Field("Module Address", view::Show(AddressDravo)),
                                                    view::Field("Module Baud Rate", view::Show(BaudDravo))}),
                                  })),
      }),
      view::Space(),
      Foot(),
  });
}

}  // namespace tarvo::models
