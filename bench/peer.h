#pragma once

#include <sys/types.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "core/scheduler.h"
#include "platform/file_descriptor.h"

namespace tarvo::bench {

/// How a peer plays its modules: slave 1 with holding registers, function 3, one module a line.
struct PeerPlan {
  enum class Registers {
    kNumbered,  ///< each register holds its own address, so that a reply tells which request it answers
    kBelk,      ///< a Belk module; the nine registers of its poll all differ each time that a page shows them
  };
  enum class Pace {
    kAtOnce,      ///< a reply comes as soon as the request is there
    kByteByByte,  ///< request and reply take the time that a line at `baud` needs; each byte comes at its own time
    kWhole,       ///< the same, but the reply comes in one piece at its end, as an adapter hands it over
  };

  int lines = 1;
  Registers registers = Registers::kNumbered;
  Pace pace = Pace::kAtOnce;
  int baud = 9600;

  /// So many replies of a hundred are spoiled: half of those come late, by one to four times `patience` and with all
  /// that follows behind them; the others are silence, a wrong CRC, a torn reply, another module's address, an
  /// exception or noise before a good reply.
  unsigned faultPercent = 0;
  core::Duration patience{};
  unsigned seed = 1;
};

/// A process of its own that plays modules on pseudo terminals. Ends with this object.
class Peer {
 public:
  static constexpr int kSlave = 1;

  /// Made before the calling process has other threads. Throws when the system gives no terminal or process.
  explicit Peer(const PeerPlan& plan);
  Peer(const Peer&) = delete;
  Peer& operator=(const Peer&) = delete;
  ~Peer();

  /// The device of a line, to be opened by a master.
  const std::string& Device(std::size_t line = 0) const { return devices_.at(line); }

  /// What went over all lines so far.
  struct Counts {
    std::atomic<std::uint64_t> requests{0};
    std::atomic<std::uint64_t> late{0};
    std::atomic<std::uint64_t> spoiled{0};  ///< in any other way
  };
  const Counts& Seen() const { return *counts_; }

 private:
  std::vector<std::string> devices_;
  Counts* counts_ = nullptr;  // shared with the process
  pid_t process_ = -1;
};

}  // namespace tarvo::bench
