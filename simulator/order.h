#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "simulator/line_fault.h"
#include "simulator/model.h"
#include "simulator/text.h"
#include "state/word.h"

namespace tarvo::simulator {

/// What is ordered of a port while the simulator runs.
struct Order {
  enum class Kind {
    kSetFault,
    kClear,   ///< no fault any more
    kFault,   ///< tell the fault
    kUnplug,  ///< the port vanishes
    kPlug,
    kGet,  ///< tell a register
    kSet,
    kRestart,  ///< a module's supply goes off and on
    kLoad,     ///< hang something on an output
  };

  static constexpr std::size_t kLongestLine = 200;

  Kind kind = Kind::kClear;
  int port = 1;                ///< 1 to 4
  std::optional<int> address;  ///< of the module that it is for
  LineFault fault;             ///< to set; carries the address too
  state::Register reg{40001};
  state::Word value;
  int output = 1;
  Load load = Load::kGood;
};

/// An order line read: the order, or in `error` what is wrong with it.
struct ParsedOrder {
  Order order;
  Complaint error;
};

/// `line` holds more than blanks.
ParsedOrder ParseOrder(std::string_view line);

/// What `--help` tells of orders.
std::string OrderHelp();

}  // namespace tarvo::simulator
