#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>

#include "bus/line_settings.h"
#include "core/fault.h"
#include "core/scheduler.h"

namespace tarvo::simulator {

/// A descriptor that is closed with its owner.
class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
  }
  ~Descriptor();

  int Number() const { return number_; }
  explicit operator bool() const { return number_ >= 0; }

 private:
  int number_ = -1;
};

/// A pseudo terminal that a master opens like a serial port.
class Pty {
 public:
  /// Called with what a master sends, and when no program has the port open any more.
  struct Events {
    std::function<void(std::span<const std::uint8_t>)> arrived;
    std::function<void()> left;
  };

  Pty(core::Scheduler& scheduler, Events events) : scheduler_(scheduler), events_(std::move(events)) {}

  /// Makes the terminal, which must not be there. The fault tells what the system refused.
  core::Status Open();
  /// Takes the terminal away: whoever has it open is hung up.
  void Close();

  /// The device that a master opens; empty when there is none.
  const std::string& Path() const { return path_; }
  /// Speed and parity that the master has set; nothing when the speed is none that a module knows.
  std::optional<bus::LineSettings> MasterLine() const;
  /// Sends to the master; what does not fit is lost, as on a line that nobody reads.
  void Send(std::span<const std::uint8_t> bytes);

 private:
  core::Status Make();
  void Read();
  void CountMasters();

  core::Scheduler& scheduler_;
  Events events_;
  Descriptor master_;
  Descriptor slave_;  // kept open, for its settings, and so that the terminal never hangs up
  Descriptor opens_;  // tells when the device is opened and closed
  std::string path_;
  int masters_ = 0;
  std::unique_ptr<core::DescriptorWatch> readWatch_;
  std::unique_ptr<core::DescriptorWatch> opensWatch_;
};

}  // namespace tarvo::simulator
