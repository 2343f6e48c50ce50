#include "view/screen.h"

#include <algorithm>
#include <utility>

#include "view/window.h"

namespace tarvo::view {

namespace {

/// Tells a coroutine what it was started for.
class OriginOf {
 public:
  bool await_ready() const noexcept { return false; }
  template <class Promise>
  bool await_suspend(std::coroutine_handle<Promise> frame) noexcept {
    origin_ = frame.promise().origin;
    return false;
  }
  core::Origin* await_resume() const noexcept { return origin_; }

 private:
  core::Origin* origin_ = nullptr;
};

void ToggleOnce(CheckBox& box, bool& toggled) {
  if (std::exchange(toggled, true)) return;
  box.Value = box.Value() == 0 ? 1 : 0;
}

GestureResult Refused(std::string why) {
  GestureResult result;
  result.refusal = std::move(why);
  return result;
}

GestureResult TakenAtOnce() {
  GestureResult result;
  result.taken = true;
  return result;
}

/// What Escape or the close box answers.
std::string DismissingButton(const MessageBox& box) {
  const auto cancel = std::find(box.buttons.begin(), box.buttons.end(), "Cancel");
  return cancel != box.buttons.end() ? *cancel : box.buttons.back();
}

constexpr char kCancel[] = "Cancel";

/// Calls `handler` inside a task, so that also a fault of the call itself ends as the task's fault.
template <class... Given>
core::Task<> Run(const std::function<core::Task<>(Given...)>& handler, Given... given) {
  core::Task<> task = handler(given...);
  co_await std::move(task);
}

core::Task<> TellKey(Window& window, Key key) {
  window.KeyDown(key);
  co_return;
}

}  // namespace

Modal::Modal(core::Scheduler& scheduler, What what, int id, std::shared_ptr<GestureRun> opener)
    : what_(std::move(what)), id_(id), opener_(std::move(opener)), goOn_(scheduler, [this] {
        gone_ = true;
        closed_.WakeAll();
      }) {}

Screen::Screen(core::Scheduler& scheduler)
    : scheduler_(scheduler),
      notice_(scheduler, [this] { TellWatchers(); }),
      faultBoxes_([](const std::exception_ptr&) {}) {}

Screen::~Screen() = default;

core::Task<bool> Screen::ShowPage(Window* page) {
  if (page_ == page) co_return true;
  if (page_ != nullptr) page_->Deactivate();
  page_ = page;
  const unsigned shown = ++pagesShown_;
  NoteStage();
  if (page == nullptr) co_return true;
  page->EnsureLoaded();
  co_await page->Activate();
  co_return pagesShown_ == shown;
}

Window* Screen::FrontWindow() const {
  const Modal* front = Front();
  return front != nullptr ? front->AsWindow() : page_;
}

std::shared_ptr<Modal> Screen::PutInFront(Modal::What what, core::Origin* origin) {
  std::shared_ptr<GestureRun> opener;
  if (auto* run = dynamic_cast<GestureRun*>(origin)) opener = run->weak_from_this().lock();
  auto modal = std::make_shared<Modal>(scheduler_, std::move(what), ++lastModalId_, std::move(opener));
  modals_.push_back(modal);
  NoteStage();
  return modal;
}

core::Task<std::string> Screen::ShowUntilClosed(Modal::What what) {
  core::Origin* origin = co_await OriginOf();
  const std::shared_ptr<Modal> modal = PutInFront(std::move(what), origin);

  // A task that ends early, with its window, takes its box along.
  struct OffTheScreen {
    ~OffTheScreen() { screen.Close(modal, {}); }
    Screen& screen;
    Modal& modal;
  };
  const OffTheScreen offTheScreen{*this, *modal};

  if (Window* window = modal->AsWindow()) co_await window->Activate();
  // Its own Activate may have closed it.
  if (!modal->gone_) co_await modal->closed_.Wait();
  co_return modal->answer_;
}

core::Task<std::string> Screen::MsgBox(std::string text, Icon icon, std::string caption) {
  std::vector<std::string> buttons;
  buttons.emplace_back("OK");
  return Ask(std::move(text), icon, std::move(buttons), std::move(caption));
}

core::Task<std::string> Screen::Ask(std::string text, Icon icon, std::vector<std::string> buttons, std::string caption,
                                    std::size_t defaultButton) {
  MessageBox box;
  box.text = std::move(text);
  box.caption = std::move(caption);
  box.icon = icon;
  box.buttons = std::move(buttons);
  box.defaultButton = defaultButton;
  Modal::What what(std::move(box));
  return ShowUntilClosed(std::move(what));
}

core::Task<std::optional<std::string>> Screen::AskForFile(bool save, std::string filter) {
  FileDialog dialog;
  dialog.save = save;
  dialog.filter = std::move(filter);
  Modal::What what(std::move(dialog));
  std::string answer = co_await ShowUntilClosed(std::move(what));
  std::optional<std::string> path;
  if (answer != kCancel) path = std::move(answer);
  co_return path;
}

core::Task<> Screen::ShowModal(Window& window) {
  window.loaded_ = true;
  window.Load();
  Modal::What what(&window);
  co_await ShowUntilClosed(std::move(what));
  const bool pageIsInFront =
      std::none_of(modals_.begin(), modals_.end(), [](const auto& modal) { return modal->AsWindow() != nullptr; });
  if (pageIsInFront && page_ != nullptr) co_await page_->Activate();
}

core::Task<> Screen::ShowInFront(Window& window) {
  core::Origin* origin = co_await OriginOf();
  window.loaded_ = true;
  window.Load();
  PutInFront(&window, origin);
  co_await window.Activate();
}

void Screen::TakeFromFront(Window& window) {
  window.Deactivate();
  CloseModal(window);
}

void Screen::CloseModal(Window& window) {
  const auto place = std::find_if(modals_.rbegin(), modals_.rend(),
                                  [&](const auto& candidate) { return candidate->AsWindow() == &window; });
  if (place != modals_.rend()) Close(**place, {});
}

void Screen::ReportFault(const std::string& description) {
  auto show = [](Screen& screen, std::string text) -> core::Task<> {
    co_await screen.MsgBox(std::move(text), Icon::kExclamation);
  };
  faultBoxes_.Spawn(show(*this, description));
}

void Screen::Close(Modal& modal, std::string_view answer) {
  const auto place =
      std::find_if(modals_.begin(), modals_.end(), [&](const auto& candidate) { return candidate.get() == &modal; });
  if (place == modals_.end()) return;
  modal.answer_ = answer;
  // Whoever waits for it goes on in the next turn, when the handler that closes it has ended.
  modal.goOn_.Post();
  modals_.erase(place);
  NoteStage();
}

void Screen::SetMousePointer(Pointer pointer) {
  if (pointer_ == pointer) return;
  pointer_ = pointer;
  NoteStage();
}

void Screen::Beep() {
  ++beeps_;
  NoteStage();
}

std::string Screen::WhyNot(const Control& control) const {
  const Window* window = &control.GetWindow();
  const Modal* front = Front();
  if (front != nullptr && front->AsWindow() != window) {
    const Window* frontWindow = front->AsWindow();
    const std::string frontName = frontWindow != nullptr  ? frontWindow->Name()
                                  : front->AsMessageBox() ? "a message box"
                                                          : "a file dialog";
    return control.Name() + " is behind " + frontName;
  }
  if (front == nullptr && window != page_ && window != main_) return control.Name() + " is not on the screen";
  if (!control.Visible()) return control.Name() + " is hidden";
  if (!control.Enabled()) return control.Name() + " is disabled";
  return Guard ? Guard(control) : std::string();
}

core::Task<> Screen::Counted(core::Task<> handler, std::shared_ptr<GestureRun> run) {
  struct UnderWay {
    UnderWay(int& count, GestureRun& run) : count_(count), run_(run) { ++count_; }
    ~UnderWay() {
      --count_;
      run_.done_ = true;
    }
    int& count_;
    GestureRun& run_;
  };
  const UnderWay underWay(runsUnderWay_, *run);
  co_await std::move(handler);
}

GestureResult Screen::Start(Window& window, core::Task<> handler) {
  GestureResult result;
  result.taken = true;
  result.run = std::make_shared<GestureRun>();
  window.Spawn(Counted(std::move(handler), result.run), result.run);
  return result;
}

core::Task<> Screen::ClickBox(CheckBox& box, std::shared_ptr<bool> toggled) {
  if (box.OnPress) co_await box.OnPress();
  ToggleOnce(box, *toggled);
  if (box.OnClick) co_await box.OnClick();
}

GestureResult Screen::Click(Control& control) {
  if (std::string why = WhyNot(control); !why.empty()) return Refused(std::move(why));
  if (!control.TakesClick() || control.GetKind() == Kind::kComboBox) return Refused(control.Name() + " takes no click");
  Window& window = control.GetWindow();
  switch (control.GetKind()) {
    case Kind::kCheckBox: {
      auto& box = static_cast<CheckBox&>(control);
      // The box toggles when its press handler first waits, or ends.
      const auto toggled = std::make_shared<bool>(false);
      GestureResult result = Start(window, ClickBox(box, toggled));
      ToggleOnce(box, *toggled);
      return result;
    }
    case Kind::kOptionButton: {
      auto& option = static_cast<OptionButton&>(control);
      option.Value = true;
      return option.OnClick ? Start(window, Run(option.OnClick)) : TakenAtOnce();
    }
    case Kind::kButton: {
      auto& button = static_cast<Button&>(control);
      return button.OnClick ? Start(window, Run(button.OnClick)) : TakenAtOnce();
    }
    case Kind::kLabel:
      return Start(window, Run(static_cast<Label&>(control).OnClick));
    case Kind::kLamp:
      return Start(window, Run(static_cast<Lamp&>(control).OnClick));
    case Kind::kImageBox:
      return Start(window, Run(static_cast<ImageBox&>(control).OnClick));
    case Kind::kMenuItem:
      return Start(window, Run(static_cast<MenuItem&>(control).OnClick));
    default:
      return Refused(control.Name() + " takes no click");
  }
}

GestureResult Screen::Choose(Control& control, int position) {
  if (std::string why = WhyNot(control); !why.empty()) return Refused(std::move(why));
  if (control.GetKind() != Kind::kComboBox) return Refused(control.Name() + " is no list");
  auto& combo = static_cast<ComboBox&>(control);
  if (position < 0 || static_cast<std::size_t>(position) >= combo.List().size()) {
    return Refused(control.Name() + " has no entry " + std::to_string(position));
  }
  auto choose = [](ComboBox& list, int chosen) -> core::Task<> {
    const bool changes = list.ListIndex() != chosen;
    list.ListIndex = chosen;
    if (!changes && list.OnSelect) list.OnSelect();
    if (list.OnChoose) co_await list.OnChoose();
  };
  return Start(control.GetWindow(), choose(combo, position));
}

GestureResult Screen::Type(Control& control, std::string_view text) {
  if (std::string why = WhyNot(control); !why.empty()) return Refused(std::move(why));
  if (control.GetKind() != Kind::kTextBox) return Refused(control.Name() + " takes no text");
  auto& box = static_cast<TextBox&>(control);
  if (box.Locked) return Refused(control.Name() + " only shows a value");
  box.Text = text;
  return TakenAtOnce();
}

GestureResult Screen::PressKey(Control* control, Key key) {
  const Modal* front = Front();
  if (control != nullptr) {
    if (std::string why = WhyNot(*control); !why.empty()) return Refused(std::move(why));
  } else if (front != nullptr && front->AsWindow() == nullptr) {
    if (key == Key::kEscape) return Close();
    const MessageBox* box = front->AsMessageBox();
    return box != nullptr ? Answer(box->buttons.at(box->defaultButton)) : Refused("a file dialog takes no Enter");
  }

  Window* window = control != nullptr ? &control->GetWindow() : FrontWindow();
  // The page in the main window sees the keys of both.
  if (window == main_ && page_ != nullptr) window = page_;
  if (window != nullptr) window->Spawn(TellKey(*window, key));

  if (control != nullptr && control->GetKind() == Kind::kTextBox) {
    auto& field = static_cast<TextBox&>(*control);
    if (field.OnKey) return Start(control->GetWindow(), Run(field.OnKey, key));
  }
  if (key == Key::kEscape) return front != nullptr && front == Front() ? Close() : TakenAtOnce();
  const bool clicks = control != nullptr && control->TakesClick() && control->GetKind() != Kind::kComboBox;
  return clicks ? Click(*control) : TakenAtOnce();
}

GestureResult Screen::Leave(Control& control) {
  if (std::string why = WhyNot(control); !why.empty()) return Refused(std::move(why));
  if (control.GetKind() != Kind::kTextBox) return TakenAtOnce();
  auto& field = static_cast<TextBox&>(control);
  return field.OnLeave ? Start(control.GetWindow(), Run(field.OnLeave)) : TakenAtOnce();
}

core::Task<> Screen::LeaveFor(Window& page) {
  bool agreed = true;
  if (page_ != nullptr) agreed = co_await page_->QueryUnload();
  if (agreed) co_await ShowPage(&page);
}

GestureResult Screen::Open(Window& page) {
  if (!page.Hidden()) return Refused(page.Name() + " is no hidden page");
  if (&page == page_) return Refused(page.Name() + " is on the screen");
  if (Front() != nullptr) return Refused(page.Name() + " would be behind what is in front");
  return Start(page, LeaveFor(page));
}

core::Task<> Screen::CloseWindow(Window& window) {
  const bool agreed = co_await window.QueryUnload();
  if (!agreed) co_return;
  window.Unload();
  CloseModal(window);
  if (&window == page_) co_await ShowPage(nullptr);
}

GestureResult Screen::Close() {
  const Modal* front = Front();
  if (front == nullptr) {
    if (main_ == nullptr) return Refused("there is no window to close");
    return Start(*main_, CloseWindow(*main_));
  }
  if (const MessageBox* box = front->AsMessageBox()) return Answer(DismissingButton(*box));
  if (front->AsFileDialog() != nullptr) return Answer(kCancel);
  return Start(*front->AsWindow(), CloseWindow(*front->AsWindow()));
}

GestureResult Screen::ClosePage(Window& page) {
  if (&page != FrontWindow()) return Refused(page.Name() + " is not in front");
  return Start(page, CloseWindow(page));
}

GestureResult Screen::Answer(std::string_view answer) {
  if (modals_.empty()) return Refused("nothing waits for an answer");
  const std::shared_ptr<Modal> front = modals_.back();
  if (front->AsWindow() != nullptr) return Refused(front->AsWindow()->Name() + " takes no answer");
  if (const MessageBox* box = front->AsMessageBox()) {
    if (std::find(box->buttons.begin(), box->buttons.end(), answer) == box->buttons.end()) {
      return Refused("the message box has no button " + std::string(answer));
    }
  }
  GestureResult result = TakenAtOnce();
  result.run = front->opener_;
  Close(*front, answer);
  return result;
}

Screen::Subscription Screen::Subscribe(Watcher& watcher) {
  watchers_.push_back(&watcher);
  return {*this, watcher};
}

void Screen::Unsubscribe(const Watcher& watcher) {
  const auto place = std::find(watchers_.begin(), watchers_.end(), &watcher);
  if (place == watchers_.end()) return;
  if (tellingNow_) {
    *place = nullptr;
  } else {
    watchers_.erase(place);
  }
}

void Screen::NoteChanged(Control& control) {
  if (control.changeNoted_ || watchers_.empty()) return;
  control.changeNoted_ = true;
  changed_.push_back(&control);
  notice_.AtTurnEnd();
}

void Screen::Forget(Control& control) {
  if (control.changeNoted_) std::erase(changed_, &control);
}

void Screen::NoteStage() {
  stageChanged_ = true;
  notice_.AtTurnEnd();
}

void Screen::TellWatchers() {
  telling_.swap(changed_);
  // A change that a watcher makes while it is told is told in the next turn.
  for (Control* control : telling_) control->changeNoted_ = false;
  const bool stage = std::exchange(stageChanged_, false);
  tellingNow_ = true;
  const std::size_t count = watchers_.size();
  for (std::size_t i = 0; i < count; ++i) {
    if (watchers_[i] != nullptr && !telling_.empty()) watchers_[i]->ControlsChanged(telling_);
    if (watchers_[i] != nullptr && stage) watchers_[i]->StageChanged();
  }
  tellingNow_ = false;
  std::erase(watchers_, nullptr);
  telling_.clear();
}

}  // namespace tarvo::view
