#pragma once

#include <modbus/modbus.h>

#include <array>
#include <cstdint>
#include <exception>
#include <memory>
#include <span>
#include <string>

#include "bus/modcom/modcom.h"
#include "core/scope.h"
#include "core/task.h"
#include "platform/poll_loop.h"
#include "support/bare_window.h"
#include "view/screen.h"

namespace tarvo::bench {

/// The block that every master here asks for: nine registers, as a poll of the Belk page does.
inline constexpr int kBlock = 9;

struct MasterSettings {
  int baud = 57600;
  core::Duration replyTimeout = core::milliseconds(100);
  int tries = 1;
};

/// `ModCom` on a real port, as the program has it.
class TarvoMaster {
 public:
  /// Throws when the device cannot be opened.
  TarvoMaster(platform::PollLoop& loop, const std::string& device, const MasterSettings& settings);

  /// Reads from the register at `address` on and runs the loop until the outcome is there.
  bool Read(int address);
  /// The same within a task.
  core::Task<bool> ReadAsTask(int address);

  std::uint16_t Word(std::size_t index) const { return static_cast<std::uint16_t>(words_.at(index).Unsigned()); }

 private:
  class Opener final : public bus::PortOpener {
   public:
    Opener(platform::PollLoop& loop, std::string device) : loop_(loop), device_(std::move(device)) {}
    Opened Open(int comPort, const bus::LineSettings& line) override;

   private:
    platform::PollLoop& loop_;
    std::string device_;
  };

  core::Task<> ReadOnce(int address);

  platform::PollLoop& loop_;
  Opener opener_;
  view::Screen screen_;
  test::BareWindow window_;
  bus::ModCom modcom_;
  std::array<state::Word, kBlock> words_{};
  bool ended_ = false;
  bool good_ = false;
  core::Scope tasks_;
};

/// A libmodbus context on a serial device.
class LibmodbusMaster {
 public:
  /// Throws when the device cannot be opened.
  LibmodbusMaster(const std::string& device, const MasterSettings& settings);

  bool Read(int address) { return modbus_read_registers(context_.get(), address, kBlock, words_.data()) == kBlock; }
  /// Throws away what lies in the input.
  void Flush() { modbus_flush(context_.get()); }

  std::uint16_t Word(std::size_t index) const { return words_.at(index); }

 private:
  struct End {
    void operator()(modbus_t* context) const {
      modbus_close(context);
      modbus_free(context);
    }
  };

  std::unique_ptr<modbus_t, End> context_;
  std::array<std::uint16_t, kBlock> words_{};
};

/// True when a master's words are those that a peer with numbered registers gives from `address` on.
template <class Master>
bool AnswerFits(const Master& master, int address) {
  for (std::size_t i = 0; i < kBlock; ++i) {
    if (master.Word(i) != static_cast<std::uint16_t>(address + static_cast<int>(i))) return false;
  }
  return true;
}

}  // namespace tarvo::bench
