// CNiKnob: a round knob whose value is the angle of its pointer. With the full
// sweep of 360 degrees one turn is the whole axis (minimum … maximum, 0 … 1 by
// default), the value 0 at the top and rising clockwise: the turntable platter.
// A smaller sweep makes an ordinary knob with its range centred on the top.
//
// Looks: flat (a platter seen from above) and perspective (a tilted platter
// with its edge visible). Pointer styles: a needle from the centre, a dot near
// the rim, or a wedge at the rim, in the pointer colour.
//
// Mouse: a left press sets the value to the angle pressed at; dragging turns
// it on. Events: valueChanged(value) and pointerValueChanged(0, value) on every
// change, from the mouse and from SetValue alike.
#pragma once

#include <QColor>

#include "controls/CNiControl.h"

class CNiKnob : public CNiControl {
    Q_OBJECT
  public:
    enum Look { kFlat, kPerspective };
    enum PointerStyle { kNeedle, kDot, kWedge };

    explicit CNiKnob(QWidget* parent = nullptr);

    double Value() const { return value_; }
    // Held within the axis; with the full sweep the maximum draws as the minimum.
    void SetValue(double v);

    double Minimum() const { return min_; }
    double Maximum() const { return max_; }
    void SetAxis(double minimum, double maximum);

    // Degrees of the dial that the axis covers, 30 … 360.
    void SetSweep(double degrees);
    double Sweep() const { return sweep_; }

    Look KnobLook() const { return look_; }
    void SetLook(Look look);

    QColor PointerColor() const { return pointerColor_; }
    void SetPointerColor(const QColor& c);
    PointerStyle Style() const { return pointerStyle_; }
    void SetPointerStyle(PointerStyle style);
    // Colour of the centre label of the platter.
    void SetLabelColor(const QColor& c);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return QSize(24, 24); }
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int w) const override;

    // The value under a point of the widget (used by the mouse; public for tests).
    double ValueAt(QPointF pos) const;

  signals:
    void valueChanged(double value);
    void pointerValueChanged(int index, double value);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void PaintBackground(QPainter& p) override;  // rim, vinyl, label and scale
    void PressAt(QMouseEvent* event) override;
    void DragTo(QMouseEvent* event) override;

  private:
    // The dial's ellipse: centre, radius across and the vertical squash (1 flat).
    QPointF Centre() const;
    double Radius() const;
    double Tilt() const { return look_ == kPerspective ? 0.5 : 1.0; }
    double Thickness() const { return look_ == kPerspective ? Radius() * 0.16 : 0.0; }
    QPointF OnDial(double angleRad, double fraction) const;  // fraction of the radius
    double AngleOf(double value) const;                      // radians from the top

    double value_ = 0.0;
    double min_ = 0.0;
    double max_ = 1.0;
    double sweep_ = 360.0;
    Look look_ = kFlat;
    PointerStyle pointerStyle_ = kNeedle;
    QColor pointerColor_;
    QColor labelColor_;
};
