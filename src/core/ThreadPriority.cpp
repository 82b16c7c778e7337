#include "core/ThreadPriority.h"

#include <sched.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "core/Trace.h"

namespace {

std::atomic<bool> g_realtimeNoted{false};
std::atomic<bool> g_niceNoted{false};

void NoteOnce(std::atomic<bool>& noted, const char* what, int err) {
    if (!noted.exchange(true)) {
        // The usual case for a desktop user without real-time rights: a
        // trace, not a complaint.
        qCInfo(lcTrace, "%s is not permitted here (%s); threads keep their present priority.", what,
               std::strerror(err));
    }
}

bool RealtimeWanted() {
    const char* v = std::getenv("MIXORA_NO_REALTIME");
    return !(v && v[0] == '1');
}

}  // namespace

int NiceValueFor(ThreadPriority priority) {
    switch (priority) {
        case ThreadPriority::TimeCritical:
            return -10;
        case ThreadPriority::AboveNormal:
            return -5;
        case ThreadPriority::Normal:
            return 0;
        case ThreadPriority::BelowNormal:
            return 5;
        case ThreadPriority::Lowest:
            return 10;
    }
    return 0;
}

pid_t CurrentThreadId() {
    return static_cast<pid_t>(::syscall(SYS_gettid));
}

bool ApplyThreadPriority(pthread_t thread, pid_t tid, ThreadPriority priority) {
    if (priority == ThreadPriority::TimeCritical && RealtimeWanted()) {
        // A middle real-time level: above ordinary threads, below the sound
        // server's own (JACK runs its clients near 70-80).
        sched_param param{};
        param.sched_priority = 40;
        const int err = pthread_setschedparam(thread, SCHED_FIFO, &param);
        if (err == 0)
            return true;
        NoteOnce(g_realtimeNoted, "real-time scheduling (SCHED_FIFO)", err);
    } else {
        // Back to ordinary time sharing in case the thread was real-time.
        int policy = SCHED_OTHER;
        sched_param current{};
        if (pthread_getschedparam(thread, &policy, &current) == 0 && policy != SCHED_OTHER) {
            sched_param param{};
            pthread_setschedparam(thread, SCHED_OTHER, &param);
        }
    }
    if (setpriority(PRIO_PROCESS, static_cast<id_t>(tid), NiceValueFor(priority)) == 0) {
        return true;
    }
    NoteOnce(g_niceNoted, "changing a thread's nice value", errno);
    return false;
}

bool ApplyCurrentThreadPriority(ThreadPriority priority) {
    return ApplyThreadPriority(pthread_self(), CurrentThreadId(), priority);
}
