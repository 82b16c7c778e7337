// Controls that follow their window's size. A window made to fit a smaller
// rectangle than its controls need at their natural size scales them down
// together: every control's minimum and maximum size, the fonts, and the
// layouts' margins and spacings, by one factor s (kSmallest <= s <= 1), the
// largest with which the window's layout fits its client area. The window
// itself takes whatever size it is given (its layout no longer holds it at
// a minimum); what still does not fit is squeezed by the layout, never cut
// off at the window's edge. Larger windows give the layout more room at
// s = 1.
//
// Controls and layouts that appear later are taken at their natural sizes
// when first seen. The scale follows every resize and show of the window.
// User-interface thread only.
#pragma once

#include <QFont>
#include <QMargins>
#include <QObject>
#include <QPointer>
#include <QSize>
#include <map>

class QLayout;
class QWidget;

class WindowScaler : public QObject {
  public:
    static constexpr double kSmallest = 0.4;

    // The scaler of `window` (a top-level window with a layout), created on
    // the first call; the window owns it.
    static WindowScaler* Attach(QWidget* window);

    double Scale() const { return scale_; }
    // Works out and applies the scale for the window's size now.
    void Fit();

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    explicit WindowScaler(QWidget* window);
    struct WidgetNatural {
        QPointer<QWidget> widget;
        QSize minimum, maximum;
        bool ownFont = false;
        QFont font;
    };
    struct LayoutNatural {
        QPointer<QLayout> layout;
        QMargins margins;
        int spacing = -1, horizontal = -1, vertical = -1;
    };
    // Takes the natural sizes of controls and layouts not seen before; true
    // when there were any.
    bool Record();
    void Apply(double s);
    QSize LayoutMinimum();

    QWidget* window_;
    QFont windowFont_;
    double scale_ = 1.0;
    bool fitPending_ = false;
    std::map<QWidget*, WidgetNatural> widgets_;
    std::map<QLayout*, LayoutNatural> layouts_;
};
