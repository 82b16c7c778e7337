// Names and times of a recording of the mix.
//
// A recording is named after the moment it starts, in the user's music
// folder: "Mixora 2026-11-24 21-05-33.wav" (no colons, so the name is valid
// on every file system the folder may sit on). A name already taken gets
// " (2)", " (3)" … before the extension.
#pragma once

#include <QDateTime>
#include <QString>
#include <cstdint>
#include <functional>

namespace recording {

// "Mixora yyyy-MM-dd HH-mm-ss.<extension>".
QString FileName(const QDateTime& start, const QString& extension);

// `folder`/FileName, or the first numbered variant for which `taken` is
// false (at most 999 tries; then the last one).
QString FreePath(const QString& folder, const QDateTime& start, const QString& extension,
                 const std::function<bool(const QString&)>& taken);

// The folder recordings go to: $MIXORA_MUSIC_DIR when set, else the user's
// music folder (QStandardPaths::MusicLocation), else the home folder.
QString Folder();

// Running time of `frames` frames at `rate` Hz as "H:MM:SS" (whole seconds,
// rounded down; hours grow past 9 as needed).
QString ElapsedText(std::uint64_t frames, int rate);

}  // namespace recording
