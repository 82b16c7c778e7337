#include "sources/CdClock.h"

#include <chrono>
#include <thread>

double SystemCdClock::NowSeconds() {
    using namespace std::chrono;
    return duration<double>(steady_clock::now().time_since_epoch()).count();
}

void SystemCdClock::SleepMs(int milliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}
