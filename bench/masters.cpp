#include "bench/masters.h"

#include <stdexcept>

#include "bench/peer.h"
#include "platform/posix_byte_port.h"

namespace tarvo::bench {

namespace {

constexpr int kFirstRegister = 40001;

[[noreturn]] void Fail(const std::string& device) {
  throw std::runtime_error(device + " cannot be opened");
}

}  // namespace

TarvoMaster::Opener::Opened TarvoMaster::Opener::Open(int /*comPort*/, const bus::LineSettings& line) {
  return platform::PosixBytePort::Open(loop_, device_, line);
}

TarvoMaster::TarvoMaster(platform::PollLoop& loop, const std::string& device, const MasterSettings& settings)
    : loop_(loop),
      opener_(loop, device),
      screen_(loop),
      window_(screen_),
      modcom_(window_, "ModCom1", opener_),
      tasks_([](const std::exception_ptr& fault) { std::rethrow_exception(fault); }) {
  modcom_.Settings = std::to_string(settings.baud) + ",n,8,1";
  modcom_.ModuleAddr = Peer::kSlave;
  modcom_.LinkParamB = settings.tries;
  modcom_.ReplyTimeout =
      static_cast<int>(std::chrono::duration_cast<core::milliseconds>(settings.replyTimeout).count());
  if (!modcom_.SetPortOpen(true).Ok()) Fail(device);
}

bool TarvoMaster::Read(int address) {
  ended_ = false;
  tasks_.Spawn(ReadOnce(address));
  loop_.RunUntil([this] { return ended_; });
  return good_;
}

core::Task<> TarvoMaster::ReadOnce(int address) {
  good_ = co_await ReadAsTask(address);
  ended_ = true;
}

core::Task<bool> TarvoMaster::ReadAsTask(int address) {
  const std::span<state::Word> block(words_);
  const bus::Outcome outcome = co_await modcom_.ReadPLC(state::Register(kFirstRegister + address), block, kBlock);
  co_return outcome.Good();
}

LibmodbusMaster::LibmodbusMaster(const std::string& device, const MasterSettings& settings)
    : context_(modbus_new_rtu(device.c_str(), settings.baud, 'N', 8, 1)) {
  using std::chrono::duration_cast;
  const auto seconds = duration_cast<std::chrono::seconds>(settings.replyTimeout);
  const auto rest = duration_cast<core::microseconds>(settings.replyTimeout - seconds);
  if (context_ == nullptr || modbus_set_slave(context_.get(), Peer::kSlave) != 0 ||
      modbus_set_response_timeout(context_.get(), static_cast<std::uint32_t>(seconds.count()),
                                  static_cast<std::uint32_t>(rest.count())) != 0 ||
      // Between two bytes of a reply; left at half a second a torn reply would take that long.
      modbus_set_byte_timeout(context_.get(), static_cast<std::uint32_t>(seconds.count()),
                              static_cast<std::uint32_t>(rest.count())) != 0 ||
      modbus_connect(context_.get()) != 0) {
    Fail(device);
  }
}

}  // namespace tarvo::bench
