// Whether a file lies on a removable or optical drive, so that background
// work (the play lists' duration probes) can leave such a drive alone while
// a deck plays from it.
//
// A file counts as removable when the filesystem mounted over it is an
// optical one (iso9660, udf) or when the block device holding it, or the
// disk that partition belongs to, has "1" in its sysfs `removable`
// attribute. Relative or empty names, missing files, network and virtual
// filesystems count as fixed.
#pragma once

#include <string>

namespace media {

struct DriveProbeRoots {
    std::string mountsFile = "/proc/self/mounts";  // the mount table to read
    std::string sysRoot = "/sys";                  // where dev/block/MAJ:MIN lives
};

bool IsPathOnRemovableDrive(const std::string& path, const DriveProbeRoots& roots = {});

// The filesystem type of the mount holding an absolute path ("ext4",
// "iso9660"); empty when the table has no entry for it.
std::string MountTypeOf(const std::string& absolutePath, const std::string& mountsFile);

}  // namespace media
