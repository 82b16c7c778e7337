#include "controls/CNiGraph.h"

#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

#include "controls/ControlLook.h"

using namespace control_look;

namespace {

constexpr double kPickPixels = 6.0;     // a cursor is grabbed within this distance
constexpr double kFarPixels = 20000.0;  // points are held this near the widget

const QColor kPlotPalette[] = {QColor(70, 230, 120), QColor(245, 185, 50), QColor(80, 190, 245),
                               QColor(225, 95, 205), QColor(245, 85, 70),  QColor(220, 225, 230)};
const QColor kCursorColor(250, 220, 90);

QColor PaletteColor(int i) {
    return kPlotPalette[i % std::size(kPlotPalette)];
}

double Finite(double v) {
    return std::isfinite(v) ? v : 0.0;
}

// Axis label text: at most three significant digits, thousands as "k" and
// millions as "M" so labels stay short ("150k", "2.5M", "0.25").
QString TickText(double v) {
    const double a = std::abs(v);
    if (a >= 1e6)
        return QString::number(v / 1e6, 'g', 3) + u'M';
    if (a >= 1e3)
        return QString::number(v / 1e3, 'g', 3) + u'k';
    if (a < 1e-9)
        return QStringLiteral("0");
    return QString::number(v, 'g', 3);
}

}  // namespace

CNiGraph::CNiGraph(QWidget* parent)
    : CNiControl(parent), areaColor_(WellColor()), gridColor_(GridColor()) {
    SetPlotCount(1);
}

// ---- axes -------------------------------------------------------------------

void CNiGraph::SetXRange(double minimum, double maximum) {
    if (!UsableAxis(minimum, maximum))
        return;
    if (minimum == xMin_ && maximum == xMax_)
        return;
    xMin_ = minimum;
    xMax_ = maximum;
    BackgroundChanged();
}

void CNiGraph::SetYRange(double minimum, double maximum) {
    if (!UsableAxis(minimum, maximum))
        return;
    if (minimum == yMin_ && maximum == yMax_)
        return;
    yMin_ = minimum;
    yMax_ = maximum;
    BackgroundChanged();
}

void CNiGraph::SetXIncrement(double start, double increment) {
    if (!std::isfinite(start) || !std::isfinite(increment) || increment == 0.0)
        return;
    xStart_ = start;
    xStep_ = increment;
    PlotChanged();
}

// ---- plots ------------------------------------------------------------------

void CNiGraph::SetPlotCount(int n) {
    n = std::clamp(n, 0, 64);
    while (plots_.size() > n)
        plots_.removeLast();
    while (plots_.size() < n) {
        Plot plot;
        plot.color = PaletteColor(int(plots_.size()));
        plots_.push_back(plot);
    }
    PlotChanged();
}

CNiGraph::Plot* CNiGraph::EnsurePlot(int plot) {
    if (plot < 0 || plot >= 64)
        return nullptr;
    if (plot >= plots_.size())
        SetPlotCount(plot + 1);
    return &plots_[plot];
}

void CNiGraph::SetPlotColor(int plot, const QColor& c) {
    if (Plot* p = EnsurePlot(plot)) {
        p->color = c;
        p->penDirty = true;
        PlotChanged();
    }
}

QColor CNiGraph::PlotColor(int plot) const {
    return plot >= 0 && plot < plots_.size() ? plots_[plot].color : QColor();
}

void CNiGraph::SetPlotStyle(int plot, PlotStyle style) {
    if (Plot* p = EnsurePlot(plot)) {
        p->style = style;
        p->penDirty = true;
        PlotChanged();
    }
}

void CNiGraph::SetPlotLineWidth(int plot, double pixels) {
    if (Plot* p = EnsurePlot(plot)) {
        p->width = std::clamp(pixels, 0.5, 8.0);
        p->penDirty = true;
        PlotChanged();
    }
}

