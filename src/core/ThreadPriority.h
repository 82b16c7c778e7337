// Thread priorities of the worker threads, mapped onto Linux scheduling.
//
// TimeCritical asks for SCHED_FIFO (pthread_setschedparam); the other levels
// use the thread's nice value (setpriority on its thread id). When the
// process may not change a priority (no CAP_SYS_NICE, RLIMIT_RTPRIO 0) the
// call is a no-op and a note goes to the log once. $MIXORA_NO_REALTIME=1
// skips the SCHED_FIFO attempt (TimeCritical then uses the strongest nice).
#pragma once

#include <pthread.h>
#include <sys/types.h>

// The levels of the worker thread table, with their classic numbers.
enum class ThreadPriority : int {
    Lowest = -2,
    BelowNormal = -1,
    Normal = 0,
    AboveNormal = 1,
    TimeCritical = 15,
};

// The nice value used for a level when it is not run as SCHED_FIFO:
// TimeCritical -10, AboveNormal -5, Normal 0, BelowNormal 5, Lowest 10.
int NiceValueFor(ThreadPriority priority);

// Applies `priority` to the thread `thread` whose kernel id is `tid`.
// True when the system accepted it.
bool ApplyThreadPriority(pthread_t thread, pid_t tid, ThreadPriority priority);

// The same for the calling thread.
bool ApplyCurrentThreadPriority(ThreadPriority priority);

// The kernel id of the calling thread.
pid_t CurrentThreadId();
