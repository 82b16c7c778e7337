#include "playlist/TagTitle.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "playlist/BoundedTagFile.h"
#include "playlist/TextEncoding.h"

namespace {

// ID3v1: a 128-byte trailer "TAG", title[30], artist[30], album[30], year[4],
// comment[30], genre[1].
constexpr std::size_t kId3v1Size = 128;
constexpr std::size_t kId3v1TitleSize = 30;

// Regular files longer than an ID3v1 tag: anything shorter holds no audio.
bool IsTaggableFile(const std::string& path) {
    struct stat st {};
    return ::stat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode) &&
           st.st_size > static_cast<off_t>(kId3v1Size);
}

}  // namespace

bool ReadId3v1Title(const std::string& path, std::string* title) {
    int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0)
        return false;
    struct stat st {};
    char tag[kId3v1Size];
    bool ok =
        ::fstat(fd, &st) == 0 && S_ISREG(st.st_mode) && st.st_size > static_cast<off_t>(kId3v1Size);
    if (ok) {
        ssize_t n;
        do {
            n = ::pread(fd, tag, kId3v1Size, st.st_size - static_cast<off_t>(kId3v1Size));
        } while (n < 0 && errno == EINTR);
        ok = n == static_cast<ssize_t>(kId3v1Size) && tag[0] == 'T' && tag[1] == 'A' &&
             tag[2] == 'G';
    }
    ::close(fd);
    if (!ok)
        return false;
    std::size_t len = 0;
    while (len < kId3v1TitleSize && tag[3 + len] != '\0')
        ++len;
    while (len > 0 && tag[3 + len - 1] == ' ')
        --len;
    // Decoded, a title of only a byte order mark is empty too.
    std::string text = TextAsUtf8(std::string_view(tag + 3, len));
    if (text.empty())
        return false;
    *title = std::move(text);
    return true;
}

bool ReadTagLibTitle(const std::string& path, std::string* title) {
    if (!IsTaggableFile(path))
        return false;
    std::string text;
    if (!ReadBoundedTagTitle(path, &text))
        return false;
    while (!text.empty() && (text.back() == ' ' || text.back() == '\0'))
        text.pop_back();
    if (text.empty())
        return false;
    *title = std::move(text);
    return true;
}

bool ReadTagTitle(const std::string& path, std::string* title) {
    return ReadId3v1Title(path, title) || ReadTagLibTitle(path, title);
}
