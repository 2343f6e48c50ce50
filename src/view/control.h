#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/scheduler.h"
#include "core/task.h"
#include "view/property.h"

namespace tarvo::view {

class Window;

enum class Kind {
  kLabel,
  kButton,
  kCheckBox,
  kOptionButton,
  kComboBox,
  kTextBox,
  kImageBox,
  kLamp,
  kMeter,
  kTimer,
  kClip,
  kPanel,
  kMenuItem,
  kComponent,  ///< no face of its own: a bus instance
};

/// A colour as the system numbers it: red in the low byte, then green, then blue.
using Colour = std::int32_t;
inline constexpr Colour kRed = 255;
inline constexpr Colour kDarkRed = 64;
inline constexpr Colour kGreen = 65280;
inline constexpr Colour kBarBlue = 0xFF8080;
/// The system's code for "selected": the page list's label of the page that is shown.
inline constexpr Colour kHighlight = static_cast<Colour>(0x8000000D);

/// Keys by their codes.
enum class Key { kEnter = 13, kEscape = 27 };

/// A named field of a window that a user sees or reaches. What kinds have in common.
class Control {
 public:
  /// `name` as the system has it, `index` for a member of an array ("TotIN(0)"), -1 for one that stands alone.
  Control(Window& window, Kind kind, std::string_view name, int index = -1);
  Control(const Control&) = delete;
  Control& operator=(const Control&) = delete;
  virtual ~Control();

  Kind GetKind() const { return kind_; }
  const std::string& Name() const { return name_; }
  Window& GetWindow() const { return window_; }

  /// True when a click does something here, so that a front shows that it can be clicked.
  virtual bool TakesClick() const { return false; }

  /// Every property by name, in a fixed order.
  virtual std::vector<NamedValue> Properties() const;

  Property<bool> Enabled{*this, true};
  Property<bool> Visible{*this, true};
  Property<std::string> ToolTipText{*this};

 protected:
  friend void detail::TellChanged(Control& owner, const void* property);
  /// Runs inside the set that changed `property`, before the next statement.
  virtual void OnSet(const void* /*property*/) {}

 private:
  friend class Screen;

  Window& window_;
  Kind kind_;
  std::string name_;
  bool changeNoted_ = false;
};

using Handler = std::function<core::Task<>()>;

/// A text. One with a click handler shows a value that a click edits, or, in the page list, leads to a page.
class Label : public Control {
 public:
  Label(Window& window, std::string_view name, std::string_view caption = {}, std::string_view toolTip = {},
        int index = -1);

  bool TakesClick() const override { return OnClick != nullptr; }
  std::vector<NamedValue> Properties() const override;

  Property<std::string> Caption{*this};
  Property<Colour> BackColor{*this};

  Handler OnClick;
};

class Button : public Control {
 public:
  Button(Window& window, std::string_view name, std::string_view caption = {}, std::string_view toolTip = {},
         int index = -1);

  bool TakesClick() const override { return true; }
  std::vector<NamedValue> Properties() const override;

  Property<std::string> Caption{*this};

  Handler OnClick;
};

class CheckBox : public Control {
 public:
  CheckBox(Window& window, std::string_view name, std::string_view caption = {}, std::string_view toolTip = {},
           int index = -1);

  bool TakesClick() const override { return true; }
  std::vector<NamedValue> Properties() const override;

  Property<std::string> Caption{*this};
  Property<int> Value{*this};  ///< 0 or 1
  Property<Colour> BackColor{*this};

  /// Runs before a user's click toggles the box: it reads its intent from the box before its first wait.
  Handler OnPress;
  /// Runs after a user's click has toggled the box. A program change runs neither.
  Handler OnClick;
  /// Runs inside every change, the program's included.
  std::function<void()> OnChange;

 protected:
  void OnSet(const void* property) override;
};

/// One of a group: setting it clears the others of its group in the same window.
class OptionButton : public Control {
 public:
  OptionButton(Window& window, std::string_view name, std::string_view group, std::string_view caption = {},
               std::string_view toolTip = {}, int index = -1);

  bool TakesClick() const override { return true; }
  std::vector<NamedValue> Properties() const override;
  const std::string& Group() const { return group_; }

  Property<std::string> Caption{*this};
  Property<bool> Value{*this};

  /// Runs after a user's click has selected the option, also when it was selected before.
  Handler OnClick;

 protected:
  void OnSet(const void* property) override;

 private:
  std::string group_;
};

/// An entry of a list and the code attached to it.
struct ListRow {
  std::string_view text;
  int code = 0;
};

class ComboBox : public Control {
 public:
  ComboBox(Window& window, std::string_view name, std::span<const ListRow> rows = {}, std::string_view toolTip = {},
           int index = -1);

  bool TakesClick() const override { return true; }
  std::vector<NamedValue> Properties() const override;

  Property<std::vector<std::string>> List{*this};
  Property<std::vector<int>> ItemData{*this};
  Property<int> ListIndex{*this, -1};  ///< -1 when nothing is selected

