#pragma once

#include "bench/report.h"

namespace tarvo::bench {

struct Options {
  unsigned seed = 20260101;
  bool quick = false;  ///< a tenth of everything: to see that the bench works, not to measure
};

// The parts of the table. Each throws `std::exception` when it cannot measure at all.

/// Latency, processor time and time over the line time, beside libmodbus.
void MeasureLatency(const Options& options, Report& report);
/// Wrong data accepted while replies are spoiled, beside libmodbus.
void MeasureFaults(const Options& options, Report& report);
/// Decode and notice of a poll.
void MeasurePoll(const Options& options, Report& report);
/// The console as a process in a session.
void MeasureConsole(const Options& options, Report& report);
/// The window as a process in a session, and its start, on an X server of its own.
void MeasureWindow(const Options& options, Report& report);

}  // namespace tarvo::bench
