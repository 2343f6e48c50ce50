#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace tarvo::bus {

/// What a master must keep in mind of requests that ended without a valid reply: their replies may still come, and a
/// reply of function 3 does not say which registers it carries, only how many. A probe is a read of a length that no
/// reply on its way can have; since a module answers in order, its answer proves that nothing older comes any more.
class Doubt {
 public:
  static constexpr std::uint16_t kShortestProbe = 2;
  static constexpr std::uint16_t kLongestProbe = 6;

  /// True when nothing is believed before a probe was answered.
  bool Suspect() const { return suspect_; }
  /// True when a reply with so many registers may be on its way.
  bool Holds(std::uint16_t readCount) const;
  /// At most so many replies are on their way.
  int Replies() const { return replies_; }

  /// A request ended without a valid reply; `readCount` is 0 for a write.
  void Add(std::uint16_t readCount);
  /// Length of the probe to send now: 2 to 6, another each time, and never `nextRead`, the length of the read that is
  /// to follow (0 for a write). When all lengths are on their way, one that the fewest replies come behind.
  std::uint16_t NextProbe(std::uint16_t nextRead);
  /// A probe was answered. When an older reply of its length may have passed for it, the doubt stays, but less of it.
  void Answered(std::uint16_t probe);
  /// A probe was answered with an exception. It ends the suspicion; but a late one may have passed for it.
  void ProbeRefused(std::uint16_t probe);
  /// A request was answered with an exception: when replies are on their way, a late one may have passed for it.
  void RequestRefused(std::uint16_t readCount);
  void Clear();

 private:
  static constexpr std::size_t kMost = 16;

  void Remember(std::uint16_t readCount);
  std::size_t PlaceOf(std::uint16_t readCount) const;

  bool suspect_ = false;
  int replies_ = 0;
  std::uint16_t lastProbe_ = kLongestProbe;
  /// Lengths on their way in the order of their requests, equal neighbours as one. The oldest go when it is full.
  std::array<std::uint16_t, kMost> onTheWay_{};
  std::size_t count_ = 0;
};

}  // namespace tarvo::bus
