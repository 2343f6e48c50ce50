#include "bench/peer.h"

#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <ctime>
#include <deque>
#include <new>
#include <random>
#include <span>
#include <stdexcept>
#include <utility>

#include "bus/line_settings.h"
#include "bus/rtu_frame.h"

namespace tarvo::bench {

namespace {

using platform::FileDescriptor;

/// Before a byte is due the peer stays awake that long, so that it goes out in time.
constexpr core::Duration kAwake = core::microseconds(150);

core::TimePoint Now() {
  return std::chrono::steady_clock::now();
}

struct Terminal {
  FileDescriptor master;
  FileDescriptor slave;  // kept open, so that the terminal never hangs up
  std::string device;
};

Terminal MakeTerminal() {
  Terminal terminal;
  terminal.master = FileDescriptor(posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
  std::array<char, 64> name{};
  const int master = terminal.master.Get();
  if (master < 0 || grantpt(master) != 0 || unlockpt(master) != 0 || ptsname_r(master, name.data(), name.size()) != 0) {
    throw std::runtime_error("no pseudo terminal can be made");
  }
  terminal.device = name.data();
  terminal.slave = FileDescriptor(open(name.data(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
  termios settings{};
  if (!terminal.slave.Valid() || tcgetattr(terminal.slave.Get(), &settings) != 0) {
    throw std::runtime_error(terminal.device + " cannot be opened");
  }
  cfmakeraw(&settings);
  tcsetattr(terminal.slave.Get(), TCSANOW, &settings);
  return terminal;
}

using Bytes = std::vector<std::uint8_t>;

/// The module at the end of one line.
class Module {
 public:
  Module(const PeerPlan& plan, Terminal terminal, unsigned seed, Peer::Counts& counts)
      : plan_(plan), terminal_(std::move(terminal)), random_(seed), counts_(counts) {
    line_.baud = plan.baud;
  }

  int Descriptor() const { return terminal_.master.Get(); }
  core::TimePoint NextDue() const { return pieces_.empty() ? core::TimePoint::max() : pieces_.front().due; }

  void Read() {
    std::array<std::uint8_t, 512> buffer{};
    const ssize_t count = read(Descriptor(), buffer.data(), buffer.size());
    if (count <= 0) return;
    heard_ = Now();
    input_.insert(input_.end(), buffer.begin(), buffer.begin() + count);
    while (input_.size() >= kRequestLength) {
      const std::span<const std::uint8_t> frame = std::span(input_).first(kRequestLength);
      const bool asks = frame[0] == Peer::kSlave && frame[1] == bus::kReadHoldingRegisters && bus::CrcFits(frame);
      if (asks) Answer(frame[2] << 8 | frame[3], frame[4] << 8 | frame[5]);
      input_.erase(input_.begin(), input_.begin() + (asks ? kRequestLength : 1));
    }
  }

  void SendWhatIsDue() {
    while (NextDue() <= Now()) {
      const Bytes& bytes = pieces_.front().bytes;
      // What does not fit is lost, as on a line that nobody reads.
      [[maybe_unused]] const ssize_t sent = write(Descriptor(), bytes.data(), bytes.size());
      pieces_.pop_front();
    }
  }

 private:
  struct Piece {
    core::TimePoint due;
    Bytes bytes;
  };

  static constexpr std::ptrdiff_t kRequestLength = 8;

  void Answer(int address, int count) {
    ++counts_.requests;
    if (count < 1 || count > 125) return;
    Bytes reply = {Peer::kSlave, bus::kReadHoldingRegisters, static_cast<std::uint8_t>(2 * count)};
    for (int i = 0; i < count; ++i) {
      const unsigned word = WordOf(address + i);
      reply.push_back(static_cast<std::uint8_t>(word >> 8));
      reply.push_back(static_cast<std::uint8_t>(word & 0xFF));
    }
    ++reads_;
    core::Duration late{};
    if (Chance(plan_.faultPercent, 100)) {
      if (Chance(1, 2)) {
        ++counts_.late;
        late = plan_.patience + plan_.patience * Below(3001) / 1000;
      } else {
        ++counts_.spoiled;
        Spoil(reply);
        if (reply.empty()) return;
        Send(std::move(reply), late);
        return;
      }
    }
    Seal(reply);
    Send(std::move(reply), late);
  }

  /// One of the faults that are told at once; silence leaves nothing.
  void Spoil(Bytes& reply) {
    switch (Below(6)) {
      case 0:
        reply.clear();
        return;
      case 1:
        Seal(reply);
        reply[Below(static_cast<unsigned>(reply.size()))] ^= static_cast<std::uint8_t>(1U << Below(8));
        return;
      case 2:
        Seal(reply);
        reply.resize(1 + Below(static_cast<unsigned>(reply.size()) - 1));
        return;
      case 3:
        reply[0] = static_cast<std::uint8_t>(2 + Below(250));
        Seal(reply);
        return;
      case 4:
        reply = {Peer::kSlave, bus::kReadHoldingRegisters | bus::kExceptionBit,
                 static_cast<std::uint8_t>(1 + Below(8))};
        Seal(reply);
        return;
      default: {
        Seal(reply);
        Bytes noise(1 + Below(12));
        for (std::uint8_t& byte : noise) byte = static_cast<std::uint8_t>(Below(256));
        reply.insert(reply.begin(), noise.begin(), noise.end());
      }
    }
  }

  static void Seal(Bytes& frame) {
    frame.resize(frame.size() + 2);
    bus::AppendCrc(frame, frame.size() - 2);
  }

  /// A module answers one request after the other, so a late reply holds up those behind it.
  void Send(Bytes reply, core::Duration late) {
    const bool atOnce = plan_.pace == PeerPlan::Pace::kAtOnce;
    const core::TimePoint begin =
        std::max(heard_ + late + (atOnce ? core::Duration() : line_.TimeOf(kRequestLength)), busyUntil_);
    busyUntil_ = begin + (atOnce ? core::Duration() : line_.TimeOf(static_cast<double>(reply.size())));
    if (plan_.pace == PeerPlan::Pace::kByteByByte) {
      for (std::size_t i = 0; i < reply.size(); ++i) {
        pieces_.push_back({begin + line_.TimeOf(static_cast<double>(i + 1)), {reply[i]}});
      }
    } else {
      pieces_.push_back({busyUntil_, std::move(reply)});
    }
  }

  unsigned WordOf(int address) const {
    if (plan_.registers == PeerPlan::Registers::kNumbered) return static_cast<unsigned>(address) & 0xFFFF;
    // A page shows every fourth poll: the bits must be others at each of those too.
    const bool on = ((reads_ + reads_ / 4) & 1) != 0;
    // 40001 is the identity, 40002 the inputs and overflows, then five counters, filter, flags and communication.
    switch (address) {
      case 0:
        return 0x0103;
      case 1:
        return on ? 0x1F1F : 0x0000;
      case 7:
        return 1 + reads_ % 254;
      case 8:
        return on ? 0x00BF : 0x0000;
      case 9:
        return 0x0101 + reads_ % 8;
      default:
        return (reads_ * 997 + static_cast<unsigned>(address) * 11000) & 0xFFFF;
    }
  }

  unsigned Below(unsigned limit) { return std::uniform_int_distribution<unsigned>(0, limit - 1)(random_); }
  bool Chance(unsigned part, unsigned whole) { return Below(whole) < part; }

  const PeerPlan& plan_;
  Terminal terminal_;
  std::mt19937 random_;
  Peer::Counts& counts_;
  bus::LineSettings line_;
  Bytes input_;
  std::deque<Piece> pieces_;
  core::TimePoint heard_{};
  core::TimePoint busyUntil_{};
  unsigned reads_ = 0;
};

[[noreturn]] void Play(const PeerPlan& plan, std::vector<Terminal> terminals, Peer::Counts& counts) {
  std::vector<Module> modules;
  std::vector<pollfd> descriptors;
  for (Terminal& terminal : terminals) {
    const auto number = static_cast<unsigned>(modules.size());
    modules.emplace_back(plan, std::move(terminal), plan.seed + number, counts);
    descriptors.push_back({modules.back().Descriptor(), POLLIN, 0});
  }
  while (true) {
    core::TimePoint next = core::TimePoint::max();
    for (const Module& module : modules) next = std::min(next, module.NextDue());
    timespec wait{};
    if (next != core::TimePoint::max()) {
      const core::Duration left = std::max(next - kAwake - Now(), core::Duration());
      const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(left);
      wait = {seconds.count(), (left - seconds).count()};
    }
    if (ppoll(descriptors.data(), descriptors.size(), next == core::TimePoint::max() ? nullptr : &wait, nullptr) > 0) {
      for (std::size_t i = 0; i < modules.size(); ++i) {
        if (descriptors[i].revents != 0) modules[i].Read();
      }
    }
    for (Module& module : modules) module.SendWhatIsDue();
  }
}

}  // namespace

Peer::Peer(const PeerPlan& plan) {
  void* shared = mmap(nullptr, sizeof(Counts), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (shared == MAP_FAILED) throw std::runtime_error("no memory to share with the peer");
  counts_ = new (shared) Counts;

  std::vector<Terminal> terminals;
  for (int i = 0; i < plan.lines; ++i) {
    terminals.push_back(MakeTerminal());
    devices_.push_back(terminals.back().device);
  }
  const pid_t parent = getpid();
  process_ = fork();
  if (process_ < 0) throw std::runtime_error("the peer cannot be started");
  if (process_ > 0) return;
  // Wakes up when it is due, not up to 50 us later; and does not outlive whoever measures.
  prctl(PR_SET_TIMERSLACK, 1);
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (getppid() != parent) _exit(1);
  try {
    Play(plan, std::move(terminals), *counts_);
  } catch (...) {
    _exit(1);
  }
}

Peer::~Peer() {
  kill(process_, SIGKILL);
  waitpid(process_, nullptr, 0);
  munmap(counts_, sizeof(Counts));
}

}  // namespace tarvo::bench