void CNiGraph::SetPlotVisible(int plot, bool visible) {
    if (Plot* p = EnsurePlot(plot)) {
        p->visible = visible;
        PlotChanged();
    }
}

bool CNiGraph::PlotVisible(int plot) const {
    return plot >= 0 && plot < plots_.size() && plots_[plot].visible;
}

void CNiGraph::PlotY(int plot, std::span<const double> values) {
    Plot* p = EnsurePlot(plot);
    if (!p)
        return;
    p->y.resize(qsizetype(values.size()));  // keeps its capacity when it shrinks
    for (size_t i = 0; i < values.size(); ++i)
        p->y[qsizetype(i)] = Finite(values[i]);
    p->ringStart = 0;
    PlotChanged();
}

void CNiGraph::PlotY(int plot, std::span<const int> values) {
    Plot* p = EnsurePlot(plot);
    if (!p)
        return;
    p->y.resize(qsizetype(values.size()));
    for (size_t i = 0; i < values.size(); ++i)
        p->y[qsizetype(i)] = values[i];
    p->ringStart = 0;
    PlotChanged();
}

void CNiGraph::PlotMultiY(std::span<const QVector<double>> rows) {
    for (size_t i = 0; i < rows.size(); ++i)
        PlotY(int(i), std::span<const double>(rows[i].constData(), size_t(rows[i].size())));
}

void CNiGraph::SetChartLength(int points) {
    chartLength_ = std::clamp(points, 2, 100000);
    for (Plot& p : plots_) {
        if (p.ringStart != 0) {
            std::rotate(p.y.begin(), p.y.begin() + p.ringStart, p.y.end());
            p.ringStart = 0;
        }
        if (p.y.size() > chartLength_)
            p.y.remove(0, p.y.size() - chartLength_);
    }
    PlotChanged();
}

void CNiGraph::ChartY(std::span<const double> values) {
    for (size_t k = 0; k < values.size(); ++k) {
        Plot* p = EnsurePlot(int(k));
        if (!p)
            break;
        const double v = Finite(values[k]);
        if (p->y.size() == chartLength_) {
            // Full: overwrite the oldest point and move the ring on.
            p->y[p->ringStart] = v;
            p->ringStart = (p->ringStart + 1) % chartLength_;
            continue;
        }
        if (p->ringStart != 0) {
            std::rotate(p->y.begin(), p->y.begin() + p->ringStart, p->y.end());
            p->ringStart = 0;
        }
        if (p->y.size() > chartLength_ - 1)
            p->y.remove(0, p->y.size() - (chartLength_ - 1));
        if (p->y.capacity() < chartLength_)
            p->y.reserve(chartLength_);
        p->y.push_back(v);
    }
    PlotChanged();
}

QVector<double> CNiGraph::PlotData(int plot) const {
    QVector<double> out;
    if (plot < 0 || plot >= plots_.size())
        return out;
    const Plot& p = plots_[plot];
    out.reserve(p.y.size());
    for (qsizetype i = 0; i < p.y.size(); ++i)
        out.push_back(p.y[(p.ringStart + i) % p.y.size()]);
    return out;
}

int CNiGraph::PlotPointCount(int plot) const {
    return plot >= 0 && plot < plots_.size() ? int(plots_[plot].y.size()) : 0;
}

void CNiGraph::Clear() {
    for (Plot& p : plots_) {
        p.y.resize(0);
        p.ringStart = 0;
    }
    PlotChanged();
}

void CNiGraph::PlotChanged() {
    update(PlotRect().toAlignedRect().adjusted(-1, -1, 1, 1));
}

// ---- cursors ----------------------------------------------------------------

void CNiGraph::SetCursorCount(int n) {
    n = std::clamp(n, 0, 16);
    while (cursors_.size() > n)
        cursors_.removeLast();
    while (cursors_.size() < n) {
        Cursor c;
        c.x = xMin_;
        c.y = yMin_;
        c.color = kCursorColor;
        cursors_.push_back(c);
    }
    if (dragging_ >= n)
        dragging_ = -1;
    PlotChanged();
}

