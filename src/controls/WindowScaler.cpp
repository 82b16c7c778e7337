#include "controls/WindowScaler.h"

#include <QBoxLayout>
#include <QEvent>
#include <QGridLayout>
#include <QLayout>
#include <QTimer>
#include <QWidget>
#include <algorithm>
#include <cmath>

namespace {

constexpr double kStep = 0.01;  // smaller changes of scale are not applied

int Scaled(int v, double s) {
    return static_cast<int>(std::lround(v * s));
}

QSize ScaledMinimum(QSize natural, double s) {
    return {Scaled(natural.width(), s), Scaled(natural.height(), s)};
}

QSize ScaledMaximum(QSize natural, double s) {
    return {natural.width() >= QWIDGETSIZE_MAX ? QWIDGETSIZE_MAX : Scaled(natural.width(), s),
            natural.height() >= QWIDGETSIZE_MAX ? QWIDGETSIZE_MAX : Scaled(natural.height(), s)};
}

QFont ScaledFont(const QFont& natural, double s) {
    QFont f = natural;
    if (natural.pointSizeF() > 0)
        f.setPointSizeF(std::max(4.0, natural.pointSizeF() * s));
    else if (natural.pixelSize() > 0)
        f.setPixelSize(std::max(5, Scaled(natural.pixelSize(), s)));
    return f;
}

}  // namespace

WindowScaler* WindowScaler::Attach(QWidget* window) {
    for (QObject* child : window->children()) {
        if (auto* existing = dynamic_cast<WindowScaler*>(child))
            return existing;
    }
    return new WindowScaler(window);
}

WindowScaler::WindowScaler(QWidget* window) : QObject(window), window_(window) {
    windowFont_ = window->font();
    if (QLayout* l = window->layout())
        l->setSizeConstraint(QLayout::SetNoConstraint);
    window->setMinimumSize(0, 0);
    window->installEventFilter(this);
    Record();
}

bool WindowScaler::Record() {
    bool added = false;
    const auto widgets = window_->findChildren<QWidget*>();
    for (QWidget* w : widgets) {
        if (w->isWindow())
            continue;
        auto it = widgets_.find(w);
        if (it != widgets_.end() && it->second.widget)
            continue;
        WidgetNatural n;
        n.widget = w;
        n.minimum = w->minimumSize();
        n.maximum = w->maximumSize();
        n.ownFont = w->testAttribute(Qt::WA_SetFont);
        n.font = w->font();
        widgets_[w] = n;
        added = true;
    }
    const auto layouts = window_->findChildren<QLayout*>();
    for (QLayout* l : layouts) {
        auto it = layouts_.find(l);
        if (it != layouts_.end() && it->second.layout)
            continue;
        LayoutNatural n;
        n.layout = l;
        n.margins = l->contentsMargins();
        if (auto* grid = qobject_cast<QGridLayout*>(l)) {
            n.horizontal = grid->horizontalSpacing();
            n.vertical = grid->verticalSpacing();
        } else {
            n.spacing = l->spacing();
        }
        layouts_[l] = n;
        added = true;
    }
    return added;
}

void WindowScaler::Apply(double s) {
    scale_ = s;
    window_->setFont(ScaledFont(windowFont_, s));
    for (auto& [key, n] : widgets_) {
        QWidget* w = n.widget;
        if (!w)
            continue;
        w->setMinimumSize(ScaledMinimum(n.minimum, s));
        w->setMaximumSize(ScaledMaximum(n.maximum, s));
        if (n.ownFont)
            w->setFont(ScaledFont(n.font, s));
    }
    for (auto& [key, n] : layouts_) {
        QLayout* l = n.layout;
        if (!l)
            continue;
        const QMargins& m = n.margins;
        l->setContentsMargins(Scaled(m.left(), s), Scaled(m.top(), s), Scaled(m.right(), s),
                              Scaled(m.bottom(), s));
        if (auto* grid = qobject_cast<QGridLayout*>(l)) {
            if (n.horizontal >= 0)
                grid->setHorizontalSpacing(Scaled(n.horizontal, s));
            if (n.vertical >= 0)
                grid->setVerticalSpacing(Scaled(n.vertical, s));
        } else if (n.spacing >= 0) {
            l->setSpacing(Scaled(n.spacing, s));
        }
    }
}

QSize WindowScaler::LayoutMinimum() {
    // Every cached size is worked out again from the controls' sizes now.
    for (auto& [key, n] : layouts_) {
        if (n.layout)
            n.layout->invalidate();
    }
    QLayout* top = window_->layout();
    return top ? top->minimumSize() : QSize();
}

void WindowScaler::Fit() {
    fitPending_ = false;
    if (!window_->layout())
        return;
    // Newcomers take the scale in force first.
    if (Record() && scale_ != 1.0)
        Apply(scale_);
    const QSize room = window_->size();
    if (room.isEmpty())
        return;
    // The natural size is measured at the scale in force; the fonts and the
    // controls' own hints do not scale exactly, so a few rounds settle it.
    for (int round = 0; round < 4; ++round) {
        const QSize need = LayoutMinimum();
        if (need.isEmpty())
            return;
        const double naturalW = need.width() / scale_;
        const double naturalH = need.height() / scale_;
        double s = std::min(room.width() / naturalW, room.height() / naturalH);
        s = std::clamp(s, kSmallest, 1.0);
        const bool fits = need.width() <= room.width() && need.height() <= room.height();
        if (std::abs(s - scale_) < kStep && (fits || s <= kSmallest || s >= 1.0))
            return;
        if (fits && s < scale_)
            return;  // already fits: no need to shrink further
        Apply(s);
    }
}

bool WindowScaler::eventFilter(QObject* watched, QEvent* event) {
    if (watched == window_ && (event->type() == QEvent::Resize || event->type() == QEvent::Show) &&
        !fitPending_) {
        fitPending_ = true;
        QTimer::singleShot(0, this, [this] { Fit(); });
    }
    return QObject::eventFilter(watched, event);
}
