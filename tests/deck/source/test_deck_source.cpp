// DeckSource on real parts: the file decoder on generated WAV files (one of
// them at 48000 Hz) and the CD reader on a generated CUE/BIN image, with a
// message sink standing in for the deck window that answers the end of a
// track the way the deck does.
#include <gtest/gtest.h>

#include <QFile>
#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include "TestSupport.h"
#include "core/CRynWindow.h"
#include "core/EngineState.h"
#include "deck/source/DeckSource.h"
#include "platform/cd/LibCdioBackend.h"
#include "playlist/PlayList.h"
#include "sources/CRynCdAudio.h"
#include "sources/CRynFileDecoder.h"
#include "sources/CdImageFixture.h"
#include "sources/FileDecoderTestUtil.h"

namespace {

using Samples = std::vector<std::int16_t>;
using Bytes = std::vector<std::uint8_t>;
constexpr int kDeck = 0;

// The deck window's part in a join: each UWM_END_OF_TRACK is counted and
// answered with OpenNextForJoin().
class DeckWindowSink : public MessageSink {
  public:
    explicit DeckWindowSink(DeckSource& source) : source_(source) {
        Engine().decks[kDeck].deckWindow = Handle();
    }
    ~DeckWindowSink() override { Engine().decks[kDeck].deckWindow = 0; }
    LResult OnAppMessage(Uwm msg, WParam, LParam) override {
        if (msg != UWM_END_OF_TRACK)
            return 0;
        ++ends;
        return source_.OpenNextForJoin() ? 1 : 0;
    }
    int ends = 0;

  private:
    DeckSource& source_;
};

std::string Tone(const char* name, double hz, double seconds, int rate) {
    return testsupport::MakeTone(name, hz, seconds, rate).toStdString();
}

// The whole PCM of a file as the decoder delivers it alone (no window asked).
Samples DecodeAlone(const std::string& path) {
    CRynFileDecoder d;
    if (!d.Open(path))
        return {};
    return filedecodertest::ReadToEnd(d).samples;
}

// A CD reader on a generated image whose drive is found by its root.
struct ImageDrive {
    testsupport::CdImage image;
    std::unique_ptr<CRynCdAudio> cd;
    int drive = -1;

    ImageDrive(const QString& name, const std::vector<testsupport::CdImageTrack>& tracks) {
        image = testsupport::MakeCdImage(name, tracks);
        qputenv("MIXORA_CD_IMAGES", image.cuePath.toUtf8());
        cd = std::make_unique<CRynCdAudio>(std::make_unique<cd::LibCdioBackend>(),
                                           std::make_unique<testsupport::CdTestClock>());
        qunsetenv("MIXORA_CD_IMAGES");
        for (int d = 0; d < cd->DriveCount(); ++d)
            if (cd->DriveRoot(d) == image.cuePath.toStdString())
                drive = d;
    }
};

// Audio 1 (2 s), audio 2 (263 sectors), data 3 (1 s).
std::vector<testsupport::CdImageTrack> TwoAudioOneData() {
    return {{true, 150, 441.0}, {true, 263, 1000.0}, {false, 75, 0.0}};
}

}  // namespace

