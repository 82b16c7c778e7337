#include "playlist/ListFileIo.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <vector>

namespace {

bool WriteAll(int fd, std::string_view bytes) {
    while (!bytes.empty()) {
        ssize_t n = ::write(fd, bytes.data(), bytes.size());
        if (n < 0) {
            if (errno == EINTR)
                continue;
            return false;
        }
        bytes.remove_prefix(static_cast<std::size_t>(n));
    }
    return true;
}

std::string FolderPart(const std::string& path) {
    std::size_t slash = path.rfind('/');
    if (slash == std::string::npos)
        return ".";
    if (slash == 0)
        return "/";
    return path.substr(0, slash);
}

// Creates a new, empty temporary file next to `path` with mode 0666 less the
// umask (applied by the kernel); -1 on failure.
int CreateTempBeside(const std::string& path, std::string* temp) {
    static std::atomic<unsigned> counter{0};
    for (int attempt = 0; attempt < 100; ++attempt) {
        *temp = path + ".saving-" + std::to_string(::getpid()) + "-" +
                std::to_string(counter.fetch_add(1));
        int fd = ::open(temp->c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (fd >= 0 || errno != EEXIST)
            return fd;
    }
    return -1;
}

}  // namespace

ReadStatus ReadFileCapped(const std::string& path, std::size_t maxBytes, std::string* bytes,
                          bool* truncated) {
    bytes->clear();
    *truncated = false;
    // O_NONBLOCK: opening a FIFO must not wait for a writer; it is refused below.
    int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0)
        return ReadStatus::CannotOpen;
    struct stat st {};
    if (::fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
        ::close(fd);
        return ReadStatus::NotARegularFile;
    }
    std::size_t expected = static_cast<std::size_t>(st.st_size);
    bytes->reserve(expected < maxBytes ? expected : maxBytes);
    std::vector<char> chunk(65536);
    ReadStatus status = ReadStatus::Ok;
    while (bytes->size() < maxBytes) {
        std::size_t want = std::min(chunk.size(), maxBytes - bytes->size());
        ssize_t n = ::read(fd, chunk.data(), want);
        if (n < 0) {
            if (errno == EINTR)
                continue;
            status = ReadStatus::ReadError;
            break;
        }
        if (n == 0)
            break;
        bytes->append(chunk.data(), static_cast<std::size_t>(n));
    }
    if (status == ReadStatus::Ok && bytes->size() >= maxBytes) {
        char probe;
        ssize_t n;
        do {
            n = ::read(fd, &probe, 1);
        } while (n < 0 && errno == EINTR);
        *truncated = n > 0;
    }
    ::close(fd);
    return status;
}

bool WriteFileAtomically(const std::string& path, std::string_view bytes) {
    if (path.empty() || path.back() == '/')
        return false;
    std::string temp;
    int fd = CreateTempBeside(path, &temp);
    if (fd < 0)
        return false;
    bool ok = WriteAll(fd, bytes) && ::fsync(fd) == 0;
    ok = (::close(fd) == 0) && ok;
    if (ok)
        ok = ::rename(temp.c_str(), path.c_str()) == 0;
    if (!ok) {
        ::unlink(temp.c_str());
        return false;
    }
    // Make the rename itself durable; a folder that cannot be opened or synced
    // still holds the complete new file.
    int dir = ::open(FolderPart(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (dir >= 0) {
        ::fsync(dir);
        ::close(dir);
    }
    return true;
}
