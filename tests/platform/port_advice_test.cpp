#include "platform/port_advice.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/com_ports.h"
#include "platform/file_descriptor.h"
#include "platform/poll_loop.h"
#include "platform/port_holder.h"
#include "support/another_process.h"
#include "support/pseudo_terminal.h"
#include "support/temporary_folder.h"

namespace tarvo::platform {
namespace {

using test::InAnotherProcess;
using test::PseudoTerminal;
using test::User;

PortRefusal Refused(int error) {
  PortRefusal refusal;
  refusal.device = "/dev/ttyUSB0";
  refusal.error = error;
  return refusal;
}

PortRefusal RefusedFor(const std::string& group, const std::string& user, bool inGroup) {
  PortRefusal refusal = Refused(EACCES);
  refusal.group = group;
  refusal.user = user;
  refusal.inGroup = inGroup;
  return refusal;
}

PortRefusal HeldBy(const std::string& holder, long process) {
  PortRefusal refusal = Refused(EBUSY);
  refusal.holder = holder;
  refusal.holderProcess = process;
  return refusal;
}

struct Row {
  PortRefusal refusal;
  const char* advice;
};

std::vector<Row> EveryReason() {
  PortRefusal nothingThere = Refused(ENODEV);
  nothingThere.device.clear();
  nothingThere.comPort = 3;
  PortRefusal heldHere = HeldBy("tarvo", 1234);
  heldHere.heldHere = true;
  PortRefusal onPort4 = Refused(ENOTTY);
  onPort4.comPort = 4;
  return {
      {RefusedFor("dialout", "anna", false),
       "You may not use /dev/ttyUSB0. Run: sudo usermod -aG dialout anna - then log in again."},
      {RefusedFor("dialout", "", false),
       "You may not use /dev/ttyUSB0. Run: sudo usermod -aG dialout $USER - then log in again."},
      {RefusedFor("dialout", "anna", true),
       "You may not use /dev/ttyUSB0 yet. Log in again, so that your group dialout counts."},
      {Refused(EACCES), "You may not use /dev/ttyUSB0. Ask your administrator for the right to read and write it."},
      {Refused(EPERM), "You may not use /dev/ttyUSB0. Ask your administrator for the right to read and write it."},
      {HeldBy("minicom", 1234), "/dev/ttyUSB0 is held by minicom (process 1234). Close that and try again."},
      {HeldBy("", 1234), "/dev/ttyUSB0 is held by another program (process 1234). Close that and try again."},
      {Refused(EWOULDBLOCK), "/dev/ttyUSB0 is held by another program. Close that and try again."},
      {heldHere, "/dev/ttyUSB0 is already open in this program."},
      {Refused(ENOENT), "/dev/ttyUSB0 is not there. Plug in the adapter and try again."},
      {Refused(ENXIO), "/dev/ttyUSB0 is not there. Plug in the adapter and try again."},
      {nothingThere, "No serial port for COM3. Plug in an adapter, or write COM3=/dev/... into the settings file."},
      {onPort4, "/dev/ttyUSB0 is no serial port. Give COM4 another device."},
      {Refused(EISDIR), "/dev/ttyUSB0 is no serial port. Give COM1 another device."},
      {Refused(EIO), "/dev/ttyUSB0 does not work (Input/output error). Check the adapter and try again."},
  };
}

TEST(PortAdvice, TellsEachReasonAndWhatToDo) {
  for (const Row& row : EveryReason()) EXPECT_EQ(AdviceOn(row.refusal), row.advice);
}

TEST(PortAdvice, FitsIntoTheStatusBarOfASmallScreen) {
  constexpr std::size_t kCharacters = 100;
  for (const Row& row : EveryReason()) EXPECT_LE(AdviceOn(row.refusal).size(), kCharacters) << AdviceOn(row.refusal);
}

/// What `ComPorts` says of `device` as COM1 to this process.
std::string AdviceOnOpening(const std::string& device) {
  PollLoop loop;
  const test::TemporaryFolder folder;
  ComPorts ports(loop, {device, "", "", ""}, SettingsFile(folder / "none"), [] { return std::vector<SerialPort>(); });
  const bus::PortOpener::Opened opened = ports.Open(1, bus::LineSettings());
  return opened.status.Ok() ? "" : opened.status.GetFault().Advice();
}

/// Another program that has a device open until this ends.
class Holder {
 public:
  enum class Claim { kLock, kExclusive, kNone };

