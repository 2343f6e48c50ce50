#include "pages/device_page.h"

#include <string>
#include <utility>

#include "view/screen.h"

namespace tarvo::pages {

using state::Register;
using state::Word;
using namespace state::literals;

namespace {

std::string Named(std::string_view prefix, std::string_view model) {
  return std::string(prefix) + std::string(model);
}

}  // namespace

/// Holds the two timers of a session. The last of several that are under way lets them go on, unless the session in
/// which they were stopped is over.
class DevicePage::PollPause {
 public:
  explicit PollPause(DevicePage& page) : page_(page), session_(page.session_) {
    ++page_.pauses_;
    page_.DisableTimers();
  }
  PollPause(const PollPause&) = delete;
  PollPause& operator=(const PollPause&) = delete;
  ~PollPause() {
    if (session_ != page_.session_) return;
    if (--page_.pauses_ == 0) page_.EnableTimers();
  }

 private:
  DevicePage& page_;
  int session_;
};

DevicePage::DevicePage(PageContext& context, const PageIdentity& identity)
    : Window(context.screen, identity.window, identity.model),
      Start(*this, Named("Start", identity.model), "&Start", "Start Communication"),
      Stop(*this, Named("Stop", identity.model), "S&top", "Stop Communication"),
      Message(*this, Named("Message", identity.model)),
      Firmware(*this, Named("Firmw", identity.model), "Firmware rel:"),
      Ingranaggi(*this, "Ingranaggi1"),
      TimerLetturaSeriale(*this, "TimerLetturaSeriale", 50),
      ModCom1(*this, "ModCom1", context.ports),
      context_(context),
      identity_(identity) {
  Start.OnClick = [this] { return StartClick(); };
  Stop.OnClick = [this] { return StopClick(); };
  TimerLetturaSeriale.OnTimer = [this] { return context_.table.LeggiModulo(); };
  TimerGestioneLetture.OnTimer = [this] { return Decode(); };
  TimerIngranaggi.OnTimer = [this] { return TurnGears(); };
  MediaPlayer1.OnEnd = [this] {
    if (InSession()) PrepareClip(true);
  };
  context_.table.Add(*this);
}

// The session.

core::Task<> DevicePage::StartClick() {
  if (ModCom1.PortOpen() || State().StartComm != state::kFalse) co_return;
  const Hourglass hourglass(context_);
  const int session = ++session_;
  const auto over = [this, session] { return session != session_; };

  State().PollRegister = identity_.pollRegister;
  State().PollCount = identity_.pollCount;
  ModCom1.CommPort = State().PCPort;
  ModCom1.Settings = State().PCSettings;
  ModCom1.LinkParamA = 3;
  ModCom1.LinkParamB = 3;
  ModCom1.ModuleAddr = State().ModuleAddress;
  // A port that does not open shows as an identity that is not read.
  (void)ModCom1.SetPortOpen(true);

  Word identity;
  co_await ModCom1.ReadPLC("40001"_reg, identity, 1, bus::kFormat);
  co_await ModCom1.Free();
  if (over()) co_return;
  if (identity.High() != identity_.code) {
    std::string text = "ERROR! Module is not " + std::string(identity_.model) + " or communication failed";
    co_await context_.screen.MsgBox(std::move(text), view::Icon::kCritical);
    co_await TakeDown();
    co_return;
  }

  const int release = identity.Low();
  CheckFWVersion(release);
  EnableByFirmware(release);
  PrepareClip(true);
  Firmware.Caption = "Firmware rel: " + std::to_string(release);
  State().ReadStep = 0;
  State().StartComm = state::kTrue;
  pauses_ = 0;
  {
    // Until all is shown once, a handler of a control that ends meanwhile does not start the timers.
    const PollPause pause(*this);
    co_await context_.table.LeggiModulo();
    if (over()) {
      UndoStart();
      co_return;
    }
    co_await ManageFirst();
    if (over()) {
      UndoStart();
      co_return;
    }
  }
  // The message label shows what the first poll gave.
  State().RunKind = identity_.runKind;
  context_.table.DeselectStart();
  context_.navigation.DisableNavigation();
}

/// After Stop, or when the page was left before the session stood.
void DevicePage::UndoStart() {
  MediaPlayer1.Playing = false;
  State().StartComm = state::kFalse;
  context_.table.ReselectStart();
}

core::Task<> DevicePage::TakeDown() {
  State().StartComm = state::kFalse;
  DisableTimers();
  co_await ModCom1.Free();
  ClosePort();
  TimerIngranaggi.Enabled = false;
  context_.table.ReselectStart();
}

core::Task<> DevicePage::StopClick() {
  if (!InSession()) co_return;
  ++session_;
  co_await TakeDown();
  context_.navigation.EnableNavigation();
  MediaPlayer1.Playing = false;
}

core::Task<> DevicePage::Poll() {
  const std::span<Word> block(State().PollBuffer);
  const auto count = static_cast<std::int16_t>(State().PollCount);
  const bus::Outcome outcome = co_await ModCom1.ReadPLC(State().PollRegister, block, count, identity_.pollFormat);
  Message.Caption = outcome.Good() ? "OK" : "ERROR! Wrong Comm.";
}

core::Task<> DevicePage::Decode() {
  ManageContinue();
  co_return;
}

core::Task<> DevicePage::TurnGears() {
  context_.table.MuoviIngranaggi();
  co_return;
}

void DevicePage::EnableTimers() {
  TimerLetturaSeriale.Enabled = true;
  TimerGestioneLetture.Enabled = true;
}

void DevicePage::DisableTimers() {
  TimerGestioneLetture.Enabled = false;
  TimerLetturaSeriale.Enabled = false;
}

// The bus for a model's handlers.

Word& DevicePage::Polled(Register source) {
  return State().PollBuffer.at(static_cast<std::size_t>(source - identity_.pollRegister));
}

core::Task<> DevicePage::ChangeRegister(Register target, BitChange change) {
  if (!InSession()) {
    Polled(target) = change.Of(Polled(target));
    co_return;
  }
  const PollPause pause(*this);
  co_await ModCom1.Free();
  Word value;
  co_await ModCom1.ReadPLC(target, value, 1, bus::kFormat);
  co_await ModCom1.Free();
  // Also after a read that failed: the write then starts from 0, which is meant.
  co_await WriteAndKeep(target, change.Of(value));
}

core::Task<> DevicePage::WriteLive(Register target, Word value) {
  if (!InSession()) co_return;
  const PollPause pause(*this);
  co_await ModCom1.Free();
  co_await WriteAndKeep(target, value);
}

core::Task<> DevicePage::WriteAndKeep(Register target, Word value) {
  const bus::Outcome outcome = co_await ModCom1.WritePLC(target, value);
  const int element = target - State().PollRegister;
  // A commit right after this stores the new value, not the one of the last poll.
  if (outcome.Good() && element >= 0 && element < State().PollCount) {
    State().PollBuffer.at(static_cast<std::size_t>(element)) = value;
  }
  co_await ModCom1.Free();
}

void DevicePage::BindFlags(std::span<const Flag> flags) {
  for (const Flag& flag : flags) {
    flag.box.OnPress = [this, &flag] { return PressFlag(flag); };
  }
}

core::Task<> DevicePage::PressFlag(const Flag& flag) {
  BitChange change;
  if (flag.box.Value() == 0) {
    change.orMask = flag.setMask;
  } else {
    change.andMask = flag.clearMask;
  }
  return ChangeRegister(flag.target, change);
}

void DevicePage::SetupModcomOCX() {
  ModCom1.Settings = State().PCSettings;
  ModCom1.LinkParamA = 3;
  ModCom1.LinkParamB = 3;
  ModCom1.ModuleAddr = State().ModuleAddress;
  ModCom1.CommPort = State().PCPort;
}

core::Task<std::optional<Word>> DevicePage::ReadOne(Register source) {
  std::optional<Word> value;
  co_await ModCom1.ReadPLC(source, value, 1, bus::kFormat);
  co_await ModCom1.Free();
  co_return value;
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
  TimerControllo.Enabled = false;
  // A last defence: a session does not let its page be left.
  ++session_;
  ClosePort();
}

core::Task<bool> DevicePage::QueryUnload() {
  if (!InSession() && context_.hourglasses == 0) co_return true;
  co_await context_.screen.MsgBox(kStopFirst, view::Icon::kExclamation);
  co_return false;
}

void DevicePage::Unload() {
  ClosePort();
}

void DevicePage::KeyDown(view::Key key) {
  if (key == view::Key::kEscape) State().EscPressed = 1;
}

}  // namespace tarvo::pages
