#include "platform/posix_byte_port.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <numeric>
#include <span>
#include <string>
#include <string_view>
#include <tuple>

#include "platform/poll_loop.h"
#include "platform/port_holder.h"
#include "support/another_process.h"
#include "support/pseudo_terminal.h"
#include "support/temporary_folder.h"

namespace tarvo::platform {
namespace {

using bus::LineSettings;
using bus::Parity;
using core::milliseconds;
using test::InAnotherProcess;
using test::PseudoTerminal;
using test::User;

constexpr auto kSoon = std::chrono::seconds(10);

/// Takes what arrives, and counts what it was told.
class Recorder final : public bus::BytePortListener {
 public:
  void BytesArrived() override {
    ++arrivals;
    if (port != nullptr) TakeAll();
    if (onArrival) onArrival();
  }
  void PortLost() override {
    ++losses;
    if (onLoss) onLoss();
  }
  void TakeAll() {
    std::array<std::uint8_t, 100> block;
    while (const std::size_t count = port->Take(block)) received.append(block.begin(), block.begin() + count);
  }

  bus::BytePort* port = nullptr;
  std::string received;
  int arrivals = 0;
  int losses = 0;
  std::function<void()> onArrival;
  std::function<void()> onLoss;
};

std::span<const std::uint8_t> BytesOf(std::string_view text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

std::string EveryByte() {
  std::string bytes(256, '\0');
  std::iota(bytes.begin(), bytes.end(), '\0');
  return bytes;
}

std::ptrdiff_t OpenDescriptors() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), std::filesystem::directory_iterator());
}

/// What a plain open of `device` by an ordinary user's program says: 0 or the error number.
int OrdinaryOpen(const std::string& device) {
  // Everybody may, as far as the file's rights go.
  EXPECT_EQ(chmod(device.c_str(), 0666), 0);
  return InAnotherProcess(User::kOrdinary,
                          [&] { return open(device.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK) < 0 ? errno : 0; });
}

class PosixBytePortTest : public testing::Test {
 protected:
  bus::PortOpener::Opened TryOpen(const std::string& device) {
    return PosixBytePort::Open(loop, device, LineSettings());
  }

  std::string FaultOf(const std::string& device) { return TryOpen(device).status.Description(); }

  void Open(const std::string& device) {
    auto opened = TryOpen(device);
    ASSERT_TRUE(opened.status.Ok()) << opened.status.Description();
    ASSERT_NE(opened.port, nullptr);
    port = std::move(opened.port);
    recorder.port = port.get();
    port->SetListener(&recorder);
  }

  bool RunUntilReceived(std::size_t count) {
    return loop.RunUntil([&] { return recorder.received.size() >= count; }, kSoon);
  }
  bool RunUntilLost() {
    return loop.RunUntil([&] { return recorder.losses > 0; }, kSoon);
  }

  PollLoop loop;
  PseudoTerminal peer;
  Recorder recorder;
  std::unique_ptr<bus::BytePort> port;
};

TEST_F(PosixBytePortTest, SendsEveryByteAsItIs) {
  Open(peer.Name());
  const std::string bytes = EveryByte();
  EXPECT_TRUE(port->Write(BytesOf(bytes)));
  EXPECT_EQ(peer.Receive(bytes.size()), bytes);
}

TEST_F(PosixBytePortTest, ReceivesEveryByteAsItIs) {
  Open(peer.Name());
  const std::string bytes = EveryByte();
  peer.Send(bytes);
  ASSERT_TRUE(RunUntilReceived(bytes.size()));
  EXPECT_EQ(recorder.received, bytes);
}

TEST_F(PosixBytePortTest, TakesNoMoreThanFits) {
  Open(peer.Name());
  recorder.port = nullptr;
  peer.Send("abcde");
  ASSERT_TRUE(loop.RunUntil([&] { return recorder.arrivals > 0; }, kSoon));
  std::array<std::uint8_t, 3> three;
  EXPECT_EQ(port->Take(three), 3U);
  EXPECT_EQ(three[2], 'c');
  EXPECT_EQ(port->Take(three), 2U);
  EXPECT_EQ(three[0], 'd');
  EXPECT_EQ(port->Take(three), 0U);
}

