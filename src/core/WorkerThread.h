// One worker thread of the engine: a std::thread with a name, a priority, a
// cancel flag and a "finished" mark, joined before its owner goes away.
//
// The body only waits, reads and sends or posts application messages. A body
// may be blocked in a synchronous send to a window of the user-interface
// thread; Join() therefore keeps that thread's messages flowing while it waits,
// so such a send completes and the body can end.
#pragma once

#include <atomic>
#include <functional>
#include <string>
#include <thread>

#include "core/ThreadPriority.h"

class WorkerThread {
  public:
    // The body gets the thread's cancel flag: it ends when the flag is set
    // (besides its own stop rules).
    using Body = std::function<void(const std::atomic<bool>& cancelled)>;

    WorkerThread() = default;
    WorkerThread(const WorkerThread&) = delete;
    WorkerThread& operator=(const WorkerThread&) = delete;
    // Cancels and joins a thread still running (see Join).
    ~WorkerThread();

    // Starts the body on a new thread named `name` (at most 15 characters
    // show in tools) at `priority`. A thread already started is joined first.
    void Start(std::string name, ThreadPriority priority, Body body);

    bool Started() const { return thread_.joinable(); }
    // True once the body has returned.
    bool Finished() const { return finished_.load(); }
    const std::string& Name() const { return name_; }

    // Sets the cancel flag; the body sees it the next time it wakes.
    void Cancel() { cancelled_.store(true); }

    // Changes the running thread's priority (any thread may ask).
    void SetPriority(ThreadPriority priority);

    // Waits until the body has returned and joins the thread. While waiting,
    // calls `nudge` (typically: set the event the thread waits on) and, on the
    // user-interface thread, pumps its messages, once a millisecond.
    void Join(const std::function<void()>& nudge = {});

  private:
    std::thread thread_;
    std::string name_;
    std::atomic<bool> cancelled_{false};
    std::atomic<bool> finished_{false};
    std::atomic<pthread_t> handle_{};
    std::atomic<pid_t> tid_{0};
};
