#include "controls/BackgroundCache.h"

#include <QPainter>
#include <QWidget>

#include "controls/ControlLook.h"

void BackgroundCache::Refresh(const QWidget& widget, const Paint& paint) {
    const qreal dpr = widget.devicePixelRatioF();
    if (!stale_ && pixmap_.size() == widget.size() * dpr)
        return;
    pixmap_ = QPixmap(widget.size() * dpr);
    pixmap_.setDevicePixelRatio(dpr);
    pixmap_.fill(control_look::PanelColor());
    QPainter p(&pixmap_);
    p.setRenderHint(QPainter::Antialiasing);
    paint(p);
    stale_ = false;
}

void BackgroundCache::Draw(QPainter& p, const QWidget& widget, const Paint& paint) {
    Refresh(widget, paint);
    p.drawPixmap(0, 0, pixmap_);
}

void BackgroundCache::Draw(QPainter& p, const QWidget& widget, const QRect& part,
                           const Paint& paint) {
    Refresh(widget, paint);
    const qreal dpr = pixmap_.devicePixelRatio();
    p.drawPixmap(QRectF(part), pixmap_,
                 QRectF(QPointF(part.topLeft()) * dpr, QSizeF(part.size()) * dpr));
}
