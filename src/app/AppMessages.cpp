#include "app/AppMessages.h"

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

#include "app/ThreadRole.h"
#include "app/TsanAnnotations.h"

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
    struct NamedMessage {
        std::uint32_t id;
        const char* name;
    };
    static const NamedMessage kNames[] = {
        {UWM_CONFIG_REFRESH, "UWM_CONFIG_REFRESH"},
        {UWM_RESERVED_8002, "UWM_RESERVED_8002"},
        {UWM_EQ_NUMBER_TYPE, "UWM_EQ_NUMBER_TYPE"},
        {UWM_EQ_TYPE, "UWM_EQ_TYPE"},
        {UWM_GRAPH_NUMBER_TYPE, "UWM_GRAPH_NUMBER_TYPE"},
        {UWM_SET_DIRECTION, "UWM_SET_DIRECTION"},
        {UWM_WINDOW_CLOSED, "UWM_WINDOW_CLOSED"},
        {UWM_START_SCRATCH, "UWM_START_SCRATCH"},
        {UWM_CREATE_DECK_BUFFERS, "UWM_CREATE_DECK_BUFFERS"},
        {UWM_DIAGNOSTICS, "UWM_DIAGNOSTICS"},
        {UWM_APPLY_PAN, "UWM_APPLY_PAN"},
        {UWM_ASSIGN_CD_DRIVE, "UWM_ASSIGN_CD_DRIVE"},
        {UWM_APPLY_EFFECT, "UWM_APPLY_EFFECT"},
        {UWM_APPLY_EFFECT_PARAMETER, "UWM_APPLY_EFFECT_PARAMETER"},
        {UWM_3D_GRAPH_VALUE, "UWM_3D_GRAPH_VALUE"},
        {UWM_FIRST_FILL, "UWM_FIRST_FILL"},
        {UWM_RELEASE_DECK, "UWM_RELEASE_DECK"},
        {UWM_BACKWARD_FLAGS, "UWM_BACKWARD_FLAGS"},
        {UWM_FORWARD_FLAGS, "UWM_FORWARD_FLAGS"},
        {UWM_GRAPHS_PRIORITY, "UWM_GRAPHS_PRIORITY"},
        {UWM_DECK_VALUE, "UWM_DECK_VALUE"},
        {UWM_READER_ENDED, "UWM_READER_ENDED"},
        {UWM_RESERVED_8017, "UWM_RESERVED_8017"},
        {UWM_END_OF_TRACK, "UWM_END_OF_TRACK"},
        {UWM_LATENCY_MAXIMUM, "UWM_LATENCY_MAXIMUM"},
        {UWM_LATENCY_QUARTER_REQUEST, "UWM_LATENCY_QUARTER_REQUEST"},
        {UWM_EQ_BAND_GAIN, "UWM_EQ_BAND_GAIN"},
        {UWM_DEVICE_EQ_BANDS, "UWM_DEVICE_EQ_BANDS"},
        {UWM_DEVICE_EQ_ON, "UWM_DEVICE_EQ_ON"},
        {UWM_SHUTDOWN, "UWM_SHUTDOWN"},
        {UWM_SEARCH_ENTER, "UWM_SEARCH_ENTER"},
        {UWM_KEY_POLLED, "UWM_KEY_POLLED"},
        {UWM_KEY_DOWN, "UWM_KEY_DOWN"},
        {UWM_KEY_UP, "UWM_KEY_UP"},
        {UWM_GRAPH_DOUBLE_CLICK, "UWM_GRAPH_DOUBLE_CLICK"},
        {UWM_MINIMISE_ALL, "UWM_MINIMISE_ALL"},
        {UWM_SET_SOUND_DEVICE, "UWM_SET_SOUND_DEVICE"},
        {UWM_FORWARD_PLAY, "UWM_FORWARD_PLAY"},
        {UWM_REVERSE_PLAY, "UWM_REVERSE_PLAY"},
        {UWM_START_FORWARD_THREAD, "UWM_START_FORWARD_THREAD"},
        {UWM_START_REVERSE_THREAD, "UWM_START_REVERSE_THREAD"},
        {UWM_FORWARD_NOTIFY, "UWM_FORWARD_NOTIFY"},
        {UWM_REVERSE_NOTIFY, "UWM_REVERSE_NOTIFY"},
        {UWM_SCRATCH_DONE, "UWM_SCRATCH_DONE"},
        {UWM_LOAD_AND_PLAY, "UWM_LOAD_AND_PLAY"},
        {UWM_PRIME_DECK, "UWM_PRIME_DECK"},
        {UWM_RESTORE_ALL, "UWM_RESTORE_ALL"},
        {UWM_REFRESH_CD_DRIVES, "UWM_REFRESH_CD_DRIVES"},
        {UWM_LISTENER_POSITION, "UWM_LISTENER_POSITION"},
        {UWM_SET_REVERSE_POSITION, "UWM_SET_REVERSE_POSITION"},
        {UWM_HELP_BUTTONS, "UWM_HELP_BUTTONS"},
        {UWM_SET_FORWARD_POSITION, "UWM_SET_FORWARD_POSITION"},
        {UWM_METERS_THREAD, "UWM_METERS_THREAD"},
        {UWM_SET_REVERSE_FREQUENCY, "UWM_SET_REVERSE_FREQUENCY"},
        {UWM_SET_FORWARD_FREQUENCY, "UWM_SET_FORWARD_FREQUENCY"},
        {UWM_TITLE_BARS, "UWM_TITLE_BARS"},
        {UWM_PLAY_SCRATCH, "UWM_PLAY_SCRATCH"},
        {UWM_STOP_DECK, "UWM_STOP_DECK"},
        {UWM_STOP_REVERSE, "UWM_STOP_REVERSE"},
        {UWM_TICK, "UWM_TICK"},
        {UWM_DECK_INFO_UPDATE, "UWM_DECK_INFO_UPDATE"},
        {UWM_GRAPHS_UPDATE, "UWM_GRAPHS_UPDATE"},
        {UWM_TRACK_NUMBER, "UWM_TRACK_NUMBER"},
        {UWM_TRACK_INFO, "UWM_TRACK_INFO"},
        {UWM_LATENCY_QUARTER, "UWM_LATENCY_QUARTER"},
    };
    for (const NamedMessage& m : kNames) {
        if (m.id == msg)
            return m.name;
    }
    return "UWM_UNKNOWN";
}

WindowHandle RegisterReceiver(QObject* object, MessageReceiver* receiver) {
    TheDeliverer(object);
    std::lock_guard lock(g_registryMutex);
    WindowHandle h = g_nextHandle++;
    if (g_nextHandle == 0)
        g_nextHandle = 1;
    g_registry[h] = Entry{object, receiver, {}};
    return h;
}

void UnregisterReceiver(WindowHandle handle) {
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
    std::lock_guard lock(g_registryMutex);
    return handle != 0 && g_registry.count(handle) != 0;
}

LResult SendAppMessage(WindowHandle target, Uwm msg, WParam wParam, LParam lParam) {
    AssertNotAudioThread();
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
    for (int i = 0; i < maxRounds; ++i) {
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents(QEventLoop::AllEvents);
    }
}
