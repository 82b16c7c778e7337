// The in-tree CDDB client: answers every lookup with one fixed answer, after
// an optional delay, and counts the lookups. For tests and for running with
// no network.
#pragma once

#include <atomic>
#include <chrono>
#include <mutex>
#include <thread>

#include "platform/cd/CddbClient.h"

namespace cd {

class FixedCddbClient : public CddbClient {
  public:
    explicit FixedCddbClient(CddbAnswer answer = {}, int delayMs = 0)
        : answer_(std::move(answer)), delayMs_(delayMs) {}

    CddbAnswer Lookup(const CdToc& toc, const CddbServer& server) override {
        (void)server;
        lookups_.fetch_add(1);
        if (delayMs_ > 0)
            std::this_thread::sleep_for(std::chrono::milliseconds(delayMs_));
        std::lock_guard<std::mutex> hold(lock_);
        lastDiscId_ = CddbDiscId(toc);
        return answer_;
    }
    int Lookups() const { return lookups_.load(); }
    std::string LastDiscId() {
        std::lock_guard<std::mutex> hold(lock_);
        return lastDiscId_;
    }

  private:
    CddbAnswer answer_;
    int delayMs_;
    std::atomic<int> lookups_{0};
    std::mutex lock_;
    std::string lastDiscId_;
};

}  // namespace cd
