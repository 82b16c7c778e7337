#include "controls/CNiGraph3D.h"

#include <QEvent>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <utility>

#include "controls/ControlLook.h"

using namespace control_look;

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kHeight = 0.9;  // height of the z axis in world units (floor is 2 × 2)
constexpr int kColorSteps = 64;  // colour map resolution
constexpr int kShadeSteps = 8;   // light levels per colour: quads facing the light are brighter

// The reset view: a little above the floor, turned so the columns run down to
// the right and row 0 is in front.
constexpr double kResetLatitude = 32.0;
constexpr double kResetLongitude = -28.0;
constexpr double kResetDistance = 4.0;
// Flat: straight from the front at floor level, far away so the rows line up.
constexpr double kFlatDistance = 8.0;

// Colour map from low to high values: deep blue, teal, green, yellow, red.
QColor MapColor(double t) {
    static const QColor stops[] = {QColor(24, 40, 120), QColor(20, 140, 170), QColor(60, 205, 95),
                                   QColor(240, 220, 60), QColor(240, 80, 50)};
    const double pos = std::clamp(t, 0.0, 1.0) * (std::size(stops) - 1);
    const int i = std::min(int(pos), int(std::size(stops)) - 2);
    return Mix(stops[i], stops[i + 1], pos - i);
}

}  // namespace

CNiGraph3D::CNiGraph3D(QWidget* parent)
    : CNiControl(parent),
      areaColor_(QColor(0, 0, 0)),
      gridColor_(QColor(50, 62, 58)),
      meshColor_(),
      surfaceColor_(QColor(70, 200, 120)),
      pointColor_(QColor(250, 220, 90)) {
    RebuildBrushes();
    ResetView();
}

// ---- data -------------------------------------------------------------------

void CNiGraph3D::PlotSurface(std::span<const double> values, int columns, int rows) {
    if (columns < 2 || rows < 2 || values.size() < size_t(columns) * size_t(rows)) {
        columns = rows = 0;
    }
    if (columns != columns_ || rows != rows_)
        orderDirty_ = true;
    columns_ = columns;
    rows_ = rows;
    values_.resize(qsizetype(columns) * rows);  // keeps its capacity when it shrinks
    for (qsizetype i = 0; i < values_.size(); ++i) {
        const double v = values[size_t(i)];
        values_[i] = std::isfinite(v) ? v : zMin_;
    }
    update(AreaRect().toAlignedRect());
}

void CNiGraph3D::PlotPoints(std::span<const QVector3D> points) {
    points_.resize(qsizetype(points.size()));
    std::copy(points.begin(), points.end(), points_.begin());
    update(AreaRect().toAlignedRect());
}

void CNiGraph3D::Clear() {
    values_.resize(0);
    points_.resize(0);
    columns_ = rows_ = 0;
    orderDirty_ = true;
    update();
}

double CNiGraph3D::SurfaceValue(int column, int row) const {
    if (column < 0 || row < 0 || column >= columns_ || row >= rows_)
        return 0.0;
    return values_[qsizetype(row) * columns_ + column];
}

// ---- axes -------------------------------------------------------------------

void CNiGraph3D::SetXRange(double minimum, double maximum) {
    if (!UsableAxis(minimum, maximum))
        return;
    xSet_ = true;
    xMin_ = minimum;
    xMax_ = maximum;
    orderDirty_ = true;
    update();
}

void CNiGraph3D::SetYRange(double minimum, double maximum) {
    if (!UsableAxis(minimum, maximum))
        return;
    ySet_ = true;
    yMin_ = minimum;
    yMax_ = maximum;
    orderDirty_ = true;
    update();
}

void CNiGraph3D::SetZRange(double minimum, double maximum) {
    if (!UsableAxis(minimum, maximum))
        return;
    zMin_ = minimum;
    zMax_ = maximum;
    update();
}

