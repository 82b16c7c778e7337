// The file decoder's positions and ends: whole-block and short last blocks,
// elapsed time, rewinds, seeks by fraction, rates other than 44100 Hz, and
// the gapless join into the deck's next track.
#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <thread>

#include "FileDecoderTestUtil.h"
#include "TestSupport.h"
#include "core/CRynWindow.h"
#include "core/EngineState.h"
#include "platform/media/MediaFixtures.h"
#include "sources/CRynFileDecoder.h"

using filedecodertest::ReadToEnd;
using testsupport::MakeTone;

namespace {

// 16-bit stereo WAV of exactly `frames` frames.
QString ExactWav(const QString& name, double frequency, int frames, int rate = 44100) {
    return MakeTone(name, frequency, double(frames) / rate + 0.5, rate, 2,
                    {"-af", QString("atrim=end_sample=%1").arg(frames), "-c:a", "pcm_s16le"});
}

std::vector<std::uint8_t> DataOf(const QString& path) {
    mediafixtures::WavData wav;
    EXPECT_TRUE(mediafixtures::ReadWav(path, &wav));
    return wav.data;
}

struct Block {
    std::uint8_t bytes[kBlockBytes];
    int delivered = -1;
    bool end = false;
    std::int32_t status = -1;
    void Read(CRynFileDecoder& d) { status = d.ReadBlock(bytes, delivered, end); }
};

// The deck window as far as the decoder sees it, through the end-of-track
// handler the deck installs (it sends UWM_END_OF_TRACK): the window
// opens its next file in the decoder and answers 1, or answers 0 when it
// has none left.
class DeckStandIn : public MessageSink {
  public:
    LResult OnAppMessage(Uwm msg, WParam, LParam) override {
        if (msg != UWM_END_OF_TRACK)
            return 0;
        ++endOfTrackMessages;
        if (next.empty())
            return 0;
        const bool opened = decoder->Open(next.front());
        next.erase(next.begin());
        return opened || answerEvenIfNotOpened ? 1 : 0;
    }
    CRynFileDecoder* decoder = nullptr;
    std::vector<std::string> next;
    bool answerEvenIfNotOpened = false;
    std::atomic<int> endOfTrackMessages{0};
};

// Installs the deck's end-of-track handler on `d`: it asks `window`.
void AskWindowAtEnd(CRynFileDecoder& d, WindowHandle window) {
    d.SetEndOfTrackHandler(
        [window] { return static_cast<int>(SendAppMessage(window, UWM_END_OF_TRACK, 0, 0)); });
}

}  // namespace

TEST(FileDecoderEdges, WholeBlocksEndWithAnEmptyBlock) {
    ResetEngineStateForTest();
    const QString path = ExactWav("fde_ten_blocks.wav", 1000, 10 * kBlockFrames);
    const auto data = DataOf(path);
    CRynFileDecoder d;
    ASSERT_TRUE(d.Open(path.toStdString()));
    Block b;
    for (int i = 0; i < 10; ++i) {
        b.Read(d);
        ASSERT_EQ(b.status, CRynFileDecoder::kOk);
        EXPECT_EQ(b.delivered, kBlockBytes);
        EXPECT_FALSE(b.end);
        EXPECT_EQ(0, std::memcmp(b.bytes, data.data() + i * kBlockBytes, kBlockBytes));
    }
    b.Read(d);
    EXPECT_EQ(b.status, CRynFileDecoder::kOk);
    EXPECT_EQ(b.delivered, 0);
    EXPECT_TRUE(b.end);
    EXPECT_TRUE(std::all_of(b.bytes, b.bytes + kBlockBytes, [](std::uint8_t v) { return v == 0; }));
    // Nobody continued the track: the decoder has closed itself.
    b.Read(d);
    EXPECT_EQ(b.status, CRynFileDecoder::kUnexpected);
}

TEST(FileDecoderEdges, ShortLastBlockIsPaddedWithSilence) {
    ResetEngineStateForTest();
    const QString path = ExactWav("fde_short_tail.wav", 1000, 2 * kBlockFrames + 250);
    const auto data = DataOf(path);
    CRynFileDecoder d;
    ASSERT_TRUE(d.Open(path.toStdString()));
    Block b;
    b.Read(d);
    b.Read(d);
    EXPECT_FALSE(b.end);
    b.Read(d);
    EXPECT_EQ(b.delivered, 1000);
    EXPECT_TRUE(b.end);
    EXPECT_EQ(0, std::memcmp(b.bytes, data.data() + 2 * kBlockBytes, 1000));
    EXPECT_TRUE(
        std::all_of(b.bytes + 1000, b.bytes + kBlockBytes, [](std::uint8_t v) { return v == 0; }));
}

