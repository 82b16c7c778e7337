#include "deck/tempo/TrackTempoCache.h"

#include <sys/stat.h>

#include <QByteArray>
#include <QList>
#include <algorithm>

#include "settings/AtomicFile.h"

namespace {

// A cache of kMaxEntries lines of a few hundred bytes stays far below this.
constexpr qint64 kMaxFileBytes = 8 * 1024 * 1024;

}  // namespace

TrackTempoCache::TrackTempoCache(QString file) : file_(std::move(file)) {
    Load();
}

std::optional<TrackTempoCache::Key> TrackTempoCache::KeyOf(const std::string& path) {
    struct stat st {};
    if (path.empty() || ::stat(path.c_str(), &st) != 0 || !S_ISREG(st.st_mode))
        return std::nullopt;
    return Key{path, static_cast<std::int64_t>(st.st_size),
               static_cast<std::int64_t>(st.st_mtim.tv_sec),
               static_cast<std::int64_t>(st.st_mtim.tv_nsec)};
}

std::optional<double> TrackTempoCache::Find(const Key& key) const {
    for (const Entry& e : entries_)
        if (e.key == key)
            return e.bpm;
    return std::nullopt;
}

bool TrackTempoCache::Store(const Key& key, double bpm) {
    auto same = [&key](const Entry& e) { return e.key.path == key.path; };
    entries_.erase(std::remove_if(entries_.begin(), entries_.end(), same), entries_.end());
    entries_.push_back({key, bpm});
    while (static_cast<int>(entries_.size()) > kMaxEntries)
        entries_.pop_front();
    return Save();
}

void TrackTempoCache::Load() {
    if (file_.isEmpty())
        return;
    QByteArray bytes;
    FileIdentity identity;
    QString error;
    if (ReadWholeFile(file_, kMaxFileBytes, &bytes, &identity, &error) != FileStatus::Ok)
        return;
    for (const QByteArray& line : bytes.split('\n')) {
        const QList<QByteArray> f = line.split('\t');
        if (f.size() != 5 || f[4].isEmpty())
            continue;
        bool ok[4] = {};
        Entry e;
        e.bpm = f[0].toDouble(&ok[0]);
        e.key.size = f[1].toLongLong(&ok[1]);
        e.key.mtimeSec = f[2].toLongLong(&ok[2]);
        e.key.mtimeNsec = f[3].toLongLong(&ok[3]);
        e.key.path = f[4].toStdString();
        if (ok[0] && ok[1] && ok[2] && ok[3] && e.bpm >= 0 && e.bpm < 1000)
            entries_.push_back(std::move(e));
    }
    while (static_cast<int>(entries_.size()) > kMaxEntries)
        entries_.pop_front();
}

bool TrackTempoCache::Save() const {
    if (file_.isEmpty())
        return true;
    QByteArray out;
    for (const Entry& e : entries_) {
        // A path with a tab or line break cannot be written as a line: that
        // entry stays in memory only.
        if (e.key.path.find_first_of("\t\n") != std::string::npos)
            continue;
        out += QByteArray::number(e.bpm, 'f', 3) + '\t' + QByteArray::number(e.key.size) + '\t' +
               QByteArray::number(e.key.mtimeSec) + '\t' + QByteArray::number(e.key.mtimeNsec) +
               '\t' + QByteArray::fromStdString(e.key.path) + '\n';
    }
    QString error;
    return WriteFileAtomically(file_, out, nullptr, &error);
}
