#include "controls/CNiNumEdit.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

#include "controls/ControlLook.h"

using namespace control_look;

namespace {

constexpr int kFirstRepeatMs = 400;  // hold this long before the button repeats
constexpr int kRepeatMs = 60;        // then step this often
constexpr double kButtonWidth = 16.0;
const QColor kReadoutText(120, 230, 140);

}  // namespace

CNiNumEdit::CNiNumEdit(QWidget* parent) : CNiControl(parent) {
    setFocusPolicy(Qt::ClickFocus);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    repeat_.setSingleShot(false);
    connect(&repeat_, &QTimer::timeout, this, [this] {
        repeat_.setInterval(kRepeatMs);
        if (held_)
            Step(held_);
    });
}

void CNiNumEdit::SetValue(double v) {
    if (std::isnan(v))
        return;
    v = std::clamp(v, min_, max_);
    if (v == value_)
        return;
    value_ = v;
    update();
    emit valueChanged(v);
}

void CNiNumEdit::SetRange(double minimum, double maximum) {
    if (!(minimum <= maximum))
        return;
    min_ = minimum;
    max_ = maximum;
    SetValue(value_);
}

void CNiNumEdit::SetDecimals(int decimals) {
    decimals_ = std::clamp(decimals, 0, 9);
    update();
}

QString CNiNumEdit::Text() const {
    return editing_ ? typed_ : QString::number(value_, 'f', decimals_);
}

QSize CNiNumEdit::sizeHint() const {
    const QFontMetrics fm = fontMetrics();
    const int digits = std::max(fm.horizontalAdvance(QString::number(max_, 'f', decimals_)),
                                fm.horizontalAdvance(QString::number(min_, 'f', decimals_)));
    return QSize(std::clamp(digits, 30, 120) + int(kButtonWidth) + 14, 22);
}

QRectF CNiNumEdit::UpRect() const {
    const QRectF r = QRectF(rect()).adjusted(1, 1, -1, -1);
    return QRectF(r.right() - kButtonWidth, r.top(), kButtonWidth, r.height() / 2);
}

QRectF CNiNumEdit::DownRect() const {
    const QRectF r = QRectF(rect()).adjusted(1, 1, -1, -1);
    return QRectF(r.right() - kButtonWidth, r.center().y(), kButtonWidth, r.height() / 2);
}

QRectF CNiNumEdit::ReadoutRect() const {
    return QRectF(rect()).adjusted(1, 1, -kButtonWidth - 3, -1);
}

void CNiNumEdit::Step(int direction) {
    if (editing_)
        Commit();
    SetValue(value_ + direction * increment_);
}

void CNiNumEdit::Commit() {
    if (!editing_)
        return;
    editing_ = false;
    bool ok = false;
    const double v = typed_.toDouble(&ok);
    typed_.clear();
    update();
    if (ok && std::isfinite(v))
        SetValue(v);
}

void CNiNumEdit::PressAt(QMouseEvent* event) {
    const QPointF pos = event->position();
    const int dir = UpRect().contains(pos) ? +1 : DownRect().contains(pos) ? -1 : 0;
    if (dir == 0)
        return;  // the read-out: the click focus starts typing
    held_ = dir;
    Step(dir);
    repeat_.start(kFirstRepeatMs);
}

void CNiNumEdit::ReleaseAt(QMouseEvent*) {
    CancelPress();
}

// Also when the control is disabled while a button is held: the repeat stops.
void CNiNumEdit::CancelPress() {
    held_ = 0;
    repeat_.stop();
    update();
}

void CNiNumEdit::keyPressEvent(QKeyEvent* event) {
    const int key = event->key();
    const QString text = event->text();
    if (key == Qt::Key_Up || key == Qt::Key_Down) {
        Step(key == Qt::Key_Up ? +1 : -1);
    } else if (key == Qt::Key_Return || key == Qt::Key_Enter) {
        Commit();
    } else if (key == Qt::Key_Escape) {
        editing_ = false;
        typed_.clear();
        update();
    } else if (key == Qt::Key_Backspace) {
        if (editing_ && !typed_.isEmpty())
            typed_.chop(1);
        update();
    } else if (text.size() == 1 && (text[0].isDigit() || text[0] == u'.' || text[0] == u'-')) {
        if (!editing_) {
            editing_ = true;
            typed_.clear();
        }
        if (typed_.size() < 24)
            typed_ += text;
        update();
    } else {
        CNiControl::keyPressEvent(event);
        return;
    }
    event->accept();
}

void CNiNumEdit::focusOutEvent(QFocusEvent* event) {
    Commit();
    CNiControl::focusOutEvent(event);
}

void CNiNumEdit::wheelEvent(QWheelEvent* event) {
    const int dy = event->angleDelta().y();
    if (dy != 0)
        Step(dy > 0 ? +1 : -1);
    event->accept();
}

void CNiNumEdit::paintEvent(QPaintEvent*) {
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    p.fillRect(rect(), PanelColor());
    const QRectF ro = ReadoutRect();
    DrawWell(p, ro, 2.0);
    if (hasFocus()) {
        p.setPen(QPen(QColor(80, 140, 200), 1.0));
        p.setBrush(Qt::NoBrush);
        p.drawRoundedRect(ro.adjusted(0.5, 0.5, -0.5, -0.5), 2, 2);
    }
    QFont f = font();
    f.setStyleHint(QFont::Monospace);
    f.setFamily(QStringLiteral("monospace"));
    p.setFont(f);
    p.setPen(isEnabled() ? (editing_ ? TextColor() : kReadoutText) : DimTextColor());
    QString shown = Text();
    if (editing_)
        shown += u'_';
    p.drawText(ro.adjusted(3, 0, -4, 0), Qt::AlignRight | Qt::AlignVCenter, shown);

    for (int dir : {+1, -1}) {
        const QRectF b = (dir > 0 ? UpRect() : DownRect()).adjusted(0.5, 0.5, -0.5, -0.5);
        DrawBevel(p, b, FaceColor(), held_ == dir, 2.0);
        const QPointF c = b.center();
        const double s = std::min(b.width(), b.height()) * 0.25;
        QPolygonF tri;
        tri << QPointF(c.x() - s, c.y() + dir * s * 0.5)
            << QPointF(c.x() + s, c.y() + dir * s * 0.5) << QPointF(c.x(), c.y() - dir * s * 0.7);
        p.setPen(Qt::NoPen);
        p.setBrush(isEnabled() ? TextColor() : DimTextColor());
        p.drawPolygon(tri);
    }
}
