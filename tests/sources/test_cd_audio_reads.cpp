// CRynCdAudio over the in-memory CD layer: read pacing, retries of failing
// reads, no drives at all, an empty drive, and two decks reading two drives
// at once.
#include <gtest/gtest.h>

#include <thread>

#include "platform/cd/MemoryCdBackend.h"
#include "sources/CRynCdAudio.h"
#include "sources/CdImageFixture.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

// The generated disc as an in-memory drive.
cd::MemoryDisc DiscFromImage(const testsupport::CdImage& image, const std::string& device) {
    cd::MemoryDisc disc;
    disc.info = {"Memory drive " + device, device};
    disc.toc.first = 1;
    disc.toc.last = image.TrackCount();
    for (int i = 0; i <= image.TrackCount(); ++i) {
        cd::CdTocEntry e;
        e.track = static_cast<std::uint8_t>(i < image.TrackCount() ? i + 1 : 0xAA);
        e.start = image.starts[static_cast<std::size_t>(i)];
        if (i < image.TrackCount() && !image.tracks[static_cast<std::size_t>(i)].audio)
            e.control |= cd::kControlData;
        disc.toc.entries.push_back(e);
    }
    disc.sectors = image.bin;
    return disc;
}

}  // namespace

TEST(CdAudioReads, PacingAndRetries) {
    testsupport::CdImage image = testsupport::MakeCdImage("cd-reads");
    ASSERT_TRUE(image.ok);
    std::vector<cd::MemoryDisc> discs{DiscFromImage(image, "/dev/memory0")};
    auto* backend = new cd::MemoryCdBackend(std::move(discs));
    auto* clock = new testsupport::CdTestClock;
    CRynCdAudio reader{std::unique_ptr<cd::CdBackend>(backend), std::unique_ptr<CdClock>(clock)};
    ASSERT_EQ(reader.DriveCount(), 1);
    EXPECT_EQ(reader.DriveRoot(0), "/dev/memory0");
    ASSERT_TRUE(reader.OpenDrive(0));
    ASSERT_TRUE(reader.SetTrack(0, 2));
    const std::int32_t start = image.Start(2);
    Bytes block(4704);
    bool end = false;

    // Pacing: a read within 10 ms of the drive's last read first sleeps 1 ms.
    ASSERT_EQ(reader.ReadBlock(0, 0, block.data(), end), CRynCdAudio::kOk);
    EXPECT_EQ(clock->Sleeps(), 0);
    ASSERT_EQ(reader.ReadBlock(0, 0, block.data(), end), CRynCdAudio::kOk);
    EXPECT_EQ(clock->Sleeps(), 1);
    clock->Advance(0.011);
    ASSERT_EQ(reader.ReadBlock(0, 0, block.data(), end), CRynCdAudio::kOk);
    EXPECT_EQ(clock->Sleeps(), 1);
    EXPECT_TRUE(block == image.Sectors(start + 4, 2));
    EXPECT_EQ(backend->ReadAttempts(), 3);

    // Nine failures, then the tenth attempt delivers the block normally,
    // with 1 ms between attempts.
    clock->Advance(1.0);
    backend->FailNextReads(9);
    ASSERT_EQ(reader.ReadBlock(0, 0, block.data(), end), CRynCdAudio::kOk);
    EXPECT_TRUE(block == image.Sectors(start + 6, 2));
    EXPECT_EQ(reader.CurrentAddress(0), start + 8);
    EXPECT_EQ(backend->ReadAttempts(), 13);
    EXPECT_EQ(clock->Sleeps(), 10);

    // Ten failures: E_UNEXPECTED, nothing copied, the address stays.
    clock->Advance(1.0);
    backend->FailNextReads(10);
    Bytes untouched(4704, 0xAB);
    EXPECT_EQ(reader.ReadBlock(1, 0, untouched.data(), end), CRynCdAudio::kUnexpected);
    EXPECT_EQ(CRynCdAudio::kUnexpected, static_cast<std::int32_t>(0x8000FFFF));
    EXPECT_TRUE(untouched == Bytes(4704, 0xAB));
    EXPECT_EQ(reader.CurrentAddress(0), start + 8);
    EXPECT_EQ(backend->ReadAttempts(), 23);
    EXPECT_EQ(clock->Sleeps(), 20);
    // The drive recovers on the next call.
    clock->Advance(1.0);
    ASSERT_EQ(reader.ReadBlock(1, 0, block.data(), end), CRynCdAudio::kOk);
    EXPECT_TRUE(block == image.Sectors(start + 8, 2));

    // The switch picks the error-correcting read.
    EXPECT_EQ(backend->CorrectedReadAttempts(), 0);
    reader.SetErrorCorrection(0, true);
    ASSERT_EQ(reader.ReadBlock(1, 0, block.data(), end), CRynCdAudio::kOk);
    EXPECT_EQ(backend->CorrectedReadAttempts(), 1);

    // Bad deck or drive indices find nothing and never touch the backend.
    int attempts = backend->ReadAttempts();
    EXPECT_EQ(reader.ReadBlock(2, 0, block.data(), end), CRynCdAudio::kUnexpected);
    EXPECT_EQ(reader.ReadBlock(-1, 0, block.data(), end), CRynCdAudio::kUnexpected);
    EXPECT_EQ(reader.ReadBlock(0, 1, block.data(), end), CRynCdAudio::kUnexpected);
    EXPECT_EQ(backend->ReadAttempts(), attempts);

    // Names kept for the CDDB lookup.
    reader.SetDiscTitle(0, "Tones");
    reader.SetTrackName(0, 2, "Thousand");
    reader.SetTrackNamesFound(0, true);
    EXPECT_EQ(reader.DiscTitle(0), "Tones");
    EXPECT_EQ(reader.TrackName(0, 2), "Thousand");
    EXPECT_EQ(reader.TrackName(0, 100), "");
    EXPECT_TRUE(reader.TrackNamesFound(0));
}

