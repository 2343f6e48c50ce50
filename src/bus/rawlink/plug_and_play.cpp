#include "bus/rawlink/plug_and_play.h"

#include <algorithm>

#include "bus/modcom/register_access.h"
#include "bus/rawlink/frm_plug_and_play.h"
#include "bus/rtu_frame.h"
#include "core/fault.h"

namespace tarvo::bus {

namespace {

constexpr std::int32_t kFirstRegister = 40001;
constexpr std::size_t kCrcLength = 2;
/// Address, function and CRC: nothing shorter is a reply.
constexpr std::size_t kShortestReply = 4;
/// Bytes of a read's reply beside its values: address, function, byte count and CRC.
constexpr std::size_t kAroundValues = 5;
/// Bytes of a parameter's descriptor up to its last field, CRC included. A byte between the last field and the CRC,
/// which makes 20 of them, means nothing.
constexpr std::size_t kShortestParameter = 19;
constexpr std::int32_t kParameterLength = 20;

std::uint8_t HighByte(std::int32_t word) {
  return static_cast<std::uint8_t>(static_cast<std::uint32_t>(word) >> 8);
}

std::uint8_t LowByte(std::int32_t word) {
  return static_cast<std::uint8_t>(word);
}

std::uint16_t Word(std::uint8_t high, std::uint8_t low) {
  return static_cast<std::uint16_t>(high << 8 | low);
}

std::uint16_t SwappedCrc(std::span<const std::uint8_t> bytes) {
  const std::uint16_t crc = Crc16(bytes);
  return Word(LowByte(crc), HighByte(crc));
}

}  // namespace

void PlugAndPlay::ExchangeParameter(FrmPlugAndPlay& form, int index, std::int32_t waitMilliseconds) {
  FunctionByte = kReadHoldingRegisters;
  RegisterNumber = index + kFirstRegister;
  BuildFrame(ExpectedLength, WordCount);
  form.MSComm1.RThreshold = ExpectedLength;
  // An answer that came too late for the register before must not pass for this one's.
  form.MSComm1.Input();
  SendFrame(form);
  wait(form.GetScheduler(), waitMilliseconds);
  const std::size_t length = CopyInput(form.MSComm1.Input());
  if (length > 0 && DecodeReply(ResultWord, length) == kGood) form.ShowParameter(index, std::to_string(ResultWord));
}

std::size_t PlugAndPlay::BuildFrame(std::int32_t& expectedLength, std::int32_t wordCount) {
  if (FunctionByte == kReadParameter) {
    PutHead();
    expectedLength = kParameterLength;
    return PutCrc(4);
  }
  // A single write has the layout of a read, its value in the place of the count.
  const std::size_t length = PutRead(wordCount);
  if (FunctionByte == kReadHoldingRegisters || FunctionByte == kWriteSingleRegister) {
    expectedLength = static_cast<std::int32_t>(length);
  } else if (FunctionByte == kWriteMultipleRegisters) {
    expectedLength = (wordCount - 1) * 2 + 7;
  }
  return length;
}

void PlugAndPlay::SendFrame(FrmPlugAndPlay& form) {
  const std::size_t length = PutRead(WordCount);
  form.MSComm1.Output(std::string(TxBuffer.begin(), TxBuffer.begin() + static_cast<std::ptrdiff_t>(length)));
}

std::size_t PlugAndPlay::CopyInput(std::string_view text) {
  if (text.size() >= RxBuffer.size()) throw core::Fault(core::kSubscriptOutOfRange);
  std::transform(text.begin(), text.end(), RxBuffer.begin() + 1,
                 [](char character) { return static_cast<std::uint8_t>(character); });
  return text.size();
}

PlugAndPlay::Decoded PlugAndPlay::DecodeReply(std::int32_t& result, std::size_t length) {
  if (length < kShortestReply) return kWrongCrc;
  if (length >= RxBuffer.size()) throw core::Fault(core::kSubscriptOutOfRange);
  const std::span<const std::uint8_t> reply(&RxBuffer[1], length);
  if (CrcOverReply(reply, 0, length - 3) != Word(reply[length - 2], reply[length - 1])) return kWrongCrc;
  if (reply[1] != FunctionByte) return kNoReply;
  if (FunctionByte == kReadHoldingRegisters) return DecodeValues(result, reply);
  if (FunctionByte == kReadParameter) return DecodeParameter(reply);
  return kGood;
}

std::uint16_t PlugAndPlay::CrcOverReply(std::span<const std::uint8_t> buffer, std::size_t first, std::size_t last) {
  return SwappedCrc(buffer.subspan(first, last - first + 1));
}

std::uint16_t PlugAndPlay::CrcOverFrame(std::size_t first, std::size_t length) const {
  return SwappedCrc(std::span(TxBuffer).subspan(first, length));
}

void PlugAndPlay::PutHead() {
  const std::int32_t offset = RegisterNumber - kFirstRegister;
  TxBuffer[0] = SlaveByte;
  TxBuffer[1] = FunctionByte;
  TxBuffer[2] = HighByte(offset);
  TxBuffer[3] = LowByte(offset);
}

std::size_t PlugAndPlay::PutRead(std::int32_t wordCount) {
  PutHead();
  TxBuffer[4] = HighByte(wordCount);
  TxBuffer[5] = LowByte(wordCount);
  return PutCrc(6);
}

std::size_t PlugAndPlay::PutCrc(std::size_t length) {
  const std::uint16_t crc = CrcOverFrame(0, length);
  TxBuffer[length] = HighByte(crc);
  TxBuffer[length + 1] = LowByte(crc);
  return length + kCrcLength;
}

PlugAndPlay::Decoded PlugAndPlay::DecodeValues(std::int32_t& result, std::span<const std::uint8_t> reply) {
  // Neither the byte count nor the number of values may be other than asked for: a reply that was torn or that answers
  // another request must not show.
  if (reply.size() < kAroundValues || reply[2] != reply.size() - kAroundValues) return kNoReply;
  if (reply[2] != WordCount * 2) return kNoReply;
  for (std::size_t i = 0; i < reply[2] / 2U; ++i) {
    if (i >= ResultTable.size()) throw core::Fault(core::kSubscriptOutOfRange);
    ResultTable[i] = Word(reply[3 + 2 * i], reply[3 + 2 * i + 1]);
    result = ResultTable[i];
  }
  return kGood;
}

PlugAndPlay::Decoded PlugAndPlay::DecodeParameter(std::span<const std::uint8_t> reply) {
  if (reply.size() < kShortestParameter) return kNoReply;
  ParameterFlags = reply[2];
  ParameterName = std::to_string(reply[3]);
  ParameterMax = Word(reply[11], reply[12]);
  ParameterMin = Word(reply[13], reply[14]);
  ParameterAddress = Word(reply[15], reply[16]);
  return kGood;
}

}  // namespace tarvo::bus
