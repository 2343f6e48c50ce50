#pragma once

#include <string>
#include <vector>

#include "simulator/line.h"
#include "simulator/links.h"
#include "simulator/order.h"
#include "simulator/pty.h"

namespace tarvo::simulator {

/// One COM port: its pseudo terminal, the link to it and the modules behind it.
class Port {
 public:
  /// `links` makes the port's link and outlives the port; null for none.
  Port(core::Scheduler& scheduler, int number, std::vector<Module> modules, Links* links);

  /// "com1".
  const std::string& Name() const { return name_; }
  /// The device; empty while it is unplugged.
  const std::string& Path() const { return pty_.Path(); }
  const std::vector<Module>& Modules() const { return line_.Modules(); }

  /// Makes the terminal and the link; the port must be unplugged, as it is at first.
  core::Status Plug();

  struct Answer {
    Complaint error;
    std::string told;  ///< what was asked for; empty for most orders
  };
  /// Does what is ordered of this port.
  Answer Obey(const Order& order);

 private:
  void Unplug();
  Answer ObeyInModule(const Order& order);
  /// The module with this address, or the only one; null, and why in `error`.
  Module* Find(const std::optional<int>& address, Complaint& error);

  core::Scheduler& scheduler_;
  std::string name_;
  Links* links_;
  Pty pty_;
  Line line_;
};

}  // namespace tarvo::simulator
