#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "bus/modcom/modcom.h"
#include "core/task.h"
#include "pages/page_context.h"
#include "state/word.h"
#include "view/window.h"

namespace tarvo::pages {

/// The message that refuses an exit or a close while a session runs.
inline constexpr char kStopFirst[] = "Communication must be stopped before exit !";

/// What a page is to the session, one row of the page table.
struct PageIdentity {
  int number;               ///< `NrFinestra`
  std::string_view model;   ///< as in the messages
  std::string_view window;  ///< name of the page
  int code;                 ///< high byte of register 40001
  state::Register pollRegister;
  int pollCount;
  int runKind;              ///< what Start leaves in `RunKind`
  std::int16_t pollFormat;  ///< fourth argument of the poll read, 0 where the page gives none
};

/// A change of some bits of a register: what is set, then what stays.
struct BitChange {
  unsigned orMask = 0;
  unsigned andMask = 0xFFFF;

  state::Word Of(state::Word word) const { return word.Or(orMask).And(andMask); }
};

/// A check box that stands for a bit of a register.
struct Flag {
  view::CheckBox& box;
  state::Register target;
  unsigned setMask;
  unsigned clearMask;  ///< what stays when the bit is cleared
};

/// A page of one module model: its session on the bus, its timers and its window rules. A model adds its registers,
/// its controls and what it makes of a poll.
class DevicePage : public view::Window {
 public:
  DevicePage(PageContext& context, const PageIdentity& identity);

  const PageIdentity& Identity() const { return identity_; }

  view::Button Start;
  view::Button Stop;
  view::Label Message;
  view::Label Firmware;
  view::ImageBox Ingranaggi;
  view::Clip MediaPlayer1{*this, "MediaPlayer1"};
  view::Timer TimerLetturaSeriale;
  view::Timer TimerGestioneLetture{*this, "TimerGestioneLetture", 200};
  view::Timer TimerIngranaggi{*this, "TimerIngranaggi", 200};
  view::Timer TimerControllo{*this, "TimerControllo", 250};
  bus::ModCom ModCom1;

  /// One poll read, its outcome shown in the message label.
  core::Task<> Poll();

  /// Applies what the module's firmware release (0 to 255) has.
  virtual void CheckFWVersion(int release) = 0;
  /// Reads the module's settings without a session and shows them.
  virtual core::Task<> ReadEEPromFlags() = 0;

  void Load() override;
  void Deactivate() override;
  core::Task<bool> QueryUnload() override;
  void Unload() override;
  void KeyDown(view::Key key) override;

 protected:
  // What a model supplies to the session.

  /// Enables and disables the controls that only newer firmware has; runs at Start, after `CheckFWVersion`.
  virtual void EnableByFirmware(int /*release*/) {}
  /// Shows the first block of a session.
  virtual core::Task<> ManageFirst() = 0;
  /// Shows the latest block; runs every 200 ms in a session.
  virtual void ManageContinue() = 0;

  // What a model's handlers use.

  state::SharedState& State() { return context_.state; }
  bool InSession() const { return context_.state.StartComm == state::kTrue; }
  PageContext& Context() { return context_; }
  /// The poll's present word of `source`, which the first poll block holds.
  state::Word& Polled(state::Register source);

  /// Changes bits of a register: in a session on the module, read anew and written back with polling held; else in the
  /// page's copy, the element of `PollBuffer`.
  core::Task<> ChangeRegister(state::Register target, BitChange change);
  /// In a session, writes a register with polling held; else nothing.
  core::Task<> WriteLive(state::Register target, state::Word value);
  /// Makes a user's press on the box of each flag change its bit.
  void BindFlags(std::span<const Flag> flags);

  /// Sets up `ModCom1` from the shared values, without opening the port.
  void SetupModcomOCX();
  /// Reads one register; nothing when the read fails, so that what is shown stays.
  core::Task<std::optional<state::Word>> ReadOne(state::Register source);

 private:
  class PollPause;

  core::Task<> StartClick();
  core::Task<> StopClick();
  core::Task<> TakeDown();
  void UndoStart();
  core::Task<> Decode();
  core::Task<> TurnGears();
  core::Task<> PressFlag(const Flag& flag);
  core::Task<> WriteAndKeep(state::Register target, state::Word value);
  void EnableTimers();
  void DisableTimers();
  void PrepareClip(bool play);
  void ClosePort();

  PageContext& context_;
  const PageIdentity identity_;
  int session_ = 0;  ///< counts sessions begun and ended: who waits sees by it that his session is over
  int pauses_ = 0;   ///< handlers of this session that hold the timers
};

}  // namespace tarvo::pages
