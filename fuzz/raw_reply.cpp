// What comes back to a raw exchange, whatever it is: it decodes to what stands in it, or to nothing. The input's first
// byte is the function asked for, the second how many registers, the rest is the reply.

#include <cstdint>
#include <span>
#include <string_view>

#include "bus/rawlink/plug_and_play.h"
#include "bus/rtu_frame.h"
#include "core/fault.h"
#include "fuzz/input.h"

namespace tarvo {
namespace {

using bus::PlugAndPlay;
using fuzz::Check;

void CheckDecoded(PlugAndPlay& link, std::span<const std::uint8_t> reply) {
  const auto decoded = link.DecodeReply(link.ResultWord, reply.size());
  const bool whole = bus::CrcFits(reply);
  Check((decoded == PlugAndPlay::kWrongCrc) == !whole, "a reply that was damaged is told so, no other is");
  if (decoded != PlugAndPlay::kGood) return;
  Check(reply[1] == link.FunctionByte, "only the function asked for is an answer");
  if (link.FunctionByte != bus::kReadHoldingRegisters || link.WordCount == 0) return;
  const std::size_t last = reply.size() - 4;
  Check(static_cast<std::int32_t>(reply.size()) == 5 + 2 * link.WordCount, "as many values come as were asked for");
  Check(link.ResultWord == (reply[last] << 8 | reply[last + 1]), "the last value is the result");
}

}  // namespace
}  // namespace tarvo

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tarvo::fuzz::Input input(data, size);
  tarvo::bus::PlugAndPlay link;
  link.FunctionByte = input.Byte();
  link.WordCount = input.Byte();
  const std::string_view text = input.Text(size);
  try {
    link.CopyInput(text);
    tarvo::CheckDecoded(link, {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
  } catch (const tarvo::core::Fault& fault) {
    const bool tooMany = text.size() > tarvo::bus::kLongestFrame || link.WordCount > 11;
    tarvo::fuzz::Check(tooMany && fault.what() == std::string_view(tarvo::core::kSubscriptOutOfRange),
                       "only too much is a fault");
  }
  return 0;
}
