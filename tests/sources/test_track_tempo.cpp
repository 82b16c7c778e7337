// Whole files measured through the file decoder and aubio's beat tracker:
// click tracks and a drum pattern read within 0.5 BPM, a fast pattern the
// tracker hears at half speed is put back in its octave while a half-time
// groove keeps its own, and files that cannot be read give no tempo.
#include <gtest/gtest.h>

#include <QFile>
#include <atomic>

#include "TempoFixtures.h"
#include "TestSupport.h"
#include "platform/tempo/TempoEstimator.h"
#include "sources/TrackTempo.h"

namespace {

TrackTempoResult Measure(const QString& path) {
    auto estimator = tempo::CreateTempoEstimator();
    return MeasureTrackTempo(path.toStdString(), *estimator);
}

}  // namespace

TEST(TrackTempo, ClickTracksAndDrumPatternsReadTheirTempo) {
    struct Case {
        QString file;
        double bpm;
    };
    const Case cases[] = {
        {testsupport::MakeClickTrack("tempo-click-120.wav", 120, 30), 120.0},
        {testsupport::MakeClickTrack("tempo-click-128.wav", 128, 30), 128.0},
        // The tracker locks onto the kicks (87); the snares between them
        // carry as much attack, so the tempo is doubled.
        {testsupport::MakeDrumPattern("tempo-drums-174.wav", 174, 30), 174.0},
        // The same pattern at half speed: only hi-hats between the beats.
        {testsupport::MakeDrumPattern("tempo-drums-87.wav", 87, 30), 87.0},
    };
    for (const Case& c : cases) {
        ASSERT_FALSE(c.file.isEmpty());
        const TrackTempoResult r = Measure(c.file);
        EXPECT_EQ(r.status, TrackTempoResult::Status::Measured) << c.file.toStdString();
        EXPECT_NEAR(r.bpm, c.bpm, 0.5) << c.file.toStdString();
        // Whole bars of the pattern: up to one bar (2.8 s at 87 BPM) short.
        EXPECT_GT(r.seconds, 27.0) << c.file.toStdString();
        EXPECT_LE(r.seconds, 30.0) << c.file.toStdString();
    }
}

TEST(TrackTempo, UnreadableFilesGiveNoTempo) {
    const QString dir = testsupport::FixtureDir();
    const QString garbage = dir + "/tempo-garbage.mp3";
    {
        QFile f(garbage);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        QByteArray bytes(64 * 1024, '\0');
        for (int i = 0; i < bytes.size(); ++i)
            bytes[i] = static_cast<char>((i * 7919 + 13) & 0xff);
        f.write(bytes);
    }
    const QString empty = dir + "/tempo-empty.wav";
    {
        QFile f(empty);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    }
    for (const QString& path : {garbage, empty, dir + "/tempo-missing.wav", dir}) {
        const TrackTempoResult r = Measure(path);
        EXPECT_EQ(r.status, TrackTempoResult::Status::Unreadable) << path.toStdString();
        EXPECT_EQ(r.bpm, 0.0);
    }
}

TEST(TrackTempo, StopFlagEndsTheMeasurementAndFedSoundIsCounted) {
    const QString click = testsupport::MakeClickTrack("tempo-click-120.wav", 120, 30);
    ASSERT_FALSE(click.isEmpty());
    std::atomic<bool> stop{true};
    tempo::FixedTempoEstimator fixed(99.0);
    EXPECT_EQ(MeasureTrackTempo(click.toStdString(), fixed, &stop).status,
              TrackTempoResult::Status::Stopped);
    stop = false;
    const TrackTempoResult r = MeasureTrackTempo(click.toStdString(), fixed, &stop);
    EXPECT_EQ(r.status, TrackTempoResult::Status::Measured);
    EXPECT_EQ(r.bpm, 99.0);
    EXPECT_EQ(fixed.SampleRate(), 44100);
    // Every frame of the file reaches the estimator, once, as mono.
    EXPECT_EQ(fixed.SamplesFed(), 22050 * 60);
    EXPECT_EQ(fixed.Measurements(), 2);
}
