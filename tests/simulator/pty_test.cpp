// A module behind a real pseudo terminal, and a master that opens it as it would a serial port.

#include "simulator/pty.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include "platform/poll_loop.h"
#include "played_module.h"
#include "simulator/line.h"

namespace tarvo::simulator {
namespace {

using std::chrono::milliseconds;
using test::Bytes;
using test::ReadReply;
using test::ReadRequest;

struct Speed {
  int baud;
  speed_t code;
};
const std::vector<Speed> kSpeeds = {{1200, B1200},   {2400, B2400},   {4800, B4800},  {9600, B9600},
                                    {19200, B19200}, {38400, B38400}, {57600, B57600}};
const std::vector<bus::Parity> kParities = {bus::Parity::kNone, bus::Parity::kEven, bus::Parity::kOdd};

speed_t CodeOf(int baud) {
  for (const Speed& speed : kSpeeds) {
    if (speed.baud == baud) return speed.code;
  }
  return B0;
}

/// A program that has the terminal open.
class Client {
 public:
  explicit Client(const std::string& path) : port_(open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC)) {}

  bool Open() const { return static_cast<bool>(port_); }
  int Number() const { return port_.Number(); }

  void Set(speed_t speed, bus::Parity parity) {
    termios settings{};
    tcgetattr(port_.Number(), &settings);
    cfmakeraw(&settings);
    cfsetispeed(&settings, speed);
    cfsetospeed(&settings, speed);
    if (parity != bus::Parity::kNone) {
      settings.c_cflag |= PARENB;
      settings.c_iflag |= INPCK;
    } else {
      settings.c_iflag &= ~static_cast<tcflag_t>(INPCK);
    }
    settings.c_cflag &= ~static_cast<tcflag_t>(PARODD);
    if (parity == bus::Parity::kOdd) settings.c_cflag |= PARODD;
    // Its result tells nothing: the terminal drops PARENB, which the C library may take for a failure.
    tcsetattr(port_.Number(), TCSANOW, &settings);
  }
  void Set(const bus::LineSettings& line) { Set(CodeOf(line.baud), line.parity); }

