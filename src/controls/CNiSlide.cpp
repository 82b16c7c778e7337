#include "controls/CNiSlide.h"

#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

#include "controls/ControlLook.h"

using namespace control_look;

namespace {

constexpr double kThumbLength = 12.0;  // pixels along the axis
constexpr double kArrowLength = 15.0;  // pixels along the axis, each end
constexpr double kTrackWidth = 6.0;    // pixels across the axis

const QColor kThumbLine(230, 236, 240);
const QColor kDefaultFill(60, 120, 180);

}  // namespace

CNiSlide::CNiSlide(Qt::Orientation orientation, QWidget* parent)
    : CNiControl(parent), orientation_(orientation), fillColor_(kDefaultFill) {
    Pointer first;
    first.style = kThumb;
    first.color = kThumbLine;
    pointers_.push_back(first);
    if (orientation_ == Qt::Vertical)
        setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Expanding);
    else
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void CNiSlide::SetOrientation(Qt::Orientation o) {
    if (o == orientation_)
        return;
    orientation_ = o;
    setSizePolicy(sizePolicy().transposed());
    updateGeometry();
    BackgroundChanged();
}

void CNiSlide::SetAxis(double minimum, double maximum) {
    if (!UsableAxis(minimum, maximum))
        return;
    min_ = minimum;
    max_ = maximum;
    BackgroundChanged();
    for (int i = 0; i < pointers_.size(); ++i)
        SetPointerValue(i, pointers_[i].value);
}

void CNiSlide::SetPointerCount(int n) {
    n = std::max(1, n);
    while (pointers_.size() > n)
        pointers_.removeLast();
    while (pointers_.size() < n) {
        Pointer ptr;
        ptr.value = Clamp(min_);
        ptr.color = QColor(240, 200, 60);
        pointers_.push_back(ptr);
    }
    update();
}

double CNiSlide::PointerValue(int index) const {
    if (index < 0 || index >= pointers_.size())
        return 0.0;
    return pointers_[index].value;
}

void CNiSlide::SetPointerValue(int index, double v) {
    if (index < 0 || index >= pointers_.size() || std::isnan(v))
        return;
    v = Clamp(v);
    if (v == pointers_[index].value)
        return;
    pointers_[index].value = v;
    update();
    emit pointerValueChanged(index, v);
    if (index == 0)
        emit valueChanged(v);
}

QColor CNiSlide::PointerColor(int index) const {
    if (index < 0 || index >= pointers_.size())
        return QColor();
    return pointers_[index].color;
}

void CNiSlide::SetPointerColor(int index, const QColor& c) {
    if (index < 0 || index >= pointers_.size())
        return;
    pointers_[index].color = c;
    update();
}

void CNiSlide::SetPointerStyle(int index, PointerStyle style) {
    if (index < 0 || index >= pointers_.size())
        return;
    pointers_[index].style = style;
    update();
}

void CNiSlide::SetPointerVisible(int index, bool visible) {
    if (index < 0 || index >= pointers_.size())
        return;
    pointers_[index].visible = visible;
    update();
}

bool CNiSlide::PointerVisible(int index) const {
    return index >= 0 && index < pointers_.size() && pointers_[index].visible;
}

void CNiSlide::SetPointerInteractive(int index, bool interactive) {
    if (index < 0 || index >= pointers_.size())
        return;
    pointers_[index].interactive = interactive;
}

void CNiSlide::SetFillColor(const QColor& c) {
    fillColor_ = c;
    update();
}

void CNiSlide::SetArrowsVisible(bool on) {
    arrows_ = on;
    BackgroundChanged();
}

void CNiSlide::SetTickCount(int intervals) {
    ticks_ = std::max(0, intervals);
    BackgroundChanged();
}

QSize CNiSlide::sizeHint() const {
    const int along = arrows_ ? 180 : 150;
    return orientation_ == Qt::Vertical ? QSize(30, along) : QSize(along, 28);
}

QSize CNiSlide::minimumSizeHint() const {
    const int along = int(2 * (arrows_ ? kArrowLength : 0) + 2 * kThumbLength + 10);
    return orientation_ == Qt::Vertical ? QSize(16, along) : QSize(along, 16);
}

double CNiSlide::Clamp(double v) const {
    return std::clamp(v, std::min(min_, max_), std::max(min_, max_));
}

double CNiSlide::Snap(double v) const {
    if (step_ <= 0.0)
        return v;
    return min_ + std::round((v - min_) / step_) * step_;
}

QRectF CNiSlide::TrackRect() const {
    const double margin = kThumbLength / 2 + 2 + (arrows_ ? kArrowLength + 2 : 0);
    const QRectF r = rect();
    if (orientation_ == Qt::Vertical)
        return QRectF(r.center().x() - kTrackWidth / 2, margin, kTrackWidth,
                      std::max(1.0, r.height() - 2 * margin));
    return QRectF(margin, r.center().y() - kTrackWidth / 2, std::max(1.0, r.width() - 2 * margin),
                  kTrackWidth);
}

