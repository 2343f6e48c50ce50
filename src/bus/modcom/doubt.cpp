#include "bus/modcom/doubt.h"

#include <algorithm>
#include <span>

namespace tarvo::bus {

/// `count_` when it is not there.
std::size_t Doubt::PlaceOf(std::uint16_t readCount) const {
  const std::span lengths = std::span(onTheWay_).first(count_);
  return static_cast<std::size_t>(std::find(lengths.begin(), lengths.end(), readCount) - lengths.begin());
}

bool Doubt::Holds(std::uint16_t readCount) const {
  return PlaceOf(readCount) < count_;
}

void Doubt::Add(std::uint16_t readCount) {
  suspect_ = true;
  replies_ = std::min(replies_ + 1, static_cast<int>(kMost));
  Remember(readCount);
}

void Doubt::Remember(std::uint16_t readCount) {
  if (readCount == 0 || (count_ > 0 && onTheWay_[count_ - 1] == readCount)) return;
  if (count_ == onTheWay_.size()) {
    std::copy(onTheWay_.begin() + 1, onTheWay_.end(), onTheWay_.begin());
    --count_;
  }
  onTheWay_[count_++] = readCount;
}

std::uint16_t Doubt::NextProbe(std::uint16_t nextRead) {
  // Those that are not on their way lie at the end: the first found is the best.
  std::uint16_t best = 0;
  std::uint16_t probe = lastProbe_;
  for (int i = kShortestProbe; i <= kLongestProbe; ++i) {
    probe = probe == kLongestProbe ? kShortestProbe : static_cast<std::uint16_t>(probe + 1);
    if (probe != nextRead && (best == 0 || PlaceOf(probe) > PlaceOf(best))) best = probe;
  }
  lastProbe_ = best;
  return best;
}

void Doubt::Answered(std::uint16_t probe) {
  if (!Holds(probe)) {
    Clear();
    return;
  }
  const std::size_t place = PlaceOf(probe);
  std::copy(onTheWay_.begin() + static_cast<std::ptrdiff_t>(place),
            onTheWay_.begin() + static_cast<std::ptrdiff_t>(count_), onTheWay_.begin());
  count_ -= place;
}

void Doubt::ProbeRefused(std::uint16_t probe) {
  suspect_ = false;
  Remember(probe);
}

void Doubt::RequestRefused(std::uint16_t readCount) {
  if (replies_ == 0) return;
  suspect_ = true;
  Remember(readCount);
}

void Doubt::Clear() {
  suspect_ = false;
  replies_ = 0;
  count_ = 0;
}

}  // namespace tarvo::bus