TEST_F(PosixBytePortTest, GivesWhatCameInAHardWait) {
  Open(peer.Name());
  peer.Send("abc");
  loop.Block(milliseconds(1));
  recorder.TakeAll();
  EXPECT_EQ(recorder.received, "abc");
  EXPECT_EQ(recorder.arrivals, 0);
}

TEST_F(PosixBytePortTest, BytesThatNobodyTakesDoNotKeepTheLoopAwake) {
  Open(peer.Name());
  port->SetListener(nullptr);
  peer.Send("abc");
  loop.RunOnce(kSoon);
  const core::TimePoint start = loop.Now();
  loop.RunOnce(milliseconds(20));
  EXPECT_GE(loop.Now() - start, milliseconds(20));
  recorder.TakeAll();
  EXPECT_EQ(recorder.received, "abc");
}

TEST_F(PosixBytePortTest, KeepsTheFirstBytesOfAFloodAndLivesOn) {
  Open(peer.Name());
  recorder.port = nullptr;
  const std::string flood(1000, 'x');
  for (int i = 0; i < 20; ++i) {
    peer.Send(flood);
    loop.RunOnce(milliseconds(0));
  }
  recorder.port = port.get();
  port->DiscardInput();
  peer.Send("abc");
  ASSERT_TRUE(RunUntilReceived(3));
  EXPECT_EQ(recorder.received, "abc");
}

TEST_F(PosixBytePortTest, DiscardsWhatArrivedBothBeforeAndAfterTheTurn) {
  Open(peer.Name());
  recorder.port = nullptr;
  peer.Send("told");
  ASSERT_TRUE(loop.RunUntil([&] { return recorder.arrivals > 0; }, kSoon));
  peer.Send("not told");
  port->DiscardInput();
  recorder.port = port.get();
  recorder.TakeAll();
  EXPECT_EQ(recorder.received, "");
  peer.Send("new");
  ASSERT_TRUE(RunUntilReceived(3));
  EXPECT_EQ(recorder.received, "new");
}

TEST_F(PosixBytePortTest, OpensWithNothingLeftFromBefore) {
  Open(peer.Name());
  peer.Send("old");
  port.reset();
  Open(peer.Name());
  recorder.TakeAll();
  EXPECT_EQ(recorder.received, "");
}

class EveryLineTest : public PosixBytePortTest, public testing::WithParamInterface<std::tuple<int, Parity>> {};

speed_t CodeOf(int baud) {
  switch (baud) {
    case 1200:
      return B1200;
    case 2400:
      return B2400;
    case 4800:
      return B4800;
    case 9600:
      return B9600;
    case 19200:
      return B19200;
    case 38400:
      return B38400;
    default:
      return B57600;
  }
}

void ExpectLine(const termios& seen, const LineSettings& line) {
  EXPECT_EQ(cfgetospeed(&seen), CodeOf(line.baud));
  EXPECT_EQ(cfgetispeed(&seen), CodeOf(line.baud));
  EXPECT_EQ(seen.c_cflag & CSIZE, static_cast<tcflag_t>(CS8));
  EXPECT_EQ(seen.c_cflag & CSTOPB, 0U);
  EXPECT_EQ((seen.c_cflag & PARODD) != 0, line.parity == Parity::kOdd);
  EXPECT_EQ((seen.c_iflag & INPCK) != 0, line.parity != Parity::kNone);
  EXPECT_EQ(seen.c_lflag & (ICANON | ECHO | ISIG), 0U);
}

TEST_P(EveryLineTest, IsSeenFromTheOtherSideWhenOpened) {
  const auto [baud, parity] = GetParam();
  const LineSettings line{baud, parity};
  const auto opened = PosixBytePort::Open(loop, peer.Name(), line);
  ASSERT_TRUE(opened.status.Ok()) << opened.status.Description();
  ExpectLine(peer.Line(), line);
}

TEST_P(EveryLineTest, IsSeenFromTheOtherSideWhenChanged) {
  const auto [baud, parity] = GetParam();
  const LineSettings line{baud, parity};
  Open(peer.Name());
  for (const Parity before : {Parity::kNone, Parity::kEven, Parity::kOdd}) {
    ASSERT_TRUE(port->SetLine({1200, before}).Ok());
    const core::Status status = port->SetLine(line);
    EXPECT_TRUE(status.Ok()) << status.Description();
    ExpectLine(peer.Line(), line);
  }
}

