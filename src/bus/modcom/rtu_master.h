#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "bus/byte_port.h"
#include "bus/modcom/doubt.h"
#include "bus/modcom/outcome.h"
#include "bus/rtu_frame.h"
#include "core/scheduler.h"

namespace tarvo::bus {

/// One request to one slave: function 3 for `count` registers, or function 6 for one `value`.
struct RtuRequest {
  std::uint8_t slave = 1;  ///< 1 to 255
  std::uint8_t function = kReadHoldingRegisters;
  std::uint16_t address = 0;  ///< on the line: 0 is register 40001
  std::uint16_t count = 1;    ///< 1 to 125, for a read
  std::uint16_t value = 0;    ///< for a write
};

/// As many registers as one read may have.
inline constexpr int kMostRegisters = 125;

/// Who waits for the end of an exchange. Called once for each, from the scheduler's turn and from within the master:
/// it starts no exchange and ends neither master nor port.
class RtuListener {
 public:
  virtual void ExchangeEnded(Outcome outcome) = 0;

 protected:
  ~RtuListener() = default;
};

/// A Modbus RTU master on a `BytePort`: one exchange at a time, with tries, time-outs and the proof that a line which
/// failed is in step again.
///
/// Once an attempt has ended without a valid reply, the next one begins with a probe (see `Doubt`), a short read from
/// 40001. A probe that fails ends the attempt that it belongs to.
class RtuMaster final : private BytePortListener {
 public:
  RtuMaster(core::Scheduler& scheduler, BytePort& port, const LineSettings& line, RtuListener& listener);
  RtuMaster(const RtuMaster&) = delete;
  RtuMaster& operator=(const RtuMaster&) = delete;
  ~RtuMaster();

  /// `tries` at least 1; `replyTimeout` from the request's last byte to the reply's first, line time comes on top.
  void Start(const RtuRequest& request, int tries, core::Duration replyTimeout);
  bool Running() const { return state_ != State::kIdle; }
  /// Ends a running exchange without telling the listener.
  void Abandon();
  void SetLine(const LineSettings& line) { line_ = line; }
  /// The device is gone: no exchange can succeed any more.
  bool Lost() const { return lost_; }

  /// What the next master on the same line must know: a running exchange counts as one without a reply.
  Doubt GetDoubt() const;
  void SetDoubt(const Doubt& doubt) { doubt_ = doubt; }

  /// The registers of the last good read, in order; empty after anything else.
  std::span<const std::uint16_t> Words() const { return std::span(words_).first(wordCount_); }

 private:
  enum class State {
    kIdle,
    kQuiet,  ///< waits for enough silence on the line
    kReply,  ///< a frame has gone out
    kEnded,  ///< has an outcome that the next turn tells
  };

  void BytesArrived() override;
  void PortLost() override;

  void BeginAttempt();
  bool ProbeNeeded() const;
  void SendNext();
  void Send(const RtuRequest& request);
  void SendWhenQuiet();
  void SendNow();
  void TakeInput();
  bool Answered();
  void SkipForeignFrames();
  bool DamagedReply() const;
  bool ReplyBegun() const;
  Outcome WhyNoReply() const;
  void TimeOver();
  void LineSilent();
  void AttemptFailed(Outcome why);
  void Accept(std::span<const std::uint8_t> reply);
  void End(Outcome outcome);
  void EndSoon(Outcome outcome);

  core::Scheduler& scheduler_;
  BytePort& port_;
  LineSettings line_;
  RtuListener& listener_;

  State state_ = State::kIdle;
  RtuRequest request_;
  RtuRequest onLine_;  ///< the request, or the probe that goes before it
  bool probing_ = false;
  int probesRefused_ = 0;  ///< in this attempt
  int triesLeft_ = 0;
  core::Duration replyTimeout_{};
  core::TimePoint lastByte_;    ///< sent or received
  core::TimePoint patience_{};  ///< when a frame goes out though the line was never quiet
  Outcome outcome_;
  Doubt doubt_;
  bool lost_ = false;

  /// More than one frame, so that noise before a reply does not push it out.
  std::array<std::uint8_t, 2 * kLongestFrame> received_{};
  std::size_t receivedCount_ = 0;
  bool foreignSeen_ = false;
  std::array<std::uint16_t, kMostRegisters> words_{};
  std::size_t wordCount_ = 0;

  core::Call timer_;    ///< the line is quiet, or the reply's time is over
  core::Call silence_;  ///< no byte for a few characters' time
  core::Call ended_;
};

}  // namespace tarvo::bus
