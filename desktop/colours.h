#pragma once

#include <QColor>
#include <QPalette>

#include "view/control.h"

namespace tarvo::desktop {

/// What a colour is for. Colour is scarce: everything else is a shade of the palette's ground and text.
enum class Role {
  kDark,      ///< a mark that is not lit
  kGood,      ///< an active input or output, "OK"
  kQuiet,     ///< a lamp that says in green that nothing is wrong: a ring, as a dark one
  kFault,     ///< a red lamp, a negative value
  kCaution,   ///< a line that fails
  kBar,       ///< a meter's filled shape
  kSelected,  ///< the page that is shown
};

/// What the system's colour numbers stand for.
Role RoleOf(view::Colour colour);
/// `role` in a tone that reads well on the palette's ground.
QColor ToneOf(Role role, const QPalette& palette);

bool IsDark(const QPalette& palette);
/// `share` of `over`, the rest of `under`.
QColor Mix(const QColor& under, const QColor& over, double share);
/// The ground of a card, a little off the window's.
QColor CardGround(const QPalette& palette);
/// Thin lines: the edge of a card, of a value, of a dark lamp.
QColor LineTone(const QPalette& palette);
/// Text that stands back: headings, notes, captions of dark lamps.
QColor QuietText(const QPalette& palette);

/// The program's own palettes, for a desktop that brings none and for pictures.
QPalette LightPalette();
QPalette DarkPalette();

}  // namespace tarvo::desktop
