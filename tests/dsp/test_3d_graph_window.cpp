// The 3D graph window: its controls and their registry, the two modes, the
// enable look, split and join, drawing only while shown, the joystick
// position it posts, and both modes rendered to PNGs in the build folder.
#include <gtest/gtest.h>

#include <SDL2/SDL.h>
#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QLabel>
#include <QTest>

#include <cmath>

#include "TestSupport.h"
#include "controls/CNiButton.h"
#include "controls/CNiGraph.h"
#include "controls/CNiGraph3D.h"
#include "dsp/window/CRyn3DGraph.h"
#include "platform/joystick/Joystick.h"
#include "platform/joystick/VirtualJoystick.h"
#include "settings/CRynSettings.h"

using testsupport::MessageLog;

namespace {

std::vector<double> Ramp(int n, double top) {
    std::vector<double> v(static_cast<size_t>(n));
    for (int i = 0; i < n; ++i)
        v[i] = top * (i + 1) / n;
    return v;
}

struct GraphRig {
    GraphRig() {
        Settings().SetThreeDGraphMode(QStringLiteral("3D Plot"));
        Settings().SetThreeDGraphJoinOrSplit(QStringLiteral("Split"));
        Settings().SetThreeDGraphEnabledState(true);
        g.SetJoystick(std::make_unique<joystick::NullJoystick>());
        g.Initialise(mixer.Handle());
        g.resize(560, 300);
    }
    MessageLog mixer;
    CRyn3DGraph g;
};

}  // namespace

TEST(ThreeDGraphWindow, RegistersEveryControlWithTitleDescriptionAndLabel) {
    GraphRig rig;
    const ComponentRegistry& r = rig.g.Registry();
    ASSERT_EQ(r.Count(), 8);
    for (int k = 0; k < r.Count(); ++k) {
        EXPECT_TRUE(r.Title(k).endsWith(':')) << k;
        EXPECT_FALSE(r.Description(k).isEmpty()) << k;
        EXPECT_FALSE(r.Label(k).isEmpty()) << k;
        EXPECT_EQ(r.Control(k)->toolTip(), r.Label(k)) << k;
    }
    EXPECT_EQ(r.Control(0), rig.g.Surface());
    EXPECT_EQ(r.Title(2), "Graphs and Meters FPS:");
    EXPECT_EQ(r.Description(0).left(37), "Plots the spectrum in 3 Dimensions. T");
    EXPECT_EQ(r.Description(7), "Press this to orient the view so the 3D plot appears flat.");
}

TEST(ThreeDGraphWindow, ModesSwapThePlotsAndRunTheJoystickTimerOnlyForSound) {
    GraphRig rig;
    rig.g.show();
    EXPECT_EQ(rig.g.ModeButton()->Caption(), "3D Plot");
    EXPECT_TRUE(rig.g.Surface()->isVisible());
    EXPECT_FALSE(rig.g.PositionPlot()->isVisible());
    EXPECT_FALSE(rig.g.WindowTimerActive(CRyn3DGraph::kPositionTimer));
    EXPECT_TRUE(rig.g.Plotting());

    rig.g.ModeButton()->SetValue(true);  // as a click does
    EXPECT_EQ(rig.g.ModeButton()->Caption(), "3D Sound");
    EXPECT_FALSE(rig.g.Surface()->isVisible());
    EXPECT_TRUE(rig.g.PositionPlot()->isVisible());
    EXPECT_TRUE(rig.g.WindowTimerActive(CRyn3DGraph::kPositionTimer));
    EXPECT_FALSE(rig.g.Plotting());
    EXPECT_EQ(Settings().GetThreeDGraphMode(), "3D Sound");

    rig.g.SetSoundMode(false);
    EXPECT_FALSE(rig.g.WindowTimerActive(CRyn3DGraph::kPositionTimer));
    EXPECT_EQ(Settings().GetThreeDGraphMode(), "3D Plot");
}

