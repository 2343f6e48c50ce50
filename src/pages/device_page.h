#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string_view>
#include <utility>

#include "bus/modcom/modcom.h"
#include "core/task.h"
#include "pages/baud_list.h"
#include "pages/page_context.h"
#include "state/word.h"
#include "view/window.h"

namespace tarvo::pages {

/// The message that refuses an exit or a close while a session runs.
inline constexpr char kStopFirst[] = "Communication must be stopped before exit !";

/// The registers that a poll reads: `PollRegister` and `PollCount`.
struct PollBlock {
  state::Register first;
  int count;
};

/// Names of a page's controls where they are not the usual word with the model behind it.
struct ControlNames {
  std::string_view start = {};
  std::string_view stop = {};
  std::string_view weep = {};
  std::string_view reset = {};
  std::string_view message = {};
  std::string_view firmware = {};
};

/// What a commit says when it is done.
struct Updated {
  std::string_view text = "EEProm updated! Please reset module to apply changes.";
  view::Icon icon = view::Icon::kInformation;
};

/// What a page is to the session, one row of the page table.
struct PageIdentity {
  int number;                                   ///< `NrFinestra`
  std::string_view model;                       ///< as in the messages
  std::string_view window;                      ///< name of the page
  int code;                                     ///< high byte of register 40001
  std::optional<int> otherCode = std::nullopt;  ///< of a second model that the page serves
  PollBlock poll;
  /// Polled in the session after `poll` was read once; nothing where one block holds all.
  std::optional<PollBlock> pollAfter = std::nullopt;
  std::optional<int> runKind;              ///< what Start leaves in `RunKind`; nothing where it leaves it alone
  std::int16_t pollFormat = bus::kFormat;  ///< fourth argument of the poll read, 0 where the page gives none
  std::optional<state::Register> reset;    ///< writing 1 restarts the module; nothing where the page has no reset
  /// Out of a session a change of flags goes to the page's copy of the register, the element of `PollBuffer`.
  bool keepsCopies = false;
  /// Stands before the release; empty where the page shows another register's.
  std::string_view firmware = "Firmware rel: ";
  std::string_view connected = {};  ///< begins the connection line of Start; empty for no line
  std::string_view gears = "Ingranaggi1";
  ControlNames names = {};
  Updated updated = {};
  bool commitHoldsPoll = true;  ///< a session does not poll while its commit writes
  bool tellsWrites = false;     ///< a write of the commit that fails shows in panel 1
  int pollInterval = 50;        ///< milliseconds
  int setupLinkParams = 3;      ///< both link parameters outside of Start
  bool hasTimerControllo = true;
  bool hasTimerIngranaggi = true;
};

/// What becomes of a register's word.
using Change = std::function<state::Word(state::Word)>;

/// Sets the bits of `mask`.
Change Setting(unsigned mask);
/// Keeps the bits of `mask` and clears all others.
Change Keeping(unsigned mask);

/// A check box that stands for a bit of a register.
struct Flag {
  view::CheckBox& box;
  state::Register target;
  unsigned setMask;
  unsigned clearMask;  ///< what stays when the bit is cleared
};

/// A step of the commit: a register of the module's EEPROM and what is written to it. All values are taken before the
/// first is written, so that a text which is no number tears nothing.
struct ImageWrite {
  state::Register image;
  std::function<state::Word()> value;
};

/// A field of the page's settings file: what Save writes, and what Load does with the text it has read. The two need
/// not agree. One without `read` is taken by the page's `SetupFormFromFile`.
struct FileField {
  std::function<std::string()> write;
  std::function<void(const std::string& text)> read = {};
};

/// The page's settings file; no word, no file.
struct FileFormat {
  std::string_view word;              ///< in the header
  std::string_view updated;           ///< in the message after Load
  std::span<const FileField> fields;  ///< at most 20
  bool toTheEnd = false;              ///< Load takes all that the file has, not just as many fields
  bool copied = false;                ///< Load also puts each field that is a number into `PollBuffer`
};

/// A page of one module model: its session on the bus, its timers, its commit and reset, and its window rules. A model
/// adds its registers, its controls and what it makes of a poll.
class DevicePage : public view::Window {
 public:
  DevicePage(PageContext& context, const PageIdentity& identity);

