// Whole-file reads and crash-safe whole-file writes for the settings store.
//
// WriteFileAtomically writes a temporary file beside the target
// ("<target>.tmp.<pid>.<n>"), flushes it to disk (fsync) and renames it over
// the target. Readers therefore see either the old file or the new one, never
// a mix or an empty file, even when the process is killed or the machine
// loses power half-way (a power cut may bring back the previous version). A killed writer can leave
// its temporary behind; RemoveStaleTemporaries clears those of processes that are gone.
#pragma once

#include <QByteArray>
#include <QString>
#include <cstdint>

// What identifies one version of a file on disk: a rename gives a new inode,
// an edit in place a new size or time. Compared to see whether a file changed.
struct FileIdentity {
    bool exists = false;
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::int64_t size = 0;
    std::int64_t mtimeSec = 0;
    std::int64_t mtimeNsec = 0;
    bool operator==(const FileIdentity&) const = default;
};

enum class FileStatus { Ok, Missing, Failed };

// The identity of `path` now. A missing file gives exists = false.
FileIdentity StatFile(const QString& path);

// Reads the whole file, at most maxBytes (more gives Failed with `error`
// "too large"). Missing: the file does not exist.
FileStatus ReadWholeFile(const QString& path, qint64 maxBytes, QByteArray* bytes,
                         FileIdentity* identity, QString* error);

// Replaces `path` with `bytes` atomically and durably. On success `written`
// (if given) is the new file's identity; on failure the target is untouched
// and `error` says why.
bool WriteFileAtomically(const QString& path, const QByteArray& bytes, FileIdentity* written,
                         QString* error);

// Deletes "<path>.tmp.<pid>.*" files whose process no longer runs.
void RemoveStaleTemporaries(const QString& path);
