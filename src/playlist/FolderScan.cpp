#include "playlist/FolderScan.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <set>
#include <utility>
#include <vector>

#include "playlist/AudioFileTypes.h"
#include "playlist/PlayListPaths.h"

namespace {

using FolderId = std::pair<dev_t, ino_t>;

struct Scan {
    std::deque<std::string>* pending;
    std::size_t maxFiles;
    FolderScanResult result;
    std::set<FolderId> entered;
};

// The visible names of a folder, sorted; false when it cannot be listed.
bool ListNames(const std::string& folder, std::vector<std::string>* names) {
    DIR* dir = ::opendir(folder.c_str());
    if (dir == nullptr)
        return false;
    while (dirent* e = ::readdir(dir)) {
        if (e->d_name[0] == '\0' || e->d_name[0] == '.')
            continue;
        names->emplace_back(e->d_name);
    }
    ::closedir(dir);
    std::sort(names->begin(), names->end());
    return true;
}

std::string Joined(const std::string& folder, const std::string& name) {
    return folder.back() == '/' ? folder + name : folder + "/" + name;
}

// Scans one folder; false once the file bound is reached.
bool ScanFolder(Scan* scan, const std::string& folder, int depth) {
    struct stat st {};
    if (::stat(folder.c_str(), &st) != 0 || !S_ISDIR(st.st_mode))
        return true;
    if (!scan->entered.insert({st.st_dev, st.st_ino}).second)
        return true;  // seen: a link loop
    std::vector<std::string> names;
    if (!ListNames(folder, &names))
        return true;
    if (depth == 0)
        scan->result.opened = true;
    for (const std::string& name : names) {
        std::string path = Joined(folder, name);
        if (::stat(path.c_str(), &st) != 0)
            continue;  // dangling link, vanished file
        if (S_ISDIR(st.st_mode)) {
            if (depth + 1 < kMaxScanDepth && !ScanFolder(scan, path, depth + 1))
                return false;
        } else if (S_ISREG(st.st_mode) && ScanTakesExtension(LowerAscii(ExtensionOf(name)))) {
            if (scan->result.added >= scan->maxFiles) {
                scan->result.truncated = true;
                return false;
            }
            scan->pending->push_back(std::move(path));
            ++scan->result.added;
        }
    }
    return true;
}

}  // namespace

FolderScanResult ScanAudioFolder(const std::string& folder, std::deque<std::string>* pending,
                                 std::size_t maxFiles) {
    Scan scan{pending, maxFiles, {}, {}};
    if (!folder.empty())
        ScanFolder(&scan, folder, 0);
    return scan.result;
}
