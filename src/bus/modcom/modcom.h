#pragma once

#include <coroutine>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "bus/byte_port.h"
#include "bus/modcom/outcome.h"
#include "bus/modcom/rtu_master.h"
#include "core/fault.h"
#include "core/scheduler.h"
#include "core/wait_list.h"
#include "state/word.h"
#include "view/control.h"

namespace tarvo::bus {

/// The `format` argument that nearly every request carries. It changes nothing on the line.
inline constexpr std::int16_t kFormat = 5;

/// The Modbus RTU master control of a window: owns one serial port, reads and writes holding registers. A register that
/// has not five digits from 40001 on throws "Subscript out of range". It outlives every frame that awaits it.
///
/// When a request ends, its issuer goes on first and may issue the next one at once. Then those who wait, requests and
/// waiters for a free bus in one line, go on one at a time, each only while the bus is still free.
class ModCom : public view::Control, private RtuListener {
 public:
  ModCom(view::Window& window, std::string_view name, PortOpener& opener);
  ~ModCom() override;

  view::Property<int> CommPort{*this, 1};
  view::Property<std::string> Settings{*this, "9600,n,8,1"};
  view::Property<int> ModuleAddr{*this, 1};  ///< 1 to 255; a request to any other address meets silence at once
  view::Property<int> LinkParamA{*this, 3};
  view::Property<int> LinkParamB{*this, 3};      ///< number of tries
  view::Property<int> ReplyTimeout{*this, 500};  ///< milliseconds to the first byte of a reply, line time on top
  view::Property<int> ReplyMode{*this, 0};

  /// Stays true when the device is lost, until it is set to false.
  bool PortOpen() const { return port_ != nullptr; }
  /// Opens the port with the present `CommPort` and `Settings`, or closes it. Closing never faults, opening an open
  /// port neither. Closing fails a request under way, and those that wait their turn; who issued them goes on in the
  /// next turn. `Settings` that cannot be understood are "Device unavailable".
  core::Status SetPortOpen(bool open);
  /// True from the issue of a request to its outcome.
  bool CommBusy() const { return active_ != nullptr; }
  /// Re-applies `Settings` on the open port; nothing when it is closed. A fault leaves the line as it was.
  core::Status ResetLink();

  class Request;  // NOLINT(cppcoreguidelines-virtual-class-destructor): it is final
  /// Reads `count` registers (1 to 125) from `first`; the first word goes to `data`, which keeps what it had when the
  /// read fails. Waits its turn. Awaited, gives the `Outcome`.
  Request ReadPLC(state::Register first, state::Word& data, std::int16_t count = 1, std::int16_t format = kFormat);
  Request ReadPLC(state::Register first, std::optional<state::Word>& data, std::int16_t count = 1,
                  std::int16_t format = kFormat);
  /// The block read of a poll, into the elements of `data` from 0 on: fails at once when the bus is busy. A `count`
  /// that `data` has no room for throws "Subscript out of range".
  /// `format` is 0 for the pages that give none.
  Request ReadPLC(state::Register first, std::span<state::Word> data, std::int16_t count, std::int16_t format = 0);
  /// Writes one register. `count` and `format` change nothing on the line.
  Request WritePLC(state::Register target, state::Word value, std::int16_t count = 1, std::int16_t format = kFormat);

  /// `co_await ModCom1.Free()`: goes on at once when the bus is free, else when it is this waiter's turn and the bus
  /// is free.
  class FreeBus;  // NOLINT(cppcoreguidelines-virtual-class-destructor): it is final
  FreeBus Free();

  std::vector<view::NamedValue> Properties() const override;

 private:
  void ExchangeEnded(Outcome outcome) override;

  /// Why `request` cannot go out at all; nothing when it can.
  std::optional<Outcome> WhyNot(const Request& request) const;
  void Begin(Request& request);
  void Withdraw(Request& request);
  void ClosePort();
  void GoOn();

  PortOpener& opener_;
  std::unique_ptr<BytePort> port_;
  std::optional<RtuMaster> master_;  ///< while the port is open
  /// Left by the last master: an answer to it may still arrive after the port was opened again.
  Doubt doubt_;
  unsigned closings_ = 0;  ///< by it a request sees that the port it was issued on was closed

  Request* active_ = nullptr;  ///< from its issue until its issuer goes on
  bool activeEnded_ = false;
  core::WaitList line_;
  core::Call goOn_;
};

/// A request that is awaited: it lives in the frame of its issuer, and leaves the bus when that frame ends: an exchange
/// under way is abandoned.
class ModCom::Request final : private core::Waiter {
 public:
  Request(const Request&) = delete;
  Request& operator=(const Request&) = delete;
  ~Request();

  bool await_ready();
  void await_suspend(std::coroutine_handle<> frame);
  Outcome await_resume() const noexcept { return outcome_; }

 private:
  friend class ModCom;

  /// Where the words of a good read go: nowhere for a write.
  using Target = std::variant<std::monostate, state::Word*, std::optional<state::Word>*, std::span<state::Word>>;

  Request(ModCom& modcom, const RtuRequest& asked, Target target) : modcom_(modcom), asked_(asked), target_(target) {}

  void Woken() override;
  void Keep(std::span<const std::uint16_t> words);

  ModCom& modcom_;
  RtuRequest asked_;
  Target target_;
  unsigned closings_ = 0;
  Outcome outcome_;
  std::coroutine_handle<> frame_;
};

class ModCom::FreeBus final : private core::Waiter {
 public:
  explicit FreeBus(ModCom& modcom) : modcom_(modcom) {}

  bool await_ready() const noexcept { return !modcom_.CommBusy(); }
  void await_suspend(std::coroutine_handle<> frame);
  void await_resume() const noexcept {}

 private:
  void Woken() override { frame_.resume(); }

  ModCom& modcom_;
  std::coroutine_handle<> frame_;
};

}  // namespace tarvo::bus
