// Tool tips only while the user wants them: an application-wide event filter
// that drops every tool tip event while the engine's toolTipsOn flag is off
// (the configuration window's "Tool Tips On/Off:" sets it). The labels stay
// on the controls; only their showing is gated. Install once, on the
// user-interface thread, after the application object exists.
#pragma once

#include <QObject>

class ToolTipGate : public QObject {
    Q_OBJECT
  public:
    // Installs the one gate on the application (again: nothing).
    static void Install();

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    using QObject::QObject;
};
