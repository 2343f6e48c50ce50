#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace tarvo::bus {

class FrmPlugAndPlay;

/// Reads a parameter's descriptor: the modules' own extension of Modbus.
inline constexpr std::uint8_t kReadParameter = 110;

/// The raw serial exchange: builds a Modbus RTU frame byte by byte, sends it on a plain serial instance, and decodes
/// what came back in a fixed time. It serves `FrmPlugAndPlay` alone; everything else asks a module by `ModCom`.
class PlugAndPlay {
 public:
  /// What `DecodeReply` makes of an answer.
  enum Decoded { kNoReply = 0, kGood = 1, kWrongCrc = 3 };

  std::array<std::uint8_t, 257> TxBuffer{};  ///< the frame to send, from index 0
  std::array<std::uint8_t, 257> RxBuffer{};  ///< the answer, from index 1
  std::uint8_t SlaveByte = 0;                ///< address of the module
  std::uint8_t FunctionByte = 0;             ///< Modbus function of the present exchange
  std::int32_t RegisterNumber = 0;           ///< 40001 and up
  std::int32_t WordCount = 0;                ///< registers to read, or the value of a single write
  std::int32_t ExpectedLength = 0;           ///< of the reply, in bytes
  std::int32_t ResultWord = 0;               ///< the value that was decoded last
  std::array<std::uint16_t, 11> ResultTable{};

  std::uint8_t ParameterFlags = 0;
  std::string ParameterName;  ///< the first name byte, in decimal; the others are dropped, which is meant
  std::uint16_t ParameterMax = 0;
  std::uint16_t ParameterMin = 0;
  std::uint16_t ParameterAddress = 0;
  std::int16_t ParameterCount = 0;  ///< end of the page's walk

  /// Asks for register 40001 + `index` and shows its value in control number `index` of `form`. Hard waits that long
  /// for the answer; without a good one everything stays as it was, with no second try and no message. Throws
  /// "Subscript out of range" for an answer of more than 256 bytes, and for an `index` that has no control.
  void ExchangeParameter(FrmPlugAndPlay& form, int index, std::int32_t waitMilliseconds);

  /// Makes the frame of `FunctionByte` and gives its length with the CRC; sets what the reply will measure.
  std::size_t BuildFrame(std::int32_t& expectedLength, std::int32_t wordCount);
  /// Makes the eight bytes of a read from the present values and sends them, whatever was built before.
  void SendFrame(FrmPlugAndPlay& form);
  /// Puts the bytes of `text` into `RxBuffer` and gives their number. Throws "Subscript out of range" above 256.
  std::size_t CopyInput(std::string_view text);
  /// Decodes the `length` bytes in `RxBuffer`. An answer to another function, or one that does not hold what it should,
  /// is `kNoReply`. Throws "Subscript out of range" for more values than `ResultTable` takes.
  Decoded DecodeReply(std::int32_t& result, std::size_t length);

  /// The CRC of `buffer` from `first` to `last`, with its bytes swapped: the one that goes out first is the high one.
  static std::uint16_t CrcOverReply(std::span<const std::uint8_t> buffer, std::size_t first, std::size_t last);
  /// The same of `length` bytes of `TxBuffer` from `first`.
  std::uint16_t CrcOverFrame(std::size_t first, std::size_t length) const;

 private:
  /// Bytes 0 to 5 of a read, with the value at its end, and the CRC behind them; gives the length.
  std::size_t PutRead(std::int32_t wordCount);
  void PutHead();
  std::size_t PutCrc(std::size_t length);
  Decoded DecodeValues(std::int32_t& result, std::span<const std::uint8_t> reply);
  Decoded DecodeParameter(std::span<const std::uint8_t> reply);
};

}  // namespace tarvo::bus
