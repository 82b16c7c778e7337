// CRynCdAudio on a generated CUE/BIN image read through libcdio: drives,
// table of contents, positions, bit-exact blocks with and without error
// correction, and the end-of-track handler that tells the deck window.
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <thread>

#include "TestSupport.h"
#include "core/CRynWindow.h"
#include "core/EngineState.h"
#include "platform/cd/LibCdioBackend.h"
#include "sources/CRynCdAudio.h"
#include "sources/CdImageFixture.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

// Stands in for a deck window: records UWM_END_OF_TRACK and may answer it
// the way a deck does (by moving to another track).
class DeckWindowSink : public MessageSink {
  public:
    LResult OnAppMessage(Uwm msg, WParam w, LParam l) override {
        if (msg == UWM_END_OF_TRACK && w == 0 && l == 0)
            ++endOfTrack;
        if (onEndOfTrack)
            onEndOfTrack();
        return 0;
    }
    std::atomic<int> endOfTrack{0};
    std::function<void()> onEndOfTrack;
};

// Installs a deck's end-of-track handler the way the deck does (it sends
// UWM_END_OF_TRACK to the deck's window), for the life of the test.
class DeckWindowGuard {
  public:
    DeckWindowGuard(CRynCdAudio& reader, int deck, WindowHandle h) : reader_(reader), deck_(deck) {
        reader_.SetEndOfTrackHandler(deck, [h] { SendAppMessage(h, UWM_END_OF_TRACK, 0, 0); });
    }
    ~DeckWindowGuard() { reader_.SetEndOfTrackHandler(deck_, nullptr); }

  private:
    CRynCdAudio& reader_;
    int deck_;
};

// A reader on the image, with the image found among the drives by its root.
struct ImageReader {
    testsupport::CdImage image;
    std::unique_ptr<CRynCdAudio> reader;
    int drive = -1;

    explicit ImageReader(const QString& name) {
        image = testsupport::MakeCdImage(name);
        qputenv("MIXORA_CD_IMAGES", image.cuePath.toUtf8());
        reader = std::make_unique<CRynCdAudio>(std::make_unique<cd::LibCdioBackend>(),
                                               std::make_unique<testsupport::CdTestClock>());
        qunsetenv("MIXORA_CD_IMAGES");
        for (int d = 0; d < reader->DriveCount(); ++d)
            if (reader->DriveRoot(d) == image.cuePath.toStdString())
                drive = d;
    }

    // Reads one block for `deck`; the bytes, or empty on failure.
    Bytes Read(int deck, bool& endOfTrack) {
        Bytes block(CRynCdAudio::kReadBytes, 0xAB);
        if (reader->ReadBlock(deck, drive, block.data(), endOfTrack) != CRynCdAudio::kOk)
            return {};
        return block;
    }
};

Bytes Concat(const Bytes& a, const Bytes& b) {
    Bytes out = a;
    out.insert(out.end(), b.begin(), b.end());
    return out;
}

}  // namespace

