// Fuzz target: any bytes as an audio file. The input is written to a
// temporary file, opened with the file decoder and read block by block to
// its end (with a rewind and a seek on the way), as a deck would.
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "sources/CRynFileDecoder.h"

namespace {

// Blocks read at most per input (1.7 s at 44100 Hz): more than any seed
// holds, short enough to keep the fuzzer fast on inputs that claim hours of
// sound.
constexpr int kMaxBlocks = 64;

// The input's file, in memory when /dev/shm exists.
const std::string& TempPath() {
    static const std::string path = [] {
        const char* dir = std::getenv("TMPDIR");
        const std::string base =
            access("/dev/shm", W_OK) == 0 ? "/dev/shm" : (dir && *dir ? dir : "/tmp");
        return base + "/mixora_fuzz_media_" + std::to_string(getpid());
    }();
    return path;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FILE* f = std::fopen(TempPath().c_str(), "wb");
    if (!f)
        return 0;
    std::fwrite(data, 1, size, f);
    std::fclose(f);

    static CRynFileDecoder decoder;  // one decoder, reopened, as a deck's is
    if (decoder.Open(TempPath())) {
        std::uint8_t block[kBlockBytes];
        int bytes = 0;
        bool end = false;
        (void)decoder.DurationSeconds();
        for (int i = 0; i < kMaxBlocks; ++i) {
            if (decoder.ReadBlock(block, bytes, end) != CRynFileDecoder::kOk || end)
                break;
            if (i == 3)
                decoder.Rewind(2);
            if (i == 6)
                decoder.SeekFraction(0.5f);
        }
        decoder.Close();
    }
    std::remove(TempPath().c_str());
    return 0;
}