double CNiGraph3D::XMinimum() const {
    return xSet_ ? xMin_ : 0.0;
}
double CNiGraph3D::XMaximum() const {
    return xSet_ ? xMax_ : std::max(1, columns_ - 1);
}
double CNiGraph3D::YMinimum() const {
    return ySet_ ? yMin_ : 0.0;
}
double CNiGraph3D::YMaximum() const {
    return ySet_ ? yMax_ : std::max(1, rows_ - 1);
}

// ---- view -------------------------------------------------------------------

void CNiGraph3D::ResetView() {
    SetView(kResetLatitude, kResetLongitude, kResetDistance);
}

void CNiGraph3D::FlattenView() {
    ResetView();
    SetView(0.0, 0.0, kFlatDistance);
}

void CNiGraph3D::SetView(double latitudeDeg, double longitudeDeg, double distance) {
    if (!std::isfinite(latitudeDeg) || !std::isfinite(longitudeDeg) || !std::isfinite(distance))
        return;
    latitude_ = std::clamp(latitudeDeg, -10.0, 90.0);
    longitude_ = std::remainder(longitudeDeg, 360.0);
    distance_ = std::clamp(distance, 2.5, 100.0);
    ViewChanged();
}

void CNiGraph3D::ViewChanged() {
    cosLat_ = std::cos(latitude_ * kPi / 180.0);
    sinLat_ = std::sin(latitude_ * kPi / 180.0);
    cosLon_ = std::cos(longitude_ * kPi / 180.0);
    sinLon_ = std::sin(longitude_ * kPi / 180.0);
    orderDirty_ = true;
    UpdateProjection();
    BackgroundChanged();
}

QVector3D CNiGraph3D::ToWorld(double x, double y, double z) const {
    const double u = 2.0 * (x - XMinimum()) / (XMaximum() - XMinimum()) - 1.0;
    const double v = 2.0 * (y - YMinimum()) / (YMaximum() - YMinimum()) - 1.0;
    const double w = std::clamp((z - zMin_) / (zMax_ - zMin_), 0.0, 1.0) * kHeight;
    return QVector3D(float(u), float(v), float(w));
}

double CNiGraph3D::Depth(const QVector3D& w) const {
    const double yr = w.x() * sinLon_ + w.y() * cosLon_;
    return yr * cosLat_ - (w.z() - kHeight / 2) * sinLat_;
}

QPointF CNiGraph3D::Project(const QVector3D& w) const {
    const double xr = w.x() * cosLon_ - w.y() * sinLon_;
    const double yr = w.x() * sinLon_ + w.y() * cosLon_;
    const double zc = w.z() - kHeight / 2;
    const double up = yr * sinLat_ + zc * cosLat_;
    const double depth = yr * cosLat_ - zc * sinLat_;
    const double persp = distance_ / (distance_ + depth);
    return QPointF(centre_.x() + xr * persp * scale_, centre_.y() - up * persp * scale_);
}

QRectF CNiGraph3D::AreaRect() const {
    return QRectF(rect()).adjusted(3, 3, -3, -3);
}

void CNiGraph3D::UpdateProjection() {
    // Fit the whole box, whatever the data, so the plot keeps its size.
    scale_ = 1.0;
    centre_ = QPointF(0, 0);
    double x0 = 1e9, x1 = -1e9, y0 = 1e9, y1 = -1e9;
    for (int i = 0; i < 8; ++i) {
        const QVector3D corner(i & 1 ? 1.f : -1.f, i & 2 ? 1.f : -1.f,
                               i & 4 ? float(kHeight) : 0.f);
        const QPointF s = Project(corner);
        x0 = std::min(x0, s.x());
        x1 = std::max(x1, s.x());
        y0 = std::min(y0, s.y());
        y1 = std::max(y1, s.y());
    }
    const QRectF area = AreaRect().adjusted(6, 6, -6, -6);
    const double sx = area.width() / std::max(1e-6, x1 - x0);
    const double sy = area.height() / std::max(1e-6, y1 - y0);
    scale_ = std::max(1e-3, std::min(sx, sy));
    centre_ = area.center() - QPointF((x0 + x1) / 2, (y0 + y1) / 2) * scale_;
}

// ---- look -------------------------------------------------------------------

