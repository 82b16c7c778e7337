// The in-tree CD backend: discs held in memory, for tests and for running
// without any CD access. With no discs it is the null backend (no drives).
//
// It can be told to fail the next n reads, as a scratched disc or a drive
// that is spinning up would, and counts every read attempt.
#pragma once

#include <atomic>

#include "platform/cd/CdBackend.h"

namespace cd {

struct MemoryDisc {
    CdDriveInfo info;
    CdToc toc;
    bool present = true;                // false: the drive is empty (no TOC)
    std::vector<std::uint8_t> sectors;  // 2352 bytes per address, from address 0
};

class MemoryCdBackend : public CdBackend {
  public:
    MemoryCdBackend() = default;
    explicit MemoryCdBackend(std::vector<MemoryDisc> discs) : discs_(std::move(discs)) {}

    std::vector<CdDriveInfo> ListDrives() override;
    std::unique_ptr<CdDrive> Open(const CdDriveInfo& drive) override;

    // The next `count` reads on any drive fail.
    void FailNextReads(int count) { failNext_ = count; }
    // Read attempts so far (failed ones included), and those with error correction.
    int ReadAttempts() const { return attempts_; }
    int CorrectedReadAttempts() const { return correctedAttempts_; }

  private:
    friend class MemoryCdDrive;
    std::vector<MemoryDisc> discs_;
    std::atomic<int> failNext_{0};
    std::atomic<int> attempts_{0};
    std::atomic<int> correctedAttempts_{0};
};

}  // namespace cd
