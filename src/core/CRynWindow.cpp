#include "core/CRynWindow.h"

#include <QTimerEvent>

#include "core/Trace.h"

CRynWindow::CRynWindow(const char* className, int templateId, QWidget* parent)
    : QWidget(parent, Qt::Window), className_(className), templateId_(templateId) {
    setObjectName(QString::fromLatin1(className));
    handle_ = RegisterReceiver(this, this);
}

CRynWindow::~CRynWindow() {
    UnregisterReceiver(handle_);
}

LResult CRynWindow::OnAppMessage(Uwm msg, WParam wParam, LParam lParam) {
    qCDebug(lcTrace).noquote() << className_ << "ignores" << UwmName(msg) << wParam << lParam;
    return 0;
}

void CRynWindow::SetWindowTimer(int id, int periodMs, bool once) {
    KillWindowTimer(id);
    const int qtId = startTimer(periodMs, Qt::PreciseTimer);
    if (qtId != 0)
        timers_[id] = Timer{qtId, once};
}

void CRynWindow::KillWindowTimer(int id) {
    auto it = timers_.find(id);
    if (it == timers_.end())
        return;
    killTimer(it->second.qtId);
    timers_.erase(it);
}

bool CRynWindow::WindowTimerActive(int id) const {
    return timers_.count(id) != 0;
}

void CRynWindow::OnWindowTimer(int) {}

void CRynWindow::timerEvent(QTimerEvent* event) {
    for (auto it = timers_.begin(); it != timers_.end(); ++it) {
        if (it->second.qtId != event->timerId())
            continue;
        const int id = it->first;
        if (it->second.once) {
            killTimer(it->second.qtId);
            timers_.erase(it);
        }
        OnWindowTimer(id);
        return;
    }
    QWidget::timerEvent(event);
}

MessageSink::MessageSink() {
    handle_ = RegisterReceiver(this, this);
}

MessageSink::~MessageSink() {
    UnregisterReceiver(handle_);
}
