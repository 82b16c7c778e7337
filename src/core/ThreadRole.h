// Which kind of thread is running: the audio callback must never block.
#pragma once

// Marks the calling thread as the sound device's real-time callback thread.
void MarkAudioThread();
bool IsAudioThread();

// Debug builds abort when a blocking primitive (event wait, message send,
// mutex-guarded call) is entered from the audio callback.
void AssertNotAudioThread();
