#pragma once

#include <string>

#include "e2e/page_bench.h"

namespace tarvo::test {

inline const std::string kNotBelk = BoxJson("ERROR! Module is not Belk or communication failed", "critical");

/// The register of the flags by its last digits.
constexpr int kFlagsRegister = 9;

/// The Belk page with its simulator.
class BelkBench : public PageBench {
 protected:
  BelkBench() : PageBench("Belk") {}

  /// A session with a firmware release and flags that the module took while it ran: those of the parity count from its
  /// next restart on, so that the line stays without one.
  void OpenSessionWithFlags(int flags, int firmware = 3) {
    StartSimulator("belk:fw=" + std::to_string(firmware));
    SetRegister(kFlagsRegister, flags);
    OpenConsole();
    StartSession();
  }
};

}  // namespace tarvo::test