TEST(ThreeDGraphWindow, EnableColoursTheSurfaceAndPersists) {
    GraphRig rig;
    rig.g.show();
    EXPECT_EQ(rig.g.Surface()->PlotAreaColor(), QColor(Qt::black));
    // Right-click on the surface switches it off.
    QTest::mouseClick(rig.g.Surface(), Qt::RightButton);
    EXPECT_FALSE(rig.g.GraphEnabled());
    EXPECT_FALSE(rig.g.WantsRows());
    EXPECT_EQ(rig.g.Surface()->PlotAreaColor(), QColor(128, 128, 128));
    EXPECT_FALSE(Settings().GetThreeDGraphEnabledState());
    rig.g.SetGraphEnabled(true);
    EXPECT_TRUE(Settings().GetThreeDGraphEnabledState());
    rig.g.SetSoundMode(true);
    EXPECT_EQ(rig.g.Surface()->PlotAreaColor(), QColor(128, 128, 128)) << "not plotting";
}

TEST(ThreeDGraphWindow, SurfaceEdgeCasesThroughTheControl) {
    GraphRig rig;
    rig.g.show();
    // A level at the deck's maximum draws 1.0.
    std::vector<double> a = Ramp(12, 280000.0);
    std::vector<double> b = Ramp(6, 140000.0);
    rig.g.AddRow(0, a, 12);
    rig.g.AddRow(1, b, 6);
    rig.g.PlotSurface(0);
    CNiGraph3D* s = rig.g.Surface();
    // Joined ("Split" shown): 12 columns, means then deck A alone.
    EXPECT_EQ(rig.g.SplitButton()->Caption(), "Split");
    ASSERT_EQ(s->SurfaceColumns(), 12);
    ASSERT_EQ(s->SurfaceRows(), 80);
    EXPECT_DOUBLE_EQ(s->SurfaceValue(11, 0), 1.0);
    EXPECT_DOUBLE_EQ(s->SurfaceValue(5, 0), (0.5 + 0.5) * 0.5);
    EXPECT_DOUBLE_EQ(s->XMaximum(), 11.0);

    // Side by side ("Join" shown): 18 columns.
    rig.g.SplitButton()->SetValue(true);
    EXPECT_EQ(rig.g.SplitButton()->Caption(), "Join");
    EXPECT_EQ(Settings().GetThreeDGraphJoinOrSplit(), "Join");
    ASSERT_EQ(s->SurfaceColumns(), 18);
    EXPECT_DOUBLE_EQ(s->SurfaceValue(11, 0), 1.0);
    EXPECT_DOUBLE_EQ(s->SurfaceValue(17, 0), 0.5);
    EXPECT_DOUBLE_EQ(s->XMaximum(), 17.0);

    // Deck A cleared: its columns flat, deck B's kept.
    rig.g.ClearDeck(0);
    for (int c = 0; c < 12; ++c)
        EXPECT_EQ(s->SurfaceValue(c, 0), 0.0) << c;
    EXPECT_DOUBLE_EQ(s->SurfaceValue(17, 0), 0.5);

    // The normalising range follows the deck's range pointers.
    rig.g.SetLevelRange(1, 100000.0);
    rig.g.SetLevelMinimum(1, 50000.0);
    rig.g.AddRow(1, std::vector<double>(6, 100000.0), 6);
    rig.g.PlotSurface(1);
    EXPECT_DOUBLE_EQ(s->SurfaceValue(12, 0), 1.0);

    // Flatten: seen edge-on; reset: the usual view again.
    const double lat = s->ViewLatitude();
    rig.g.FlattenView();
    EXPECT_EQ(s->ViewLatitude(), 0.0);
    QTest::mouseClick(rig.g.ResetButton(), Qt::LeftButton);
    EXPECT_EQ(s->ViewLatitude(), lat);
    QTest::mouseClick(rig.g.FlattenButton(), Qt::LeftButton);
    EXPECT_EQ(s->ViewLatitude(), 0.0);
}

TEST(ThreeDGraphWindow, DrawsOnlyWhileShownEnabledAndPlotting) {
    GraphRig rig;
    rig.g.AddRow(0, Ramp(6, 200000.0), 6);
    rig.g.PlotSurface(0);
    EXPECT_EQ(rig.g.SurfaceDraws(), 0) << "hidden";
    rig.g.show();
    const int shown = rig.g.SurfaceDraws();
    EXPECT_EQ(shown, 1) << "showing draws what came in meanwhile";
    rig.g.PlotSurface(0);
    EXPECT_EQ(rig.g.SurfaceDraws(), 2);
    rig.g.SetGraphEnabled(false);
    rig.g.PlotSurface(0);
    EXPECT_EQ(rig.g.SurfaceDraws(), 2);
    rig.g.SetGraphEnabled(true);
    rig.g.SetSoundMode(true);
    rig.g.PlotSurface(0);
    EXPECT_EQ(rig.g.SurfaceDraws(), 2);
}

