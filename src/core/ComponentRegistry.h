// What a window tells about its controls: per control a title ("Delete
// Item:"), a description (sentences, may hold line breaks), a short label
// ("delete item", the control's tool tip) and its place in the window, in
// registration order. The same record gives the tool tips, the guide's window
// pages and their image maps.
//
// Registration, per control: SetTitle/SetDescription/SetLabel(Count(), ...)
// then AddComponent(control, ...). Register() does all four at once. A
// registration beyond the 100th is ignored.
#pragma once

#include <QRectF>
#include <QString>
#include <QWidget>
#include <array>

class ComponentRegistry {
  public:
    static constexpr int kMaxComponents = 100;

    // A place as fractions of the window's client area (x, y, width, height).
    struct Place {
        float x = 0, y = 0, width = 0, height = 0;
    };

    // The strings of component k, where k is the number registered so far.
    void SetTitle(int k, const QString& text);
    void SetDescription(int k, const QString& text);
    void SetLabel(int k, const QString& text);

    // Stores `control` (a control, a group frame or a label; may be null for
    // a place of its own) with a fixed place at index Count(), gives it its
    // label as tool tip and counts it.
    void AddComponent(QWidget* control, float x, float y, float width, float height);
    // Stores `control` whose place is measured from its geometry in `window`
    // whenever Placed() is asked: the windows lay out with Qt layouts, so the
    // place follows the window's size. A hidden control measures zero.
    void AddMeasured(QWidget* control, QWidget* window);
    // The four steps for a measured control.
    void Register(QWidget* control, QWidget* window, const QString& title,
                  const QString& description, const QString& label);

    int Count() const { return count_; }
    QString Title(int k) const;
    QString Description(int k) const;
    QString Label(int k) const;
    QWidget* Control(int k) const;
    // The place of component k now: the stored fractions, or the measured
    // control's rectangle over its window's client area (zero when the
    // control or its window is hidden or the window has no size).
    Place Placed(int k) const;

    // The height, in pixels, of the title bar the window's pictures show above
    // its client area (the guide's image maps add it to every top and bottom).
    int CaptionHeight() const { return captionHeight_; }
    void SetCaptionHeight(int pixels) { captionHeight_ = pixels; }

  private:
    struct Entry {
        QString title, description, label;
        QWidget* control = nullptr;
        QWidget* window = nullptr;  // set when measured
        Place place;
    };
    bool Valid(int k) const { return k >= 0 && k < kMaxComponents; }

    std::array<Entry, kMaxComponents> entries_;
    int count_ = 0;
    int captionHeight_ = 18;
};
