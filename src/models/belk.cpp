#include "models/belk.h"

#include <optional>

#include "pages/meter_percent.h"
#include "state/number_text.h"

namespace tarvo::models {

using state::Word;
using namespace state::literals;

namespace {

constexpr pages::PageIdentity kIdentity = {
    .number = 0,
    .model = "Belk",
    .window = "Belk",
    .code = 0x01,
    .poll = {Belk::kStatus, 9},
    .runKind = 1,
    .pollFormat = 0,
    .reset = "40011"_reg,
    .keepsCopies = true,
};

constexpr unsigned InputBit(int input) {
  return 0x0001U << input;
}

constexpr unsigned OverflowBit(int input) {
  return 0x0100U << input;
}

constexpr double kFullCounter = 65535;

/// First releases that have it.
constexpr int kReleaseOfParity = 2;
constexpr int kReleaseOfSevenRates = 3;

std::string Numbered(const char* text, int input) {
  return text + std::to_string(input + 1);
}

}  // namespace

Belk::Belk(pages::PageContext& context)
    : DevicePage(context, kIdentity),
      StatoIN([this](int i) {
        return view::ImageBox(*this, "StatoIN", "40002." + std::to_string(i) + Numbered(" - Input ", i), i);
      }),
      LabelIN([this](int i) { return view::Label(*this, "LabelIN", Numbered("Input ", i), "", i); }),
      TotIN([this](int i) {
        return view::Label(*this, "TotIN", "0",
                           std::to_string((kCounter1 + i).Number()) + Numbered(" - Counter Input ", i), i);
      }),
      BargBelk([this](int i) { return view::ARMetor(*this, Numbered("BargBelk", i)); }),
      OverFlowIN([this](int i) {
        return view::Lamp(*this, "OverFlowIN", "Overflow",
                          "40002." + std::to_string(8 + i) + Numbered(" - Overflow Input ", i), i);
      }),
      flags_({{
          {CheckBelk2, kFlags, 0x0001, 0xFFFE},
          {CheckBelk4, kFlags, 0x0002, 0xFFFD},
          {CheckBelk5, kFlags, 0x0004, 0xFFFB},
          {CheckBelk6, kFlags, 0x0008, 0xFFF7},
          {CheckBelk3, kFlags, 0x0020, 0xFFDF},
          {CheckBelk1, kFlags, 0x0080, 0xFF7F},
      }}),
      images_({{
          {"40072"_reg, [this] { return state::ToWord(FilterBelk.Caption()); }},
          {"40073"_reg, [this] { return Copy(kFlags); }},
          {"40074"_reg, [this] { return pages::AddressWord(AddressBelk, BaudBelk); }},
      }}),
      fields_({{
          {TextField(FilterBelk).write, ToCopy(kFilter)},
          {FromCopy(kFlags), ToCopy(kFlags)},
          {AddressField(AddressBelk, BaudBelk).write, ToCopy(kCommunication)},
      }}) {
  for (view::ARMetor& bar : BargBelk) {
    pages::MakeBar(bar);
  }

  BindFlags(flags_);
  LabelFASTBelk.Visible = false;
  CheckBelk1.OnChange = [this] { LabelFASTBelk.Visible = CheckBelk1.Value() != 0; };

  BindParity(CheckBelk6, OptionBelk1, OptionBelk2, kFlags);
  for (int i = 0; i < kInputs; ++i) {
    const auto at = static_cast<std::size_t>(i);
    const unsigned keep = 0xFFFF & ~OverflowBit(i);
    OverFlowIN[at].OnClick = [this, keep] { return ChangeRegister(kStatus, pages::Keeping(keep)); };
    TotIN[at].OnClick = [this, i] { return TotINClick(i); };
  }
  BindEdit(FilterBelk, 1, 254);
  BindEdit(AddressBelk, 1, 255);
}

// What Start, the poll and the search do.

void Belk::Load() {
  DevicePage::Load();
  BaudBelk.ListIndex = 1;
}

void Belk::CheckFWVersion(int release) {
  Firmware.Caption = "FW. Release: " + std::to_string(release);
  pages::ShowRates(BaudBelk, release >= kReleaseOfSevenRates);
}

core::Task<> Belk::ApplyFirmware(int release) {
  CheckFWVersion(release);
  const bool enabled = release >= kReleaseOfParity;
  CheckBelk3.Enabled = enabled;
  CheckBelk4.Enabled = enabled;
  CheckBelk5.Enabled = enabled;
  CheckBelk6.Enabled = enabled;
  OptionBelk1.Enabled = enabled;
  OptionBelk2.Enabled = enabled;
  co_return;
}

core::Task<> Belk::ManageBelk() {
  ShowPolled();
  FilterBelk.Caption = std::to_string(Polled(kFilter).Unsigned());
  ShowCommunication(Polled(kCommunication));
  co_return;
}

// The filter, the address and the baud rate stay as the user edited them until they are written.
core::Task<> Belk::ManageContinueBelk() {
  ShowPolled();
  co_return;
}

void Belk::ShowPolled() {
  ShowStatus(Polled(kStatus));
  for (int i = 0; i < kInputs; ++i) ShowCounter(i, Polled(kCounter1 + i));
  ShowFlags(Polled(kFlags));
}

core::Task<> Belk::ShowRegisters() {
  const std::optional<Word> status = co_await ReadOne(kStatus);
  if (status) ShowStatus(*status);
  for (int i = 0; i < kInputs; ++i) {
    const std::optional<Word> counter = co_await ReadOne(kCounter1 + i);
    if (counter) ShowCounter(i, *counter);
  }
  const std::optional<Word> filter = co_await ReadOne(kFilter);
  if (filter) FilterBelk.Caption = std::to_string(filter->Unsigned());
  const std::optional<Word> flags = co_await ReadOne(kFlags);
  if (!flags) co_return;
  // Kept, so that a commit before the first session stores the module's own flags.
  Copy(kFlags) = *flags;
  ShowFlags(*flags);
}

void Belk::ShowStatus(Word status) {
  for (int i = 0; i < kInputs; ++i) {
    const auto at = static_cast<std::size_t>(i);
    StatoIN[at].Picture = status.Has(InputBit(i)) ? 2 : 1;
    OverFlowIN[at].BackColor = status.Has(OverflowBit(i)) ? view::kRed : view::kDarkRed;
  }
}

void Belk::ShowCounter(int input, Word counter) {
  const auto at = static_cast<std::size_t>(input);
  TotIN[at].Caption = std::to_string(counter.Unsigned());
  pages::ShowPercent(BargBelk[at], counter.Unsigned() * 100.0 / kFullCounter);
}

void Belk::ShowCommunication(Word communication) {
  pages::ShowAddressWord(communication, AddressBelk, BaudBelk, pages::kWholeHighByte);
}

// A file has no live values.
void Belk::FieldsComing() {
  Copy(kStatus) = Word(0);
  for (int i = 0; i < kInputs; ++i) Copy(kCounter1 + i) = Word(0);
}

// What the user does.

core::Task<> Belk::TotINClick(int input) {
  if (!InSession()) co_return;
  const std::optional<std::string> value = co_await Context().changeValue.AskFor(0, 65535);
  if (!value) co_return;
  TotIN[static_cast<std::size_t>(input)].Caption = *value;
  co_await WriteLive(kCounter1 + input, state::ToWord(*value));
}

void Belk::BelkEnableControls(bool enabled) {
  for (view::Label& counter : TotIN) counter.Enabled = enabled;
  const std::array<view::Control*, 11> edits = {&BaudBelk,   &AddressBelk, &FilterBelk, &CheckBelk1,
                                                &CheckBelk2, &CheckBelk3,  &CheckBelk4, &CheckBelk5,
                                                &CheckBelk6, &OptionBelk1, &OptionBelk2};
  for (view::Control* edit : edits) edit->Enabled = enabled;
}

// How it looks.

view::Node Belk::Arrangement() const {
  std::vector<view::Node> inputs;
  for (int i = 0; i < kInputs; ++i) {
    const auto at = static_cast<std::size_t>(i);
    view::Node name = view::Show(LabelIN[at]);
    // The fast counter is input 5.
    if (i == kInputs - 1) name = view::Row({std::move(name), view::Show(LabelFASTBelk)});
    inputs.push_back(view::Row({view::Show(StatoIN[at]), std::move(name), view::Show(TotIN[at]),
                                view::Show(BargBelk[at]), view::Show(OverFlowIN[at])}));
  }
  return view::Column({
      HeadLine("Five digital inputs with counters"),
      view::Frame("Inputs", view::Table({"", "Input", "Counter"}, std::move(inputs))),
      view::Row({
          view::Frame("Flags",
                      view::Row({
                          view::Column({view::Show(CheckBelk1), view::Show(CheckBelk2), view::Show(CheckBelk3)}),
                          view::Column({view::Show(CheckBelk4), view::Show(CheckBelk5), view::Show(CheckBelk6),
                                        view::Row({view::Show(OptionBelk1), view::Show(OptionBelk2)})}),
                      })),
          view::Frame("Module", view::Column({
                                    view::Field("Input Filter", view::Show(FilterBelk)),
                                    view::Field("Module Address", view::Show(AddressBelk)),
                                    view::Field("Module Baud Rate", view::Show(BaudBelk)),
                                })),
      }),
      view::Space(),
      Foot(),
  });
}

}  // namespace tarvo::models
