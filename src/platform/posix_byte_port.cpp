#include "platform/posix_byte_port.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <memory>
#include <utility>

#include "platform/port_holder.h"

namespace tarvo::platform {

namespace {

struct Speed {
  int baud;
  speed_t code;
};
constexpr std::array kSpeeds = {
    Speed{1200, B1200},   Speed{2400, B2400},   Speed{4800, B4800},   Speed{9600, B9600},
    Speed{19200, B19200}, Speed{38400, B38400}, Speed{57600, B57600},
};

/// 0, or the system's error number.
int ErrorOf(int result) {
  return result < 0 ? errno : 0;
}

bool IsPseudoTerminal(int descriptor) {
  constexpr unsigned kFirstMajor = 136;
  constexpr unsigned kLastMajor = 143;
  struct stat status{};
  if (fstat(descriptor, &status) != 0) return false;
  return major(status.st_rdev) >= kFirstMajor && major(status.st_rdev) <= kLastMajor;
}

/// Sets the line and looks whether the device took it; 0, or the system's error number.
int ApplyLine(int descriptor, const bus::LineSettings& line) {
  const auto* speed =
      std::find_if(kSpeeds.begin(), kSpeeds.end(), [&](Speed known) { return known.baud == line.baud; });
  if (speed == kSpeeds.end()) return EINVAL;
  termios wanted{};
  if (const int error = ErrorOf(tcgetattr(descriptor, &wanted))) return error;
  cfmakeraw(&wanted);
  wanted.c_iflag &= ~static_cast<tcflag_t>(IXOFF | IXANY | INPCK);
  wanted.c_cflag &= ~static_cast<tcflag_t>(CSTOPB | PARENB | PARODD | CMSPAR | CRTSCTS);
  wanted.c_cflag |= CLOCAL | CREAD;
  if (line.parity != bus::Parity::kNone) {
    wanted.c_iflag |= INPCK;
    wanted.c_cflag |= PARENB;
    if (line.parity == bus::Parity::kOdd) wanted.c_cflag |= PARODD;
  }
  // With at least one byte a read of 0 bytes can only mean that the device is gone.
  wanted.c_cc[VMIN] = 1;
  wanted.c_cc[VTIME] = 0;
  cfsetispeed(&wanted, speed->code);
  cfsetospeed(&wanted, speed->code);

  // EINVAL may only mean that a pseudo terminal dropped PARENB: what the device has now decides.
  const int error = ErrorOf(tcsetattr(descriptor, TCSANOW, &wanted));
  if (error != 0 && error != EINVAL) return error;
  termios now{};
  if (const int readError = ErrorOf(tcgetattr(descriptor, &now))) return readError;
  tcflag_t compared = CSIZE | CSTOPB | PARENB | PARODD | CMSPAR | CRTSCTS | CLOCAL | CREAD;
  if (IsPseudoTerminal(descriptor)) compared &= ~static_cast<tcflag_t>(PARENB);
  const bool taken = (now.c_cflag & compared) == (wanted.c_cflag & compared) && now.c_iflag == wanted.c_iflag &&
                     now.c_lflag == wanted.c_lflag && cfgetospeed(&now) == speed->code &&
                     cfgetispeed(&now) == speed->code;
  return taken ? 0 : EINVAL;
}

/// Keeps everybody else out, or gives the system's error number.
int Claim(int descriptor) {
  // Stops a second instance, also the superuser's.
  if (const int error = ErrorOf(flock(descriptor, LOCK_EX | LOCK_NB))) return error;
  // The superuser gets past another program's TIOCEXCL. A pseudo terminal keeps the mark when its holder crashed,
  // so the mark counts only while somebody has the device open.
  int exclusive = 0;
  if (ioctl(descriptor, TIOCGEXCL, &exclusive) == 0 && exclusive != 0 && HeldByAnother(descriptor)) return EBUSY;
  return ErrorOf(ioctl(descriptor, TIOCEXCL));
}

/// Waits for room to write; false when there is none by `end` or the device is gone.
bool WaitForRoom(int descriptor, std::chrono::steady_clock::time_point end) {
  pollfd room{descriptor, POLLOUT, 0};
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
  if (left.count() <= 0) return false;
  const int ready = poll(&room, 1, static_cast<int>(left.count()));
  return ready > 0 || (ready < 0 && errno == EINTR);
}

}  // namespace

core::Fault FaultOfDevice(int error, const std::string& device) {
  switch (error) {
    case ENOENT:
    case ENODEV:
    case ENXIO:
    case ENOTDIR:
      return core::Fault(core::kDeviceNotFound, error, device);
    case EACCES:
    case EPERM:
      return core::Fault(core::kPermissionDenied, error, device);
    case EBUSY:
    case EWOULDBLOCK:
      return core::Fault(core::kPortAlreadyOpen, error, device);
    default:
      return core::Fault(core::kDeviceUnavailable, error, device);
  }
}

bus::PortOpener::Opened PosixBytePort::Open(core::Scheduler& scheduler, const std::string& device,
                                            const bus::LineSettings& line) {
  bus::PortOpener::Opened opened;
  FileDescriptor descriptor(open(device.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
  int error = ErrorOf(descriptor.Get());
  if (error == 0 && isatty(descriptor.Get()) == 0) error = ENOTTY;
  if (error == 0) error = Claim(descriptor.Get());
  if (error != 0) {
    opened.status = core::Status::Failed(FaultOfDevice(error, device));
    return opened;
  }
  // From here on the port's end gives the claim back.
  opened.port.reset(new PosixBytePort(scheduler, std::move(descriptor), device));
  opened.status = opened.port->SetLine(line);
  if (opened.status.Ok()) {
    opened.port->DiscardInput();
  } else {
    opened.port.reset();
  }
  return opened;
}

PosixBytePort::PosixBytePort(core::Scheduler& scheduler, FileDescriptor descriptor, std::string device)
    : descriptor_(std::move(descriptor)), device_(std::move(device)), lostCall_(scheduler, [this] { TellLost(); }) {
  watch_.emplace(scheduler, descriptor_.Get(), [this](core::DescriptorEvents events) { OnEvents(events); });
}

PosixBytePort::~PosixBytePort() {
  // Bytes that a stalled device did not take would hold up the close for seconds.
  tcflush(descriptor_.Get(), TCOFLUSH);
  ioctl(descriptor_.Get(), TIOCNXCL);
}

void PosixBytePort::SetListener(bus::BytePortListener* listener) {
  listener_ = listener;
  if (lost_ && !lostTold_) lostCall_.Post();
}

bool PosixBytePort::Write(std::span<const std::uint8_t> bytes) {
  const auto end = std::chrono::steady_clock::now() + kWriteWait;
  while (!bytes.empty() && !lost_) {
    const ssize_t written = write(descriptor_.Get(), bytes.data(), bytes.size());
    if (written > 0) {
      bytes = bytes.subspan(static_cast<std::size_t>(written));
    } else if (written < 0 && errno != EAGAIN && errno != EINTR) {
      Lose();
    } else if (!WaitForRoom(descriptor_.Get(), end)) {
      // Half a frame is no frame: it must not stand before the next one.
      tcflush(descriptor_.Get(), TCOFLUSH);
      break;
    }
  }
  return !lost_;
}

std::size_t PosixBytePort::Take(std::span<std::uint8_t> into) {
  // Also what has arrived since the turn began, as in a hard wait.
  if (end_ - begin_ < into.size()) ReadOnce();
  const std::size_t count = std::min(into.size(), end_ - begin_);
  std::copy_n(input_.data() + begin_, count, into.data());
  begin_ += count;
  return count;
}

void PosixBytePort::DiscardInput() {
  // Reads instead of a flush of the terminal: a flush leaves bytes that are still on their way to it. Some rounds only,
  // since a device may babble without end.
  constexpr int kRounds = 16;
  for (int round = 0; round < kRounds; ++round) {
    begin_ = end_ = 0;
    if (!ReadOnce()) return;
  }
  begin_ = end_ = 0;
}

core::Status PosixBytePort::SetLine(const bus::LineSettings& line) {
  const int error = lost_ ? EIO : ApplyLine(descriptor_.Get(), line);
  if (error == EIO) Lose();
  return error == 0 ? core::Status::Good() : core::Status::Failed(FaultOfDevice(error, device_));
}

void PosixBytePort::OnEvents(core::DescriptorEvents events) {
  if (lost_) return;
  const bool arrived = ReadOnce();
  if (events.lost) {
    while (end_ < input_.size() && ReadOnce()) continue;
    Lose();
  }
  // Last: the listener may end the port.
  if (arrived && listener_ != nullptr) listener_->BytesArrived();
}

bool PosixBytePort::ReadOnce() {
  if (lost_) return false;
  end_ -= begin_;
  std::memmove(input_.data(), input_.data() + std::exchange(begin_, 0), end_);
  std::array<std::uint8_t, 256> dropped{};
  const bool full = end_ == input_.size();
  const std::span<std::uint8_t> into = full ? std::span<std::uint8_t>(dropped) : std::span(input_).subspan(end_);
  const ssize_t count = read(descriptor_.Get(), into.data(), into.size());
  if (count > 0) {
    if (!full) end_ += static_cast<std::size_t>(count);
    return true;
  }
  if (count == 0 || (errno != EAGAIN && errno != EINTR)) Lose();
  return false;
}

void PosixBytePort::Lose() {
  if (lost_) return;
  lost_ = true;
  // Later in this turn or in the next: the listener is never told from within its own call.
  lostCall_.Post();
}

void PosixBytePort::TellLost() {
  // A hung-up descriptor is ready for ever and would keep the loop awake.
  watch_.reset();
  if (listener_ == nullptr || lostTold_) return;
  lostTold_ = true;
  // Last: the listener may end the port.
  listener_->PortLost();
}

}  // namespace tarvo::platform
