#include "models/oswin.h"

#include <optional>
#include <string>

#include "pages/status_panels.h"
#include "state/number_text.h"

namespace tarvo::models {

using state::Word;
using namespace state::literals;

namespace {

constexpr pages::PageIdentity kIdentity = {
    .number = 12,
    .model = "Oswin",
    .window = "frmOswin",
    .code = 0x16,
    .poll = {RtdPage::kStatus, 5},
    .runKind = std::nullopt,
    .reset = std::nullopt,
    // Stop carries Nerith's name, and two buttons carry Gaven's: that is meant.
    .names = {.start = "StartOswin",
              .stop = "StopNerith",
              .weep = "WEEPGaven",
              .reset = "ResetGaven",
              .message = "labMessage",
              .firmware = "labFWVers"},
    .pollInterval = 500,
    .hasTimerControllo = false,
};

constexpr std::array<view::ListRow, 4> kFilters = {{{"Not ins."}, {"Avg."}, {"Hires + Avg."}, {"Hires + Avg. + Exp"}}};
constexpr std::array<view::ListRow, 2> kUnits = {{{"°C"}, {"ohm"}}};
constexpr std::array<view::ListRow, 4> kSensors = {{{"0-PT100"}, {"1-PT500"}, {"2-PT1000"}, {"3-NI100"}}};

constexpr unsigned kFilterBits = 0x0007;
constexpr unsigned kRejection = 0x0008;
constexpr unsigned kComp = 0x0010;
constexpr unsigned kOhm = 0x0020;
constexpr unsigned kSensorBits = 0x00C0;
constexpr unsigned kSensorUnit = 0x0040;

constexpr unsigned kFirstChannelFail = 0x1000;
constexpr unsigned kFirstSensorFail = 0x0100;

/// Where the resistances stand in `PollBuffer`, behind the block.
constexpr std::size_t kFirstResistance = 5;

}  // namespace

Oswin::Oswin(pages::PageContext& context)
    : RtdPage(context, kIdentity),
      labRES_RTD([this](int i) { return view::Label(*this, "labRES_RTD", "0", "", i); }),
      cbFilter([this](int i) { return view::ComboBox(*this, "cbFilter", kFilters, "40055.0-3 - Dump Factor", i); }),
      cbUnits([this](int i) { return view::ComboBox(*this, "cbUnits", {}, "40040.0-2  Tecnical Units", i); }),
      // The tool tips of the two are those of other boxes of an older page.
      chkComp([this](int i) {
        return view::CheckBox(*this, "chkComp", "3-wire compensation",
                              "Check to get temperature, uncheck to get resitance.", i);
      }),
      chkRejection([this](int i) {
        return view::CheckBox(*this, "chkRejection", "Frequency rejection (60Hz)",
                              "Check to get down-scale on burned sensor.", i);
      }) {
  for (int i = 0; i < kChannels; ++i) {
    cbFilter[i].ListIndex = 0;
    cbUnits[i].ListIndex = 0;
  }
}

// What Start and the poll do.

void Oswin::CheckFWVersion(Word identity) {
  firmware_ = identity.Low();
  channels_ = kChannels;
  FillLists();
}

void Oswin::Identified(Word identity) {
  channels_ = kChannels;
  Context().status.connection.Text = pages::ConnectionLine("Connected to  Oswin , ", ModCom1);
  firmware_ = identity.Low();
  if (!listsReady_) FillLists();
  listsReady_ = true;
}

void Oswin::FillLists() {
  for (view::ComboBox& type : cbSensorType) type.SetRows(kSensors);
  for (view::ComboBox& units : cbUnits) units.SetRows(kUnits);
}

core::Task<> Oswin::Poll() {
  co_await DevicePage::Poll();
  bool good = false;
  for (int i = 0; i < kChannels; ++i) {
    Word& resistance = State().PollBuffer.at(kFirstResistance + static_cast<std::size_t>(i));
    const bus::Outcome outcome = co_await ModCom1.ReadPLC(kResistance1 + i, resistance, 1, bus::kFormat);
    good = outcome.Good();
  }
  if (good) Message.Caption = "OK";
}

core::Task<> Oswin::ShowConfiguration(std::optional<Word> serial) {
  if (serial) {
    labModuleAddress.Caption = std::to_string(serial->High());
    ShowParity(static_cast<unsigned>(serial->Low()) & 3U);
  }
  const std::optional<Word> baud = co_await ReadOne(kBaud);
  if (baud) cbBaudRate.SelectCode(baud->High());
  for (int i = 0; i < channels_; ++i) {
    const std::optional<Word> channel = co_await ReadChannel(kChannel1 + i);
    if (channel) ShowChannel(i, *channel);
  }
  EnableSettings(kChannels - 1, channels_ == kChannels);
}

void Oswin::ShowChannel(int channel, Word word) {
  const int filter = word.And(kFilterBits).Low();
  if (filter < static_cast<int>(kFilters.size())) cbFilter[channel].ListIndex = filter;
  chkRejection[channel].Value = word.Has(kRejection) ? 1 : 0;
  chkComp[channel].Value = word.Has(kComp) ? 1 : 0;
  cbUnits[channel].ListIndex = word.Has(kOhm) ? 1 : 0;
  cbSensorType[channel].ListIndex = word.And(kSensorBits).Low() / static_cast<int>(kSensorUnit);
}

core::Task<> Oswin::ManageContinue() {
  ManageOswin();
  co_return;
}

void Oswin::ManageOswin() {
  for (int i = 0; i < channels_; ++i) labTI_RTD[i].Caption = Measure(i, Polled(kValue1 + i));
  for (int i = 0; i < channels_; ++i) {
    const Word resistance = State().PollBuffer.at(kFirstResistance + static_cast<std::size_t>(i));
    labRES_RTD[i].Caption = std::to_string(resistance.Signed());
  }
  ShowFailures(labChannelFail, kFirstChannelFail, "Channel Unavailable");
  ShowFailures(labSensorFail, kFirstSensorFail, "Sensor unconnected or damaged");
}

/// Scaled by what the lists show, not by what the module holds.
std::string Oswin::Measure(int channel, Word value) const {
  const int measured = value.Signed();
  if (cbUnits[channel].ListIndex() == 0) return state::WithDecimals(measured, 1);
  // One less than the unsigned number, which is meant.
  const int ohms = measured < 0 ? measured + 65535 : measured;
  const int sensor = cbSensorType[channel].ListIndex();
  return state::WithDecimals(ohms, sensor == 0 || sensor == 3 ? 2 : 1);
}

// What the user does.

std::vector<RtdPage::Setting> Oswin::Configuration() {
  std::vector<Setting> settings;
  settings.reserve(2 + kChannels);
  for (int i = 0; i < channels_; ++i) {
    unsigned value = IndexOf(cbFilter[i]) | (IndexOf(cbSensorType[i]) * kSensorUnit);
    if (cbUnits[i].ListIndex() == 1) value |= kOhm;
    if (chkComp[i].Value() != 0) value |= kComp;
    if (chkRejection[i].Value() != 0) value |= kRejection;
    settings.push_back({kChannel1 + i, Word(value)});
  }
  settings.push_back({kBaud, Word(static_cast<unsigned>(cbBaudRate.SelectedCode()) * 0x100)});
  const auto address = static_cast<unsigned>(state::ToWord(labModuleAddress.Caption()).Unsigned());
  settings.push_back({kSerial, Word(address * 0x100 | ParityCode())});
  return settings;
}

void Oswin::EnableSettings(int channel, bool enabled) {
  const std::array<view::Control*, 5> settings = {&cbSensorType[channel], &cbFilter[channel], &cbUnits[channel],
                                                  &chkComp[channel], &chkRejection[channel]};
  for (view::Control* setting : settings) setting->Enabled = enabled;
}

void Oswin::ResetLists() {
  for (int i = 0; i < kChannels; ++i) {
    cbFilter[i].ListIndex = 0;
    cbUnits[i].ListIndex = 0;
  }
}

// How it looks.

view::Node Oswin::Arrangement() const {
  std::vector<view::Node> cards;
  cards.reserve(kChannels);
  for (int i = 0; i < kChannels; ++i) {
    cards.push_back(view::Frame(
        "Input " + std::to_string(i + 1),
        view::Column({
            view::Row({view::Text("Measure"), view::Show(labTI_RTD[i]), view::Text("mOhm"), view::Show(labRES_RTD[i]),
                       view::Show(labChannelFail[i]), view::Show(labSensorFail[i])}),
            view::Row({
                view::Column({
                    view::Field("Sensor Type", view::Show(cbSensorType[i])),
                    view::Field("Units", view::Show(cbUnits[i])),
                    view::Field("Filter", view::Show(cbFilter[i])),
                }),
                view::Column({view::Text("Wire"), view::Show(chkComp[i]), view::Show(chkRejection[i])}),
            }),
        })));
  }
  return view::Column({
      HeadLine("Four RTD inputs"),
      view::Scroller(view::Column({
          view::Row({std::move(cards[0]), std::move(cards[1])}),
          view::Row({std::move(cards[2]), std::move(cards[3])}),
          view::Frame("Settings", SerialFields()),
      })),
      Foot(),
  });
}

}  // namespace tarvo::models
