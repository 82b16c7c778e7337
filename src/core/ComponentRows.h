// Writes a window's rows into its ComponentRegistry, one Add per control in
// the order the controls appear. A control registered before (a second
// Initialise, for the other deck) has its row rewritten in place, so a
// registry never holds a control twice; rows other parts of the window
// registered stay as they are. The label is the control's tool tip either way.
#pragma once

#include <QString>
#include <QWidget>

#include "core/ComponentRegistry.h"

class ComponentRows {
  public:
    // `window` is the window whose client area the places are measured in.
    ComponentRows(ComponentRegistry& registry, QWidget* window)
        : registry_(registry), window_(window) {}

    void Add(QWidget* control, const QString& title, const QString& description,
             const QString& label);

  private:
    ComponentRegistry& registry_;
    QWidget* window_;
};
