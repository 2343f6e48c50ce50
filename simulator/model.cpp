#include "simulator/model.h"

#include <algorithm>
#include <array>
#include <map>

namespace tarvo::simulator {

namespace {

struct BaudCode {
  int baud;
  int code;
};

constexpr std::array kBaudCodes = {BaudCode{1200, 6},  BaudCode{2400, 7},  BaudCode{4800, 0}, BaudCode{9600, 1},
                                   BaudCode{19200, 2}, BaudCode{38400, 3}, BaudCode{57600, 4}};

constexpr unsigned kSplitBaudBits = 0x0700;
constexpr unsigned kSplitParityBits = 0x0003;
constexpr int kSplitEven = 1;
constexpr int kSplitOdd = 2;

// A function's static, so that it is there before the first registration, whatever the order of the files.
std::map<std::string, Registration::Maker, std::less<>>& Makers() {
  static std::map<std::string, Registration::Maker, std::less<>> makers;
  return makers;
}

}  // namespace

int BaudOf(int code) {
  for (const BaudCode& entry : kBaudCodes) {
    if (entry.code == code) return entry.baud;
  }
  return bus::LineSettings().baud;
}

int CodeOf(int baud) {
  for (const BaudCode& entry : kBaudCodes) {
    if (entry.baud == baud) return entry.code;
  }
  return CodeOf(bus::LineSettings().baud);
}

ModelData OnAFixedLine(ModelData data) {
  data.delayMask = data.parityMask = data.oddMask = 0;
  data.fixedLine = true;
  const auto protect = [&data](state::Register reg) {
    data.registers.push_back({.first = reg, .last = reg, .writable = false});
  };
  protect(data.communication);
  for (const ImagePair& pair : data.images) {
    if (pair.live == data.communication) protect(pair.image);
  }
  return data;
}

void Model::SetFirmware(int release) {
  registers.Set(data_.identity, state::Word(static_cast<unsigned>(data_.code << 8 | release)));
}

Setting Model::GetSetting() const {
  if (data_.baud) return SplitSetting();
  Setting setting;
  const state::Word communication = registers.Get(data_.communication);
  if (communication.Low() != 0) setting.address = communication.Low();
  setting.line.baud = BaudOf(communication.High());
  const state::Word flags = registers.Get(data_.flags);
  if (flags.Has(data_.parityMask)) {
    setting.line.parity = flags.Has(data_.oddMask) ? bus::Parity::kOdd : bus::Parity::kEven;
  }
  return setting;
}

void Model::SetSetting(const Setting& setting) {
  if (data_.baud) {
    SetSplitSetting(setting);
    return;
  }
  const int code = CodeOf(setting.line.baud);
  registers.Set(data_.communication, state::Word(static_cast<unsigned>(code << 8 | setting.address)));
  state::Word flags = registers.Get(data_.flags).And(~(data_.parityMask | data_.oddMask));
  if (setting.line.parity != bus::Parity::kNone) flags = flags.Or(data_.parityMask);
  if (setting.line.parity == bus::Parity::kOdd) flags = flags.Or(data_.oddMask);
  registers.Set(data_.flags, flags);
}

Setting Model::SplitSetting() const {
  Setting setting;
  const state::Word address = registers.Get(data_.communication);
  if (address.High() != 0) setting.address = address.High();
  setting.line.baud = BaudOf(registers.Get(*data_.baud).And(kSplitBaudBits).High());
  const int parity = address.And(kSplitParityBits).Low();
  if (parity == kSplitEven) setting.line.parity = bus::Parity::kEven;
  if (parity == kSplitOdd) setting.line.parity = bus::Parity::kOdd;
  return setting;
}

void Model::SetSplitSetting(const Setting& setting) {
  int word = setting.address << 8;
  if (setting.line.parity == bus::Parity::kEven) word |= kSplitEven;
  if (setting.line.parity == bus::Parity::kOdd) word |= kSplitOdd;
  registers.Set(data_.communication, state::Word(static_cast<unsigned>(word)));
  const auto code = static_cast<unsigned>(CodeOf(setting.line.baud)) << 8;
  registers.Set(*data_.baud, registers.Get(*data_.baud).And(~kSplitBaudBits).Or(code));
}

void Model::StoreImages() {
  for (const ImagePair& pair : data_.images) registers.Set(pair.image, registers.Get(pair.live));
}

void Model::LoadImages() {
  for (const ImagePair& pair : data_.images) {
    const RegisterRange& range = *registers.RangeOf(pair.live);
    const int value = std::clamp(registers.Get(pair.image).Unsigned(), range.lowest, range.highest);
    registers.Set(pair.live, state::Word(static_cast<unsigned>(value)));
  }
}

Registration::Registration(std::string_view name, Maker maker) {
  Makers().emplace(name, maker);
}

std::unique_ptr<Model> MakeModel(std::string_view name) {
  const auto found = Makers().find(name);
  return found == Makers().end() ? nullptr : found->second();
}

std::vector<std::string> ModelNames() {
  std::vector<std::string> names;
  for (const auto& [name, maker] : Makers()) names.push_back(name);
  return names;
}

}  // namespace tarvo::simulator
