#include "models/ferrun.h"

#include <optional>

#include "pages/meter_percent.h"
#include "pages/status_panels.h"
#include "state/number_text.h"

namespace tarvo::models {

using state::Register;
using state::Word;
using namespace state::literals;

namespace {

constexpr pages::PageIdentity kIdentity = {
    .number = 3,
    .model = "Ferrun",
    .window = "Ferrun",
    .code = 0x04,
    .poll = {Ferrun::kInput, 10},
    .pollAfter = pages::PollBlock{Ferrun::kFlags, 12},
    .runKind = 4,
    .reset = Ferrun::kStatus,
    .names = {.weep = "buttWEEPFerrun", .reset = "buttResetFerrun"},
};

/// A value of the PID loop, behind the six scales.
struct Term {
  Register target;
  Register image;
  const char* label;
  const char* tip;
  int upper;  ///< the lower bound is 0
  bool live;  ///< a new value goes to the module at once
};
constexpr std::array<Term, Ferrun::kValues - Ferrun::kScales> kTerms = {{
    {"40012"_reg, "40076"_reg, "Setpoint", "Setpoint", 10000, true},
    {"40013"_reg, "40077"_reg, "Gain", "Gain", 9999, true},
    {"40014"_reg, "40078"_reg, "Int. Time", "Integral Time", 6000, true},
    {"40015"_reg, "40079"_reg, "Der. Time", "Derivative Time", 9999, true},
    {"40017"_reg, "40081"_reg, "Output Max", "Max Output", 10000, true},
    {"40018"_reg, "40082"_reg, "Output Min", "Min Output", 10000, true},
    {"40016"_reg, "40080"_reg, "Man Reset", "Manual Reset", 10000, true},
    {Ferrun::kStoredOutputInit, Ferrun::kStoredOutputInit, "Output Init", "Output Init", 10000, false},
}};
constexpr std::size_t kFirstTerm = Ferrun::kScales;
constexpr std::size_t kOutputInit = Ferrun::kValues - 1;
/// Positions in `ValueFerrun` in the order of their images.
constexpr std::array<std::size_t, 8> kImageOrder = {6, 7, 8, 9, 12, 10, 11, 13};

constexpr std::array<std::string_view, Ferrun::kStatusBits> kStatusNames = {
    "Data Programming Error",   "Input Overflow",       "Input Underflow", "Burn Out Error",
    "EEPROM Programming Error", "A/D Converter Failed", "Output Overflow", "Output Underflow"};
constexpr int kFirstStatusBit = 8;

/// First release with a delay and parity.
constexpr int kReleaseOfParity = 2;
/// First release with 1200 and 2400 baud.
constexpr int kReleaseOfSevenRates = 3;

std::size_t At(int index) {
  return static_cast<std::size_t>(index);
}

const Term& TermOf(std::size_t value) {
  return kTerms.at(value - kFirstTerm);
}

std::string ValueTip(std::size_t value) {
  const bool scale = value < kFirstTerm;
  const Register target = scale ? Ferrun::kScale1 + static_cast<int>(value) : TermOf(value).target;
  const std::string name(scale ? kScaleNames[value] : std::string_view(TermOf(value).tip));
  return std::to_string(target.Number()) + " - " + name;
}

}  // namespace

Ferrun::Ferrun(pages::PageContext& context)
    : DevicePage(context, kIdentity),
      comboInputTypeFerrun(*this, "comboInputTypeFerrun", MeasureTypeRows(), "40002(H) - Input Type"),
      ValueFerrun([this](int i) { return view::Label(*this, "ValueFerrun", "0", ValueTip(At(i)), i); }),
      StatusFerrun([this](int i) {
        const std::string name(kStatusNames[At(i)]);
        return view::Lamp(*this, "StatusFerrun", name, "40022." + std::to_string(kFirstStatusBit + i) + " - " + name,
                          i);
      }),
      flags_({{
          {CheckSquareRoot, kFlags, 0x0100, 0xFEFF},
          {CheckBurnOUt, kFlags, 0x0200, 0xFDFF},
          {Check_4_wires, kFlags, 0x4000, 0xBFFF},
          {Check_4_20, kFlags, 0x2000, 0xDFFF},
          {CheckReload, kFlags, 0x1000, 0xEFFF},
          {CheckResetonTx, kFlags, 0x8000, 0x7FFF},
          {CheckDelay, kFlags, 0x0004, 0xFFFB},
          {checkParity, kFlags, 0x0008, 0xFFF7},
          {CheckAuto, kFlags, 0x0400, 0xFBFF},
          {CheckInv, kFlags, 0x0800, 0xF7FF},
      }}),
      images_(MakeImages()),
      fields_(MakeFields()) {
  BindFlags(flags_);
  BindParity(checkParity, OptionEven, OptionOdd, kFlags);
  BindEdit(labAddressFerrun, 1, 255);
  BindEdit(labSafetimeFerrun, 5, 250);
  CheckAuto.OnChange = [this] { OutputFerrun.Enabled = CheckAuto.Value() == 0; };
  OutputFerrun.OnClick = [this] { return OutputClick(); };
  for (std::size_t i = 0; i < decltype(ValueFerrun)::Size(); ++i)
    ValueFerrun[i].OnClick = [this, i] { return ValueClick(i); };
  // Before anything was read every value is 0: the handler comes after the first selection.
  comboInputTypeFerrun.ListIndex = 0;
  comboInputFilterFerrun.ListIndex = 0;
  UnitaMisuraFerrun1.Caption = limits_.unit;
  UnitaMisuraFerrun2.Caption = limits_.unit;
  comboInputTypeFerrun.OnSelect = [this] { InputTypeClick(); };
  for (view::ARMetor* bar : {&BargFerrun1, &BargFerrun2, &BargFerrun3}) {
    pages::MakeBar(*bar);
  }
  for (view::Lamp& lamp : StatusFerrun) lamp.BackColor = kButtonFace;
}

std::vector<pages::ImageWrite> Ferrun::MakeImages() {
  const auto number = [this](std::size_t value) {
    return [this, value] { return state::ToWord(ValueFerrun[value].Caption()); };
  };
  std::vector<pages::ImageWrite> images;
  images.push_back({"40066"_reg, [this] { return InputWord(); }});
  for (int i = 0; i < kScales; ++i) images.push_back({"40067"_reg + i, number(At(i))});
  images.push_back({kStoredAddress, [this] { return pages::AddressWord(labAddressFerrun, comboBaudFerrun); }});
  images.push_back({"40074"_reg, [this] { return state::ToWord(labSafetimeFerrun.Caption()); }});
  images.push_back({"40075"_reg, [this] { return ReadFlags(); }});
  for (const std::size_t value : kImageOrder) images.push_back({TermOf(value).image, number(value)});
  return images;
}

// In the order of the images.
std::vector<pages::FileField> Ferrun::MakeFields() {
  std::vector<pages::FileField> fields;
  fields.push_back({[this] { return std::to_string(InputWord().Unsigned()); },
                    [this](const std::string& text) { ShowInput(state::LowWord(text)); }});
  for (int i = 0; i < kScales; ++i) fields.push_back(TextField(ValueFerrun[i]));
  fields.push_back(AddressField(labAddressFerrun, comboBaudFerrun));
  fields.push_back(TextField(labSafetimeFerrun));
  // Negative when bit 15 is set.
  fields.push_back({[this] { return std::to_string(ReadFlags().Signed()); },
                    [this](const std::string& text) { ShowFlags(state::LowWord(text)); }});
  for (const std::size_t value : kImageOrder) fields.push_back(TextField(ValueFerrun[value]));
  return fields;
}

Word Ferrun::InputWord() const {
  const int type = comboInputTypeFerrun.ListIndex() + 1;
  return Word(static_cast<unsigned>(type * 256) | static_cast<unsigned>(comboInputFilterFerrun.ListIndex()));
}

void Ferrun::FieldsComing() {
  // Set before all others, and once more in its turn.
  ValueFerrun[kOutputInit].Caption = State().FileFields.at(fields_.size());
}

// What Start, the poll and the search do.

void Ferrun::Load() {
  DevicePage::Load();
  comboBaudFerrun.ListIndex = 1;
}

void Ferrun::CheckFWVersion(int release) {
  release_ = release;
  const bool hasParity = release >= kReleaseOfParity;
  CheckDelay.Enabled = hasParity;
  checkParity.Enabled = hasParity;
  if (!hasParity) {
    Context().status.passing.Text = "FW Version = 1, Delay 12ms and Parity checkboxes  are disabled";
  }
  pages::ShowRates(comboBaudFerrun, release >= kReleaseOfSevenRates);
}

core::Task<> Ferrun::ApplyFirmware(int release) {
  // This page tells its connection before anything else.
  Context().status.connection.Text = pages::ConnectionLine("Connected to Ferrun, ", ModCom1);
  CheckFWVersion(release);
  co_return;
}

core::Task<> Ferrun::ManageFerrun1() {
  ShowInput(Polled(kInput));
  for (int i = 0; i < kScales; ++i) ShowValue(At(i), Polled(kScale1 + i));
  labSafetimeFerrun.Caption = std::to_string(Polled(kSafeTime).Unsigned());
  ShowFlags(Polled(kFlags));
  if (InSession()) co_await ShowAddressOf(kStoredAddress, labAddressFerrun, comboBaudFerrun);
}

core::Task<> Ferrun::ManageFerrun2() {
  for (std::size_t value = kFirstTerm; value < kOutputInit; ++value) ShowValue(value, Polled(TermOf(value).target));
  ShowMeasured();
  if (InSession()) co_await ShowStoredOutputInit();
}

core::Task<> Ferrun::ManageContinueFerrun() {
  ShowFlags(Polled(kFlags));
  ShowMeasured();
  pages::ShowClamped(BargFerrun1, Polled(kMeasured).Signed());
  pages::ShowClamped(BargFerrun2, Polled(kMeasured).Signed());
  pages::ShowClamped(BargFerrun3, Polled(kOutput).Signed());
  for (int i = 0; i < kStatusBits; ++i) {
    const bool lit = Polled(kStatus).Has(1U << (kFirstStatusBit + i));
    StatusFerrun[i].BackColor = lit ? view::kRed : kButtonFace;
  }
  co_return;
}

core::Task<> Ferrun::ShowRegisters() {
  const std::optional<Word> input = co_await ReadOne(kInput);
  if (input) ShowInput(*input);
  for (int i = 0; i < kScales; ++i) {
    const std::optional<Word> scale = co_await ReadOne(kScale1 + i);
    if (scale) ShowValue(At(i), *scale);
  }
  const std::optional<Word> safeTime = co_await ReadOne(kSafeTime);
  if (safeTime) labSafetimeFerrun.Caption = std::to_string(safeTime->Unsigned());
  const std::optional<Word> flags = co_await ReadOne(kFlags);
  if (flags) ShowFlags(*flags);
  // In the order of the registers, which is that of the images.
  for (const std::size_t value : kImageOrder) {
    if (value == kOutputInit) continue;
    const std::optional<Word> term = co_await ReadOne(TermOf(value).target);
    if (term) ShowValue(value, *term);
  }
  co_await ShowAddressOf(kStoredAddress, labAddressFerrun, comboBaudFerrun);
  co_await ShowStoredOutputInit();
}

core::Task<> Ferrun::ShowStoredOutputInit() {
  const std::optional<Word> stored = co_await ReadOne(kStoredOutputInit);
  if (stored) ShowValue(kOutputInit, *stored);
}

void Ferrun::ShowInput(Word input) {
  comboInputTypeFerrun.ListIndex = input.High() - 1;
  comboInputFilterFerrun.ListIndex = input.Low();
}

void Ferrun::ShowValue(std::size_t value, Word word) {
  ValueFerrun[value].Caption = std::to_string(word.Signed());
}

void Ferrun::ShowMeasured() {
  OutputFerrun.Caption = std::to_string(Polled(kOutput).Signed());
  InputTechFerrun.Caption = std::to_string(Polled(kUserValue).Signed());
  InputScaledFerrun.Caption = std::to_string(Polled(kMeasured).Signed());
}

core::Task<> Ferrun::Committed() {
  co_await ModCom1.Free();
  (void)ModCom1.ResetLink();
}

// What the user does.

void Ferrun::InputTypeClick() {
  const int position = comboInputTypeFerrun.ListIndex();
  const MeasureType* type = FindMeasureType(position);
  if (type == nullptr) return;
  limits_ = *type;
  const bool scaled = position < kScaledTypes;
  ValueFerrun[0].Caption = std::to_string(type->upper);
  ValueFerrun[1].Caption = scaled ? "0" : std::to_string(type->lower);
  if (!scaled) {
    ValueFerrun[2].Caption = std::to_string(type->upper);
    ValueFerrun[3].Caption = std::to_string(type->lower);
  }
  UnitaMisuraFerrun1.Caption = type->unit;
  UnitaMisuraFerrun2.Caption = type->unit;
  // A temperature sensor has fixed scales.
  for (std::size_t value = 0; value < 4; ++value) ValueFerrun[value].Enabled = scaled;
}

core::Task<> Ferrun::ValueClick(std::size_t value) {
  const bool term = value >= kFirstTerm;
  const Bounds bounds =
      term ? Bounds{0, TermOf(value).upper} : ScaleBounds(value, limits_, comboInputTypeFerrun.ListIndex());
  const bool accepted = co_await EditValue(ValueFerrun[value], bounds.lower, bounds.upper);
  if (!accepted || !term || !TermOf(value).live) co_return;
  const Word word = state::ToWord(ValueFerrun[value].Caption());
  co_await WriteLive(TermOf(value).target, word);
}

core::Task<> Ferrun::OutputClick() {
  const bool accepted = co_await EditValue(OutputFerrun, 0, 10000);
  if (!accepted) co_return;
  const Word word = state::ToWord(OutputFerrun.Caption());
  co_await WriteLive(kOutput, word);
}

void Ferrun::FerrunEnableControls(int state) {
  const bool enabled = state == 1;
  for (const pages::Flag& flag : flags_) flag.box.Enabled = enabled;
  for (view::Label& value : ValueFerrun) value.Enabled = enabled;
  const std::array<view::Control*, 9> others = {
      &OptionEven,      &OptionOdd,        &comboInputTypeFerrun, &comboInputFilterFerrun,
      &comboBaudFerrun, &labAddressFerrun, &labSafetimeFerrun,    &WEEP,
      &*Reset};
  for (view::Control* other : others) other->Enabled = enabled;
}

// How it looks.

view::Node Ferrun::Arrangement() const {
  const auto value = [this](std::size_t at) { return view::Show(ValueFerrun[at]); };
  const auto terms = [&](std::size_t from) {
    std::vector<view::Node> fields;
    for (std::size_t at = from; at < from + kTerms.size() / 2; ++at) {
      fields.push_back(view::Field(TermOf(at).label, value(at)));
    }
    return view::Column(std::move(fields));
  };
  std::vector<view::Node> status;
  for (const view::Lamp& lamp : StatusFerrun) status.push_back(view::Show(lamp));
  return view::Column({
      HeadLine("PID controller, one input and one output"),
      view::Row({
          view::Frame("Reading (0..10000)", view::Column({
                                                view::Field("Input", view::Row({view::Show(InputTechFerrun),
                                                                                view::Show(UnitaMisuraFerrun2)})),
                                                view::Show(BargFerrun1),
                                                view::Field("Measured", view::Show(InputScaledFerrun)),
                                                view::Show(BargFerrun2),
                                                view::Field("Output", view::Show(OutputFerrun)),
                                                view::Show(BargFerrun3),
                                                view::Row({view::Show(CheckAuto), view::Show(CheckInv)}),
                                            })),
          view::Column({
              view::Frame("PID Settings", view::Row({terms(kFirstTerm), terms(kFirstTerm + kTerms.size() / 2)})),
              view::Row({
                  view::Frame("User Settings", view::Column({
                                                   view::Field("User Full Scale", value(2)),
                                                   view::Field("User Start Scale", value(3)),
                                               })),
                  view::Frame("Calibration", view::Column({
                                                 view::Field("Span", value(4)),
                                                 view::Field("Zero", value(5)),
                                             })),
              }),
          }),
          view::Frame("Status Flags", view::Column(std::move(status))),
      }),
      view::Row({
          view::Frame("Input Settings",
                      view::Column({
                          view::Field("Input Type", view::Show(comboInputTypeFerrun)),
                          view::Field("Input Filter", view::Show(comboInputFilterFerrun)),
                          view::Field("Full Scale", view::Row({value(0), view::Show(UnitaMisuraFerrun1)})),
                          view::Field("Start Scale", view::Row({value(1), view::Space()})),
                      })),
          view::Frame("Settings", view::Row({
                                      view::Column({view::Show(CheckSquareRoot), view::Show(CheckBurnOUt),
                                                    view::Show(Check_4_wires), view::Show(Check_4_20)}),
                                      view::Column({view::Show(CheckReload), view::Show(CheckResetonTx),
                                                    view::Show(CheckDelay), view::Show(checkParity),
                                                    view::Row({view::Show(OptionEven), view::Show(OptionOdd)})}),
                                      view::Column({view::Field("Module Address", view::Show(labAddressFerrun)),
                                                    view::Field("Module Baud Rate", view::Show(comboBaudFerrun)),
                                                    view::Field("Safe time", view::Show(labSafetimeFerrun))}),
                                  })),
      }),
      view::Space(),
      Foot(),
  });
}

}  // namespace tarvo::models