INSTANTIATE_TEST_SUITE_P(Lines, EveryLineTest,
                         testing::Combine(testing::Values(1200, 2400, 4800, 9600, 19200, 38400, 57600),
                                          testing::Values(Parity::kNone, Parity::kEven, Parity::kOdd)),
                         [](const auto& suite) {
                           return std::to_string(std::get<0>(suite.param)) +
                                  static_cast<char>(std::get<1>(suite.param));
                         });

TEST_F(PosixBytePortTest, RefusesASpeedThatItDoesNotKnow) {
  Open(peer.Name());
  EXPECT_EQ(port->SetLine({1234, Parity::kNone}).Description(), core::kDeviceUnavailable);
  ExpectLine(peer.Line(), LineSettings());
}

TEST_F(PosixBytePortTest, RefusesASecondOpenInThisProcess) {
  Open(peer.Name());
  const auto second = TryOpen(peer.Name());
  EXPECT_EQ(second.port, nullptr);
  EXPECT_EQ(second.status.Description(), core::kPortAlreadyOpen);
}

TEST_F(PosixBytePortTest, RefusesASecondInstanceAlsoOfTheSuperuser) {
  Open(peer.Name());
  const int refused = InAnotherProcess(User::kSame, [&] {
    PollLoop otherLoop;
    const auto second = PosixBytePort::Open(otherLoop, peer.Name(), LineSettings());
    return second.status.Description() == core::kPortAlreadyOpen ? 1 : 0;
  });
  EXPECT_EQ(refused, 1);
}

TEST_F(PosixBytePortTest, KeepsOutOrdinaryProgramsThatAskForNoLock) {
  Open(peer.Name());
  EXPECT_EQ(OrdinaryOpen(peer.Name()), EBUSY);
}

TEST_F(PosixBytePortTest, ARefusedSecondOpenLeavesTheFirstProtected) {
  Open(peer.Name());
  EXPECT_EQ(FaultOf(peer.Name()), core::kPortAlreadyOpen);
  EXPECT_EQ(OrdinaryOpen(peer.Name()), EBUSY);
}

TEST_F(PosixBytePortTest, GivesTheDeviceBackAtItsEnd) {
  Open(peer.Name());
  port.reset();
  EXPECT_EQ(OrdinaryOpen(peer.Name()), 0);
  EXPECT_EQ(FaultOf(peer.Name()), "");
}

TEST_F(PosixBytePortTest, RefusesADeviceThatAnotherProgramLocked) {
  const FileDescriptor holder(open(peer.Name().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC));
  ASSERT_EQ(flock(holder.Get(), LOCK_EX | LOCK_NB), 0);
  EXPECT_EQ(FaultOf(peer.Name()), core::kPortAlreadyOpen);
}

