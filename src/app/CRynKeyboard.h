// CRynKeyboard: the program's keyboard, a full key-state snapshot kept by an
// application-wide event filter. Every key press and release that reaches any
// Mixora window marks its virtual-key code down or up, so the poll thread
// reads what is held whichever window has the focus. Text fields keep their
// keys: a press typed into one is not recorded (its release still clears).
//
// Auto-repeat: Qt's repeated presses and releases of a held key leave it held.
// A key released while another program has the focus never reaches us, so the
// whole snapshot is cleared whenever the application stops being active.
//
// Auto-repeat that Qt does not mark (X's release-and-press pairs) is told
// apart by KeyReleaseSettle: such a key stays held throughout.
//
// A key is recorded under the code it had when it went down (by scan code), so
// letting go of Shift before ';' still clears the ';' it pressed.
//
// Threads: the filter runs on the user-interface thread and writes the
// snapshot; Poll() reads it on the poll thread. Every entry is atomic, there
// are no locks.
#pragma once

#include <QObject>
#include <array>
#include <atomic>

#include "app/KeyReleaseSettle.h"
#include "app/KeySource.h"

class CRynKeyboard : public QObject, public KeySource {
    Q_OBJECT
  public:
    explicit CRynKeyboard(QObject* parent = nullptr);
    ~CRynKeyboard() override;

    // Starts watching the application's key events (and its activation).
    // Install it after any filter that consumes key events: the application
    // calls the filter installed last first.
    void Initialise() override;
    // Stops watching and clears the snapshot.
    void Release();

    std::vector<KeyCode> Poll() override;
    bool IsCtrlDown() override;
    bool IsShiftDown() override;

    // Whether a virtual-key code (0 … 255) is down in the snapshot.
    bool IsDown(int virtualKey) const;
    // Forgets every held key (the application lost the focus).
    void Clear();

    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void Record(int virtualKey, unsigned scanCode, bool down);

    std::array<std::atomic<bool>, 256> down_{};
    // The virtual-key code each scan code pressed (0: none).
    std::array<int, 256> codeOfScan_{};
    bool installed_ = false;
    KeyReleaseSettle settle_;
};
