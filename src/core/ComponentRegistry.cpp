#include "core/ComponentRegistry.h"

void ComponentRegistry::SetTitle(int k, const QString& text) {
    if (Valid(k))
        entries_[k].title = text;
}

void ComponentRegistry::SetDescription(int k, const QString& text) {
    if (Valid(k))
        entries_[k].description = text;
}

void ComponentRegistry::SetLabel(int k, const QString& text) {
    if (Valid(k))
        entries_[k].label = text;
}

void ComponentRegistry::AddComponent(QWidget* control, float x, float y, float width,
                                     float height) {
    if (count_ >= kMaxComponents)
        return;
    Entry& e = entries_[count_++];
    e.control = control;
    e.window = nullptr;
    e.place = Place{x, y, width, height};
    if (control)
        control->setToolTip(e.label);
}

void ComponentRegistry::AddMeasured(QWidget* control, QWidget* window) {
    if (count_ >= kMaxComponents)
        return;
    AddComponent(control, 0, 0, 0, 0);
    entries_[count_ - 1].window = window;
}

void ComponentRegistry::Register(QWidget* control, QWidget* window, const QString& title,
                                 const QString& description, const QString& label) {
    SetTitle(count_, title);
    SetDescription(count_, description);
    SetLabel(count_, label);
    AddMeasured(control, window);
}

QString ComponentRegistry::Title(int k) const {
    return k >= 0 && k < count_ ? entries_[k].title : QString();
}

QString ComponentRegistry::Description(int k) const {
    return k >= 0 && k < count_ ? entries_[k].description : QString();
}

QString ComponentRegistry::Label(int k) const {
    return k >= 0 && k < count_ ? entries_[k].label : QString();
}

QWidget* ComponentRegistry::Control(int k) const {
    return k >= 0 && k < count_ ? entries_[k].control : nullptr;
}

ComponentRegistry::Place ComponentRegistry::Placed(int k) const {
    if (k < 0 || k >= count_)
        return {};
    const Entry& e = entries_[k];
    if (!e.window)
        return e.place;
    if (!e.control || !e.control->isVisibleTo(e.window) || e.window->width() <= 0 ||
        e.window->height() <= 0)
        return {};
    const QRect r(e.control->mapTo(e.window, QPoint(0, 0)), e.control->size());
    const float w = static_cast<float>(e.window->width());
    const float h = static_cast<float>(e.window->height());
    return Place{static_cast<float>(r.x()) / w, static_cast<float>(r.y()) / h,
                 static_cast<float>(r.width()) / w, static_cast<float>(r.height()) / h};
}