TEST(CdAudioReads, NoDrivesAndEmptyDrives) {
    CRynCdAudio none(std::make_unique<cd::MemoryCdBackend>(),
                     std::make_unique<testsupport::CdTestClock>());
    EXPECT_EQ(none.DriveCount(), 0);
    EXPECT_EQ(none.DriveName(0), "");
    EXPECT_EQ(none.DriveRoot(0), "unknown");
    EXPECT_EQ(none.DriveRoot(-1), "unknown");
    EXPECT_FALSE(none.OpenDrive(0));
    EXPECT_FALSE(none.IsOpen(0));
    EXPECT_FALSE(none.ReadToc(0));
    EXPECT_EQ(none.TrackCount(0), 0);
    EXPECT_FALSE(none.SetTrack(0, 1));
    EXPECT_FALSE(none.IsAudioTrack(0, 1));
    EXPECT_EQ(none.CurrentTrack(0), -1);
    EXPECT_EQ(none.ElapsedSecondsInTrack(0), 0.0);
    none.SeekFraction(0, 0.5f);
    none.SyncTrackFromAddress(0);
    none.CloseDrive(0);
    Bytes block(4704);
    bool end = true;
    EXPECT_EQ(none.ReadBlock(0, 0, block.data(), end), CRynCdAudio::kUnexpected);
    EXPECT_FALSE(end);

    // A drive without a disc opens, but has no TOC and nothing to read.
    cd::MemoryDisc empty;
    empty.info = {"Empty drive", "/dev/memory-empty"};
    empty.present = false;
    std::vector<cd::MemoryDisc> discs{empty};
    CRynCdAudio reader(std::make_unique<cd::MemoryCdBackend>(std::move(discs)),
                       std::make_unique<testsupport::CdTestClock>());
    ASSERT_EQ(reader.DriveCount(), 1);
    EXPECT_EQ(reader.DriveName(0), "Empty drive");
    EXPECT_TRUE(reader.OpenDrive(0));
    EXPECT_FALSE(reader.ReadToc(0));
    EXPECT_EQ(reader.TrackCount(0), 0);
    EXPECT_FALSE(reader.SetTrack(0, 1));
    EXPECT_EQ(reader.ReadBlock(0, 0, block.data(), end), CRynCdAudio::kUnexpected);
    EXPECT_EQ(reader.TrackLengthSeconds(0, 1), 0.0);
}

TEST(CdAudioReads, TwoDecksOnTwoDrivesReadApart) {
    std::vector<testsupport::CdImageTrack> tonesA{{true, 300, 441.0}};
    std::vector<testsupport::CdImageTrack> tonesB{{true, 300, 1234.0}};
    testsupport::CdImage a = testsupport::MakeCdImage("cd-deck-a", tonesA);
    testsupport::CdImage b = testsupport::MakeCdImage("cd-deck-b", tonesB);
    ASSERT_TRUE(a.ok && b.ok);
    std::vector<cd::MemoryDisc> discs{DiscFromImage(a, "/dev/memory0"),
                                      DiscFromImage(b, "/dev/memory1")};
    CRynCdAudio reader(std::make_unique<cd::MemoryCdBackend>(std::move(discs)),
                       std::make_unique<testsupport::CdTestClock>());
    ASSERT_TRUE(reader.OpenDrive(0));
    ASSERT_TRUE(reader.OpenDrive(1));

    // Each deck reads its whole disc, several times over, at the same time.
    auto play = [&](int deck, const testsupport::CdImage& image, Bytes& out) {
        for (int pass = 0; pass < 5; ++pass) {
            reader.SetCurrentAddress(deck, 0);
            out.clear();
            bool end = false;
            Bytes block(4704);
            while (reader.CurrentAddress(deck) < image.LeadOut() &&
                   reader.ReadBlock(deck, deck, block.data(), end) == CRynCdAudio::kOk)
                out.insert(out.end(), block.begin(), block.end());
            if (out != image.bin)
                return;
        }
    };
    Bytes gotA, gotB;
    std::thread deckA([&] { play(0, a, gotA); });
    std::thread deckB([&] { play(1, b, gotB); });
    deckA.join();
    deckB.join();
    EXPECT_TRUE(gotA == a.bin);
    EXPECT_TRUE(gotB == b.bin);
}
