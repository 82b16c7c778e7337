#include "help/GuidePictures.h"

#include "help/GuidePages.h"

#include <QFontMetrics>
#include <QLayout>
#include <QLineF>
#include <QPainter>
#include <QPolygonF>
#include <QWidget>
#include <algorithm>

namespace guide {

namespace {

const QColor kCaption(10, 36, 106);
const QColor kCaptionText(255, 255, 255);

void PaintCaption(QPainter& p, const QRect& strip, const QString& title) {
    p.fillRect(strip, kCaption);
    if (strip.height() < 6)
        return;
    QFont f = p.font();
    f.setBold(true);
    f.setPixelSize(std::max(6, strip.height() - 6));
    p.setFont(f);
    p.setPen(kCaptionText);
    p.drawText(strip.adjusted(4, 0, -4, 0), Qt::AlignVCenter | Qt::AlignLeft, title);
}

QImage ClientPicture(QWidget* window) {
    if (QLayout* l = window->layout())
        l->activate();
    return window->grab().toImage();
}

}  // namespace

QImage WindowPicture(QWidget* window, int captionHeight) {
    const QImage client = ClientPicture(window);
    const int cap = std::max(0, captionHeight);
    QImage picture(client.width(), client.height() + cap, QImage::Format_RGB32);
    picture.fill(Qt::black);
    QPainter p(&picture);
    PaintCaption(p, QRect(0, 0, client.width(), cap), window->windowTitle());
    p.drawImage(0, cap, client);
    return picture;
}

QImage IndexPicture(const std::vector<QWidget*>& windows, int captionHeight) {
    QImage canvas(600, 451, QImage::Format_RGB32);
    canvas.fill(QColor(0, 128, 128));
    QPainter p(&canvas);
    p.setRenderHint(QPainter::SmoothPixmapTransform);
    const auto& areas = IndexAreas();
    for (std::size_t i = 0; i < areas.size() && i < windows.size(); ++i) {
        const IndexArea& a = areas[i];
        const QRect target(a.l, a.t, a.r - a.l, a.b - a.t);
        if (!windows[i]) {
            p.fillRect(target, QColor(24, 24, 24));
            continue;
        }
        p.drawImage(target, WindowPicture(windows[i], captionHeight));
    }
    return canvas;
}

QImage OverviewPicture() {
    QImage picture(400, 145, QImage::Format_RGB32);
    picture.fill(QColor(32, 32, 32));
    QPainter p(&picture);
    p.setRenderHint(QPainter::Antialiasing);
    QFont f = p.font();
    f.setPixelSize(12);
    p.setFont(f);
    auto box = [&p](const QRect& r, const QColor& c, const QString& text) {
        p.setPen(QPen(c, 2));
        p.setBrush(QColor(48, 48, 48));
        p.drawRoundedRect(r, 6, 6);
        p.setPen(QColor(230, 230, 230));
        p.drawText(r, Qt::AlignCenter, text);
    };
    auto arrow = [&p](QPoint a, QPoint b) {
        p.setPen(QPen(QColor(200, 200, 200), 2));
        p.drawLine(a, b);
        const QPointF d = QPointF(b - a) / std::max(1.0, QLineF(a, b).length());
        const QPointF n(-d.y(), d.x());
        const QPointF tip(b);
        p.setBrush(QColor(200, 200, 200));
        p.drawPolygon(QPolygonF{tip, tip - 8 * d + 4 * n, tip - 8 * d - 4 * n});
    };
    const QRect deckA(10, 20, 90, 40), deckB(10, 85, 90, 40);
    const QRect main(160, 20, 100, 40), phones(160, 85, 100, 40);
    const QRect room(300, 20, 90, 40), ears(300, 85, 90, 40);
    box(deckA, QColor(40, 170, 255), QStringLiteral("Deck A"));
    box(deckB, QColor(255, 160, 30), QStringLiteral("Deck B"));
    box(main, QColor(120, 220, 120), QStringLiteral("Main Mixer"));
    box(phones, QColor(120, 220, 120), QStringLiteral("Phones Mixer"));
    box(room, QColor(200, 200, 200), QStringLiteral("Speakers"));
    box(ears, QColor(200, 200, 200), QStringLiteral("Headphones"));
    arrow({100, 40}, {160, 40});
    arrow({100, 105}, {160, 45});
    arrow({100, 45}, {160, 100});
    arrow({100, 105}, {160, 105});
    arrow({260, 40}, {300, 40});
    arrow({260, 105}, {300, 105});
    return picture;
}

QImage KeyboardPicture(const QString& title, const std::function<QString(int key)>& describe) {
    struct Row {
        const char* keys;
        int indent;
    };
    // Letters and digits by their code; the four punctuation keys by theirs.
    static const Row kRows[] = {
        {"1234567890", 0}, {"QWERTYUIOP", 20}, {"ASDFGHJKL;", 30}, {"ZXCVBNM,./", 45}};
    auto codeOf = [](char c) {
        switch (c) {
            case ';':
                return -70;
            case ',':
                return -68;
            case '.':
                return -66;
            case '/':
                return -65;
            default:
                return static_cast<int>(c);
        }
    };
    const int keyW = 86, keyH = 58, gap = 4, margin = 10, top = 34;
    const int width = margin * 2 + 45 + 10 * (keyW + gap) + 3 * (keyW + gap);
    const int height = top + 4 * (keyH + gap) + margin;
    QImage picture(width, height, QImage::Format_RGB32);
    picture.fill(QColor(236, 236, 236));
    QPainter p(&picture);
    p.setRenderHint(QPainter::Antialiasing);
    QFont big = p.font();
    big.setPixelSize(16);
    big.setBold(true);
    QFont small = p.font();
    small.setPixelSize(10);
    p.setFont(big);
    p.setPen(Qt::black);
    p.drawText(QRect(margin, 4, width - 2 * margin, top - 8), Qt::AlignLeft | Qt::AlignVCenter,
               title);
    auto key = [&](const QRect& r, const QString& cap, const QString& text) {
        p.setPen(QPen(QColor(90, 90, 90), 1));
        p.setBrush(text.isEmpty() ? QColor(250, 250, 250) : QColor(255, 236, 190));
        p.drawRoundedRect(r, 5, 5);
        p.setFont(big);
        p.setPen(Qt::black);
        p.drawText(r.adjusted(5, 2, -4, 0), Qt::AlignLeft | Qt::AlignTop, cap);
        p.setFont(small);
        p.setPen(QColor(60, 20, 0));
        p.drawText(r.adjusted(4, 20, -3, -2), Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap,
                   text);
    };
    for (int r = 0; r < 4; ++r) {
        const QString keys = QString::fromLatin1(kRows[r].keys);
        for (int i = 0; i < keys.size(); ++i) {
            const QRect rect(margin + kRows[r].indent + i * (keyW + gap), top + r * (keyH + gap),
                             keyW, keyH);
            const int code = codeOf(keys[i].toLatin1());
            key(rect, keys.mid(i, 1), describe ? describe(code) : QString());
        }
    }
    // The navigation keys to the right.
    static const std::pair<int, const char*> kNav[] = {
        {116, "F5"}, {36, "Home"}, {35, "End"}, {33, "PgUp"}, {34, "PgDn"}};
    const int navX = margin + 45 + 10 * (keyW + gap) + gap;
    for (int i = 0; i < 5; ++i) {
        const int col = i < 3 ? i : i - 3;
        const int row = i < 3 ? 0 : 1;
        const QRect rect(navX + col * (keyW + gap), top + row * (keyH + gap), keyW, keyH);
        key(rect, QString::fromLatin1(kNav[i].second),
            describe ? describe(kNav[i].first) : QString());
    }
    return picture;
}

}  // namespace guide
