// The raw exchange on a pseudo terminal, beside mbpoll, another's Modbus master.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <stop_token>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "bus/rawlink/frm_plug_and_play.h"
#include "platform/poll_loop.h"
#include "platform/posix_byte_port.h"
#include "state/shared_state.h"
#include "support/mbpoll.h"
#include "support/pseudo_terminal.h"
#include "view/screen.h"

namespace tarvo::platform {
namespace {

using core::milliseconds;
using Bytes = std::vector<std::uint8_t>;

/// Longer than the answer needs on a busy machine.
constexpr std::int32_t kWait = 400;

/// Something behind a pseudo terminal that gives one answer to each request of eight bytes.
class Answerer {
 public:
  explicit Answerer(const Bytes& reply)
      : reply_(reply.begin(), reply.end()), thread_([this](const std::stop_token& stop) { Run(stop); }) {}

  const std::string& Device() const { return line_.Name(); }

  /// All that it was asked. It answers no more.
  Bytes Requests() {
    thread_.request_stop();
    if (thread_.joinable()) thread_.join();
    return {requests_.begin(), requests_.end()};
  }

 private:
  void Run(const std::stop_token& stop) {
    constexpr int kPause = 5;
    constexpr std::size_t kRequest = 8;
    while (!stop.stop_requested()) {
      const std::string got = line_.Receive(1, kPause);
      requests_ += got;
      if (got.empty()) {
        std::this_thread::sleep_for(milliseconds(kPause));
      } else if (requests_.size() % kRequest == 0) {
        line_.TrySend(reply_);
      }
    }
  }

  test::PseudoTerminal line_;
  std::string reply_;
  std::string requests_;
  std::jthread thread_;
};

/// One device behind every number.
class OneDevice final : public bus::PortOpener {
 public:
  OneDevice(core::Scheduler& scheduler, std::string device) : scheduler_(scheduler), device_(std::move(device)) {}

  Opened Open(int /*comPort*/, const bus::LineSettings& line) override {
    return PosixBytePort::Open(scheduler_, device_, line);
  }

 private:
  core::Scheduler& scheduler_;
  std::string device_;
};

/// The page of the raw exchange with its port open on `device`.
class RawMaster {
 public:
  explicit RawMaster(const std::string& device) : ports_(loop_, device) {
    Link.SlaveByte = 1;
    EXPECT_TRUE(Page.MSComm1.SetPortOpen(true).Ok());
  }

  /// Reads by hand, for a register that the page has no control for.
  bus::PlugAndPlay::Decoded Read(std::int32_t number, std::int32_t count) {
    Link.FunctionByte = 3;
    Link.RegisterNumber = number;
    Link.WordCount = count;
    Link.SendFrame(Page);
    loop_.Block(milliseconds(kWait));
    return Link.DecodeReply(Link.ResultWord, Link.CopyInput(Page.MSComm1.Input()));
  }

 private:
  PollLoop loop_;
  OneDevice ports_;
  view::Screen screen_{loop_};
  state::SharedState state_;

