#include "bus/modcom/modcom.h"

#include <algorithm>
#include <utility>

#include "view/window.h"

namespace tarvo::bus {

namespace {

constexpr int kFirstRegister = 40001;
constexpr int kLastRegister = 49999;
constexpr int kLastAddress = 255;
constexpr std::uint8_t kIllegalValue = 3;

std::uint16_t AddressOnLine(state::Register target) {
  if (target.Number() < kFirstRegister || target.Number() > kLastRegister)
    throw core::Fault(core::kSubscriptOutOfRange);
  return target.LineAddress();
}

/// 0, which no module has, for what is no address.
std::uint8_t SlaveOf(int moduleAddr) {
  return moduleAddr > kLastAddress ? std::uint8_t{0} : static_cast<std::uint8_t>(std::max(moduleAddr, 0));
}

RtuRequest ReadOf(int moduleAddr, state::Register first, std::int16_t count) {
  RtuRequest request;
  request.slave = SlaveOf(moduleAddr);
  request.function = kReadHoldingRegisters;
  request.address = AddressOnLine(first);
  request.count = static_cast<std::uint16_t>(std::max<std::int16_t>(count, 0));
  return request;
}

}  // namespace

ModCom::ModCom(view::Window& window, std::string_view name, PortOpener& opener)
    : Control(window, view::Kind::kComponent, name),
      opener_(opener),
      goOn_(window.GetScheduler(), [this] { GoOn(); }) {}

ModCom::~ModCom() = default;

core::Status ModCom::SetPortOpen(bool open) {
  if (!open) {
    ClosePort();
    return core::Status::Good();
  }
  if (PortOpen()) return core::Status::Good();
  const std::optional<LineSettings> line = LineSettings::Parse(Settings());
  if (!line) return core::Status::Failed(core::Fault(core::kDeviceUnavailable));
  PortOpener::Opened opened = opener_.Open(CommPort(), *line);
  if (!opened.port) return std::move(opened.status);
  port_ = std::move(opened.port);
  RtuListener& listener = *this;
  master_.emplace(GetWindow().GetScheduler(), *port_, *line, listener);
  master_->SetDoubt(doubt_);
  return core::Status::Good();
}

void ModCom::ClosePort() {
  if (!PortOpen()) return;
  doubt_ = master_->GetDoubt();
  master_.reset();
  port_.reset();
  ++closings_;
  if (active_ != nullptr && !activeEnded_) {
    active_->outcome_ = Outcome(Outcome::Kind::kClosed);
    activeEnded_ = true;
  }
  // Not from in here: the issuer may be the one that closes the port, or wait for the one that does.
  goOn_.Post();
}

core::Status ModCom::ResetLink() {
  if (!PortOpen()) return core::Status::Good();
  const std::optional<LineSettings> line = LineSettings::Parse(Settings());
  if (!line) return core::Status::Failed(core::Fault(core::kDeviceUnavailable));
  core::Status status = port_->SetLine(*line);
  if (status.Ok()) master_->SetLine(*line);
  return status;
}

ModCom::Request ModCom::ReadPLC(state::Register first, state::Word& data, std::int16_t count, std::int16_t /*format*/) {
  return {*this, ReadOf(ModuleAddr(), first, count), &data};
}

ModCom::Request ModCom::ReadPLC(state::Register first, std::optional<state::Word>& data, std::int16_t count,
                                std::int16_t /*format*/) {
  return {*this, ReadOf(ModuleAddr(), first, count), &data};
}

ModCom::Request ModCom::ReadPLC(state::Register first, std::span<state::Word> data, std::int16_t count,
                                std::int16_t /*format*/) {
  if (count > static_cast<std::ptrdiff_t>(data.size())) throw core::Fault(core::kSubscriptOutOfRange);
  return {*this, ReadOf(ModuleAddr(), first, count), data};
}

ModCom::Request ModCom::WritePLC(state::Register target, state::Word value, std::int16_t /*count*/,
                                 std::int16_t /*format*/) {
  RtuRequest request;
  request.slave = SlaveOf(ModuleAddr());
  request.function = kWriteSingleRegister;
  request.address = AddressOnLine(target);
  request.value = static_cast<std::uint16_t>(value.Unsigned());
  return {*this, request, std::monostate()};
}

ModCom::FreeBus ModCom::Free() {
  return FreeBus(*this);
}

std::vector<view::NamedValue> ModCom::Properties() const {
  const auto number = [](int value) { return std::int64_t{value}; };
  return {
      {"CommPort", number(CommPort)},     {"Settings", Settings()},           {"ModuleAddr", number(ModuleAddr)},
      {"LinkParamA", number(LinkParamA)}, {"LinkParamB", number(LinkParamB)}, {"ReplyTimeout", number(ReplyTimeout)},
      {"ReplyMode", number(ReplyMode)},   {"PortOpen", PortOpen()},           {"CommBusy", CommBusy()}};
}

std::optional<Outcome> ModCom::WhyNot(const Request& request) const {
  const RtuRequest& asked = request.asked_;
  const bool reads = asked.function == kReadHoldingRegisters;
  if (!PortOpen()) return Outcome(Outcome::Kind::kClosed);
  if (master_->Lost()) return Outcome(Outcome::Kind::kPortGone);
  if (asked.slave == 0) return Outcome(Outcome::Kind::kSilence);
  // As every module would refuse it.
  if (reads && (asked.count < 1 || asked.count > kMostRegisters))
    return Outcome(Outcome::Kind::kException, kIllegalValue);
  return std::nullopt;
}

void ModCom::Begin(Request& request) {
  active_ = &request;
  master_->Start(request.asked_, std::max(LinkParamB(), 1), core::milliseconds(std::max(ReplyTimeout(), 0)));
}

void ModCom::Withdraw(Request& request) {
  if (active_ != &request) return;
  active_ = nullptr;
  if (!std::exchange(activeEnded_, false)) master_->Abandon();
  goOn_.Post();
}

void ModCom::ExchangeEnded(Outcome outcome) {
  if (outcome.Good()) active_->Keep(master_->Words());
  active_->outcome_ = outcome;
  activeEnded_ = true;
  // The master and the port are still at work; whoever goes on now may close them.
  goOn_.Post();
}

void ModCom::GoOn() {
  if (std::exchange(activeEnded_, false)) std::exchange(active_, nullptr)->frame_.resume();
  while (!CommBusy() && line_.WakeOne()) {
  }
}

ModCom::Request::~Request() {
  modcom_.Withdraw(*this);
}

bool ModCom::Request::await_ready() {
  if (const std::optional<Outcome> failed = modcom_.WhyNot(*this)) {
    outcome_ = *failed;
    return true;
  }
  const bool isPoll = std::holds_alternative<std::span<state::Word>>(target_);
  if (isPoll && modcom_.CommBusy()) {
    outcome_ = Outcome(Outcome::Kind::kBusy);
    return true;
  }
  return false;
}

void ModCom::Request::await_suspend(std::coroutine_handle<> frame) {
  frame_ = frame;
  closings_ = modcom_.closings_;
  if (modcom_.CommBusy()) {
    modcom_.line_.Add(*this);
  } else {
    modcom_.Begin(*this);
  }
}

void ModCom::Request::Woken() {
  std::optional<Outcome> failed = modcom_.WhyNot(*this);
  // Closed and opened again while it waited.
  if (closings_ != modcom_.closings_) failed = Outcome(Outcome::Kind::kClosed);
  if (failed) {
    outcome_ = *failed;
    frame_.resume();
  } else {
    modcom_.Begin(*this);
  }
}

void ModCom::Request::Keep(std::span<const std::uint16_t> words) {
  if (words.empty()) return;
  if (auto* word = std::get_if<state::Word*>(&target_)) **word = state::Word(words[0]);
  if (auto* word = std::get_if<std::optional<state::Word>*>(&target_)) **word = state::Word(words[0]);
  if (auto* block = std::get_if<std::span<state::Word>>(&target_)) {
    std::transform(words.begin(), words.end(), block->begin(), [](std::uint16_t bits) { return state::Word(bits); });
  }
}

void ModCom::FreeBus::await_suspend(std::coroutine_handle<> frame) {
  frame_ = frame;
  modcom_.line_.Add(*this);
}

}  // namespace tarvo::bus
