#include "models/hollin.h"

#include <array>
#include <cstddef>
#include <string>

#include "state/number_text.h"

namespace tarvo::models {

using state::Word;
using namespace state::literals;

namespace {

constexpr pages::PollBlock kSecondBlock = {"40013"_reg, 12};

constexpr pages::PageIdentity kIdentity = {
    .number = 8,
    .model = "Hollin",
    .window = "Hollin",
    .code = 0x0B,
    .poll = {"40002"_reg, 11},
    .pollAfter = kSecondBlock,
    .runKind = 6,
    .reset = AnalogInputs::kStatus,
};

constexpr PlcTips kTips = {
    .checks = {"40003.1 - Speed Up Acquisition"},
    .scaled = "Scaled Input",
    .raw = "Real Input",
    .bitOrder = "Reversed Bit Order",
};

const AnalogInputs::InputRow& RowOf(int input) {
  return AnalogInputs::kInputRows.at(static_cast<std::size_t>(input));
}

}  // namespace

Hollin::Hollin(pages::PageContext& context)
    : PlcPage(context, kIdentity, kTips),
      images_(InputImages([this] { return ReadFlagsFromForm(); })),
      fields_(MakeFields()) {
  Option1.OnClick = [this] { return DataClick(false); };
  Option2.OnClick = [this] { return DataClick(true); };
}

std::vector<pages::FileField> Hollin::MakeFields() {
  std::vector<pages::FileField> fields;
  // The module's line is fixed: the first field says nothing.
  fields.push_back({[] { return std::string("0"); }, ToCopy(kIdentity.poll.first)});
  fields.push_back({[this] { return std::to_string(ReadFlagsFromForm().Unsigned()); }, ToCopy(kFlags)});
  for (int i = 0; i < kInputs; ++i) fields.push_back({PositionField(Filter[i]).write, ToCopy(kFilter1 + i)});
  for (int i = 0; i < kInputs; ++i) {
    fields.push_back({TextField(Value[RowOf(i).fullScale]).write, ToCopy(kFullScale1 + i)});
  }
  fields.push_back({TextField(Value[RowOf(0).startScale]).write, ToCopy(kStartScale1)});
  // The other start scales stand in the second block, and are taken after the first has been shown.
  for (int i = 1; i < kInputs; ++i) fields.push_back({TextField(Value[RowOf(i).startScale]).write});
  return fields;
}

// What Start, the poll and the search do.

core::Task<> Hollin::Activate() {
  Context().status.passing.Text = "com port fixed, baud rate fixed : " + State().PCSettings;
  co_return;
}

Word Hollin::ReadFlagsFromForm() const {
  return FlagsShown().Or(Option2.Value() ? kRaw : 0);
}

bool Hollin::MayStop() const {
  return RunKind() == kIdentity.runKind;
}

void Hollin::Stopped() {
  TimerControllo->Enabled = false;
  HollinEnableInterface(false);
  HollinEnableControls(1);
}

core::Task<> Hollin::SetupFormFromFile() {
  co_await ManageFirst();
  PaintAs(kSecondBlock);
  auto& buffer = State().PollBuffer;
  const std::size_t scales = kInputs - 1;
  const std::size_t firstField = fields_.size() - scales + 1;
  for (std::size_t i = 0; i < scales; ++i) buffer.at(i) = state::LowWord(State().FileFields.at(firstField + i));
  // A file has no live values.
  for (std::size_t i = scales; i < static_cast<std::size_t>(kSecondBlock.count); ++i) buffer.at(i) = Word(0);
  co_await ManageSecond();
}

// What the user does.

core::Task<> Hollin::DataClick(bool raw) {
  if (!InSession()) ShowRaw(raw);
  co_return;
}

void Hollin::HollinEnableControls(int mode) {
  const bool enabled = mode != 0;
  EnableScales(enabled);
  EnablePlc(enabled);
  const std::array<view::Control*, 4> others = {&Option1, &Option2, &WEEP, &*Reset};
  for (view::Control* other : others) other->Enabled = enabled;
}

void Hollin::HollinEnableInterface(bool on) {
  for (int i = kFirstInput; i < kChecks; ++i) Check[i].Enabled = on;
  const std::array<view::Control*, 3> others = {&CheckBitOrder, &Option1, &Option2};
  for (view::Control* other : others) other->Enabled = on;
}

// How it looks.

view::Node Hollin::Arrangement() const {
  return view::Column({
      HeadLine("Four analog inputs, second generation"),
      InputsCard(),
      PlcCards(),
      view::Space(),
      Foot(),
  });
}

}  // namespace tarvo::models
