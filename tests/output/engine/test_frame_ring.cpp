// The recorder's ring alone: frames come out in order across the wrap, a
// full ring stores what fits and counts the rest lost, and one producer and
// one consumer on two threads never see a torn or repeated frame.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <thread>
#include <vector>

#include "output/engine/FrameRing.h"

namespace {

// Frames numbered from `first`: left = n, right = -n (16-bit wrap-around).
std::vector<std::int16_t> Numbered(int first, int frames) {
    std::vector<std::int16_t> v(2 * static_cast<std::size_t>(frames));
    for (int i = 0; i < frames; ++i) {
        v[2 * i] = static_cast<std::int16_t>(first + i);
        v[2 * i + 1] = static_cast<std::int16_t>(-(first + i));
    }
    return v;
}

}  // namespace

TEST(FrameRing, FramesComeOutInOrderAcrossTheWrap) {
    FrameRing ring(10);
    EXPECT_EQ(ring.Push(Numbered(0, 7).data(), 7), 7u);
    std::vector<std::int16_t> out(2 * 10);
    ASSERT_EQ(ring.Pop(out.data(), 5), 5u);
    EXPECT_EQ(std::vector<std::int16_t>(out.begin(), out.begin() + 10), Numbered(0, 5));
    // Frames 7 … 12 fill slots 7, 8, 9 and then 0, 1, 2.
    EXPECT_EQ(ring.Push(Numbered(7, 6).data(), 6), 6u);
    EXPECT_EQ(ring.Waiting(), 8u);
    ASSERT_EQ(ring.Pop(out.data(), 10), 8u);
    EXPECT_EQ(std::vector<std::int16_t>(out.begin(), out.begin() + 16), Numbered(5, 8));
    EXPECT_EQ(ring.Pop(out.data(), 10), 0u);
    EXPECT_EQ(ring.StoredFrames(), 13u);
    EXPECT_EQ(ring.LostFrames(), 0u);
}

TEST(FrameRing, AFullRingStoresWhatFitsAndCountsTheRestLost) {
    FrameRing ring(8);
    EXPECT_EQ(ring.Push(Numbered(0, 5).data(), 5), 5u);
    EXPECT_EQ(ring.Push(Numbered(5, 5).data(), 5), 3u);  // frames 8 and 9 lost
    EXPECT_EQ(ring.LostFrames(), 2u);
    EXPECT_EQ(ring.Push(Numbered(10, 4).data(), 4), 0u);  // full: all four lost
    EXPECT_EQ(ring.LostFrames(), 6u);
    std::vector<std::int16_t> out(2 * 8);
    ASSERT_EQ(ring.Pop(out.data(), 8), 8u);
    EXPECT_EQ(out, Numbered(0, 8));
    // Room again: the next frames follow the gap, nothing is replayed.
    EXPECT_EQ(ring.Push(Numbered(14, 3).data(), 3), 3u);
    ASSERT_EQ(ring.Pop(out.data(), 8), 3u);
    EXPECT_EQ(std::vector<std::int16_t>(out.begin(), out.begin() + 6), Numbered(14, 3));
    EXPECT_EQ(ring.StoredFrames(), 11u);
    EXPECT_EQ(ring.StoredFrames() + ring.LostFrames(), 17u);  // every frame accounted for
}

TEST(FrameRing, OneProducerAndOneConsumerOnTwoThreads) {
    // A small ring and a consumer that sometimes dawdles: frames are lost,
    // but what arrives is in order, whole, and stored + lost = pushed.
    constexpr int kTotal = 2'000'000;
    constexpr int kChunk = 257;
    FrameRing ring(4096);
    std::atomic<bool> done{false};
    std::vector<std::uint32_t> seen;
    seen.reserve(kTotal);
    std::thread consumer([&] {
        std::vector<std::int16_t> out(2 * 1000);
        int round = 0;
        for (;;) {
            const bool last = done.load(std::memory_order_acquire);
            std::size_t n;
            while ((n = ring.Pop(out.data(), 1000)) > 0) {
                for (std::size_t i = 0; i < n; ++i)
                    seen.push_back(
                        static_cast<std::uint16_t>(out[2 * i]) |
                        static_cast<std::uint32_t>(static_cast<std::uint16_t>(out[2 * i + 1]))
                            << 16);
            }
            if (last)
                break;
            if (++round % 64 == 0)
                std::this_thread::sleep_for(std::chrono::microseconds(200));
        }
    });
    std::vector<std::int16_t> chunk(2 * kChunk);
    for (int f = 0; f < kTotal;) {
        const int n = std::min(kChunk, kTotal - f);
        for (int i = 0; i < n; ++i) {
            // The frame's own number, split over its two samples.
            const auto v = static_cast<std::uint32_t>(f + i);
            chunk[2 * i] = static_cast<std::int16_t>(v & 0xffff);
            chunk[2 * i + 1] = static_cast<std::int16_t>(v >> 16);
        }
        ring.Push(chunk.data(), static_cast<std::size_t>(n));
        f += n;
    }
    done.store(true, std::memory_order_release);
    consumer.join();
    EXPECT_EQ(ring.StoredFrames() + ring.LostFrames(), static_cast<std::uint64_t>(kTotal));
    ASSERT_EQ(seen.size(), ring.StoredFrames());
    for (std::size_t i = 1; i < seen.size(); ++i)
        ASSERT_LT(seen[i - 1], seen[i]) << "at " << i;
}
