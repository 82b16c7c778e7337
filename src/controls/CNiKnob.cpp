#include "controls/CNiKnob.h"

#include <QConicalGradient>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QRadialGradient>

#include <algorithm>
#include <cmath>

#include "controls/ControlLook.h"

using namespace control_look;

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kPlatterFraction = 0.88;  // vinyl radius over the outer radius
constexpr double kLabelFraction = 0.30;    // centre label radius over the outer radius

}  // namespace

CNiKnob::CNiKnob(QWidget* parent)
    : CNiControl(parent), pointerColor_(10, 100, 10), labelColor_(120, 36, 40) {
    QSizePolicy sp(QSizePolicy::Preferred, QSizePolicy::Preferred);
    sp.setHeightForWidth(true);
    setSizePolicy(sp);
}

void CNiKnob::SetValue(double v) {
    if (std::isnan(v))
        return;
    v = std::clamp(v, std::min(min_, max_), std::max(min_, max_));
    if (v == value_)
        return;
    value_ = v;
    update();
    emit valueChanged(v);
    emit pointerValueChanged(0, v);
}

void CNiKnob::SetAxis(double minimum, double maximum) {
    if (!UsableAxis(minimum, maximum))
        return;
    min_ = minimum;
    max_ = maximum;
    BackgroundChanged();
    SetValue(value_);
}

void CNiKnob::SetSweep(double degrees) {
    sweep_ = std::clamp(degrees, 30.0, 360.0);
    BackgroundChanged();
}

void CNiKnob::SetLook(Look look) {
    look_ = look;
    updateGeometry();
    BackgroundChanged();
}

void CNiKnob::SetPointerColor(const QColor& c) {
    if (c == pointerColor_)
        return;
    pointerColor_ = c;
    update();
}

void CNiKnob::SetPointerStyle(PointerStyle style) {
    pointerStyle_ = style;
    update();
}

void CNiKnob::SetLabelColor(const QColor& c) {
    labelColor_ = c;
    BackgroundChanged();
}

QSize CNiKnob::sizeHint() const {
    return look_ == kPerspective ? QSize(140, 90) : QSize(120, 120);
}

int CNiKnob::heightForWidth(int w) const {
    return look_ == kPerspective ? int(w * 0.62) : w;
}

QPointF CNiKnob::Centre() const {
    const QPointF c = QRectF(rect()).center();
    return QPointF(c.x(), c.y() - Thickness() / 2);
}

double CNiKnob::Radius() const {
    const double w = width() - 6;
    const double h = height() - 6;
    if (look_ == kPerspective)
        return std::max(1.0, std::min(w / 2, h / (2 * 0.5 + 0.16)));
    return std::max(1.0, std::min(w, h) / 2);
}

double CNiKnob::AngleOf(double value) const {
    const double frac = (value - min_) / (max_ - min_);
    if (sweep_ >= 360.0)
        return frac * 2 * kPi;
    return (-sweep_ / 2 + frac * sweep_) * kPi / 180.0;
}

QPointF CNiKnob::OnDial(double angleRad, double fraction) const {
    const QPointF c = Centre();
    const double r = Radius() * fraction;
    return QPointF(c.x() + r * std::sin(angleRad), c.y() - r * std::cos(angleRad) * Tilt());
}

double CNiKnob::ValueAt(QPointF pos) const {
    const QPointF c = Centre();
    const double dx = pos.x() - c.x();
    const double dy = (pos.y() - c.y()) / Tilt();
    const double theta = std::atan2(dx, -dy);  // 0 at the top, clockwise
    double frac;
    if (sweep_ >= 360.0) {
        frac = theta / (2 * kPi);
        if (frac < 0)
            frac += 1.0;
        if (frac >= 1.0)
            frac = 0.0;
    } else {
        frac = std::clamp((theta * 180.0 / kPi + sweep_ / 2) / sweep_, 0.0, 1.0);
    }
    return min_ + frac * (max_ - min_);
}

void CNiKnob::PressAt(QMouseEvent* event) {
    SetValue(ValueAt(event->position()));
}

void CNiKnob::DragTo(QMouseEvent* event) {
    SetValue(ValueAt(event->position()));
}

