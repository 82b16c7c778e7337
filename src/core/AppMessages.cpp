#include "core/AppMessages.h"

#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <QThread>

#include <atomic>
#include <condition_variable>
#include <cstdio>
#include <memory>
#include <mutex>
#include <thread>
#include <unordered_map>
#include <vector>

#include "core/ThreadRole.h"
#include "core/TsanAnnotations.h"

namespace {

// Completion record shared by a sender and the queued event.
struct SendWait {
    std::mutex mutex;
    std::condition_variable done;
    bool finished = false;
    LResult result = 0;

    void Finish(LResult r) {
        {
            std::lock_guard lock(mutex);
            if (finished)
                return;
            finished = true;
            result = r;
        }
        done.notify_all();
    }
};

const QEvent::Type kAppMessageEventType = static_cast<QEvent::Type>(QEvent::registerEventType());

struct Entry {
    QObject* object = nullptr;
    MessageReceiver* receiver = nullptr;
    // Sends from other threads still waiting for this receiver; released with
    // 0 when it unregisters.
    std::vector<std::weak_ptr<SendWait>> waiting;
};

std::mutex g_registryMutex;
std::unordered_map<WindowHandle, Entry> g_registry;
WindowHandle g_nextHandle = 1;
std::atomic<int> g_failPosts{0};

class AppMessageEvent : public QEvent {
  public:
    AppMessageEvent(WindowHandle target, Uwm msg, WParam w, LParam l,
                    std::shared_ptr<SendWait> wait)
        : QEvent(kAppMessageEventType),
          target_(target),
          msg_(msg),
          w_(w),
          l_(l),
          wait_(std::move(wait)) {}
    // A queued send whose receiver vanishes is discarded by Qt: answer 0.
    ~AppMessageEvent() override {
        if (wait_)
            wait_->Finish(0);
    }

    void Deliver() {
        MessageReceiver* receiver = nullptr;
        {
            std::lock_guard lock(g_registryMutex);
            auto it = g_registry.find(target_);
            if (it != g_registry.end())
                receiver = it->second.receiver;
        }
        LResult r = receiver ? receiver->OnAppMessage(msg_, w_, l_) : 0;
        if (wait_)
            wait_->Finish(r);
    }

  private:
    WindowHandle target_;
    Uwm msg_;
    WParam w_;
    LParam l_;
    std::shared_ptr<SendWait> wait_;
};

// Lives on each receiver's object as an event filter that delivers our events.
class Deliverer : public QObject {
  public:
    bool eventFilter(QObject*, QEvent* e) override {
        MIXORA_HANDOVER_ACQUIRE(e);
        if (e->type() == kAppMessageEventType) {
            static_cast<AppMessageEvent*>(e)->Deliver();
            return true;
        }
        return false;
    }
};

Deliverer* TheDeliverer(QObject* object) {
    // One filter object per receiver object, parented to it so it dies with it.
    auto* d = object->findChild<Deliverer*>(QString(), Qt::FindDirectChildrenOnly);
    if (!d) {
        d = new Deliverer;
        d->moveToThread(object->thread());
        d->setParent(object);
        object->installEventFilter(d);
    }
    return d;
}

}  // namespace

const char* UwmName(std::uint32_t msg) {
    switch (msg) {
#define MIXORA_UWM_NAME(name, number) \
    case number:                      \
        return #name;
        MIXORA_UWM_LIST(MIXORA_UWM_NAME)
#undef MIXORA_UWM_NAME
    }
    return "UWM_UNKNOWN";
}

WindowHandle RegisterReceiver(QObject* object, MessageReceiver* receiver) {
    AssertNotAudioThread("RegisterReceiver");
    TheDeliverer(object);
    std::lock_guard lock(g_registryMutex);
    WindowHandle h = g_nextHandle++;
    if (g_nextHandle == 0)
        g_nextHandle = 1;
    g_registry[h] = Entry{object, receiver, {}};
    return h;
}

void UnregisterReceiver(WindowHandle handle) {
    AssertNotAudioThread("UnregisterReceiver");
    std::vector<std::weak_ptr<SendWait>> waiting;
    {
        std::lock_guard lock(g_registryMutex);
        auto it = g_registry.find(handle);
        if (it == g_registry.end())
            return;
        waiting.swap(it->second.waiting);
        g_registry.erase(it);
    }
    for (auto& w : waiting) {
        if (auto wait = w.lock())
            wait->Finish(0);
    }
}

bool IsWindow(WindowHandle handle) {
    AssertNotAudioThread("IsWindow");
    std::lock_guard lock(g_registryMutex);
    return handle != 0 && g_registry.count(handle) != 0;
}

LResult SendAppMessage(WindowHandle target, Uwm msg, WParam wParam, LParam lParam) {
    AssertNotAudioThread("SendAppMessage");
    std::shared_ptr<SendWait> wait;
    MessageReceiver* direct = nullptr;
    {
        std::lock_guard lock(g_registryMutex);
        auto it = g_registry.find(target);
        if (it == g_registry.end())
            return 0;
        if (it->second.object->thread() == QThread::currentThread()) {
            direct = it->second.receiver;
        } else {
            if (!QCoreApplication::instance())
                return 0;
            wait = std::make_shared<SendWait>();
            auto& waiting = it->second.waiting;
            std::erase_if(waiting, [](const std::weak_ptr<SendWait>& w) { return w.expired(); });
            waiting.push_back(wait);
            auto* event = new AppMessageEvent(target, msg, wParam, lParam, wait);
            MIXORA_HANDOVER_RELEASE(event);
            QCoreApplication::postEvent(it->second.object, event, Qt::HighEventPriority);
        }
    }
    // On the receiver's own thread the send is a direct call, made outside
    // the registry lock so the handler may send or post freely.
    if (direct)
        return direct->OnAppMessage(msg, wParam, lParam);
    std::unique_lock lock(wait->mutex);
    while (!wait->finished) {
        // Unregistering the receiver releases us; looking again now and then
        // is a second guard so a send never hangs on a window that is gone.
        if (wait->done.wait_for(lock, std::chrono::milliseconds(50)) == std::cv_status::timeout &&
            !wait->finished) {
            lock.unlock();
            bool alive = IsWindow(target);
            lock.lock();
            if (!alive && !wait->finished)
                return 0;
        }
    }
    return wait->result;
}

bool PostAppMessage(WindowHandle target, Uwm msg, WParam wParam, LParam lParam) {
    AssertNotAudioThread("PostAppMessage");
    int fail = g_failPosts.load();
    while (fail > 0) {
        if (g_failPosts.compare_exchange_weak(fail, fail - 1))
            return false;
    }
    std::lock_guard lock(g_registryMutex);
    auto it = g_registry.find(target);
    if (it == g_registry.end() || !QCoreApplication::instance())
        return false;
    auto* event = new AppMessageEvent(target, msg, wParam, lParam, nullptr);
    MIXORA_HANDOVER_RELEASE(event);
    QCoreApplication::postEvent(it->second.object, event);
    return true;
}

void PostAppMessageRetry(WindowHandle target, Uwm msg, WParam wParam, LParam lParam) {
    AssertNotAudioThread("PostAppMessageRetry");
    while (!PostAppMessage(target, msg, wParam, lParam)) {
        if (!IsWindow(target))
            return;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

void FailNextPostsForTest(int count) {
    g_failPosts.store(count);
}

void PumpMessages(int maxRounds) {
    AssertNotAudioThread("PumpMessages");
    for (int i = 0; i < maxRounds; ++i) {
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents(QEventLoop::AllEvents);
    }
}
