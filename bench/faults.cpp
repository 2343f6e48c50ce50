#include <chrono>
#include <cstdint>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "bench/masters.h"
#include "bench/peer.h"
#include "bench/sections.h"

namespace tarvo::bench {

namespace {

/// Lines that are driven at the same time: most of an exchange with a fault is waiting.
constexpr int kLines = 16;
constexpr int kBaud = 57600;
constexpr core::Duration kReplyTimeout = core::milliseconds(20);

struct Count {
  int good = 0;
  int failed = 0;
  int wrong = 0;  // taken for good, with the data of another request or of none
  // Replies of the peer, those to the master's own probes and further tries too.
  std::uint64_t requests = 0;
  std::uint64_t late = 0;
  std::uint64_t spoiled = 0;

  void Add(const Count& other) {
    good += other.good;
    failed += other.failed;
    wrong += other.wrong;
    requests += other.requests;
    late += other.late;
    spoiled += other.spoiled;
  }
  int All() const { return good + failed + wrong; }
  std::string Text() const { return std::to_string(wrong) + " of " + std::to_string(All()); }
};

/// The number of a request, which is the address that it asks for. Registers below are those of the master's own
/// probes.
int NumberOf(int exchange) {
  return 10 + exchange % 9900;
}

template <class Master>
void Judge(const Master& master, int number, bool good, Count& count) {
  if (!good) {
    ++count.failed;
  } else if (AnswerFits(master, number)) {
    ++count.good;
  } else {
    ++count.wrong;
  }
}

PeerPlan FaultyPeer(unsigned seed) {
  PeerPlan plan;
  plan.lines = kLines;
  plan.faultPercent = 20;
  plan.patience = kReplyTimeout;
  plan.seed = seed;
  return plan;
}

Count SumOf(const std::vector<Count>& lines, const Peer& peer) {
  Count sum;
  for (const Count& line : lines) sum.Add(line);
  sum.requests = peer.Seen().requests;
  sum.late = peer.Seen().late;
  sum.spoiled = peer.Seen().spoiled;
  return sum;
}

core::Task<> Drive(TarvoMaster& master, int exchanges, Count& count, int& running) {
  for (int i = 0; i < exchanges; ++i) {
    const int number = NumberOf(i);
    const bool good = co_await master.ReadAsTask(number);
    Judge(master, number, good, count);
  }
  --running;
}

Count CountTarvo(unsigned seed, int exchanges, int tries) {
  const Peer peer(FaultyPeer(seed));
  platform::PollLoop loop;
  std::vector<std::unique_ptr<TarvoMaster>> masters;
  std::vector<Count> counts(kLines);
  int running = kLines;
  // Declared last: ends before the masters that its tasks use.
  core::Scope tasks([](const std::exception_ptr& fault) { std::rethrow_exception(fault); });
  for (std::size_t line = 0; line < kLines; ++line) {
    masters.push_back(
        std::make_unique<TarvoMaster>(loop, peer.Device(line), MasterSettings{kBaud, kReplyTimeout, tries}));
    tasks.Spawn(Drive(*masters.back(), exchanges / kLines, counts[line], running));
  }
  loop.RunUntil([&] { return running == 0; });
  return SumOf(counts, peer);
}

Count CountLibmodbus(unsigned seed, int exchanges, bool flush) {
  const Peer peer(FaultyPeer(seed));
  std::vector<std::unique_ptr<LibmodbusMaster>> masters;
  for (std::size_t line = 0; line < kLines; ++line) {
    masters.push_back(std::make_unique<LibmodbusMaster>(peer.Device(line), MasterSettings{kBaud, kReplyTimeout, 1}));
  }
  std::vector<Count> counts(kLines);
  std::vector<std::jthread> threads;
  for (std::size_t line = 0; line < kLines; ++line) {
    threads.emplace_back([&master = *masters[line], &count = counts[line], exchanges, flush] {
      for (int i = 0; i < exchanges / kLines; ++i) {
        // It leaves the silence before a request to its user.
        std::this_thread::sleep_for(core::microseconds(1750));
        const int number = NumberOf(i);
        if (flush) master.Flush();
        const bool good = master.Read(number);
        Judge(master, number, good, count);
      }
    });
  }
  threads.clear();
  return SumOf(counts, peer);
}

}  // namespace

void MeasureFaults(const Options& options, Report& report) {
  const int ours = options.quick ? 8'000 : 80'000;
  const int theirs = options.quick ? 2'000 : 20'000;
  const std::string seed = "seed " + std::to_string(options.seed);
  Tell(std::to_string(2 * ours) + " exchanges with 20 % spoiled replies, " + seed);
  const Count one = CountTarvo(options.seed, ours, 1);
  const Count three = CountTarvo(options.seed, ours, 3);
  Tell("the same for libmodbus, " + std::to_string(theirs) + " exchanges without and with a flush before each request");
  const Count plain = CountLibmodbus(options.seed, theirs, false);
  const Count flushed = CountLibmodbus(options.seed, theirs, true);

  const auto served = [](const Count& count) {
    return Number(100.0 * (count.good + count.wrong) / count.All(), 1) + " %";
  };
  Count all = one;
  all.Add(three);
  report.Add({"wrong data taken, 20 % faults, " + seed, all.Text(),
              "libmodbus " + plain.Text() + ", with a flush " + flushed.Text(), "0 of 100000", all.wrong == 0});
  const auto share = [&](std::uint64_t count) {
    return Number(100.0 * static_cast<double>(count) / static_cast<double>(all.requests), 1) + " %";
  };
  report.Add({"the same: replies that were late / spoiled otherwise", share(all.late) + " / " + share(all.spoiled), "",
              "", std::nullopt});
  report.Add({"the same: exchanges that gave data, one try / three tries", served(one) + " / " + served(three),
              "libmodbus " + served(plain) + ", with a flush " + served(flushed), "", std::nullopt});
}

}  // namespace tarvo::bench