  const PageIdentity& Identity() const { return identity_; }

  view::Button Start;
  view::Button Stop;
  view::Button WEEP;
  std::optional<view::Button> Reset;
  view::Label Message;
  view::Label Firmware;
  view::ImageBox Ingranaggi;
  view::Clip MediaPlayer1{*this, "MediaPlayer1"};
  view::Timer TimerLetturaSeriale;
  view::Timer TimerGestioneLetture{*this, "TimerGestioneLetture", 200};
  std::optional<view::Timer> TimerIngranaggi;
  std::optional<view::Timer> TimerControllo;
  bus::ModCom ModCom1;

  /// One poll read, its outcome shown in the message label.
  virtual core::Task<> Poll();

  /// Applies what the module's firmware release (0 to 255) has.
  virtual void CheckFWVersion(int /*release*/) {}
  /// What the search does about the firmware of the module it has found.
  virtual core::Task<> CheckFoundFirmware(int release);
  /// Reads the module's settings without a session and shows them; nothing when another module answers, or none.
  virtual core::Task<> ReadEEPromFlags();

  /// The page's settings file.
  virtual FileFormat Files() const { return {}; }
  /// Puts what Save writes into `FileFields`.
  void ReadAllDataFromForm();
  /// Puts `FileFields` into the view and the page's copies. Throws "Type mismatch" or "Overflow" where a number is
  /// none.
  core::Task<> LoadFields();

  void Load() override;
  void Deactivate() override;
  core::Task<bool> QueryUnload() override;
  void Unload() override;
  void KeyDown(view::Key key) override;

 protected:
  // What a model supplies to the session.

  /// What Start does about the firmware.
  virtual core::Task<> ApplyFirmware(int release);
  /// Shows the first block of a session, once it was read.
  virtual core::Task<> ManageFirst() = 0;
  /// Shows what was read of `pollAfter`, once it was read.
  virtual core::Task<> ManageSecond();
  /// Shows the latest block; runs every 200 ms in a session.
  virtual core::Task<> ManageContinue() = 0;
  /// What a commit writes, in this order.
  virtual std::span<const ImageWrite> ImageWrites() const { return {}; }
  /// The writes of a commit, on an open port: those of `ImageWrites`, unless the page has its own way.
  virtual core::Task<> WriteEEprom();
  /// Reads the module's settings one by one and shows them; the port is open and the module identified.
  virtual core::Task<> ShowRegisters();
  /// A session's commit is done and the user has read so; polling goes on after it.
  virtual core::Task<> Committed();
  /// Before the fields of a file are taken.
  virtual void FieldsComing() {}
  /// All fields were taken; paints what goes through the page's copies.
  virtual core::Task<> SetupFormFromFile();
  /// The session has begun, nothing was polled yet.
  virtual void Starting() {}
  /// What Start reads before the first poll, with the session begun.
  virtual core::Task<> ReadBeforePolling();
  /// The session stands; runs at Start's end.
  virtual void Started() {}
  /// The user stops the session.
  virtual void Stopping() {}
  /// The session is down.
  virtual void Stopped() {}
  /// Where the answer to the poll that is asked now goes.
  virtual std::span<state::Word> PollTarget() { return context_.state.PollBuffer; }
  /// The user may stop the session that runs.
  virtual bool MayStop() const { return true; }
  /// The flags register is being shown: for what is neither a box nor parity.
  virtual void FlagsShowing(state::Word /*flags*/) {}
  /// The buttons that reach the EEPROM or restart the module stay disabled now.
  virtual bool DeedsLocked() const { return false; }
  /// The parity options stay disabled whatever the flags say.
  virtual bool ParityLocked() const { return false; }

  // What a model's handlers use.

