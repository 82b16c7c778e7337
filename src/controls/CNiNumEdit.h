// CNiNumEdit: a numeric read-out with up and down buttons that can also be
// typed into. The value is held within the range and shown with a fixed number
// of decimals.
//
// Mouse: a left press on the up or down button steps the value by the
// increment, repeating while held; a press on the read-out takes the keyboard
// focus for typing. Keys while focused: digits, '.', '-' and Backspace edit the
// typed text; Enter takes it (an unreadable text is dropped), Escape drops it;
// Up and Down step the value.
//
// Events: valueChanged(value) on every change of value, from the buttons, the
// keys, typing and SetValue alike.
#pragma once

#include <QString>
#include <QTimer>

#include "controls/CNiControl.h"

class CNiNumEdit : public CNiControl {
    Q_OBJECT
  public:
    explicit CNiNumEdit(QWidget* parent = nullptr);

    double Value() const { return value_; }
    void SetValue(double v);

    void SetRange(double minimum, double maximum);
    double Minimum() const { return min_; }
    double Maximum() const { return max_; }
    void SetIncrement(double step) { increment_ = step; }
    double Increment() const { return increment_; }
    void SetDecimals(int decimals);
    int Decimals() const { return decimals_; }

    // The text shown: the typed text while editing, else the formatted value.
    QString Text() const;
    bool Editing() const { return editing_; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return QSize(40, 18); }

  signals:
    void valueChanged(double value);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void PressAt(QMouseEvent* event) override;
    void ReleaseAt(QMouseEvent* event) override;
    void CancelPress() override;

  private:
    QRectF UpRect() const;
    QRectF DownRect() const;
    QRectF ReadoutRect() const;
    void Step(int direction);
    void Commit();

    double value_ = 0.0;
    double min_ = -1e9;
    double max_ = 1e9;
    double increment_ = 1.0;
    int decimals_ = 0;

    bool editing_ = false;
    QString typed_;
    int held_ = 0;  // +1 up button held, -1 down button held
    QTimer repeat_;
};
