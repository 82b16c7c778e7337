#include "app/CRynWindow.h"

#include <QDebug>

CRynWindow::CRynWindow(const char* className, int templateId, QWidget* parent)
    : QWidget(parent, Qt::Window), className_(className), templateId_(templateId) {
    setObjectName(QString::fromLatin1(className));
    handle_ = RegisterReceiver(this, this);
}

CRynWindow::~CRynWindow() { UnregisterReceiver(handle_); }

LResult CRynWindow::OnAppMessage(Uwm msg, WParam wParam, LParam lParam) {
    qDebug().noquote() << className_ << "ignores" << UwmName(msg) << wParam << lParam;
    return 0;
}

MessageSink::MessageSink() { handle_ = RegisterReceiver(this, this); }

MessageSink::~MessageSink() { UnregisterReceiver(handle_); }
