// The phase vocoder window on its own, a real widget on the offscreen
// platform: its seven graphs and their axes, the fifteen windows of the
// overlap picture, "OK" and "Cancel", its registry, and a rendering to
// phase-vocoder.png in the build folder.
#include <gtest/gtest.h>

#include <QApplication>
#include <QDir>
#include <QImage>
#include <QPushButton>
#include <QTest>

#include "controls/CNiGraph.h"
#include "dsp/window/CRynPhaseVocoder.h"

namespace {

// A point of graph g's plot area at x (in axis units) and the given height.
QColor PixelAt(CNiGraph* g, QWidget* window, const QImage& shot, double x, double y) {
    const QPointF p = g->mapTo(window, g->ToPixel(x, y).toPoint());
    return shot.pixelColor(p.toPoint());
}

}  // namespace

TEST(PhaseVocoderWindow, StartsHiddenWithSevenGraphsOnTheirAxes) {
    CRynPhaseVocoder w;
    w.Initialise();
    EXPECT_FALSE(w.isVisible());
    EXPECT_EQ(w.windowTitle(), QStringLiteral("Dialog"));
    EXPECT_EQ(w.OkButton()->text(), QStringLiteral("OK"));
    EXPECT_TRUE(w.OkButton()->isDefault());
    EXPECT_EQ(w.CancelButton()->text(), QStringLiteral("Cancel"));

    EXPECT_EQ(w.Graph(1067), nullptr);
    EXPECT_EQ(w.Graph(1075), nullptr);
    const struct {
        int id;
        double xMaximum;
    } axes[] = {{1068, 513},  {1069, 513},  {1070, 2048}, {1071, 1176},
                {1072, 1024}, {1073, 1176}, {1074, 1024}};
    for (const auto& a : axes) {
        CNiGraph* g = w.Graph(a.id);
        ASSERT_NE(g, nullptr) << a.id;
        EXPECT_EQ(g->XMinimum(), 0.0) << a.id;
        EXPECT_EQ(g->XMaximum(), a.xMaximum) << a.id;
        if (a.id != CRynPhaseVocoder::kOverlapGraphId) {
            // Axes only: no plot holds a point.
            for (int p = 0; p < g->PlotCount(); ++p)
                EXPECT_EQ(g->PlotPointCount(p), 0) << a.id;
        }
    }
}

TEST(PhaseVocoderWindow, TheOverlapGraphHoldsFifteenWindowsThatAddUpToTwo) {
    CRynPhaseVocoder w;
    w.Initialise();
    EXPECT_EQ(w.PictureDraws(), 1);
    CNiGraph* g = w.Graph(1070);
    ASSERT_EQ(g->PlotCount(), 15);
    std::vector<double> sum(2048, 0.0);
    for (int p = 0; p < 15; ++p) {
        const QVector<double> y = g->PlotData(p);
        ASSERT_EQ(y.size(), 2048) << "plot " << p + 1;
        double peak = 0.0;
        for (int i = 0; i < 2048; ++i) {
            sum[std::size_t(i)] += y[i];
            peak = std::max(peak, y[i]);
            ASSERT_GE(y[i], 0.0);
        }
        // Plot 1 lies before the picture, plots 13 to 15 after it.
        const bool flat = p == 0 || p >= 12;
        if (flat)
            EXPECT_EQ(peak, 0.0) << "plot " << p + 1;
        else
            EXPECT_GT(peak, 0.0) << "plot " << p + 1;
    }
    for (int i = 0; i < 2048; ++i)
        ASSERT_NEAR(sum[std::size_t(i)], 2.0, 1e-12) << "point " << i;

    // Plot 2 is the last quarter of a window entering at the left; plots 5
    // to 9 whole windows (plot 5 starts at 0 and peaks at 512); plot 12
    // only the first quarter of one, at the right edge.
    const QVector<double> p2 = g->PlotData(1);
    EXPECT_NEAR(p2[0], 0.5, 1e-15);  // w[768]
    EXPECT_EQ(p2[256], 0.0);
    const QVector<double> p5 = g->PlotData(4);
    EXPECT_EQ(p5[0], 0.0);
    EXPECT_DOUBLE_EQ(p5[512], 1.0);
    EXPECT_EQ(p5[1024], 0.0);
    const QVector<double> p12 = g->PlotData(11);
    EXPECT_EQ(p12[1791], 0.0);
    EXPECT_EQ(p12[1792], 0.0);  // w[0]
    EXPECT_GT(p12[2047], 0.0);
    EXPECT_LT(p12[2047], 0.5);

    // Every window in a colour of its own.
    QSet<QRgb> colours;
    for (int p = 0; p < 15; ++p)
        colours.insert(g->PlotColor(p).rgb());
    EXPECT_EQ(colours.size(), 15);
}

