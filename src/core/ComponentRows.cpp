#include "core/ComponentRows.h"

void ComponentRows::Add(QWidget* control, const QString& title, const QString& description,
                        const QString& label) {
    const int k = next_++;
    if (k >= registry_.Count()) {
        registry_.Register(control, window_, title, description, label);
        return;
    }
    // Registered before: the same row again, with the window's new texts.
    registry_.SetTitle(k, title);
    registry_.SetDescription(k, description);
    registry_.SetLabel(k, label);
    if (QWidget* c = registry_.Control(k))
        c->setToolTip(label);
}
