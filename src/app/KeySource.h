// Where the keyboard poll thread reads held keys from: any source of a full
// key-state snapshot. The program's keyboard is CRynKeyboard; the stub here
// is fed by tests (and is the null source: no keys held).
//
// Key codes are virtual-key codes as signed 8-bit values: letters 65-90,
// Page Up 33, Page Down 34, semicolon 0xBA (-70), comma 0xBC (-68), full
// stop 0xBE (-66), slash 0xBF (-65).
#pragma once

#include <array>
#include <cstdint>
#include <mutex>
#include <set>
#include <vector>

using KeyCode = std::int8_t;

// The poll table: the keys Poll() reports, in this order (the keypad's
// divide key reports as the slash, 0xBF).
constexpr std::array<KeyCode, 32> kPollTable = {'Q',
                                                'W',
                                                'E',
                                                'R',
                                                'T',
                                                'Y',
                                                'U',
                                                'I',
                                                'O',
                                                'P',
                                                'A',
                                                'S',
                                                'D',
                                                'F',
                                                'G',
                                                'H',
                                                'J',
                                                'K',
                                                'L',
                                                static_cast<KeyCode>(0xBA),
                                                'Z',
                                                'X',
                                                'C',
                                                'V',
                                                'B',
                                                'N',
                                                'M',
                                                static_cast<KeyCode>(0xBC),
                                                static_cast<KeyCode>(0xBE),
                                                static_cast<KeyCode>(0xBF),
                                                34 /* Page Down */,
                                                33 /* Page Up */};

class KeySource {
  public:
    virtual ~KeySource() = default;
    // Start-up: begin tracking keys (the stub needs nothing).
    virtual void Initialise() {}
    // The keys of the poll table that are down now, in table order; empty when
    // the source has no device or no access. Called on the poll thread.
    virtual std::vector<KeyCode> Poll() = 0;
    // Modifier state now; false without a device. User-interface thread.
    virtual bool IsCtrlDown() = 0;
    virtual bool IsShiftDown() = 0;
};

// A key source whose held keys are set by hand. Thread-safe.
class StubKeySource : public KeySource {
  public:
    void Press(KeyCode key);
    void Release(KeyCode key);
    void SetCtrl(bool down);
    void SetShift(bool down);
    // How many times Poll() has run.
    int PollCount() const;

    std::vector<KeyCode> Poll() override;
    bool IsCtrlDown() override;
    bool IsShiftDown() override;

  private:
    mutable std::mutex mutex_;
    std::set<KeyCode> held_;
    bool ctrl_ = false;
    bool shift_ = false;
    int polls_ = 0;
};
