#pragma once

#include <string>

#include "core/fault.h"

namespace tarvo::platform {

/// What the system tells of a port that could not be opened.
struct PortRefusal {
  int comPort = 1;
  std::string device;     ///< "/dev/ttyUSB0"; empty when nothing stands behind the number
  int error = 0;          ///< the system's error number
  std::string group;      ///< whose members may use the device; empty when being in a group does not help
  std::string user;       ///< this user's name; empty when the system has none
  bool inGroup = false;   ///< the user is in `group`, though this process does not count as such yet
  bool heldHere = false;  ///< this program itself has the device open
  std::string holder;     ///< name of the process that has the device open; empty when the system does not tell
  long holderProcess = 0;
};

/// Why the port could not be opened and what to do, one or two plain sentences that fit into a status bar.
std::string AdviceOn(const PortRefusal& refusal);

/// `fault`, as opening `device` behind COM`comPort` gave it, with the advice that the system's present state allows.
core::Fault WithAdvice(const core::Fault& fault, int comPort, const std::string& device);

}  // namespace tarvo::platform
