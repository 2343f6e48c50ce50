#include "desktop/qt_scheduler.h"

#include <QApplication>
#include <QEvent>
#include <QWidget>
#include <algorithm>
#include <chrono>
#include <thread>

namespace tarvo::desktop {

namespace {

/// Paints what is due now: nothing will be painted while a hard wait lasts.
void PaintWhatIsDue() {
  QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
  for (QWidget* window : QApplication::topLevelWidgets()) {
    if (!window->isVisible()) continue;
    QEvent update(QEvent::UpdateRequest);
    QCoreApplication::sendEvent(window, &update);
  }
}

}  // namespace

void QtScheduler::NotifierGoesLater::operator()(QSocketNotifier* notifier) const {
  // It may be the one whose signal led here.
  notifier->setEnabled(false);
  notifier->deleteLater();
}

QtScheduler::QtScheduler() {
  timer_.setSingleShot(true);
  timer_.setTimerType(Qt::PreciseTimer);
  QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { Turn(); });
}

QtScheduler::~QtScheduler() = default;

void QtScheduler::Turn() {
  // A loop inside a turn would only come from a handler that opens one; the turn under way does the work.
  if (inTurn_) return;
  inTurn_ = true;
  timer_.stop();
  armedFor_ = core::TimePoint::max();
  RunTurn();
  inTurn_ = false;
  Arm();
}

void QtScheduler::Wake() {
  if (!inTurn_) Arm();
}

void QtScheduler::Arm() {
  const core::TimePoint now = Now();
  const core::TimePoint due = TurnDue(now) ? now : NextDue();
  if (due == core::TimePoint::max()) return;
  // A timer that is set for an earlier time arms anew when it comes.
  if (timer_.isActive() && armedFor_ <= due) return;
  armedFor_ = due;
  // Rounded up: a timer that comes too early would turn in vain.
  const auto delay = std::chrono::ceil<std::chrono::milliseconds>(std::max(due - now, core::Duration::zero()));
  constexpr std::chrono::milliseconds kLongest = std::chrono::hours(1);
  timer_.start(std::min(delay, kLongest));
}

void QtScheduler::SpendTime(core::Duration duration) {
  PaintWhatIsDue();
  std::this_thread::sleep_for(duration);
}

void QtScheduler::PollDescriptors() {
  std::erase_if(watched_, [](const Watched& watched) { return watched.watch == nullptr; });
  if (watched_.empty()) return;
  descriptors_.clear();
  for (const Watched& watched : watched_) descriptors_.push_back({watched.watch->Descriptor(), POLLIN, 0});
  if (poll(descriptors_.data(), descriptors_.size(), 0) <= 0) return;
  for (std::size_t i = 0; i < descriptors_.size(); ++i) {
    const short events = descriptors_[i].revents;
    // A watch that an earlier one of this round ended is not told.
    if (events == 0 || watched_[i].watch == nullptr) continue;
    core::DescriptorEvents tell;
    tell.readable = (events & POLLIN) != 0;
    tell.lost = (events & (POLLHUP | POLLERR | POLLNVAL)) != 0;
    // A lost descriptor would wake the loop for ever. What it still holds is taken in the turns that come anyway.
    if (tell.lost) watched_[i].notifier->setEnabled(false);
    watched_[i].watch->Tell(tell);
  }
}

void QtScheduler::AddWatch(core::DescriptorWatch& watch) {
  Watched watched;
  watched.watch = &watch;
  watched.notifier.reset(new QSocketNotifier(watch.Descriptor(), QSocketNotifier::Read));
  QObject::connect(watched.notifier.get(), &QSocketNotifier::activated, &timer_, [this] { Turn(); });
  watched_.push_back(std::move(watched));
}

void QtScheduler::RemoveWatch(core::DescriptorWatch& watch) {
  const auto found =
      std::find_if(watched_.begin(), watched_.end(), [&](const Watched& watched) { return watched.watch == &watch; });
  if (found == watched_.end()) return;
  found->notifier.reset();
  found->watch = nullptr;
  if (!inTurn_) watched_.erase(found);
}

}  // namespace tarvo::desktop
