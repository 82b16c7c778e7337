// CNiGraph and CNiGraph3D: plotting, charting, cursor dragging and its events,
// and what the drawings show.
#include <gtest/gtest.h>

#include <QImage>
#include <QSignalSpy>
#include <QTest>

#include <vector>

#include "ControlTestSupport.h"
#include "controls/CNiGraph.h"
#include "controls/CNiGraph3D.h"

using controltest::EventLog;

namespace {

QImage Render(QWidget& w) {
    QImage img(w.size(), QImage::Format_RGB32);
    img.fill(Qt::magenta);
    w.render(&img);
    return img;
}

int CountColor(const QImage& img, const QRect& area, QColor c, int tolerance = 40) {
    int n = 0;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            const QColor p = img.pixelColor(x, y);
            if (std::abs(p.red() - c.red()) + std::abs(p.green() - c.green()) +
                    std::abs(p.blue() - c.blue()) <=
                tolerance)
                ++n;
        }
    }
    return n;
}

}  // namespace

TEST(CNiGraph, PlotsChartsAndClears) {
    CNiGraph g;
    const std::vector<double> trace = {0.0, 0.5, 1.0};
    g.PlotY(trace);
    g.PlotY(2, std::vector<int>{7, 8});  // adds plots up to index 2
    EXPECT_EQ(g.PlotCount(), 3);
    EXPECT_EQ(g.PlotData(0), QVector<double>({0.0, 0.5, 1.0}));
    EXPECT_EQ(g.PlotData(2), QVector<double>({7.0, 8.0}));
    EXPECT_EQ(g.PlotPointCount(1), 0);

    // A chart keeps the last points, oldest first, one per plot and append.
    g.SetChartLength(4);
    g.Clear();
    for (int i = 1; i <= 6; ++i) {
        const double pair[2] = {double(i), -double(i)};
        g.ChartY(pair);
    }
    EXPECT_EQ(g.PlotData(0), QVector<double>({3, 4, 5, 6}));
    EXPECT_EQ(g.PlotData(1), QVector<double>({-3, -4, -5, -6}));
    g.ChartY(7.0);  // plot 0 only
    EXPECT_EQ(g.PlotData(0), QVector<double>({4, 5, 6, 7}));
    EXPECT_EQ(g.PlotData(1), QVector<double>({-3, -4, -5, -6}));
    g.SetChartLength(2);
    EXPECT_EQ(g.PlotData(0), QVector<double>({6, 7}));

    // Bad numbers are drawn as 0 rather than breaking the drawing.
    const double bad[2] = {std::numeric_limits<double>::quiet_NaN(), 1.0};
    g.PlotY(bad);
    EXPECT_EQ(g.PlotData(0), QVector<double>({0.0, 1.0}));
    g.Clear();
    EXPECT_EQ(g.PlotPointCount(0), 0);
}

TEST(CNiGraph, DraggingACursorReportsItsPositionAndCodeDoesNot) {
    CNiGraph g;
    g.SetXRange(0, 100);
    g.SetYRange(0, 10);
    g.SetCursorCount(3);
    g.SetCursorX(0, 20);  // vertical lines: band edges
    g.SetCursorX(1, 60);
    g.SetCursorStyle(2, CNiGraph::kHorizontalLine);
    g.SetCursorY(2, 5);
    controltest::ShowAt(&g, 206, 106);  // a 200 × 100 plot area
    EventLog log;
    log.Watch(&g);
    QObject::connect(&g, &CNiGraph::cursorChanged, &g, [&](int i, double x, double y) {
        log.Add(QStringLiteral("cursor %1 %2 %3").arg(i).arg(x, 0, 'f', 0).arg(y, 0, 'f', 0));
    });
    const QRectF area = g.PlotRect();
    ASSERT_DOUBLE_EQ(area.width(), 200.0);

    // Grab line 1 a pixel off and drag it to x = 80, then past the end.
    const QPointF at = g.ToPixel(60, 8);
    QTest::mousePress(&g, Qt::LeftButton, {}, (at + QPointF(2, 0)).toPoint());
    QTest::mouseMove(&g, g.ToPixel(80, 8).toPoint());
    QTest::mouseMove(&g, QPoint(g.width() + 30, 20));
    QTest::mouseRelease(&g, Qt::LeftButton, {}, QPoint(g.width() + 30, 20));
    EXPECT_DOUBLE_EQ(g.CursorX(1), 100.0);
    EXPECT_DOUBLE_EQ(g.CursorX(0), 20.0);
    ASSERT_GE(log.events.size(), 4);
    EXPECT_EQ(log.events.first(), "down 1 0");
    EXPECT_TRUE(log.events.contains("cursor 1 80 0"));
    EXPECT_EQ(log.events.at(log.events.size() - 2), "cursor 1 100 0");
    EXPECT_EQ(log.events.last(), "up 1 0");

    // The horizontal cursor moves only up and down.
    log.events.clear();
    QTest::mousePress(&g, Qt::LeftButton, {}, g.ToPixel(40, 5).toPoint());
    QTest::mouseMove(&g, g.ToPixel(45, 8).toPoint());
    QTest::mouseRelease(&g, Qt::LeftButton, {}, g.ToPixel(45, 8).toPoint());
    EXPECT_NEAR(g.CursorY(2), 8.0, 0.11);
    EXPECT_DOUBLE_EQ(g.CursorX(2), 0.0);

    // Far from every cursor, and with the right button, nothing moves.
    log.events.clear();
    QTest::mouseClick(&g, Qt::LeftButton, {}, g.ToPixel(40, 2).toPoint());
    QTest::mouseClick(&g, Qt::RightButton, Qt::ShiftModifier, g.ToPixel(20, 2).toPoint());
    EXPECT_EQ(log.Joined(), "down 1 0, up 1 0, down 2 1, up 2 1");

    // A cursor that cannot be dragged is not picked; code moves it silently.
    g.SetCursorDraggable(0, false);
    QSignalSpy spy(&g, &CNiGraph::cursorChanged);
    QTest::mouseClick(&g, Qt::LeftButton, {}, g.ToPixel(20, 2).toPoint());
    g.SetCursorPosition(0, 33, 4);
    EXPECT_EQ(spy.count(), 0);
    EXPECT_DOUBLE_EQ(g.CursorX(0), 33.0);

    log.events.clear();
    QTest::mouseDClick(&g, Qt::LeftButton, {}, g.ToPixel(90, 9).toPoint());
    EXPECT_TRUE(log.events.contains("double"));
}

