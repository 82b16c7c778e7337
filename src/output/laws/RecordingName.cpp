#include "output/laws/RecordingName.h"

#include <QDir>
#include <QStandardPaths>

namespace recording {

namespace {
QString Stem(const QDateTime& start) {
    return QStringLiteral("Mixora ") + start.toString(QStringLiteral("yyyy-MM-dd HH-mm-ss"));
}
}  // namespace

QString FileName(const QDateTime& start, const QString& extension) {
    return Stem(start) + QLatin1Char('.') + extension;
}

QString FreePath(const QString& folder, const QDateTime& start, const QString& extension,
                 const std::function<bool(const QString&)>& taken) {
    const QString stem = QDir(folder).filePath(Stem(start));
    QString path = stem + QLatin1Char('.') + extension;
    for (int n = 2; n <= 999 && taken(path); ++n)
        path = QStringLiteral("%1 (%2).%3").arg(stem).arg(n).arg(extension);
    return path;
}

QString Folder() {
    const QString forced = qEnvironmentVariable("MIXORA_MUSIC_DIR");
    if (!forced.isEmpty())
        return forced;
    const QString music = QStandardPaths::writableLocation(QStandardPaths::MusicLocation);
    return music.isEmpty() ? QDir::homePath() : music;
}

QString ElapsedText(std::uint64_t frames, int rate) {
    const std::uint64_t seconds = rate > 0 ? frames / static_cast<std::uint64_t>(rate) : 0;
    return QStringLiteral("%1:%2:%3")
        .arg(seconds / 3600)
        .arg((seconds / 60) % 60, 2, 10, QLatin1Char('0'))
        .arg(seconds % 60, 2, 10, QLatin1Char('0'));
}

}  // namespace recording
