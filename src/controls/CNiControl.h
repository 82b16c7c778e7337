// CNiControl: the common base of every instrument control. It turns Qt's mouse
// work into the events the windows handle: mouse down and up with the button
// code and the shift state, and double click. Each control derives from it and
// adds its own value events.
//
// Button codes: 1 = left, 2 = right, 4 = middle (0 for any other button).
// Shift state: a bit set of 1 = Shift, 2 = Ctrl, 4 = Alt.
//
// The controls' own mouse handling is for the left button only: the other
// buttons reach the windows through mouseDown and mouseUp and move nothing.
// A control disabled while the button is held drops the press (a disabled
// widget is sent no release): it forgets what it was dragging, and no mouseUp
// is reported.
//
// Look: a control's still picture (panel, wells, scales) is kept cached (see
// BackgroundCache) and painted again when the size, the enabled state or the
// font change, or when the control says it has changed. A disabled control
// shows its colours faded towards the panel.
//
// Order of events: mouseDown is reported before the control reacts to the press
// (so a window can note "the user holds the slide" before the value moves);
// mouseUp is reported after the control has taken the release (so the value
// read in a mouse-up handler is the final one). A double click comes as its
// second press (mouse down) followed by doubleClicked.
#pragma once

#include <QColor>
#include <QPoint>
#include <QWidget>

#include "controls/BackgroundCache.h"

class QMouseEvent;
class QPainter;

class CNiControl : public QWidget {
    Q_OBJECT
  public:
    enum MouseButtonCode { kLeftButton = 1, kRightButton = 2, kMiddleButton = 4 };
    enum ShiftBits { kShiftBit = 1, kCtrlBit = 2, kAltBit = 4 };

    explicit CNiControl(QWidget* parent = nullptr);

    static int ButtonCode(Qt::MouseButton button);
    static int ShiftState(Qt::KeyboardModifiers modifiers);
    // The ends of an axis a control can use: both finite and apart (a control
    // keeps its axis when given any other).
    static bool UsableAxis(double minimum, double maximum);

  signals:
    void mouseDown(int button, int shift, QPoint pos);
    void mouseUp(int button, int shift, QPoint pos);
    void doubleClicked();

  protected:
    // Controls override these instead of the Qt handlers; the base reports the
    // events around them. They are called for the left button only.
    virtual void PressAt(QMouseEvent* event) { (void)event; }
    virtual void DragTo(QMouseEvent* event) { (void)event; }
    virtual void ReleaseAt(QMouseEvent* event) { (void)event; }
    // The held left button will not be released to this control (it has been
    // disabled): forget the drag and any pressed look.
    virtual void CancelPress() {}

    // The still part of the picture, for a control that keeps one: painted on
    // the panel colour with antialiasing on, then kept until it changes.
    virtual void PaintBackground(QPainter& p) { (void)p; }
    // Draws the still picture (all of it, or the part under part), painting
    // it again first when it is out of date.
    void DrawBackground(QPainter& p);
    void DrawBackground(QPainter& p, const QRect& part);
    // Something the still picture shows has changed: paint it again.
    void BackgroundChanged();

    // The colour c as the control shows it: itself while enabled, mixed
    // towards the panel colour by fade (0 … 1) while disabled.
    QColor ShownColor(const QColor& c, double fade = 0.6) const;

    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    Qt::MouseButton pressed_ = Qt::NoButton;  // the button of the current press
    BackgroundCache background_;
};
