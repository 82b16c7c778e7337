// CNiButton: a two-state button or lamp. Its value is on or off; its caption is
// a text the windows keep state in and compare ("start"/"stop"). When on- and
// off-texts are given, the caption follows the value: every change of value
// shows the matching text. Colours, pictures, enabled and visible make up the
// rest of its look (enabled and visible are the QWidget ones).
//
// Styles: a push button (face takes the on/off colour), a push button with a
// lamp in it (the lamp takes the colour), a round lamp and a square lamp
// (caption drawn inside the lamp).
//
// Actions: switch when pressed (each left press toggles), switch until
// released (on while the left button is held: wind buttons), or indicator
// (the mouse never changes the value: command buttons whose windows act on
// mouse down, and lamps). Lamp styles select the indicator action; a later
// SetAction overrides it.
//
// Events: valueChanged(on) fires on every change of value, from the mouse or
// from SetValue, so code moves the button exactly as a click does. Mouse down
// and up and double click come from CNiControl.
#pragma once

#include <QColor>
#include <QPixmap>
#include <QString>

#include "controls/CNiControl.h"

class CNiButton : public CNiControl {
    Q_OBJECT
  public:
    enum Style { kPushButton, kLedButton, kRoundLamp, kSquareLamp };
    enum Action { kSwitchWhenPressed, kSwitchUntilReleased, kIndicator };

    explicit CNiButton(QWidget* parent = nullptr);
    CNiButton(const QString& offText, const QString& onText, QWidget* parent = nullptr);

    bool Value() const { return value_; }
    void SetValue(bool on);

    QString Caption() const { return caption_; }
    void SetCaption(const QString& text);
    QString OnText() const { return onText_; }
    QString OffText() const { return offText_; }
    // Setting the text of the current state also shows it.
    void SetOnText(const QString& text);
    void SetOffText(const QString& text);

    QColor OnColor() const { return onColor_; }
    QColor OffColor() const { return offColor_; }
    void SetOnColor(const QColor& c);
    void SetOffColor(const QColor& c);
    void SetColors(const QColor& on, const QColor& off);

    // Pictures drawn on the face; the disabled one while the button is
    // disabled (a faded copy of the enabled one when none is given).
    void SetPicture(const QPixmap& enabled);
    void SetDisabledPicture(const QPixmap& disabled);

    Style ButtonStyle() const { return style_; }
    void SetStyle(Style style);
    Action MechanicalAction() const { return action_; }
    void SetAction(Action action) { action_ = action; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  signals:
    void valueChanged(bool on);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void PressAt(QMouseEvent* event) override;
    void ReleaseAt(QMouseEvent* event) override;
    void CancelPress() override;

  private:
    void PaintPush(QPainter& p, const QRectF& r);
    void PaintLamp(QPainter& p, const QRectF& r, bool round);
    void PaintCaption(QPainter& p, const QRectF& r, const QColor& face);
    QRectF PaintPicture(QPainter& p, const QRectF& r);

    bool value_ = false;
    bool held_ = false;  // left button down on the face (pressed look)
    QString caption_;
    QString onText_;
    QString offText_;
    QColor onColor_;
    QColor offColor_;
    QPixmap picture_;
    QPixmap disabledPicture_;
    Style style_ = kPushButton;
    Action action_ = kSwitchWhenPressed;
};
