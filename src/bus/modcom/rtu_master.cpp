#include "bus/modcom/rtu_master.h"

#include <algorithm>
#include <cassert>

namespace tarvo::bus {

namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::size_t kExceptionLength = 5;
constexpr std::size_t kWriteReplyLength = 8;
/// Slave, function and, in a read's reply, the number of bytes that follow.
constexpr std::size_t kHeaderLength = 3;

/// So many pieces of input are looked at in one go; a device that never pauses must not hold the program.
constexpr int kMostPieces = 32;

std::uint16_t WordAt(Bytes bytes, std::size_t at) {
  return static_cast<std::uint16_t>(bytes[at] << 8 | bytes[at + 1]);
}

void PutWord(std::span<std::uint8_t> bytes, std::size_t at, std::uint16_t word) {
  bytes[at] = static_cast<std::uint8_t>(word >> 8);
  bytes[at + 1] = static_cast<std::uint8_t>(word & 0xFF);
}

bool Reads(const RtuRequest& request) {
  return request.function == kReadHoldingRegisters;
}

std::uint16_t ReadCountOf(const RtuRequest& request) {
  return Reads(request) ? request.count : std::uint16_t{0};
}

std::size_t ReplyLength(const RtuRequest& request) {
  return Reads(request) ? kExceptionLength + 2 * std::size_t{request.count} : kWriteReplyLength;
}

bool IsException(const RtuRequest& request, Bytes bytes) {
  return bytes[1] == (request.function | kExceptionBit);
}

/// Length of the reply to `request` that `bytes` (a header at least) begin with; 0 when they begin with none.
std::size_t LengthOfReply(const RtuRequest& request, Bytes bytes) {
  if (bytes[0] != request.slave) return 0;
  if (IsException(request, bytes)) return kExceptionLength;
  if (bytes[1] != request.function) return 0;
  if (Reads(request)) return bytes[2] == 2 * request.count ? ReplyLength(request) : 0;
  return bytes[2] == request.address >> 8 ? kWriteReplyLength : 0;
}

/// Length of the frame that `bytes` (a header at least) begin with, if it is a reply of anyone to anything; else 0.
std::size_t LengthOfAnyReply(Bytes bytes) {
  if ((bytes[1] & kExceptionBit) != 0) return kExceptionLength;
  switch (bytes[1]) {
    case 1:
    case 2:
    case kReadHoldingRegisters:
    case 4:
      return kExceptionLength + bytes[2];
    case 5:
    case kWriteSingleRegister:
    case 15:
    case kWriteMultipleRegisters:
      return kWriteReplyLength;
    default:
      return 0;
  }
}

bool Echoes(const RtuRequest& request, Bytes reply) {
  return WordAt(reply, 2) == request.address && WordAt(reply, 4) == request.value;
}

core::Duration SilenceBeforeRequest(const LineSettings& line) {
  constexpr int kFastestThatCounts = 19200;
  constexpr core::Duration kOnFasterLines = core::microseconds(1750);
  return line.baud > kFastestThatCounts ? kOnFasterLines : line.TimeOf(3.5);
}

/// After which a reply does not go on. USB hands bytes over in steps of a millisecond.
core::Duration SilenceAfterReply(const LineSettings& line) {
  constexpr core::Duration kShortest = core::milliseconds(2);
  return std::max(line.TimeOf(5), kShortest);
}

}  // namespace

RtuMaster::RtuMaster(core::Scheduler& scheduler, BytePort& port, const LineSettings& line, RtuListener& listener)
    : scheduler_(scheduler),
      port_(port),
      line_(line),
      listener_(listener),
      lastByte_(scheduler.Now()),
      timer_(scheduler, [this] { TimeOver(); }),
      silence_(scheduler, [this] { LineSilent(); }),
      ended_(scheduler, [this] { End(outcome_); }) {
  port_.SetListener(this);
}

RtuMaster::~RtuMaster() {
  port_.SetListener(nullptr);
}

void RtuMaster::Start(const RtuRequest& request, int tries, core::Duration replyTimeout) {
  assert(!Running());
  request_ = request;
  triesLeft_ = tries;
  replyTimeout_ = replyTimeout;
  wordCount_ = 0;
  if (lost_) {
    EndSoon(Outcome(Outcome::Kind::kPortGone));
  } else {
    BeginAttempt();
  }
}