  state::SharedState& State() { return context_.state; }
  /// The identity word is that of a module that this page serves.
  bool IsOurs(state::Word identity) const;
  /// True at the first call after the page was left: its `Activate` is no return from a dialog.
  bool Enters() { return !std::exchange(entered_, true); }
  bool InSession() const { return context_.state.StartComm == state::kTrue; }
  int RunKind() const { return context_.state.RunKind; }
  PageContext& Context() { return context_; }
  /// From now on `PollBuffer` holds the registers of `block`, though nothing was polled.
  void PaintAs(const PollBlock& block) { block_ = block; }
  /// The latest word of `source`, a register of the block that is polled now.
  state::Word Polled(state::Register source) const;
  /// The page's copy of `source`, a register of its first block: what was polled, or changed since without a session.
  state::Word& Copy(state::Register source);

  /// Changes a register: in a session on the module, read anew and written back with polling held; else in the page's
  /// copy, if it keeps copies.
  core::Task<> ChangeRegister(state::Register target, Change change);
  /// The same for the bit of a flag.
  core::Task<> ChangeFlag(const Flag& flag, bool set);
  /// Does `work` with the session's polling held.
  core::Task<> WithPollHeld(core::Task<> work);
  /// In a session, writes a register with polling held; else nothing.
  core::Task<> WriteLive(state::Register target, state::Word value);
  /// Writes a register and waits for a free bus; a good write of a polled register is at once what was polled last.
  core::Task<> WriteAndKeep(state::Register target, state::Word value);
  /// Makes `value`, just written, what was polled last of `target`, if that is polled.
  void KeepPolled(state::Register target, state::Word value);
  /// Makes the boxes of `flags` show the bits of the flags register. `flags` live as long as the page.
  void TieFlags(std::span<const Flag> flags) { flags_ = flags; }
  /// The same, and makes a user's press on a box change its bit.
  void BindFlags(std::span<const Flag> flags);
  /// The same as `BindFlags`, but the bit follows the box once the click has changed it.
  void BindClickedFlags(std::span<const Flag> flags);
  /// Makes `on`, a box of the flags, enable the options, and a click on an option change bit 4 of `target`. Until
  /// something was read parity is even and off.
  void BindParity(view::CheckBox& on, view::OptionButton& even, view::OptionButton& odd, state::Register target);
  /// Shows the flags in the boxes alone.
  void ShowBoxes(state::Word flags);
  /// Shows the flags register in the boxes and options that are bound.
  void ShowFlags(state::Word flags);
  /// The flags register as the boxes and options show it; all other bits are clear.
  state::Word FlagsShown() const;
  /// Asks for a new value and shows it; false when it is not accepted.
  core::Task<bool> EditValue(view::Label& value, int minimum, int maximum);
  /// Reads a stored address word and shows it, see `ShowAddressWord`.
  core::Task<> ShowAddressOf(state::Register stored, view::Label& address, view::ComboBox& baud);
  /// Makes a click on `value` ask for a new one; nothing goes to the module before a commit.
  void BindEdit(view::Label& value, int minimum, int maximum);

  // Fields of settings files.

  /// A caption, as it stands.
  FileField TextField(view::Label& value);
  /// A position in a list.
  FileField PositionField(view::ComboBox& list);
  /// The address word: the address and the selected baud code, which Load takes from `codeBits`.
  FileField AddressField(view::Label& address, view::ComboBox& baud, unsigned codeBits = kThreeCodeBits);
  /// Makes Load put the field into the page's copy of `target`.
  std::function<void(const std::string&)> ToCopy(state::Register target);
  /// Makes Save write the page's copy of `source`.
  std::function<std::string()> FromCopy(state::Register source);

  // What all pages' arrangements have.

  view::Node HeadLine(std::string note) const;
  view::Node Foot() const;

  /// Sets up `ModCom1` from the shared values, without opening the port.
  void SetupModcomOCX();
  /// Sets `PollRegister` and `PollCount`.
  void SetPollBlock(const PollBlock& block);
  /// Opens the port of `ModCom1`. When it may not be opened, panel 1 of the status bar says why, and what is asked over
  /// it fails.
  core::Status OpenPort();
  /// Reads one register; nothing when the read fails, so that what is shown stays.
  core::Task<std::optional<state::Word>> ReadOne(state::Register source);