TEST(CdAudio, TableOfContentsAndReadPosition) {
    ImageReader r("cd-audio-toc");
    ASSERT_TRUE(r.image.ok);
    ASSERT_GE(r.drive, 0);
    CRynCdAudio& reader = *r.reader;
    const int d = r.drive;
    EXPECT_EQ(reader.DriveName(d), "Disc image cd-audio-toc.cue");

    // Closed: nothing to find.
    EXPECT_FALSE(reader.IsOpen(d));
    EXPECT_EQ(reader.TrackCount(d), 0);
    bool end = true;
    Bytes block(CRynCdAudio::kReadBytes);
    EXPECT_EQ(reader.ReadBlock(0, d, block.data(), end), CRynCdAudio::kUnexpected);
    EXPECT_FALSE(end);

    ASSERT_TRUE(reader.OpenDrive(d));
    EXPECT_TRUE(reader.ReadToc(d));
    EXPECT_EQ(reader.TrackCount(d), 4);
    EXPECT_EQ(reader.FirstTrack(d), 1);
    EXPECT_EQ(reader.LastTrack(d), 4);
    EXPECT_EQ(reader.CurrentTrack(d), -1);
    for (int t = 1; t <= 4; ++t) {
        EXPECT_EQ(reader.TrackStart(d, t), r.image.Start(t)) << t;
        EXPECT_EQ(reader.TrackEnd(d, t), r.image.End(t)) << t;
        EXPECT_DOUBLE_EQ(reader.TrackLengthSeconds(d, t), r.image.tracks[t - 1].sectors / 75.0)
            << t;
        EXPECT_EQ(reader.IsAudioTrack(d, t), t != 4) << t;
    }
    EXPECT_DOUBLE_EQ(reader.TrackLengthSeconds(d, 1), 2.0);
    EXPECT_FALSE(reader.IsAudioTrack(d, -1));
    EXPECT_FALSE(reader.IsAudioTrack(d, 5));

    // SetTrack: tracks outside first..last are refused and change nothing.
    ASSERT_TRUE(reader.SetTrack(d, 2));
    EXPECT_EQ(reader.CurrentAddress(d), r.image.Start(2));
    EXPECT_FALSE(reader.SetTrack(d, 5));
    EXPECT_FALSE(reader.SetTrack(d, 0));
    EXPECT_EQ(reader.CurrentTrack(d), 2);
    EXPECT_EQ(reader.CurrentAddress(d), r.image.Start(2));

    // SeekFraction within the current track (263 sectors).
    reader.SeekFraction(d, 0.5f);
    EXPECT_EQ(reader.CurrentAddress(d), r.image.Start(2) + 131);
    EXPECT_DOUBLE_EQ(reader.ElapsedSecondsInTrack(d), 131 / 75.0);
    reader.SeekFraction(d, 0.0f);
    EXPECT_EQ(reader.CurrentAddress(d), r.image.Start(2));
    reader.SeekFraction(d, 1.0f);
    EXPECT_EQ(reader.CurrentAddress(d), r.image.End(2));
    reader.SeekFraction(d, 7.0f);  // clamped
    EXPECT_EQ(reader.CurrentAddress(d), r.image.End(2));

    // SyncTrackFromAddress: the highest track starting at or before the address.
    reader.SetCurrentAddress(d, r.image.Start(3));
    reader.SyncTrackFromAddress(d);
    EXPECT_EQ(reader.CurrentTrack(d), 3);
    reader.SetCurrentAddress(d, r.image.Start(3) - 1);
    reader.SyncTrackFromAddress(d);
    EXPECT_EQ(reader.CurrentTrack(d), 2);
    reader.SetCurrentAddress(d, r.image.LeadOut() - 1);
    reader.SyncTrackFromAddress(d);
    EXPECT_EQ(reader.CurrentTrack(d), 4);
    reader.SetCurrentAddress(d, 5);
    reader.SyncTrackFromAddress(d);
    EXPECT_EQ(reader.CurrentTrack(d), 1);
    EXPECT_DOUBLE_EQ(reader.ElapsedSecondsInTrack(d), 5 / 75.0);

    // Reopening puts the read state back to its start.
    ASSERT_TRUE(reader.OpenDrive(d));
    EXPECT_EQ(reader.CurrentTrack(d), -1);
    EXPECT_EQ(reader.CurrentAddress(d), 0);
    EXPECT_EQ(reader.TrackCount(d), 4);
    reader.CloseDrive(d);
    EXPECT_FALSE(reader.IsOpen(d));
    EXPECT_EQ(reader.ReadBlock(0, d, block.data(), end), CRynCdAudio::kUnexpected);
}

TEST(CdAudio, BlocksAreBitExactWithAndWithoutErrorCorrection) {
    ImageReader r("cd-audio-blocks");
    ASSERT_TRUE(r.image.ok);
    ASSERT_GE(r.drive, 0);
    ASSERT_TRUE(r.reader->OpenDrive(r.drive));
    DeckWindowSink deck;
    DeckWindowGuard guard(*r.reader, 0, deck.Handle());

    for (bool corrected : {false, true}) {
        SCOPED_TRACE(corrected ? "error correction" : "plain reads");
        r.reader->SetErrorCorrection(r.drive, corrected);
        EXPECT_EQ(r.reader->ErrorCorrection(r.drive), corrected);
        // Track 1 (150 sectors) block by block: 75 blocks, then the block at
        // its end address (the start of track 2) comes with the end notice.
        ASSERT_TRUE(r.reader->SetTrack(r.drive, 1));
        Bytes got;
        bool end = false;
        for (int b = 0; b < 75; ++b) {
            Bytes block = r.Read(0, end);
            ASSERT_EQ(block.size(), 4704u) << "block " << b;
            EXPECT_FALSE(end) << "block " << b;
            got = Concat(got, block);
        }
        EXPECT_TRUE(got == r.image.TrackPcm(1));
        EXPECT_EQ(r.reader->ElapsedSecondsInTrack(r.drive), 2.0);
        int before = deck.endOfTrack;
        EXPECT_TRUE(r.Read(0, end) == r.image.Sectors(r.image.Start(2), 2));
        EXPECT_TRUE(end);
        EXPECT_EQ(deck.endOfTrack, before + 1);

        // Track 2 (263 sectors, odd): the block at e - 1 reads on into track 3.
        ASSERT_TRUE(r.reader->SetTrack(r.drive, 2));
        got.clear();
        while (r.reader->CurrentAddress(r.drive) < r.image.End(2))
            got = Concat(got, r.Read(0, end));
        EXPECT_TRUE(got == r.image.Sectors(r.image.Start(2), 264));
        EXPECT_TRUE(end);  // the last block was read at e - 1
        EXPECT_EQ(r.reader->CurrentAddress(r.drive), r.image.End(2) + 1);
    }
}

