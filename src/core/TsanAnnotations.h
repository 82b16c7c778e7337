// Hand-over points ThreadSanitizer cannot see by itself. Qt's event queue is
// not built with ThreadSanitizer, so an event made on one thread and read on
// another looks unsynchronised although Qt's queue lock orders the two. The
// poster releases the event's address before queueing it; the receiver
// acquires it before reading. Both are no-ops in ordinary builds.
#pragma once

#if defined(__SANITIZE_THREAD__)
extern "C" void __tsan_acquire(void* addr);
extern "C" void __tsan_release(void* addr);
#define MIXORA_HANDOVER_RELEASE(p) __tsan_release(static_cast<void*>(p))
#define MIXORA_HANDOVER_ACQUIRE(p) __tsan_acquire(static_cast<void*>(p))
#else
#define MIXORA_HANDOVER_RELEASE(p) ((void)(p))
#define MIXORA_HANDOVER_ACQUIRE(p) ((void)(p))
#endif