TEST(DeckSource, FileLoadingAndPosition) {
    const std::string two = Tone("decksource-two.wav", 440.0, 2.0, 44100);
    const std::string other = Tone("decksource-other.wav", 660.0, 1.0, 44100);
    ASSERT_FALSE(two.empty());
    ASSERT_FALSE(other.empty());
    const std::string garbage =
        (testsupport::FixtureDir() + "/decksource-garbage.wav").toStdString();
    {
        QFile f(QString::fromStdString(garbage));
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write("this is not a sound file at all, just words");
    }

    CRynFileDecoder decoder;
    PlayList list;
    DeckSource source(kDeck, decoder, list, nullptr);
    source.SetMode(DeckSource::kCdMode);
    source.SetMode(DeckSource::kFileMode);
    source.SetMode(7);  // not a mode: ignored
    EXPECT_EQ(source.Mode(), DeckSource::kFileMode);
    EXPECT_TRUE(source.IsFileMode());
    EXPECT_EQ(Engine().decks[kDeck].sourceType.load(), 1);
    EXPECT_EQ(list.Mode(), PlayList::kFileMode);

    // Nothing in the list, then a missing file and one the decoder refuses.
    EXPECT_EQ(source.LoadCurrent(), DeckSource::LoadStatus::NoEntry);
    list.Add("/no/such/folder/gone.wav", "gone", kUnknownDuration, 0);
    list.Add(garbage, "garbage", kUnknownDuration, 0);
    list.Add(two, "two", kUnknownDuration, 0);
    list.Add(other, "other", kUnknownDuration, 0);
    list.First();
    EXPECT_EQ(source.LoadCurrent(), DeckSource::LoadStatus::FileMissing);
    EXPECT_STREQ(DeckSource::LoadFailureText(DeckSource::LoadStatus::FileMissing),
                 "The file does not exist");
    EXPECT_FALSE(decoder.IsOpen());
    ASSERT_TRUE(list.Next());
    EXPECT_EQ(source.LoadCurrent(), DeckSource::LoadStatus::OpenFailed);
    EXPECT_FALSE(decoder.IsOpen());
    EXPECT_EQ(list.CurrentDuration(), kUnknownDuration);
    EXPECT_EQ(source.TrackSeconds(), 0.0);

    // A good file: its duration becomes the entry's length.
    ASSERT_TRUE(list.Next());
    ASSERT_EQ(source.LoadCurrent(), DeckSource::LoadStatus::Ok);
    EXPECT_TRUE(decoder.IsOpen());
    EXPECT_NEAR(list.Duration(2), 2.0, 0.01);
    EXPECT_NEAR(source.TrackSeconds(), 2.0, 0.01);
    EXPECT_EQ(source.Rate(), 44100);
    EXPECT_EQ(source.SourceSeconds(), 0.0);

    // Positions: halfway is one second in; fractions outside 0 … 1 are held.
    source.SeekFraction(0.5, false);
    EXPECT_DOUBLE_EQ(source.SourceSeconds(), 1.0);
    source.SeekFraction(7.0, false);
    EXPECT_DOUBLE_EQ(source.SourceSeconds(), 2.0);
    source.SeekFraction(-3.0, false);
    EXPECT_DOUBLE_EQ(source.SourceSeconds(), 0.0);
    source.SeekFraction(0.5, false);
    source.SeekFraction(std::numeric_limits<double>::quiet_NaN(), false);
    EXPECT_DOUBLE_EQ(source.SourceSeconds(), 0.0);

    // The list moved without a load: a reposition opens the list's file,
    // unless an end of track is pending (the decoder then holds the next one).
    ASSERT_TRUE(list.Next());
    source.SeekFraction(0.0, true);
    EXPECT_EQ(decoder.FileName(), two);
    source.SeekFraction(0.0, false);
    EXPECT_EQ(decoder.FileName(), other);
    EXPECT_TRUE(decoder.IsOpen());

    // Blocks come from the decoder; Rewind goes back in it.
    std::uint8_t block[kBlockBytes];
    bool end = true;
    ASSERT_EQ(source.ReadBlock(block, &end), 0);
    EXPECT_FALSE(end);
    ASSERT_EQ(source.ReadBlock(block, &end), 0);
    EXPECT_EQ(decoder.StreamFrame(), 2 * kBlockFrames);
    source.Rewind(1);
    EXPECT_EQ(decoder.StreamFrame(), kBlockFrames);

    // Without a CD reader no drive can be taken; there is no disc to list.
    EXPECT_FALSE(source.SelectDrive(0));
    EXPECT_EQ(source.Drive(), -1);
    EXPECT_FALSE(source.FillListFromDisc());

    source.Close();
    EXPECT_FALSE(decoder.IsOpen());
    EXPECT_EQ(source.ReadBlock(block, &end), static_cast<int>(0x8000FFFF));
}

