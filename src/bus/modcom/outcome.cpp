#include "bus/modcom/outcome.h"

namespace tarvo::bus {

const char* NameOf(Outcome::Kind kind) {
  switch (kind) {
    case Outcome::Kind::kGood:
      return "good";
    case Outcome::Kind::kSilence:
      return "silence";
    case Outcome::Kind::kWrongCrc:
      return "wrong CRC";
    case Outcome::Kind::kTorn:
      return "torn";
    case Outcome::Kind::kForeign:
      return "foreign";
    case Outcome::Kind::kException:
      return "exception";
    case Outcome::Kind::kPortGone:
      return "port gone";
    case Outcome::Kind::kClosed:
      return "closed";
    case Outcome::Kind::kBusy:
      return "busy";
  }
  return "unknown";
}

}  // namespace tarvo::bus