TEST(FileDecoderEdges, ElapsedRewindAndSeekFraction) {
    ResetEngineStateForTest();
    const QString path = MakeTone("fde_ten_s.wav", 700, 10, 44100, 2, {"-c:a", "pcm_s16le"});
    const auto data = DataOf(path);
    CRynFileDecoder d;
    ASSERT_TRUE(d.Open(path.toStdString()));
    EXPECT_EQ(d.TotalBytes(), 10 * 176400);
    Block b;
    for (int i = 0; i < 75; ++i)
        b.Read(d);
    EXPECT_DOUBLE_EQ(d.ElapsedSeconds(), 2.0);  // 75 x 4704 / 176400
    EXPECT_EQ(d.BytePosition(), 75 * 4704);

    // Rewind goes back exactly the blocks delivered.
    d.Rewind(3);
    EXPECT_EQ(d.BytePosition(), 72 * 4704);
    b.Read(d);
    EXPECT_EQ(0, std::memcmp(b.bytes, data.data() + 72 * kBlockBytes, kBlockBytes));
    d.Rewind(100);  // not before the start
    EXPECT_EQ(d.BytePosition(), 0);
    b.Read(d);
    EXPECT_EQ(0, std::memcmp(b.bytes, data.data(), kBlockBytes));

    // Byte position 10000, then Rewind(3): 0, not negative.
    d.SeekFraction(float(10000.5 / 1764000.0));
    EXPECT_EQ(d.BytePosition(), 10000);
    d.Rewind(3);
    EXPECT_EQ(d.BytePosition(), 0);
    EXPECT_EQ(d.ElapsedSeconds(), 0.0);
    b.Read(d);
    EXPECT_EQ(0, std::memcmp(b.bytes, data.data(), kBlockBytes));

    // Fractions outside 0 ... 1 are held to it.
    d.SeekFraction(2.0f);
    EXPECT_EQ(d.BytePosition(), 10 * 176400);
    b.Read(d);
    EXPECT_TRUE(b.end);
}

TEST(FileDecoderEdges, SeekFractionCountsWholeSeconds) {
    ResetEngineStateForTest();
    // 200.9 s: the total is 200 whole seconds.
    const QString path = MakeTone("fde_200_9.wav", 330, 200.9, 44100, 1, {"-c:a", "pcm_s16le"});
    const auto data = DataOf(path);
    CRynFileDecoder d;
    ASSERT_TRUE(d.Open(path.toStdString()));
    EXPECT_NEAR(d.DurationSeconds(), 200.9, 1e-6);
    EXPECT_EQ(d.TotalBytes(), 200LL * 176400);
    d.SeekFraction(0.5f);
    EXPECT_EQ(d.BytePosition(), 17640000);
    EXPECT_DOUBLE_EQ(d.ElapsedSeconds(), 100.0);
    // The stream itself goes to half the real duration: 100.45 s.
    const std::int64_t frame = 4429845;
    EXPECT_EQ(d.StreamFrame(), frame);
    Block b;
    b.Read(d);
    const auto* mono = reinterpret_cast<const std::int16_t*>(data.data()) + frame;
    const auto* out = reinterpret_cast<const std::int16_t*>(b.bytes);
    for (int i = 0; i < kBlockFrames; ++i) {
        ASSERT_EQ(out[2 * i], mono[i]) << i;
        ASSERT_EQ(out[2 * i + 1], mono[i]) << i;
    }
    EXPECT_EQ(d.BytePosition(), 17640000 + 4704);
}

TEST(FileDecoderEdges, OtherRatesKeepTheirRateAndRealTime) {
    ResetEngineStateForTest();
    const QString path = MakeTone("fde_48k.wav", 1000, 5, 48000, 2, {"-c:a", "pcm_s16le"});
    const auto data = DataOf(path);
    CRynFileDecoder d;
    ASSERT_TRUE(d.Open(path.toStdString()));
    EXPECT_EQ(d.SampleRate(), 48000);
    EXPECT_EQ(d.TotalBytes(), 5 * 176400);
    Block b;
    for (int i = 0; i < 75; ++i)
        b.Read(d);
    // 75 blocks of 1176 frames at 48000 Hz: 1.8375 s.
    EXPECT_NEAR(d.ElapsedSeconds(), 1.8375, 1e-5);
    EXPECT_EQ(0, std::memcmp(b.bytes, data.data() + 74 * kBlockBytes, kBlockBytes));
    d.Rewind(5);
    b.Read(d);
    EXPECT_EQ(0, std::memcmp(b.bytes, data.data() + 70 * kBlockBytes, kBlockBytes));
}