void CNiGraph3D::SetPlotAreaColor(const QColor& c) {
    areaColor_ = c;
    BackgroundChanged();
}

void CNiGraph3D::SetGridColor(const QColor& c) {
    gridColor_ = c;
    BackgroundChanged();
}

void CNiGraph3D::SetMeshColor(const QColor& c) {
    meshColor_ = c;
    update();
}

void CNiGraph3D::SetColorMap(bool on) {
    colorMap_ = on;
    RebuildBrushes();
    update();
}

void CNiGraph3D::SetSurfaceColor(const QColor& c) {
    surfaceColor_ = c;
    RebuildBrushes();
    update();
}

void CNiGraph3D::SetPointColor(const QColor& c) {
    pointColor_ = c;
    update();
}

void CNiGraph3D::RebuildBrushes() {
    brushes_.resize(kColorSteps * kShadeSteps);
    for (int i = 0; i < kColorSteps; ++i) {
        const double t = double(i) / (kColorSteps - 1);
        const QColor c =
            ShownColor(colorMap_ ? MapColor(t) : Mix(surfaceColor_.darker(300), surfaceColor_, t));
        for (int s = 0; s < kShadeSteps; ++s) {
            // From 45 % (facing away) to full brightness (facing the light).
            const double light = 0.45 + 0.55 * s / (kShadeSteps - 1);
            brushes_[i * kShadeSteps + s] = QBrush(Mix(QColor(0, 0, 0), c, light));
        }
    }
}

// ---- events -----------------------------------------------------------------

void CNiGraph3D::resizeEvent(QResizeEvent* event) {
    UpdateProjection();
    CNiControl::resizeEvent(event);
}

void CNiGraph3D::changeEvent(QEvent* event) {
    if (event->type() == QEvent::EnabledChange)
        RebuildBrushes();  // the base repaints the rest
    CNiControl::changeEvent(event);
}

void CNiGraph3D::PressAt(QMouseEvent* event) {
    dragFrom_ = event->position();
}

void CNiGraph3D::DragTo(QMouseEvent* event) {
    const QPointF d = event->position() - dragFrom_;
    dragFrom_ = event->position();
    SetView(latitude_ + d.y() * 0.4, longitude_ - d.x() * 0.5, distance_);
}

// ---- drawing ----------------------------------------------------------------

void CNiGraph3D::PaintBackground(QPainter& p) {
    const QRectF area = AreaRect();
    DrawWell(p, area.adjusted(-2, -2, 2, 2), 3.0);
    p.fillRect(area, ShownColor(areaColor_, 0.5));

    // Floor grid and the two back walls' edges.
    p.setPen(QPen(gridColor_, 1.0));
    constexpr int kDivisions = 8;
    for (int i = 0; i <= kDivisions; ++i) {
        const float t = -1.f + 2.f * i / kDivisions;
        p.drawLine(Project(QVector3D(t, -1, 0)), Project(QVector3D(t, 1, 0)));
        p.drawLine(Project(QVector3D(-1, t, 0)), Project(QVector3D(1, t, 0)));
    }
    // The vertical edges at the far corners, and the top of the far walls.
    QVector3D far[4] = {{-1, -1, 0}, {1, -1, 0}, {-1, 1, 0}, {1, 1, 0}};
    std::sort(std::begin(far), std::end(far),
              [this](const QVector3D& a, const QVector3D& b) { return Depth(a) > Depth(b); });
    const QVector3D up(0, 0, float(kHeight));
    p.setPen(QPen(gridColor_, 1.0, Qt::DashLine));
    for (int i = 0; i < 3; ++i)
        p.drawLine(Project(far[i]), Project(far[i] + up));
    p.drawLine(Project(far[0] + up), Project(far[1] + up));
    p.drawLine(Project(far[0] + up), Project(far[2] + up));
}

