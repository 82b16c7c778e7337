// BackgroundCache: the still part of a control's picture (panel, wells,
// scales, grid) kept in a pixmap the size of the widget at its device pixel
// ratio, so a repaint only draws the moving part over it.
//
// The picture is painted again on the first draw after Invalidate, and
// whenever the widget's size or pixel ratio no longer match it. It is painted
// on the panel colour, in widget pixels, with antialiasing on.
#pragma once

#include <QPixmap>

#include <functional>

class QPainter;
class QRect;
class QWidget;

class BackgroundCache {
  public:
    using Paint = std::function<void(QPainter&)>;

    // Something the picture shows has changed: paint it again when next drawn.
    void Invalidate() { stale_ = true; }
    bool Stale() const { return stale_; }

    // Draws the picture of widget at its origin, painting it first with
    // paint when it is stale.
    void Draw(QPainter& p, const QWidget& widget, const Paint& paint);
    // The same for only the part under part (widget pixels): a repaint of
    // a small area copies no more than it needs.
    void Draw(QPainter& p, const QWidget& widget, const QRect& part, const Paint& paint);

  private:
    void Refresh(const QWidget& widget, const Paint& paint);

    QPixmap pixmap_;
    bool stale_ = true;
};