TEST(ThreeDGraphWindow, FpsCountsTheGraphsPassesOfTheLastSecond) {
    GraphRig rig;
    rig.g.show();
    QElapsedTimer t;
    t.start();
    while (t.elapsed() < 1100) {
        rig.g.NoteGraphsPass();
        QTest::qWait(25);
    }
    rig.g.NoteGraphsPass();
    EXPECT_GT(rig.g.GraphsRate(), 15.0);
    EXPECT_LT(rig.g.GraphsRate(), 45.0);
    EXPECT_EQ(rig.g.RateLabel()->text(), QString::number(rig.g.GraphsRate(), 'f', 1));
}

TEST(ThreeDGraphWindow, TheSoundOnButtonTellsTheMainMixer) {
    GraphRig rig;
    EXPECT_FALSE(rig.g.Sound3DOn());
    rig.g.Sound3DButton()->SetValue(true);
    EXPECT_TRUE(rig.g.Sound3DOn());
    EXPECT_EQ(rig.mixer.Count(UWM_CONFIG_REFRESH), 1);
}

TEST(ThreeDGraphWindow, AVirtualJoystickPostsItsPositionEveryPoll) {
    SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
    ASSERT_EQ(SDL_InitSubSystem(SDL_INIT_JOYSTICK), 0);
    GraphRig rig;
    rig.g.SetJoystick(joystick::OpenSystemJoystick());
    // No joystick: nothing posted, the position stays (0, 0).
    rig.g.PollPosition();
    QCoreApplication::processEvents();
    EXPECT_EQ(rig.mixer.Count(UWM_LISTENER_POSITION), 0);
    EXPECT_EQ(rig.g.Position().x, 0);

    testsupport::VirtualJoystick stick;
    ASSERT_TRUE(stick.Ok()) << SDL_GetError();
    stick.Set(16384, -8192);
    // Plugged in while running: the timer's polls pick it up.
    rig.g.SetSoundMode(true);
    ASSERT_TRUE(
        testsupport::WaitFor([&] { return rig.mixer.Count(UWM_LISTENER_POSITION) > 0; }, 2000));
    const MessageLog::Message& m = rig.mixer.got.back();
    EXPECT_EQ(CRyn3DGraph::ParamFloat(m.w), 500.0f);
    EXPECT_EQ(CRyn3DGraph::ParamFloat(static_cast<std::uintptr_t>(m.l)), -250.0f);
    EXPECT_EQ(rig.g.PositionPlot()->CursorX(0), 500.0);
    EXPECT_EQ(rig.g.PositionPlot()->CursorY(0), -250.0);
    rig.g.SetSoundMode(false);
    SDL_QuitSubSystem(SDL_INIT_JOYSTICK);
}

TEST(ThreeDGraphWindow, RendersBothModesToPngs) {
    GraphRig rig;
    rig.g.SplitButton()->SetValue(true);
    rig.g.show();
    // A moving spectrum: both decks, a hump that drifts across the bands.
    for (int r = 0; r < 80; ++r) {
        for (int d = 0; d < 2; ++d) {
            const int n = d == 0 ? 12 : 6;
            std::vector<double> v(static_cast<size_t>(n));
            for (int b = 0; b < n; ++b) {
                const double x = double(b) / n - 0.5 + 0.3 * std::sin(r * 0.15 + d);
                v[b] = 280000.0 * (0.25 + 0.6 * std::exp(-8.0 * x * x));
            }
            rig.g.AddRow(d, v, n);
        }
    }
    rig.g.PlotSurface(0);
    const QString plot = QStringLiteral(MIXORA_BINARY_DIR "/3d-graph-plot.png");
    ASSERT_TRUE(rig.g.grab().save(plot));
    EXPECT_GT(QFile(plot).size(), 3000);

    rig.g.SetSoundMode(true);
    rig.g.PositionPlot()->SetCursorPosition(0, 500, -250);
    const QString sound = QStringLiteral(MIXORA_BINARY_DIR "/3d-graph-sound.png");
    ASSERT_TRUE(rig.g.grab().save(sound));
    EXPECT_GT(QFile(sound).size(), 1000);
    rig.g.SetSoundMode(false);
}
