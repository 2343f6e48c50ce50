#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <span>
#include <vector>

#include "bus/line_settings.h"
#include "core/scheduler.h"
#include "simulator/line_fault.h"
#include "simulator/module.h"

namespace tarvo::simulator {

/// The modules on one serial line: finds the requests in what a master sends, and sends the replies at the pace that
/// the line's speed would give them.
class Line {
 public:
  using Send = std::function<void(std::span<const std::uint8_t>)>;

  /// `send` takes what goes to the master.
  Line(core::Scheduler& scheduler, std::vector<Module> modules, Send send);

  std::vector<Module>& Modules() { return modules_; }
  const std::vector<Module>& Modules() const { return modules_; }

  /// What befalls the replies from now on, in place of what was ordered before; nothing: they go out as they are.
  void SetFault(const std::optional<LineFault>& fault) { fault_ = fault; }
  /// What is ordered and not yet used up.
  const std::optional<LineFault>& GetFault() const { return fault_; }

  /// The master has sent `bytes` with its port set to `line`; nothing when that is no line that a module could have.
  void Arrived(std::span<const std::uint8_t> bytes, const std::optional<bus::LineSettings>& line);
  /// The master has gone: what is half received or not yet sent is lost, but for replies that are late by order: they
  /// come though another master may be there by then.
  void Forget();

 private:
  struct Reply {
    std::vector<std::uint8_t> bytes;
    core::TimePoint start{};  ///< when the first byte's start bit goes out
    core::Duration byteTime{};
    std::size_t sent = 0;
    bool late = false;  ///< by order

    core::TimePoint Due(std::size_t count) const { return start + byteTime * static_cast<std::int64_t>(count); }
  };

  void TakeRequests();
  void EndOfSilence();
  void Execute(std::span<const std::uint8_t> request);
  bool Hit(const Module& module) const;
  core::Duration SpoilNext(std::vector<std::uint8_t>& reply);
  void SendDue();

  core::Scheduler& scheduler_;
  std::vector<Module> modules_;
  Send send_;
  bus::LineSettings masterLine_;
  std::vector<std::uint8_t> received_;
  core::TimePoint receivedSince_{};
  std::optional<LineFault> fault_;
  Random noise_;  // always the same
  std::deque<Reply> replies_;
  core::TimePoint lineFree_{};
  core::Call silence_;
  core::Call sending_;
};

}  // namespace tarvo::simulator
