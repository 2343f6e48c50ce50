#include "simulator/line_fault.h"

#include "bus/rtu_frame.h"

namespace tarvo::simulator {

void Spoil(FaultKind kind, std::vector<std::uint8_t>& reply, Random& noise) {
  switch (kind) {
    case FaultKind::kSilence:
      reply.clear();
      break;
    case FaultKind::kNoise: {
      std::vector<std::uint8_t> bytes(std::uniform_int_distribution<std::size_t>(1, 8)(noise));
      for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(noise() & 0xFF);
      reply.insert(reply.begin(), bytes.begin(), bytes.end());
      break;
    }
    case FaultKind::kWrongCrc:
      // Not a bit of the CRC itself: a master that does not look at it shall show a wrong value.
      reply[reply.size() / 2] ^= 0x01;
      break;
    case FaultKind::kTruncated:
      reply.resize(reply.size() / 2);
      break;
    case FaultKind::kOtherAddress:
      reply[0] = reply[0] == 255 ? std::uint8_t{1} : static_cast<std::uint8_t>(reply[0] + 1);
      bus::AppendCrc(reply, reply.size() - 2);
      break;
    case FaultKind::kLate:
    case FaultKind::kException:
      break;
  }
}

}  // namespace tarvo::simulator