void CNiGraph3D::RebuildOrder() {
    const int qc = columns_ - 1, qr = rows_ - 1;
    order_.resize(qsizetype(std::max(0, qc)) * std::max(0, qr));
    if (order_.isEmpty()) {
        orderDirty_ = false;
        return;
    }
    // Quad depth at mid-height: for a height field seen from above the floor
    // this puts every quad behind the ones in front of it.
    QVector<std::pair<double, int>> keyed(order_.size());
    for (int r = 0; r < qr; ++r) {
        for (int c = 0; c < qc; ++c) {
            const QVector3D w = ToWorld(c + 0.5, r + 0.5, zMin_);
            const QVector3D mid(w.x(), w.y(), float(kHeight / 2));
            keyed[r * qc + c] = {Depth(mid), r * qc + c};
        }
    }
    std::sort(keyed.begin(), keyed.end(),
              [](const auto& a, const auto& b) { return a.first > b.first; });
    for (qsizetype i = 0; i < keyed.size(); ++i)
        order_[i] = keyed[i].second;
    orderDirty_ = false;
}

void CNiGraph3D::paintEvent(QPaintEvent*) {
    QPainter p(this);
    DrawBackground(p);
    p.setClipRect(AreaRect());
    p.setRenderHint(QPainter::Antialiasing, antialiased_);

    if (columns_ >= 2 && rows_ >= 2) {
        if (orderDirty_)
            RebuildOrder();
        projected_.resize(values_.size());
        const double zSpan = zMax_ - zMin_;
        for (int r = 0; r < rows_; ++r) {
            for (int c = 0; c < columns_; ++c) {
                const qsizetype i = qsizetype(r) * columns_ + c;
                projected_[i] = Project(ToWorld(c, r, values_[i]));
            }
        }
        // Mesh lines double the cost of a quad: off unless a window asks.
        p.setPen(meshColor_.isValid() ? QPen(meshColor_, 1.0) : QPen(Qt::NoPen));
        const int qc = columns_ - 1;
        // World size of one step along the columns and the rows, and of the
        // whole value range, for the quads' slopes.
        const double du = 2.0 / std::abs(XMaximum() - XMinimum());
        const double dv = 2.0 / std::abs(YMaximum() - YMinimum());
        const double dz = kHeight / zSpan;
        QPointF quad[4];
        int lastBrush = -1;  // neighbours often share a brush: skip the state change
        for (int q : order_) {
            const int r = q / qc, c = q % qc;
            const qsizetype i0 = qsizetype(r) * columns_ + c, i1 = i0 + columns_;
            quad[0] = projected_[i0];
            quad[1] = projected_[i0 + 1];
            quad[2] = projected_[i1 + 1];
            quad[3] = projected_[i1];
            const double v00 = values_[i0], v01 = values_[i0 + 1];
            const double v10 = values_[i1], v11 = values_[i1 + 1];
            const double mean = (v00 + v01 + v10 + v11) * 0.25;
            const int step = int(std::clamp((mean - zMin_) / zSpan, 0.0, 1.0) * (kColorSteps - 1));
            // Lambert light from the left, the front and above: normal
            // (-dz/du, -dz/dv, 1) against the light direction (-0.4, -0.6, 0.7).
            const double gx = (v01 - v00 + v11 - v10) * 0.5 * dz / du;
            const double gy = (v10 - v00 + v11 - v01) * 0.5 * dz / dv;
            const double dot = (0.4 * gx + 0.6 * gy + 0.7) / std::sqrt(gx * gx + gy * gy + 1.0);
            const int shade = int(std::clamp(dot, 0.0, 0.999) * kShadeSteps);
            const int brush = step * kShadeSteps + shade;
            if (brush != lastBrush) {
                p.setBrush(brushes_[brush]);
                lastBrush = brush;
            }
            p.drawConvexPolygon(quad, 4);
        }
    }
    if (!points_.isEmpty()) {
        p.setRenderHint(QPainter::Antialiasing, true);
        p.setPen(QPen(QColor(0, 0, 0, 160), 1.0));
        p.setBrush(ShownColor(pointColor_));
        for (const QVector3D& pt : points_)
            p.drawEllipse(Project(ToWorld(pt.x(), pt.y(), pt.z())), 3.0, 3.0);
    }
}
