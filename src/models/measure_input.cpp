#include "models/measure_input.h"

namespace tarvo::models {

std::vector<view::ListRow> MeasureTypeRows() {
  std::vector<view::ListRow> rows;
  rows.reserve(kMeasureTypes.size());
  for (const MeasureType& type : kMeasureTypes) rows.push_back({type.text});
  return rows;
}

const MeasureType* FindMeasureType(int position) {
  const auto at = static_cast<std::size_t>(position);
  return position >= 0 && at < kMeasureTypes.size() ? &kMeasureTypes[at] : nullptr;
}

Bounds ScaleBounds(std::size_t value, const MeasureType& type, int position) {
  constexpr Bounds kUser = {-32000, 32000};
  // The start scale of a scaled input has its own lower bound, whatever the type's is.
  const int startLower = position == 0 ? -10000 : position > 0 && position < kScaledTypes ? 0 : type.lower;
  const std::array<Bounds, 6> bounds = {
      {{type.lower, type.upper}, {startLower, type.upper}, kUser, kUser, {9000, 11000}, {-1000, 1000}}};
  return bounds.at(value);
}

}  // namespace tarvo::models