double CNiSlide::Along(QPointF pos) const {
    return orientation_ == Qt::Vertical ? pos.y() : pos.x();
}

double CNiSlide::PixelOf(double value) const {
    const QRectF t = TrackRect();
    const double frac = (value - min_) / (max_ - min_);
    if (orientation_ == Qt::Vertical)
        return t.bottom() - frac * t.height();
    return t.left() + frac * t.width();
}

double CNiSlide::ValueAt(QPointF pos) const {
    const QRectF t = TrackRect();
    const double a = Along(pos);
    const double frac =
        orientation_ == Qt::Vertical ? (t.bottom() - a) / t.height() : (a - t.left()) / t.width();
    return Clamp(min_ + frac * (max_ - min_));
}

QRectF CNiSlide::ArrowRect(int which) const {
    const QRectF r = QRectF(rect()).adjusted(1, 1, -1, -1);
    if (orientation_ == Qt::Vertical) {
        const double y = which < 0 ? r.bottom() - kArrowLength : r.top();
        return QRectF(r.left(), y, r.width(), kArrowLength);
    }
    const double x = which < 0 ? r.left() : r.right() - kArrowLength;
    return QRectF(x, r.top(), kArrowLength, r.height());
}

int CNiSlide::ArrowAt(QPointF pos) const {
    if (!arrows_)
        return 0;
    if (ArrowRect(-1).contains(pos))
        return -1;
    if (ArrowRect(+1).contains(pos))
        return +1;
    return 0;
}

int CNiSlide::PickPointer(QPointF pos, bool* onThumb) const {
    const double a = Along(pos);
    const double pressValue = ValueAt(pos);
    int best = -1;
    double bestDist = 0.0;
    for (int i = 0; i < pointers_.size(); ++i) {
        const Pointer& ptr = pointers_[i];
        if (!ptr.visible || !ptr.interactive)
            continue;
        const double d = std::abs(PixelOf(ptr.value) - a);
        const bool better =
            best < 0 || d < bestDist ||
            (d == bestDist && ((pressValue > ptr.value) == (ptr.value > pointers_[best].value)));
        if (better) {
            best = i;
            bestDist = d;
        }
    }
    *onThumb = best >= 0 && pointers_[best].style == kThumb && bestDist <= kThumbLength / 2;
    return best;
}

void CNiSlide::PressAt(QMouseEvent* event) {
    const QPointF pos = event->position();
    if (const int arrow = ArrowAt(pos)) {
        arrowHeld_ = arrow;
        update();
        const double towardsMax = max_ > min_ ? 1.0 : -1.0;
        SetPointerValue(0, Value() + arrow * towardsMax * arrowStep_);
        return;
    }
    bool onThumb = false;
    const int idx = PickPointer(pos, &onThumb);
    if (idx < 0)
        return;
    dragging_ = idx;
    grabOffset_ = onThumb ? Along(pos) - PixelOf(pointers_[idx].value) : 0.0;
    if (!onThumb)
        SetPointerValue(idx, Snap(ValueAt(pos)));
}

void CNiSlide::DragTo(QMouseEvent* event) {
    if (dragging_ < 0)
        return;
    QPointF pos = event->position();
    if (orientation_ == Qt::Vertical)
        pos.ry() -= grabOffset_;
    else
        pos.rx() -= grabOffset_;
    SetPointerValue(dragging_, Snap(ValueAt(pos)));
}

void CNiSlide::ReleaseAt(QMouseEvent*) {
    CancelPress();
}

void CNiSlide::CancelPress() {
    dragging_ = -1;
    if (arrowHeld_) {
        arrowHeld_ = 0;
        update();
    }
}

void CNiSlide::PaintBackground(QPainter& p) {
    const QRectF t = TrackRect();
    const bool vertical = orientation_ == Qt::Vertical;

    // Ticks on both sides of the track.
    if (ticks_ > 0) {
        p.setPen(QPen(isEnabled() ? DimTextColor() : FaceLightColor(), 1.0));
        for (int i = 0; i <= ticks_; ++i) {
            const double v = min_ + (max_ - min_) * i / ticks_;
            const double px = std::round(PixelOf(v)) + 0.5;
            const bool major = (i == 0 || i == ticks_ || 2 * i == ticks_);
            const double len = major ? 6.0 : 3.5;
            if (vertical) {
                p.drawLine(QPointF(t.left() - 4 - len, px), QPointF(t.left() - 4, px));
                p.drawLine(QPointF(t.right() + 4, px), QPointF(t.right() + 4 + len, px));
            } else {
                p.drawLine(QPointF(px, t.top() - 4 - len), QPointF(px, t.top() - 4));
                p.drawLine(QPointF(px, t.bottom() + 4), QPointF(px, t.bottom() + 4 + len));
            }
        }
    }
    DrawWell(p,
             t.adjusted(vertical ? 0 : -4, vertical ? -4 : 0, vertical ? 0 : 4, vertical ? 4 : 0),
             2.0);

    if (arrows_) {
        for (int which : {-1, +1}) {
            const QRectF a = ArrowRect(which).adjusted(1, 1, -1, -1);
            DrawBevel(p, a, FaceColor(), false, 2.0);
            const QPointF c = a.center();
            const double s = std::min(a.width(), a.height()) * 0.28;
            QPolygonF tri;
            if (vertical) {
                const double dir = which < 0 ? 1 : -1;  // down for the lower arrow
                tri << QPointF(c.x() - s, c.y() - dir * s * 0.6)
                    << QPointF(c.x() + s, c.y() - dir * s * 0.6) << QPointF(c.x(), c.y() + dir * s);
            } else {
                const double dir = which < 0 ? -1 : 1;  // left for the lower arrow
                tri << QPointF(c.x() - dir * s * 0.6, c.y() - s)
                    << QPointF(c.x() - dir * s * 0.6, c.y() + s) << QPointF(c.x() + dir * s, c.y());
            }
            p.setPen(Qt::NoPen);
            p.setBrush(isEnabled() ? TextColor() : DimTextColor());
            p.drawPolygon(tri);
        }
    }
}

