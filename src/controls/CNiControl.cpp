#include "controls/CNiControl.h"

#include <QMouseEvent>

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

void CNiControl::mousePressEvent(QMouseEvent* event) {
    event->accept();
    if (pressed_ != Qt::NoButton)
        return;  // a second button while one is held
    pressed_ = event->button();
    emit mouseDown(ButtonCode(event->button()), ShiftState(event->modifiers()),
                   event->position().toPoint());
    PressAt(event);
}

void CNiControl::mouseMoveEvent(QMouseEvent* event) {
    event->accept();
    if (pressed_ != Qt::NoButton)
        DragTo(event);
}

void CNiControl::mouseReleaseEvent(QMouseEvent* event) {
    event->accept();
    if (event->button() != pressed_)
        return;
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
