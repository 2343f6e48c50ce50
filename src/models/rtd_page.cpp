#include "models/rtd_page.h"

#include <optional>

#include "bus/modcom/register_access.h"
#include "view/hourglass.h"
#include "view/screen.h"

namespace tarvo::models {

using state::kFalse;
using state::kTrue;
using state::Register;
using state::Word;
using namespace state::literals;

namespace {

/// Both pages leave it in `NrFinestra` when they come to the front, Nerith too, whose number is 9: that is meant.
constexpr int kNumberAfterActivate = 12;

/// Before each write to the EEPROM, milliseconds.
constexpr int kSettle = 200;

constexpr unsigned kParityEven = 1;
constexpr unsigned kParityOdd = 2;
constexpr unsigned kParityBoth = 3;

}  // namespace

RtdPage::RtdPage(pages::PageContext& context, const pages::PageIdentity& identity)
    : DevicePage(context, identity),
      // All values say the first one's, which is meant.
      labTI_RTD([this](int i) { return view::Label(*this, "labTI_RTD", "0", "40003 - Temperature 1 value", i); }),
      labChannelFail([this](int i) { return view::Label(*this, "labChannelFail", "", "", i); }),
      labSensorFail([this](int i) { return view::Label(*this, "labSensorFail", "", "", i); }),
      cbSensorType([this](int i) { return view::ComboBox(*this, "cbSensorType", {}, "40055.8-10-Sensor Type", i); }) {
  for (int i = 0; i < kChannels; ++i) {
    labChannelFail[i].Visible = false;
    labSensorFail[i].Visible = false;
    cbSensorType[i].ListIndex = 0;
  }
  OptionEven.Value = true;
  EnableOptions(false);
  checkParity.OnClick = [this] { return ParityClick(); };
  BindEdit(labModuleAddress, 1, 255);
  WEEP.OnClick = [this] { return WEEPGavenClick(); };
  Reset->OnClick = [this] { return ResetGavenClick(); };
}

// What Start, the poll and the search do.

void RtdPage::Load() {
  DevicePage::Load();
  cbBaudRate.ListIndex = 1;
  State().pageReadDone = kFalse;
}

core::Task<> RtdPage::Activate() {
  if (State().pageReadDone == kFalse) {
    co_await ReadEEPromFlags();
    State().pageReadDone = kTrue;
  }
  State().NrFinestra = kNumberAfterActivate;
}

void RtdPage::Deactivate() {
  DevicePage::Deactivate();
  State().pageReadDone = kFalse;
}

core::Task<> RtdPage::ReadEEPromFlags() {
  const view::Hourglass hourglass(GetScreen());
  const PortVisit visit(*this);
  co_await ReadConfiguration();
}

core::Task<> RtdPage::ReadConfiguration() {
  for (view::Label& value : labTI_RTD) value.Caption = "0";
  const std::optional<Word> identity = co_await ReadOne("40001"_reg);
  if (!identity || !IsOurs(*identity)) {
    Context().status.connection.Text = WrongModuleText();
    co_return;
  }
  Identified(*identity);
  const std::optional<Word> serial = co_await ReadOne(kSerial);
  // What is shown was read when the page came to the front, and may have been edited since.
  if (State().pageReadDone != kFalse) co_return;
  co_await ShowConfiguration(serial);
}

core::Task<std::optional<Word>> RtdPage::ReadChannel(Register source) {
  const std::optional<Word> word = co_await ReadOne(source);
  if (!word) Context().status.passing.Text = "Unable to read : " + std::to_string(source.Number());
  co_return word;
}

void RtdPage::ShowFailures(view::ControlArray<view::Label, kChannels>& labels, unsigned first, const char* text) {
  const Word status = Polled(kStatus);
  for (int i = 0; i < channels_; ++i) {
    const bool failed = status.Has(first << i);
    if (failed) labels[i].Caption = text;
    labels[i].Visible = failed;
  }
}

void RtdPage::ShowParity(unsigned code) {
  checkParity.Value = code == 0 ? 0 : 1;
  if (code != kParityBoth) EnableOptions(code != 0);
  if (code == kParityEven) OptionEven.Value = true;
  if (code == kParityOdd) OptionOdd.Value = true;
}

unsigned RtdPage::ParityCode() const {
  if (checkParity.Value() == 0) return 0;
  return OptionEven.Value() ? kParityEven : kParityOdd;
}

// What the user does.

core::Task<> RtdPage::ParityClick() {
  EnableOptions(checkParity.Value() != 0);
  co_return;
}

void RtdPage::EnableOptions(bool enabled) {
  OptionEven.Enabled = enabled;
  OptionOdd.Enabled = enabled;
}

core::Task<> RtdPage::WEEPGavenClick() {
  if (PortIsTaken()) co_return;
  const view::Hourglass hourglass(GetScreen());
  const DeedPause deeds(*this);
  const PortVisit visit(*this);
  const std::optional<Word> identity = co_await ReadOne("40001"_reg);
  if (!identity || !IsOurs(*identity)) {
    co_await SayWrongModule();
    co_return;
  }
  if (!InSession()) {
    co_await WriteConfiguration();
    co_return;
  }
  const PollPause pause(*this);
  co_await ModCom1.Free();
  co_await WriteConfiguration();
}

/// No message tells that it is done, which is meant.
core::Task<> RtdPage::WriteConfiguration() {
  const std::vector<Setting> settings = Configuration();
  for (const Setting& setting : settings) {
    bus::wait(GetScheduler(), kSettle);
    co_await ModCom1.WritePLC(setting.target, setting.value, 1, bus::kFormat);
    co_await ModCom1.Free();
  }
}

core::Task<> RtdPage::ResetGavenClick() {
  co_await GetScreen().MsgBox("Switch the module off and on to restart it.", view::Icon::kInformation);
}

void RtdPage::NerithEnableControls(bool enabled) {
  const std::array<view::Control*, 3> others = {&cbBaudRate, &labModuleAddress, &checkParity};
  for (view::Control* other : others) other->Enabled = enabled;
  for (int i = 0; i < channels_; ++i) EnableSettings(i, enabled);
}

void RtdPage::ResetForm() {
  channels_ = kChannels;
  cbBaudRate.ListIndex = 0;
  for (view::ComboBox& type : cbSensorType) type.ListIndex = 0;
  ResetLists();
}

view::Node RtdPage::SerialFields() const {
  return view::Row({
      view::Column({
          view::Field("Module Address", view::Show(labModuleAddress)),
          view::Field("Module Baud Rate", view::Show(cbBaudRate)),
      }),
      view::Column({
          view::Show(checkParity),
          view::Row({view::Show(OptionEven), view::Show(OptionOdd)}),
      }),
  });
}

}  // namespace tarvo::models
