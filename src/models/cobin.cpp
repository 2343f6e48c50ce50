#include "models/cobin.h"

#include <optional>

#include "state/number_text.h"

namespace tarvo::models {

using pages::Keeping;
using pages::Setting;
using state::Word;
using namespace state::literals;

namespace {

constexpr pages::PageIdentity kIdentity = {
    .number = 1,
    .model = "Cobin",
    .window = "Cobin",
    .code = 0x02,
    .poll = {Cobin::kOutputs, 5},
    .runKind = 2,
    .reset = "40007"_reg,
    .keepsCopies = true,
    // The release has the blank of a number that is not negative.
    .firmware = "Firmware rel:  ",
    .connected = "Connected to Cobin , ",
    .hasTimerControllo = false,
};

constexpr unsigned kSafeStateSet = 0x0080;

/// First release with delay, parity and seven baud rates.
constexpr int kReleaseOfParity = 3;

constexpr unsigned BitOf(int output) {
  return 0x0001U << output;
}

/// The word with an output's bit the other way. Clearing it clears the high byte too, which is meant.
Word Toggled(Word word, int output) {
  return word.Has(BitOf(output)) ? word.And(0xFF & ~BitOf(output)) : word.Or(BitOf(output));
}

void Paint(view::ControlArray<view::ImageBox, Cobin::kCount>& images, Word bits) {
  for (int i = 0; i < Cobin::kCount; ++i) images[static_cast<std::size_t>(i)].Picture = bits.Has(BitOf(i)) ? 2 : 1;
}

std::string Numbered(const char* text, int output) {
  return text + std::to_string(output + 1);
}

std::string TipOf(const char* reg, const char* text, int output) {
  return std::string(reg) + "." + std::to_string(output) + Numbered(text, output);
}

}  // namespace

Cobin::Cobin(pages::PageContext& context)
    : DevicePage(context, kIdentity),
      LabelOUT([this](int i) { return view::Label(*this, "LabelOUT", Numbered("Out-", i), "", i); }),
      OutCobin(
          [this](int i) { return view::ImageBox(*this, Numbered("OutCobin", i), TipOf("40002", " - Output ", i)); }),
      LabelOUTsafe([this](int i) { return view::Label(*this, "LabelOUTsafe", Numbered("Safe-", i), "", i); }),
      SafeCobin([this](int i) {
        return view::ImageBox(*this, Numbered("SafeCobin", i), TipOf("40003", " - Safe State Output ", i));
      }),
      flags_({{
          {CheckCobin1, kFlags, kSafeStateSet, 0xFF7F},
          {CheckCobin2, kFlags, 0x0001, 0xFFFE},
          {CheckCobin3, kFlags, 0x0040, 0xFFBF},
          {CheckCobin4, kFlags, 0x0004, 0xFFFB},
          {CheckCobin5, kFlags, 0x0008, 0xFFF7},
      }}),
      images_({{
          {"40067"_reg, [this] { return Copy(kSafeState); }},
          {"40068"_reg, [this] { return state::ToWord(SafetimeCobin.Caption()); }},
          {"40069"_reg, [this] { return Copy(kFlags); }},
          {kStoredAddress, [this] { return pages::AddressWord(AddressCobin, BaudCobin); }},
      }}),
      fields_({{
          {FromCopy(kSafeState), ToCopy(kSafeState)},
          {TextField(SafetimeCobin).write, ToCopy(kSafeTime)},
          {FromCopy(kFlags), ToCopy(kFlags)},
          {AddressField(AddressCobin, BaudCobin).write, ToCopy(kAddress)},
      }}) {
  BindFlags(flags_);
  BindParity(CheckCobin5, OptionCobin1, OptionCobin2, kFlags);
  BindEdit(SafetimeCobin, 5, 250);
  BindEdit(AddressCobin, 1, 255);
  for (int i = 0; i < kCount; ++i) {
    const auto at = static_cast<std::size_t>(i);
    OutCobin[at].OnClick = [this, i] { return OutCobinClick(i); };
    SafeCobin[at].OnClick = [this, i] { return SafeCobinClick(i); };
  }
}

// What Start, the poll and the search do.

void Cobin::Load() {
  DevicePage::Load();
  BaudCobin.ListIndex = 1;
  SetOutputsEnabled(false);
}

void Cobin::CheckFWVersion(int release) {
  const bool hasParity = release >= kReleaseOfParity;
  const std::array<view::Control*, 4> gated = {&CheckCobin4, &CheckCobin5, &OptionCobin1, &OptionCobin2};
  for (view::Control* control : gated) control->Enabled = hasParity;
  pages::ShowRates(BaudCobin, hasParity);
  if (!hasParity) {
    // The message says 1 for every such release, which is meant.
    Context().status.passing.Text = "FW version :1, Delay 12ms and Parity checkboxes   are disabled";
  }
}

core::Task<> Cobin::ManageCobin() {
  ShowPolled();
  SafetimeCobin.Caption = std::to_string(Polled(kSafeTime).Unsigned());
  co_await ShowAddressOf(kStoredAddress, AddressCobin, BaudCobin);
}

// The safe time, the address and the baud rate stay as the user edited them until they are written.
core::Task<> Cobin::ManageContinueCobin() {
  ShowPolled();
  co_return;
}

void Cobin::ShowPolled() {
  Paint(OutCobin, Polled(kOutputs));
  Paint(SafeCobin, Polled(kSafeState));
  ShowFlags(Polled(kFlags));
}

core::Task<> Cobin::ShowRegisters() {
  const std::optional<Word> outputs = co_await ReadOne(kOutputs);
  if (outputs) Paint(OutCobin, *outputs);
  const std::optional<Word> safeState = co_await ReadOne(kSafeState);
  if (safeState) Paint(SafeCobin, *safeState);
  // The one that is shown without a look at how the read ended: 0 when it failed.
  const std::optional<Word> safeTime = co_await ReadOne(kSafeTime);
  SafetimeCobin.Caption = std::to_string(safeTime.value_or(Word(0)).Unsigned());
  const std::optional<Word> flags = co_await ReadOne(kFlags);
  if (flags) ShowFlags(*flags);
  co_await ShowAddressOf(kStoredAddress, AddressCobin, BaudCobin);
}

core::Task<> Cobin::SetupFormFromFile() {
  Paint(OutCobin, Copy(kOutputs));
  // The fifth picture stays as it is, which is meant.
  const int fifth = SafeCobin[kCount - 1].Picture();
  Paint(SafeCobin, Copy(kSafeState));
  SafeCobin[kCount - 1].Picture = fifth;
  SafetimeCobin.Caption = std::to_string(Copy(kSafeTime).Unsigned());
  ShowFlags(Copy(kFlags));
  pages::ShowAddressWord(Copy(kAddress), AddressCobin, BaudCobin);
  co_return;
}

// What the user does.

core::Task<> Cobin::OutCobinClick(int output) {
  if (!InSession()) co_return;
  pages::Change toggle = [output](Word word) { return Toggled(word, output); };
  co_await ChangeRegister(kOutputs, std::move(toggle));
}

core::Task<> Cobin::SafeCobinClick(int output) {
  const bool live = InSession();
  Word pattern;
  pages::Change toggle = [output, &pattern](Word word) { return pattern = Toggled(word, output); };
  co_await ChangeRegister(kSafeState, std::move(toggle));
  // Without a session the picture is the reverse of what every other paint shows, which is meant.
  if (!live) SafeCobin[static_cast<std::size_t>(output)].Picture = pattern.Has(BitOf(output)) ? 1 : 2;
  CheckCobin1.Value = pattern == Word(0) ? 0 : 1;
  co_await SetSafeStateFlag();
}

/// Mirrors the box into the flags. Clearing clears the high byte too, other than a click on the box: that is meant.
core::Task<> Cobin::SetSafeStateFlag() {
  return ChangeRegister(kFlags, CheckCobin1.Value() != 0 ? Setting(kSafeStateSet) : Keeping(0xFF & ~kSafeStateSet));
}

void Cobin::SetOutputsEnabled(bool enabled) {
  for (view::ImageBox& output : OutCobin) output.Enabled = enabled;
  for (view::ImageBox& safe : SafeCobin) safe.Enabled = enabled;
}

void Cobin::CobinEnableControls(bool enabled) {
  const std::array<view::Control*, 12> edits = {&BaudCobin,   &AddressCobin, &SafetimeCobin, &WEEP,
                                                &*Reset,      &CheckCobin1,  &CheckCobin2,   &CheckCobin3,
                                                &CheckCobin4, &CheckCobin5,  &OptionCobin1,  &OptionCobin2};
  for (view::Control* edit : edits) edit->Enabled = enabled;
}

// How it looks.

view::Node Cobin::Arrangement() const {
  std::vector<view::Node> outputs;
  std::vector<view::Node> safeStates;
  for (std::size_t i = 0; i < decltype(OutCobin)::Size(); ++i) {
    outputs.push_back(view::Row({view::Show(OutCobin[i]), view::Show(LabelOUT[i])}));
    safeStates.push_back(view::Row({view::Show(SafeCobin[i]), view::Show(LabelOUTsafe[i])}));
  }
  return view::Column({
      HeadLine("Five digital outputs with a safe state"),
      view::Row({
          view::Frame("Outputs Setting", view::Table({}, std::move(outputs))),
          view::Frame("Safe State Settings", view::Table({}, std::move(safeStates))),
      }),
      view::Row({
          view::Frame("Flags",
                      view::Row({
                          view::Column({view::Show(CheckCobin1), view::Show(CheckCobin2), view::Show(CheckCobin3)}),
                          view::Column({view::Show(CheckCobin4), view::Show(CheckCobin5),
                                        view::Row({view::Show(OptionCobin1), view::Show(OptionCobin2)})}),
                      })),
          view::Frame("Settings", view::Column({
                                      view::Field("Module Baud Rate", view::Show(BaudCobin)),
                                      view::Field("Module Address", view::Show(AddressCobin)),
                                      view::Field("Safe time ", view::Show(SafetimeCobin)),
                                  })),
      }),
      view::Space(),
      Foot(),
  });
}

}  // namespace tarvo::models
