#pragma once

#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <stdexcept>
#include <string>
#include <string_view>

namespace tarvo::test {

/// The far end of a serial line: a pseudo terminal whose other side (`Name`) is the device.
class PseudoTerminal {
 public:
  PseudoTerminal() : master_(posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC)) {
    std::array<char, 128> name{};
    if (master_ < 0 || grantpt(master_) != 0 || unlockpt(master_) != 0 ||
        ptsname_r(master_, name.data(), name.size()) != 0) {
      throw std::runtime_error("no pseudo terminal can be made");
    }
    name_ = name.data();
  }
  PseudoTerminal(const PseudoTerminal&) = delete;
  PseudoTerminal& operator=(const PseudoTerminal&) = delete;
  ~PseudoTerminal() { Close(); }

  const std::string& Name() const { return name_; }

  void Send(std::string_view bytes) const {
    if (!TrySend(bytes)) throw std::runtime_error("the pseudo terminal takes no bytes");
  }
  /// False when not all of `bytes` went out, since nobody reads at the other end.
  bool TrySend(std::string_view bytes) const {
    return write(master_, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size());
  }

  /// What has come, at least `count` bytes; fewer when nothing more comes within `milliseconds`.
  std::string Receive(std::size_t count, int milliseconds = 1000) const {
    std::string received;
    std::array<char, 512> block;
    while (received.size() < count) {
      pollfd ready{master_, POLLIN, 0};
      if (poll(&ready, 1, milliseconds) <= 0) break;
      const ssize_t got = read(master_, block.data(), block.size());
      if (got <= 0) break;
      received.append(block.data(), static_cast<std::size_t>(got));
    }
    return received;
  }

  /// The line settings that the device side was given.
  termios Line() const {
    termios line{};
    if (tcgetattr(master_, &line) != 0) throw std::runtime_error("the pseudo terminal tells no settings");
    return line;
  }

  /// The device vanishes.
  void Close() {
    if (master_ >= 0) close(master_);
    master_ = -1;
  }

 private:
  int master_;
  std::string name_;
};

}  // namespace tarvo::test
