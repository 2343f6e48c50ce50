#include "pages/device_page.h"

#include <string>
#include <utility>
#include <vector>

#include "bus/modcom/register_access.h"
#include "pages/baud_list.h"
#include "state/number_text.h"
#include "view/hourglass.h"
#include "view/screen.h"

namespace tarvo::pages {

using state::Register;
using state::Word;
using namespace state::literals;

namespace {

/// The name of a page's control: the usual one, unless the page has another.
std::string Named(std::string_view prefix, std::string_view model, std::string_view other = {}) {
  return other.empty() ? std::string(prefix) + std::string(model) : std::string(other);
}

constexpr unsigned kParityOn = 0x0008;
constexpr unsigned kParityOdd = 0x0010;

}  // namespace

Change Setting(unsigned mask) {
  return [mask](Word word) { return word.Or(mask); };
}

Change Keeping(unsigned mask) {
  return [mask](Word word) { return word.And(mask); };
}

DevicePage::PollPause::PollPause(DevicePage& page) : page_(page), session_(page.session_) {
  ++page_.pauses_;
  page_.DisableTimers();
}

DevicePage::PollPause::~PollPause() {
  if (session_ != page_.session_) return;
  if (--page_.pauses_ == 0 && !leavesOff_) page_.EnableTimers();
}

DevicePage::PortVisit::PortVisit(DevicePage& page) : page_(page) {
  if (page_.visits_ == 0) {
    if (page_.ModCom1.PortOpen()) return;
    page_.SetupModcomOCX();
    opened_ = page_.OpenPort();
  }
  ++page_.visits_;
  counted_ = true;
}

DevicePage::PortVisit::~PortVisit() {
  const bool last = counted_ && --page_.visits_ == 0;
  if (last || closesAnyway_) page_.ClosePort();
}

DevicePage::DeedPause::DeedPause(DevicePage& page) : page_(page) {
  Enable(false);
}

void DevicePage::DeedPause::Enable(bool enabled) {
  page_.WEEP.Enabled = enabled;
  if (page_.Reset) page_.Reset->Enabled = enabled;
}

DevicePage::DevicePage(PageContext& context, const PageIdentity& identity)
    : Window(context.screen, identity.window, identity.model),
      Start(*this, Named("Start", identity.model, identity.names.start), "&Start", "Start Communication"),
      Stop(*this, Named("Stop", identity.model, identity.names.stop), "S&top", "Stop Communication"),
      WEEP(*this, Named("WEEP", identity.model, identity.names.weep), "&Write EEprom"),
      Message(*this, Named("Message", identity.model, identity.names.message)),
      Firmware(*this, Named("Firmw", identity.model, identity.names.firmware), "Firmware rel:"),
      Ingranaggi(*this, identity.gears, "", -1, view::ImageBox::Album::kGears),
      TimerLetturaSeriale(*this, "TimerLetturaSeriale", identity.pollInterval),
      ModCom1(*this, "ModCom1", context.ports),
      context_(context),
      identity_(identity),
      block_(identity.poll) {
  Start.OnClick = [this] { return StartClick(); };
  Stop.OnClick = [this] { return StopClick(); };
  WEEP.OnClick = [this] { return WEEPClick(); };
  if (identity.reset || !identity.names.reset.empty()) {
    Reset.emplace(*this, Named("Reset", identity.model, identity.names.reset), "Module &Reset");
    Reset->OnClick = [this] { return ResetClick(); };
  }
  TimerLetturaSeriale.OnTimer = [this] { return context_.table.LeggiModulo(); };
  TimerGestioneLetture.OnTimer = [this] { return Decode(); };
  if (identity.hasTimerIngranaggi) {
    TimerIngranaggi.emplace(*this, "TimerIngranaggi", 200);
    TimerIngranaggi->OnTimer = [this] { return TurnGears(); };
  }
  MediaPlayer1.OnEnd = [this] {
    if (InSession()) PrepareClip(true);
  };
  if (identity.hasTimerControllo) TimerControllo.emplace(*this, "TimerControllo", 250);
  context_.table.Add(*this);
}

// The session.

core::Task<> DevicePage::StartClick() {
  if (ModCom1.PortOpen() || State().StartComm != state::kFalse) co_return;
  const view::Hourglass hourglass(context_.screen);
  const int session = ++session_;
  const auto over = [this, session] { return session != session_; };

  SetPollBlock(identity_.poll);
  ModCom1.CommPort = State().PCPort;
  ModCom1.Settings = State().PCSettings;
  ModCom1.LinkParamA = 3;
  ModCom1.LinkParamB = 3;
  ModCom1.ModuleAddr = State().ModuleAddress;
  // A port that does not open shows as an identity that is not read.
  (void)OpenPort();

  Word identity;
  co_await ModCom1.ReadPLC("40001"_reg, identity, 1, bus::kFormat);
  co_await ModCom1.Free();
  if (over()) co_return;
  if (!IsOurs(identity)) {
    co_await SayWrongModule();
    co_await TakeDown();
    co_return;
  }

  const int release = identity.Low();
  co_await ApplyFirmware(release);
  if (over()) co_return;
  PrepareClip(true);
  if (!identity_.firmware.empty()) Firmware.Caption = std::string(identity_.firmware) + std::to_string(release);
  State().ReadStep = 0;
  State().StartComm = state::kTrue;
  Starting();
  pauses_ = 0;
  {
    // Until all is shown once, a handler of a control that ends meanwhile does not start the timers.
    const PollPause pause(*this);
    co_await ReadBeforePolling();
    if (!over()) co_await PollAtStart();
    if (!over() && polled_) co_await ManageFirst();
    if (!over() && identity_.pollAfter) {
      SetPollBlock(*identity_.pollAfter);
      co_await PollAtStart();
      if (!over() && polled_) co_await ManageSecond();
    }
    shown_ = polled_;
  }
  if (over()) {
    UndoStart();
    co_return;
  }
  // The message label shows what the first poll gave.
  if (identity_.runKind) State().RunKind = *identity_.runKind;
  context_.table.DeselectStart();
  if (!identity_.connected.empty()) {
    context_.status.connection.Text = ConnectionLine(identity_.connected, ModCom1);
  }
  context_.navigation.DisableNavigation();
  Started();
}

core::Task<> DevicePage::ApplyFirmware(int release) {
  CheckFWVersion(release);
  co_return;
}

core::Task<> DevicePage::CheckFoundFirmware(int release) {
  CheckFWVersion(release);
  co_return;
}

core::Task<> DevicePage::ReadBeforePolling() {
  co_return;
}

core::Task<> DevicePage::ManageSecond() {
  co_return;
}

core::Task<> DevicePage::SayWrongModule() {
  std::string text = "ERROR! Module is not " + std::string(identity_.model) + " or communication failed";
  co_await context_.screen.MsgBox(std::move(text), view::Icon::kCritical);
}

/// The session was ended, or its page left, before it stood.
void DevicePage::UndoStart() {
  MediaPlayer1.Playing = false;
  State().StartComm = state::kFalse;
  Stopping();
  context_.table.ReselectStart();
  Stopped();
}

core::Task<> DevicePage::TakeDown() {
  State().StartComm = state::kFalse;
  DisableTimers();
  co_await ModCom1.Free();
  ClosePort();
  StopGears();
  context_.table.ReselectStart();
}

core::Task<> DevicePage::StopClick() {
  if (InSession() && MayStop()) co_await EndSession();
}

core::Task<> DevicePage::EndSession() {
  ++session_;
  State().StartComm = state::kFalse;
  Stopping();
  co_await TakeDown();
  context_.navigation.EnableNavigation();
  MediaPlayer1.Playing = false;
  Stopped();
}

core::Task<> DevicePage::Poll() {
  const std::span<Word> block = PollTarget();
  const auto count = static_cast<std::int16_t>(State().PollCount);
  const bus::Outcome outcome = co_await ModCom1.ReadPLC(State().PollRegister, block, count, identity_.pollFormat);
  Message.Caption = outcome.Good() ? "OK" : "ERROR! Wrong Comm.";
  if (outcome.Good()) polled_ = true;
}

core::Task<> DevicePage::PollAtStart() {
  polled_ = false;
  return context_.table.LeggiModulo();
}

/// What was never read is not shown: the words of another page must not pass for this module's, nor be committed. A
/// block that Start has lost is shown as Start would have done once it comes.
core::Task<> DevicePage::Decode() {
  if (!polled_) co_return;
  if (std::exchange(shown_, true)) {
    co_await ManageContinue();
  } else if (identity_.pollAfter) {
    co_await ManageSecond();
  } else {
    co_await ManageFirst();
  }
}

core::Task<> DevicePage::TurnGears() {
  context_.table.MuoviIngranaggi();
  co_return;
}

void DevicePage::StopGears() {
  if (TimerIngranaggi) TimerIngranaggi->Enabled = false;
}

void DevicePage::EnableTimers() {
  TimerLetturaSeriale.Enabled = true;
  TimerGestioneLetture.Enabled = true;
}

void DevicePage::DisableTimers() {
  TimerGestioneLetture.Enabled = false;
  TimerLetturaSeriale.Enabled = false;
}

// Commit and reset.

core::Task<> DevicePage::WEEPClick() {
  if (PortIsTaken()) co_return;
  const view::Hourglass hourglass(context_.screen);
  const DeedPause deeds(*this);
  if (InSession()) {
    std::optional<PollPause> pause;
    if (identity_.commitHoldsPoll) pause.emplace(*this);
    const int session = session_;
    co_await ModCom1.Free();
    // A Stop that waited longer has ended the session meanwhile.
    if (session != session_) co_return;
    co_await Commit();
    co_await Committed();
    co_return;
  }
  SetPollBlock(identity_.poll);
  const PortVisit visit(*this);
  const bool onModule = co_await IsOnModule();
  if (onModule) co_await Commit();
}

core::Task<> DevicePage::Commit() {
  const int session = session_;
  co_await WriteEEprom();
  // A Stop meanwhile has closed the port under the writes: nobody knows what was stored.
  if (session != session_) co_return;
  co_await context_.screen.MsgBox(std::string(identity_.updated.text), identity_.updated.icon);
}

core::Task<> DevicePage::WriteEEprom() {
  const std::span<const ImageWrite> writes = ImageWrites();
  std::vector<Word> values;
  values.reserve(writes.size());
  for (const ImageWrite& write : writes) values.push_back(write.value());
  for (std::size_t i = 0; i < writes.size(); ++i) {
    if (identity_.tellsWrites) {
      co_await bus::WriteRegister(ModCom1, writes[i].image, values[i].Unsigned(), context_.status.passing);
      continue;
    }
    co_await ModCom1.WritePLC(writes[i].image, values[i]);
    co_await ModCom1.Free();
  }
}

core::Task<> DevicePage::Committed() {
  co_return;
}

core::Task<> DevicePage::ResetClick() {
  if (PortIsTaken()) co_return;
  const view::Hourglass hourglass(context_.screen);
  const DeedPause deeds(*this);
  if (InSession()) {
    co_await ResetInSession();
  } else {
    co_await ResetOutOfSession();
  }
}

core::Task<> DevicePage::ResetInSession() {
  DisableTimers();
  co_await ModCom1.Free();
  // A Stop that waited longer has ended the session meanwhile.
  if (!InSession()) co_return;
  ++session_;
  State().StartComm = state::kFalse;
  co_await ModCom1.WritePLC(*identity_.reset, Word(1));
  ClosePort();
  StopGears();
  context_.table.ReselectStart();
  context_.navigation.EnableNavigation();
  // A clip that comes to its end is not started again; the gear has none.
  MediaPlayer1.Playing = false;
  co_await context_.screen.MsgBox("Module is Resetted! Comunication Stopped", view::Icon::kInformation);
  DisableTimers();
}

core::Task<> DevicePage::ResetOutOfSession() {
  const PortVisit visit(*this);
  const bool onModule = co_await IsOnModule();
  if (!onModule) co_return;
  State().StartComm = state::kFalse;
  co_await ModCom1.WritePLC(*identity_.reset, Word(1));
  StopGears();
  context_.table.ReselectStart();
  co_await context_.screen.MsgBox("Module is Resetted!", view::Icon::kInformation);
}

/// Checks the identity outside a session. When it is another's, says so and gives false.
core::Task<bool> DevicePage::IsOnModule() {
  const std::optional<Word> identity = co_await ReadOne("40001"_reg);
  if (identity && IsOurs(*identity)) co_return true;
  co_await SayWrongModule();
  State().StartComm = state::kFalse;
  co_await ModCom1.Free();
  co_return false;
}

// The bus for a model's handlers.

bool DevicePage::IsOurs(Word identity) const {
  return identity.High() == identity_.code || identity.High() == identity_.otherCode;
}

void DevicePage::SetPollBlock(const PollBlock& block) {
  block_ = block;
  State().PollRegister = block.first;
  State().PollCount = block.count;
}

Word DevicePage::Polled(Register source) const {
  return context_.state.PollBuffer.at(static_cast<std::size_t>(source - block_.first));
}

Word& DevicePage::Copy(Register source) {
  return State().PollBuffer.at(static_cast<std::size_t>(source - identity_.poll.first));
}

core::Task<> DevicePage::ChangeRegister(Register target, Change change) {
  if (!InSession()) {
    if (identity_.keepsCopies) Copy(target) = change(Copy(target));
    co_return;
  }
  const PollPause pause(*this);
  co_await ModCom1.Free();
  Word value;
  co_await ModCom1.ReadPLC(target, value, 1, bus::kFormat);
  co_await ModCom1.Free();
  // Also after a read that failed: the write then starts from 0, which is meant.
  co_await WriteAndKeep(target, change(value));
}

core::Task<> DevicePage::WithPollHeld(core::Task<> work) {
  if (!InSession()) {
    co_await std::move(work);
    co_return;
  }
  const PollPause pause(*this);
  co_await std::move(work);
}

core::Task<> DevicePage::WriteLive(Register target, Word value) {
  if (!InSession()) co_return;
  const PollPause pause(*this);
  co_await ModCom1.Free();
  co_await WriteAndKeep(target, value);
}

core::Task<> DevicePage::WriteAndKeep(Register target, Word value) {
  const bus::Outcome outcome = co_await ModCom1.WritePLC(target, value);
  if (outcome.Good()) KeepPolled(target, value);
  co_await ModCom1.Free();
}

void DevicePage::KeepPolled(Register target, Word value) {
  const int element = target - State().PollRegister;
  // A commit right after this stores the new value, not the one of the last poll.
  if (element >= 0 && element < State().PollCount) State().PollBuffer.at(static_cast<std::size_t>(element)) = value;
}

void DevicePage::BindFlags(std::span<const Flag> flags) {
  TieFlags(flags);
  for (const Flag& flag : flags) {
    flag.box.OnPress = [this, &flag] { return ChangeFlag(flag, flag.box.Value() == 0); };
  }
}

void DevicePage::BindClickedFlags(std::span<const Flag> flags) {
  TieFlags(flags);
  for (const Flag& flag : flags) {
    flag.box.OnClick = [this, &flag] { return ChangeFlag(flag, flag.box.Value() != 0); };
  }
}

core::Task<> DevicePage::ChangeFlag(const Flag& flag, bool set) {
  return ChangeRegister(flag.target, set ? Setting(flag.setMask) : Keeping(flag.clearMask));
}

void DevicePage::BindParity(view::CheckBox& on, view::OptionButton& even, view::OptionButton& odd, Register target) {
  parity_ = {&on, &even, &odd};
  even.Value = true;
  EnableParity(false);
  on.OnChange = [this] { EnableParity(parity_.on->Value() != 0); };
  even.OnClick = [this, target] { return ChangeRegister(target, Keeping(0xFFFF & ~kParityOdd)); };
  odd.OnClick = [this, target] { return ChangeRegister(target, Setting(kParityOdd)); };
}

void DevicePage::EnableParity(bool enabled) {
  const bool changeable = enabled && !ParityLocked();
  parity_.even->Enabled = changeable;
  parity_.odd->Enabled = changeable;
}

void DevicePage::ShowBoxes(Word flags) {
  for (const Flag& flag : flags_) flag.box.Value = flags.Has(flag.setMask) ? 1 : 0;
}

void DevicePage::ShowFlags(Word flags) {
  ShowBoxes(flags);
  FlagsShowing(flags);
  if (parity_.on == nullptr) return;
  // Said again whatever the box showed before: the flag overrules what the firmware's release has disabled.
  EnableParity(flags.Has(kParityOn));
  (flags.Has(kParityOdd) ? parity_.odd : parity_.even)->Value = true;
}

Word DevicePage::FlagsShown() const {
  Word flags;
  for (const Flag& flag : flags_) flags = flags.Or(flag.box.Value() != 0 ? flag.setMask : 0);
  return parity_.odd != nullptr && parity_.odd->Value() ? flags.Or(kParityOdd) : flags;
}

void DevicePage::BindEdit(view::Label& value, int minimum, int maximum) {
  value.OnClick = [this, &value, minimum, maximum] { return EditClick(value, minimum, maximum); };
}

core::Task<bool> DevicePage::EditValue(view::Label& value, int minimum, int maximum) {
  const std::optional<std::string> accepted = co_await context_.changeValue.AskFor(minimum, maximum);
  if (accepted) value.Caption = *accepted;
  co_return accepted.has_value();
}

core::Task<> DevicePage::EditClick(view::Label& value, int minimum, int maximum) {
  co_await EditValue(value, minimum, maximum);
}

void DevicePage::SetupModcomOCX() {
  ModCom1.Settings = State().PCSettings;
  ModCom1.LinkParamA = identity_.setupLinkParams;
  ModCom1.LinkParamB = identity_.setupLinkParams;
  ModCom1.ModuleAddr = State().ModuleAddress;
  ModCom1.CommPort = State().PCPort;
}

core::Status DevicePage::OpenPort() {
  return pages::OpenPort(ModCom1, context_.status);
}

core::Task<std::optional<Word>> DevicePage::ReadOne(Register source) {
  std::optional<Word> value;
  co_await ModCom1.ReadPLC(source, value, 1, bus::kFormat);
  co_await ModCom1.Free();
  co_return value;
}

core::Task<> DevicePage::ReadEEPromFlags() {
  co_await ReadSettings();
}

core::Task<bool> DevicePage::ReadSettings() {
  const view::Hourglass hourglass(context_.screen);
  const PortVisit visit(*this);
  const std::optional<Word> identity = co_await ReadOne("40001"_reg);
  const bool ours = identity && IsOurs(*identity);
  if (ours) co_await ShowRegisters();
  co_return ours;
}

core::Task<> DevicePage::ShowRegisters() {
  co_return;
}

core::Task<> DevicePage::ShowAddressOf(Register stored, view::Label& address, view::ComboBox& baud) {
  const std::optional<Word> word = co_await ReadOne(stored);
  if (word) ShowAddressWord(*word, address, baud);
}

// The window.

void DevicePage::PrepareClip(bool play) {
  MediaPlayer1.FileName = context_.programFolder + "\\Gears.avi";
  MediaPlayer1.Loop = true;
  MediaPlayer1.Playing = play;
}

void DevicePage::ClosePort() {
  (void)ModCom1.SetPortOpen(false);
}

void DevicePage::Load() {
  PrepareClip(false);
}

void DevicePage::Deactivate() {
  if (TimerControllo) TimerControllo->Enabled = false;
  entered_ = false;
  // A last defence: a session does not let its page be left.
  ++session_;
  ClosePort();
}

core::Task<bool> DevicePage::QueryUnload() {
  if (!InSession() && !context_.screen.Working()) co_return true;
  co_await context_.screen.MsgBox(kStopFirst, view::Icon::kExclamation);
  co_return false;
}

void DevicePage::Unload() {
  ClosePort();
}

void DevicePage::KeyDown(view::Key key) {
  if (key == view::Key::kEscape) State().EscPressed = 1;
}

// Settings files.

void DevicePage::ReadAllDataFromForm() {
  std::size_t number = 0;
  for (const FileField& field : Files().fields) State().FileFields.at(++number) = field.write();
}

core::Task<> DevicePage::LoadFields() {
  PaintAs(identity_.poll);
  const FileFormat format = Files();
  FieldsComing();
  for (std::size_t i = 0; format.copied && i < format.fields.size(); ++i) {
    // Nobody reads these before the next poll: what is no number, or too large a one, is left out.
    try {
      State().PollBuffer.at(i) = state::LowWord(State().FileFields.at(i + 1));
    } catch (const core::Fault&) {
      continue;
    }
  }
  std::size_t number = 0;
  for (const FileField& field : format.fields) {
    const std::string& text = State().FileFields.at(++number);
    if (field.read) field.read(text);
  }
  co_await SetupFormFromFile();
}

core::Task<> DevicePage::SetupFormFromFile() {
  co_return;
}

FileField DevicePage::TextField(view::Label& value) {
  return {[&value] { return value.Caption(); }, [&value](const std::string& text) { value.Caption = text; }};
}

FileField DevicePage::PositionField(view::ComboBox& list) {
  return {[&list] { return std::to_string(list.ListIndex()); },
          [&list](const std::string& text) {
            const std::int32_t position = state::ToInteger(text);
            // A position behind the list's end stays as it is; one that no register holds would be stored as another.
            if (position < 0 || position > 0xFFFF) throw core::Fault(core::kOverflow);
            list.ListIndex = position;
          }};
}

FileField DevicePage::AddressField(view::Label& address, view::ComboBox& baud, unsigned codeBits) {
  return {[&address, &baud] { return std::to_string(AddressWord(address, baud).Unsigned()); },
          [&address, &baud, codeBits](const std::string& text) {
            ShowAddressWord(state::LowWord(text), address, baud, codeBits);
          }};
}

std::function<void(const std::string&)> DevicePage::ToCopy(Register target) {
  return [this, target](const std::string& text) { Copy(target) = state::LowWord(text); };
}

std::function<std::string()> DevicePage::FromCopy(Register source) {
  return [this, source] { return std::to_string(Copy(source).Unsigned()); };
}

view::Node DevicePage::HeadLine(std::string note) const {
  std::vector<view::Node> parts = {view::Show(Firmware), view::Show(Message), view::Show(MediaPlayer1),
                                   view::Show(Start), view::Show(Stop)};
  return view::Head(std::string(identity_.model), std::move(note), std::move(parts));
}

view::Node DevicePage::Foot() const {
  std::vector<view::Node> deeds = {view::Space(), view::Show(WEEP)};
  if (Reset) deeds.push_back(view::Show(*Reset));
  return view::Row(std::move(deeds));
}

}  // namespace tarvo::pages
