// The output engine on the manual-clock Null device: every deck buffer is
// mixed into memory on the test thread, so the sound that would reach the
// speakers is checked sample by sample.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <vector>

#include "core/EngineState.h"
#include "output/engine/CRynAudioOutput.h"
#include "output/engine/FadeCurves.h"
#include "output/engine/RingGeometry.h"
#include "platform/sound/SoundDevice.h"

namespace {

using output::kRingBytes;

struct Frame {
    std::int16_t left, right;
};

class AudioOutputTest : public ::testing::Test {
  protected:
    void SetUp() override {
        ResetEngineStateForTest();
        ASSERT_EQ(
            out.OpenDevice(sound::SoundDevice::OpenNull(sound::SoundDevice::NullClock::Manual), 0),
            kStatusOk);
        ASSERT_TRUE(out.HasDevice());
    }

    // Mixes `frames` frames of the device into memory.
    std::vector<Frame> Render(int frames) {
        std::vector<Frame> f(static_cast<std::size_t>(frames));
        EXPECT_TRUE(out.Device()->Render(frames, reinterpret_cast<std::int16_t*>(f.data())));
        return f;
    }

    static PcmBlock Block(const std::function<Frame(int)>& frame) {
        PcmBlock b{};
        for (int i = 0; i < kBlockFrames; ++i) {
            const Frame f = frame(i);
            std::memcpy(b.data() + 4 * i, &f, 4);
        }
        return b;
    }

    static Frame At(const PcmBlock& b, int i) {
        Frame f;
        std::memcpy(&f, b.data() + 4 * i, 4);
        return f;
    }

    // Fills the whole forward ring with a constant level.
    void FillConstant(int deck, std::int16_t level) {
        const PcmBlock b = Block([&](int) { return Frame{level, level}; });
        for (int k = 0; k < output::kRingBlocks; ++k)
            out.WriteDeckBlock(deck, b.data());
    }

