// Base of every working window: a top-level Qt widget that takes application
// messages through its WindowHandle and carries its class name ("CRynDeck")
// and dialog template number for routing (UWM_WINDOW_CLOSED and friends).
#pragma once

#include <QWidget>

#include "app/AppMessages.h"

class CRynWindow : public QWidget, public MessageReceiver {
    Q_OBJECT
public:
    CRynWindow(const char* className, int templateId, QWidget* parent = nullptr);
    ~CRynWindow() override;

    WindowHandle Handle() const { return handle_; }
    const char* ClassName() const { return className_; }
    int TemplateId() const { return templateId_; }

    // Default: log and ignore messages this window does not handle yet.
    LResult OnAppMessage(Uwm msg, WParam wParam, LParam lParam) override;

private:
    const char* className_;
    int templateId_;
    WindowHandle handle_;
};

// A message receiver that is not a window (tests, helpers): a QObject living
// on the creating thread.
class MessageSink : public QObject, public MessageReceiver {
public:
    MessageSink();
    ~MessageSink() override;
    WindowHandle Handle() const { return handle_; }

private:
    WindowHandle handle_;
};
