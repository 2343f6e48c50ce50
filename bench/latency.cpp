#include <time.h>

#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/masters.h"
#include "bench/peer.h"
#include "bench/sections.h"

namespace tarvo::bench {

namespace {

constexpr double kMicrosecond = 1e-6;

double Seconds(core::Duration duration) {
  return std::chrono::duration<double>(duration).count();
}

double ProcessorTime() {
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

struct Samples {
  std::vector<double> latency;  // seconds
  double processor = 0;         // seconds in all

  double Microseconds(double part) const { return Quantile(latency, part) / kMicrosecond; }
  double ProcessorMicroseconds() const { return processor / static_cast<double>(latency.size()) / kMicrosecond; }
};

struct Compared {
  Samples tarvo;
  Samples libmodbus;
};

template <class Master>
void Exchange(Master& master, int address, Samples& samples) {
  const double processor = ProcessorTime();
  const auto start = std::chrono::steady_clock::now();
  const bool good = master.Read(address);
  samples.latency.push_back(Seconds(std::chrono::steady_clock::now() - start));
  samples.processor += ProcessorTime() - processor;
  if (!good || !AnswerFits(master, address)) throw std::runtime_error("a sound line gave no good reply");
}

/// Exchanges by turns, each after a pause in which the line is silent for as long as a request must find it.
Compared Compare(const PeerPlan& plan, int exchanges, core::Duration pause) {
  constexpr int kWarmUp = 20;
  const Peer peer(plan);
  platform::PollLoop loop;
  MasterSettings settings;
  settings.baud = plan.baud;
  TarvoMaster tarvo(loop, peer.Device(0), settings);
  LibmodbusMaster libmodbus(peer.Device(1), settings);
  const auto rest = [&] { loop.RunUntil([] { return false; }, pause); };
  Compared compared;
  for (int i = 0; i < exchanges + kWarmUp; ++i) {
    if (i == kWarmUp) compared = {};
    const int address = 10 + i % 9000;
    for (const int turn : {i % 2, 1 - i % 2}) {
      rest();
      if (turn == 0) {
        Exchange(tarvo, address, compared.tarvo);
      } else {
        Exchange(libmodbus, address, compared.libmodbus);
      }
    }
  }
  return compared;
}

/// In how many of `kParts` equal parts of the run our p99 was the lower one: a difference that lies in the masters
/// shows in most of them, chance in about half.
constexpr int kParts = 20;

int PartsWithLowerP99(const Compared& compared) {
  const auto size = static_cast<std::ptrdiff_t>(compared.tarvo.latency.size()) / kParts;
  const auto p99Of = [size](const Samples& samples, int part) {
    const auto begin = samples.latency.begin() + part * size;
    return Quantile(std::vector<double>(begin, begin + size), 0.99);
  };
  int lower = 0;
  for (int part = 0; part < kParts; ++part) {
    if (p99Of(compared.tarvo, part) <= p99Of(compared.libmodbus, part)) ++lower;
  }
  return lower;
}

void OverTheLineTime(int baud, int exchanges, Report& report) {
  constexpr double kBar = 0.15;
  Tell(std::to_string(exchanges) + " exchanges each at the pace of a line at " + std::to_string(baud));
  PeerPlan plan;
  plan.lines = 2;
  plan.pace = PeerPlan::Pace::kByteByByte;
  plan.baud = baud;
  bus::LineSettings line;
  line.baud = baud;
  constexpr double kCharacters = 8 + 5 + 2 * kBlock;  // of request and reply
  const double lineTime = Seconds(line.TimeOf(kCharacters));
  const Compared compared = Compare(plan, exchanges, line.TimeOf(3.5) + core::milliseconds(2));
  const auto over = [&](const Samples& samples) { return (Quantile(samples.latency, 0.5) - lineTime) * 1000; };
  const double ours = over(compared.tarvo);
  report.Add({"over the line time at " + std::to_string(baud) + " baud, median", Number(ours, 3) + " ms",
              "libmodbus " + Number(over(compared.libmodbus), 3) + " ms", "at most " + Number(kBar, 2) + " ms",
              ours <= kBar});
}

}  // namespace

void MeasureLatency(const Options& options, Report& report) {
  constexpr double kSlowerAtMost = 5;
  // What a small single-threaded master needed beside libmodbus when the bar was set.
  constexpr double kProcessorRatio = 17.0 / 13.0;
  const int exchanges = options.quick ? 500 : 8000;
  Tell(std::to_string(exchanges) + " exchanges each with a peer that answers at once");
  PeerPlan plan;
  plan.lines = 2;
  plan.baud = 57600;
  // After a request the master takes the line for busy as long as the request takes at this speed.
  const Compared compared = Compare(plan, exchanges, core::milliseconds(4));
  const Samples& ours = compared.tarvo;
  const Samples& theirs = compared.libmodbus;

  const auto row = [&](const std::string& what, double mine, double other, const std::string& bar, double limit) {
    report.Add({what, Number(mine, 1) + " us", "libmodbus " + Number(other, 1) + " us",
                bar + ": " + Number(limit, 1) + " us", mine <= limit});
  };
  const double p50 = theirs.Microseconds(0.5);
  const double p99 = theirs.Microseconds(0.99);
  const double processor = theirs.ProcessorMicroseconds();
  row("exchange, latency p50", ours.Microseconds(0.5), p50, "libmodbus + 5 us", p50 + kSlowerAtMost);
  row("exchange, latency p99 (the lower one in " + std::to_string(PartsWithLowerP99(compared)) + " of " +
          std::to_string(kParts) + " parts of the run)",
      ours.Microseconds(0.99), p99, "libmodbus", p99);
  row("exchange, processor time", ours.ProcessorMicroseconds(), processor, "1.3 x libmodbus",
      processor * kProcessorRatio);

  OverTheLineTime(9600, options.quick ? 30 : 300, report);
  OverTheLineTime(38400, options.quick ? 60 : 600, report);
}

}  // namespace tarvo::bench