void CNiGraph::SetCursorStyle(int cursor, CursorStyle style) {
    if (cursor < 0 || cursor >= cursors_.size())
        return;
    cursors_[cursor].style = style;
    PlotChanged();
}

void CNiGraph::SetCursorColor(int cursor, const QColor& c) {
    if (cursor < 0 || cursor >= cursors_.size())
        return;
    cursors_[cursor].color = c;
    PlotChanged();
}

void CNiGraph::SetCursorVisible(int cursor, bool visible) {
    if (cursor < 0 || cursor >= cursors_.size())
        return;
    cursors_[cursor].visible = visible;
    PlotChanged();
}

void CNiGraph::SetCursorDraggable(int cursor, bool draggable) {
    if (cursor < 0 || cursor >= cursors_.size())
        return;
    cursors_[cursor].draggable = draggable;
}

void CNiGraph::SetCursorPosition(int cursor, double x, double y) {
    if (cursor < 0 || cursor >= cursors_.size())
        return;
    cursors_[cursor].x = Finite(x);
    cursors_[cursor].y = Finite(y);
    PlotChanged();
}

void CNiGraph::SetCursorX(int cursor, double x) {
    SetCursorPosition(cursor, x, CursorY(cursor));
}
void CNiGraph::SetCursorY(int cursor, double y) {
    SetCursorPosition(cursor, CursorX(cursor), y);
}

double CNiGraph::CursorX(int cursor) const {
    return cursor >= 0 && cursor < cursors_.size() ? cursors_[cursor].x : 0.0;
}

double CNiGraph::CursorY(int cursor) const {
    return cursor >= 0 && cursor < cursors_.size() ? cursors_[cursor].y : 0.0;
}

int CNiGraph::CursorAt(QPointF pos) const {
    int best = -1;
    double bestDist = kPickPixels;
    for (int i = 0; i < cursors_.size(); ++i) {
        const Cursor& c = cursors_[i];
        if (!c.visible || !c.draggable)
            continue;
        const QPointF at = ToPixel(c.x, c.y);
        double d;
        if (c.style == kVerticalLine)
            d = std::abs(at.x() - pos.x());
        else if (c.style == kHorizontalLine)
            d = std::abs(at.y() - pos.y());
        else
            d = std::min(std::abs(at.x() - pos.x()), std::abs(at.y() - pos.y()));
        if (d <= bestDist) {
            best = i;
            bestDist = d;
        }
    }
    return best;
}

void CNiGraph::MoveDraggedCursor(QPointF pos) {
    Cursor& c = cursors_[dragging_];
    const QPointF v = FromPixel(pos);
    const double x = std::clamp(v.x(), std::min(xMin_, xMax_), std::max(xMin_, xMax_));
    const double y = std::clamp(v.y(), std::min(yMin_, yMax_), std::max(yMin_, yMax_));
    const double nx = c.style == kHorizontalLine ? c.x : x;
    const double ny = c.style == kVerticalLine ? c.y : y;
    if (nx == c.x && ny == c.y)
        return;
    c.x = nx;
    c.y = ny;
    PlotChanged();
    emit cursorChanged(dragging_, nx, ny);
}

void CNiGraph::PressAt(QMouseEvent* event) {
    dragging_ = CursorAt(event->position());
    if (dragging_ >= 0)
        MoveDraggedCursor(event->position());
}

void CNiGraph::DragTo(QMouseEvent* event) {
    if (dragging_ >= 0)
        MoveDraggedCursor(event->position());
}

void CNiGraph::ReleaseAt(QMouseEvent*) {
    dragging_ = -1;
}

void CNiGraph::CancelPress() {
    dragging_ = -1;
}

// ---- look -------------------------------------------------------------------

