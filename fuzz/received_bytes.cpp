// What arrives on a serial line, and when: the input decides on the requests, on the bytes that come for each frame, on
// delays and splits, on losses of the port and on what the program does meanwhile.
//
// Two kinds of peer. Anything at all may come from the one: still nothing hangs, and data is only taken from a whole
// valid reply that came after the request. The other is a module behind a bad line: late, damaged, torn or no replies,
// but in the order of the requests. Its data is only taken as the answer to the request that it was meant for.

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <utility>
#include <vector>

#include "bus/modcom/modcom.h"
#include "bus/rtu_frame.h"
#include "core/virtual_scheduler.h"
#include "fuzz/input.h"
#include "support/bare_window.h"
#include "support/memory_port.h"
#include "support/slave_frames.h"
#include "support/task_runner.h"
#include "view/screen.h"

namespace tarvo::bus {
namespace {

using core::Duration;
using core::milliseconds;
using fuzz::Check;
using test::Bytes;

/// What the program sent last, and what it was given since.
struct Traffic {
  Bytes sent;
  Bytes received;
  int frames = 0;    ///< sent so far
  int arrivals = 0;  ///< times that bytes came
};

class TappedPort final : public BytePort, private BytePortListener {
 public:
  TappedPort(std::unique_ptr<BytePort> port, Traffic& traffic) : port_(std::move(port)), traffic_(traffic) {
    port_->SetListener(this);
  }

  void SetListener(BytePortListener* listener) override { listener_ = listener; }
  bool Write(std::span<const std::uint8_t> bytes) override {
    traffic_.sent.assign(bytes.begin(), bytes.end());
    traffic_.received.clear();
    ++traffic_.frames;
    return port_->Write(bytes);
  }
  std::size_t Take(std::span<std::uint8_t> into) override {
    const std::size_t count = port_->Take(into);
    traffic_.received.insert(traffic_.received.end(), into.begin(), into.begin() + static_cast<std::ptrdiff_t>(count));
    return count;
  }
  void DiscardInput() override { port_->DiscardInput(); }
  core::Status SetLine(const LineSettings& line) override { return port_->SetLine(line); }

 private:
  void BytesArrived() override {
    ++traffic_.arrivals;
    if (listener_ != nullptr) listener_->BytesArrived();
  }
  void PortLost() override {
    if (listener_ != nullptr) listener_->PortLost();
  }

  std::unique_ptr<BytePort> port_;
  Traffic& traffic_;
  BytePortListener* listener_ = nullptr;
};

class TappedPorts final : public PortOpener {
 public:
  TappedPorts(test::MemoryPorts& ports, Traffic& traffic) : ports_(ports), traffic_(traffic) {}

  Opened Open(int comPort, const LineSettings& line) override {
    Opened opened = ports_.Open(comPort, line);
    if (opened.port) opened.port = std::make_unique<TappedPort>(std::move(opened.port), traffic_);
    return opened;
  }

 private:
  test::MemoryPorts& ports_;
  Traffic& traffic_;
};

constexpr int kMostWords = 125;

/// The registers in the reply to the frame of that number: no two replies have a word in common.
std::vector<int> WordsFor(int frame, int count) {
  std::vector<int> words;
  for (int i = 0; i < count; ++i) words.push_back((frame * 128 + i) & 0xFFFF);
  return words;
}

/// What a module answers to a frame that is the program's `number`th.
Bytes ReplyTo(std::span<const std::uint8_t> frame, int number) {
  if (frame[1] != kReadHoldingRegisters) return {frame.begin(), frame.end()};
  return test::ReadReply(frame[0], WordsFor(number, frame[4] << 8 | frame[5]));
}

class Peer {
 public:
  Peer(core::VirtualScheduler& scheduler, test::MemoryLine& line, const Traffic& traffic, fuzz::Input& input,
       bool anything)
      : scheduler_(scheduler), line_(line), traffic_(traffic), input_(input), anything_(anything) {
    line_.SetRecording(false);
    line_.OnWrite = [this](std::span<const std::uint8_t> frame) { Answer(frame); };
  }

  bool Anything() const { return anything_; }

