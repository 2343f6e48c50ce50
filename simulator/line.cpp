#include "simulator/line.h"

#include <algorithm>
#include <utility>

#include "bus/rtu_frame.h"

namespace tarvo::simulator {

namespace {

/// Bytes that leave within this time go out together, so that a fast line does not wake the simulator for each byte.
constexpr core::Duration kSlice = core::milliseconds(2);

/// The silence that ends a frame; above 19200 baud it no longer shrinks with the characters.
core::Duration FrameGap(const bus::LineSettings& line) {
  return std::max<core::Duration>(line.TimeOf(3.5), core::microseconds(1750));
}

/// A module's time from the end of a request to the start of its reply.
core::Duration TurnRound(const bus::LineSettings& line) {
  return std::max<core::Duration>(line.TimeOf(3.5), core::milliseconds(2));
}

/// The length of the request that `bytes` begin with; 0 when they do not tell it.
std::size_t RequestLength(std::span<const std::uint8_t> bytes) {
  if (bytes.size() < 8) return 0;
  switch (bytes[1]) {
    case bus::kReadHoldingRegisters:
    case bus::kWriteSingleRegister:
      return 8;
    case bus::kWriteMultipleRegisters:
      return std::size_t{9} + bytes[6];
    default:
      return 0;
  }
}

}  // namespace

Line::Line(core::Scheduler& scheduler, std::vector<Module> modules, Send send)
    : scheduler_(scheduler),
      modules_(std::move(modules)),
      send_(std::move(send)),
      silence_(scheduler, [this] { EndOfSilence(); }),
      sending_(scheduler, [this] { SendDue(); }) {}

void Line::Arrived(std::span<const std::uint8_t> bytes, const std::optional<bus::LineSettings>& line) {
  if (!line || *line != masterLine_) received_.clear();
  if (!line) return;
  masterLine_ = *line;
  if (received_.empty()) receivedSince_ = scheduler_.Now();
  received_.insert(received_.end(), bytes.begin(), bytes.end());
  TakeRequests();
  // One byte too many is enough to know that this is no request.
  if (received_.size() > bus::kLongestFrame) received_.resize(bus::kLongestFrame + 1);
  if (received_.empty()) {
    silence_.Cancel();
  } else {
    silence_.After(FrameGap(masterLine_));
  }
}

void Line::Forget() {
  received_.clear();
  silence_.Cancel();
  std::erase_if(replies_, [](const Reply& reply) { return !reply.late || reply.sent > 0; });
  if (replies_.empty()) {
    sending_.Cancel();
    lineFree_ = scheduler_.Now();
  } else {
    sending_.At(replies_.front().Due(1));
    lineFree_ = replies_.back().Due(replies_.back().bytes.size());
  }
}

void Line::TakeRequests() {
  while (true) {
    const std::size_t length = RequestLength(received_);
    if (length == 0 || length > received_.size()) return;
    const auto request = std::span<const std::uint8_t>(received_).first(length);
    if (!bus::CrcFits(request)) return;
    Execute(request);
    received_.erase(received_.begin(), received_.begin() + static_cast<std::ptrdiff_t>(length));
  }
}

void Line::EndOfSilence() {
  // Only a request whose function tells no length can still be whole here.
  if (received_.size() <= bus::kLongestFrame && bus::CrcFits(received_)) Execute(received_);
  received_.clear();
}

void Line::Execute(std::span<const std::uint8_t> request) {
  const core::TimePoint now = scheduler_.Now();
  // A pseudo terminal brings the request at once; on a real line its last bit would be here only now.
  const core::TimePoint requestEnd =
      std::max(now, receivedSince_ + masterLine_.TimeOf(static_cast<double>(request.size())));
  receivedSince_ = requestEnd;
  for (Module& module : modules_) {
    module.Advance(now);
    if (module.InForce().line != masterLine_) continue;
    const bool hit = Hit(module);
    Reply reply;
    reply.bytes = module.Execute(request, now, hit && fault_->kind == FaultKind::kException);
    if (reply.bytes.empty()) continue;
    const core::Duration delay = hit ? SpoilNext(reply.bytes) : core::Duration::zero();
    if (reply.bytes.empty()) continue;
    reply.late = delay > core::Duration::zero();
    reply.start = std::max(requestEnd + TurnRound(masterLine_) + module.ReplyDelay() + delay, lineFree_);
    reply.byteTime = masterLine_.TimeOf(1);
    lineFree_ = reply.Due(reply.bytes.size());
    replies_.push_back(std::move(reply));
    if (replies_.size() == 1) sending_.At(replies_.front().Due(1));
  }
}

bool Line::Hit(const Module& module) const {
  return fault_ && (!fault_->address || fault_->address == module.InForce().address);
}

/// Does to the reply what is ordered; gives how much later it comes.
core::Duration Line::SpoilNext(std::vector<std::uint8_t>& reply) {
  const core::Duration delay = fault_->delay;
  Spoil(fault_->kind, reply, noise_);
  if (fault_->replies && --*fault_->replies == 0) fault_.reset();
  return delay;
}

void Line::SendDue() {
  const core::TimePoint now = scheduler_.Now();
  while (!replies_.empty()) {
    Reply& reply = replies_.front();
    std::size_t end = reply.sent;
    while (end < reply.bytes.size() && reply.Due(end + 1) <= now) ++end;
    if (end > reply.sent) send_(std::span<const std::uint8_t>(reply.bytes).subspan(reply.sent, end - reply.sent));
    reply.sent = end;
    if (end < reply.bytes.size()) {
      sending_.At(std::min(std::max(reply.Due(end + 1), now + kSlice), reply.Due(reply.bytes.size())));
      return;
    }
    replies_.pop_front();
  }
}

}  // namespace tarvo::simulator
