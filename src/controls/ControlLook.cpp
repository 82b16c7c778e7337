#include "controls/ControlLook.h"

#include <QLabel>
#include <QLinearGradient>
#include <QPainter>
#include <QPalette>

#include <algorithm>

namespace control_look {

void DrawBevel(QPainter& p, const QRectF& r, const QColor& face, bool sunken, qreal radius) {
    QLinearGradient g(r.topLeft(), r.bottomLeft());
    const QColor top = sunken ? face.darker(125) : face.lighter(125);
    const QColor bottom = sunken ? face.lighter(105) : face.darker(130);
    g.setColorAt(0.0, top);
    g.setColorAt(1.0, bottom);
    p.setPen(QPen(sunken ? FaceDarkColor() : FaceLightColor(), 1.0));
    p.setBrush(g);
    p.drawRoundedRect(r.adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
    p.setPen(QPen(FaceDarkColor(), 1.0));
    p.setBrush(Qt::NoBrush);
    p.drawRoundedRect(r.adjusted(-0.5, -0.5, 0.5, 0.5), radius + 1, radius + 1);
}

void DrawWell(QPainter& p, const QRectF& r, qreal radius) {
    p.setPen(QPen(FaceDarkColor(), 1.0));
    p.setBrush(WellColor());
    p.drawRoundedRect(r.adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
    p.setPen(QPen(QColor(255, 255, 255, 28), 1.0));
    p.drawLine(QPointF(r.left() + radius, r.bottom() + 0.5),
               QPointF(r.right() - radius, r.bottom() + 0.5));
}

QColor Mix(const QColor& off, const QColor& on, double t) {
    t = std::clamp(t, 0.0, 1.0);
    auto ch = [t](int a, int b) { return int(a + (b - a) * t + 0.5); };
    return QColor(ch(off.red(), on.red()), ch(off.green(), on.green()), ch(off.blue(), on.blue()));
}

QLabel* Caption(const QString& text, QWidget* parent, Qt::Alignment alignment) {
    auto* label = new QLabel(text, parent);
    QPalette pal = label->palette();
    pal.setColor(QPalette::WindowText, DimTextColor());
    label->setPalette(pal);
    QFont f = label->font();
    f.setPointSizeF(std::max(6.0, f.pointSizeF() - 1.5));
    label->setFont(f);
    label->setAlignment(alignment);
    return label;
}

}  // namespace control_look
