#include "controls/CNiControl.h"

#include <QEvent>
#include <QMouseEvent>
#include <QPainter>

#include <cmath>

#include "controls/ControlLook.h"

CNiControl::CNiControl(QWidget* parent) : QWidget(parent) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFocusPolicy(Qt::NoFocus);
}

int CNiControl::ButtonCode(Qt::MouseButton button) {
    switch (button) {
        case Qt::LeftButton:
            return kLeftButton;
        case Qt::RightButton:
            return kRightButton;
        case Qt::MiddleButton:
            return kMiddleButton;
        default:
            return 0;
    }
}

int CNiControl::ShiftState(Qt::KeyboardModifiers modifiers) {
    int bits = 0;
    if (modifiers & Qt::ShiftModifier)
        bits |= kShiftBit;
    if (modifiers & Qt::ControlModifier)
        bits |= kCtrlBit;
    if (modifiers & Qt::AltModifier)
        bits |= kAltBit;
    return bits;
}

bool CNiControl::UsableAxis(double minimum, double maximum) {
    return std::isfinite(minimum) && std::isfinite(maximum) && minimum != maximum;
}

void CNiControl::mousePressEvent(QMouseEvent* event) {
    event->accept();
    if (pressed_ != Qt::NoButton)
        return;  // a second button while one is held
    pressed_ = event->button();
    emit mouseDown(ButtonCode(event->button()), ShiftState(event->modifiers()),
                   event->position().toPoint());
    if (pressed_ == Qt::LeftButton)
        PressAt(event);
}

void CNiControl::mouseMoveEvent(QMouseEvent* event) {
    event->accept();
    if (pressed_ == Qt::LeftButton)
        DragTo(event);
}

void CNiControl::mouseReleaseEvent(QMouseEvent* event) {
    event->accept();
    if (event->button() != pressed_)
        return;
    if (pressed_ == Qt::LeftButton)
        ReleaseAt(event);
    pressed_ = Qt::NoButton;
    emit mouseUp(ButtonCode(event->button()), ShiftState(event->modifiers()),
                 event->position().toPoint());
}

void CNiControl::mouseDoubleClickEvent(QMouseEvent* event) {
    // Qt 6 delivers the second press before the double click; should a double
    // click ever stand in for that press, it is taken as the press first.
    if (pressed_ == Qt::NoButton)
        mousePressEvent(event);
    event->accept();
    emit doubleClicked();
}

void CNiControl::changeEvent(QEvent* event) {
    if (event->type() == QEvent::EnabledChange) {
        if (!isEnabled() && pressed_ != Qt::NoButton) {
            const bool left = pressed_ == Qt::LeftButton;
            pressed_ = Qt::NoButton;
            if (left)
                CancelPress();
        }
        BackgroundChanged();
    } else if (event->type() == QEvent::FontChange) {
        BackgroundChanged();
    }
    QWidget::changeEvent(event);
}

void CNiControl::DrawBackground(QPainter& p) {
    background_.Draw(p, *this, [this](QPainter& bp) { PaintBackground(bp); });
}

void CNiControl::DrawBackground(QPainter& p, const QRect& part) {
    background_.Draw(p, *this, part, [this](QPainter& bp) { PaintBackground(bp); });
}

void CNiControl::BackgroundChanged() {
    background_.Invalidate();
    update();
}

QColor CNiControl::ShownColor(const QColor& c, double fade) const {
    return isEnabled() ? c : control_look::Mix(c, control_look::PanelColor(), fade);
}
