#include "simulator/pty.h"

#include <fcntl.h>
#include <sys/inotify.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <system_error>

namespace tarvo::simulator {

namespace {

struct Speed {
  speed_t code;
  int baud;
};

constexpr std::array kSpeeds = {Speed{B1200, 1200},   Speed{B2400, 2400},   Speed{B4800, 4800},  Speed{B9600, 9600},
                                Speed{B19200, 19200}, Speed{B38400, 38400}, Speed{B57600, 57600}};

core::Status SystemFault(const std::string& what) {
  const int number = errno;
  return core::Status::Failed(core::Fault(what + ": " + std::generic_category().message(number), number));
}

}  // namespace

Descriptor::~Descriptor() {
  if (number_ >= 0) close(number_);
}

core::Status Pty::Open() {
  core::Status made = Make();
  if (!made.Ok()) Close();
  return made;
}

void Pty::Close() {
  readWatch_.reset();
  opensWatch_.reset();
  master_ = Descriptor();
  slave_ = Descriptor();
  opens_ = Descriptor();
  path_.clear();
  masters_ = 0;
}

core::Status Pty::Make() {
  master_ = Descriptor(posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
  std::array<char, 64> name{};
  if (!master_ || grantpt(master_.Number()) != 0 || unlockpt(master_.Number()) != 0 ||
      ptsname_r(master_.Number(), name.data(), name.size()) != 0) {
    return SystemFault("no pseudo terminal");
  }
  path_ = name.data();
  slave_ = Descriptor(open(name.data(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
  termios settings{};
  if (!slave_ || tcgetattr(slave_.Number(), &settings) != 0) return SystemFault(path_);
  cfmakeraw(&settings);
  if (tcsetattr(slave_.Number(), TCSANOW, &settings) != 0) return SystemFault(path_);

  opens_ = Descriptor(inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
  if (!opens_ || inotify_add_watch(opens_.Number(), name.data(), IN_OPEN | IN_CLOSE) < 0) return SystemFault(path_);

  readWatch_ = std::make_unique<core::DescriptorWatch>(scheduler_, master_.Number(), [this](auto) { Read(); });
  opensWatch_ = std::make_unique<core::DescriptorWatch>(scheduler_, opens_.Number(), [this](auto) { CountMasters(); });
  return core::Status::Good();
}

std::optional<bus::LineSettings> Pty::MasterLine() const {
  termios settings{};
  if (tcgetattr(slave_.Number(), &settings) != 0) return std::nullopt;
  for (const Speed& speed : kSpeeds) {
    if (speed.code != cfgetospeed(&settings)) continue;
    bus::LineSettings line;
    line.baud = speed.baud;
    // A pseudo terminal drops PARENB; INPCK is what tells that the master wants parity.
    if ((settings.c_iflag & INPCK) != 0) {
      line.parity = (settings.c_cflag & PARODD) != 0 ? bus::Parity::kOdd : bus::Parity::kEven;
    }
    return line;
  }
  return std::nullopt;
}

void Pty::Send(std::span<const std::uint8_t> bytes) {
  [[maybe_unused]] const ssize_t sent = write(master_.Number(), bytes.data(), bytes.size());
}

void Pty::Read() {
  std::array<std::uint8_t, 512> buffer{};
  const ssize_t count = read(master_.Number(), buffer.data(), buffer.size());
  if (count > 0) events_.arrived(std::span<const std::uint8_t>(buffer).first(static_cast<std::size_t>(count)));
}

void Pty::CountMasters() {
  alignas(inotify_event) std::array<char, 4096> buffer{};
  const ssize_t count = read(opens_.Number(), buffer.data(), buffer.size());
  for (ssize_t at = 0; at < count;) {
    inotify_event event{};
    std::memcpy(&event, buffer.data() + at, sizeof event);
    at += static_cast<ssize_t>(sizeof event + event.len);
    const bool opened = (event.mask & IN_OPEN) != 0;
    // What came while nobody had the port open is lost.
    if (opened && masters_ == 0) tcflush(slave_.Number(), TCIFLUSH);
    masters_ = std::max(0, masters_ + (opened ? 1 : -1));
  }
  if (masters_ > 0) return;
  // A real port forgets at its last close. This one is kept open here, so it would keep for the next master what the
  // last one has not read, and the exclusive use that a killed one could not give back.
  tcflush(slave_.Number(), TCIFLUSH);
  ioctl(slave_.Number(), TIOCNXCL);
  events_.left();
}

}  // namespace tarvo::simulator