void CNiGraph::SetPlotAreaColor(const QColor& c) {
    areaColor_ = c;
    BackgroundChanged();
}

void CNiGraph::SetGridColor(const QColor& c) {
    gridColor_ = c;
    BackgroundChanged();
}

void CNiGraph::SetGridLines(int xDivisions, int yDivisions) {
    gridX_ = std::clamp(xDivisions, 0, 100);
    gridY_ = std::clamp(yDivisions, 0, 100);
    BackgroundChanged();
}

void CNiGraph::SetAxisLabelsVisible(bool on) {
    labels_ = on;
    BackgroundChanged();
}

QRectF CNiGraph::PlotRect() const {
    QRectF r = QRectF(rect()).adjusted(3, 3, -3, -3);
    if (labels_) {
        const QFontMetrics fm = fontMetrics();
        const int labelW =
            std::max({fm.horizontalAdvance(TickText(yMin_)), fm.horizontalAdvance(TickText(yMax_)),
                      fm.horizontalAdvance(TickText((yMin_ + yMax_) / 2))});
        r.adjust(labelW + 6, fm.height() / 2, -(fm.horizontalAdvance(TickText(xMax_)) / 2 + 2),
                 -(fm.height() + 3));
    }
    if (r.width() < 1)
        r.setWidth(1);
    if (r.height() < 1)
        r.setHeight(1);
    return r;
}

QPointF CNiGraph::ToPixel(double x, double y) const {
    const QRectF r = PlotRect();
    const double px = r.left() + (x - xMin_) / (xMax_ - xMin_) * r.width();
    const double py = r.bottom() - (y - yMin_) / (yMax_ - yMin_) * r.height();
    return QPointF(std::clamp(px, -kFarPixels, kFarPixels),
                   std::clamp(py, -kFarPixels, kFarPixels));
}

QPointF CNiGraph::FromPixel(QPointF pixel) const {
    const QRectF r = PlotRect();
    return QPointF(xMin_ + (pixel.x() - r.left()) / r.width() * (xMax_ - xMin_),
                   yMin_ + (r.bottom() - pixel.y()) / r.height() * (yMax_ - yMin_));
}

void CNiGraph::PaintBackground(QPainter& p) {
    const QRectF area = PlotRect();
    DrawWell(p, area.adjusted(-2, -2, 2, 2), 3.0);
    p.setRenderHint(QPainter::Antialiasing, false);
    p.fillRect(area, ShownColor(areaColor_, 0.5));

    p.setPen(QPen(gridColor_, 1.0, Qt::DotLine));
    for (int i = 1; i < gridX_; ++i) {
        const double x = std::round(area.left() + area.width() * i / gridX_) + 0.5;
        p.drawLine(QPointF(x, area.top()), QPointF(x, area.bottom()));
    }
    for (int i = 1; i < gridY_; ++i) {
        const double y = std::round(area.top() + area.height() * i / gridY_) + 0.5;
        p.drawLine(QPointF(area.left(), y), QPointF(area.right(), y));
    }
    if (labels_) {
        p.setPen(DimTextColor());
        p.setFont(font());
        const QFontMetrics fm = fontMetrics();
        const int ny = std::max(1, gridY_);
        for (int i = 0; i <= ny; ++i) {
            const double v = yMin_ + (yMax_ - yMin_) * i / ny;
            const double y = area.bottom() - area.height() * i / ny;
            const QRectF box(0, y - fm.height() / 2.0, area.left() - 5, fm.height());
            p.drawText(box, Qt::AlignRight | Qt::AlignVCenter, TickText(v));
        }
        const int nx = std::max(1, gridX_);
        const int every = std::max(1, int(nx * 40 / std::max(1.0, area.width())) + 1);
        for (int i = 0; i <= nx; i += every) {
            const double v = xMin_ + (xMax_ - xMin_) * i / nx;
            const double x = area.left() + area.width() * i / nx;
            const QRectF box(x - 30, area.bottom() + 3, 60, fm.height());
            p.drawText(box, Qt::AlignHCenter | Qt::AlignTop, TickText(v));
        }
    }
}

