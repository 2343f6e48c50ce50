#include "models/lumet.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>

#include "pages/meter_percent.h"
#include "state/bit_shifts.h"
#include "state/number_text.h"
#include "view/screen.h"

namespace tarvo::models {

using state::Register;
using state::Word;
using namespace state::literals;

namespace {

/// What the two steps of the poll read.
constexpr pages::PollBlock kFirstStep = {Lumet::kInputStates, 9};
constexpr pages::PollBlock kSecondStep = {"40011"_reg, 9};

constexpr pages::PageIdentity kIdentity = {
    .number = 6,
    .model = "Lumet",
    .window = "frmLumet",
    .code = 0x0A,
    .poll = kFirstStep,
    .runKind = 1,
    .pollFormat = 0,
    .reset = Lumet::kReset,
    // The release has the blank of a number that is not negative.
    .firmware = "Firmware rel:  ",
    .connected = "Connected to Lumet , ",
    .commitHoldsPoll = false,
};

constexpr double kFullCounter = 65535;

/// First release with counting down, delay, parity and seven baud rates.
constexpr int kReleaseOfParity = 2;

/// From this input on only the frequency can be measured.
constexpr int kFirstFastInput = 8;

constexpr std::array<view::ListRow, Lumet::kInputs> kInputRows = {{{"inp. #1"},
                                                                   {"inp. #2"},
                                                                   {"inp. #3"},
                                                                   {"inp. #4"},
                                                                   {"inp. #5"},
                                                                   {"inp. #6"},
                                                                   {"inp. #7"},
                                                                   {"inp. #8"},
                                                                   {"inp. #9"},
                                                                   {"inp. #10"}}};

constexpr std::array<view::ListRow, 4> kTypes = {{{"frequency"}, {"period"}, {"TON"}, {"TOFF"}}};

/// How inputs 9 and 10 count; the code is the high byte of the flags.
constexpr std::array<view::ListRow, 6> kCombinations = {{{"inc. 9 - inc.10", 0x00},
                                                         {"dec. 9 - inc.10", 0x01},
                                                         {"inc.9 - dec.10", 0x02},
                                                         {"dec.9 - dec.10", 0x04},
                                                         {"inc.9 - dec.9 ", 0x08},
                                                         {"clock 9 -if  IN10 =0  INC. TOT.9", 0x10}}};

std::string Numbered(const char* text, int input) {
  return text + std::to_string(input + 1);
}

std::string BitTip(Register source, int input, const char* text) {
  return std::to_string(source.Number()) + "." + std::to_string(input) + Numbered(text, input);
}

std::string CounterTip(int input) {
  if (input == 8) return "40011-40012 : Counter Input 9";
  if (input == 9) return "40013-40014 :  Counter Input 10";
  return std::to_string((Lumet::kInputStates + 1 + input).Number()) + Numbered(" - Counter Input ", input);
}

constexpr unsigned InputBit(int input) {
  return 0x0001U << input;
}

}  // namespace

Lumet::Lumet(pages::PageContext& context)
    : DevicePage(context, kIdentity),
      StatoIN([this](int i) { return view::ImageBox(*this, "StatoIN", BitTip(kInputStates, i, " - Input "), i); }),
      LabelIN([this](int i) { return view::Label(*this, "LabelIN", Numbered("Input ", i), "", i); }),
      TotIN([this](int i) { return view::Label(*this, "TotIN", "0", CounterTip(i), i); }),
      BargLumet([this](int i) { return view::ARMetor(*this, Numbered("BargLumet", i)); }),
      OverFlowIN([this](int i) {
        return view::Lamp(*this, "OverFlowIN", "Overflow", BitTip("40015"_reg, i, " - Overflow Input "), i);
      }),
      cbIngresso(
          [this](int i) { return view::ComboBox(*this, "cbIngresso", kInputRows, "reg. 40018 - Measure Type", i); }),
      cbTipoMisura(
          [this](int i) { return view::ComboBox(*this, "cbTipoMisura", kTypes, "reg. 40018 - Measure Type", i); }),
      tbMisura([this](int i) { return view::TextBox(*this, "tbMisura", "", i); }),
      cbCombIngressi(*this, "cbCombIngressi", kCombinations, " 40020.8-40020.13,  setup inputs 9-10"),
      flags_({{
          {CheckLumet2, kFlags, 0x0001, 0xFFFE},
          {CheckLumet4, kFlags, 0x0002, 0xFFFD},
          {CheckLumet5, kFlags, 0x0004, 0xFFFB},
          {CheckLumet6, kFlags, 0x0008, 0xFFF7},
      }}),
      fields_(MakeFields()) {
  WEEP.ToolTipText = "Write current  settings to eeprom";
  Reset->ToolTipText = "Module Reset";
  for (view::ARMetor& bar : BargLumet) pages::MakeBar(bar);
  for (view::TextBox& value : tbMisura) {
    value.Text = "0";
    value.Locked = true;
  }
  BindClickedFlags(flags_);
  BindParity(CheckLumet6, OptionLumet1, OptionLumet2, kFlags);
  for (int i = 0; i < kMeasures; ++i) cbIngresso[i].OnSelect = [this, i] { ListTypes(i); };
  BindEdit(FilterLumet, 1, 254);
  BindEdit(AddressLumet, 1, 255);
}

std::vector<pages::FileField> Lumet::MakeFields() {
  std::vector<pages::FileField> fields;
  // The first counter is not among them, which is meant.
  for (int i = 1; i < kInputs; ++i) fields.push_back(TextField(TotIN[i]));
  fields.push_back({[this] { return std::to_string(ReadFlagsFromForm().Unsigned()); },
                    [this](const std::string& text) {
                      if (state::IsNumeric(text)) SetEPRFLGOnForm(state::LowWord(text));
                    }});
  // An address that is no number ends the reading: what follows stays as it is.
  const pages::FileField address = AddressField(AddressLumet, BaudLumet, pages::kWholeHighByte);
  const std::size_t number = fields.size() + 1;
  const auto ended = [this, number] { return !state::IsNumeric(State().FileFields.at(number)); };
  fields.push_back({address.write, [address, ended](const std::string& text) {
                      if (!ended()) address.read(text);
                    }});
  fields.push_back({[this] { return std::to_string(SetMeasureType().Unsigned()); },
                    [this, ended](const std::string& text) {
                      if (!ended() && state::IsNumeric(text)) SetMeasureTypeOnForm(state::LowWord(text));
                    }});
  const pages::FileField filter = TextField(FilterLumet);
  fields.push_back({filter.write, [filter, ended](const std::string& text) {
                      if (!ended()) filter.read(text);
                    }});
  return fields;
}

// What Start, the poll and the search do.

void Lumet::Load() {
  for (view::ComboBox& type : cbTipoMisura) type.ListIndex = 0;
  for (view::ComboBox& input : cbIngresso) input.ListIndex = 0;
  cbCombIngressi.ListIndex = 0;
  BaudLumet.ListIndex = 0;
  SetPollBlock({"40001"_reg, 1});
  SetupModcomOCX();
  DevicePage::Load();
}

void Lumet::CheckFWVersion(int release) {
  const bool hasParity = release >= kReleaseOfParity;
  const std::array<view::Control*, 5> gated = {&CheckLumet3, &CheckLumet4, &CheckLumet5, &CheckLumet6, &OptionLumet2};
  for (view::Control* control : gated) control->Enabled = hasParity;
  pages::ShowRates(BaudLumet, hasParity);
  if (!hasParity) {
    // The message says 1 for every such release, which is meant.
    Context().status.passing.Text = "FW Version  :1, down counters, delay, parity  checkboxes are disabled";
  }
}

core::Task<> Lumet::ApplyFirmware(int release) {
  CheckFWVersion(release);
  co_await ReadOtherRegisters();
  co_await ReadMeasureType();
}

void Lumet::Starting() {
  commstep_ = 1;
  SetPollBlock(kFirstStep);
}

std::span<Word> Lumet::PollTarget() {
  return commstep_ == 1 ? State().PollBufferA : State().PollBufferB;
}

core::Task<> Lumet::ManageContinue() {
  ManageContinueLumet();
  co_return;
}

void Lumet::ManageContinueLumet() {
  if (commstep_ == 1) {
    PaintFirstStep();
    commstep_ = 2;
    SetPollBlock(kSecondStep);
  } else {
    PaintSecondStep();
    commstep_ = 1;
    SetPollBlock(kFirstStep);
  }
}

void Lumet::PaintFirstStep() {
  const auto& block = State().PollBufferA;
  for (int i = 0; i < kInputs; ++i) StatoIN[i].Picture = block[0].Has(InputBit(i)) ? 2 : 1;
  for (int i = 0; i < kShortCounters; ++i) {
    const int counter = block[static_cast<std::size_t>(i) + 1].Unsigned();
    TotIN[i].Caption = std::to_string(counter);
    pages::ShowPercent(BargLumet[i], counter * 100.0 / kFullCounter);
  }
}

void Lumet::PaintSecondStep() {
  const auto& block = State().PollBufferB;
  for (int i = 0; i < kInputs; ++i) OverFlowIN[i].BackColor = block[4].Has(InputBit(i)) ? view::kRed : view::kDarkRed;
  ShowTotal(8, block[0], block[1]);
  ShowTotal(9, block[2], block[3]);
  for (int i = 0; i < kMeasures; ++i) {
    tbMisura[i].Text = std::to_string(block[static_cast<std::size_t>(i) + 5].Unsigned());
  }
}

/// A total is a number of 32 bits with a sign: what does not fit leaves what is shown.
void Lumet::ShowTotal(int input, Word low, Word high) {
  constexpr std::int64_t kLargest = std::numeric_limits<std::int32_t>::max();
  const std::int64_t total = std::int64_t{low.Unsigned()} + state::ShiftLeft16(high);
  if (total > kLargest) return;
  TotIN[input].Caption = std::to_string(total);
  if (total * 100 > kLargest) return;
  const double percent = static_cast<double>(total) * 100.0 / kFullCounter;
  if (percent <= 100) pages::ShowPercent(BargLumet[input], percent);
}

core::Task<> Lumet::ShowRegisters() {
  co_await ReadOtherRegisters();
  co_await ReadMeasureType();
}

core::Task<> Lumet::ReadOtherRegisters() {
  const std::optional<Word> flags = co_await ReadOne(kFlags);
  if (!flags) co_return;
  SetEPRFLGOnForm(*flags);
  const std::optional<Word> filter = co_await ReadOne(kFilter);
  if (filter) FilterLumet.Caption = std::to_string(filter->Unsigned());
  const std::optional<Word> address = co_await ReadOne(kStoredAddress);
  if (address) pages::ShowAddressWord(*address, AddressLumet, BaudLumet, pages::kWholeHighByte);
}

core::Task<> Lumet::ReadMeasureType() {
  const std::optional<Word> setup = co_await ReadOne(kMeasureSetup);
  if (setup) SetMeasureTypeOnForm(*setup);
}

void Lumet::SetEPRFLGOnForm(Word flags) {
  ShowFlags(flags);
  const std::vector<int>& codes = cbCombIngressi.ItemData();
  const auto found = std::find(codes.begin(), codes.end(), flags.High());
  // A value that is not in the list leaves the selection.
  if (found != codes.end()) cbCombIngressi.ListIndex = static_cast<int>(found - codes.begin());
}

void Lumet::SetMeasureTypeOnForm(Word setup) {
  const std::array<Word, kMeasures> bytes = {setup.And(0xFF),
                                             Word(static_cast<unsigned>(state::ShiftRight8(setup))).And(0xFF)};
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    cbIngresso[i].ListIndex = std::max(bytes[i].And(0x0F).Unsigned() - 1, 0);
  }
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const bool choice = cbTipoMisura[i].List().size() >= 2;
    cbTipoMisura[i].ListIndex = choice ? state::ShiftRight4(bytes[i]) : 0;
    // Of the buffer that this page never fills: the poll soon overwrites it.
    tbMisura[i].Text = std::to_string(State().PollBuffer.at(5 + i).Unsigned());
  }
}