void CNiKnob::PaintBackground(QPainter& p) {
    const QPointF c = Centre();
    const double R = Radius();
    const double tilt = Tilt();

    if (look_ == kPerspective) {
        // The platter's edge: the lower half of the rim extruded downwards.
        const double t = Thickness();
        QPainterPath edge;
        edge.addEllipse(QPointF(c.x(), c.y() + t), R, R * tilt);
        QPainterPath band;
        band.addRect(QRectF(c.x() - R, c.y(), 2 * R, t));
        edge = edge.united(band);
        QLinearGradient g(QPointF(c.x() - R, 0), QPointF(c.x() + R, 0));
        g.setColorAt(0.0, QColor(30, 32, 36));
        g.setColorAt(0.45, QColor(110, 116, 126));
        g.setColorAt(1.0, QColor(26, 28, 32));
        p.setPen(QPen(FaceDarkColor(), 1.0));
        p.setBrush(g);
        p.drawPath(edge);
    }

    // Everything else is drawn on the dial's own circle, squashed for the
    // perspective look.
    p.translate(c);
    p.scale(1.0, tilt);

    // Metal rim.
    QConicalGradient rim(QPointF(0, 0), 60);
    rim.setColorAt(0.0, QColor(150, 156, 166));
    rim.setColorAt(0.25, QColor(70, 74, 82));
    rim.setColorAt(0.5, QColor(160, 166, 176));
    rim.setColorAt(0.75, QColor(64, 68, 76));
    rim.setColorAt(1.0, QColor(150, 156, 166));
    p.setPen(QPen(FaceDarkColor(), 1.2));
    p.setBrush(rim);
    p.drawEllipse(QPointF(0, 0), R, R);

    // Vinyl with grooves and a soft sheen.
    const double vr = R * kPlatterFraction;
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(14, 14, 16));
    p.drawEllipse(QPointF(0, 0), vr, vr);
    p.setBrush(Qt::NoBrush);
    for (double gr = vr - 2; gr > R * kLabelFraction + 2; gr -= 2.5) {
        p.setPen(QPen(QColor(255, 255, 255, 14), 0.8));
        p.drawEllipse(QPointF(0, 0), gr, gr);
    }
    QConicalGradient sheen(QPointF(0, 0), 30);
    sheen.setColorAt(0.00, QColor(255, 255, 255, 0));
    sheen.setColorAt(0.10, QColor(255, 255, 255, 34));
    sheen.setColorAt(0.20, QColor(255, 255, 255, 0));
    sheen.setColorAt(0.50, QColor(255, 255, 255, 0));
    sheen.setColorAt(0.60, QColor(255, 255, 255, 34));
    sheen.setColorAt(0.70, QColor(255, 255, 255, 0));
    sheen.setColorAt(1.00, QColor(255, 255, 255, 0));
    p.setPen(Qt::NoPen);
    p.setBrush(sheen);
    p.drawEllipse(QPointF(0, 0), vr, vr);

    // Centre label and spindle.
    const double lr = R * kLabelFraction;
    QRadialGradient label(QPointF(-lr * 0.3, -lr * 0.3), lr * 1.3);
    const QColor lc = ShownColor(labelColor_);
    label.setColorAt(0.0, lc.lighter(140));
    label.setColorAt(1.0, lc.darker(130));
    p.setBrush(label);
    p.drawEllipse(QPointF(0, 0), lr, lr);
    p.setBrush(QColor(190, 196, 204));
    p.drawEllipse(QPointF(0, 0), std::max(1.5, R * 0.04), std::max(1.5, R * 0.04));

    // Scale marks on the rim: twelve for a full turn, eleven across a sweep.
    p.setPen(QPen(isEnabled() ? QColor(20, 22, 26) : DimTextColor(), 1.2));
    const bool full = sweep_ >= 360.0;
    const int marks = full ? 12 : 11;
    for (int i = 0; i < marks; ++i) {
        const double frac = full ? double(i) / marks : double(i) / (marks - 1);
        const double a = AngleOf(min_ + frac * (max_ - min_));
        const double s = std::sin(a), co = -std::cos(a);
        const double inner = (i == 0 ? 0.90 : 0.93) * R;
        p.drawLine(QPointF(s * inner, co * inner), QPointF(s * R * 0.99, co * R * 0.99));
    }
}

void CNiKnob::paintEvent(QPaintEvent*) {
    QPainter p(this);
    DrawBackground(p);
    p.setRenderHint(QPainter::Antialiasing);
    const QPointF c = Centre();
    const double R = Radius();
    p.translate(c);
    p.scale(1.0, Tilt());

    const double a = AngleOf(value_);
    const double s = std::sin(a), co = -std::cos(a);
    const QColor pc = ShownColor(pointerColor_);
    switch (pointerStyle_) {
        case kNeedle: {
            const double r0 = R * (kLabelFraction + 0.02), r1 = R * 0.95;
            p.setPen(
                QPen(QColor(0, 0, 0, 120), std::max(3.0, R * 0.07), Qt::SolidLine, Qt::RoundCap));
            p.drawLine(QPointF(s * r0 + 1, co * r0 + 1), QPointF(s * r1 + 1, co * r1 + 1));
            p.setPen(QPen(pc.lighter(150), std::max(2.0, R * 0.05), Qt::SolidLine, Qt::RoundCap));
            p.drawLine(QPointF(s * r0, co * r0), QPointF(s * r1, co * r1));
            break;
        }
        case kDot: {
            const double r = R * 0.72, d = std::max(3.0, R * 0.09);
            p.setPen(QPen(QColor(0, 0, 0, 160), 1.2));
            p.setBrush(pc.lighter(150));
            p.drawEllipse(QPointF(s * r, co * r), d, d);
            break;
        }
        case kWedge: {
            const double w = 0.09;
            QPolygonF tri;
            tri << QPointF(std::sin(a - w) * R * 0.99, -std::cos(a - w) * R * 0.99)
                << QPointF(std::sin(a + w) * R * 0.99, -std::cos(a + w) * R * 0.99)
                << QPointF(s * R * 0.62, co * R * 0.62);
            p.setPen(QPen(QColor(0, 0, 0, 160), 1.0));
            p.setBrush(pc.lighter(150));
            p.drawPolygon(tri);
            break;
        }
    }
}
