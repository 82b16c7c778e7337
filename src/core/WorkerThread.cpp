#include "core/WorkerThread.h"

#include <QCoreApplication>
#include <QThread>

#include <chrono>

#include "core/AppMessages.h"
#include "core/ThreadRole.h"

WorkerThread::~WorkerThread() {
    if (thread_.joinable()) {
        Cancel();
        Join();
    }
}

void WorkerThread::Start(std::string name, ThreadPriority priority, Body body) {
    AssertNotAudioThread("WorkerThread::Start");
    if (thread_.joinable())
        Join();
    name_ = std::move(name);
    cancelled_.store(false);
    finished_.store(false);
    tid_.store(0);
    thread_ = std::thread([this, priority, body = std::move(body)] {
        pthread_setname_np(pthread_self(), name_.substr(0, 15).c_str());
        handle_.store(pthread_self());
        tid_.store(CurrentThreadId());
        if (priority != ThreadPriority::Normal)
            ApplyCurrentThreadPriority(priority);
        body(cancelled_);
        finished_.store(true);
    });
}

void WorkerThread::SetPriority(ThreadPriority priority) {
    const pid_t tid = tid_.load();
    if (tid == 0 || finished_.load())
        return;
    ApplyThreadPriority(handle_.load(), tid, priority);
}

void WorkerThread::Join(const std::function<void()>& nudge) {
    AssertNotAudioThread("WorkerThread::Join");
    if (!thread_.joinable())
        return;
    const bool onUiThread =
        QCoreApplication::instance() && QThread::currentThread() == qApp->thread();
    while (!finished_.load()) {
        if (nudge)
            nudge();
        if (onUiThread)
            PumpMessages();
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    thread_.join();
}