    CRynAudioOutput out;
    // The engine record is made anew in SetUp: always look it up.
    static DeckSharedState& DeckA() { return Engine().decks[0]; }
};

TEST_F(AudioOutputTest, NewDeckIsSilentWithCursorsAtTheirStart) {
    ASSERT_EQ(out.CreateDeckBuffers(0, 44100, true), kStatusOk);
    EXPECT_EQ(out.ForwardWriteCursor(0).bytes, 0);
    EXPECT_EQ(out.ReverseWriteCursor(0).bytes, output::kLastBlockOffset);
    EXPECT_EQ(out.ReverseWriteCursor(0).blocks, 119);
    EXPECT_EQ(out.ForwardPlayCursor(0).bytes, 0);
    EXPECT_EQ(out.ReversePlayCursor(0).bytes, 0);
    EXPECT_FALSE(out.IsForwardPlaying(0));
    EXPECT_EQ(out.ForwardFrequency(0), 44100);

    ASSERT_EQ(out.PlayForward(0), kStatusOk);
    EXPECT_TRUE(out.IsForwardPlaying(0));
    for (const Frame& f : Render(3 * kBlockFrames)) {
        ASSERT_EQ(f.left, 0);
        ASSERT_EQ(f.right, 0);
    }
    EXPECT_EQ(out.ForwardPlayCursor(0).bytes, 3 * kBlockBytes);
    EXPECT_EQ(out.ForwardPlayCursor(0).blocks, 3);
}

TEST_F(AudioOutputTest, WrittenBlockComesOutBitExactAtUnityGain) {
    ASSERT_EQ(out.CreateDeckBuffers(0, 44100, true), kStatusOk);
    const PcmBlock silence{};
    std::uint32_t seed = 12345;
    const PcmBlock music = Block([&](int) {
        seed = seed * 1664525u + 1013904223u;
        return Frame{static_cast<std::int16_t>(seed >> 16), static_cast<std::int16_t>(seed >> 7)};
    });
    // Block 0 silent (the start fade passes over it), block 1 the music.
    ASSERT_EQ(out.WriteDeckBlock(0, silence.data()), kStatusOk);
    ASSERT_EQ(out.WriteDeckBlock(0, music.data()), kStatusOk);
    EXPECT_EQ(out.BlocksWritten(0), 2 * kBlockBytes);  // the silent fill is not counted
    ASSERT_EQ(out.SetDeckGain(0, 1.0f), kStatusOk);
    ASSERT_EQ(out.SetDeckPan(0, 0.0f), kStatusOk);
    ASSERT_EQ(out.PlayForward(0), kStatusOk);
    Render(kBlockFrames);
    const auto heard = Render(kBlockFrames);
    for (int i = 0; i < kBlockFrames; ++i) {
        ASSERT_EQ(heard[i].left, At(music, i).left) << "frame " << i;
        ASSERT_EQ(heard[i].right, At(music, i).right) << "frame " << i;
    }
}

TEST_F(AudioOutputTest, GainAndPanLawsReachTheDevice) {
    ASSERT_EQ(out.CreateDeckBuffers(0, 44100, true), kStatusOk);
    sound::SoundBuffer* forward = out.SoundEngine()->Deck(0).forward.get();
    sound::SoundBuffer* reverse = out.SoundEngine()->Deck(0).reverse.get();

    out.SetDeckGain(0, 1.0f);
    EXPECT_EQ(forward->Volume(), 0);
    out.SetDeckGain(0, 0.0001f);
    EXPECT_EQ(forward->Volume(), -10000);
    out.SetDeckGain(0, 0.5f);
    EXPECT_EQ(forward->Volume(), -1250);
    EXPECT_EQ(reverse->Volume(), -1250);
    out.SetDeckPan(0, 0.25f);
    EXPECT_EQ(forward->Pan(), 2500);
    out.SetDeckPan(0, -1.0f);
    EXPECT_EQ(forward->Pan(), -10000);
    EXPECT_EQ(reverse->Pan(), -10000);

    // What is heard: -12.5 dB, and pan +0.25 takes 25 dB off the left.
    FillConstant(0, 16000);
    out.SetDeckPan(0, 0.25f);
    out.PlayForward(0);
    Render(2 * kBlockFrames);
    const Frame f = Render(1).front();
    EXPECT_NEAR(f.right, 16000 * std::pow(10.0, -1250 / 2000.0), 1.0);
    EXPECT_NEAR(f.left, 16000 * std::pow(10.0, -3750 / 2000.0), 1.0);

    // The main volume and balance act after the mix.
    out.SetMasterGain(50, 100);
    Render(kBlockFrames);
    const Frame g = Render(1).front();
    EXPECT_NEAR(g.left, f.left * 0.5, 1.0);
    EXPECT_NEAR(g.right, f.right, 1.0);
}

TEST_F(AudioOutputTest, DoubleFrequencyPlaysTheRingTwiceAsFast) {
    ASSERT_EQ(out.CreateDeckBuffers(0, 44100, true), kStatusOk);
    // Frame n of the ring carries n (mod 30000) so every heard frame names
    // the ring frame it came from.
    for (int k = 0; k < output::kRingBlocks; ++k) {
        const PcmBlock b = Block([&](int i) {
            const int n = k * kBlockFrames + i;
            return Frame{static_cast<std::int16_t>(n % 30000),
                         static_cast<std::int16_t>(-(n % 30000))};
        });
        out.WriteDeckBlock(0, b.data());
    }
    ASSERT_EQ(out.SetForwardFrequency(0, 88200), kStatusOk);
    EXPECT_EQ(out.ForwardFrequency(0), 88200);
    EXPECT_EQ(out.RequestedFrequency(0), 88200);
    out.PlayForward(0);
    Render(2000);  // past the start fade
    EXPECT_EQ(out.ForwardPlayCursor(0).bytes, 4 * 4000);
    const auto heard = Render(30000);
    for (int k = 0; k < 30000; ++k) {
        const int n = (4000 + 2 * k) % (kRingBytes / 4);
        ASSERT_EQ(heard[k].left, n % 30000) << k;
        ASSERT_EQ(heard[k].right, -(n % 30000)) << k;
    }
    // 64000 frames of the 141120-frame ring played.
    EXPECT_EQ(out.ForwardPlayCursor(0).bytes, 4 * 64000);

    // The measured rate follows the play cursor.
    out.MeasuredRate(0, 10.0);
    Render(22050);
    EXPECT_NEAR(out.MeasuredRate(0, 10.5), 88200.0, 1.0);
}

TEST_F(AudioOutputTest, NotificationFiresOncePerBlockBoundary) {
    ASSERT_EQ(out.CreateDeckBuffers(0, 44100, true), kStatusOk);
    out.PlayForward(0);
    for (int block = 0; block < 2 * output::kRingBlocks + 3; ++block) {
        Render(kBlockFrames - 1);
        ASSERT_FALSE(DeckA().forwardNotifyEvent.IsSet()) << "block " << block;
        Render(1);
        ASSERT_TRUE(DeckA().forwardNotifyEvent.Wait(0)) << "block " << block;
        ASSERT_FALSE(DeckA().reverseNotifyEvent.IsSet());
    }
    // The cursor wrapped round the ring twice and stands three blocks in.
    EXPECT_EQ(out.ForwardPlayCursor(0).bytes, 3 * kBlockBytes);

    // A deck made without notifications never signals.
    ASSERT_EQ(out.CreateDeckBuffers(1, 44100, false), kStatusOk);
    out.PlayForward(1);
    out.StopForward(0);
    Render(3 * kBlockFrames);
    EXPECT_FALSE(Engine().decks[1].forwardNotifyEvent.IsSet());
}

TEST_F(AudioOutputTest, ReverseRingHoldsMirroredFrameReversedBlocks) {
    ASSERT_EQ(out.CreateDeckBuffers(0, 44100, true), kStatusOk);
    std::vector<PcmBlock> blocks;
    for (int k = 0; k < 3; ++k) {
        blocks.push_back(Block([&](int i) {
            return Frame{static_cast<std::int16_t>(1000 * k + i),
                         static_cast<std::int16_t>(-1000 * k - i)};
        }));
        ASSERT_EQ(out.WriteDeckBlock(0, blocks.back().data()), kStatusOk);
    }
    EXPECT_EQ(out.ForwardWriteCursor(0).blocks, 3);
    EXPECT_EQ(out.ReverseWriteCursor(0).blocks, 116);

    sound::SoundBuffer* reverse = out.SoundEngine()->Deck(0).reverse.get();
    for (int k = 0; k < 3; ++k) {
        sound::LockedRegion r;
        ASSERT_EQ(reverse->Lock((119 - k) * kBlockBytes, kBlockBytes, &r), kStatusOk);
        ASSERT_EQ(r.firstBytes, static_cast<std::uint32_t>(kBlockBytes));
        for (int i = 0; i < kBlockFrames; ++i) {
            Frame f;
            std::memcpy(&f, r.first + 4 * i, 4);
            ASSERT_EQ(f.left, At(blocks[k], kBlockFrames - 1 - i).left);
            ASSERT_EQ(f.right, At(blocks[k], kBlockFrames - 1 - i).right);
        }
        reverse->Unlock(r);
    }

    // Switching to backwards in block 0 starts the reverse ring at block 119:
    // block 0 is heard backwards (after the 64-frame de-click).
    out.PlayForward(0);
    Render(100);
    ASSERT_EQ(out.SwitchDirection(0, false), kStatusOk);
    EXPECT_FALSE(out.IsForwardPlaying(0));
    EXPECT_TRUE(out.IsReversePlaying(0));
    EXPECT_EQ(out.ReversePlayCursor(0).blocks, 119);
    const auto heard = Render(kBlockFrames);
    for (int i = 64; i < kBlockFrames; ++i) {
        // The forward tail (a 64-frame de-click of block 0) has ended by now.
        ASSERT_EQ(heard[i].left, At(blocks[0], kBlockFrames - 1 - i).left) << i;
    }
    // Back to forwards: the forward ring resumes where it stopped.
    ASSERT_EQ(out.SwitchDirection(0, true), kStatusOk);
    EXPECT_TRUE(out.IsForwardPlaying(0));
    EXPECT_FALSE(out.IsReversePlaying(0));

    // In block 119 the mirror is block 0; PlayReverse uses the same mirror.
    EXPECT_EQ(output::MirrorPosition(119 * kBlockBytes + 20), 0);
    EXPECT_EQ(output::MirrorPosition(0), output::kLastBlockOffset);
    out.StopForward(0);
    out.SetForwardPosition(0, 119);
    ASSERT_EQ(out.PlayReverse(0), kStatusOk);
    EXPECT_EQ(out.ReversePlayCursor(0).bytes, 0);
    EXPECT_EQ(out.PlayReverse(0), kStatusNoChange);
    EXPECT_EQ(out.StopReverse(0), kStatusOk);
    EXPECT_EQ(out.StopReverse(0), kStatusNoChange);
}

TEST_F(AudioOutputTest, FadesAreMonotoneAndKeepTheVolume) {
    const output::FadeCurve in = output::FadeInVolumes(-1250);
    const output::FadeCurve outCurve = output::FadeOutVolumes(-1250);
    EXPECT_EQ(in.front(), -10000);
    EXPECT_EQ(in.back(), -1250);
    EXPECT_EQ(outCurve.front(), -1250);
    EXPECT_EQ(outCurve.back(), -10000);
    for (int i = 1; i <= output::kFadeSteps; ++i) {
        EXPECT_GE(in[i], in[i - 1]);
        EXPECT_LE(outCurve[i], outCurve[i - 1]);
    }

    ASSERT_EQ(out.CreateDeckBuffers(0, 44100, true), kStatusOk);
    FillConstant(0, 20000);
    ASSERT_EQ(out.PlayForward(0), kStatusOk);
    EXPECT_EQ(out.PlayForward(0), kStatusNoChange);
    EXPECT_EQ(out.SoundEngine()->Deck(0).forward->Volume(), 0);
    const auto rise = Render(1200);
    EXPECT_LT(rise.front().left, 10);
    for (int i = 1; i < 1200; ++i)
        ASSERT_GE(rise[i].left, rise[i - 1].left) << i;
    EXPECT_EQ(rise.back().left, 20000);

    ASSERT_EQ(out.StopForward(0), kStatusOk);
    EXPECT_FALSE(out.IsForwardPlaying(0));
    const int stoppedAt = out.ForwardPlayCursor(0).bytes;
    EXPECT_EQ(out.StopForward(0), kStatusNoChange);
    EXPECT_EQ(out.SoundEngine()->Deck(0).forward->Volume(), 0);
    const auto fall = Render(1200);
    EXPECT_GT(fall.front().left, 19000);
    for (int i = 1; i < 1200; ++i)
        ASSERT_LE(fall[i].left, fall[i - 1].left) << i;
    EXPECT_EQ(fall.back().left, 0);
    EXPECT_EQ(out.ForwardPlayCursor(0).bytes, stoppedAt);
}

TEST_F(AudioOutputTest, CursorsWrapRoundTheRing) {
    EXPECT_EQ(output::MoveCursor(output::kLastBlockOffset, kBlockBytes), 0);
    EXPECT_EQ(output::MoveCursor(0, -kBlockBytes), output::kLastBlockOffset);

    ASSERT_EQ(out.CreateDeckBuffers(0, 44100, true), kStatusOk);
    const PcmBlock b{};
    for (int k = 0; k < 119; ++k)
        out.WriteDeckBlock(0, b.data());
    EXPECT_EQ(out.ForwardWriteCursor(0).bytes, output::kLastBlockOffset);
    EXPECT_EQ(out.ReverseWriteCursor(0).bytes, 0);
    out.WriteDeckBlock(0, b.data());
    EXPECT_EQ(out.ForwardWriteCursor(0).bytes, 0);
    EXPECT_EQ(out.ReverseWriteCursor(0).bytes, output::kLastBlockOffset);

    // Playing backwards the cursors run the other way.
    out.WriteDeckBlock(0, b.data(), true);
    EXPECT_EQ(out.ForwardWriteCursor(0).bytes, output::kLastBlockOffset);
    EXPECT_EQ(out.ReverseWriteCursor(0).bytes, 0);

    // The play cursor comes back to 0 after a whole ring.
    out.PlayForward(0);
    Render(kRingBytes / 4 - 1);
    EXPECT_EQ(out.ForwardPlayCursor(0).bytes, kRingBytes - 4);
    Render(1);
    EXPECT_EQ(out.ForwardPlayCursor(0).bytes, 0);
    Render(10);
    EXPECT_EQ(out.ForwardPlayCursor(0).bytes, 40);
    out.StopForward(0);
    out.SetForwardPositionBytes(0, 4 * kBlockBytes + 6);
    EXPECT_EQ(out.ForwardPlayCursor(0).bytes, 4 * kBlockBytes + 4);
    out.SetForwardPosition(0, 7);
    EXPECT_EQ(out.ForwardPlayCursor(0).blocks, 7);
}

TEST_F(AudioOutputTest, ScratchBufferCopiesTheRingWithSoftEdges) {
    EXPECT_EQ(out.CreateScratch(0, 44100, 1000), kStatusOk);  // no forward ring needed
    ASSERT_EQ(out.CreateDeckBuffers(0, 44100, true), kStatusOk);
    EXPECT_EQ(out.CreateScratch(0, 44100, 0), kStatusUnexpected);
    ASSERT_EQ(out.CreateScratch(0, 44100, 1001), kStatusOk);
    EXPECT_EQ(out.SoundEngine()->Deck(0).scratchBytes, 1000);
    // Smaller than the device accepts: grown 100 bytes at a time.
    ASSERT_EQ(out.CreateScratch(0, 44100, 8), kStatusOk);
    EXPECT_EQ(out.SoundEngine()->Deck(0).scratchBytes, 108);

    const int bytes = 2 * kBlockBytes;
    ASSERT_EQ(out.CreateScratch(0, 44100, bytes), kStatusOk);
    FillConstant(0, 10000);
    out.SetDeckGain(0, 0.5f);
    out.SetDeckPan(0, -0.5f);
    out.PlayForward(0);
    Render(500);
    // From the last block, wrapping to the first.
    ASSERT_EQ(out.PlayScratch(0, output::kLastBlockOffset + 2), kStatusOk);
    EXPECT_FALSE(out.IsForwardPlaying(0));
    sound::SoundBuffer* scratch = out.SoundEngine()->Deck(0).scratch.get();
    ASSERT_NE(scratch, nullptr);
    EXPECT_TRUE(scratch->IsPlaying());
    EXPECT_EQ(scratch->Volume(), -1250);
    EXPECT_EQ(scratch->Pan(), -5000);
    sound::LockedRegion r;
    ASSERT_EQ(scratch->Lock(0, bytes, &r), kStatusOk);
    const auto* s = reinterpret_cast<const std::int16_t*>(r.first);
    const int n = bytes / 2;
    EXPECT_EQ(s[0], 0);
    EXPECT_EQ(s[50], 5000);
    EXPECT_EQ(s[100], 10000);
    EXPECT_EQ(s[n / 2], 10000);
    EXPECT_EQ(s[n - 1], 0);
    EXPECT_EQ(s[n - 51], 5000);
    scratch->Unlock(r);
    Render(300);
    EXPECT_GT(out.ScratchPlayCursor(0).bytes, 0);

    ASSERT_EQ(out.EndScratch(0), kStatusOk);
    EXPECT_EQ(out.SoundEngine()->Deck(0).scratch, nullptr);
    EXPECT_TRUE(out.IsForwardPlaying(0));
    EXPECT_EQ(out.PlayScratch(0, 0), kStatusNotInitialised);
}

TEST_F(AudioOutputTest, MissingDeviceOrBufferAnswersNotInitialised) {
    CRynAudioOutput none;
    const PcmBlock b{};
    EXPECT_EQ(none.CreateDeckBuffers(0), kStatusNotInitialised);
    EXPECT_EQ(none.WriteDeckBlock(0, b.data()), kStatusNotInitialised);
    EXPECT_EQ(none.WriteForward(0, b.data(), false), kStatusNotInitialised);
    EXPECT_EQ(none.PlayForward(0), kStatusNotInitialised);
    EXPECT_EQ(none.PlayReverse(0), kStatusNotInitialised);
    EXPECT_EQ(none.StopForward(0), kStatusNotInitialised);
    EXPECT_EQ(none.SwitchDirection(0, false), kStatusNotInitialised);
    EXPECT_EQ(none.CreateScratch(0, 44100, 1000), kStatusNotInitialised);
    EXPECT_EQ(none.SetDeckGain(0, 0.5f), kStatusNotInitialised);
    EXPECT_EQ(none.SetForwardFrequency(0, 44100), kStatusNotInitialised);
    EXPECT_EQ(none.ForwardPlayCursor(0).status, kStatusNotInitialised);
    EXPECT_EQ(none.ForwardPlayCursor(0).bytes, 0);
    EXPECT_FALSE(none.IsForwardPlaying(0));
    EXPECT_EQ(none.MeasuredRate(0), 0.0);

    // An empty name keeps things as they are; an unknown device leaves none.
    EXPECT_EQ(none.OpenDevice("", "null", 0, false), kStatusOk);
    EXPECT_FALSE(none.HasDevice());
    EXPECT_EQ(none.OpenDevice("Gone", "pa:Nothing:nowhere", 0, false), kStatusNoDriver);
    EXPECT_FALSE(none.HasDevice());
    EXPECT_EQ(none.PlayForward(1), kStatusNotInitialised);
    EXPECT_EQ(none.OpenDevice("Null", "null", 0, false), kStatusOk);
    EXPECT_TRUE(none.HasDevice());

    // Device present, deck buffers not made, or a bad deck index.
    EXPECT_EQ(out.PlayForward(1), kStatusNotInitialised);
    EXPECT_EQ(out.WriteDeckBlock(1, b.data()), kStatusNotInitialised);
    EXPECT_EQ(out.SwitchDirection(1, true), kStatusNotInitialised);
    EXPECT_EQ(out.EndScratch(1), kStatusNotInitialised);
    EXPECT_EQ(out.PlayForward(2), kStatusNotInitialised);
    EXPECT_EQ(out.CreateDeckBuffers(-1), kStatusNotInitialised);
    out.ReleaseDeck(0);
    EXPECT_EQ(out.StopForward(0), kStatusNotInitialised);
}

}  // namespace
