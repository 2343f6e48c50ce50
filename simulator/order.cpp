#include "simulator/order.h"

#include <algorithm>
#include <array>
#include <utility>

#include "simulator/options.h"

namespace tarvo::simulator {

namespace {

constexpr unsigned kMostReplies = 1'000'000;
/// What is late stays in memory, and a master asks on.
constexpr core::Duration kLatest = std::chrono::minutes(1);

struct OrderName {
  Order::Kind kind;
  std::string_view name;
};

constexpr std::array kOrderNames = {
    OrderName{Order::Kind::kClear, "clear"},     OrderName{Order::Kind::kFault, "fault"},
    OrderName{Order::Kind::kUnplug, "unplug"},   OrderName{Order::Kind::kPlug, "plug"},
    OrderName{Order::Kind::kGet, "get"},         OrderName{Order::Kind::kSet, "set"},
    OrderName{Order::Kind::kRestart, "restart"}, OrderName{Order::Kind::kLoad, "load"},
};

struct LoadName {
  Load load;
  std::string_view name;
};

constexpr std::array kLoadNames = {LoadName{Load::kGood, "good"}, LoadName{Load::kOpen, "open"},
                                   LoadName{Load::kShort, "short"}, LoadName{Load::kHot, "hot"}};
constexpr unsigned kMostOutputs = 100;

constexpr std::string_view kBlanks = " \t\r";

/// The next word of `rest`, which goes from it; empty when there is none.
std::string_view NextWord(std::string_view& rest) {
  rest.remove_prefix(std::min(rest.find_first_not_of(kBlanks), rest.size()));
  const std::string_view word = rest.substr(0, rest.find_first_of(kBlanks));
  rest.remove_prefix(word.size());
  return word;
}

/// "700ms" or "2s".
std::optional<core::Duration> ParseTime(std::string_view text) {
  const bool inMilliseconds = text.ends_with("ms");
  if (!text.ends_with('s')) return std::nullopt;
  const core::Duration unit = inMilliseconds ? core::Duration(core::milliseconds(1)) : std::chrono::seconds(1);
  text.remove_suffix(inMilliseconds ? 2 : 1);
  const auto count = Number(text, 1, static_cast<unsigned>(kLatest / unit));
  if (!count) return std::nullopt;
  return unit * *count;
}

/// "com1", or "com1:7" for the module with address 7.
Complaint TakePort(std::string_view text, Order& order) {
  std::string_view address = text;
  const std::string_view port = CutAt(address, ':');
  const auto number = port.starts_with("com") ? Number(port.substr(3), 1, kPorts) : std::nullopt;
  if (!number) return Quoted(port) + " is no port, com1 to com4";
  order.port = static_cast<int>(*number);
  if (port.size() == text.size()) return {};
  const auto value = Number(address, 1, 255);
  if (!value) return Quoted(address) + " is no address, 1 to 255";
  order.address = static_cast<int>(*value);
  return {};
}

Complaint TakeFault(std::string_view& rest, Order& order) {
  LineFault& fault = order.fault;
  fault.address = order.address;
  if (fault.kind == FaultKind::kLate) {
    const std::string_view time = NextWord(rest);
    const auto delay = ParseTime(time);
    if (!delay) return Quoted(time) + " is no time for late, such as 700ms or 2s, one minute at most";
    fault.delay = *delay;
  }
  const std::string_view count = NextWord(rest);
  if (count.empty()) return {};
  const auto replies = Number(count, 1, kMostReplies);
  if (!replies) return Quoted(count) + " is no number of replies, 1 to 1000000";
  fault.replies = static_cast<int>(*replies);
  return {};
}

Complaint TakeRegister(std::string_view& rest, Order& order) {
  const std::string_view reg = NextWord(rest);
  const auto number = Number(reg, 40001, 40001 + 0xFFFF);
  if (!number) return Quoted(reg) + " is no register, from 40001 on";
  order.reg = state::Register(static_cast<int>(*number));
  if (order.kind == Order::Kind::kGet) return {};
  const std::string_view text = NextWord(rest);
  const auto value = Number(text, 0, 0xFFFF);
  if (!value) return Quoted(text) + " is no value for " + std::string(reg) + ", 0 to 65535";
  order.value = state::Word(*value);
  return {};
}

Complaint TakeLoad(std::string_view& rest, Order& order) {
  const std::string_view output = NextWord(rest);
  const auto number = Number(output, 1, kMostOutputs);
  if (!number) return Quoted(output) + " is no output, from 1 on";
  order.output = static_cast<int>(*number);
  const std::string_view name = NextWord(rest);
  const auto* load =
      std::find_if(kLoadNames.begin(), kLoadNames.end(), [&](const LoadName& known) { return known.name == name; });
  if (load == kLoadNames.end()) return Quoted(name) + " is no load, which is good, open, short or hot";
  order.load = load->load;
  return {};
}

Complaint TakeWhat(std::string_view& rest, Order& order) {
  const std::string_view word = NextWord(rest);
  const auto* fault =
      std::find_if(kFaultNames.begin(), kFaultNames.end(), [&](const FaultName& known) { return known.name == word; });
  if (fault != kFaultNames.end()) {
    order.kind = Order::Kind::kSetFault;
    order.fault.kind = fault->kind;
    return TakeFault(rest, order);
  }
  const auto* other =
      std::find_if(kOrderNames.begin(), kOrderNames.end(), [&](const OrderName& known) { return known.name == word; });
  if (other == kOrderNames.end()) return "unknown order " + Quoted(word) + ", see tarvo-sim --help";
  order.kind = other->kind;
  if (order.kind == Order::Kind::kGet || order.kind == Order::Kind::kSet) return TakeRegister(rest, order);
  if (order.kind == Order::Kind::kLoad) return TakeLoad(rest, order);
  if (order.kind == Order::Kind::kRestart) return {};
  if (order.address) return std::string(word) + " is for the whole port, without an address";
  return {};
}

}  // namespace

ParsedOrder ParseOrder(std::string_view line) {
  ParsedOrder parsed;
  if (line.size() > Order::kLongestLine) {
    parsed.error = "the order is too long";
    return parsed;
  }
  std::string_view rest = line;
  parsed.error = TakePort(NextWord(rest), parsed.order);
  if (parsed.error.empty()) parsed.error = TakeWhat(rest, parsed.order);
  if (!parsed.error.empty()) return parsed;
  const std::string_view tooMuch = NextWord(rest);
  if (!tooMuch.empty()) parsed.error = Quoted(tooMuch) + " is too much";
  return parsed;
}

std::string OrderHelp() {
  return R"(Orders come while it runs, one a line on standard input; each is answered by one line on standard output, "ok", the
order and what was asked for, or "error: " and why not. The end of the input changes nothing.
  PORT FAULT [N]    spoils the next N replies on the port (com1 to com4); without N all of them until "clear" or
                    another fault, for a port has one fault at a time. FAULT is one of:
    silence         the reply is lost; what was asked is done all the same
    noise           some random bytes come before it
    wrong-crc       a bit in its middle is flipped
    truncated       only its first half comes
    other-address   it comes as another module's
    late TIME       it comes later, by 700ms or 2s, and those after it come behind it; it comes even when the port
                    was closed and opened again meanwhile
    exception       the module refuses with code 4 and does nothing of what was asked
  PORT clear        replies are right again; those that are late already still come
  PORT fault        tells the fault and how many replies it still spoils, or "none"
  PORT unplug       the port vanishes, as an adapter that is pulled out; the modules live on
  PORT plug         it comes back, as another pseudo terminal behind the same link
  PORT get REGISTER      what a master would read there
  PORT set REGISTER N    gives a register a value, decimal or after 0x, as the world outside does: 40002 for the inputs
  PORT load N LOAD       hangs a load on output N of a marlo: good, open, short or hot
  PORT restart      a module's supply goes off and on
PORT is com1 or, where only one of several modules is meant, com1:7 for the one with address 7.
)";
}

}  // namespace tarvo::simulator
