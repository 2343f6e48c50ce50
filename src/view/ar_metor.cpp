#include "view/ar_metor.h"

#include <algorithm>

#include "core/fault.h"

namespace tarvo::view {

namespace {

constexpr Colour kSavedBackColor = static_cast<Colour>(0x80000012);
constexpr int kNewPercent = 100;

}  // namespace

ARMetor::ARMetor(Window& window, std::string_view name, int index) : Control(window, Kind::kMeter, name, index) {
  Caption = Name();
}

std::vector<NamedValue> ARMetor::Properties() const {
  std::vector<NamedValue> values = {{"Caption", Caption()},
                                    {"Percent", std::int64_t{percent_()}},
                                    {"FillColor", std::int64_t{FillColor()}},
                                    {"BackColor", std::int64_t{BackColor()}}};
  for (NamedValue& common : Control::Properties()) values.push_back(std::move(common));
  return values;
}

void ARMetor::SetPercent(int percent) {
  // No lower test: a negative percent passes.
  if (percent > 100) throw core::Fault("Percent must be between 0 and 100.", kPercentFault, "Meter::Percent (Let)");
  percent_ = percent;
}

float ARMetor::ShapeWidth(float pictureWidth) const {
  return pictureWidth * static_cast<float>(percent_()) / 100.0F;
}

std::vector<ARMetor::BagEntry> ARMetor::WriteProperties() const {
  // "BackColor" stands twice: the second is the control's internal field, which nothing sets.
  return {{"Caption", Caption()}, {"Percent", percent_()}, {"BackColor", BackColor()},
          {"Font", Font()},       {"BackColor", 0},        {"FillColor", FillColor()}};
}

void ARMetor::ReadProperties(const std::vector<BagEntry>& bag) {
  const auto take = [&](std::string_view name, const BagValue& otherwise) {
    const auto found = std::find_if(bag.begin(), bag.end(), [&](const BagEntry& entry) { return entry.name == name; });
    return found != bag.end() && found->value.index() == otherwise.index() ? found->value : otherwise;
  };
  Caption = std::get<std::string>(take("Caption", std::string()));
  Font = std::get<std::string>(take("Font", std::string()));
  FillColor = std::get<int>(take("FillColor", kRed));
  BackColor = std::get<int>(take("BackColor", kSavedBackColor));
  SetPercent(std::get<int>(take("Percent", kNewPercent)));
}

}  // namespace tarvo::view