void CNiSlide::paintEvent(QPaintEvent*) {
    QPainter p(this);
    DrawBackground(p);
    p.setRenderHint(QPainter::Antialiasing);

    if (arrowHeld_) {
        DrawBevel(p, ArrowRect(arrowHeld_).adjusted(1, 1, -1, -1), FaceColor(), true, 2.0);
    }

    const QRectF t = TrackRect();
    const bool vertical = orientation_ == Qt::Vertical;
    auto barTo = [&](double value) {
        const double px = PixelOf(value);
        const double base = PixelOf(std::min(min_, max_) == min_ ? min_ : max_);
        return vertical ? QRectF(QPointF(t.left() + 1, std::min(px, base)),
                                 QPointF(t.right() - 1, std::max(px, base)))
                        : QRectF(QPointF(std::min(px, base), t.top() + 1),
                                 QPointF(std::max(px, base), t.bottom() - 1));
    };
    p.setPen(Qt::NoPen);
    if (fillColor_.isValid() && pointers_[0].visible && pointers_[0].style == kThumb) {
        p.setBrush(ShownColor(fillColor_));
        p.drawRect(barTo(pointers_[0].value));
    }
    for (const Pointer& ptr : pointers_) {
        if (!ptr.visible || ptr.style != kFill)
            continue;
        p.setBrush(ShownColor(ptr.color));
        p.drawRect(barTo(ptr.value));
    }
    for (PointerStyle pass : {kMarker, kThumb}) {
        for (const Pointer& ptr : pointers_) {
            if (ptr.visible && ptr.style == pass)
                PaintPointer(p, ptr);
        }
    }
}

void CNiSlide::PaintPointer(QPainter& p, const Pointer& ptr) {
    const QRectF t = TrackRect();
    const bool vertical = orientation_ == Qt::Vertical;
    const double px = PixelOf(ptr.value);
    const QColor c = ShownColor(ptr.color);
    if (ptr.style == kMarker) {
        // A triangle on the low-coordinate side pointing at the track, and a
        // line across the track.
        const double s = 5.0;
        QPolygonF tri;
        if (vertical) {
            const double x = t.left() - 3;
            tri << QPointF(x - 2 * s, px - s) << QPointF(x - 2 * s, px + s) << QPointF(x, px);
            p.setPen(QPen(c, 2.0));
            p.drawLine(QPointF(t.left() - 1, px), QPointF(t.right() + 1, px));
        } else {
            const double y = t.top() - 3;
            tri << QPointF(px - s, y - 2 * s) << QPointF(px + s, y - 2 * s) << QPointF(px, y);
            p.setPen(QPen(c, 2.0));
            p.drawLine(QPointF(px, t.top() - 1), QPointF(px, t.bottom() + 1));
        }
        p.setPen(QPen(FaceDarkColor(), 1.0));
        p.setBrush(c);
        p.drawPolygon(tri);
        return;
    }
    // Thumb: a raised handle across the track with a line in the pointer colour.
    const double across =
        vertical ? std::min<double>(width() - 4, 26) : std::min<double>(height() - 4, 26);
    QRectF thumb =
        vertical ? QRectF(t.center().x() - across / 2, px - kThumbLength / 2, across, kThumbLength)
                 : QRectF(px - kThumbLength / 2, t.center().y() - across / 2, kThumbLength, across);
    DrawBevel(p, thumb, FaceLightColor(), dragging_ >= 0, 2.5);
    p.setPen(QPen(c, 2.0));
    if (vertical)
        p.drawLine(QPointF(thumb.left() + 3, px), QPointF(thumb.right() - 3, px));
    else
        p.drawLine(QPointF(px, thumb.top() + 3), QPointF(px, thumb.bottom() - 3));
}