void Lumet::Stopped() {
  Firmware.Caption = "Firmware rel: ";
  Message.Caption = "";
}

// What the user does.

/// Inputs 9 and 10 measure the frequency only. Every change of the input goes back to it.
void Lumet::ListTypes(int measure) {
  view::ComboBox& types = cbTipoMisura[measure];
  const bool fast = cbIngresso[measure].ListIndex() >= kFirstFastInput;
  types.SetRows(std::span(kTypes).first(fast ? 1 : kTypes.size()));
  types.ListIndex = 0;
}

Word Lumet::ReadFlagsFromForm() const {
  return FlagsShown().Or(static_cast<unsigned>(cbCombIngressi.SelectedCode()) << 8);
}

Word Lumet::SetMeasureType() const {
  std::array<int, kMeasures> bytes{};
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    bytes[i] = cbIngresso[i].ListIndex() + 1 + ((cbTipoMisura[i].ListIndex() * 16) & 240);
  }
  const Word high(static_cast<unsigned>(bytes[1]));
  return Word(static_cast<unsigned>(bytes[0] + state::ShiftLeft8(high)));
}

/// Paced by the clock, and with the polling on: the module has time for its EEPROM. Each value is the one of its
/// moment. A Stop leaves what is still due unwritten, also when the next session has begun.
core::Task<> Lumet::WriteEEpromRegisters() {
  // Looked at before the first write, so that a text which is no number tears nothing.
  (void)pages::AddressWord(AddressLumet, BaudLumet);
  (void)state::ToWord(FilterLumet.Caption());

  const int session = Session();
  co_await Pause(1);
  if (session != Session()) co_return SayUnwritten(kStoredFlags);
  co_await Store(kStoredFlags, ReadFlagsFromForm());
  co_await Pause(2);
  if (session != Session()) co_return SayUnwritten(kStoredMeasureSetup);
  co_await Store(kStoredMeasureSetup, SetMeasureType());
  const Word address = pages::AddressWord(AddressLumet, BaudLumet);
  co_await Pause(2);
  if (session != Session()) co_return SayUnwritten(kStoredAddress);
  co_await Store(kStoredAddress, address);
  const Word filter = state::ToWord(FilterLumet.Caption());
  co_await Pause(2);
  if (session != Session()) co_return SayUnwritten(kStoredFilter);
  co_await Store(kStoredFilter, filter);
  // Before the box that says so, other than on the other pages.
  GetScreen().SetMousePointer(view::Screen::Pointer::kDefault);
}