  /// The text of the selected entry, empty when none is.
  std::string Text() const;
  /// The code of the selected entry, 0 when none is.
  int SelectedCode() const;
  /// Selects the entry that carries `code`; false, and the selection stays, when none does.
  bool SelectCode(int code);
  /// Makes `rows` the list; the selection is left as it is.
  void SetRows(std::span<const ListRow> rows);
  void AddItem(std::string_view text, int code = 0);
  /// Takes one entry out. A selection behind it follows its entry; one on it is lost. A fault when there is none there.
  void RemoveItem(int position);

  /// Runs inside each change of `ListIndex`, the program's included, and on each choice of the user.
  std::function<void()> OnSelect;
  /// Runs after a choice of the user, also of the entry that was selected before.
  Handler OnChoose;

 protected:
  void OnSet(const void* property) override;
};

class TextBox : public Control {
 public:
  TextBox(Window& window, std::string_view name, std::string_view toolTip = {}, int index = -1);

  std::vector<NamedValue> Properties() const override;

  Property<std::string> Text{*this};
  /// Shows only, takes no typing. Set while the window is made.
  bool Locked = false;

  std::function<core::Task<>(Key)> OnKey;
  Handler OnLeave;
};

/// Shows one of a few numbered pictures.
class ImageBox : public Control {
 public:
  /// Which pictures: of an input, 1 off and 2 on, or of the gears in their phases 1 to 5.
  enum class Album { kInput, kGears };

  ImageBox(Window& window, std::string_view name, std::string_view toolTip = {}, int index = -1,
           Album album = Album::kInput);

  Album GetAlbum() const { return album_; }

  bool TakesClick() const override { return OnClick != nullptr; }
  std::vector<NamedValue> Properties() const override;

  Property<int> Picture{*this, 1};

  Handler OnClick;

 private:
  Album album_;
};

/// A status mark that tells by its colour: lit (`kRed`) or dark (`kDarkRed`, or another colour).
class Lamp : public Control {
 public:
  Lamp(Window& window, std::string_view name, std::string_view caption = {}, std::string_view toolTip = {},
       int index = -1);

  bool TakesClick() const override { return OnClick != nullptr; }
  std::vector<NamedValue> Properties() const override;

  Property<std::string> Caption{*this};
  Property<Colour> BackColor{*this, kDarkRed};

  Handler OnClick;
};

/// Calls its handler every `Interval` milliseconds while enabled. A tick that is due while the handler still runs is
/// dropped.
class Timer : public Control {
 public:
  Timer(Window& window, std::string_view name, int interval);

  std::vector<NamedValue> Properties() const override;

  Property<int> Interval{*this};  ///< milliseconds

  Handler OnTimer;

 protected:
  void OnSet(const void* property) override;

 private:
  void Tick();
  core::Task<> RunHandler();

  core::Call tick_;
  bool running_ = false;
};

/// The clip that plays while a session runs; fronts show a turning gear while `Playing`.
class Clip : public Control {
 public:
  Clip(Window& window, std::string_view name);

  std::vector<NamedValue> Properties() const override;

  Property<std::string> FileName{*this};
  Property<bool> Loop{*this};
  Property<bool> Playing{*this};

  /// Runs when the clip has come to its end. A turning gear never does.
  std::function<void()> OnEnd;
};

/// A panel of a status bar.
class Panel : public Control {
 public:
  Panel(Window& window, std::string_view name, int index = -1);

  std::vector<NamedValue> Properties() const override;

  Property<std::string> Text{*this};
};

class MenuItem : public Control {
 public:
  /// `menu` is the item that this one hangs under, null for an entry of the menu bar.
  MenuItem(Window& window, MenuItem* menu, std::string_view name, std::string_view caption);

  bool TakesClick() const override { return OnClick != nullptr; }
  std::vector<NamedValue> Properties() const override;
  MenuItem* Menu() const { return menu_; }

  Property<std::string> Caption{*this};
  Property<int> Value{*this};  ///< 1 when checked

  Handler OnClick;

 private:
  MenuItem* menu_;
};

/// The members of an array of controls: `make(i)` gives the member with index i.
template <class T, std::size_t kSize>
class ControlArray {
 public:
  template <class Make>
  explicit ControlArray(Make make) : ControlArray(make, std::make_index_sequence<kSize>{}) {}

  T& operator[](std::size_t index) { return members_.at(index); }
  const T& operator[](std::size_t index) const { return members_.at(index); }
  T& operator[](int index) { return members_.at(static_cast<std::size_t>(index)); }
  const T& operator[](int index) const { return members_.at(static_cast<std::size_t>(index)); }
  static constexpr std::size_t Size() { return kSize; }
  auto begin() { return members_.begin(); }
  auto end() { return members_.end(); }
  auto begin() const { return members_.begin(); }
  auto end() const { return members_.end(); }

 private:
  template <class Make, std::size_t... kIndex>
  ControlArray(Make& make, std::index_sequence<kIndex...> /*indices*/) : members_{make(static_cast<int>(kIndex))...} {}

  std::array<T, kSize> members_;
};

/// A text for a person from a caption with a mnemonic: "&Write EEprom" is "Write EEprom".
std::string WithoutMnemonic(std::string_view caption);

}  // namespace tarvo::view