TEST_F(PosixBytePortTest, ALockedFileIsStillNoSerialLine) {
  const test::TemporaryFolder folder;
  const FileDescriptor holder(open((folder / "file").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
  ASSERT_EQ(flock(holder.Get(), LOCK_EX | LOCK_NB), 0);
  EXPECT_EQ(FaultOf(folder / "file"), core::kDeviceUnavailable);
}

TEST_F(PosixBytePortTest, RefusesADeviceThatAnotherProgramMarkedExclusive) {
  const FileDescriptor holder(open(peer.Name().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC));
  ASSERT_EQ(ioctl(holder.Get(), TIOCEXCL), 0);
  EXPECT_EQ(FaultOf(peer.Name()), core::kPortAlreadyOpen);
}

TEST_F(PosixBytePortTest, OpensForTheSuperuserWhatACrashedHolderLeftMarked) {
  if (geteuid() != 0) GTEST_SKIP() << "only the superuser gets past the mark";
  {
    const FileDescriptor holder(open(peer.Name().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC));
    ASSERT_EQ(ioctl(holder.Get(), TIOCEXCL), 0);
  }
  ASSERT_EQ(OrdinaryOpen(peer.Name()), EBUSY);
  EXPECT_EQ(FaultOf(peer.Name()), "");
}

TEST_F(PosixBytePortTest, OpensBesideAProgramThatClaimsNothing) {
  const FileDescriptor other(open(peer.Name().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC));
  ASSERT_TRUE(other.Valid());
  EXPECT_EQ(FaultOf(peer.Name()), "");
}

TEST_F(PosixBytePortTest, TellsWhatIsNotThere) {
  EXPECT_EQ(FaultOf("/dev/tarvo-no-such-device"), core::kDeviceNotFound);
  EXPECT_EQ(FaultOf(""), core::kDeviceNotFound);
  EXPECT_EQ(FaultOf("/dev/null/below"), core::kDeviceNotFound);
}

TEST_F(PosixBytePortTest, TellsWhatIsNoSerialLine) {
  const test::TemporaryFolder folder;
  std::ofstream(folder / "file") << "text";
  ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
  EXPECT_EQ(FaultOf(folder / "file"), core::kDeviceUnavailable);
  EXPECT_EQ(FaultOf(folder / "pipe"), core::kDeviceUnavailable);
  EXPECT_EQ(FaultOf(folder.Path()), core::kDeviceUnavailable);
  EXPECT_EQ(FaultOf("/dev/null"), core::kDeviceUnavailable);
}

TEST_F(PosixBytePortTest, TellsMissingRights) {
  ASSERT_EQ(chmod(peer.Name().c_str(), 0), 0);
  const int refused = InAnotherProcess(User::kOrdinary, [&] {
    PollLoop otherLoop;
    const auto opened = PosixBytePort::Open(otherLoop, peer.Name(), LineSettings());
    return opened.status.Description() == core::kPermissionDenied ? 1 : 0;
  });
  EXPECT_EQ(refused, 1);
}

TEST_F(PosixBytePortTest, ARefusedOpenLeavesNoDescriptor) {
  Open(peer.Name());
  const auto before = OpenDescriptors();
  for (const char* device : {"/dev/null", "/dev/tarvo-no-such-device", peer.Name().c_str()}) {
    EXPECT_NE(FaultOf(device), "");
  }
  EXPECT_EQ(OpenDescriptors(), before);
}

TEST(FaultOfDevice, NamesEveryErrorAndKeepsItsNumber) {
  struct Row {
    int error;
    const char* description;
  };
  for (const Row& row : {
           Row{ENOENT, core::kDeviceNotFound},
           Row{ENODEV, core::kDeviceNotFound},
           Row{ENXIO, core::kDeviceNotFound},
           Row{ENOTDIR, core::kDeviceNotFound},
           Row{EACCES, core::kPermissionDenied},
           Row{EPERM, core::kPermissionDenied},
           Row{EBUSY, core::kPortAlreadyOpen},
           Row{EWOULDBLOCK, core::kPortAlreadyOpen},
           Row{EIO, core::kDeviceUnavailable},
           Row{ENOTTY, core::kDeviceUnavailable},
           Row{EISDIR, core::kDeviceUnavailable},
           Row{EMFILE, core::kDeviceUnavailable},
           Row{EINVAL, core::kDeviceUnavailable},
       }) {
    const core::Fault fault = FaultOfDevice(row.error, "/dev/ttyUSB0");
    EXPECT_STREQ(fault.what(), row.description) << row.error;
    EXPECT_EQ(fault.Number(), row.error);
    EXPECT_EQ(fault.Source(), "/dev/ttyUSB0");
  }
}

TEST_F(PosixBytePortTest, TellsALossOnceAndAtOnce) {
  Open(peer.Name());
  peer.Close();
  // One turn is enough.
  loop.RunOnce(kSoon);
  EXPECT_EQ(recorder.losses, 1);
  EXPECT_FALSE(loop.RunUntil([&] { return recorder.losses > 1; }, milliseconds(20)));
}

TEST_F(PosixBytePortTest, ALostPortDoesNotKeepTheLoopAwake) {
  Open(peer.Name());
  peer.Close();
  ASSERT_TRUE(RunUntilLost());
  const core::TimePoint start = loop.Now();
  loop.RunOnce(milliseconds(20));
  EXPECT_GE(loop.Now() - start, milliseconds(20));
}

TEST_F(PosixBytePortTest, ALostPortFailsEveryWriteAndSetting) {
  Open(peer.Name());
  peer.Close();
  ASSERT_TRUE(RunUntilLost());
  EXPECT_FALSE(port->Write(BytesOf("abc")));
  EXPECT_FALSE(port->Write(BytesOf("abc")));
  EXPECT_EQ(port->SetLine(LineSettings()).Description(), core::kDeviceUnavailable);
  port->DiscardInput();
  std::array<std::uint8_t, 10> block;
  EXPECT_EQ(port->Take(block), 0U);
}

TEST_F(PosixBytePortTest, ALossThatAWriteFindsIsToldLater) {
  Open(peer.Name());
  peer.Close();
  EXPECT_FALSE(port->Write(BytesOf("abc")));
  EXPECT_EQ(recorder.losses, 0);
  loop.RunOnce(milliseconds(0));
  EXPECT_EQ(recorder.losses, 1);
}

TEST_F(PosixBytePortTest, ALossThatATakeFindsIsToldLater) {
  Open(peer.Name());
  peer.Close();
  recorder.TakeAll();
  EXPECT_EQ(recorder.losses, 0);
  loop.RunOnce(milliseconds(0));
  EXPECT_EQ(recorder.losses, 1);
}

TEST_F(PosixBytePortTest, ALossIsToldToAListenerThatComesAfterIt) {
  Open(peer.Name());
  port->SetListener(nullptr);
  peer.Close();
  loop.RunOnce(kSoon);
  EXPECT_EQ(recorder.losses, 0);
  port->SetListener(&recorder);
  loop.RunOnce(milliseconds(0));
  EXPECT_EQ(recorder.losses, 1);
}

TEST_F(PosixBytePortTest, TheListenerMayEndThePortWhenBytesArrive) {
  Open(peer.Name());
  recorder.onArrival = [&] { port.reset(); };
  peer.Send("abc");
  ASSERT_TRUE(loop.RunUntil([&] { return recorder.arrivals > 0; }, kSoon));
  EXPECT_EQ(port, nullptr);
  loop.RunOnce(milliseconds(0));
  EXPECT_EQ(recorder.losses, 0);
}

TEST_F(PosixBytePortTest, TheListenerMayEndThePortWhenItIsLost) {
  Open(peer.Name());
  recorder.onLoss = [&] { port.reset(); };
  peer.Close();
  ASSERT_TRUE(RunUntilLost());
  EXPECT_EQ(port, nullptr);
  loop.RunOnce(milliseconds(0));
  EXPECT_EQ(recorder.losses, 1);
}

TEST_F(PosixBytePortTest, APeerThatTakesNothingHoldsUpNoWriteForLong) {
  Open(peer.Name());
  const std::string frame(256, 'x');
  core::Duration longest{};
  for (int i = 0; i < 1000 && longest < PosixBytePort::kWriteWait; ++i) {
    const core::TimePoint start = loop.Now();
    ASSERT_TRUE(port->Write(BytesOf(frame)));
    longest = std::max(longest, loop.Now() - start);
  }
  EXPECT_GE(longest, PosixBytePort::kWriteWait) << "the peer's buffer never filled";
  EXPECT_LT(longest, std::chrono::seconds(5));
  // What nobody took is out of the way of the next frame.
  EXPECT_TRUE(port->Write(BytesOf("abc")));
  EXPECT_THAT(peer.Receive(1 << 20, 50), testing::EndsWith("abc"));
}

TEST_F(PosixBytePortTest, AHundredLossesAndReturnsLeaveNothingBehind) {
  const test::TemporaryFolder folder;
  const std::filesystem::path link = folder / "line";
  peer.Close();
  const auto before = OpenDescriptors();
  for (int cycle = 0; cycle < 100; ++cycle) {
    PseudoTerminal device;
    std::filesystem::create_symlink(device.Name(), link);
    ASSERT_NO_FATAL_FAILURE(Open(link));
    device.Send("abc");
    ASSERT_TRUE(RunUntilReceived(3)) << cycle;
    device.Close();
    ASSERT_TRUE(RunUntilLost()) << cycle;
    EXPECT_EQ(recorder.received, "abc");
    std::filesystem::remove(link);
    EXPECT_EQ(FaultOf(link), core::kDeviceNotFound);
    port.reset();
    recorder = Recorder();
  }
  EXPECT_EQ(OpenDescriptors(), before);
}

TEST(HeldByAnother, CountsEveryOpenOfTheDeviceButOne) {
  const PseudoTerminal peer;
  const FileDescriptor first(open(peer.Name().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC));
  EXPECT_FALSE(HeldByAnother(first.Get()));
  {
    const FileDescriptor second(open(peer.Name().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC));
    EXPECT_TRUE(HeldByAnother(first.Get()));
  }
  EXPECT_FALSE(HeldByAnother(first.Get()));
}

}  // namespace
}  // namespace tarvo::platform