  void Write(const Bytes& bytes) {
    ASSERT_EQ(write(port_.Number(), bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
  }
  Bytes Take() {
    Bytes bytes(256);
    const ssize_t count = read(port_.Number(), bytes.data(), bytes.size());
    bytes.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
    return bytes;
  }

 private:
  Descriptor port_;
};

class SimulatedPort : public ::testing::Test {
 protected:
  SimulatedPort()
      : pty(loop, {.arrived = [this](auto bytes) { line->Arrived(bytes, pty.MasterLine()); },
                   .left =
                       [this] {
                         ++left;
                         line->Forget();
                       }}) {
    Play({1, {}});
  }

  void SetUp() override {
    const core::Status opened = pty.Open();
    ASSERT_TRUE(opened.Ok()) << opened.Description();
  }

  void Play(const Setting& setting) {
    ModuleOptions options = StillWith({});
    options.setting = setting;
    std::vector<Module> modules;
    modules.emplace_back(MakeModel("belk"), options, loop.Now());
    line.emplace(loop, std::move(modules), [this](auto bytes) { pty.Send(bytes); });
  }

  /// What `client` receives within `limit`; ends as soon as that are `length` bytes.
  Bytes Receive(Client& client, std::size_t length, core::Duration limit) {
    Bytes got;
    const auto take = [&] {
      for (const std::uint8_t byte : client.Take()) got.push_back(byte);
      return got.size() >= length;
    };
    const core::TimePoint end = loop.Now() + limit;
    while (!take() && loop.Now() < end) loop.RunOnce(milliseconds(1));
    return got;
  }

  void Run(core::Duration time) {
    loop.RunUntil([] { return false; }, time);
  }

  platform::PollLoop loop;
  Pty pty;
  std::optional<Line> line;
  int left = 0;
};

TEST_F(SimulatedPort, SeesTheSpeedAndParityThatTheMasterHasSet) {
  Client client(pty.Path());
  for (const Speed& speed : kSpeeds) {
    for (const bus::Parity parity : kParities) {
      client.Set(speed.code, parity);
      EXPECT_EQ(pty.MasterLine(), (bus::LineSettings{speed.baud, parity})) << speed.baud << static_cast<char>(parity);
    }
  }
  client.Set(B115200, bus::Parity::kNone);
  EXPECT_EQ(pty.MasterLine(), std::nullopt);
}

TEST_F(SimulatedPort, AnswersOnItsOwnLine) {
  Client client(pty.Path());
  for (const char* text : {"1200,n,8,1", "9600,o,8,1", "19200,n,8,1", "57600,e,8,1"}) {
    Play({7, LineOf(text)});
    client.Set(LineOf(text));
    client.Write(ReadRequest(7, 40001, 1));
    EXPECT_EQ(Receive(client, 7, std::chrono::seconds(5)), ReadReply(7, {0x0103})) << text;
  }
}

TEST_F(SimulatedPort, KeepsSilentOnAnotherLine) {
  Play({1, LineOf("38400,e,8,1")});
  Client client(pty.Path());
  for (const char* text : {"19200,e,8,1", "57600,e,8,1", "38400,n,8,1", "38400,o,8,1"}) {
    client.Set(LineOf(text));
    client.Write(ReadRequest(1, 40001, 1));
    EXPECT_TRUE(Receive(client, 1, milliseconds(60)).empty()) << text;
  }
  client.Set(LineOf("38400,e,8,1"));
  client.Write(ReadRequest(1, 40001, 1));
  EXPECT_EQ(Receive(client, 7, std::chrono::seconds(5)), ReadReply(1, {0x0103}));
}

TEST_F(SimulatedPort, IsRawForAMasterThatSetsNothingButTheSpeed) {
  Play({1, LineOf("57600,n,8,1")});
  const Descriptor port(open(pty.Path().c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
  termios settings{};
  ASSERT_EQ(tcgetattr(port.Number(), &settings), 0);
  cfsetospeed(&settings, B57600);
  ASSERT_EQ(tcsetattr(port.Number(), TCSANOW, &settings), 0);
  const Bytes request = ReadRequest(1, 40001, 1);
  ASSERT_EQ(write(port.Number(), request.data(), request.size()), static_cast<ssize_t>(request.size()));
  Run(milliseconds(30));
  Bytes got(256);
  const ssize_t count = read(port.Number(), got.data(), got.size());
  got.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
  EXPECT_EQ(got, ReadReply(1, {0x0103}));
}

TEST_F(SimulatedPort, AnswersNoSoonerThanTheLineAllows) {
  Client client(pty.Path());
  client.Set(B9600, bus::Parity::kNone);
  const core::TimePoint start = loop.Now();
  client.Write(ReadRequest(1, 40002, 9));
  EXPECT_EQ(Receive(client, 23, std::chrono::seconds(5)).size(), 23U);
  EXPECT_GE(loop.Now() - start, bus::LineSettings().TimeOf(8 + 3.5 + 23));
}

TEST_F(SimulatedPort, ServesOneMasterAfterTheOther) {
  for (int i = 0; i < 20; ++i) {
    Client client(pty.Path());
    client.Set(B57600, bus::Parity::kNone);
    Play({1, LineOf("57600,n,8,1")});
    client.Write(ReadRequest(1, 40001, 1));
    EXPECT_EQ(Receive(client, 7, std::chrono::seconds(5)), ReadReply(1, {0x0103})) << i;
  }
}

TEST_F(SimulatedPort, GivesTheNextMasterNothingThatWasMeantForTheLast) {
  {
    Client client(pty.Path());
    client.Set(B9600, bus::Parity::kNone);
    client.Write(ReadRequest(1, 40002, 9));
    Run(milliseconds(25));
  }
  Run(milliseconds(5));
  EXPECT_EQ(left, 1);
  Client next(pty.Path());
  EXPECT_TRUE(Receive(next, 1, milliseconds(50)).empty());
}

TEST_F(SimulatedPort, GivesTheNextMasterNothingThatCameWhileNobodyListened) {
  pty.Send(Bytes(10, 0x55));
  Run(milliseconds(2));
  Client next(pty.Path());
  Run(milliseconds(2));
  EXPECT_TRUE(next.Take().empty());
}

TEST_F(SimulatedPort, KeepsTheRepliesOfAMasterThatIsStillThere) {
  Client client(pty.Path());
  client.Set(B9600, bus::Parity::kNone);
  Run(milliseconds(5));
  client.Write(ReadRequest(1, 40001, 1));
  {
    const Client other(pty.Path());
  }
  EXPECT_EQ(Receive(client, 7, std::chrono::seconds(5)), ReadReply(1, {0x0103}));
  EXPECT_EQ(left, 0);
}

TEST_F(SimulatedPort, FreesThePortThatAKilledMasterHeld) {
  {
    const Client killed(pty.Path());
    ASSERT_EQ(ioctl(killed.Number(), TIOCEXCL), 0);
  }
  Run(milliseconds(5));
  const Client next(pty.Path());
  ASSERT_TRUE(next.Open());
  int exclusive = -1;
  ASSERT_EQ(ioctl(next.Number(), TIOCGEXCL, &exclusive), 0);
  EXPECT_EQ(exclusive, 0);
}

TEST_F(SimulatedPort, OutlivesAMasterThatNeverReads) {
  Play({1, LineOf("57600,n,8,1")});
  Client client(pty.Path());
  client.Set(B57600, bus::Parity::kNone);
  for (int i = 0; i < 2000; ++i) pty.Send(Bytes(256, 0x55));
  tcflush(client.Number(), TCIFLUSH);
  Run(milliseconds(2));
  client.Take();
  while (!client.Take().empty()) Run(milliseconds(1));
  client.Write(ReadRequest(1, 40001, 1));
  EXPECT_EQ(Receive(client, 7, std::chrono::seconds(5)), ReadReply(1, {0x0103}));
}

}  // namespace
}  // namespace tarvo::simulator