TEST(CdAudio, EndOfTrackReachesTheDeckBeforeTheRead) {
    ImageReader r("cd-audio-end");
    ASSERT_TRUE(r.image.ok);
    ASSERT_GE(r.drive, 0);
    CRynCdAudio& reader = *r.reader;
    const int d = r.drive;
    ASSERT_TRUE(reader.OpenDrive(d));
    DeckWindowSink deckA, deckB;
    DeckWindowGuard guardA(reader, 0, deckA.Handle()), guardB(reader, 1, deckB.Handle());

    // Track 3 ends at e, where the data track starts.
    const std::int32_t e = r.image.End(3);
    ASSERT_TRUE(reader.SetTrack(d, 3));
    bool end = true;
    reader.SetCurrentAddress(d, e - 3);
    EXPECT_TRUE(r.Read(1, end) == r.image.Sectors(e - 3, 2));
    EXPECT_FALSE(end);
    reader.SetCurrentAddress(d, e - 2);
    EXPECT_TRUE(r.Read(1, end) == r.image.Sectors(e - 2, 2));
    EXPECT_FALSE(end);
    EXPECT_EQ(deckB.endOfTrack, 0);

    // e - 1: told; one audio sector, the rest of the block silence, never the data track.
    reader.SetCurrentAddress(d, e - 1);
    Bytes expected = r.image.Sectors(e - 1, 1);
    expected.resize(4704, 0);
    EXPECT_TRUE(r.Read(1, end) == expected);
    EXPECT_TRUE(end);
    EXPECT_EQ(deckB.endOfTrack, 1);
    EXPECT_EQ(reader.CurrentAddress(d), e);
    // e: told again; nothing audible is left there.
    EXPECT_TRUE(r.Read(1, end).empty());
    EXPECT_TRUE(end);
    EXPECT_EQ(deckB.endOfTrack, 2);
    EXPECT_EQ(reader.CurrentAddress(d), e);
    EXPECT_EQ(deckA.endOfTrack, 0);  // only the reading deck hears of it

    // Between two audio tracks the block at e is track 2's start.
    ASSERT_TRUE(reader.SetTrack(d, 1));
    reader.SetCurrentAddress(d, r.image.End(1));
    EXPECT_TRUE(r.Read(0, end) == r.image.Sectors(r.image.End(1), 2));
    EXPECT_TRUE(end);
    EXPECT_EQ(deckA.endOfTrack, 1);

    // The deck answers by moving to track 3: the read takes the new address.
    deckA.onEndOfTrack = [&] { reader.SetTrack(d, 3); };
    ASSERT_TRUE(reader.SetTrack(d, 1));
    reader.SetCurrentAddress(d, r.image.End(1) - 1);
    EXPECT_TRUE(r.Read(0, end) == r.image.Sectors(r.image.Start(3), 2));
    EXPECT_TRUE(end);
    EXPECT_EQ(reader.CurrentTrack(d), 3);
    EXPECT_EQ(reader.CurrentAddress(d), r.image.Start(3) + 2);

    // From a reader thread the message is handled on this (window) thread
    // before the read goes on.
    ASSERT_TRUE(reader.SetTrack(d, 1));
    reader.SetCurrentAddress(d, r.image.End(1) - 1);
    std::atomic<bool> done{false};
    Bytes threaded;
    bool threadedEnd = false;
    std::thread readerThread([&] {
        threaded = r.Read(0, threadedEnd);
        done = true;
    });
    ASSERT_TRUE(testsupport::WaitFor([&] { return done.load(); }));
    readerThread.join();
    EXPECT_TRUE(threadedEnd);
    EXPECT_TRUE(threaded == r.image.Sectors(r.image.Start(3), 2));
    EXPECT_EQ(deckA.endOfTrack, 3);
}
