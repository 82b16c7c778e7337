#include "app/CRynKeyboard.h"

#include <QAbstractSpinBox>
#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTextEdit>

#include "app/VirtualKeys.h"
#include "core/TsanAnnotations.h"

namespace {

constexpr int kShiftKey = 16;
constexpr int kCtrlKey = 17;

bool IsTextField(QObject* object) {
    return qobject_cast<QLineEdit*>(object) || qobject_cast<QTextEdit*>(object) ||
           qobject_cast<QPlainTextEdit*>(object) || qobject_cast<QAbstractSpinBox*>(object);
}

}  // namespace

CRynKeyboard::CRynKeyboard(QObject* parent) : QObject(parent) {}

CRynKeyboard::~CRynKeyboard() {
    Release();
}

void CRynKeyboard::Initialise() {
    if (installed_ || !qApp)
        return;
    qApp->installEventFilter(this);
    connect(qApp, &QGuiApplication::applicationStateChanged, this,
            [this](Qt::ApplicationState state) {
                if (state != Qt::ApplicationActive)
                    Clear();
            });
    installed_ = true;
}

void CRynKeyboard::Release() {
    if (installed_ && qApp) {
        qApp->removeEventFilter(this);
        disconnect(qApp, nullptr, this, nullptr);
    }
    installed_ = false;
    Clear();
}

void CRynKeyboard::Clear() {
    settle_.Flush();
    for (auto& key : down_)
        key.store(false, std::memory_order_relaxed);
    codeOfScan_.fill(0);
}

bool CRynKeyboard::IsDown(int virtualKey) const {
    return virtualKey >= 0 && virtualKey < 256 && down_[virtualKey].load(std::memory_order_relaxed);
}

std::vector<KeyCode> CRynKeyboard::Poll() {
    std::vector<KeyCode> held;
    for (KeyCode key : kPollTable) {
        if (IsDown(static_cast<std::uint8_t>(key)))
            held.push_back(key);
    }
    return held;
}

bool CRynKeyboard::IsCtrlDown() {
    return IsDown(kCtrlKey);
}

bool CRynKeyboard::IsShiftDown() {
    return IsDown(kShiftKey);
}

void CRynKeyboard::Record(int vk, unsigned scan, bool down) {
    // X11 key codes run 8 … 255; 0 means the event carries none.
    const unsigned slot = scan & 0xFF;
    if (down) {
        if (slot != 0)
            codeOfScan_[slot] = vk;
        down_[vk].store(true, std::memory_order_relaxed);
        return;
    }
    if (slot != 0 && codeOfScan_[slot] != 0) {
        down_[codeOfScan_[slot]].store(false, std::memory_order_relaxed);
        codeOfScan_[slot] = 0;
    }
    down_[vk].store(false, std::memory_order_relaxed);
}

bool CRynKeyboard::eventFilter(QObject* watched, QEvent* event) {
    // As an application filter this sees every event first, the engine's
    // messages from other threads included: take the hand-over before
    // reading one.
    MIXORA_HANDOVER_ACQUIRE(event);
    const QEvent::Type type = event->type();
    if (type != QEvent::KeyPress && type != QEvent::KeyRelease)
        return false;
    // A key event passes once for the top-level window and once for each
    // widget it is offered to; the widget passes are the ones that count
    // (they tell a text field), and recording again changes nothing.
    if (!qobject_cast<QWidget*>(watched))
        return false;
    auto* key = static_cast<QKeyEvent*>(event);
    if (key->isAutoRepeat())
        return false;
    const int vk = VirtualKeyFromQt(key->key());
    const bool down = type == QEvent::KeyPress;
    if (vk <= 0 || vk > 255 || (down && IsTextField(watched)))
        return false;
    const unsigned scan = key->nativeScanCode();
    if (down) {
        settle_.Press(vk, key->timestamp());
        Record(vk, scan, true);
    } else {
        settle_.Release(vk, key->timestamp(), [this, vk, scan] { Record(vk, scan, false); });
    }
    return false;
}
