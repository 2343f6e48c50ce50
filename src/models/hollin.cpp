#include "models/hollin.h"

#include <array>

namespace tarvo::models {

using state::Word;
using namespace state::literals;

namespace {

constexpr pages::PageIdentity kIdentity = {
    .number = 8,
    .model = "Hollin",
    .window = "Hollin",
    .code = 0x0B,
    .poll = {"40002"_reg, 11},
    .pollAfter = pages::PollBlock{"40013"_reg, 12},
    .runKind = 6,
    .reset = AnalogInputs::kStatus,
};

constexpr PlcTips kTips = {
    .checks = {},
    .scaled = "Scaled Input",
    .raw = "Real Input",
    .bitOrder = "Reversed Bit Order",
};

}  // namespace

Hollin::Hollin(pages::PageContext& context)
    : PlcPage(context, kIdentity, kTips), images_(InputImages([this] { return ReadFlagsFromForm(); })) {
  Option1.OnClick = [this] { return DataClick(false); };
  Option2.OnClick = [this] { return DataClick(true); };
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