TEST(CNiGraph, DrawsTracesBarsAndHiddenPlotsAsAsked) {
    CNiGraph g;
    g.SetXRange(0, 10);
    g.SetYRange(0, 1);
    g.SetGridLines(0, 0);
    controltest::ShowAt(&g, 206, 106);
    const QColor traceColor(255, 0, 0), barColor(0, 0, 255);
    g.SetPlotColor(0, traceColor);
    g.SetPlotLineWidth(0, 3.0);
    g.PlotY(0, std::vector<double>(11, 0.5));  // a flat line at half height
    g.SetPlotStyle(1, CNiGraph::kBars);
    g.SetPlotColor(1, barColor);
    std::vector<double> bars(11, 0.0);
    bars[8] = 0.9;
    g.PlotY(1, bars);

    QImage img = Render(g);
    const QPoint mid = g.ToPixel(3, 0.5).toPoint();
    EXPECT_GT(CountColor(img, QRect(mid.x() - 2, mid.y() - 2, 5, 5), traceColor), 4);
    const QPoint bar = g.ToPixel(8, 0.2).toPoint();
    EXPECT_GT(CountColor(img, QRect(bar.x() - 1, bar.y() - 1, 3, 3), barColor), 6);
    // Nothing of the bar above its top.
    const QPoint above = g.ToPixel(8, 0.97).toPoint();
    EXPECT_EQ(CountColor(img, QRect(above.x() - 1, above.y(), 3, 1), barColor), 0);

    g.SetPlotVisible(0, false);
    img = Render(g);
    EXPECT_EQ(CountColor(img, QRect(mid.x() - 2, mid.y() - 2, 5, 5), traceColor), 0);
}

TEST(CNiGraph3D, SurfaceDataViewsAndDrawing) {
    CNiGraph3D g;
    controltest::ShowAt(&g, 320, 200);
    const QImage empty = Render(g);

    const int cols = 24, rows = 80;
    std::vector<double> m(cols * rows);
    for (int r = 0; r < rows; ++r)
        for (int c = 0; c < cols; ++c)
            m[r * cols + c] = (c % 6) / 5.0;
    g.PlotSurface(m, cols, rows);
    EXPECT_EQ(g.SurfaceColumns(), cols);
    EXPECT_EQ(g.SurfaceRows(), rows);
    EXPECT_DOUBLE_EQ(g.SurfaceValue(5, 79), 1.0);
    EXPECT_DOUBLE_EQ(g.SurfaceValue(24, 0), 0.0);  // outside: 0
    EXPECT_DOUBLE_EQ(g.XMaximum(), 23.0);          // the x axis follows the matrix
    g.SetXRange(0, 17);
    EXPECT_DOUBLE_EQ(g.XMaximum(), 17.0);

    const QImage surface = Render(g);
    int changed = 0;
    for (int y = 0; y < surface.height(); ++y)
        for (int x = 0; x < surface.width(); ++x)
            changed += surface.pixel(x, y) != empty.pixel(x, y);
    EXPECT_GT(changed, surface.width() * surface.height() / 10);

    // Views: reset, flatten (edge-on from the front), and a left drag turns.
    const double lat = g.ViewLatitude(), lon = g.ViewLongitude();
    g.FlattenView();
    EXPECT_DOUBLE_EQ(g.ViewLatitude(), 0.0);
    EXPECT_DOUBLE_EQ(g.ViewLongitude(), 0.0);
    EXPECT_NE(Render(g), surface);
    g.ResetView();
    EXPECT_DOUBLE_EQ(g.ViewLatitude(), lat);
    EXPECT_DOUBLE_EQ(g.ViewLongitude(), lon);
    EventLog log;
    log.Watch(&g);
    QTest::mousePress(&g, Qt::LeftButton, {}, QPoint(100, 100));
    QTest::mouseMove(&g, QPoint(140, 110));
    QTest::mouseRelease(&g, Qt::LeftButton, {}, QPoint(140, 110));
    EXPECT_NE(g.ViewLongitude(), lon);
    QTest::mouseClick(&g, Qt::RightButton, Qt::ControlModifier, QPoint(100, 100));
    EXPECT_EQ(log.Joined(), "down 1 0, up 1 0, down 2 2, up 2 2");

    // Points, a too-short matrix (draws nothing), and clearing.
    const QVector3D pts[] = {QVector3D(1, 1, 0.5f)};
    g.PlotPoints(pts);
    EXPECT_EQ(g.PointCount(), 1);
    g.PlotSurface(std::vector<double>(10, 0.0), cols, rows);
    EXPECT_EQ(g.SurfaceColumns(), 0);
    g.Clear();
    EXPECT_EQ(g.PointCount(), 0);
    g.SetPlotAreaColor(QColor(128, 128, 128));
    EXPECT_EQ(Render(g).pixelColor(160, 100), QColor(128, 128, 128));
}
