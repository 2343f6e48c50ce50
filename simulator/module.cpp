#include "simulator/module.h"

#include <utility>

#include "bus/rtu_frame.h"

namespace tarvo::simulator {

namespace {

constexpr int kMostRead = 125;
constexpr int kMostWritten = 123;
constexpr core::Duration kLatency = core::milliseconds(12);

int WordAt(std::span<const std::uint8_t> bytes, std::size_t index) {
  return bytes[index] << 8 | bytes[index + 1];
}

state::Register RegisterAt(std::span<const std::uint8_t> bytes, std::size_t index, int offset = 0) {
  return state::Register(40001 + WordAt(bytes, index) + offset);
}

void Append(std::vector<std::uint8_t>& bytes, state::Word word) {
  bytes.push_back(static_cast<std::uint8_t>(word.High()));
  bytes.push_back(static_cast<std::uint8_t>(word.Low()));
}

std::vector<std::uint8_t> Refuse(std::span<const std::uint8_t> request, ModbusException why) {
  return {request[0], static_cast<std::uint8_t>(request[1] | bus::kExceptionBit), static_cast<std::uint8_t>(why)};
}

}  // namespace

Module::Module(std::unique_ptr<Model> model, const ModuleOptions& options, core::TimePoint now)
    : model_(std::move(model)),
      firmware_(options.firmware),
      inForce_(options.setting),
      still_(options.still),
      now_(now) {
  model_->SetFirmware(options.firmware);
  if (!still_) {
    Random random(options.seed);
    model_->Seed(random);
  }
  for (const Preset& preset : options.presets) model_->registers.Set(preset.reg, preset.value);
  model_->SetSetting(options.setting);
  model_->StoreImages();
  // Once more for the presets of images, which may well differ from what is live.
  for (const Preset& preset : options.presets) {
    for (const ImagePair& pair : model_->Data().images) {
      if (pair.image == preset.reg) model_->registers.Set(preset.reg, preset.value);
    }
  }
}

void Module::Advance(core::TimePoint now) {
  if (restarting_ && now >= restarted_) {
    restarting_ = false;
    model_->LoadImages();
    model_->Restarted();
    if (!model_->Data().fixedLine) inForce_ = model_->GetSetting();
    now_ = restarted_;
  }
  if (!restarting_ && !still_ && now > now_) model_->Live(now - now_);
  now_ = now;
}

void Module::Restart(core::TimePoint now) {
  Advance(now);
  BeginRestart();
}

core::Duration Module::ReplyDelay() const {
  const ModelData& data = model_->Data();
  return model_->registers.Get(data.flags).Has(data.delayMask) ? kLatency : core::Duration::zero();
}

std::vector<std::uint8_t> Module::Execute(std::span<const std::uint8_t> request, core::TimePoint now, bool failing) {
  Advance(now);
  const bool broadcast = request[0] == 0;
  if (restarting_ || (!broadcast && request[0] != inForce_.address)) return {};
  model_->Heard();
  Bytes reply = failing && !broadcast ? Refuse(request, ModbusException::kDevice) : Answer(request);
  if (broadcast) return {};
  const std::size_t length = reply.size();
  reply.resize(length + 2);
  bus::AppendCrc(reply, length);
  return reply;
}

state::Word Module::Get(state::Register reg, core::TimePoint now) {
  Advance(now);
  return model_->Read(reg);
}

void Module::Set(state::Register reg, state::Word value, core::TimePoint now) {
  Advance(now);
  model_->registers.Set(reg, value);
}

bool Module::SetLoad(int output, Load load, core::TimePoint now) {
  Advance(now);
  return model_->SetLoad(output, load);
}

Module::Bytes Module::Answer(std::span<const std::uint8_t> request) {
  switch (request[1]) {
    case bus::kReadHoldingRegisters:
      return ReadRegisters(request);
    case bus::kWriteSingleRegister:
      return WriteRegister(request);
    case bus::kWriteMultipleRegisters:
      return WriteRegisters(request);
    default:
      return Refuse(request, ModbusException::kFunction);
  }
}

Module::Bytes Module::ReadRegisters(std::span<const std::uint8_t> request) const {
  if (request.size() != 8) return Refuse(request, ModbusException::kValue);
  const int count = WordAt(request, 4);
  if (count < 1 || count > kMostRead) return Refuse(request, ModbusException::kValue);
  Bytes reply = {request[0], request[1], static_cast<std::uint8_t>(count * 2)};
  for (int i = 0; i < count; ++i) {
    const state::Register reg = RegisterAt(request, 2, i);
    if (!model_->registers.Has(reg)) return Refuse(request, ModbusException::kRegister);
    Append(reply, model_->Read(reg));
  }
  return reply;
}

Module::Bytes Module::WriteRegister(std::span<const std::uint8_t> request) {
  if (request.size() != 8) return Refuse(request, ModbusException::kValue);
  const state::Register reg = RegisterAt(request, 2);
  const state::Word value(static_cast<unsigned>(WordAt(request, 4)));
  if (const auto why = WhyNot(reg, value)) return Refuse(request, *why);
  Write(reg, value);
  return {request.begin(), request.end() - 2};
}

Module::Bytes Module::WriteRegisters(std::span<const std::uint8_t> request) {
  if (request.size() < 9) return Refuse(request, ModbusException::kValue);
  const int count = WordAt(request, 4);
  const bool fits = count >= 1 && count <= kMostWritten && request[6] == count * 2 &&
                    request.size() == 9 + static_cast<std::size_t>(count) * 2;
  if (!fits) return Refuse(request, ModbusException::kValue);
  // All or nothing: a refused request changes no register.
  for (const bool write : {false, true}) {
    for (int i = 0; i < count; ++i) {
      const state::Register reg = RegisterAt(request, 2, i);
      const state::Word value(static_cast<unsigned>(WordAt(request, 7 + static_cast<std::size_t>(i) * 2)));
      if (write) {
        Write(reg, value);
      } else if (const auto why = WhyNot(reg, value)) {
        return Refuse(request, *why);
      }
    }
  }
  return {request.begin(), request.begin() + 6};
}

std::optional<ModbusException> Module::WhyNot(state::Register reg, state::Word value) const {
  const RegisterRange* range = model_->registers.RangeOf(reg);
  if (range == nullptr || !range->writable) return ModbusException::kRegister;
  if (value.Unsigned() < range->lowest || value.Unsigned() > range->highest) return ModbusException::kValue;
  return std::nullopt;
}

void Module::Write(state::Register reg, state::Word value) {
  if (reg != model_->Data().reset) {
    model_->Write(reg, value);
  } else if (value == state::Word(model_->Data().resetValue)) {
    // The reply to this very request still goes out, on the line as it is.
    BeginRestart();
  }
}

void Module::BeginRestart() {
  restarting_ = true;
  restarted_ = now_ + kRestartTime;
}

}  // namespace tarvo::simulator
