// Which kind of thread is running: the audio callback must never block or
// allocate.
//
// The sound device's render thread marks itself once; every entry point that
// takes a lock, waits, allocates or starts or joins a thread calls
// AssertNotAudioThread with its own name first. With MIXORA_RT_CHECKS (every
// build that runs tests) a call from a marked thread prints
// "Mixora: <entry point> called from the audio callback" on stderr and
// aborts; without it the check compiles to nothing.
#pragma once

// Marks the calling thread as the sound device's real-time callback thread.
void MarkAudioThread();
bool IsAudioThread();

#if defined(MIXORA_RT_CHECKS) && MIXORA_RT_CHECKS
// Aborts when called on a marked thread. Itself lock- and allocation-free.
// `entryPoint` is a string literal naming the caller ("SyncEvent::Wait").
void AssertNotAudioThread(const char* entryPoint);
#else
inline void AssertNotAudioThread(const char*) {}
#endif
