#include "core/ComponentRows.h"

void ComponentRows::Add(QWidget* control, const QString& title, const QString& description,
                        const QString& label) {
    // Registered before (a second Initialise): the same row again, with the
    // window's new texts, wherever other rows of the window stand.
    for (int k = 0; control && k < registry_.Count(); ++k) {
        if (registry_.Control(k) != control)
            continue;
        registry_.SetTitle(k, title);
        registry_.SetDescription(k, description);
        registry_.SetLabel(k, label);
        control->setToolTip(label);
        return;
    }
    registry_.Register(control, window_, title, description, label);
}
