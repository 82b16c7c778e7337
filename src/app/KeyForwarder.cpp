#include "app/KeyForwarder.h"

#include <QAbstractSpinBox>
#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTextEdit>

#include "app/VirtualKeys.h"
#include "core/CRynWindow.h"
#include "core/EngineState.h"
#include "core/TsanAnnotations.h"

KeyForwarder::KeyForwarder(WindowHandle host, QObject* parent) : QObject(parent), host_(host) {}

void KeyForwarder::Install() {
    if (installed_ || !qApp)
        return;
    qApp->installEventFilter(this);
    installed_ = true;
}

void KeyForwarder::Uninstall() {
    if (!installed_ || !qApp)
        return;
    qApp->removeEventFilter(this);
    installed_ = false;
}

bool KeyForwarder::eventFilter(QObject* watched, QEvent* event) {
    // Every event passes here first, application messages posted by other
    // threads too: take the poster's hand-over before reading the event.
    MIXORA_HANDOVER_ACQUIRE(event);
    const QEvent::Type type = event->type();
    if (type != QEvent::KeyPress && type != QEvent::KeyRelease)
        return false;
    auto* widget = qobject_cast<QWidget*>(watched);
    if (!widget)
        return false;
    if (!qobject_cast<CRynWindow*>(widget->window()))
        return false;
    if (qobject_cast<QLineEdit*>(widget) || qobject_cast<QTextEdit*>(widget) ||
        qobject_cast<QPlainTextEdit*>(widget) || qobject_cast<QAbstractSpinBox*>(widget)) {
        return false;
    }
    auto* key = static_cast<QKeyEvent*>(event);
    const int vk = VirtualKeyFromQt(key->key());
    if (vk == 0)
        return false;
    const bool release = type == QEvent::KeyRelease;
    if (release && key->isAutoRepeat())
        return true;
    const WindowHandle host = host_ != 0 ? host_ : Engine().mainDialogWindow;
    const Qt::KeyboardModifiers mods = key->modifiers();
    const bool repeat = key->isAutoRepeat() || (!release && settle_.Press(vk, key->timestamp()));
    const LParam param = static_cast<LParam>(KeyMessageParam(key->nativeScanCode(), repeat, release,
                                                             mods.testFlag(Qt::ControlModifier),
                                                             mods.testFlag(Qt::ShiftModifier)));
    if (release) {
        settle_.Release(vk, key->timestamp(), [host, vk, param] {
            PostAppMessageRetry(host, UWM_KEY_UP, static_cast<WParam>(vk), param);
        });
    } else {
        PostAppMessageRetry(host, UWM_KEY_DOWN, static_cast<WParam>(vk), param);
    }
    return true;
}
