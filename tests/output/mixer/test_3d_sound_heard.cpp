// 3D sound end to end: the 3D graph's "3D Sound On" button opens the main
// device again in mono 22050 Hz, a virtual joystick moved to (500, −250)
// reaches the main mixer as the listener position, and the rendered output
// (the Null device, through the real deck and mix cycle) turns towards the
// left speaker as the listener law says. The deck's band values feed the 3D
// surface on every graphs pass, and its range pointers set the surface's
// range.
#include <gtest/gtest.h>

#include <SDL2/SDL.h>
#include <QCoreApplication>

#include <cmath>
#include <vector>

#include "TestSupport.h"
#include "controls/CNiButton.h"
#include "controls/CNiSlide.h"
#include "deck/CRynDeck.h"
#include "deck/DeckRig.h"
#include "deck/graphs/DeckGraphs.h"
#include "dsp/window/CRyn3DGraph.h"
#include "output/laws/ListenerLaw.h"
#include "output/mixer/CRynMainMixer.h"
#include "platform/joystick/Joystick.h"
#include "platform/joystick/VirtualJoystick.h"
#include "platform/sound/SoundDevice.h"
#include "settings/CRynSettings.h"

using testsupport::PlaybackRig;

namespace {

// RMS of the left and right channels over the last `frames` frames.
std::pair<double, double> ChannelRms(const std::vector<std::int16_t>& out, int frames) {
    const std::size_t first = out.size() / 2 - static_cast<std::size_t>(frames);
    double l = 0, r = 0;
    for (std::size_t i = first; i < out.size() / 2; ++i) {
        l += double(out[2 * i]) * out[2 * i];
        r += double(out[2 * i + 1]) * out[2 * i + 1];
    }
    return {std::sqrt(l / frames), std::sqrt(r / frames)};
}

}  // namespace

TEST(ThreeDSoundHeard, AJoystickMovesTheListenerAndTheOutputFollowsTheLaw) {
    const QString tone = testsupport::MakeTone("3d-tone.wav", 440, 6, 44100);
    ASSERT_FALSE(tone.isEmpty());
    SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
    ASSERT_EQ(SDL_InitSubSystem(SDL_INIT_JOYSTICK), 0);

    Settings().SetThreeDGraphMode(QStringLiteral("3D Plot"));
    CRyn3DGraph graph;
    graph.SetJoystick(joystick::OpenSystemJoystick());
    PlaybackRig rig(false, false, nullptr, &graph);
    graph.Initialise(rig.Mixer().Handle());

    // 3D sound on: the main device again, mono 22050 Hz with a listener.
    graph.Sound3DButton()->SetValue(true);
    ASSERT_TRUE(rig.Mixer().Sound3D());
    sound::SoundDevice* device = rig.Mixer().MainOutput().Device();
    ASSERT_NE(device, nullptr);
    EXPECT_EQ(device->Format().channels, 1);
    EXPECT_EQ(device->Format().rate, 22050);
    ASSERT_NE(device->Listener(), nullptr);
    EXPECT_EQ(device->Identifier(), "null:manual");

    ASSERT_TRUE(rig.LoadAndPrime(0, {tone}));
    ASSERT_TRUE(rig.Drop(0));
    ASSERT_TRUE(rig.RenderBlocks(12));
    const auto centre = ChannelRms(rig.Output(), 4 * 1176);
    ASSERT_GT(centre.first, 1000.0) << "the tone plays";
    EXPECT_NEAR(centre.second / centre.first, 1.0, 0.01) << "the centre: both speakers alike";

    // A joystick plugged in and pushed to (500, −250).
    testsupport::VirtualJoystick stick;
    ASSERT_TRUE(stick.Ok()) << SDL_GetError();
    stick.Set(16384, -8192);
    graph.SetSoundMode(true);  // the 50 ms polls start
    ASSERT_TRUE(testsupport::WaitFor([&] { return rig.Mixer().ListenerX() != 0.0f; }, 2000));
    EXPECT_EQ(rig.Mixer().ListenerX(), 500.0f);
    EXPECT_EQ(rig.Mixer().ListenerY(), -250.0f);
    EXPECT_EQ(device->Listener()->x.load(), 500.0f);
    EXPECT_EQ(device->Listener()->y.load(), -250.0f);
    graph.SetSoundMode(false);

    rig.ClearOutput();
    ASSERT_TRUE(rig.RenderBlocks(6));
    const auto moved = ChannelRms(rig.Output(), 4 * 1176);  // after the glide
    const listener_law::Gains g = listener_law::GainsAt(500.0f, -250.0f);
    EXPECT_NEAR(moved.second / moved.first, g.right / g.left, 0.01) << "right over left";
    EXPECT_NEAR(moved.first / centre.first, g.left, 0.02) << "the left speaker, further away";

    // 3D sound off: stereo 44100 Hz again, the deck's buffers made again.
    graph.Sound3DButton()->SetValue(false);
    EXPECT_FALSE(rig.Mixer().Sound3D());
    ASSERT_NE(rig.Mixer().MainOutput().Device(), nullptr);
    EXPECT_EQ(rig.Mixer().MainOutput().Device()->Format().channels, 2);
    EXPECT_EQ(rig.Mixer().MainOutput().Device()->Listener(), nullptr);
    EXPECT_TRUE(rig.Mixer().MainOutput().SoundEngine()->Deck(0).forward != nullptr);

    SDL_QuitSubSystem(SDL_INIT_JOYSTICK);
}

TEST(ThreeDSoundHeard, TheDecksBandValuesFeedTheSurfaceWhileItIsShown) {
    const QString tone = testsupport::MakeTone("3d-feed.wav", 1000, 6, 44100);
    ASSERT_FALSE(tone.isEmpty());
    Settings().SetThreeDGraphMode(QStringLiteral("3D Plot"));
    Settings().SetThreeDGraphEnabledState(true);
    CRyn3DGraph graph;
    graph.SetJoystick(std::make_unique<joystick::NullJoystick>());
    PlaybackRig rig(false, false, nullptr, &graph);
    graph.Initialise(rig.Mixer().Handle());

    // Pointer 2 of the deck's graph range slide sets the surface's maximum.
    rig.Deck(0).Graphs().RangeSlide()->SetPointerValue(1, 150000.0);
    ASSERT_TRUE(testsupport::WaitFor([&] { return graph.History().Maximum(0) == 150000.0; }, 2000));
    rig.Deck(0).Graphs().RangeSlide()->SetPointerValue(0, 20000.0);
    ASSERT_TRUE(testsupport::WaitFor([&] { return graph.History().Minimum(0) == 20000.0; }, 2000));

    ASSERT_TRUE(rig.LoadAndPrime(0, {tone}));
    ASSERT_TRUE(rig.Drop(0));
    ASSERT_TRUE(rig.RenderAndDraw(30));
    const int bands = rig.Deck(0).Graphs().Analysis().BandsInPlot();
    EXPECT_EQ(graph.History().Bands(0), bands);
    double top = 0;
    for (int b = 0; b < bands; ++b)
        top = std::max(top, graph.History().At(0, 0, b));
    EXPECT_GT(top, 0.0) << "the tone's band shows";
    EXPECT_EQ(graph.SurfaceDraws(), 0) << "hidden: rows kept, nothing drawn";

    graph.show();
    const int before = graph.SurfaceDraws();
    ASSERT_TRUE(rig.RenderAndDraw(10));
    EXPECT_GE(graph.SurfaceDraws(), before + 5) << "one surface a pass with new rows";
    EXPECT_LE(graph.SurfaceDraws(), before + 10) << "not one per deck";
}
