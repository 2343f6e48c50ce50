#include "desktop/widgets/gear_group.h"

#include <QPainter>
#include <QPainterPath>
#include <QPolygonF>
#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "desktop/colours.h"
#include "desktop/widgets/measure.h"

namespace tarvo::desktop {

namespace {

constexpr int kPhases = 5;
constexpr double kTurn = 2 * std::numbers::pi;

// Lengths are in modules: the pitch diameter of a gear is its number of teeth, and a tooth stands out by one.
constexpr double kTip = 1.0;
constexpr double kRoot = 1.2;
constexpr int kDriverTeeth = 16;
constexpr QRectF kBounds(-9.1, -15.3, 27.5, 28.2);

/// A gear that the driver in the middle turns.
struct Driven {
  int teeth;
  double direction;  ///< from the driver's middle to its own
  double tone;       ///< of the text's colour over the ground
};
constexpr std::array<Driven, 2> kDriven = {{{12, -0.10 * kTurn, 0.17}, {9, 0.10 * kTurn, 0.30}}};
constexpr double kDriverTone = 0.23;

QPointF Polar(double radius, double angle) {
  return {radius * std::cos(angle), radius * std::sin(angle)};
}

/// A gear around the origin; the middle of its first tooth points to `angle`.
QPainterPath GearPath(int teeth, double angle) {
  const double radius = teeth / 2.0;
  const double pitch = kTurn / teeth;
  QPolygonF rim;
  for (int tooth = 0; tooth < teeth; ++tooth) {
    const double middle = angle + tooth * pitch;
    rim << Polar(radius - kRoot, middle - 0.33 * pitch) << Polar(radius + kTip, middle - 0.16 * pitch)
        << Polar(radius + kTip, middle + 0.16 * pitch) << Polar(radius - kRoot, middle + 0.33 * pitch);
  }
  QPainterPath path;
  path.addPolygon(rim);
  path.closeSubpath();
  const double hub = radius * 0.2;
  path.addEllipse(QPointF(), hub, hub);
  // Light holes, so that the eye sees it turn.
  constexpr int kHoles = 5;
  for (int hole = 0; hole < kHoles; ++hole) {
    path.addEllipse(Polar(radius * 0.5, angle + hole * kTurn / kHoles), radius * 0.17, radius * 0.17);
  }
  return path;
}

}  // namespace

GearGroup::GearGroup(QWidget* parent) : QWidget(parent) {
  setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Maximum);
}

void GearGroup::SetPhase(int phase) {
  if (phase < 1 || phase > kPhases) phase = 1;
  if (phase_ == phase) return;
  phase_ = phase;
  update();
}

QSize GearGroup::sizeHint() const {
  return SizeOf(17);
}

QSize GearGroup::minimumSizeHint() const {
  return SizeOf(6);
}

QSize GearGroup::SizeOf(double height) const {
  return {Em(*this, height * kBounds.width() / kBounds.height()), Em(*this, height)};
}

void GearGroup::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  const double scale = std::min(width() / kBounds.width(), height() / kBounds.height());
  painter.translate(QRectF(rect()).center());
  painter.scale(scale, scale);
  painter.translate(-kBounds.center());
  const auto draw = [&](const QPainterPath& path, double tone) {
    painter.setBrush(Mix(palette().color(QPalette::Window), palette().color(QPalette::WindowText), tone));
    painter.drawPath(path);
  };

  const double pitch = kTurn / kDriverTeeth;
  const double angle = pitch * (phase_ - 1) / kPhases;
  draw(GearPath(kDriverTeeth, angle), kDriverTone);
  for (const Driven& gear : kDriven) {
    // Where the two meet, a gap of the one takes the tooth of the other, and they turn against each other.
    const double ahead = (angle - gear.direction) / pitch;
    const double own = gear.direction + kTurn / 2 - (ahead + 0.5) * kTurn / gear.teeth;
    draw(GearPath(gear.teeth, own).translated(Polar((kDriverTeeth + gear.teeth) / 2.0, gear.direction)), gear.tone);
  }
}

}  // namespace tarvo::desktop
