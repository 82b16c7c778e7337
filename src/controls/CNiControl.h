// CNiControl: the common base of every instrument control. It turns Qt's mouse
// work into the events the windows handle: mouse down and up with the button
// code and the shift state, and double click. Each control derives from it and
// adds its own value events.
//
// Button codes: 1 = left, 2 = right, 4 = middle (0 for any other button).
// Shift state: a bit set of 1 = Shift, 2 = Ctrl, 4 = Alt.
//
// Order of events: mouseDown is reported before the control reacts to the press
// (so a window can note "the user holds the slide" before the value moves);
// mouseUp is reported after the control has taken the release (so the value
// read in a mouse-up handler is the final one). A double click comes as its
// second press (mouse down) followed by doubleClicked.
#pragma once

#include <QPoint>
#include <QWidget>

class QMouseEvent;

class CNiControl : public QWidget {
    Q_OBJECT
  public:
    enum MouseButtonCode { kLeftButton = 1, kRightButton = 2, kMiddleButton = 4 };
    enum ShiftBits { kShiftBit = 1, kCtrlBit = 2, kAltBit = 4 };

    explicit CNiControl(QWidget* parent = nullptr);

    static int ButtonCode(Qt::MouseButton button);
    static int ShiftState(Qt::KeyboardModifiers modifiers);

  signals:
    void mouseDown(int button, int shift, QPoint pos);
    void mouseUp(int button, int shift, QPoint pos);
    void doubleClicked();

  protected:
    // Controls override these instead of the Qt handlers; the base reports the
    // events around them.
    virtual void PressAt(QMouseEvent* event) { (void)event; }
    virtual void DragTo(QMouseEvent* event) { (void)event; }
    virtual void ReleaseAt(QMouseEvent* event) { (void)event; }

    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

    // The button that started the current press (Qt::NoButton when none).
    Qt::MouseButton PressedButton() const { return pressed_; }

  private:
    Qt::MouseButton pressed_ = Qt::NoButton;
};
