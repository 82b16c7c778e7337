#include "app/KeySource.h"

void StubKeySource::Press(KeyCode key) {
    std::lock_guard lock(mutex_);
    held_.insert(key);
}

void StubKeySource::Release(KeyCode key) {
    std::lock_guard lock(mutex_);
    held_.erase(key);
}

void StubKeySource::SetCtrl(bool down) {
    std::lock_guard lock(mutex_);
    ctrl_ = down;
}

void StubKeySource::SetShift(bool down) {
    std::lock_guard lock(mutex_);
    shift_ = down;
}

int StubKeySource::PollCount() const {
    std::lock_guard lock(mutex_);
    return polls_;
}

std::vector<KeyCode> StubKeySource::Poll() {
    std::lock_guard lock(mutex_);
    ++polls_;
    std::vector<KeyCode> down;
    for (KeyCode k : kPollTable) {
        if (held_.count(k))
            down.push_back(k);
    }
    return down;
}

bool StubKeySource::IsCtrlDown() {
    std::lock_guard lock(mutex_);
    return ctrl_;
}

bool StubKeySource::IsShiftDown() {
    std::lock_guard lock(mutex_);
    return shift_;
}
