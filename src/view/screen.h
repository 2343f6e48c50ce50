#pragma once

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "core/scheduler.h"
#include "core/scope.h"
#include "core/task.h"
#include "core/wait_list.h"
#include "view/control.h"

namespace tarvo::view {

class Window;

enum class Icon { kNone, kCritical, kQuestion, kExclamation, kInformation };

struct MessageBox {
  std::string text;
  std::string caption;
  Icon icon = Icon::kNone;
  std::vector<std::string> buttons;
  std::size_t defaultButton = 0;  ///< what Enter answers
};

struct FileDialog {
  bool save = false;
  std::string filter;
};

/// A handler that a gesture started, from its first statement to its end.
class GestureRun : public core::Origin, public std::enable_shared_from_this<GestureRun> {
 public:
  bool Done() const { return done_; }

 private:
  friend class Screen;
  bool done_ = false;
};

/// Something that stands in front and takes all gestures until it is answered or closed.
class Modal {
 public:
  using What = std::variant<MessageBox, FileDialog, Window*>;

  Modal(core::Scheduler& scheduler, What what, int id, std::shared_ptr<GestureRun> opener);

  const MessageBox* AsMessageBox() const { return std::get_if<MessageBox>(&what_); }
  const FileDialog* AsFileDialog() const { return std::get_if<FileDialog>(&what_); }
  Window* AsWindow() const {
    Window* const* window = std::get_if<Window*>(&what_);
    return window == nullptr ? nullptr : *window;
  }
  /// Unlike that of any other modal thing of this run of the program.
  int Id() const { return id_; }
  /// The gesture whose handler waits for it, null when no gesture led to it.
  const std::shared_ptr<GestureRun>& Opener() const { return opener_; }

 private:
  friend class Screen;

  What what_;
  int id_ = 0;
  std::shared_ptr<GestureRun> opener_;
  std::string answer_;
  bool gone_ = false;
  core::WaitList closed_;
  core::Call goOn_;
};

/// What became of a gesture: taken, with the handler that it started (null when there is none), or refused and why.
struct GestureResult {
  bool taken = false;
  std::string refusal;
  std::shared_ptr<GestureRun> run;
};

/// A front that shows the screen. It is told once a turn, after all else of the turn. It may end subscriptions while it
/// is told, but no controls.
class Watcher {
 public:
  virtual void ControlsChanged(std::span<Control* const> changed) = 0;
  /// Another page, another modal thing in front, another pointer, or a beep.
  virtual void StageChanged() = 0;

 protected:
  ~Watcher() = default;
};

/// What stands before the user: the main window, the page in it, the stack of modal things; and the one door through
/// which every gesture comes in.
class Screen {
 public:
  explicit Screen(core::Scheduler& scheduler);
  Screen(const Screen&) = delete;
  Screen& operator=(const Screen&) = delete;
  ~Screen();

  core::Scheduler& GetScheduler() const { return scheduler_; }

  // What is shown.

  Window* Main() const { return main_; }
  void SetMain(Window* main) { main_ = main; }
  /// The page in the main window, null when there is none.
  Window* Page() const { return page_; }
  /// Leaves the page that is shown (its Deactivate runs) and shows `page` up to the end of its Activate. False when
  /// another page has taken its place meanwhile, also when `page` has come back since.
  core::Task<bool> ShowPage(Window* page);

  Modal* Front() const { return modals_.empty() ? nullptr : modals_.back().get(); }
  std::size_t ModalDepth() const { return modals_.size(); }
  /// From the one at the back to the one in front.
  const std::vector<std::shared_ptr<Modal>>& Modals() const { return modals_; }
  /// The window that takes the gestures: the modal one in front, else the page; null while a box is in front.
  Window* FrontWindow() const;

  /// Shows a message box until it is answered; gives the button's text.
  core::Task<std::string> MsgBox(std::string text, Icon icon, std::string caption = "Tarvo");
  core::Task<std::string> Ask(std::string text, Icon icon, std::vector<std::string> buttons,
                              std::string caption = "Tarvo", std::size_t defaultButton = 0);
  /// Shows a file dialog; gives the path, or nothing when it is cancelled.
  core::Task<std::optional<std::string>> AskForFile(bool save, std::string filter);
  /// Shows a modal window (its Load and Activate run each time) until `CloseModal`; then the page's Activate runs to
  /// its end, unless another modal window is still open.
  core::Task<> ShowModal(Window& window);
  /// Takes a modal window off the screen; whoever showed it goes on in the next turn.
  void CloseModal(Window& window);
  /// Puts a window in front of all for as long as the caller works; goes on when its Activate has ended.
  core::Task<> ShowInFront(Window& window);
  /// Takes such a window off the screen, its Deactivate first. The page below is not activated by it.
  void TakeFromFront(Window& window);
  /// The one message box for a fault that nobody caught.
  void ReportFault(const std::string& description);