  /// Bytes that no frame asked for.
  void Babble() {
    if (anything_) SendAnything();
  }

 private:
  void Answer(std::span<const std::uint8_t> frame) {
    reply_ = ReplyTo(frame, traffic_.frames);
    if (anything_) {
      do SendAnything();
      while (input_.Below(4) > 1);
    } else {
      SendInOrder(frame);
    }
  }

  void SendAnything() {
    Bytes bytes = reply_;
    switch (input_.Below(8)) {
      case 0:
        break;
      case 1:
        return;
      case 2: {
        const auto raw = input_.Bytes(static_cast<std::size_t>(input_.Below(40)));
        bytes.assign(raw.begin(), raw.end());
        break;
      }
      case 3:
        bytes = earlier_;
        break;
      case 4:
        bytes = test::ExceptionReply(traffic_.sent.empty() ? 1 : traffic_.sent[0], input_.Below(17), input_.Byte());
        break;
      case 5:
        Damage(bytes);
        break;
      case 6: {
        // As the reply, but for one byte of its head and the right CRC for it.
        if (bytes.size() < 4) break;
        bytes.resize(bytes.size() - 2);
        bytes[static_cast<std::size_t>(input_.Below(3))] = input_.Byte();
        bytes = test::WithCrc(std::move(bytes));
        break;
      }
      default:
        line_.Lose(Delay());
        return;
    }
    earlier_ = reply_;
    if (bytes.empty()) return;
    line_.DeliverOneByOne(bytes, Delay(), Gap());
  }

  void SendInOrder(std::span<const std::uint8_t> frame) {
    Bytes bytes(static_cast<std::size_t>(input_.Below(3)), 0xFF);
    switch (input_.Below(8)) {
      case 0:
        bytes.insert(bytes.end(), reply_.begin(), reply_.end());
        break;
      case 1:
        return;
      case 2:
        bytes = reply_;
        Damage(bytes);
        break;
      case 3:
        bytes.assign(reply_.begin(), reply_.begin() + input_.Byte() % static_cast<std::ptrdiff_t>(reply_.size()));
        break;
      case 4:
        bytes = test::ExceptionReply(frame[0], frame[1], 1 + input_.Below(4));
        break;
      case 5:
        line_.Lose(Delay());
        break;
      default:
        bytes.insert(bytes.end(), reply_.begin(), reply_.end());
        break;
    }
    if (bytes.empty()) return;
    const Duration gap = Gap();
    const core::TimePoint begin = std::max(scheduler_.Now() + Delay(), lastSent_ + core::microseconds(1));
    lastSent_ = begin + gap * static_cast<int>(bytes.size());
    line_.DeliverOneByOne(bytes, begin - scheduler_.Now(), gap);
  }

  void Damage(Bytes& bytes) {
    if (!bytes.empty()) bytes[input_.Byte() % bytes.size()] ^= static_cast<std::uint8_t>(1 << input_.Below(8));
  }

  Duration Delay() {
    const int delay = input_.Byte();
    return delay < 128 ? milliseconds(delay / 8) : milliseconds((delay - 127) * 10);
  }
  Duration Gap() {
    constexpr std::array kGaps = {core::microseconds(0), core::microseconds(1040), core::microseconds(100),
                                  core::microseconds(7000)};
    return kGaps[static_cast<std::size_t>(input_.Below(static_cast<int>(kGaps.size())))];
  }

  core::VirtualScheduler& scheduler_;
  test::MemoryLine& line_;
  const Traffic& traffic_;
  fuzz::Input& input_;
  bool anything_;
  Bytes reply_;    // to the last frame
  Bytes earlier_;  // to one before it
  core::TimePoint lastSent_{};
};

/// True when `received` holds, anywhere, the valid reply to `request` with these words.
bool HoldsReply(const Bytes& received, const Bytes& request, const std::vector<int>& words) {
  const Bytes reply = test::ReadReply(request[0], words);
  return !std::ranges::search(received, reply).empty();
}

class Session {
 public:
  explicit Session(fuzz::Input input)
      : input_(input), peer_(scheduler_, line_, traffic_, input_, input_.Below(2) == 1) {
    memoryPorts_.Connect(1, line_);
    ModCom1.ReplyTimeout = 100;
    scheduler_.Run(milliseconds(100));
  }
  ~Session() { tasks_.Cancel(); }

