#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "bus/byte_port.h"
#include "core/scheduler.h"

namespace tarvo::test {

/// A serial line in memory, as a test holds it: records what the program writes and delivers bytes at given times.
/// `Open` hands out the program's end of it. Bytes on their way stay on their way when the port is closed; those that
/// arrive while it is closed are lost.
class MemoryLine {
 public:
  explicit MemoryLine(core::Scheduler& scheduler) : scheduler_(scheduler), loss_(scheduler, [this] { LoseNow(); }) {
    input_.reserve(kUsualSize);
  }
  MemoryLine(const MemoryLine&) = delete;
  MemoryLine& operator=(const MemoryLine&) = delete;
  ~MemoryLine() {
    if (port_ != nullptr) port_->Detach();
  }

  /// The program's end; null when it is open already.
  std::unique_ptr<bus::BytePort> Open(const bus::LineSettings& line) {
    if (port_ != nullptr) return nullptr;
    ++opens_;
    line_ = line;
    input_.clear();
    auto port = std::make_unique<Port>(*this);
    port_ = port.get();
    return port;
  }

  bool IsOpen() const { return port_ != nullptr; }
  int Opens() const { return opens_; }
  int Closes() const { return closes_; }
  void ForgetCounts() { opens_ = closes_ = 0; }
  /// Speed and parity that the program set last.
  const bus::LineSettings& Line() const { return line_; }

  /// Lets `bytes` arrive together, `delay` from now.
  void Deliver(std::span<const std::uint8_t> bytes, core::Duration delay = {}) {
    DeliverOneByOne(bytes, delay, core::Duration::zero());
  }
  void Deliver(std::initializer_list<std::uint8_t> bytes, core::Duration delay = {}) {
    Deliver(std::span(bytes.begin(), bytes.size()), delay);
  }
  /// Lets the first byte arrive `delay` from now and each further one `gap` after the one before.
  void DeliverOneByOne(std::span<const std::uint8_t> bytes, core::Duration delay, core::Duration gap) {
    auto free =
        std::find_if(deliveries_.begin(), deliveries_.end(), [](const auto& one) { return !one->call.Pending(); });
    if (free == deliveries_.end()) free = deliveries_.insert(free, std::make_unique<Delivery>(*this));
    (*free)->Send(bytes, delay, gap);
  }

  /// Unplugs the device, `delay` from now.
  void Lose(core::Duration delay) { loss_.After(delay); }
  /// Unplugs the device; the program is told in the scheduler's next turn.
  void Lose() { loss_.Post(); }
  bool Lost() const { return lost_; }
  /// Plugs the device in again, for a port that is opened from now on.
  void PlugIn() { lost_ = false; }

  /// Makes `SetLine` fail.
  void RefuseSetLine(bool refuse) { refuseSetLine_ = refuse; }

  struct Write {
    core::TimePoint at;
    std::vector<std::uint8_t> bytes;
  };
  /// What the program wrote, each call of `Write` by itself.
  const std::vector<Write>& Writes() const { return writes_; }
  void ForgetWrites() { writes_.clear(); }
  /// Off, a write is not kept, and nothing is allocated for it.
  void SetRecording(bool recording) { recording_ = recording; }

  /// Called inside each write: the device at the other end.
  std::function<void(std::span<const std::uint8_t>)> OnWrite;

 private:
  static constexpr std::size_t kUsualSize = 1024;

  struct Delivery {
    explicit Delivery(MemoryLine& line) : owner(line), call(line.scheduler_, [this] { Arrive(); }) {
      bytes.reserve(kUsualSize);
    }

    void Send(std::span<const std::uint8_t> what, core::Duration delay, core::Duration gapBetween) {
      bytes.assign(what.begin(), what.end());
      sent = 0;
      gap = gapBetween;
      call.ArriveAfter(delay);
    }

    void Arrive() {
      if (owner.Keep(TakeNext(gap))) owner.TellArrival();
    }

    /// The bytes that arrive together now; the next ones, `next` from now.
    std::span<const std::uint8_t> TakeNext(core::Duration next) {
      const std::size_t count = gap > core::Duration::zero() ? 1 : bytes.size() - sent;
      const auto arriving = std::span(bytes).subspan(sent, std::min(count, bytes.size() - sent));
      sent += arriving.size();
      if (sent < bytes.size()) {
        call.ArriveAfter(next);
      } else {
        call.Cancel();
      }
      return arriving;
    }

    MemoryLine& owner;
    std::vector<std::uint8_t> bytes;
    std::size_t sent = 0;
    core::Duration gap{};
    core::Call call;
  };

  class Port final : public bus::BytePort {
   public:
    explicit Port(MemoryLine& line) : line_(&line) {}
    ~Port() override {
      if (line_ == nullptr) return;
      line_->port_ = nullptr;
      ++line_->closes_;
    }
    void Detach() { line_ = nullptr; }
    bus::BytePortListener* Listener() const { return listener_; }

