// BackgroundCache: the still picture is painted once and drawn many times, and
// painted again after Invalidate or when the widget's size changes.
#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>
#include <QWidget>

#include "controls/BackgroundCache.h"
#include "controls/ControlLook.h"

TEST(BackgroundCache, PaintsOnceUntilInvalidatedOrResized) {
    QWidget w;
    w.resize(40, 30);
    BackgroundCache cache;
    int painted = 0;
    const BackgroundCache::Paint paint = [&](QPainter& p) {
        ++painted;
        EXPECT_TRUE(p.testRenderHint(QPainter::Antialiasing));
        p.fillRect(QRect(10, 10, 5, 5), Qt::red);
    };
    QImage img(40, 30, QImage::Format_RGB32);
    const auto draw = [&] {
        img = QImage(w.size(), QImage::Format_RGB32);
        img.fill(Qt::magenta);
        QPainter p(&img);
        cache.Draw(p, w, paint);
    };

    EXPECT_TRUE(cache.Stale());
    draw();
    draw();
    EXPECT_EQ(painted, 1);
    EXPECT_FALSE(cache.Stale());
    EXPECT_EQ(img.pixelColor(12, 12), QColor(Qt::red));
    EXPECT_EQ(img.pixelColor(1, 1), control_look::PanelColor());  // on the panel colour

    cache.Invalidate();
    draw();
    EXPECT_EQ(painted, 2);
    w.resize(50, 30);
    draw();
    EXPECT_EQ(painted, 3);
    EXPECT_EQ(img.pixelColor(45, 1), control_look::PanelColor());
}

TEST(BackgroundCache, DrawsOnlyThePartAsked) {
    QWidget w;
    w.resize(40, 30);
    BackgroundCache cache;
    QImage img(40, 30, QImage::Format_RGB32);
    img.fill(Qt::magenta);
    QPainter p(&img);
    cache.Draw(p, w, QRect(0, 0, 20, 30), [](QPainter&) {});
    p.end();
    EXPECT_EQ(img.pixelColor(5, 5), control_look::PanelColor());
    EXPECT_EQ(img.pixelColor(30, 5), QColor(Qt::magenta));
}