  /// Checks the identity, on a port that it opens if it is closed and closes again then, and runs `ShowRegisters`.
  /// False when the module is another, or none answers.
  core::Task<bool> ReadSettings();
  /// `WriteEEprom`, and the box that says so, unless the session was ended meanwhile.
  core::Task<> Commit();
  /// By it a handler sees after a wait that its session, or the page's time outside of one, is over.
  int Session() const { return session_; }
  /// Outside a session an open port is that of another gesture, of a Start or of a reading under way.
  bool PortIsTaken() const { return !InSession() && ModCom1.PortOpen(); }
  /// Says that the module is another model's, or that none answers.
  core::Task<> SayWrongModule();
  /// Ends the session, as Stop does.
  core::Task<> EndSession();

  /// Holds the two timers of a session. The last of several that are under way lets them go on, unless the session in
  /// which they were stopped is over.
  class PollPause {
   public:
    explicit PollPause(DevicePage& page);
    PollPause(const PollPause&) = delete;
    PollPause& operator=(const PollPause&) = delete;
    ~PollPause();
    /// The timers stay off when this was the last.
    void LeaveOff() { leavesOff_ = true; }

   private:
    DevicePage& page_;
    int session_;
    bool leavesOff_ = false;
  };

  /// Holds the buttons that reach the EEPROM or restart the module.
  class DeedPause {
   public:
    explicit DeedPause(DevicePage& page);
    DeedPause(const DeedPause&) = delete;
    DeedPause& operator=(const DeedPause&) = delete;
    ~DeedPause() { Enable(!page_.DeedsLocked()); }

   private:
    void Enable(bool enabled);

    DevicePage& page_;
  };

  /// A visit to the port: opens it, set up anew, if it is closed. The last of several visitors closes it again then. A
  /// port that does not open shows as reads that fail.
  class PortVisit {
   public:
    explicit PortVisit(DevicePage& page);
    PortVisit(const PortVisit&) = delete;
    PortVisit& operator=(const PortVisit&) = delete;
    ~PortVisit();
    /// How opening the port went; good where it was open.
    const core::Status& Opened() const { return opened_; }
    /// The port is closed at the end also when it was open before.
    void CloseAnyway() { closesAnyway_ = true; }

   private:
    DevicePage& page_;
    core::Status opened_ = core::Status::Good();
    bool counted_ = false;
    bool closesAnyway_ = false;
  };

 private:
  core::Task<> StartClick();
  core::Task<> StopClick();
  core::Task<> TakeDown();
  core::Task<> WEEPClick();
  core::Task<> ResetClick();
  core::Task<> ResetInSession();
  core::Task<> ResetOutOfSession();
  core::Task<bool> IsOnModule();
  void UndoStart();
  core::Task<> PollAtStart();
  core::Task<> Decode();
  core::Task<> TurnGears();
  void StopGears();
  core::Task<> EditClick(view::Label& value, int minimum, int maximum);
  void EnableTimers();
  void DisableTimers();
  void PrepareClip(bool play);
  void ClosePort();

  /// The controls of parity, null on a page without them.
  struct Parity {
    view::CheckBox* on = nullptr;
    view::OptionButton* even = nullptr;
    view::OptionButton* odd = nullptr;
  };
  void EnableParity(bool enabled);

  PageContext& context_;
  const PageIdentity identity_;
  PollBlock block_;  ///< that the page polls now
  std::span<const Flag> flags_;
  Parity parity_;
  bool entered_ = false;
  int session_ = 0;      ///< counts sessions begun and ended: who waits sees by it that his session is over
  bool polled_ = false;  ///< the block that is polled now was read at least once
  bool shown_ = false;   ///< and was shown as Start shows it
  int visits_ = 0;       ///< to a port that the first visitor has opened
  int pauses_ = 0;       ///< handlers of this session that hold the timers
};

}  // namespace tarvo::pages