    void SetListener(bus::BytePortListener* listener) override { listener_ = listener; }
    bool Write(std::span<const std::uint8_t> bytes) override { return line_ != nullptr && line_->TakeWrite(bytes); }
    std::size_t Take(std::span<std::uint8_t> into) override { return line_ == nullptr ? 0 : line_->TakeInput(into); }
    void DiscardInput() override {
      if (line_ != nullptr) line_->DiscardInput();
    }
    core::Status SetLine(const bus::LineSettings& line) override {
      if (line_ == nullptr || line_->lost_ || line_->refuseSetLine_) {
        return core::Status::Failed(core::Fault(core::kDeviceUnavailable));
      }
      line_->line_ = line;
      return core::Status::Good();
    }

   private:
    MemoryLine* line_;
    bus::BytePortListener* listener_ = nullptr;
  };

  bool TakeWrite(std::span<const std::uint8_t> bytes) {
    if (lost_) return false;
    if (recording_) writes_.push_back({scheduler_.Now(), {bytes.begin(), bytes.end()}});
    if (OnWrite) OnWrite(bytes);
    return true;
  }

  /// The delivery whose bytes have been due longest; null when none are.
  Delivery* Overdue() const {
    Delivery* first = nullptr;
    for (const auto& one : deliveries_) {
      if (!one->call.Pending() || one->call.Due() > scheduler_.Now()) continue;
      if (first == nullptr || one->call.Due() < first->call.Due()) first = one.get();
    }
    return first;
  }
  /// Bytes that came in a hard wait lie there before a turn tells so, as on a real line.
  void KeepOverdue() {
    while (Delivery* one = Overdue()) Keep(one->TakeNext(one->call.Due() + one->gap - scheduler_.Now()));
  }

  void DiscardInput() {
    KeepOverdue();
    input_.clear();
  }

  std::size_t TakeInput(std::span<std::uint8_t> into) {
    KeepOverdue();
    const std::size_t count = std::min(into.size(), input_.size());
    const auto end = input_.begin() + static_cast<std::ptrdiff_t>(count);
    std::copy(input_.begin(), end, into.begin());
    input_.erase(input_.begin(), end);
    return count;
  }

  /// False when nobody is there to have them.
  bool Keep(std::span<const std::uint8_t> bytes) {
    if (port_ == nullptr || lost_) return false;
    input_.insert(input_.end(), bytes.begin(), bytes.end());
    return true;
  }
  void TellArrival() const {
    if (bus::BytePortListener* listener = port_->Listener()) listener->BytesArrived();
  }

  void LoseNow() {
    lost_ = true;
    if (port_ == nullptr) return;
    if (bus::BytePortListener* listener = port_->Listener()) listener->PortLost();
  }

  core::Scheduler& scheduler_;
  Port* port_ = nullptr;
  bus::LineSettings line_;
  std::vector<std::uint8_t> input_;
  std::vector<std::unique_ptr<Delivery>> deliveries_;
  core::Call loss_;
  bool lost_ = false;
  bool refuseSetLine_ = false;
  bool recording_ = true;
  std::vector<Write> writes_;
  int opens_ = 0;
  int closes_ = 0;
};

/// Opens lines in memory by COM number. A number with no line behind it is "Device not found", a line that is open is
/// "Port already open".
class MemoryPorts final : public bus::PortOpener {
 public:
  /// `line` outlives this.
  void Connect(int comPort, MemoryLine& line) { lines_[comPort] = &line; }
  void Disconnect(int comPort) { lines_.erase(comPort); }
  /// Opening `comPort` fails with this description (`core::kPermissionDenied`, say) until it is set to nothing.
  void SetFault(int comPort, const std::string& description) {
    faults_.erase(comPort);
    if (!description.empty()) SetFault(comPort, core::Fault(description));
  }
  /// The same with all that a fault may carry.
  void SetFault(int comPort, core::Fault fault) { faults_.insert_or_assign(comPort, std::move(fault)); }

  /// Attempts to open, good or not.
  int Attempts() const { return attempts_; }
  void ForgetAttempts() { attempts_ = 0; }
  /// Called at the beginning of each attempt.
  std::function<void(int comPort)> BeforeOpen;

  Opened Open(int comPort, const bus::LineSettings& line) override {
    ++attempts_;
    if (BeforeOpen) BeforeOpen(comPort);
    Opened opened;
    const auto fault = faults_.find(comPort);
    const auto found = lines_.find(comPort);
    if (fault != faults_.end()) {
      opened.status = core::Status::Failed(fault->second);
    } else if (found == lines_.end() || found->second->Lost()) {
      opened.status = core::Status::Failed(core::Fault(core::kDeviceNotFound));
    } else {
      opened.port = found->second->Open(line);
      if (!opened.port) opened.status = core::Status::Failed(core::Fault(core::kPortAlreadyOpen));
    }
    return opened;
  }

 private:
  std::map<int, MemoryLine*> lines_;
  std::map<int, core::Fault> faults_;
  int attempts_ = 0;
};

}  // namespace tarvo::test
