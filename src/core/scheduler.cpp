#include "core/scheduler.h"

#include <utility>

namespace tarvo::core {

Call::Call(Scheduler& scheduler, std::function<void()> function)
    : scheduler_(scheduler), function_(std::move(function)) {}

void Call::Post() {
  if (Linked()) return;
  scheduler_.posted_.PushBack(*this);
  scheduler_.Wake();
}

void Call::After(Duration delay) {
  At(scheduler_.Now() + delay);
}

void Call::At(TimePoint due) {
  scheduler_.QueueTimed(scheduler_.timers_, *this, due);
}

void Call::ArriveAfter(Duration delay) {
  scheduler_.QueueTimed(scheduler_.arrivals_, *this, scheduler_.Now() + delay);
}

void Call::AtTurnEnd() {
  if (Linked()) return;
  scheduler_.turnEnd_.PushBack(*this);
  scheduler_.Wake();
}

DescriptorWatch::DescriptorWatch(Scheduler& scheduler, int descriptor, std::function<void(DescriptorEvents)> onEvents)
    : scheduler_(scheduler), descriptor_(descriptor), onEvents_(std::move(onEvents)) {
  scheduler_.AddWatch(*this);
}

DescriptorWatch::~DescriptorWatch() {
  scheduler_.RemoveWatch(*this);
}

void Scheduler::Block(Duration duration) {
  RunTurnEnd();
  SpendTime(duration);
  ++blocks_;
}

void Scheduler::RunTurn() {
  const std::uint64_t blocks = blocks_;
  PollDescriptors();

  // Only what was posted before this turn: a call that posts itself again waits for the next one.
  IntrusiveList<Call> posted;
  posted.TakeAll(posted_);
  while (Call* call = posted.PopFront()) call->function_();

  const TimePoint now = Now();
  RunDue(arrivals_, now, blocks);
  RunDue(timers_, now, blocks);
  RunTurnEnd();
}

bool Scheduler::TurnDue(TimePoint time) const {
  return !posted_.Empty() || !turnEnd_.Empty() || NextDue() <= time;
}

TimePoint Scheduler::NextDue() const {
  TimePoint next = TimePoint::max();
  if (const Call* first = arrivals_.Front()) next = first->due_;
  if (const Call* first = timers_.Front(); first != nullptr && first->due_ < next) next = first->due_;
  return next;
}

void Scheduler::QueueTimed(IntrusiveList<Call>& queue, Call& call, TimePoint due) {
  call.Unlink();
  call.due_ = due;
  call.round_ = round_;
  // Equal times keep the order in which they were asked for.
  Call* place = queue.Front();
  while (place != nullptr && place->due_ <= due) place = queue.After(place);
  queue.InsertBefore(place, call);
  Wake();
}

void Scheduler::RunDue(IntrusiveList<Call>& queue, TimePoint now, std::uint64_t blocks) {
  ++round_;
  Call* call = queue.Front();
  while (call != nullptr && call->due_ <= now && blocks_ == blocks) {
    if (call->round_ == round_) {
      call = queue.After(call);
      continue;
    }
    call->Unlink();
    call->function_();
    call = queue.Front();
  }
}

void Scheduler::RunTurnEnd() {
  IntrusiveList<Call> ending;
  ending.TakeAll(turnEnd_);
  while (Call* call = ending.PopFront()) call->function_();
}

}  // namespace tarvo::core
