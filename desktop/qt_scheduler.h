#pragma once

#include <poll.h>

#include <QObject>
#include <QSocketNotifier>
#include <QTimer>
#include <memory>
#include <vector>

#include "core/scheduler.h"

namespace tarvo::desktop {

/// Turns that run from Qt's event loop, between the window's own events.
class QtScheduler : public core::Scheduler {
 public:
  QtScheduler();
  ~QtScheduler() override;

  core::TimePoint Now() const override { return std::chrono::steady_clock::now(); }

 protected:
  void Wake() override;
  void SpendTime(core::Duration duration) override;
  void PollDescriptors() override;
  void AddWatch(core::DescriptorWatch& watch) override;
  void RemoveWatch(core::DescriptorWatch& watch) override;

 private:
  struct NotifierGoesLater {
    void operator()(QSocketNotifier* notifier) const;
  };
  /// A watch and what wakes the loop for it; one that ends in a turn leaves its place empty until the next.
  struct Watched {
    core::DescriptorWatch* watch = nullptr;
    std::unique_ptr<QSocketNotifier, NotifierGoesLater> notifier;
  };

  void Turn();
  void Arm();

  QTimer timer_;
  core::TimePoint armedFor_ = core::TimePoint::max();
  bool inTurn_ = false;
  std::vector<Watched> watched_;
  std::vector<pollfd> descriptors_;
};

}  // namespace tarvo::desktop
