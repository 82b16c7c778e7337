// CNiGraph3D: a 3D graph of a surface given as a matrix of values, drawn as a
// projected mesh of filled quads in back-to-front order (painter's algorithm),
// and of single points.
//
// Axes: x runs along the matrix columns, y along its rows, z is the value.
// Until a window sets the x or y range, it follows the matrix (0 … columns − 1,
// 0 … rows − 1); z is 0 … 1 until set. Values outside the z range are drawn at
// its ends. Row 0 is drawn at the front in the reset view.
//
// View: latitude (degrees above the floor, −10 … 90), longitude (degrees of
// turn about the z axis) and distance (the perspective: larger is flatter).
// ResetView returns to the default view; FlattenView turns the graph so the
// surface is seen edge-on from the front (a flat spectrum line). A left drag
// turns the view.
//
// Colours: the plot area, the floor grid, optional mesh lines, and the
// surface, coloured by height through a colour map or in one colour and shaded
// by the light each quad faces.
//
// Drawing: the frame, plot area and floor grid are kept in a cached picture per
// size and view; the quad order is kept per matrix size and view; vertex and
// order buffers are reused, so a new matrix costs only its projection and fill.
#pragma once

#include <QBrush>
#include <QColor>
#include <QPointF>
#include <QVector3D>
#include <QVector>

#include <span>

#include "controls/CNiControl.h"

class CNiGraph3D : public CNiControl {
    Q_OBJECT
  public:
    explicit CNiGraph3D(QWidget* parent = nullptr);

    // values holds rows × columns numbers, row after row (value (c, r) at
    // r · columns + c). A matrix smaller than 2 × 2 or too short draws nothing.
    void PlotSurface(std::span<const double> values, int columns, int rows);
    void PlotPoints(std::span<const QVector3D> points);
    void Clear();

    int SurfaceColumns() const { return columns_; }
    int SurfaceRows() const { return rows_; }
    double SurfaceValue(int column, int row) const;
    int PointCount() const { return int(points_.size()); }

    void SetXRange(double minimum, double maximum);
    void SetYRange(double minimum, double maximum);
    void SetZRange(double minimum, double maximum);
    double XMinimum() const;
    double XMaximum() const;
    double YMinimum() const;
    double YMaximum() const;
    double ZMinimum() const { return zMin_; }
    double ZMaximum() const { return zMax_; }

    void ResetView();
    void FlattenView();
    void SetView(double latitudeDeg, double longitudeDeg, double distance);
    double ViewLatitude() const { return latitude_; }
    double ViewLongitude() const { return longitude_; }
    double ViewDistance() const { return distance_; }

    void SetPlotAreaColor(const QColor& c);
    QColor PlotAreaColor() const { return areaColor_; }
    void SetGridColor(const QColor& c);
    // Lines around every quad (invalid, the default: none; they double the
    // cost of a redraw). The quads are shaded by the light they face instead.
    void SetMeshColor(const QColor& c);
    // A colour map from low to high values (true, the default) or one colour.
    void SetColorMap(bool on);
    void SetSurfaceColor(const QColor& c);
    void SetPointColor(const QColor& c);
    void SetAntialiased(bool on) {
        antialiased_ = on;
        update();
    }

    QSize sizeHint() const override { return QSize(320, 200); }
    QSize minimumSizeHint() const override { return QSize(60, 40); }

  protected:
    void paintEvent(QPaintEvent* event) override;
    void PaintBackground(QPainter& p) override;  // plot area and floor grid
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void PressAt(QMouseEvent* event) override;
    void DragTo(QMouseEvent* event) override;

  private:
    // World coordinates: x and y in −1 … 1, z in 0 … kHeight.
    QVector3D ToWorld(double x, double y, double z) const;
    QPointF Project(const QVector3D& w) const;
    double Depth(const QVector3D& w) const;
    void ViewChanged();
    void UpdateProjection();  // fit scale and centre for the view and size
    void RebuildOrder();
    void RebuildBrushes();
    QRectF AreaRect() const;

    // Surface.
    QVector<double> values_;
    int columns_ = 0;
    int rows_ = 0;
    QVector<QVector3D> points_;

    // Axes; an unset x or y range follows the matrix.
    bool xSet_ = false, ySet_ = false;
    double xMin_ = 0, xMax_ = 1, yMin_ = 0, yMax_ = 1;
    double zMin_ = 0.0, zMax_ = 1.0;

    // View and its cached trigonometry and fit.
    double latitude_ = 0, longitude_ = 0, distance_ = 0;
    double cosLat_ = 1, sinLat_ = 0, cosLon_ = 1, sinLon_ = 0;
    double scale_ = 1.0;
    QPointF centre_;

    QColor areaColor_;
    QColor gridColor_;
    QColor meshColor_;
    QColor surfaceColor_;
    QColor pointColor_;
    bool colorMap_ = true;
    bool antialiased_ = false;

    // Reused buffers.
    QVector<QPointF> projected_;  // one per matrix value
    QVector<int> order_;          // quad indices, farthest first
    bool orderDirty_ = true;
    QVector<QBrush> brushes_;  // colour map steps × light levels

    QPointF dragFrom_;
};
