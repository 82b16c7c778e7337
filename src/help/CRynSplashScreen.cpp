#include "help/CRynSplashScreen.h"

#include <QGuiApplication>
#include <QLinearGradient>
#include <QPainter>
#include <QScreen>

#include "help/TipsAndSplash.h"

CRynSplashScreen::CRynSplashScreen(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("CRynSplashScreen"));
    timer_.setSingleShot(true);
    connect(&timer_, &QTimer::timeout, this, &QWidget::hide);
}

bool CRynSplashScreen::Create(int milliseconds, const QPixmap& picture, QWidget* parent,
                              const QRect& area) {
    if (picture.isNull())
        return false;
    picture_ = picture;
    // Clicks go through to the windows below and the keyboard focus stays
    // where it is: the splash never holds up work.
    setParent(parent, Qt::SplashScreen | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                          Qt::WindowTransparentForInput | Qt::WindowDoesNotAcceptFocus);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setCursor(Qt::ArrowCursor);
    QRect work = area;
    if (work.isEmpty()) {
        QScreen* screen = QGuiApplication::primaryScreen();
        work = screen ? screen->availableGeometry() : QRect(0, 0, 1024, 768);
    }
    setFixedSize(picture_.deviceIndependentSize().toSize());
    move(splash::Place(work, size()));
    show();
    raise();
    timer_.start(milliseconds);
    created_ = true;
    return true;
}

void CRynSplashScreen::paintEvent(QPaintEvent*) {
    QPainter p(this);
    p.drawPixmap(0, 0, picture_);
}

QPixmap CRynSplashScreen::SplashPicture() {
    QPixmap pixmap(400, 300);
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing);
    QLinearGradient sky(0, 0, 0, 300);
    sky.setColorAt(0, QColor(16, 20, 40));
    sky.setColorAt(1, QColor(4, 4, 8));
    p.fillRect(pixmap.rect(), sky);
    // Two platters, deck A blue and deck B orange.
    const QColor deckColour[2] = {QColor(40, 170, 255), QColor(255, 160, 30)};
    for (int d = 0; d < 2; ++d) {
        const QPointF c(110 + d * 180, 130);
        p.setPen(QPen(deckColour[d], 3));
        p.setBrush(QColor(24, 24, 24));
        p.drawEllipse(c, 70, 70);
        p.setPen(QPen(QColor(60, 60, 60), 1));
        for (int r = 20; r < 66; r += 6)
            p.drawEllipse(c, r, r);
        p.setPen(Qt::NoPen);
        p.setBrush(deckColour[d]);
        p.drawEllipse(c, 12, 12);
    }
    QFont title = p.font();
    title.setPixelSize(44);
    title.setBold(true);
    p.setFont(title);
    p.setPen(QColor(235, 235, 235));
    p.drawText(QRect(0, 205, 400, 50), Qt::AlignCenter, QStringLiteral("Mixora"));
    QFont small = p.font();
    small.setPixelSize(13);
    small.setBold(false);
    p.setFont(small);
    p.setPen(QColor(170, 170, 170));
    p.drawText(
        QRect(0, 255, 400, 24), Qt::AlignCenter,
        QStringLiteral("two decks, one mix  -  version %1").arg(QStringLiteral(MIXORA_VERSION)));
    return pixmap;
}