TEST(PhaseVocoderWindow, OkCancelReturnAndEscapeHideTheWindowWithoutRedrawing) {
    CRynPhaseVocoder w;
    w.Initialise();
    w.setAttribute(Qt::WA_DontShowOnScreen);
    const QVector<double> before = w.Graph(1070)->PlotData(6);
    for (int way = 0; way < 4; ++way) {
        w.show();
        QApplication::processEvents();
        ASSERT_TRUE(w.isVisible());
        switch (way) {
            case 0:
                QTest::mouseClick(w.OkButton(), Qt::LeftButton);
                break;
            case 1:
                QTest::mouseClick(w.CancelButton(), Qt::LeftButton);
                break;
            case 2:
                QTest::keyClick(&w, Qt::Key_Return);
                break;
            default:
                QTest::keyClick(&w, Qt::Key_Escape);
                break;
        }
        EXPECT_FALSE(w.isVisible()) << way;
    }
    EXPECT_EQ(w.PictureDraws(), 1);
    EXPECT_EQ(w.Graph(1070)->PlotData(6), before);
}

TEST(PhaseVocoderWindow, EveryControlIsRegisteredInOrderWithItsLabelAsToolTip) {
    CRynPhaseVocoder w;
    w.Initialise();
    const ComponentRegistry& r = w.Registry();
    ASSERT_EQ(r.Count(), 9);
    EXPECT_EQ(r.Control(0), w.OkButton());
    EXPECT_EQ(r.Control(1), w.CancelButton());
    for (int i = 0; i < 7; ++i) {
        EXPECT_EQ(r.Control(2 + i), w.Graph(1068 + i));
        EXPECT_TRUE(r.Title(2 + i).endsWith(':')) << r.Title(2 + i).toStdString();
        EXPECT_FALSE(r.Description(2 + i).isEmpty());
        EXPECT_EQ(w.Graph(1068 + i)->toolTip(), r.Label(2 + i));
    }
    EXPECT_EQ(r.Title(4), QStringLiteral("Analysis Window Overlap Graph:"));

    // Shown, every control has a place inside the window.
    w.setAttribute(Qt::WA_DontShowOnScreen);
    w.show();
    QApplication::processEvents();
    for (int k = 0; k < r.Count(); ++k) {
        const ComponentRegistry::Place p = r.Placed(k);
        EXPECT_GT(p.width, 0.0f) << k;
        EXPECT_GT(p.height, 0.0f) << k;
        EXPECT_LE(p.x + p.width, 1.001f) << k;
        EXPECT_LE(p.y + p.height, 1.001f) << k;
    }
}

TEST(PhaseVocoderWindow, RendersToPhaseVocoderPng) {
    CRynPhaseVocoder w;
    w.Initialise();
    w.setAttribute(Qt::WA_DontShowOnScreen);
    w.show();
    QApplication::processEvents();
    const QImage shot = w.grab().toImage();
    ASSERT_FALSE(shot.isNull());
    EXPECT_GE(shot.width(), 500);
    EXPECT_GE(shot.height(), 400);

    // The overlap graph shows its windows: in a column where only plot 5
    // rises above 0.9, the brightest pixel up there is in plot 5's hue, and
    // the top of the plot area is bare.
    CNiGraph* g = w.Graph(1070);
    const double x = 540;  // off the grid lines, which fall every 256 points
    const int from = int(g->mapTo(&w, g->ToPixel(x, 1.15).toPoint()).y());
    const int to = int(g->mapTo(&w, g->ToPixel(x, 0.9).toPoint()).y());
    const int column = int(g->mapTo(&w, g->ToPixel(x, 0.0).toPoint()).x());
    QColor brightest = g->PlotAreaColor();
    for (int row = from; row <= to; ++row) {
        const QColor c = shot.pixelColor(column, row);
        if (c.value() > brightest.value())
            brightest = c;
    }
    EXPECT_GT(brightest.value(), g->PlotAreaColor().value() + 60);
    EXPECT_LT(std::abs(brightest.hue() - g->PlotColor(4).hue()), 25)
        << brightest.name().toStdString();
    EXPECT_EQ(PixelAt(g, &w, shot, x, 1.15).rgb(), g->PlotAreaColor().rgb());
    // An empty graph shows only its plot area between the grid lines.
    CNiGraph* empty = w.Graph(1071);
    EXPECT_EQ(PixelAt(empty, &w, shot, 300, 3000).rgb(), PixelAt(empty, &w, shot, 300, 8000).rgb());

    const QString file = QDir(QStringLiteral(MIXORA_BINARY_DIR)).filePath("phase-vocoder.png");
    EXPECT_TRUE(shot.save(file));
}