TEST(FileDecoderEdges, GaplessJoinIntoTheNextTrack) {
    ResetEngineStateForTest();
    const QString first = ExactWav("fde_join_a.wav", 1000, 2 * kBlockFrames + 250);
    const QString second = ExactWav("fde_join_b.wav", 440, 3 * kBlockFrames + 17);
    const QString third = MakeTone("fde_join_c.mp3", 660, 1, 44100, 2, {"-c:a", "libmp3lame"});
    std::vector<std::uint8_t> expected = DataOf(first);
    const auto b2 = DataOf(second);
    expected.insert(expected.end(), b2.begin(), b2.end());

    CRynFileDecoder d;
    DeckStandIn deck;
    deck.decoder = &d;
    AskWindowAtEnd(d, deck.Handle());

    // On the deck window's own thread the message is a direct call.
    deck.next = {second.toStdString()};
    ASSERT_TRUE(d.Open(first.toStdString()));
    Block b;
    std::vector<std::uint8_t> got;
    for (int i = 0; i < 3; ++i) {
        b.Read(d);
        ASSERT_EQ(b.status, CRynFileDecoder::kOk);
        got.insert(got.end(), b.bytes, b.bytes + kBlockBytes);
    }
    // The third block holds the first track's 1000 bytes and the second's start.
    EXPECT_FALSE(b.end);
    EXPECT_EQ(b.delivered, 1000);
    EXPECT_EQ(deck.endOfTrackMessages, 1);
    EXPECT_EQ(d.FileName(), second.toStdString());
    EXPECT_EQ(d.BytePosition(), kBlockBytes - 1000);
    for (;;) {
        b.Read(d);
        ASSERT_EQ(b.status, CRynFileDecoder::kOk);
        got.insert(got.end(), b.bytes, b.bytes + (b.end ? b.delivered : kBlockBytes));
        if (b.end)
            break;
    }
    EXPECT_EQ(deck.endOfTrackMessages, 2);  // answered 0: no third track
    ASSERT_EQ(got.size(), expected.size());
    EXPECT_TRUE(got == expected);  // no silence at the join
    EXPECT_FALSE(d.IsOpen());

    // From a reader thread: the message is sent to the window's thread,
    // which opens the next file while the reader waits.
    deck.endOfTrackMessages = 0;
    deck.next = {second.toStdString(), third.toStdString()};
    ASSERT_TRUE(d.Open(first.toStdString()));
    std::atomic<bool> done{false};
    filedecodertest::Stream s;
    std::thread reader([&] {
        s = ReadToEnd(d);
        done = true;
    });
    ASSERT_TRUE(testsupport::WaitFor([&] { return done.load(); }, 30000));
    reader.join();
    EXPECT_EQ(deck.endOfTrackMessages, 3);
    const auto mp3 = mediafixtures::FfmpegDecodeS16(third, 2);
    ASSERT_EQ(s.samples.size() * 2, expected.size() + mp3.size() * 2);
    EXPECT_EQ(0, std::memcmp(s.samples.data(), expected.data(), expected.size()));

    // A deck that says yes but opened nothing (the next file is gone): the
    // stream ends there.
    deck.endOfTrackMessages = 0;
    deck.next = {"/nonexistent/next.mp3"};
    deck.answerEvenIfNotOpened = true;
    ASSERT_TRUE(d.Open(first.toStdString()));
    const auto s2 = ReadToEnd(d);
    EXPECT_EQ(deck.endOfTrackMessages, 1);
    EXPECT_EQ(s2.lastBytes, 1000);
    EXPECT_TRUE(s2.paddedWithZeros);
    EXPECT_FALSE(d.IsOpen());

    // Another deck's window is not asked.
    deck.endOfTrackMessages = 0;
    deck.next = {second.toStdString()};
    AskWindowAtEnd(d, Engine().decks[0].deckWindow);
    ASSERT_TRUE(d.Open(first.toStdString()));
    ReadToEnd(d);
    EXPECT_EQ(deck.endOfTrackMessages, 0);
}
