#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace tarvo::bus {

/// CRC-16/MODBUS of `bytes`: polynomial 0xA001 (reflected), start 0xFFFF. On the line its low byte goes first.
std::uint16_t Crc16(std::span<const std::uint8_t> bytes);

/// Appends the CRC behind the first `length` bytes of `frame`, low byte first; gives the length with it.
std::size_t AppendCrc(std::span<std::uint8_t> frame, std::size_t length);

/// True when the last two bytes of `frame` are the CRC of those before them.
bool CrcFits(std::span<const std::uint8_t> frame);

inline constexpr std::uint8_t kReadHoldingRegisters = 3;
inline constexpr std::uint8_t kWriteSingleRegister = 6;
inline constexpr std::uint8_t kWriteMultipleRegisters = 16;
inline constexpr std::uint8_t kExceptionBit = 0x80;

/// The longest frame that Modbus RTU allows, in bytes.
inline constexpr std::size_t kLongestFrame = 256;

}  // namespace tarvo::bus
