#include "models/analog_inputs.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>

#include "models/analog_options.h"
#include "pages/meter_percent.h"
#include "state/number_text.h"

namespace tarvo::models {

using state::Word;
using namespace state::literals;

namespace {

/// Members of `Overflow` that the bits from 8 on of the status light.
constexpr std::array<int, 8> kLampOfBit = {1, 0, 3, 2, 5, 4, 7, 6};
/// The same for the one paint at Start, whose order is another; that is meant.
constexpr std::array<int, 8> kLampOfBitAtStart = {1, 3, 5, 7, 0, 2, 4, 6};
constexpr int kFirstStatusBit = 8;

constexpr std::array<const char*, AnalogInputs::kHeadings> kHeadingTexts = {
    "Start Scale", "Full Scale", "Filter", "Scaled Input (0..10000)", "Raw Input", "Underflow", "Overflow"};
constexpr int kScaledHeading = 3;

/// The scaled values and their headings have this page's name on every page.
constexpr char kSharedName[] = "Gaven";

std::size_t At(int index) {
  return static_cast<std::size_t>(index);
}

std::string TipOf(state::Register first, int input, const char* text) {
  return std::to_string((first + input).Number()) + " - " + text + std::to_string(input + 1);
}

bool IsScaled(int value) {
  const auto& rows = AnalogInputs::kInputRows;
  return std::any_of(rows.begin(), rows.end(), [&](const AnalogInputs::InputRow& row) { return row.scaled == value; });
}

std::string NameOf(const char* array, bool shared, std::string_view model) {
  return array + std::string(shared ? std::string_view(kSharedName) : model);
}

/// What a member of `Value` says of itself.
std::string ValueTip(int value) {
  for (int input = 0; input < AnalogInputs::kInputs; ++input) {
    const AnalogInputs::InputRow& row = AnalogInputs::kInputRows[At(input)];
    if (value == row.startScale) return TipOf(AnalogInputs::kStartScale1, input, "Init Scale input ");
    if (value == row.fullScale) return TipOf(AnalogInputs::kFullScale1, input, "Full Scale input ");
    if (value == row.scaled) return TipOf(AnalogInputs::kScaled1, input, "Input ") + " value scaled 0.10000";
    if (value == row.raw) return TipOf(AnalogInputs::kRaw1, input, "Input ") + " value";
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

AnalogInputs::AnalogInputs(pages::PageContext& context, const pages::PageIdentity& identity)
    : DevicePage(context, identity),
      Headings([&](int i) {
        const int heading = i % kHeadings;
        return view::Label(*this, NameOf("label", heading == kScaledHeading, identity.model),
                           kHeadingTexts[At(heading)], "", i);
      }),
      Value(
          [&](int i) { return view::Label(*this, NameOf("Value", IsScaled(i), identity.model), "0", ValueTip(i), i); }),
      Overflow([&](int i) {
        return view::Lamp(*this, NameOf("Overflow", false, identity.model), i % 2 == 0 ? "Underflow" : "Overflow",
                          LampTip(i), i);
      }),
      Barg([&](int i) { return view::ARMetor(*this, NameOf("Barg", false, identity.model), i); }),
      Filter([&](int i) {
        return view::ComboBox(*this, NameOf("Filter", false, identity.model), kFilterLevels,
                              TipOf(kFilter1, i, "Input Filter "), i);
      }) {
  for (const InputRow& row : kInputRows) {
    BindEdit(Value[row.startScale], -10000, 10000);
    BindEdit(Value[row.fullScale], -10000, 10000);
  }
  for (view::ComboBox& filter : Filter) filter.ListIndex = 0;
  for (int i = 0; i < kInputs; ++i) {
    pages::MakeBar(Barg[i]);
    // It shows the raw input all the same.
    Barg[i].ToolTipText = Value[kInputRows[At(i)].scaled].ToolTipText();
  }
}

std::vector<pages::ImageWrite> AnalogInputs::InputImages(std::function<Word()> flags) {
  const auto number = [this](int value) { return [this, value] { return state::ToWord(Value[value].Caption()); }; };
  std::vector<pages::ImageWrite> images;
  images.reserve(2 + 3 * kInputs);
  images.push_back({"40067"_reg, std::move(flags)});
  for (int i = 0; i < kInputs; ++i) {
    images.push_back({"40068"_reg + i, [this, i] { return Word(static_cast<unsigned>(Filter[i].ListIndex())); }});
  }
  for (int i = 0; i < kInputs; ++i) images.push_back({"40072"_reg + i, number(kInputRows[At(i)].fullScale)});
  for (int i = 0; i < kInputs; ++i) images.push_back({"40076"_reg + i, number(kInputRows[At(i)].startScale)});
  return images;
}

core::Task<> AnalogInputs::ManageFirst() {
  for (int i = 0; i < kInputs; ++i) {
    Filter[i].ListIndex = Polled(kFilter1 + i).Unsigned();
    ShowValue(kInputRows[At(i)].fullScale, Polled(kFullScale1 + i));
  }
  ShowValue(kInputRows[0].startScale, Polled(kStartScale1));
  ShowFlags(Polled(kFlags));
  if (InSession()) co_await ShowSettings();
}

core::Task<> AnalogInputs::ManageSecond() {
  for (int i = 1; i < kInputs; ++i) ShowValue(kInputRows[At(i)].startScale, Polled(kStartScale1 + i));
  ShowInputs();
  ShowOverflows(kLampOfBitAtStart);
  co_return;
}

core::Task<> AnalogInputs::ManageContinue() {
  ShowInputs();
  ShowOverflows(kLampOfBit);
  for (int i = 0; i < kInputs; ++i) pages::ShowSigned(Barg[i], Polled(kRaw1 + i).Signed());
  co_return;
}

core::Task<> AnalogInputs::ShowRegisters() {
  for (int i = 0; i < kInputs; ++i) {
    const std::optional<Word> filter = co_await ReadOne(kFilter1 + i);
    if (filter) Filter[i].ListIndex = filter->Unsigned();
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
  co_await ShowSettings();
}

void AnalogInputs::ShowValue(int value, Word word) {
  Value[value].Caption = std::to_string(word.Signed());
}

void AnalogInputs::ShowInputs() {
  for (int i = 0; i < kInputs; ++i) {
    ShowValue(kInputRows[At(i)].scaled, Polled(kScaled1 + i));
    ShowValue(kInputRows[At(i)].raw, Polled(kRaw1 + i));
  }
}

void AnalogInputs::ShowOverflows(std::span<const int> lampOfBit) {
  unsigned bit = 1U << kFirstStatusBit;
  for (const int lamp : lampOfBit) {
    Overflow[lamp].BackColor = Polled(kStatus).Has(bit) ? view::kRed : view::kDarkRed;
    bit <<= 1;
  }
}

void AnalogInputs::EnableScales(bool enabled) {
  for (const InputRow& row : kInputRows) {
    Value[row.startScale].Enabled = enabled;
    Value[row.fullScale].Enabled = enabled;
  }
  for (view::ComboBox& filter : Filter) filter.Enabled = enabled;
}

view::Node AnalogInputs::InputsCard() const {
  std::vector<std::string> headings = {"Input"};
  headings.reserve(kHeadings);
  // The lamps say themselves what they are.
  for (int i = 0; i < kHeadings - 2; ++i) headings.push_back(Headings[i].Caption());
  std::vector<view::Node> inputs;
  inputs.reserve(kInputs);
  for (int i = 0; i < kInputs; ++i) {
    const InputRow& row = kInputRows[At(i)];
    inputs.push_back(view::Row({
        view::Text("Input " + std::to_string(i + 1)),
        view::Show(Value[row.startScale]),
        view::Show(Value[row.fullScale]),
        view::Show(Filter[i]),
        view::Show(Value[row.scaled]),
        view::Show(Value[row.raw]),
        view::Show(Barg[i]),
        view::Show(Overflow[row.underflow]),
        view::Show(Overflow[row.overflow]),
    }));
  }
  return view::Frame("Inputs", view::Table(std::move(headings), std::move(inputs)));
}

}  // namespace tarvo::models
