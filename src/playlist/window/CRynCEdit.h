// The play list's search field: a line edit whose Enter key posts
// UWM_SEARCH_ENTER to its window (which then searches) instead of being
// taken by the window.
#pragma once

#include <QLineEdit>

#include "core/AppMessages.h"

class CRynCEdit : public QLineEdit {
    Q_OBJECT
  public:
    CRynCEdit(WindowHandle window, QWidget* parent);

  protected:
    void keyPressEvent(QKeyEvent* event) override;

  private:
    WindowHandle window_;
};
