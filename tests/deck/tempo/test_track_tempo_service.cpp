// The tempo cache (path, size and modification time; one file written
// atomically) and the tempo worker: answers come back on the window thread,
// a track is measured once, unreadable files get no answer.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <sys/time.h>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <atomic>
#include <functional>
#include <string>
#include <vector>

#include "TestSupport.h"
#include "deck/tempo/TrackTempoCache.h"
#include "deck/tempo/TrackTempoService.h"

namespace {

using testsupport::WaitFor;

QString WriteFile(const QString& path, const QByteArray& bytes) {
    QFile f(path);
    if (!f.open(QIODevice::WriteOnly))
        return {};
    f.write(bytes);
    return path;
}

struct Answer {
    int deck;
    std::string path;
    double bpm;
};

// A service with a fixed estimator answering `bpm`, recording its answers.
struct ServiceRig {
    explicit ServiceRig(const QString& cacheFile, double bpm = 123.4,
                        std::function<bool(const std::string&)> holdOff = {})
        : service(std::make_unique<tempo::FixedTempoEstimator>(bpm), cacheFile) {
        service.onTempo = [this](int deck, const std::string& path, double value) {
            answers.push_back({deck, path, value});
        };
        service.holdOff = std::move(holdOff);
        service.Start();
    }
    bool WaitAnswers(std::size_t n) {
        return WaitFor([&] { return answers.size() >= n; }, 20000);
    }
    TrackTempoService service;
    std::vector<Answer> answers;
};

}  // namespace

TEST(TrackTempoCache, KeepsTempoByPathSizeAndTimeAcrossRuns) {
    QTemporaryDir dir;
    const QString cacheFile = dir.path() + "/" + TrackTempoCache::kFileName;
    const std::string track = WriteFile(dir.path() + "/a.wav", "12345").toStdString();
    auto key = TrackTempoCache::KeyOf(track);
    ASSERT_TRUE(key);
    EXPECT_EQ(key->size, 5);
    EXPECT_FALSE(TrackTempoCache::KeyOf(dir.path().toStdString()));  // a folder
    EXPECT_FALSE(TrackTempoCache::KeyOf(track + ".missing"));
    {
        TrackTempoCache cache(cacheFile);
        EXPECT_FALSE(cache.Find(*key));
        EXPECT_TRUE(cache.Store(*key, 128.25));
        EXPECT_TRUE(cache.Store(*key, 128.5));  // replaces, one entry a path
        EXPECT_EQ(cache.Count(), 1);
    }
    // Written whole by rename: no temporary is left beside it.
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files).size(), 2);
    TrackTempoCache again(cacheFile);
    ASSERT_TRUE(again.Find(*key));
    EXPECT_DOUBLE_EQ(*again.Find(*key), 128.5);
    // The same path edited (another size) or touched (another time) is new.
    TrackTempoCache::Key bigger = *key;
    bigger.size += 1;
    EXPECT_FALSE(again.Find(bigger));
    TrackTempoCache::Key touched = *key;
    touched.mtimeSec += 1;
    EXPECT_FALSE(again.Find(touched));
}

TEST(TrackTempoCache, DamagedLinesAndUnwritablePathsAreSkipped) {
    QTemporaryDir dir;
    const QString cacheFile = dir.path() + "/" + TrackTempoCache::kFileName;
    WriteFile(cacheFile,
              "120.000\t10\t1\t2\t/music/good.wav\n"
              "garbage line\n"
              "abc\t10\t1\t2\t/music/bad-bpm.wav\n"
              "-5\t10\t1\t2\t/music/negative.wav\n"
              "99.000\t10\t1\t2\t\n");
    TrackTempoCache cache(cacheFile);
    EXPECT_EQ(cache.Count(), 1);
    ASSERT_TRUE(cache.Find({"/music/good.wav", 10, 1, 2}));
    // A path holding a tab is kept for this run, never written as a line.
    EXPECT_TRUE(cache.Store({"/music/odd\tname.wav", 1, 1, 1}, 90.0));
    EXPECT_TRUE(cache.Find({"/music/odd\tname.wav", 1, 1, 1}));
    TrackTempoCache reread(cacheFile);
    EXPECT_EQ(reread.Count(), 1);
    // No file at all is an empty cache.
    TrackTempoCache none(dir.path() + "/absent/" + TrackTempoCache::kFileName);
    EXPECT_EQ(none.Count(), 0);
}