void CNiGraph::paintEvent(QPaintEvent* event) {
    QPainter p(this);
    DrawBackground(p, event->rect());
    p.setClipRect(PlotRect());
    p.setRenderHint(QPainter::Antialiasing, antialiased_);
    for (Plot& plot : plots_) {
        if (plot.visible && !plot.y.isEmpty())
            PaintPlot(p, plot);
    }
    for (const Cursor& c : cursors_) {
        if (c.visible)
            PaintCursor(p, c);
    }
}

void CNiGraph::PaintPlot(QPainter& p, Plot& plot) {
    const qsizetype n = plot.y.size();
    const QColor color = ShownColor(plot.color);
    if (plot.penDirty || plot.pen.color() != color) {
        const double w = plot.style == kPoints ? plot.width + 1.5 : plot.width;
        plot.pen = QPen(color, w, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
        plot.penDirty = false;
    }
    if (plot.style == kBars) {
        const QRectF area = PlotRect();
        const double barW =
            std::max(1.0, 0.72 * std::abs(xStep_) * area.width() / std::abs(xMax_ - xMin_));
        const double zero = std::clamp(0.0, std::min(yMin_, yMax_), std::max(yMin_, yMax_));
        const double base = ToPixel(0.0, zero).y();
        plot.bars.resize(n);
        for (qsizetype i = 0; i < n; ++i) {
            const QPointF top =
                ToPixel(xStart_ + double(i) * xStep_, plot.y[(plot.ringStart + i) % n]);
            plot.bars[i] = QRectF(QPointF(top.x() - barW / 2, std::min(top.y(), base)),
                                  QPointF(top.x() + barW / 2, std::max(top.y(), base)));
        }
        p.setPen(Qt::NoPen);
        p.setBrush(color);
        p.drawRects(plot.bars.constData(), int(n));
        return;
    }
    plot.points.resize(n);
    for (qsizetype i = 0; i < n; ++i)
        plot.points[i] = ToPixel(xStart_ + double(i) * xStep_, plot.y[(plot.ringStart + i) % n]);
    if (plot.style == kPoints) {
        p.setPen(plot.pen);
        p.drawPoints(plot.points.constData(), int(n));
    } else {
        p.setPen(plot.pen);
        p.drawPolyline(plot.points.constData(), int(n));
    }
}

void CNiGraph::PaintCursor(QPainter& p, const Cursor& c) {
    const QRectF area = PlotRect();
    const QPointF at = ToPixel(c.x, c.y);
    p.setPen(QPen(c.color, 1.0));
    if (c.style != kHorizontalLine)
        p.drawLine(QPointF(at.x(), area.top()), QPointF(at.x(), area.bottom()));
    if (c.style != kVerticalLine)
        p.drawLine(QPointF(area.left(), at.y()), QPointF(area.right(), at.y()));
    p.setBrush(c.color);
    p.setPen(Qt::NoPen);
    if (c.style == kVerticalLine) {
        // A small tab at the top to grab.
        const QPointF tri[3] = {QPointF(at.x() - 4, area.top()), QPointF(at.x() + 4, area.top()),
                                QPointF(at.x(), area.top() + 5)};
        p.drawPolygon(tri, 3);
    } else if (c.style == kHorizontalLine) {
        const QPointF tri[3] = {QPointF(area.right(), at.y() - 4),
                                QPointF(area.right(), at.y() + 4),
                                QPointF(area.right() - 5, at.y())};
        p.drawPolygon(tri, 3);
    } else {
        p.setBrush(Qt::NoBrush);
        p.setPen(QPen(c.color, 1.5));
        p.drawEllipse(at, 4.0, 4.0);
    }
}
