// Keys work whichever window has the focus: an application-wide event filter
// turns every key press aimed at a working window (a CRynWindow or any widget
// inside one) into a posted UWM_KEY_DOWN to the host, and every key release
// into a posted UWM_KEY_UP (wParam: virtual-key code, lParam: KeyMessageParam).
// The key event itself is consumed. Text fields (line and text edits, spin
// boxes) keep their keys so the user can type into them; keys without a
// virtual-key code are left alone. Auto-repeat releases are dropped, those
// Qt marks and those KeyReleaseSettle finds, so a held key reads as repeated
// key-downs (lParam bit 30 set) and one key-up.
#pragma once

#include <QObject>

#include "app/KeyReleaseSettle.h"
#include "core/AppMessages.h"

class KeyForwarder : public QObject {
    Q_OBJECT
  public:
    // `host` receives the messages; 0 means Engine().mainDialogWindow at the
    // moment of the key.
    explicit KeyForwarder(WindowHandle host = 0, QObject* parent = nullptr);

    // Installs the filter on the application (removed on destruction).
    void Install();
    void Uninstall();

    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    WindowHandle host_;
    bool installed_ = false;
    KeyReleaseSettle settle_;
};
