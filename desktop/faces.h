#pragma once

#include <QPointer>
#include <functional>
#include <unordered_map>

#include "view/screen.h"

class QWidget;

namespace tarvo::desktop {

class PageLabel;
class TextLabel;

/// Where a control stands, as far as its look depends on it.
enum class Setting {
  kPlain,
  kTable,    ///< numbers at the right edge
  kNote,     ///< a text that stands back
  kMessage,  ///< a text with a mark
  kAccent,   ///< a button that the eye should find
};

/// What a control is called where it stands, by its row, column or heading; empty where nothing stands beside it.
using Title = std::function<QString()>;

/// Makes the widgets that show controls. They own no values: each gesture goes through the screen, and what the
/// control holds is shown.
class Faces {
 public:
  explicit Faces(view::Screen& screen) : screen_(screen) {}

  /// The widget for `control`; null for a kind without a face.
  QWidget* Make(view::Control& control, QWidget* parent, Setting setting = Setting::kPlain, const Title& title = {});
  /// The text of a panel; it gives way where its place is narrow.
  TextLabel* MakePanel(view::Panel& panel, QWidget* parent);
  PageLabel* MakePageLabel(view::Label& label, QWidget* parent, std::function<void()> onRefresh);

  /// Calls `refresh` now and at each change of `control`, as long as `shower` lives.
  void Follow(const view::Control& control, QObject& shower, std::function<void()> refresh);
  void Refresh(const view::Control& control);
  /// The widget that shows `control` now, if one does.
  QWidget* Find(const view::Control& control) const;

 private:
  struct Face {
    QPointer<QObject> shower;
    std::function<void()> refresh;
  };

  QWidget* MakeLabel(view::Label& label, QWidget* parent, Setting setting, const Title& title);
  QWidget* MakeButton(view::Button& button, QWidget* parent, Setting setting);
  QWidget* MakeCheckBox(view::CheckBox& box, QWidget* parent, const Title& title);
  QWidget* MakeOption(view::OptionButton& option, QWidget* parent, const Title& title);
  QWidget* MakeComboBox(view::ComboBox& combo, QWidget* parent, const Title& title);
  QWidget* MakeTextBox(view::TextBox& field, QWidget* parent, const Title& title);
  QWidget* MakeImageBox(view::ImageBox& image, QWidget* parent, const Title& title);
  QWidget* MakeGears(view::ImageBox& image, QWidget* parent);
  QWidget* MakeLamp(view::Lamp& lamp, QWidget* parent, const Title& title);
  QWidget* MakeMeter(view::Control& control, QWidget* parent, const Title& title);
  QWidget* MakeClip(view::Clip& clip, QWidget* parent);

  /// A widget that shows one control: named like it, following it.
  void Bind(view::Control& control, QWidget* widget, std::function<void()> refresh);
  /// The handlers of a widget of our own for a control that may take clicks.
  template <class Widget>
  void HandIn(view::Control& control, Widget* widget);

  view::Screen& screen_;
  std::unordered_map<const view::Control*, Face> faces_;
};

}  // namespace tarvo::desktop
