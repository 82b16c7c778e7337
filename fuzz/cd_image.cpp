// Fuzz target: any bytes as a CUE/BIN disc image through the CD layer. The
// input up to its first zero byte is the sheet ("image.cue"), the rest the
// data file ("image.bin"). The sheet's files and tracks are listed, the image is
// opened as a drive, its table of contents read and two sectors read at the
// start of every track, as a deck does. Whatever libcdio accepts must give a
// table of contents that rises and stays within a CD's length.
#include <cdio/logging.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "platform/cd/DiscImageLimits.h"
#include "platform/cd/LibCdioBackend.h"

namespace {

void Check(bool condition) {
    if (!condition)
        __builtin_trap();
}

void Quiet(cdio_log_level_t, const char*) {}

// A folder of this process's own, in memory when /dev/shm exists, removed
// with its two files when the fuzzer ends (a run cut short leaves it).
std::string ScratchDir() {
    static std::string templ = access("/dev/shm", W_OK) == 0 ? "/dev/shm/mixora-fuzz-cd-XXXXXX"
                                                             : "/tmp/mixora-fuzz-cd-XXXXXX";
    if (!::mkdtemp(templ.data()))
        return "/tmp";
    std::atexit([] {
        std::remove((templ + "/image.cue").c_str());
        std::remove((templ + "/image.bin").c_str());
        ::rmdir(templ.c_str());
    });
    return templ;
}

bool WriteFile(const std::string& path, const std::uint8_t* data, std::size_t size) {
    FILE* f = std::fopen(path.c_str(), "wb");
    if (!f)
        return false;
    const bool ok = std::fwrite(data, 1, size, f) == size;
    return std::fclose(f) == 0 && ok;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::string dir = [] {
        cdio_log_set_handler(Quiet);
        return ScratchDir();
    }();
    const auto* zero = static_cast<const std::uint8_t*>(std::memchr(data, 0, size));
    const std::size_t sheetSize = zero ? std::size_t(zero - data) : size;
    const std::size_t binSize = zero ? size - sheetSize - 1 : 0;

    const cd::SheetContents sheet =
        cd::ReadSheet(std::string_view(reinterpret_cast<const char*>(data), sheetSize));
    Check(sheet.files.size() <= cd::kMaxSheetFiles + 1);

    const std::string cue = dir + "/image.cue";
    if (!WriteFile(cue, data, sheetSize) || !WriteFile(dir + "/image.bin", zero + 1, binSize))
        return 0;

    cd::LibCdioBackend backend;
    std::unique_ptr<cd::CdDrive> drive = backend.Open({"image", cue});
    if (!drive)
        return 0;
    cd::CdToc toc;
    if (!drive->ReadToc(toc))
        return 0;
    Check(toc.first <= toc.last);
    Check(toc.entries.size() == std::size_t(toc.last - toc.first + 2));
    std::vector<std::uint8_t> sectors(2 * cd::kSectorBytes);
    for (std::size_t i = 0; i + 1 < toc.entries.size(); ++i) {
        Check(toc.entries[i].start <= toc.entries[i + 1].start);
        Check(toc.entries[i + 1].start <= cd::kMaxDiscSectors);
        drive->ReadAudio(toc.entries[i].start, 2, sectors.data(), false);
    }
    return 0;
}