core::Task<> Lumet::Store(Register image, Word value) {
  co_await ModCom1.WritePLC(image, value, 1);
  co_await ModCom1.Free();
}

void Lumet::SayUnwritten(Register image) {
  Context().status.passing.Text = "unable to write " + std::to_string(image.Number());
}

core::Task<> Lumet::Pause(float seconds) {
  co_await GetScheduler().Sleep(core::milliseconds(static_cast<int>(seconds * 1000)));
}

void Lumet::LumetEnableControls(bool enabled) {
  const std::array<view::Control*, 15> edits = {
      &CheckLumet2,   &CheckLumet3,     &CheckLumet4,     &CheckLumet5,    &CheckLumet6,
      &FilterLumet,   &AddressLumet,    &BaudLumet,       &WEEP,           &cbIngresso[0],
      &cbIngresso[1], &cbTipoMisura[0], &cbTipoMisura[1], &cbCombIngressi, &*Reset};
  for (view::Control* edit : edits) edit->Enabled = enabled;
  for (view::Control* option : {&OptionLumet1, &OptionLumet2}) {
    option->Enabled = enabled && CheckLumet6.Value() != 0;
  }
}

// How it looks.

view::Node Lumet::Arrangement() const {
  std::vector<view::Node> inputs;
  inputs.reserve(kInputs);
  for (int i = 0; i < kInputs; ++i) {
    // One label stands over both fast inputs: the second row says its text again.
    view::Node fast = i == kFirstFastInput ? view::Show(LabelFASTLumet)
                                           : view::Text(i > kFirstFastInput ? LabelFASTLumet.Caption() : "");
    inputs.push_back(view::Row({view::Show(StatoIN[i]), view::Show(LabelIN[i]), std::move(fast), view::Show(TotIN[i]),
                                view::Show(BargLumet[i]), view::Show(OverFlowIN[i])}));
  }
  std::vector<view::Node> measures;
  measures.reserve(kMeasures);
  for (int i = 0; i < kMeasures; ++i) {
    const std::string reg = std::to_string(40016 + i);
    measures.push_back(view::Column({
        view::Field("Input  reg. " + reg, view::Show(cbIngresso[i])),
        view::Field("Meas. Type " + reg, view::Show(cbTipoMisura[i])),
        view::Field("Value reg. " + reg, view::Show(tbMisura[i])),
    }));
  }
  return view::Column({
      HeadLine("Ten digital inputs with counters"),
      view::Scroller(view::Row({
          view::Frame("Inputs", view::Table({"", "Input", "", "Counter"}, std::move(inputs))),
          view::Column({
              view::Frame("Measures", view::Row(std::move(measures))),
              view::Frame("Flags",
                          view::Row({
                              view::Column({view::Show(CheckLumet2), view::Show(CheckLumet3), view::Show(CheckLumet4)}),
                              view::Column({view::Show(CheckLumet5), view::Show(CheckLumet6),
                                            view::Row({view::Show(OptionLumet1), view::Show(OptionLumet2)})}),
                          })),
              view::Frame("Module", view::Column({
                                        view::Field("Inp. 9-10 configuration", view::Show(cbCombIngressi)),
                                        view::Field("Inputs Filter (mSec)", view::Show(FilterLumet)),
                                        view::Field("Module Address", view::Show(AddressLumet)),
                                        view::Field("Module Baud Rate", view::Show(BaudLumet)),
                                    })),
          }),
      })),
      Foot(),
  });
}

}  // namespace tarvo::models