  Holder(const std::string& device, Claim claim, const char* name = "terminal") {
    int ready[2];
    if (pipe2(ready, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
    process_ = fork();
    if (process_ == 0) {
      prctl(PR_SET_NAME, name);
      prctl(PR_SET_PDEATHSIG, SIGKILL);
      const int port = open(device.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
      if (port >= 0 && (claim != Claim::kLock || flock(port, LOCK_EX | LOCK_NB) == 0) &&
          (claim != Claim::kExclusive || ioctl(port, TIOCEXCL) == 0) && write(ready[1], "+", 1) == 1) {
        while (true) pause();
      }
      _exit(1);
    }
    close(ready[1]);
    char answer = 0;
    const bool holds = read(ready[0], &answer, 1) == 1;
    close(ready[0]);
    if (!holds) throw std::runtime_error("the other program could not open the device");
  }
  Holder(const Holder&) = delete;
  Holder& operator=(const Holder&) = delete;
  ~Holder() {
    kill(process_, SIGKILL);
    waitpid(process_, nullptr, 0);
  }

  pid_t Process() const { return process_; }

 private:
  pid_t process_;
};

std::string HeldText(const std::string& device, const std::string& name, const Holder& holder) {
  return device + " is held by " + name + " (process " + std::to_string(holder.Process()) +
         "). Close that and try again.";
}

TEST(PortAdvice, NamesTheProgramThatLockedThePort) {
  const PseudoTerminal peer;
  // Also open here: what counts is the lock.
  const FileDescriptor own(open(peer.Name().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC));
  const Holder holder(peer.Name(), Holder::Claim::kLock);
  EXPECT_EQ(AdviceOnOpening(peer.Name()), HeldText(peer.Name(), "terminal", holder));
}

TEST(PortAdvice, NamesTheProgramThatMarkedThePortExclusive) {
  const PseudoTerminal peer;
  const Holder holder(peer.Name(), Holder::Claim::kExclusive);
  EXPECT_EQ(AdviceOnOpening(peer.Name()), HeldText(peer.Name(), "terminal", holder));
}

TEST(PortAdvice, ShowsNoControlCharacterOfAProgramsName) {
  const PseudoTerminal peer;
  const Holder holder(peer.Name(), Holder::Claim::kLock, "a\x1b[b\xC3");
  EXPECT_EQ(AdviceOnOpening(peer.Name()), HeldText(peer.Name(), "a?[b?", holder));
}

TEST(PortAdvice, SaysThatThisProgramItselfHasThePort) {
  const PseudoTerminal peer;
  const FileDescriptor own(open(peer.Name().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC));
  ASSERT_EQ(flock(own.Get(), LOCK_EX | LOCK_NB), 0);
  EXPECT_EQ(AdviceOnOpening(peer.Name()), peer.Name() + " is already open in this program.");
}

TEST(PortAdvice, SpeaksOfAnotherProgramWhenTheSystemHidesWhich) {
  if (geteuid() != 0) GTEST_SKIP() << "only the superuser can hold a port that another user asks for";
  const PseudoTerminal peer;
  ASSERT_EQ(chmod(peer.Name().c_str(), 0666), 0);
  const Holder holder(peer.Name(), Holder::Claim::kExclusive);
  EXPECT_EQ(InAnotherProcess(User::kOrdinary,
                             [&] {
                               return AdviceOnOpening(peer.Name()) ==
                                              peer.Name() + " is held by another program. Close that and try again."
                                          ? 1
                                          : 0;
                             }),
            1);
}

TEST(PortAdvice, SaysThatTheDeviceIsGone) {
  EXPECT_EQ(AdviceOnOpening("/dev/tarvo-none"), "/dev/tarvo-none is not there. Plug in the adapter and try again.");
}

TEST(PortAdvice, SaysThatNothingIsMapped) {
  EXPECT_EQ(AdviceOnOpening(""),
            "No serial port for COM1. Plug in an adapter, or write COM1=/dev/... into the settings file.");
}

TEST(PortAdvice, SaysThatAFileIsNoSerialPort) {
  EXPECT_EQ(AdviceOnOpening("/dev/null"), "/dev/null is no serial port. Give COM1 another device.");
}

/// A device that members of `group` may use, and what is said of it to the user nobody.
class RightsTest : public testing::Test {
 protected:
  void SetUp() override {
    if (geteuid() != 0) GTEST_SKIP() << "only the superuser can give a device to a group and become another user";
  }

  void GiveTo(gid_t group, mode_t mode) const {
    ASSERT_EQ(chown(peer.Name().c_str(), 0, group), 0);
    ASSERT_EQ(chmod(peer.Name().c_str(), mode), 0);
  }

  /// True when nobody, whose process is in `processGroup` alone, reads `advice`.
  bool Reads(const std::string& advice, gid_t processGroup) const {
    return InAnotherProcess(User::kSame, [&] {
             if (setgroups(0, nullptr) != 0 || setresgid(processGroup, processGroup, processGroup) != 0 ||
                 setresuid(kNobody, kNobody, kNobody) != 0) {
               return 2;
             }
             const std::string said = AdviceOnOpening(peer.Name());
             if (said != advice) std::fprintf(stderr, "said: %s\n", said.c_str());
             return said == advice ? 1 : 0;
           }) == 1;
  }

  static constexpr uid_t kNobody = 65534;
  static constexpr gid_t kNogroup = 65534;
  static constexpr gid_t kUnknownGroup = 54321;
  PseudoTerminal peer;
};

TEST_F(RightsTest, AUserOutsideTheGroupReadsTheCommand) {
  const group* dialout = getgrnam("dialout");
  ASSERT_NE(dialout, nullptr);
  GiveTo(dialout->gr_gid, 0660);
  EXPECT_TRUE(Reads("You may not use " + peer.Name() + ". Run: sudo usermod -aG dialout nobody - then log in again.",
                    kNogroup));
}

TEST_F(RightsTest, AUserWhoseGroupDoesNotCountYetIsToldToLogInAgain) {
  GiveTo(kNogroup, 0660);
  EXPECT_TRUE(Reads("You may not use " + peer.Name() + " yet. Log in again, so that your group nogroup counts.",
                    kUnknownGroup));
}

TEST_F(RightsTest, WhereNoGroupHelpsNoneIsNamed) {
  const std::string advice =
      "You may not use " + peer.Name() + ". Ask your administrator for the right to read and write it.";
  const group* dialout = getgrnam("dialout");
  ASSERT_NE(dialout, nullptr);
  GiveTo(dialout->gr_gid, 0620);
  EXPECT_TRUE(Reads(advice, kNogroup)) << "members may only write";
  GiveTo(0, 0660);
  EXPECT_TRUE(Reads(advice, kNogroup)) << "the superuser's group";
  GiveTo(kUnknownGroup, 0660);
  EXPECT_TRUE(Reads(advice, kNogroup)) << "a group without a name";
}

TEST(FindHolder, FindsNobodyWhereNobodyIs) {
  const PseudoTerminal peer;
  EXPECT_FALSE(FindHolder(peer.Name()));
  EXPECT_FALSE(FindHolder("/dev/tarvo-none"));
}

}  // namespace
}  // namespace tarvo::platform
