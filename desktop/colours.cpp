#include "desktop/colours.h"

namespace tarvo::desktop {

namespace {

struct Shades {
  QColor window;
  QColor base;
  QColor button;
  QColor text;
  QColor accent;
  QColor accentText;
};

QPalette MakePalette(const Shades& shades) {
  QPalette palette(shades.button, shades.window);
  const auto set = [&](QPalette::ColorRole role, const QColor& colour) { palette.setColor(role, colour); };
  set(QPalette::Window, shades.window);
  set(QPalette::Base, shades.base);
  set(QPalette::AlternateBase, Mix(shades.base, shades.window, 0.5));
  set(QPalette::Button, shades.button);
  set(QPalette::ToolTipBase, shades.base);
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText}) {
    set(role, shades.text);
    palette.setColor(QPalette::Disabled, role, Mix(shades.window, shades.text, 0.5));
  }
  set(QPalette::PlaceholderText, Mix(shades.base, shades.text, 0.6));
  set(QPalette::Highlight, shades.accent);
  set(QPalette::HighlightedText, shades.accentText);
  palette.setColor(QPalette::Disabled, QPalette::Highlight, Mix(shades.window, shades.text, 0.3));
  set(QPalette::Link, shades.accent);
  set(QPalette::LinkVisited, shades.accent);
  return palette;
}

}  // namespace

Role RoleOf(view::Colour colour) {
  switch (colour) {
    case view::kRed:
      return Role::kFault;
    case view::kGreen:
      return Role::kQuiet;
    case view::kBarBlue:
      return Role::kBar;
    case view::kHighlight:
      return Role::kSelected;
    default:
      // The dark red of a lamp that is off, button-face grey, and any number that stands for no role.
      return Role::kDark;
  }
}

QColor ToneOf(Role role, const QPalette& palette) {
  const bool dark = IsDark(palette);
  switch (role) {
    case Role::kGood:
    case Role::kQuiet:
      return dark ? QColor(0x3f, 0xb9, 0x68) : QColor(0x1e, 0x9e, 0x4d);
    case Role::kFault:
      return dark ? QColor(0xf2, 0x6b, 0x66) : QColor(0xd3, 0x2f, 0x2f);
    case Role::kCaution:
      return dark ? QColor(0xf0, 0xb4, 0x3c) : QColor(0xc6, 0x80, 0x00);
    case Role::kBar:
      return dark ? QColor(0x7a, 0xa2, 0xf7) : QColor(0x4f, 0x7f, 0xe0);
    case Role::kSelected:
      return palette.color(QPalette::Highlight);
    case Role::kDark:
      break;
  }
  return LineTone(palette);
}

bool IsDark(const QPalette& palette) {
  return palette.color(QPalette::Window).lightness() < palette.color(QPalette::WindowText).lightness();
}

QColor Mix(const QColor& under, const QColor& over, double share) {
  const auto mix = [&](int a, int b) { return static_cast<int>(a + (b - a) * share); };
  return {mix(under.red(), over.red()), mix(under.green(), over.green()), mix(under.blue(), over.blue())};
}

QColor CardGround(const QPalette& palette) {
  // On a dark desktop the base often lies below the window's ground; a card stands above it on any.
  if (!IsDark(palette)) return palette.color(QPalette::Base);
  return Mix(palette.color(QPalette::Window), palette.color(QPalette::WindowText), 0.05);
}

QColor LineTone(const QPalette& palette) {
  return Mix(palette.color(QPalette::Window), palette.color(QPalette::WindowText), IsDark(palette) ? 0.22 : 0.18);
}

QColor QuietText(const QPalette& palette) {
  // A disabled text stands back as it is.
  if (palette.currentColorGroup() == QPalette::Disabled) return palette.color(QPalette::WindowText);
  return Mix(palette.color(QPalette::Window), palette.color(QPalette::WindowText), 0.65);
}

QPalette LightPalette() {
  return MakePalette({.window = QColor(0xf2, 0xf3, 0xf5),
                      .base = QColor(0xff, 0xff, 0xff),
                      .button = QColor(0xfa, 0xfb, 0xfc),
                      .text = QColor(0x1c, 0x21, 0x28),
                      .accent = QColor(0x17, 0x64, 0xc0),
                      .accentText = QColor(0xff, 0xff, 0xff)});
}

QPalette DarkPalette() {
  return MakePalette({.window = QColor(0x17, 0x1a, 0x1f),
                      .base = QColor(0x12, 0x15, 0x19),
                      .button = QColor(0x2a, 0x2f, 0x37),
                      .text = QColor(0xe4, 0xe7, 0xeb),
                      .accent = QColor(0x5b, 0x9b, 0xf8),
                      .accentText = QColor(0x0c, 0x12, 0x1a)});
}

}  // namespace tarvo::desktop