 public:
  bus::FrmPlugAndPlay Page{screen_, state_, ports_};
  bus::PlugAndPlay& Link = Page.Link;
};

struct Reading {
  const char* name;
  int reference;  // 1 for 40001
  std::vector<std::uint16_t> values;
  Bytes request;
  Bytes reply;
};

class RawExchange : public testing::TestWithParam<Reading> {};

TEST_P(RawExchange, SendsTheRequestThatMbpollSends) {
  const Reading& reading = GetParam();
  Answerer asked(reading.reply);
  const auto count = static_cast<std::int32_t>(reading.values.size());
  const test::Polled polled = test::RunMbpoll(
      asked.Device(), "-a 1 -b 9600 -P none -r " + std::to_string(reading.reference) + " -c " + std::to_string(count));
  EXPECT_EQ(polled.status, 0) << polled.errors;
  const Bytes ofMbpoll = asked.Requests();
  EXPECT_EQ(ofMbpoll, reading.request);

  Answerer askedRaw(reading.reply);
  RawMaster(askedRaw.Device()).Read(40000 + reading.reference, count);
  EXPECT_EQ(askedRaw.Requests(), ofMbpoll);
}

TEST_P(RawExchange, DecodesTheValuesThatMbpollDecodes) {
  const Reading& reading = GetParam();
  Answerer module(reading.reply);
  const auto count = static_cast<std::int32_t>(reading.values.size());
  const test::Polled polled = test::RunMbpoll(
      module.Device(), "-a 1 -b 9600 -P none -r " + std::to_string(reading.reference) + " -c " + std::to_string(count));
  EXPECT_EQ(polled.status, 0) << polled.errors;

  RawMaster raw(module.Device());
  EXPECT_EQ(raw.Read(40000 + reading.reference, count), bus::PlugAndPlay::kGood);
  std::map<int, int> decoded;
  for (std::int32_t i = 0; i < count; ++i) {
    decoded[reading.reference + i] = raw.Link.ResultTable.at(static_cast<std::size_t>(i));
    EXPECT_EQ(decoded[reading.reference + i], reading.values.at(static_cast<std::size_t>(i)));
  }
  EXPECT_EQ(decoded, polled.registers);
}

const Reading kReadings[] = {
    {"OneRegister",
     1,
     {0x1234},
     {0x01, 0x03, 0x00, 0x00, 0x00, 0x01, 0x84, 0x0A},
     {0x01, 0x03, 0x02, 0x12, 0x34, 0xB5, 0x33}},
    {"ThreeRegisters",
     1,
     {0x0103, 0x8000, 0xFFFF},
     {0x01, 0x03, 0x00, 0x00, 0x00, 0x03, 0x05, 0xCB},
     {0x01, 0x03, 0x06, 0x01, 0x03, 0x80, 0x00, 0xFF, 0xFF, 0x4C, 0xD4}},
    {"ElevenRegistersFarAway",
     0x1235,
     {0x0001, 0x0102, 0x0203, 0x0304, 0x0405, 0x0506, 0x0607, 0x0708, 0x0809, 0x090A, 0x0A0B},
     {0x01, 0x03, 0x12, 0x34, 0x00, 0x0B, 0x40, 0xBB},
     {0x01, 0x03, 0x16, 0x00, 0x01, 0x01, 0x02, 0x02, 0x03, 0x03, 0x04, 0x04, 0x05, 0x05,
      0x06, 0x06, 0x07, 0x07, 0x08, 0x08, 0x09, 0x09, 0x0A, 0x0A, 0x0B, 0x4D, 0x9D}},
};

INSTANTIATE_TEST_SUITE_P(Mbpoll, RawExchange, testing::ValuesIn(kReadings),
                         [](const testing::TestParamInfo<Reading>& row) { return row.param.name; });

TEST(RawExchangeOnAPseudoTerminal, ShowsWhatCameDuringItsHardWait) {
  Answerer module({0x01, 0x03, 0x02, 0x12, 0x34, 0xB5, 0x33});
  RawMaster raw(module.Device());
  raw.Link.WordCount = 1;
  raw.Link.ExchangeParameter(raw.Page, 19, kWait);
  EXPECT_EQ(raw.Page.Parameter[19].Caption(), "4660");
  EXPECT_EQ(module.Requests(), (Bytes{0x01, 0x03, 0x00, 0x13, 0x00, 0x01, 0x75, 0xCF}));
}

TEST(RawExchangeOnAPseudoTerminal, ThrowsAwayWhatLayInItsInput) {
  const test::PseudoTerminal line;
  RawMaster raw(line.Name());
  const std::string before = raw.Page.Parameter[1].Caption();
  line.Send(std::string("\x01\x03\x02\x12\x34\xB5\x33", 7));
  raw.Link.WordCount = 1;
  raw.Link.ExchangeParameter(raw.Page, 1, kWait);
  EXPECT_EQ(line.Receive(8).size(), 8U);
  EXPECT_EQ(raw.Page.Parameter[1].Caption(), before);
}

}  // namespace
}  // namespace tarvo::platform