TEST(DeckSource, GaplessJoinAndRateChange) {
    // 1.01 s and 0.7 s do not fill whole blocks: each join falls inside one.
    const std::string first = Tone("decksource-join-a.wav", 440.0, 1.01, 44100);
    const std::string second = Tone("decksource-join-b.wav", 660.0, 0.7, 44100);
    const std::string third = Tone("decksource-join-c.wav", 1000.0, 0.5, 48000);
    ASSERT_FALSE(first.empty());
    ASSERT_FALSE(second.empty());
    ASSERT_FALSE(third.empty());
    Samples expected = DecodeAlone(first);
    const Samples b = DecodeAlone(second);
    const Samples c = DecodeAlone(third);
    ASSERT_EQ(expected.size(), 44541u * 2);
    ASSERT_EQ(c.size(), 24000u * 2);
    expected.insert(expected.end(), b.begin(), b.end());
    expected.insert(expected.end(), c.begin(), c.end());

    CRynFileDecoder decoder;
    PlayList list;
    DeckSource source(kDeck, decoder, list, nullptr);
    DeckWindowSink window(source);
    source.SetMode(DeckSource::kFileMode);
    list.Add(first, "a", kUnknownDuration, 0);
    list.Add(second, "b", kUnknownDuration, 0);
    list.Add(third, "c", kUnknownDuration, 0);
    list.First();
    ASSERT_EQ(source.LoadCurrent(), DeckSource::LoadStatus::Ok);
    source.SeekFraction(0.0, false);

    // Read to the end of the list; each end is heard at once here (the deck
    // hears it some blocks later).
    Samples stream;
    std::vector<DeckSource::EndHeard> heard;
    std::vector<int> ratesAtJoin;
    bool end = false;
    int blocks = 0;
    while (!end && blocks < 1000) {
        std::uint8_t block[kBlockBytes];
        const int endsBefore = window.ends;
        ASSERT_EQ(source.ReadBlock(block, &end), 0);
        ++blocks;
        const auto* p = reinterpret_cast<const std::int16_t*>(block);
        stream.insert(stream.end(), p, p + kBlockBytes / 2);
        if (window.ends > endsBefore && !end) {
            ratesAtJoin.push_back(source.Rate());
            EXPECT_EQ(list.CurrentIndex(), static_cast<int>(heard.size()));
            heard.push_back(source.OnEndHeard());
        }
    }
    ASSERT_TRUE(end);
    EXPECT_EQ(window.ends, 3);  // two joins and the end of the list

    // The three files follow each other sample for sample: no silence
    // between them, only the padding of the last block after them.
    ASSERT_GE(stream.size(), expected.size());
    EXPECT_EQ(blocks, static_cast<int>((expected.size() / 2 + kBlockFrames - 1) / kBlockFrames));
    EXPECT_TRUE(std::equal(expected.begin(), expected.end(), stream.begin()));
    for (std::size_t i = expected.size(); i < stream.size(); ++i)
        ASSERT_EQ(stream[i], 0) << i;

    // 44100 -> 44100 runs on; 44100 -> 48000 asks for a new output rate.
    ASSERT_EQ(heard.size(), 2u);
    EXPECT_EQ(heard[0], DeckSource::EndHeard::RanOn);
    EXPECT_EQ(heard[1], DeckSource::EndHeard::RanOnNewRate);
    EXPECT_EQ(ratesAtJoin, (std::vector<int>{44100, 48000}));
    EXPECT_EQ(source.PreviousRate(), 44100);
    EXPECT_EQ(source.Rate(), 48000);
    EXPECT_EQ(list.CurrentIndex(), 2);
    // Each joined file's length reached its entry.
    EXPECT_NEAR(list.Duration(1), 0.7, 0.01);
    EXPECT_NEAR(source.TrackSeconds(), 0.5, 0.01);

    // The end of the last file: nothing follows.
    EXPECT_EQ(source.OnEndHeard(), DeckSource::EndHeard::Ended);
    EXPECT_EQ(list.CurrentIndex(), 2);

    // The decoder closed itself at the end; a reposition opens the file again.
    EXPECT_FALSE(decoder.IsOpen());
    source.SeekFraction(0.0, false);
    EXPECT_TRUE(decoder.IsOpen());
    std::uint8_t block[kBlockBytes];
    ASSERT_EQ(source.ReadBlock(block, &end), 0);
    EXPECT_EQ(std::memcmp(block, c.data(), kBlockBytes), 0);
}