TEST(TrackTempoService, EachTrackIsMeasuredOnceAndAnsweredOnTheWindowThread) {
    const QString a = testsupport::MakeTone("tempo-service-a.wav", 440, 2);
    const QString b = testsupport::MakeTone("tempo-service-b.wav", 660, 2);
    ASSERT_FALSE(a.isEmpty() || b.isEmpty());
    QTemporaryDir dir;
    const QString cacheFile = dir.path() + "/" + TrackTempoCache::kFileName;
    {
        ServiceRig rig(cacheFile);
        rig.service.Request(0, a.toStdString());
        ASSERT_TRUE(rig.WaitAnswers(1));
        EXPECT_EQ(rig.answers[0].deck, 0);
        EXPECT_EQ(rig.answers[0].path, a.toStdString());
        EXPECT_DOUBLE_EQ(rig.answers[0].bpm, 123.4);
        rig.service.Request(0, b.toStdString());
        ASSERT_TRUE(rig.WaitAnswers(2));
        // Back to the first track, and deck B takes it too: from the cache.
        rig.service.Request(0, a.toStdString());
        rig.service.Request(1, a.toStdString());
        ASSERT_TRUE(rig.WaitAnswers(4));
        EXPECT_EQ(rig.service.Analyses(), 2);
        EXPECT_EQ(rig.service.CacheHits(), 2);
        EXPECT_EQ(rig.answers[3].path, a.toStdString());
    }
    // The next run finds both in the cache file.
    ServiceRig next(cacheFile, 50.0);
    next.service.Request(1, b.toStdString());
    ASSERT_TRUE(next.WaitAnswers(1));
    EXPECT_DOUBLE_EQ(next.answers[0].bpm, 123.4);
    EXPECT_EQ(next.service.Analyses(), 0);
}

TEST(TrackTempoService, UnreadableOrWithdrawnTracksGetNoAnswer) {
    const QString good = testsupport::MakeTone("tempo-service-a.wav", 440, 2);
    QTemporaryDir dir;
    const QString junk = WriteFile(dir.path() + "/junk.mp3", QByteArray(4096, 'x'));
    ServiceRig rig(dir.path() + "/" + TrackTempoCache::kFileName);
    rig.service.Request(0, junk.toStdString());
    rig.service.Request(1, (dir.path() + "/missing.wav").toStdString());
    // Deck A lets its junk go, deck B takes a good track instead.
    rig.service.Request(0, "");
    rig.service.Request(1, good.toStdString());
    ASSERT_TRUE(rig.WaitAnswers(1));
    testsupport::WaitFor([] { return false; }, 300);
    ASSERT_EQ(rig.answers.size(), 1u);
    EXPECT_EQ(rig.answers[0].deck, 1);
    EXPECT_EQ(rig.answers[0].path, good.toStdString());
    // The junk is not remembered as measured: asked again, it is tried again.
    const int before = rig.service.Analyses();
    rig.service.Request(0, junk.toStdString());
    EXPECT_TRUE(WaitFor([&] { return rig.service.Analyses() == before + 1; }, 5000));
    rig.service.Stop();
    EXPECT_FALSE(rig.service.IsRunning());
}

TEST(TrackTempoService, HeldOffTrackWaitsWithoutHoldingUpTheOtherDeck) {
    const QString a = testsupport::MakeTone("tempo-service-a.wav", 440, 2);
    const QString b = testsupport::MakeTone("tempo-service-b.wav", 660, 2);
    ASSERT_FALSE(a.isEmpty() || b.isEmpty());
    QTemporaryDir dir;
    std::atomic<bool> drivePlays{true};
    // `a` stands for a file on a CD while a deck plays from the CD.
    ServiceRig rig(dir.path() + "/" + TrackTempoCache::kFileName, 123.4,
                   [&](const std::string& path) { return drivePlays && path == a.toStdString(); });
    rig.service.Request(0, a.toStdString());
    rig.service.Request(1, b.toStdString());
    ASSERT_TRUE(rig.WaitAnswers(1));
    EXPECT_EQ(rig.answers[0].deck, 1);
    WaitFor([] { return false; }, 700);
    EXPECT_EQ(rig.answers.size(), 1u);
    EXPECT_EQ(rig.service.Analyses(), 1);
    drivePlays = false;
    ASSERT_TRUE(rig.WaitAnswers(2));
    EXPECT_EQ(rig.answers[1].deck, 0);
    EXPECT_EQ(rig.answers[1].path, a.toStdString());
}
