#include "bus/rtu_frame.h"

namespace tarvo::bus {

std::uint16_t Crc16(std::span<const std::uint8_t> bytes) {
  std::uint16_t crc = 0xFFFF;
  for (const std::uint8_t byte : bytes) {
    crc ^= byte;
    for (int bit = 0; bit < 8; ++bit) {
      const bool carry = (crc & 1) != 0;
      crc = static_cast<std::uint16_t>(crc >> 1);
      if (carry) crc ^= 0xA001;
    }
  }
  return crc;
}

std::size_t AppendCrc(std::span<std::uint8_t> frame, std::size_t length) {
  const std::uint16_t crc = Crc16(frame.first(length));
  frame[length] = static_cast<std::uint8_t>(crc & 0xFF);
  frame[length + 1] = static_cast<std::uint8_t>(crc >> 8);
  return length + 2;
}

bool CrcFits(std::span<const std::uint8_t> frame) {
  if (frame.size() < 4) return false;
  const std::size_t length = frame.size() - 2;
  const std::uint16_t crc = Crc16(frame.first(length));
  return frame[length] == (crc & 0xFF) && frame[length + 1] == (crc >> 8);
}

}  // namespace tarvo::bus
