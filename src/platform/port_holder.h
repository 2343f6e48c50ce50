#pragma once

#include <sys/types.h>

#include <optional>
#include <string>

namespace tarvo::platform {

/// True when the device behind `descriptor` is open a second time, in this or in another process. Sees only the
/// processes that the system lets this user see: all of them for the superuser.
bool HeldByAnother(int descriptor);

/// A process that has a device open.
struct PortHolder {
  pid_t process = 0;
  std::string name;  ///< "minicom"; printable ASCII, at most 15 characters; empty when the system does not tell
};

/// Who holds `device`: the process that locked it, else the first that has it open. Nothing when the system does not
/// let this user see any.
std::optional<PortHolder> FindHolder(const std::string& device);

}  // namespace tarvo::platform
