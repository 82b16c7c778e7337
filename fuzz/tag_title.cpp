// Fuzz target: any bytes as a tagged audio file whose title the play list
// reads (ID3v1, then TagLib: ID3v2, Vorbis comments, RIFF INFO, MP4, ASF, APE
// ...). The first byte picks the file's extension, which decides how TagLib
// opens it; the rest is the file. Runs under the fuzzer's memory limits, so
// a tag that makes the reader allocate without bound is a finding.
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "playlist/TagTitle.h"

namespace {

constexpr const char* kExtensions[] = {".mp3", ".flac", ".ogg",  ".wav", ".aiff", ".m4a",
                                       ".wma", ".ape",  ".opus", ".wv",  ".mpc",  ".tta"};
constexpr std::size_t kExtensionCount = sizeof(kExtensions) / sizeof(kExtensions[0]);

// A scratch file name in memory when /dev/shm exists.
std::string ScratchBase() {
    const char* dir = std::getenv("TMPDIR");
    std::string base = access("/dev/shm", W_OK) == 0 ? "/dev/shm" : (dir && *dir ? dir : "/tmp");
    return base + "/mixora_fuzz_tag_" + std::to_string(getpid());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 1)
        return 0;
    static const std::string base = ScratchBase();
    const std::string path = base + kExtensions[data[0] % kExtensionCount];
    FILE* f = std::fopen(path.c_str(), "wb");
    if (!f)
        return 0;
    std::fwrite(data + 1, 1, size - 1, f);
    std::fclose(f);
    std::string title;
    if (ReadTagTitle(path, &title) && title.empty())
        std::abort();  // a title read is never empty
    std::remove(path.c_str());
    return 0;
}
