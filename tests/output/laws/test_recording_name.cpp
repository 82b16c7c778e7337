// Names and running times of recordings: the start's date and time without
// colons, a number before the extension when the name is taken, and the
// time in hours, minutes and seconds of sound.
#include <gtest/gtest.h>

#include <QSet>

#include "output/laws/RecordingName.h"

TEST(RecordingName, NamedByTheStartAndNumberedWhenTaken) {
    const QDateTime start(QDate(2026, 11, 24), QTime(21, 5, 3));
    EXPECT_EQ(recording::FileName(start, "wav"), "Mixora 2026-11-24 21-05-03.wav");
    QSet<QString> taken;
    const auto isTaken = [&](const QString& p) { return taken.contains(p); };
    EXPECT_EQ(recording::FreePath("/music", start, "flac", isTaken),
              "/music/Mixora 2026-11-24 21-05-03.flac");
    taken << "/music/Mixora 2026-11-24 21-05-03.flac"
          << "/music/Mixora 2026-11-24 21-05-03 (2).flac";
    EXPECT_EQ(recording::FreePath("/music", start, "flac", isTaken),
              "/music/Mixora 2026-11-24 21-05-03 (3).flac");
    // The other type's name is free.
    EXPECT_EQ(recording::FreePath("/music", start, "wav", isTaken),
              "/music/Mixora 2026-11-24 21-05-03.wav");
}

TEST(RecordingName, ElapsedTimeInWholeSecondsOfSound) {
    EXPECT_EQ(recording::ElapsedText(0, 44100), "0:00:00");
    EXPECT_EQ(recording::ElapsedText(44099, 44100), "0:00:00");
    EXPECT_EQ(recording::ElapsedText(2250ull * 1176, 44100), "0:01:00");
    EXPECT_EQ(recording::ElapsedText(44100ull * 3725, 44100), "1:02:05");
    EXPECT_EQ(recording::ElapsedText(22050ull * 36000, 22050), "10:00:00");
    EXPECT_EQ(recording::ElapsedText(1000, 0), "0:00:00");
}

TEST(RecordingName, TheFolderComesFromTheEnvironmentFirst) {
    qputenv("MIXORA_MUSIC_DIR", "/tmp/mixora-music");
    EXPECT_EQ(recording::Folder(), "/tmp/mixora-music");
    qunsetenv("MIXORA_MUSIC_DIR");
    EXPECT_FALSE(recording::Folder().isEmpty());
}
