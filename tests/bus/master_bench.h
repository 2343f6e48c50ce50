#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "bus/modcom/rtu_master.h"
#include "core/virtual_scheduler.h"
#include "support/memory_port.h"

namespace tarvo::bus {

using Frame = std::vector<std::uint8_t>;

/// `bytes` with their CRC.
inline Frame WithCrc(Frame bytes) {
  const std::size_t length = bytes.size();
  bytes.resize(length + 2);
  AppendCrc(bytes, length);
  return bytes;
}

/// The good reply of slave 1 to a read.
inline Frame ReadReply(const std::vector<std::uint16_t>& words, std::uint8_t slave = 1) {
  Frame frame{slave, kReadHoldingRegisters, static_cast<std::uint8_t>(2 * words.size())};
  for (const std::uint16_t word : words) {
    frame.push_back(static_cast<std::uint8_t>(word >> 8));
    frame.push_back(static_cast<std::uint8_t>(word & 0xFF));
  }
  return WithCrc(std::move(frame));
}

inline Frame operator+(Frame first, const Frame& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

inline RtuRequest Read(std::uint16_t count, std::uint16_t address = 1) {
  RtuRequest request;
  request.address = address;
  request.count = count;
  return request;
}

inline RtuRequest WriteOf(std::uint16_t address, std::uint16_t value) {
  RtuRequest request;
  request.function = kWriteSingleRegister;
  request.address = address;
  request.value = value;
  return request;
}

/// A master on a line in memory. The line has been quiet for a while when a test begins.
class MasterBench final : private RtuListener {
 public:
  explicit MasterBench(LineSettings settings = {}) : Settings(settings) { Scheduler.Run(core::milliseconds(100)); }

  static constexpr core::Duration kTimeout = core::milliseconds(500);

  core::VirtualScheduler Scheduler;
  LineSettings Settings;
  test::MemoryLine Line{Scheduler};
  std::unique_ptr<BytePort> Port = Line.Open(Settings);
  RtuMaster Master{Scheduler, *Port, Settings, *this};

  /// How the last exchange ended; nothing while it runs.
  std::optional<Outcome> Ended;
  core::TimePoint EndedAt;
  int Endings = 0;

  void Start(const RtuRequest& request, int tries = 1, core::Duration timeout = kTimeout) {
    Ended.reset();
    Master.Start(request, tries, timeout);
  }

  /// Runs the exchange to its end; nothing when it has none.
  std::optional<Outcome> Finish() {
    Scheduler.RunUntil([this] { return Ended.has_value(); }, std::chrono::hours(1));
    return Ended;
  }
  std::optional<Outcome::Kind> FinishKind() {
    const std::optional<Outcome> outcome = Finish();
    return outcome ? std::optional(outcome->GetKind()) : std::nullopt;
  }
  std::vector<std::uint16_t> Words() const { return {Master.Words().begin(), Master.Words().end()}; }

  /// The frames that the master sent.
  std::vector<Frame> Sent() const {
    std::vector<Frame> frames;
    for (const auto& write : Line.Writes()) frames.push_back(write.bytes);
    return frames;
  }
  core::Duration Characters(double count) const { return Settings.TimeOf(count); }

 private:
  void ExchangeEnded(Outcome outcome) override {
    Ended = outcome;
    EndedAt = Scheduler.Now();
    ++Endings;
  }
};

}  // namespace tarvo::bus
