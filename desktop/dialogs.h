#pragma once

#include "view/screen.h"

class QDialog;
class QString;
class QWidget;

namespace tarvo::desktop {

class Faces;

/// The dialog, not yet shown, for what stands in front. It has no loop of its own: it hands gestures in, and goes when
/// the screen has taken `modal` off.
QDialog* MakeDialog(view::Screen& screen, Faces& faces, const view::Modal& modal, QWidget* parent);

/// "All Files (*.txt) | *.txt": pairs of a description and its patterns, as the toolkit's file dialog wants them.
QString NameFilters(const std::string& filter);

}  // namespace tarvo::desktop
