#include "platform/media/RemovableDrive.h"

#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <climits>
#include <cstdlib>
#include <fstream>
#include <sstream>

namespace media {
namespace {

// Undoes the octal escapes of /proc/mounts ("\040" for a space).
std::string Unescape(const std::string& s) {
    std::string out;
    for (std::size_t i = 0; i < s.size(); ++i) {
        if (s[i] == '\\' && i + 3 < s.size() && s[i + 1] >= '0' && s[i + 1] <= '7') {
            out += char((s[i + 1] - '0') * 64 + (s[i + 2] - '0') * 8 + (s[i + 3] - '0'));
            i += 3;
        } else {
            out += s[i];
        }
    }
    return out;
}

bool UnderMount(const std::string& path, const std::string& mountPoint) {
    if (mountPoint == "/")
        return true;
    return path.compare(0, mountPoint.size(), mountPoint) == 0 &&
           (path.size() == mountPoint.size() || path[mountPoint.size()] == '/');
}

bool ReadsOne(const std::string& file) {
    std::ifstream in(file);
    int value = 0;
    return in >> value && value == 1;
}

}  // namespace

std::string MountTypeOf(const std::string& absolutePath, const std::string& mountsFile) {
    std::ifstream in(mountsFile);
    std::string line, best, bestType;
    bool found = false;
    while (std::getline(in, line)) {
        std::istringstream fields(line);
        std::string device, mountPoint, type;
        if (!(fields >> device >> mountPoint >> type))
            continue;
        mountPoint = Unescape(mountPoint);
        // The longest mount point over the path wins; a later equal one
        // (mounted on top) replaces an earlier.
        if (UnderMount(absolutePath, mountPoint) && (!found || mountPoint.size() >= best.size())) {
            best = mountPoint;
            bestType = type;
            found = true;
        }
    }
    return bestType;
}

bool IsPathOnRemovableDrive(const std::string& path, const DriveProbeRoots& roots) {
    if (path.empty() || path[0] != '/')
        return false;
    char resolved[PATH_MAX];
    if (!realpath(path.c_str(), resolved))
        return false;

    const std::string type = MountTypeOf(resolved, roots.mountsFile);
    if (type == "iso9660" || type == "udf")
        return true;

    struct stat st {};
    if (stat(resolved, &st) != 0)
        return false;
    // /sys/dev/block/MAJ:MIN is the partition or the whole disk; a
    // partition's `removable` is on its parent disk.
    const std::string dev = roots.sysRoot + "/dev/block/" + std::to_string(major(st.st_dev)) + ":" +
                            std::to_string(minor(st.st_dev));
    return ReadsOne(dev + "/removable") || ReadsOne(dev + "/../removable");
}

}  // namespace media
