#pragma once

#include <cstdint>

namespace tarvo::bus {

/// How a request to a module ended. The system knows only -1 and "anything else"; the tests see all.
class Outcome {
 public:
  enum class Kind : std::int16_t {
    kGood = -1,
    kSilence = 1,
    kWrongCrc = 2,
    kTorn = 3,       ///< a reply that began and did not end
    kForeign = 4,    ///< only replies of another address, function, length or value
    kException = 5,  ///< the module refused; not tried again
    kPortGone = 6,
    kClosed = 7,  ///< the port is not open
    kBusy = 8,    ///< a poll that met another request
  };

  constexpr Outcome() = default;
  constexpr explicit Outcome(Kind kind, std::uint8_t exceptionCode = 0) : kind_(kind), exceptionCode_(exceptionCode) {}

  constexpr bool Good() const { return kind_ == Kind::kGood; }
  constexpr Kind GetKind() const { return kind_; }
  /// Modbus exception code, 0 when there was no exception.
  constexpr std::uint8_t ExceptionCode() const { return exceptionCode_; }
  /// -1 when good.
  constexpr std::int16_t Result() const { return static_cast<std::int16_t>(kind_); }

  friend constexpr bool operator==(Outcome, Outcome) = default;

 private:
  Kind kind_ = Kind::kGood;
  std::uint8_t exceptionCode_ = 0;
};

/// For the messages of tests: "good", "silence", "wrong CRC".
const char* NameOf(Outcome::Kind kind);

}  // namespace tarvo::bus