  void Run() {
    constexpr int kMostSteps = 60;
    Open();
    for (int step = 0; step < kMostSteps && !input_.Empty(); ++step) Step();
    Check(scheduler_.RunUntil([this] { return tasks_.Idle(); }, std::chrono::hours(1)), "every request ends");
    Check(tasks_.Faults().empty(), "no request throws");
    Check(!ModCom1.CommBusy(), "the bus is free when nothing runs");
    Recover();
  }

 private:
  /// From here on the peer answers each frame, and at once.
  void Recover() {
    input_ = fuzz::Input(nullptr, 0);
    ModCom1.Settings = "9600,n,8,1";
    ModCom1.ModuleAddr = 1;
    ModCom1.LinkParamB = 3;
    (void)ModCom1.SetPortOpen(false);
    // All that is on its way has come by then, a loss of the port too.
    scheduler_.Run(std::chrono::minutes(1));
    Open();
    mustBeGood_ = true;
    Issue(ReadBlock(state::Register(40002), 9));
    Finish();
  }

  void Step() {
    switch (input_.Below(16)) {
      case 0:
      case 1:
      case 2:
        Issue(ReadWord(Target()));
        Finish();
        break;
      case 3:
      case 4:
        Issue(ReadBlock(Target(), input_.Below(10) + 1));
        Finish();
        break;
      case 5:
        Issue(ReadBlock(Target(), input_.Below(kMostWords + 2)));
        Finish();
        break;
      case 6:
        Issue(Write(Target(), input_.Word()));
        Finish();
        break;
      case 7:
        Issue(ReadWord(Target()));
        break;
      case 8:
        Issue(Write(Target(), input_.Word()));
        break;
      case 9:
        (void)ModCom1.SetPortOpen(false);
        break;
      case 10:
        Open();
        break;
      case 11:
        scheduler_.Run(milliseconds(input_.Byte()));
        break;
      case 12:
        tasks_.Cancel();
        break;
      case 13:
        peer_.Babble();
        break;
      case 14: {
        constexpr std::array kSettings = {"9600,n,8,1", "57600,e,8,1", "1200,o,8,1", "fast"};
        ModCom1.Settings = kSettings[static_cast<std::size_t>(input_.Below(static_cast<int>(kSettings.size())))];
        (void)ModCom1.ResetLink();
        break;
      }
      default:
        ModCom1.LinkParamB = input_.Below(5);
        ModCom1.ReplyTimeout = 20 + input_.Below(100);
        ModCom1.ModuleAddr = input_.Below(4) == 0 ? input_.Byte() : 1;
        break;
    }
  }

  void Open() {
    line_.PlugIn();
    (void)ModCom1.SetPortOpen(true);
  }
  void Issue(core::Task<> request) { tasks_.Start(std::move(request)); }
  void Finish() {
    Check(scheduler_.RunUntil([this] { return tasks_.Idle(); }, std::chrono::minutes(10)), "a request ends");
  }
  state::Register Target() { return state::Register(40001 + input_.Below(20)); }

  core::Task<> ReadWord(state::Register source) {
    const state::Word before(0xBEEFU);
    state::Word data = before;
    const Began began = Begin(1);
    const Outcome outcome = co_await ModCom1.ReadPLC(source, data);
    CheckTime(began);
    if (outcome.Good()) {
      CheckRead(source, {data.Unsigned()});
    } else {
      Check(data == before, "a read that fails leaves the target");
    }
  }

