#pragma once

#include <cstdint>
#include <vector>

#include "bus/rtu_frame.h"

/// Requests and replies of Modbus RTU as a test spells them; registers by their five digits.
namespace tarvo::test {

using Bytes = std::vector<std::uint8_t>;

inline void AppendWord(Bytes& bytes, int word) {
  bytes.push_back(static_cast<std::uint8_t>(word >> 8 & 0xFF));
  bytes.push_back(static_cast<std::uint8_t>(word & 0xFF));
}

inline Bytes WithCrc(Bytes bytes) {
  const std::size_t length = bytes.size();
  bytes.resize(length + 2);
  bus::AppendCrc(bytes, length);
  return bytes;
}

inline Bytes ReadRequest(int address, int reg, int count) {
  Bytes bytes = {static_cast<std::uint8_t>(address), bus::kReadHoldingRegisters};
  AppendWord(bytes, reg - 40001);
  AppendWord(bytes, count);
  return WithCrc(bytes);
}

inline Bytes WriteRequest(int address, int reg, int value) {
  Bytes bytes = {static_cast<std::uint8_t>(address), bus::kWriteSingleRegister};
  AppendWord(bytes, reg - 40001);
  AppendWord(bytes, value);
  return WithCrc(bytes);
}

inline Bytes WriteManyRequest(int address, int reg, const std::vector<int>& values) {
  Bytes bytes = {static_cast<std::uint8_t>(address), bus::kWriteMultipleRegisters};
  AppendWord(bytes, reg - 40001);
  AppendWord(bytes, static_cast<int>(values.size()));
  bytes.push_back(static_cast<std::uint8_t>(values.size() * 2));
  for (const int value : values) AppendWord(bytes, value);
  return WithCrc(bytes);
}

inline Bytes ReadReply(int address, const std::vector<int>& values) {
  Bytes bytes = {static_cast<std::uint8_t>(address), bus::kReadHoldingRegisters,
                 static_cast<std::uint8_t>(values.size() * 2)};
  for (const int value : values) AppendWord(bytes, value);
  return WithCrc(bytes);
}

inline Bytes ExceptionReply(int address, int function, int code) {
  return WithCrc({static_cast<std::uint8_t>(address), static_cast<std::uint8_t>(function | bus::kExceptionBit),
                  static_cast<std::uint8_t>(code)});
}

}  // namespace tarvo::test
