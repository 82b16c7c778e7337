// CNiGraph: a 2D graph of one or more plots over an x and a y axis, with
// cursors the user can drag.
//
// Plotting: PlotY gives a plot a whole vector (point i at x = x0 + i · dx);
// ChartY appends one point per plot and scrolls once the chart length is
// reached (strip chart). Plots are drawn as lines, bars or points, each in its
// own colour, and can be hidden. Clear empties every plot.
//
// Cursors: vertical lines (an x position), horizontal lines (a y position) or
// crosshairs (both), each with a colour. A draggable cursor follows a left drag
// that starts within a few pixels of it and reports cursorChanged(index, x, y)
// as it moves, held within the axes. Moving a cursor from code does not report
// (windows move cursors in answer to other events).
//
// Drawing: the frame, plot area, grid and axis labels are kept in a cached
// picture; a new plot redraws only the plot area, reusing per-plot point
// buffers, so a graph can be fed many times a second.
#pragma once

#include <QColor>
#include <QPen>
#include <QPolygonF>
#include <QVector>

#include <span>

#include "controls/CNiControl.h"

class CNiGraph : public CNiControl {
    Q_OBJECT
  public:
    enum PlotStyle { kLines, kBars, kPoints };
    enum CursorStyle { kVerticalLine, kHorizontalLine, kCrosshair };

    explicit CNiGraph(QWidget* parent = nullptr);

    // Axes.
    void SetXRange(double minimum, double maximum);
    void SetYRange(double minimum, double maximum);
    double XMinimum() const { return xMin_; }
    double XMaximum() const { return xMax_; }
    double YMinimum() const { return yMin_; }
    double YMaximum() const { return yMax_; }
    // Point i of every plot lies at x = start + i · increment.
    void SetXIncrement(double start, double increment);

    // Plots (0-based). New plots take colours from a built-in palette.
    int PlotCount() const { return int(plots_.size()); }
    void SetPlotCount(int n);
    void SetPlotColor(int plot, const QColor& c);
    QColor PlotColor(int plot) const;
    void SetPlotStyle(int plot, PlotStyle style);
    // Pixels, default 1. Lines wider than 1 pixel cost many times more to
    // draw: keep them for plots that change seldom.
    void SetPlotLineWidth(int plot, double pixels);
    void SetPlotVisible(int plot, bool visible);
    bool PlotVisible(int plot) const;

    // Replace a plot's points (plot 0 when none is named); a plot beyond the
    // count adds plots up to it.
    void PlotY(std::span<const double> values) { PlotY(0, values); }
    void PlotY(int plot, std::span<const double> values);
    void PlotY(int plot, std::span<const int> values);
    // Plot several vectors at once, one per plot from plot 0.
    void PlotMultiY(std::span<const QVector<double>> rows);

    // Strip chart: append one point to plot 0, or one point to each of the
    // first values.size() plots. The chart keeps the last ChartLength points.
    void SetChartLength(int points);
    int ChartLength() const { return chartLength_; }
    void ChartY(double value) { ChartY(std::span<const double>(&value, 1)); }
    void ChartY(std::span<const double> values);

    // The points of a plot in order (oldest first for a chart).
    QVector<double> PlotData(int plot) const;
    int PlotPointCount(int plot) const;
    void Clear();

    // Cursors (0-based).
    int CursorCount() const { return int(cursors_.size()); }
    void SetCursorCount(int n);
    void SetCursorStyle(int cursor, CursorStyle style);
    void SetCursorColor(int cursor, const QColor& c);
    void SetCursorVisible(int cursor, bool visible);
    void SetCursorDraggable(int cursor, bool draggable);
    void SetCursorPosition(int cursor, double x, double y);
    void SetCursorX(int cursor, double x);
    void SetCursorY(int cursor, double y);
    double CursorX(int cursor) const;
    double CursorY(int cursor) const;

    // Look.
    void SetPlotAreaColor(const QColor& c);
    QColor PlotAreaColor() const { return areaColor_; }
    void SetGridColor(const QColor& c);
    void SetGridLines(int xDivisions, int yDivisions);  // 0 = none on that axis
    void SetAxisLabelsVisible(bool on);
    void SetAntialiased(bool on) {
        antialiased_ = on;
        update();
    }

    // The plot area within the widget, in pixels, and the mapping to it.
    QRectF PlotRect() const;
    QPointF ToPixel(double x, double y) const;
    QPointF FromPixel(QPointF pixel) const;

    QSize sizeHint() const override { return QSize(240, 120); }
    QSize minimumSizeHint() const override { return QSize(40, 30); }

  signals:
    void cursorChanged(int cursor, double x, double y);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void PaintBackground(QPainter& p) override;  // plot area, grid and axis labels
    void PressAt(QMouseEvent* event) override;
    void DragTo(QMouseEvent* event) override;
    void ReleaseAt(QMouseEvent* event) override;
    void CancelPress() override;

  private:
    struct Plot {
        QVector<double> y;  // points; a chart uses it as a ring from ringStart
        int ringStart = 0;
        QColor color;
        double width = 1.0;  // wider lines take the slow stroker path
        PlotStyle style = kLines;
        bool visible = true;
        QPen pen;  // made when the colour, width or enabled state changes
        bool penDirty = true;
        QPolygonF points;      // pixel buffer reused by every redraw
        QVector<QRectF> bars;  // bar buffer reused by every redraw
    };
    struct Cursor {
        double x = 0.0;
        double y = 0.0;
        QColor color;
        CursorStyle style = kVerticalLine;
        bool visible = true;
        bool draggable = true;
    };

    Plot* EnsurePlot(int plot);
    void PlotChanged();
    void PaintPlot(QPainter& p, Plot& plot);
    void PaintCursor(QPainter& p, const Cursor& c);
    int CursorAt(QPointF pos) const;
    void MoveDraggedCursor(QPointF pos);

    double xMin_ = 0.0, xMax_ = 100.0;
    double yMin_ = 0.0, yMax_ = 1.0;
    double xStart_ = 0.0, xStep_ = 1.0;
    int chartLength_ = 100;
    QVector<Plot> plots_;
    QVector<Cursor> cursors_;

    QColor areaColor_;
    QColor gridColor_;
    int gridX_ = 10, gridY_ = 4;
    bool labels_ = false;
    bool antialiased_ = true;

    int dragging_ = -1;
};