  core::Task<> ReadBlock(state::Register source, int count) {
    std::array<state::Word, kMostWords + 1> block;
    block.fill(state::Word(0xBEEFU));
    const std::array<state::Word, kMostWords + 1> before = block;
    const Began began = Begin(count);
    const std::span<state::Word> target(block);
    const Outcome outcome = co_await ModCom1.ReadPLC(source, target, static_cast<std::int16_t>(count));
    CheckTime(began);
    Check(outcome.Good() || !mustBeGood_, "a line that works again is used again");
    if (!outcome.Good()) {
      Check(block == before, "a read that fails leaves the target");
      co_return;
    }
    std::vector<int> words;
    for (int i = 0; i < count; ++i) words.push_back(block[static_cast<std::size_t>(i)].Unsigned());
    CheckRead(source, words);
    Check(std::equal(block.begin() + count, block.end(), before.begin() + count), "no word behind the block changes");
  }

  core::Task<> Write(state::Register target, int value) {
    const Began began = Begin(1);
    const int address = ModCom1.ModuleAddr();
    const Outcome outcome = co_await ModCom1.WritePLC(target, state::Word(static_cast<unsigned>(value)));
    CheckTime(began);
    if (!outcome.Good()) co_return;
    const Bytes frame = test::WriteRequest(address, target.Number(), value);
    Check(traffic_.sent == frame, "a write is good only after it was sent");
    Check(!std::ranges::search(traffic_.received, frame).empty(), "a write is good only with its echo");
  }

  void CheckRead(state::Register source, const std::vector<int>& words) {
    const int count = static_cast<int>(words.size());
    const Bytes& sent = traffic_.sent;
    Check(sent == test::ReadRequest(sent[0], source.Number(), count), "data is taken only for the request sent last");
    Check(HoldsReply(traffic_.received, sent, words), "data is taken only from a valid reply after the request");
    if (!peer_.Anything()) {
      Check(words == WordsFor(traffic_.frames, count), "the data is that of the present request");
    }
  }

  /// What the told time of a request depends on.
  struct Began {
    core::TimePoint at;
    bool atOnce;  ///< it found the bus free
    int arrivals;
    int tries;
    Duration timeout;
    int words;
    LineSettings line;
  };

  Began Begin(int words) {
    Began began;
    began.at = scheduler_.Now();
    began.atOnce = !ModCom1.CommBusy();
    began.arrivals = traffic_.arrivals;
    began.tries = std::max(ModCom1.LinkParamB(), 1);
    began.timeout = milliseconds(ModCom1.ReplyTimeout());
    began.words = words;
    began.line = line_.Line();
    return began;
  }

  void CheckTime(const Began& began) {
    // One that waited its turn, or whose line changed meanwhile, has no time of its own.
    if (!began.atOnce || began.line != line_.Line()) return;
    constexpr double kLongestProbe = 5 + 2 * 6;
    const Duration reply = began.line.TimeOf(std::max(5.0 + 2 * began.words, kLongestProbe));
    const Duration silence = std::max<Duration>(began.line.TimeOf(3.5), core::microseconds(1750));
    const Duration exchange = silence + began.line.TimeOf(8) + began.timeout + reply;
    // An abandoned frame may still be on its way out, at the speed that the line had then.
    const Duration leftOver = LineSettings{1200, Parity::kOdd}.TimeOf(8);
    const Duration taken = scheduler_.Now() - began.at;
    if (traffic_.arrivals == began.arrivals) {
      Check(taken <= began.tries * exchange + leftOver, "silence ends a request in the time told");
    }
    // A line that is never quiet is waited for, and an answer that proves too little makes another probe needed.
    constexpr int kMostProbes = 34;
    Check(taken <= began.tries * (kMostProbes + 1) * (exchange + leftOver + began.timeout),
          "whatever comes ends a request");
  }

  fuzz::Input input_;
  bool mustBeGood_ = false;
  core::VirtualScheduler scheduler_;
  Traffic traffic_;
  view::Screen screen_{scheduler_};
  test::MemoryLine line_{scheduler_};
  test::MemoryPorts memoryPorts_;
  TappedPorts ports_{memoryPorts_, traffic_};
  Peer peer_;
  test::BareWindow window_{screen_};
  ModCom ModCom1{window_, "ModCom1", ports_};
  test::TaskRunner tasks_;
};

}  // namespace
}  // namespace tarvo::bus

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tarvo::bus::Session(tarvo::fuzz::Input(data, size)).Run();
  return 0;
}