void RtuMaster::Abandon() {
  doubt_ = GetDoubt();
  timer_.Cancel();
  silence_.Cancel();
  ended_.Cancel();
  state_ = State::kIdle;
}

Doubt RtuMaster::GetDoubt() const {
  Doubt doubt = doubt_;
  if (state_ == State::kReply) doubt.Add(ReadCountOf(onLine_));
  return doubt;
}

void RtuMaster::BeginAttempt() {
  probesRefused_ = 0;
  SendNext();
}

bool RtuMaster::ProbeNeeded() const {
  if (doubt_.Suspect()) return true;
  // Exceptions look all alike. But when more of them came than replies can be late, the module refuses probes.
  return doubt_.Holds(ReadCountOf(request_)) && probesRefused_ <= doubt_.Replies();
}

void RtuMaster::SendNext() {
  probing_ = ProbeNeeded();
  if (!probing_) {
    Send(request_);
    return;
  }
  RtuRequest probe;
  probe.slave = request_.slave;
  probe.count = doubt_.NextProbe(ReadCountOf(request_));
  Send(probe);
}

void RtuMaster::Send(const RtuRequest& request) {
  onLine_ = request;
  patience_ = std::max(lastByte_, scheduler_.Now()) + SilenceBeforeRequest(line_) + replyTimeout_;
  SendWhenQuiet();
}

void RtuMaster::SendWhenQuiet() {
  const core::TimePoint quiet = std::min(lastByte_ + SilenceBeforeRequest(line_), patience_);
  if (quiet <= scheduler_.Now()) {
    SendNow();
  } else {
    state_ = State::kQuiet;
    timer_.At(quiet);
  }
}

void RtuMaster::SendNow() {
  state_ = State::kReply;
  receivedCount_ = 0;
  foreignSeen_ = false;
  port_.DiscardInput();

  std::array<std::uint8_t, 8> frame{onLine_.slave, onLine_.function};
  PutWord(frame, 2, onLine_.address);
  PutWord(frame, 4, Reads(onLine_) ? onLine_.count : onLine_.value);
  AppendCrc(frame, 6);
  if (!port_.Write(frame)) {
    lost_ = true;
    EndSoon(Outcome(Outcome::Kind::kPortGone));
    return;
  }
  const core::Duration sending = line_.TimeOf(static_cast<double>(frame.size()));
  lastByte_ = scheduler_.Now() + sending;
  timer_.After(sending + replyTimeout_ + line_.TimeOf(static_cast<double>(ReplyLength(onLine_))));
}

void RtuMaster::BytesArrived() {
  lastByte_ = std::max(lastByte_, scheduler_.Now());
  switch (state_) {
    case State::kReply:
      TakeInput();
      break;
    case State::kQuiet:
      port_.DiscardInput();
      SendWhenQuiet();
      break;
    case State::kIdle:
    case State::kEnded:
      port_.DiscardInput();
      break;
  }
}

void RtuMaster::PortLost() {
  lost_ = true;
  if (Running()) End(Outcome(Outcome::Kind::kPortGone));
}

void RtuMaster::TakeInput() {
  for (int piece = 0; piece < kMostPieces; ++piece) {
    if (receivedCount_ == received_.size()) {
      // Any reply that is still incomplete is within the last bytes.
      std::copy(received_.end() - kLongestFrame, received_.end(), received_.begin());
      receivedCount_ = kLongestFrame;
    }
    const std::size_t taken = port_.Take(std::span(received_).subspan(receivedCount_));
    if (taken == 0) break;
    receivedCount_ += taken;
    if (Answered()) return;
  }
  silence_.After(SilenceAfterReply(line_));
}

/// Looks for the reply at every place, and goes on with it when it is there.
bool RtuMaster::Answered() {
  const Bytes received = Bytes(received_).first(receivedCount_);
  for (std::size_t at = 0; at + kExceptionLength <= received.size(); ++at) {
    const Bytes rest = received.subspan(at);
    const std::size_t length = LengthOfReply(onLine_, rest);
    if (length == 0 || length > rest.size() || !CrcFits(rest.first(length))) continue;
    const Bytes reply = rest.first(length);
    if (!IsException(onLine_, reply) && !Reads(onLine_) && !Echoes(onLine_, reply)) continue;
    Accept(reply);
    return true;
  }
  return false;
}

