#include "models/nerith.h"

#include <algorithm>
#include <optional>
#include <string>

#include "pages/status_panels.h"
#include "state/number_text.h"

namespace tarvo::models {

using state::Register;
using state::Word;
using namespace state::literals;

namespace {

constexpr int kPellor = 0x09;

constexpr pages::PageIdentity kIdentity = {
    .number = 9,
    .model = "Nerith",
    .window = "frmNerith",
    .code = 0x08,
    .otherCode = kPellor,
    .poll = {RtdPage::kStatus, 5},
    .runKind = std::nullopt,
    .reset = std::nullopt,
    // The release has the blank of a number that is not negative.
    .firmware = "Firmware rel:  ",
    // Stop carries Oswin's name, as Oswin's carries this page's, and two buttons carry Gaven's: that is meant.
    .names = {.start = "StartNerith",
              .stop = "StopOswin",
              .weep = "WEEPGaven",
              .reset = "ResetGaven",
              .message = "labMessage",
              .firmware = "labFWVers"},
    .pollInterval = 500,
    .hasTimerControllo = false,
};

constexpr int kChannelsOfPellor = 3;
/// First firmware with the newer sensor codes.
constexpr int kNewerFirmware = 18;

/// Members of `labelGaven` that head the values; the array's own order.
constexpr std::array<int, RtdPage::kChannels> kLabelIndex = {4, 3, 7, 10};
constexpr std::array<const char*, Nerith::kHeadings> kHeadingTexts = {
    "Sensor Type", "Dump Factor", "Sensor Type", "Temperature", "Temperature", "Dump Factor",
    "Sensor Type", "Temperature", "Dump Factor", "Sensor Type", "Temperature", "Dump Factor"};

constexpr std::array<view::ListRow, 4> kSensors = {{{"0-PT100"}, {"1-PT500"}, {"2-PT1000"}, {"3-NI100"}}};
constexpr std::array<view::ListRow, 2> kNewerSensors = {{{"PT100"}, {"NI100"}}};
constexpr std::array<view::ListRow, 8> kDumpFactors = {{{"0"}, {"1"}, {"2"}, {"3"}, {"4"}, {"5"}, {"6"}, {"7"}}};
constexpr std::array<view::ListRow, 3> kRanges = {{{"-200.. 400 C"}, {"-200.. 850 C"}, {"-200.. 200 C"}}};
constexpr std::array<view::ListRow, 4> kUnits = {{{"Kelvin"}, {"Celsius"}, {"Farenheit"}, {"Rankine"}}};
constexpr std::array<view::ListRow, 3> kDecimals = {{{"0"}, {"1"}, {"2"}}};

constexpr int kLastSensorCode = 3;
constexpr unsigned kNickel = 3;
/// Beside a sensor code, of what the value is.
constexpr unsigned kConversion = 4;
/// Of the serial settings.
constexpr unsigned kParityUnit = 0x0100;
constexpr unsigned kParityBits = 0x0300;
constexpr unsigned kBaudBits = 0x1C00;
constexpr unsigned kBaudUnit = 0x0400;
constexpr unsigned kDumpBits = 0x0007;
constexpr unsigned kSensorBits = 0x0700;
constexpr unsigned kNewerSensorBits = 0x0300;
constexpr unsigned kResistance = 0x0400;
/// Of a channel in the settings file.
constexpr unsigned kStoredSensorBits = 0x0007;
constexpr unsigned kStoredDumpBits = 0x0700;
constexpr unsigned kStoredDumpUnit = 0x0100;
constexpr unsigned kNewerStoredDumpBits = 0x0300;
constexpr unsigned kStoredConversion = 0x0400;
constexpr unsigned kSensorUnit = 0x0100;
constexpr unsigned kRangeBits = 0x3000;
constexpr unsigned kRangeUnit = 0x1000;
constexpr unsigned kDownScale = 0x4000;
constexpr unsigned kUnitBits = 0x0007;
constexpr unsigned kDecimalBits = 0x0018;
constexpr unsigned kDecimalUnit = 0x0008;
constexpr unsigned kDin = 0x0020;

constexpr unsigned kFirstChannelFail = 0x01;
constexpr unsigned kFirstSensorFail = 0x10;

/// The number that stands in the bits of `mask`, the lowest of which counts `unit`.
int FieldOf(Word word, unsigned mask, unsigned unit) {
  return word.And(mask).Unsigned() / static_cast<int>(unit);
}

Register SensorOf(int channel) {
  return Nerith::kChannel1 + channel * Nerith::kChannelStep;
}

Register RangeOf(int channel) {
  return SensorOf(channel) + 1;
}

}  // namespace

Nerith::Nerith(pages::PageContext& context)
    : RtdPage(context, kIdentity),
      labelGaven([this](int i) {
        return view::Label(*this, "labelGaven", kHeadingTexts.at(static_cast<std::size_t>(i)), "", i);
      }),
      cbDumpFactor(
          [this](int i) { return view::ComboBox(*this, "cbDumpFactor", kDumpFactors, "40055.0-3 - Dump Factor", i); }),
      labRange([this](int i) { return view::Label(*this, "labRange", "Range", "", i); }),
      cbRangePT100([this](int i) { return view::ComboBox(*this, "cbRangePT100", kRanges, "PT100 Range", i); }),
      chkConv([this](int i) {
        return view::CheckBox(*this, "chkConv", "Temp.", "Check to get temperature, uncheck to get resitance.", i);
      }),
      chkBurnedSensor([this](int i) {
        return view::CheckBox(*this, "chkBurnedSensor", "Burn-out behaviour",
                              "Check to get down-scale on burned sensor.", i);
      }),
      cbUnits(*this, "cbUnits", kUnits, "40040.0-2  Tecnical Units"),
      cbDecimalNumbers(*this, "cbDecimalNumbers", kDecimals, "40040.3-4  Decimal Digits"),
      fields_(MakeFields()) {
  for (int i = 0; i < kChannels; ++i) {
    cbDumpFactor[i].ListIndex = 0;
    cbRangePT100[i].ListIndex = 0;
    chkConv[i].OnChange = [this, i] { HeadValue(i); };
  }
  cbUnits.ListIndex = 0;
  cbDecimalNumbers.ListIndex = 0;
}

std::vector<pages::FileField> Nerith::MakeFields() {
  std::vector<pages::FileField> fields;
  fields.push_back({[this] { return std::to_string(SerialShown().Unsigned()); },
                    [this](const std::string& text) { ShowSerial(state::LowWord(text)); }});
  fields.push_back({[this] { return std::to_string(SystemShown()); },
                    [this](const std::string& text) { ShowStoredSystem(state::LowWord(text)); }});
  for (int i = 0; i < kChannels; ++i) {
    const std::size_t number = fields.size() + 1;
    // A channel that the module lacks is not renewed: its field repeats what it held last, which is meant.
    fields.push_back({[this, i, number] { return i < channels_ ? StoredChannel(i) : State().FileFields.at(number); },
                      [this, i](const std::string& text) {
                        if (i < channels_) ShowStoredChannel(i, state::LowWord(text));
                      }});
  }
  return fields;
}

// What Start, the poll and the search do.

void Nerith::CheckFWVersion(Word identity) {
  firmware_ = identity.Low();
  TakeChannels(identity);
  if (HasThreeChannels()) {
    SayThreeChannels();
    EnableChannel(kChannels - 1, false);
  }
  FillSensorTypes(true);
}

void Nerith::SetFound(Word identity) {
  TakeChannels(identity);
  cbSensorType[kChannels - 1].Enabled = !HasThreeChannels();
  cbDumpFactor[kChannels - 1].Enabled = !HasThreeChannels();
  if (HasThreeChannels()) SayThreeChannels();
}

void Nerith::TakeChannels(Word identity) {
  channels_ = identity.High() == kPellor ? kChannelsOfPellor : kChannels;
}

void Nerith::SayThreeChannels() {
  Context().status.passing.Text = "Pellor, only 3 channels available";
}

bool Nerith::Newer() const {
  return firmware_ >= kNewerFirmware;
}

void Nerith::Identified(Word identity) {
  TakeChannels(identity);
  Context().status.connection.Text =
      pages::ConnectionLine(HasThreeChannels() ? "Connected to  Pellor , " : "Connected to  Nerith , ", ModCom1);
  firmware_ = identity.Low();
  if (!listsReady_) FillSensorTypes(Newer());
  listsReady_ = true;
  for (int i = 0; !Newer() && i < kChannels; ++i) chkConv[i].Visible = false;
}

void Nerith::FillSensorTypes(bool newer) {
  for (view::ComboBox& type : cbSensorType) {
    type.SetRows(newer ? std::span<const view::ListRow>(kNewerSensors) : kSensors);
  }
}

core::Task<> Nerith::ShowConfiguration(std::optional<Word> serial) {
  if (serial) ShowSerial(*serial);
  const std::optional<Word> system = co_await ReadOne(kSystem);
  if (system) ShowSystem(*system);
  for (int i = 0; Newer() && i < kChannels; ++i) chkConv[i].Visible = true;
  for (int i = 0; i < channels_; ++i) {
    const std::optional<Word> sensor = co_await ReadChannel(SensorOf(i));
    if (sensor) ShowSensor(i, *sensor);
    const std::optional<Word> range = co_await ReadOne(RangeOf(i));
    if (range) ShowRange(i, *range);
  }
  EnableChannel(kChannels - 1, channels_ == kChannels);
}

void Nerith::ShowSerial(Word serial) {
  labModuleAddress.Caption = std::to_string(serial.Low());
  cbBaudRate.SelectCode(FieldOf(serial, kBaudBits, kBaudUnit));
  ShowParity(static_cast<unsigned>(FieldOf(serial, kParityBits, kParityUnit)));
}

void Nerith::ShowSystem(Word system) {
  chkDINCoefficients.Value = system.Has(kDin) ? 1 : 0;
  cbUnits.ListIndex = system.And(kUnitBits).Low();
  decimals_ = FieldOf(system, kDecimalBits, kDecimalUnit);
  cbDecimalNumbers.ListIndex = decimals_;
}

void Nerith::ShowStoredSystem(Word system) {
  const int units = system.And(kUnitBits).Low();
  if (units < static_cast<int>(kUnits.size())) cbUnits.ListIndex = units;
  const int decimals = FieldOf(system, kDecimalBits, kDecimalUnit);
  if (decimals < static_cast<int>(kDecimals.size())) cbDecimalNumbers.ListIndex = decimals;
  chkDINCoefficients.Value = system.Has(kDin) ? 1 : 0;
}

/// The bytes change places between the file and the module's register. The box is read where the dump factor has its
/// highest bit, and written elsewhere: that is meant.
void Nerith::ShowStoredChannel(int channel, Word stored) {
  const int code = stored.And(kStoredSensorBits).Low();
  cbSensorType[channel].ListIndex = IndexOfCode(code);
  cbDumpFactor[channel].ListIndex = stored.And(Newer() ? kNewerStoredDumpBits : kStoredDumpBits).High();
  if (Newer()) chkConv[channel].Value = stored.Has(kStoredConversion) ? 1 : 0;
}

/// The position of a sensor code in the list; one above 3 is the first entry's.
int Nerith::IndexOfCode(int code) const {
  if (code > kLastSensorCode) return 0;
  if (!Newer()) return code;
  return code == static_cast<int>(kNickel) ? 1 : 0;
}

void Nerith::ShowSensor(int channel, Word word) {
  const int code = word.And(Newer() ? kNewerSensorBits : kSensorBits).High();
  cbSensorType[channel].ListIndex = IndexOfCode(code);
  cbDumpFactor[channel].ListIndex = word.And(kDumpBits).Low();
  if (code > kLastSensorCode || !Newer()) return;
  chkConv[channel].Value = word.Has(kResistance) ? 0 : 1;
  // The first reading may find the box as it stands.
  HeadValue(channel);
}

void Nerith::HeadValue(int channel) {
  view::Label& heading = labelGaven[kLabelIndex.at(static_cast<std::size_t>(channel))];
  heading.Caption = chkConv[channel].Value() != 0 ? "Temperature" : "Resistance";
}

void Nerith::ShowRange(int channel, Word word) {
  const int range = FieldOf(word, kRangeBits, kRangeUnit);
  cbRangePT100[channel].ListIndex = std::min(range, static_cast<int>(kRanges.size()) - 1);
  chkBurnedSensor[channel].Value = word.Has(kDownScale) ? 1 : 0;
}

core::Task<> Nerith::ManageContinue() {
  ManageNerith();
  co_return;
}

void Nerith::ManageNerith() {
  for (int i = 0; i < channels_; ++i) {
    labTI_RTD[i].Caption = state::WithDecimals(Polled(kValue1 + i).Signed(), decimals_ <= 2 ? decimals_ : 0);
  }
  ShowFailures(labChannelFail, kFirstChannelFail, "");
  ShowFailures(labSensorFail, kFirstSensorFail, "Sensor unconnected or damaged");
}

// What the user does.

std::vector<RtdPage::Setting> Nerith::Configuration() {
  std::vector<Setting> settings;
  settings.reserve(2 + 2 * kChannels);
  decimals_ = cbDecimalNumbers.ListIndex();
  settings.push_back({kSystem, Word(SystemShown())});
  for (int i = 0; i < channels_; ++i) {
    unsigned sensor = SensorCode(i);
    if (Newer() && chkConv[i].Value() == 0) sensor |= kConversion;
    settings.push_back({SensorOf(i), Word(sensor * kSensorUnit | IndexOf(cbDumpFactor[i]))});
    const unsigned range = std::min(IndexOf(cbRangePT100[i]), static_cast<unsigned>(kRanges.size()) - 1);
    settings.push_back({RangeOf(i), Word(range * kRangeUnit | (chkBurnedSensor[i].Value() != 0 ? kDownScale : 0))});
  }
  settings.push_back({kSerial, SerialShown()});
  return settings;
}

unsigned Nerith::SystemShown() const {
  const unsigned din = chkDINCoefficients.Value() != 0 ? kDin : 0;
  return (IndexOf(cbUnits) | (IndexOf(cbDecimalNumbers) * kDecimalUnit) | din) & 0xFF;
}

Word Nerith::SerialShown() const {
  const auto baud = static_cast<unsigned>(cbBaudRate.SelectedCode());
  return state::ToWord(labModuleAddress.Caption()).Or(baud * kBaudUnit | ParityCode() * kParityUnit);
}

unsigned Nerith::SensorCode(int channel) const {
  const unsigned position = IndexOf(cbSensorType[channel]);
  return Newer() && position == 1 ? kNickel : position;
}

std::string Nerith::StoredChannel(int channel) const {
  const unsigned conversion = Newer() && chkConv[channel].Value() != 0 ? kConversion : 0;
  return std::to_string(SensorCode(channel) | conversion | IndexOf(cbDumpFactor[channel]) * kStoredDumpUnit);
}

void Nerith::EnableChannel(int channel, bool enabled) {
  const std::array<view::Control*, 5> settings = {&cbSensorType[channel], &cbDumpFactor[channel], &chkConv[channel],
                                                  &chkBurnedSensor[channel], &cbRangePT100[channel]};
  for (view::Control* setting : settings) setting->Enabled = enabled;
}

void Nerith::EnableSettings(int channel, bool enabled) {
  cbDumpFactor[channel].Enabled = enabled;
  cbSensorType[channel].Enabled = enabled;
  if (!Newer()) return;
  chkConv[channel].Enabled = enabled;
  chkBurnedSensor[channel].Enabled = enabled;
  cbRangePT100[channel].Enabled = enabled;
}

void Nerith::ResetLists() {
  cbDecimalNumbers.ListIndex = 0;
  cbUnits.ListIndex = 0;
  for (view::ComboBox& dumpFactor : cbDumpFactor) dumpFactor.ListIndex = 0;
}

// How it looks.

view::Node Nerith::Arrangement() const {
  std::vector<view::Node> cards;
  cards.reserve(kChannels);
  for (int i = 0; i < kChannels; ++i) {
    cards.push_back(view::Frame(
        "Input " + std::to_string(i + 1),
        view::Column({
            view::Row({view::Show(labelGaven[kLabelIndex.at(static_cast<std::size_t>(i))]), view::Show(labTI_RTD[i]),
                       view::Show(labChannelFail[i]), view::Show(labSensorFail[i])}),
            view::Row({
                view::Column({
                    view::Field("Sensor Type", view::Show(cbSensorType[i])),
                    view::Field("Dump Factor", view::Show(cbDumpFactor[i])),
                    view::Field(labRange[i].Caption(), view::Show(cbRangePT100[i])),
                }),
                view::Column({view::Show(chkConv[i]), view::Show(chkBurnedSensor[i])}),
            }),
        })));
  }
  return view::Column({
      HeadLine("RTD inputs, four or three"),
      view::Scroller(view::Column({
          view::Row({std::move(cards[0]), std::move(cards[1])}),
          view::Row({std::move(cards[2]), std::move(cards[3])}),
          view::Frame("Settings", view::Row({
                                      SerialFields(),
                                      view::Column({
                                          view::Field("Units", view::Show(cbUnits)),
                                          view::Field("Decimal Digits", view::Show(cbDecimalNumbers)),
                                          view::Show(chkDINCoefficients),
                                      }),
                                  })),
      })),
      Foot(),
  });
}

}  // namespace tarvo::models
