#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "core/scheduler.h"
#include "simulator/model.h"

namespace tarvo::simulator {

/// What befalls a reply.
enum class FaultKind {
  kSilence,       ///< it is lost
  kNoise,         ///< some bytes that mean nothing come before it
  kWrongCrc,      ///< a bit of it is flipped
  kTruncated,     ///< only its first half comes
  kOtherAddress,  ///< whole and right, but for another address
  kLate,          ///< it comes later
  kException,     ///< the module refuses the request, and does nothing of it
};

struct FaultName {
  FaultKind kind;
  std::string_view name;  ///< as orders spell it
};

inline constexpr std::array kFaultNames = {
    FaultName{FaultKind::kSilence, "silence"},
    FaultName{FaultKind::kNoise, "noise"},
    FaultName{FaultKind::kWrongCrc, "wrong-crc"},
    FaultName{FaultKind::kTruncated, "truncated"},
    FaultName{FaultKind::kOtherAddress, "other-address"},
    FaultName{FaultKind::kLate, "late"},
    FaultName{FaultKind::kException, "exception"},
};

/// A fault ordered for the replies on a line.
struct LineFault {
  FaultKind kind = FaultKind::kSilence;
  std::optional<int> address;  ///< of the module whose replies it hits; nothing: of all
  std::optional<int> replies;  ///< how many it still hits; nothing: all until it is told to end
  core::Duration delay{};      ///< of a late reply
};

/// Does to the bytes of a reply what `kind` tells; no bytes are left when it is lost.
void Spoil(FaultKind kind, std::vector<std::uint8_t>& reply, Random& noise);

}  // namespace tarvo::simulator
