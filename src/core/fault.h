#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

namespace tarvo::core {

/// A run-time fault as the user reads it: `what()` is the description that a message box shows.
class Fault : public std::runtime_error {
 public:
  explicit Fault(const std::string& description, long number = 0, std::string source = {}, std::string advice = {})
      : std::runtime_error(description), number_(number), source_(std::move(source)), advice_(std::move(advice)) {}

  long Number() const { return number_; }
  const std::string& Source() const { return source_; }
  /// The reason and what the user can do, a plain sentence or two; empty when `what()` is all that is known.
  const std::string& Advice() const { return advice_; }

 private:
  long number_;
  std::string source_;
  std::string advice_;
};

inline constexpr char kFileNotFound[] = "File not found";
inline constexpr char kPathNotFound[] = "Path not found";
inline constexpr char kFileAlreadyOpen[] = "File already open";
inline constexpr char kInputPastEndOfFile[] = "Input past end of file";
inline constexpr char kSubscriptOutOfRange[] = "Subscript out of range";
inline constexpr char kTypeMismatch[] = "Type mismatch";
inline constexpr char kOverflow[] = "Overflow";
inline constexpr char kPermissionDenied[] = "Permission denied";
inline constexpr char kDeviceUnavailable[] = "Device unavailable";
inline constexpr char kPortAlreadyOpen[] = "Port already open";
inline constexpr char kDeviceNotFound[] = "Device not found";

/// How an operation ended that may meet an expected fault: good, or the fault as a value.
class [[nodiscard]] Status {
 public:
  static Status Good() { return {}; }
  static Status Failed(Fault fault) {
    Status status;
    status.fault_ = std::move(fault);
    return status;
  }

  bool Ok() const { return !fault_; }
  /// Only when not `Ok`.
  const Fault& GetFault() const { return *fault_; }
  /// The fault's text, empty when good.
  std::string Description() const { return fault_ ? fault_->what() : std::string(); }

 private:
  std::optional<Fault> fault_;
};

}  // namespace tarvo::core
