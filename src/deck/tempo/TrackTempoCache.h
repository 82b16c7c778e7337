// TrackTempoCache: the tempos already measured, so that a track is analysed
// once. An entry is keyed by the file's path, size and modification time:
// a file edited or replaced in place is measured again.
//
// The cache lives in one small text file ("TrackTempos.txt" in the data
// folder), one entry a line: bpm, size, modification seconds and
// nanoseconds, path, separated by tabs. It is read when the cache is made
// and written whole, atomically (temporary file and rename), after each new
// entry. At most kMaxEntries are kept; the oldest go first. A damaged line
// is skipped; a missing or unreadable file is an empty cache.
//
// Used by one thread at a time (the tempo worker).
#pragma once

#include <QString>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>

class TrackTempoCache {
  public:
    static constexpr int kMaxEntries = 4000;
    static constexpr const char* kFileName = "TrackTempos.txt";

    // `file`: where the cache is kept ("" keeps it in memory only).
    explicit TrackTempoCache(QString file);

    // What identifies a file's version: size in bytes, modification time.
    struct Key {
        std::string path;
        std::int64_t size = 0;
        std::int64_t mtimeSec = 0;
        std::int64_t mtimeNsec = 0;
        bool operator==(const Key&) const = default;
    };
    // The key of `path` as it is on disk now; nothing when it is not a
    // readable regular file.
    static std::optional<Key> KeyOf(const std::string& path);

    // The stored tempo (bpm; 0 = no steady beat), if any.
    std::optional<double> Find(const Key& key) const;
    // Stores (or replaces) and saves. False when the file could not be written
    // (the entry is kept in memory all the same).
    bool Store(const Key& key, double bpm);

    int Count() const { return static_cast<int>(entries_.size()); }
    QString FilePath() const { return file_; }

  private:
    struct Entry {
        Key key;
        double bpm = 0;
    };
    void Load();
    bool Save() const;

    QString file_;
    std::deque<Entry> entries_;  // oldest first
};
