#include "app/ProgressLamp.h"

#include <QPainter>

ProgressLamp::ProgressLamp(QWidget* parent) : QWidget(parent) {
    setMinimumSize(12, 12);
}

void ProgressLamp::SetLit(bool lit) {
    if (lit_ == lit)
        return;
    lit_ = lit;
    update();
}

void ProgressLamp::paintEvent(QPaintEvent*) {
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    const int side = qMin(width(), height()) - 2;
    const QRectF r((width() - side) / 2.0, (height() - side) / 2.0, side, side);
    // The lamp colours of the instrument lamps: on RGB 40, 255, 60; off 10, 100, 10.
    p.setPen(QPen(QColor(20, 20, 20), 1));
    p.setBrush(lit_ ? QColor(40, 255, 60) : QColor(10, 100, 10));
    p.drawEllipse(r);
}
