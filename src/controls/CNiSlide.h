// CNiSlide: a vertical or horizontal slide with one or more pointers on one
// axis. Pointer 0 is the slide's value; further pointers carry their own values
// and colours (a band's effective gain beside its level, the edges of a range).
// Indices are 0-based.
//
// Pointer styles: a thumb (the handle the user drags), a fill (a bar from the
// axis minimum to the value, like a meter) and a marker (a small triangle with
// a line across the track). Pointers can be hidden, and made non-interactive so
// the mouse never picks them (indicators).
//
// Mouse: a left press on the track picks the nearest interactive pointer and
// moves it to the press (a press on a thumb grabs it where it is); dragging
// moves it on. With end arrows shown, a left press on an arrow moves pointer 0
// by the arrow step towards that end. The right button moves nothing; windows
// act on its mouse-up (reset to the control's zero position).
//
// Events: pointerValueChanged(index, value) on every change of any pointer, and
// valueChanged(value) in addition when pointer 0 changes, from the mouse and
// from code alike. Values are held within the axis; with a discrete step, the
// mouse sets values on the grid minimum + k · step.
#pragma once

#include <QColor>
#include <QVector>

#include "controls/CNiControl.h"

class CNiSlide : public CNiControl {
    Q_OBJECT
  public:
    enum PointerStyle { kThumb, kFill, kMarker };

    explicit CNiSlide(Qt::Orientation orientation = Qt::Vertical, QWidget* parent = nullptr);

    Qt::Orientation Orientation() const { return orientation_; }
    void SetOrientation(Qt::Orientation o);

    double Minimum() const { return min_; }
    double Maximum() const { return max_; }
    // Sets the axis and brings every pointer inside it (reporting the moves).
    void SetAxis(double minimum, double maximum);
    // 0 = continuous; otherwise the mouse moves in steps of this size.
    void SetDiscreteStep(double step) { step_ = step; }
    double DiscreteStep() const { return step_; }

    double Value() const { return PointerValue(0); }
    void SetValue(double v) { SetPointerValue(0, v); }

    int PointerCount() const { return int(pointers_.size()); }
    // At least one pointer; new pointers are interactive markers at the minimum.
    void SetPointerCount(int n);
    double PointerValue(int index) const;
    void SetPointerValue(int index, double v);
    QColor PointerColor(int index) const;
    void SetPointerColor(int index, const QColor& c);
    void SetPointerStyle(int index, PointerStyle style);
    void SetPointerVisible(int index, bool visible);
    void SetPointerInteractive(int index, bool interactive);
    bool PointerVisible(int index) const;

    // Colour of the track between the minimum and pointer 0 (invalid: none).
    void SetFillColor(const QColor& c);
    QColor FillColor() const { return fillColor_; }

    void SetArrowsVisible(bool on);
    bool ArrowsVisible() const { return arrows_; }
    void SetArrowStep(double step) { arrowStep_ = step; }
    double ArrowStep() const { return arrowStep_; }

    // Tick marks along the track: count of intervals (0 = none).
    void SetTickCount(int intervals);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  signals:
    void valueChanged(double value);
    void pointerValueChanged(int index, double value);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void PaintBackground(QPainter& p) override;  // track well, ticks and arrows
    void PressAt(QMouseEvent* event) override;
    void DragTo(QMouseEvent* event) override;
    void ReleaseAt(QMouseEvent* event) override;
    void CancelPress() override;

  private:
    struct Pointer {
        double value = 0.0;
        QColor color;
        PointerStyle style = kMarker;
        bool visible = true;
        bool interactive = true;
    };

    // Geometry along the axis, in pixels of the widget.
    QRectF TrackRect() const;
    double PixelOf(double value) const;  // centre of the thumb for a value
    double ValueAt(QPointF pos) const;   // value under a point of the track
    double Along(QPointF pos) const;     // the axis coordinate of a point
    int ArrowAt(QPointF pos) const;      // -1 lower arrow, +1 upper arrow, 0 none
    QRectF ArrowRect(int which) const;
    int PickPointer(QPointF pos, bool* onThumb) const;
    double Snap(double v) const;
    double Clamp(double v) const;

    void PaintPointer(QPainter& p, const Pointer& ptr);

    Qt::Orientation orientation_;
    double min_ = 0.0;
    double max_ = 1.0;
    double step_ = 0.0;
    QVector<Pointer> pointers_;
    QColor fillColor_;
    bool arrows_ = false;
    double arrowStep_ = 0.5;
    int ticks_ = 10;

    int dragging_ = -1;        // pointer being dragged
    double grabOffset_ = 0.0;  // pixels between the press and the thumb centre
    int arrowHeld_ = 0;        // arrow drawn pressed
};
