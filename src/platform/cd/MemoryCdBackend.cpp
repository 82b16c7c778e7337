#include "platform/cd/MemoryCdBackend.h"

#include <cstring>

namespace cd {

class MemoryCdDrive : public CdDrive {
  public:
    MemoryCdDrive(MemoryCdBackend& owner, const MemoryDisc& disc) : owner_(owner), disc_(disc) {}

    bool ReadToc(CdToc& toc) override {
        if (!disc_.present || disc_.toc.entries.empty())
            return false;
        toc = disc_.toc;
        return true;
    }

    int ReadAudio(std::int32_t start, int frames, std::uint8_t* dest,
                  bool errorCorrection) override {
        ++owner_.attempts_;
        if (errorCorrection)
            ++owner_.correctedAttempts_;
        int fail = owner_.failNext_.load();
        while (fail > 0 && !owner_.failNext_.compare_exchange_weak(fail, fail - 1)) {
        }
        if (fail > 0 || !disc_.present || start < 0 || frames <= 0)
            return 0;
        std::size_t begin = static_cast<std::size_t>(start) * kSectorBytes;
        std::size_t bytes = static_cast<std::size_t>(frames) * kSectorBytes;
        if (begin + bytes > disc_.sectors.size())
            return 0;
        std::memcpy(dest, disc_.sectors.data() + begin, bytes);
        return frames;
    }

  private:
    MemoryCdBackend& owner_;
    const MemoryDisc& disc_;
};

std::vector<CdDriveInfo> MemoryCdBackend::ListDrives() {
    std::vector<CdDriveInfo> out;
    for (const MemoryDisc& d : discs_)
        if (out.size() < kMaxDrives)
            out.push_back(d.info);
    return out;
}

std::unique_ptr<CdDrive> MemoryCdBackend::Open(const CdDriveInfo& drive) {
    for (const MemoryDisc& d : discs_)
        if (d.info.device == drive.device)
            return std::make_unique<MemoryCdDrive>(*this, d);
    return nullptr;
}

}  // namespace cd
