// Base of every working window: a top-level Qt widget that takes application
// messages through its WindowHandle and carries its class name ("CRynDeck")
// and dialog template number for routing (UWM_WINDOW_CLOSED and friends).
#pragma once

#include <QWidget>
#include <map>

#include "core/AppMessages.h"
#include "core/ComponentRegistry.h"

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

    // Numbered window timers (each window numbers its own from 1): starts or
    // restarts timer `id` with a period of `periodMs` milliseconds; `once`
    // stops it after its first firing. OnWindowTimer runs on the window's
    // thread.
    void SetWindowTimer(int id, int periodMs, bool once = false);
    void KillWindowTimer(int id);
    bool WindowTimerActive(int id) const;

    // The window's controls with their titles, descriptions, tool tips and
    // places, in registration order (tool tips, layout, the user guide).
    ComponentRegistry& Registry() { return registry_; }
    const ComponentRegistry& Registry() const { return registry_; }

  protected:
    // Default: nothing.
    virtual void OnWindowTimer(int id);
    void timerEvent(QTimerEvent* event) override;

  private:
    const char* className_;
    int templateId_;
    WindowHandle handle_;
    struct Timer {
        int qtId;
        bool once;
    };
    std::map<int, Timer> timers_;  // by window timer id
    ComponentRegistry registry_;
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