TEST(DeckSource, JoinOfAMissingFileEndsTheStream) {
    const std::string first = Tone("decksource-join-a.wav", 440.0, 1.01, 44100);
    ASSERT_FALSE(first.empty());
    CRynFileDecoder decoder;
    PlayList list;
    DeckSource source(kDeck, decoder, list, nullptr);
    DeckWindowSink window(source);
    list.Add(first, "a", kUnknownDuration, 0);
    list.Add("/no/such/folder/next.wav", "next", kUnknownDuration, 0);
    list.First();
    ASSERT_EQ(source.LoadCurrent(), DeckSource::LoadStatus::Ok);

    bool end = false;
    int blocks = 0;
    std::uint8_t block[kBlockBytes];
    while (!end && blocks++ < 1000)
        ASSERT_EQ(source.ReadBlock(block, &end), 0);
    EXPECT_TRUE(end);
    EXPECT_EQ(window.ends, 1);
    // The list moves on, but the decoder did not: the deck's load says why.
    EXPECT_EQ(source.OnEndHeard(), DeckSource::EndHeard::LoadNext);
    EXPECT_EQ(list.CurrentIndex(), 1);
    EXPECT_EQ(source.LoadCurrent(), DeckSource::LoadStatus::FileMissing);
}

TEST(DeckSource, CdDriveListAndRunOn) {
    ImageDrive r("decksource-cd", TwoAudioOneData());
    ASSERT_TRUE(r.image.ok);
    ASSERT_GE(r.drive, 0);
    CRynCdAudio& cd = *r.cd;
    const int d = r.drive;

    CRynFileDecoder decoder;
    PlayList list;
    DeckSource source(kDeck, decoder, list, &cd);
    DeckWindowSink window(source);
    source.SetMode(DeckSource::kCdMode);
    EXPECT_FALSE(source.IsFileMode());
    EXPECT_EQ(Engine().decks[kDeck].sourceType.load(), 0);
    EXPECT_EQ(list.Mode(), PlayList::kCdMode);
    EXPECT_EQ(source.Rate(), 44100);

    // No drive yet.
    EXPECT_EQ(source.Drive(), -1);
    EXPECT_FALSE(source.FillListFromDisc());
    EXPECT_EQ(source.LoadCurrent(), DeckSource::LoadStatus::NoDrive);
    std::uint8_t block[kBlockBytes];
    bool end = false;
    EXPECT_NE(source.ReadBlock(block, &end), 0);

    // The drive: taken once; the same drive again changes nothing.
    ASSERT_TRUE(source.SelectDrive(d));
    EXPECT_EQ(source.Drive(), d);
    EXPECT_EQ(Engine().decks[kDeck].cdDrive.load(), d);
    EXPECT_TRUE(cd.IsOpen(d));
    EXPECT_FALSE(source.SelectDrive(d));
    source.SetErrorCorrection(true);
    EXPECT_TRUE(cd.ErrorCorrection(d));
    source.SetErrorCorrection(false);

    ASSERT_TRUE(source.FillListFromDisc());
    ASSERT_EQ(list.Count(), 3);
    const double lengths[] = {2.0, 263 / 75.0, 1.0};
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(list.Path(i), "Track " + std::to_string(i + 1));
        EXPECT_EQ(list.ItemNumber(i), i + 1);
        EXPECT_NEAR(list.Duration(i), lengths[i], 1e-4);
    }

    // The data track does not load.
    list.LoadFrom(2);
    EXPECT_EQ(source.LoadCurrent(), DeckSource::LoadStatus::DataTrack);
    EXPECT_STREQ(DeckSource::LoadFailureText(DeckSource::LoadStatus::DataTrack),
                 "This is a data track.");

    // Track 1: halfway is 75 sectors in.
    list.LoadFrom(0);
    ASSERT_EQ(source.LoadCurrent(), DeckSource::LoadStatus::Ok);
    EXPECT_EQ(cd.CurrentTrack(d), 1);
    EXPECT_DOUBLE_EQ(source.TrackSeconds(), 2.0);
    source.SeekFraction(0.5, false);
    EXPECT_EQ(cd.CurrentAddress(d), r.image.Start(1) + 75);
    EXPECT_DOUBLE_EQ(source.SourceSeconds(), 1.0);
    source.SeekFraction(3.0, false);
    EXPECT_EQ(cd.CurrentAddress(d), r.image.End(1));
    source.SeekFraction(0.0, false);
    EXPECT_EQ(cd.CurrentAddress(d), r.image.Start(1));

    // Reading runs from track 1 on into track 2 without a break; the end of
    // track 1 is told by message only (the drive's join answer is "no").
    const int blocks = 75 + 20;
    Bytes stream;
    for (int i = 0; i < blocks; ++i) {
        end = true;
        ASSERT_EQ(source.ReadBlock(block, &end), 0) << i;
        EXPECT_FALSE(end);
        stream.insert(stream.end(), block, block + kBlockBytes);
    }
    EXPECT_EQ(window.ends, 1);
    EXPECT_TRUE(stream == r.image.Sectors(r.image.Start(1), 2 * blocks));
    EXPECT_EQ(cd.CurrentTrack(d), 1);

    // Heard: the list and the drive's track follow the address.
    EXPECT_EQ(source.OnEndHeard(), DeckSource::EndHeard::RanOn);
    EXPECT_EQ(list.CurrentIndex(), 1);
    EXPECT_EQ(cd.CurrentTrack(d), 2);
    EXPECT_NEAR(source.SourceSeconds(), 40 / 75.0, 1e-9);
    EXPECT_NEAR(source.TrackSeconds(), 263 / 75.0, 1e-4);

    // Track 2 is followed by the data track: the drive stops at it, and the
    // end heard asks for a load (which refuses the data track).
    int reads = 0;
    while (source.ReadBlock(block, &end) == 0 && reads < 1000)
        ++reads;
    EXPECT_EQ(cd.CurrentAddress(d), r.image.End(2));
    EXPECT_EQ(source.OnEndHeard(), DeckSource::EndHeard::LoadNext);
    EXPECT_EQ(list.CurrentIndex(), 2);
    EXPECT_EQ(source.LoadCurrent(), DeckSource::LoadStatus::DataTrack);
    EXPECT_EQ(source.OnEndHeard(), DeckSource::EndHeard::Ended);

    // A list whose next entry is not the disc's next track loads it instead.
    ASSERT_TRUE(source.FillListFromDisc());
    list.Remove(1);
    list.LoadFrom(0);
    ASSERT_EQ(source.LoadCurrent(), DeckSource::LoadStatus::Ok);
    EXPECT_EQ(source.OnEndHeard(), DeckSource::EndHeard::LoadNext);
    EXPECT_EQ(list.CurrentItemNumber(), 3);

    // Rewind is the decoder's only; the CD position stays.
    const std::int32_t address = cd.CurrentAddress(d);
    source.Rewind(5);
    EXPECT_EQ(cd.CurrentAddress(d), address);

    // Releasing the drive.
    ASSERT_TRUE(source.SelectDrive(-1));
    EXPECT_FALSE(cd.IsOpen(d));
    EXPECT_EQ(Engine().decks[kDeck].cdDrive.load(), -1);
    EXPECT_FALSE(source.FillListFromDisc());
    EXPECT_EQ(list.Count(), 0);
    EXPECT_FALSE(source.SelectDrive(-1));
    source.SetMode(DeckSource::kFileMode);
    EXPECT_EQ(Engine().decks[kDeck].sourceType.load(), 1);
}

TEST(DeckSource, DriveWithoutItsImage) {
    ImageDrive r("decksource-gone", TwoAudioOneData());
    ASSERT_TRUE(r.image.ok);
    ASSERT_GE(r.drive, 0);
    // The image disappears after the drive list was made: nothing opens.
    ASSERT_TRUE(QFile::remove(r.image.cuePath));
    ASSERT_TRUE(QFile::remove(r.image.binPath));

    CRynFileDecoder decoder;
    PlayList list;
    list.Add("Track 9", "", 1.0f, 9);
    DeckSource source(kDeck, decoder, list, r.cd.get());
    source.SetMode(DeckSource::kCdMode);
    EXPECT_TRUE(source.SelectDrive(r.drive));
    EXPECT_FALSE(r.cd->IsOpen(r.drive));
    EXPECT_FALSE(source.FillListFromDisc());
    EXPECT_EQ(list.Count(), 0);
    EXPECT_EQ(source.LoadCurrent(), DeckSource::LoadStatus::NoDrive);
    source.Close();
    EXPECT_EQ(source.Drive(), -1);
    EXPECT_EQ(Engine().decks[kDeck].cdDrive.load(), -1);
}
