// The controls gallery renders to a PNG that shows a full, varied panel.
#include <gtest/gtest.h>

#include <QFileInfo>
#include <QImage>
#include <QSet>
#include <QWidget>

#include <memory>

#include "controls/ControlsGallery.h"

TEST(ControlsGallery, RendersEveryControlToAPng) {
    const QString file = QStringLiteral(MIXORA_BINARY_DIR "/controls-gallery.png");
    std::unique_ptr<QWidget> gallery(BuildControlsGallery());
    ASSERT_TRUE(SaveWidgetPng(gallery.get(), file));
    ASSERT_TRUE(QFileInfo::exists(file));

    QImage img(file);
    ASSERT_FALSE(img.isNull());
    EXPECT_GE(img.width(), 800);
    EXPECT_GE(img.height(), 500);
    // Not blank: many colours, and most of it is not the bare panel colour.
    QSet<QRgb> colours;
    const QRgb panel = img.pixel(2, 2);
    long notPanel = 0;
    for (int y = 0; y < img.height(); y += 2) {
        for (int x = 0; x < img.width(); x += 2) {
            const QRgb p = img.pixel(x, y);
            colours.insert(p);
            notPanel += p != panel;
        }
    }
    EXPECT_GT(colours.size(), 500);
    EXPECT_GT(notPanel, long(img.width() / 2) * (img.height() / 2) / 2);
}