  enum class Pointer { kDefault, kHourglass };
  Pointer MousePointer() const { return pointer_; }
  void SetMousePointer(Pointer pointer);
  /// True while a handler holds an `Hourglass`.
  bool Working() const { return hourglasses_ > 0; }
  int Beeps() const { return beeps_; }
  void Beep();

  // Gestures: what a user does. A handler that a gesture starts is never called otherwise.

  GestureResult Click(Control& control);
  GestureResult Choose(Control& control, int position);
  GestureResult Type(Control& control, std::string_view text);
  /// A key in `control`, or in the window in front when null. The window's KeyDown sees it first; Escape closes a modal
  /// window unless a text box takes it.
  GestureResult PressKey(Control* control, Key key);
  GestureResult Leave(Control& control);
  /// Shows a page that no navigation leads to, unless the page on the screen refuses to be left.
  GestureResult Open(Window& page);
  /// The close box of the modal thing in front, else of the main window.
  GestureResult Close();
  /// The close box of a page.
  GestureResult ClosePage(Window& page);
  /// A button of the message box in front, or a path or "Cancel" for the file dialog in front.
  GestureResult Answer(std::string_view answer);

  /// Why `control` takes no gesture now ("StartBelk is disabled"); empty when it does.
  std::string WhyNot(const Control& control) const;
  /// Asked after all else: a text refuses the gesture. The shell locks its navigation with it.
  std::function<std::string(const Control&)> Guard;
  /// No handler of a gesture is under way.
  bool Idle() const { return runsUnderWay_ == 0; }

  // Change notice.

  /// Tells `watcher` from now on until the end of what this gives back.
  class [[nodiscard]] Subscription {
   public:
    Subscription() = default;
    Subscription(Screen& screen, Watcher& watcher) : screen_(&screen), watcher_(&watcher) {}
    Subscription(Subscription&& other) noexcept { *this = std::move(other); }
    Subscription& operator=(Subscription&& other) noexcept {
      std::swap(screen_, other.screen_);
      std::swap(watcher_, other.watcher_);
      return *this;
    }
    ~Subscription() {
      if (screen_ != nullptr) screen_->Unsubscribe(*watcher_);
    }

   private:
    Screen* screen_ = nullptr;
    Watcher* watcher_ = nullptr;
  };
  Subscription Subscribe(Watcher& watcher);

  void NoteChanged(Control& control);
  void Forget(Control& control);

 private:
  friend class Hourglass;

  std::shared_ptr<Modal> PutInFront(Modal::What what, core::Origin* origin);
  core::Task<std::string> ShowUntilClosed(Modal::What what);
  void Close(Modal& modal, std::string_view answer);
  void NoteStage();
  void TellWatchers();
  void Unsubscribe(const Watcher& watcher);
  core::Task<> Counted(core::Task<> handler, std::shared_ptr<GestureRun> run);
  core::Task<> ClickBox(CheckBox& box, std::shared_ptr<bool> toggled);
  core::Task<> CloseWindow(Window& window);
  core::Task<> LeaveFor(Window& page);
  GestureResult Start(Window& window, core::Task<> handler);

  core::Scheduler& scheduler_;
  Window* main_ = nullptr;
  Window* page_ = nullptr;
  unsigned pagesShown_ = 0;
  std::vector<std::shared_ptr<Modal>> modals_;
  int lastModalId_ = 0;
  Pointer pointer_ = Pointer::kDefault;
  int hourglasses_ = 0;
  int beeps_ = 0;
  int runsUnderWay_ = 0;

  std::vector<Watcher*> watchers_;  // null where a subscription has ended while watchers are told
  std::vector<Control*> changed_;
  std::vector<Control*> telling_;
  bool stageChanged_ = false;
  bool tellingNow_ = false;
  core::Call notice_;
  core::Scope faultBoxes_;
};

}  // namespace tarvo::view
