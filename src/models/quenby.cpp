#include "models/quenby.h"

#include <optional>
#include <utility>

#include "bus/modcom/register_access.h"
#include "state/number_text.h"
#include "view/hourglass.h"
#include "view/screen.h"

namespace tarvo::models {

using state::kFalse;
using state::kTrue;
using state::Word;
using namespace state::literals;

namespace {

constexpr pages::PageIdentity kIdentity = {
    .number = 11,
    .model = "Quenby",
    .window = "frmQuenby",
    .code = 0x0F,
    .poll = {Quenby::kFlags, 4},
    .runKind = std::nullopt,
    .pollFormat = 0,
    .reset = Quenby::kStatus,
    // This page shows the release that a register of its own tells.
    .firmware = "",
    .names = {.start = "buttStart",
              .stop = "buttStop",
              .weep = "buttWriteEEPROM",
              .reset = "buttReset",
              .message = "Message",
              .firmware = "labFW"},
    .updated = {"EEProm updated! Now you have to restart the module ", view::Icon::kExclamation},
    .tellsWrites = true,
    .hasTimerControllo = false,
    .hasTimerIngranaggi = false,
};

constexpr std::array<view::ListRow, 2> kStartScales = {{{"set start scale to 0mA"}, {"set start scale to 4mA"}}};
constexpr std::array<view::ListRow, 2> kStartScales1 = {
    {{"set start scale to 0mA (0V) "}, {"set start scale to 4mA (1 or 2V)"}}};
constexpr std::array<view::ListRow, 2> kFullScales1 = {
    {{"set full scale to 10mA (5V)"}, {"set full scale to 20mA (10V)"}}};

constexpr std::array<const char*, 2> kErrors = {"EEPROM Prog. Error", "Data Prog. Error"};

constexpr int kHighestOutput = 10000;

constexpr unsigned ErrorBit(int error) {
  return 0x0001U << error;
}

std::string Channel(int output) {
  return "OUTCH" + std::to_string(output + 1);
}

std::string ScaleTip(int bit, int output, const char* text) {
  return "40068." + std::to_string(bit) + " - " + Channel(output) + text;
}

}  // namespace

Quenby::Quenby(pages::PageContext& context, pages::DlgSetNewValue& newValue)
    : DevicePage(context, kIdentity),
      // The tool tip names the register behind the output's own, which is meant.
      txtValRam([this](int i) {
        return view::Label(*this, "txtValRam", "0", std::to_string(40006 + i) + " - " + Channel(i) + " value", i);
      }),
      txtVal([this](int i) {
        return view::TextBox(*this, "txtVal", std::to_string(40069 + i) + " - " + Channel(i) + " default value", i);
      }),
      cbStartScale([this](int i) {
        return view::ComboBox(*this, "cbStartScale", i == 0 ? kStartScales1 : kStartScales,
                              ScaleTip(8 + i, i, " start scale selector"), i);
      }),
      cbFullScale([this](int i) {
        return view::ComboBox(*this, "cbFullScale", kFullScales1, ScaleTip(11 + i, i, " full scale selector"), i);
      }),
      CheckError([this](int i) {
        return view::CheckBox(*this, "CheckError", kErrors.at(static_cast<std::size_t>(i)), "", i);
      }),
      newValue_(newValue),
      flags_({{
          {CheckDelay12ms, kFlags, 0x0004, 0xFFFB},
          {checkParity, kFlags, 0x0008, 0xFFF7},
          {CheckResetTimer, kFlags, 0x0040, 0xFFBF},
          {CheckDefaultOutputs, kFlags, 0x0080, 0xFF7F},
      }}),
      scales_({{
          {cbStartScale[0], 0x0100},
          {cbStartScale[1], 0x0200},
          {cbStartScale[2], 0x0400},
          {cbFullScale[0], 0x0800},
      }}),
      images_(MakeImages()),
      fields_(MakeFields()) {
  BindFlags(flags_);
  BindParity(checkParity, OptionEven, OptionOdd, kFlags);
  for (const Scale& scale : scales_) {
    scale.list.ListIndex = 0;
    scale.list.OnChoose = [this, &scale] { return ScaleChoice(scale); };
  }
  for (int i = 0; i < kOutputs; ++i) {
    txtValRam[i].OnClick = [this, i] { return NewValueClick(i); };
    txtVal[i].OnKey = [this, i](view::Key key) { return DefaultKey(i, key); };
    txtVal[i].OnLeave = [this, i] { return TestDefault(i); };
  }
  for (view::TextBox& value : txtVal) value.Text = "0";
  BindEdit(labAddress, 1, 255);
  BindEdit(labTimeout, 0, 65535);
  // They only show what the module says.
  for (view::CheckBox& error : CheckError) error.Enabled = false;
}

std::vector<pages::ImageWrite> Quenby::MakeImages() {
  std::vector<pages::ImageWrite> images;
  images.reserve(3 + kOutputs);
  images.push_back({kFlags + kToImage, [this] { return ReadFlagsFromForm(); }});
  images.push_back({kAddress + kToImage, [this] { return pages::AddressWord(labAddress, cbBaud); }});
  images.push_back({kSafeTime + kToImage, [this] { return state::ToWord(labTimeout.Caption()); }});
  for (int i = 0; i < kOutputs; ++i) {
    images.push_back({kOutput1 + i + kToImage, [this, i] { return state::ToWord(txtVal[i].Text()); }});
  }
  return images;
}

std::vector<pages::FileField> Quenby::MakeFields() {
  std::vector<pages::FileField> fields;
  fields.push_back({[this] { return std::to_string(ReadFlagsFromForm().Unsigned()); },
                    [this](const std::string& text) { ReadFlagsAndSetForm(state::LowWord(text)); }});
  for (view::TextBox& value : txtVal) {
    fields.push_back({[&value] { return value.Text(); }, [&value](const std::string& text) { value.Text = text; }});
  }
  // Read back with four bits of the address only: module 17 becomes module 1, which is meant.
  fields.push_back({AddressField(labAddress, cbBaud).write, [this](const std::string& text) {
                      const Word stored = state::LowWord(text);
                      pages::ShowAddressWord(stored.And(pages::kThreeCodeBits | 0x000F), labAddress, cbBaud);
                    }});
  fields.push_back(TextField(labTimeout));
  return fields;
}

// What Start, the poll and the search do.

void Quenby::Load() {
  DevicePage::Load();
  cbBaud.ListIndex = 1;
}

core::Task<> Quenby::Activate() {
  // A return from a dialog in a session leaves the session as it is.
  if (Enters()) State().StartComm = kFalse;
  if (State().pageEntered != kFalse) co_return;
  Start.Enabled = false;
  co_await ReadEEPromFlags();
  State().pageEntered = kTrue;
}

core::Task<> Quenby::ApplyFirmware(int /*release*/) {
  const std::optional<Word> release = co_await ReadOne(kRelease);
  if (release) Firmware.Caption = "Firmware rel: " + std::to_string(release->Unsigned());
  co_await ReadEEPromFlags();
}

core::Task<> Quenby::ReadEEPromFlags() {
  const bool ours = co_await ReadSettings();
  if (!ours) Context().status.connection.Text = "This module is not a Quenby";
  Start.Enabled = true;
}

core::Task<> Quenby::ShowRegisters() {
  const std::optional<Word> release = co_await ReadOne(kRelease);
  if (release) Firmware.Caption = "FW vers. : " + std::to_string(release->Unsigned());
  const std::optional<Word> status = co_await ReadOne(kStatus);
  for (int i = 0; status && i < static_cast<int>(kErrors.size()); ++i) {
    CheckError[i].Value = status->Has(ErrorBit(i)) ? 1 : 0;
  }
  const std::optional<Word> flags = co_await ReadOne(kFlags);
  if (flags) ReadFlagsAndSetForm(*flags);
  const std::optional<Word> safeTime = co_await ReadOne(kSafeTime);
  if (safeTime) labTimeout.Caption = std::to_string(safeTime->Unsigned());
  const std::optional<Word> address = co_await ReadOne(kAddress);
  if (address) pages::ShowAddressWord(*address, labAddress, cbBaud, pages::kWholeHighByte);
  for (int i = 0; i < kOutputs; ++i) {
    const std::optional<Word> output = co_await ReadOne(kOutput1 + i);
    if (output) ShowOutput(i, *output);
  }
}

core::Task<> Quenby::ManageContinue() {
  ManageContinueQuenby();
  co_return;
}

void Quenby::ManageContinueQuenby() {
  ReadFlagsAndSetForm(Polled(kFlags));
  for (int i = 0; i < kOutputs; ++i) ShowOutput(i, Polled(kOutput1 + i));
}

void Quenby::ReadFlagsAndSetForm(Word flags) {
  ShowFlags(flags);
  for (const Scale& scale : scales_) scale.list.ListIndex = flags.Has(scale.mask) ? 1 : 0;
}

Word Quenby::ReadFlagsFromForm() const {
  Word flags = FlagsShown();
  for (const Scale& scale : scales_) flags = flags.Or(scale.list.ListIndex() == 1 ? scale.mask : 0);
  return flags;
}

void Quenby::ShowOutput(int output, Word value) {
  txtValRam[output].Caption = std::to_string(value.Unsigned());
}

// What the user does.

core::Task<> Quenby::ScaleChoice(const Scale& scale) {
  return ChangeRegister(
      kFlags, scale.list.ListIndex() == 1 ? pages::Setting(scale.mask) : pages::Keeping(0xFFFF & ~scale.mask));
}

core::Task<> Quenby::NewValueClick(int output) {
  if (PortIsTaken()) co_return;
  State().NewValueText = "";
  std::string caption = "Set new value of output " + std::to_string(output + 1);
  const std::optional<std::string> asked = co_await newValue_.AskFor(std::move(caption));
  if (!asked || asked->empty()) co_return;
  const std::string value = co_await Tested(*asked);
  txtValRam[output].Caption = value;
  co_await WriteOutput(output, state::ToWord(value));
}

/// At once, and not to the EEPROM. Without a session the port is open just for this.
core::Task<> Quenby::WriteOutput(int output, Word value) {
  const view::Hourglass hourglass(GetScreen());
  const PortVisit visit(*this);
  const state::Register target = kOutput1 + output;
  std::optional<PollPause> pause;
  if (InSession()) pause.emplace(*this);
  const bool good = co_await bus::WriteRegister(ModCom1, target, value.Unsigned(), Context().status.passing);
  if (good && InSession()) KeepPolled(target, value);
}

core::Task<> Quenby::DefaultKey(int output, view::Key key) {
  if (key == view::Key::kEnter) co_await TestDefault(output);
}

core::Task<> Quenby::TestDefault(int output) {
  txtVal[output].Text = co_await Tested(txtVal[output].Text());
}

/// A value that an output takes: what lies beyond its bounds stands at the end, with a beep.
core::Task<std::string> Quenby::Tested(std::string text) {
  if (!state::IsNumeric(text)) {
    co_await GetScreen().MsgBox("Value is not numeric !", view::Icon::kExclamation);
    co_return "0";
  }
  const double value = state::ToNumber(text);
  if (value >= 0 && value <= kHighestOutput) co_return text;
  GetScreen().Beep();
  co_return value < 0 ? "0" : std::to_string(kHighestOutput);
}

// How it looks.

view::Node Quenby::Arrangement() const {
  std::vector<view::Node> outputs;
  outputs.reserve(kOutputs);
  for (int i = 0; i < kOutputs; ++i) {
    outputs.push_back(view::Row({
        view::Text("Output " + std::to_string(i + 1)),
        view::Show(txtValRam[i]),
        view::Show(txtVal[i]),
        view::Show(cbStartScale[i]),
        i == 0 ? view::Show(cbFullScale[0]) : view::Text(""),
    }));
  }
  return view::Column({
      HeadLine("Three analog outputs"),
      view::Frame("Outputs (0..10000)",
                  view::Table({"", "Value now", "Default value", "Start scale", "Full scale"}, std::move(outputs))),
      view::Row({
          view::Frame("Flags", view::Column({view::Show(CheckResetTimer), view::Show(CheckDefaultOutputs),
                                             view::Show(CheckDelay12ms), view::Show(checkParity),
                                             view::Row({view::Show(OptionEven), view::Show(OptionOdd)})})),
          view::Frame("Module", view::Column({
                                    view::Field("Module Address", view::Show(labAddress)),
                                    view::Field("Module Baud Rate", view::Show(cbBaud)),
                                    view::Field("Safe time", view::Show(labTimeout)),
                                })),
          view::Frame("Errors", view::Column({view::Show(CheckError[0]), view::Show(CheckError[1])})),
      }),
      view::Space(),
      Foot(),
  });
}

}  // namespace tarvo::models