/// Takes out whole replies that answer something else: a late one must not pass for a damaged one, else a line that is
/// one reply behind would never catch up.
void RtuMaster::SkipForeignFrames() {
  std::size_t skipped = 0;
  const Bytes received = Bytes(received_).first(receivedCount_);
  for (std::size_t at = 0; at + kExceptionLength <= received.size(); ++at) {
    const Bytes rest = received.subspan(at);
    const std::size_t length = LengthOfAnyReply(rest);
    if (length == 0 || length > rest.size() || !CrcFits(rest.first(length))) continue;
    skipped = at + length;
    at = skipped - 1;
    foreignSeen_ = true;
  }
  std::copy(received.begin() + static_cast<std::ptrdiff_t>(skipped), received.end(), received_.begin());
  receivedCount_ -= skipped;
}

/// True when the last bytes can be the beginning of the reply.
bool RtuMaster::ReplyBegun() const {
  const Bytes received = Bytes(received_).first(receivedCount_);
  for (std::size_t at = 0; at + kHeaderLength <= received.size(); ++at) {
    if (LengthOfReply(onLine_, received.subspan(at)) > received.size() - at) return true;
  }
  return false;
}

/// True when enough bytes for a reply have come, and none can still become one.
bool RtuMaster::DamagedReply() const {
  if (ReplyBegun()) return false;
  if (receivedCount_ >= ReplyLength(onLine_)) return true;
  const Bytes received = Bytes(received_).first(receivedCount_);
  for (std::size_t at = 0; at + kExceptionLength <= received.size(); ++at) {
    const Bytes rest = received.subspan(at);
    if (rest[0] == onLine_.slave && IsException(onLine_, rest)) return true;
  }
  return false;
}

Outcome RtuMaster::WhyNoReply() const {
  if (DamagedReply()) return Outcome(Outcome::Kind::kWrongCrc);
  if (foreignSeen_ && !ReplyBegun()) return Outcome(Outcome::Kind::kForeign);
  return Outcome(receivedCount_ > 0 ? Outcome::Kind::kTorn : Outcome::Kind::kSilence);
}

void RtuMaster::TimeOver() {
  if (state_ == State::kQuiet) {
    SendNow();
    return;
  }
  SkipForeignFrames();
  AttemptFailed(WhyNoReply());
}

void RtuMaster::LineSilent() {
  SkipForeignFrames();
  if (DamagedReply()) AttemptFailed(Outcome(Outcome::Kind::kWrongCrc));
}

void RtuMaster::AttemptFailed(Outcome why) {
  doubt_ = GetDoubt();
  timer_.Cancel();
  silence_.Cancel();
  if (--triesLeft_ > 0) {
    BeginAttempt();
  } else {
    End(why);
  }
}

void RtuMaster::Accept(Bytes reply) {
  timer_.Cancel();
  silence_.Cancel();
  if (probing_) {
    if (IsException(onLine_, reply)) {
      doubt_.ProbeRefused(onLine_.count);
      ++probesRefused_;
    } else {
      doubt_.Answered(onLine_.count);
    }
    SendNext();
    return;
  }
  if (IsException(request_, reply)) {
    doubt_.RequestRefused(ReadCountOf(request_));
    End(Outcome(Outcome::Kind::kException, reply[2]));
    return;
  }
  if (Reads(request_)) {
    doubt_.Clear();
    wordCount_ = request_.count;
    for (std::size_t i = 0; i < wordCount_; ++i) words_[i] = WordAt(reply, kHeaderLength + 2 * i);
  }
  End(Outcome(Outcome::Kind::kGood));
}

void RtuMaster::End(Outcome outcome) {
  timer_.Cancel();
  silence_.Cancel();
  ended_.Cancel();
  state_ = State::kIdle;
  listener_.ExchangeEnded(outcome);
}

void RtuMaster::EndSoon(Outcome outcome) {
  state_ = State::kEnded;
  outcome_ = outcome;
  ended_.Post();
}

}  // namespace tarvo::bus
