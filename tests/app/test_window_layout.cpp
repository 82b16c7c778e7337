// The window layout through the real program: the host built by its own
// start-up (Null sound device, offscreen), then Home, End, the show buttons,
// the mode button, title bars, help buttons, closing windows and minimise
// all, on a 1024 x 768 layout area.
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QElapsedTimer>
#include <QTest>
#include <memory>

#include "TestSupport.h"
#include "app/CMixoraDlg.h"
#include "app/ShellLog.h"
#include "controls/CNiButton.h"
#include "core/EngineState.h"
#include "deck/CRynDeck.h"
#include "deck/CRynDeckInfo.h"
#include "dsp/window/CRyn3DGraph.h"
#include "dsp/window/CRynEqualizer.h"
#include "output/mixer/CRynHeadphonesMixer.h"
#include "output/mixer/CRynMainMixer.h"
#include "platform/PlatformLayers.h"
#include "playlist/window/CRynPlayList.h"
#include "settings/CRynSettings.h"
#include "settings/WindowDefaults.h"
#include "settings/window/CRynConfigure.h"

namespace {

class WorkingLayers : public PlatformLayers {
  public:
    bool InitialiseSound(QString*) override { return true; }
    void ReleaseSound() override {}
    bool CheckMedia(QString*) override { return true; }
};

void Hold(int ms) {
    QElapsedTimer t;
    t.start();
    while (t.elapsed() < ms)
        PumpMessages(1);
}

WindowRect FrameOf(const QWidget* w) {
    const QRect f = w->frameGeometry();
    return {f.left(), f.top(), f.left() + f.width(), f.top() + f.height()};
}

void LeftClick(CNiButton* b) {
    QTest::mouseClick(b, Qt::LeftButton, Qt::NoModifier, b->rect().center());
}

class WindowLayout : public ::testing::Test {
  protected:
    void SetUp() override {
        qputenv("MIXORA_SOUND_DEVICE", "null");
        ResetEngineStateForTest();
        ClearShellLogForTest();
        // Every window starts unmoved.
        for (SettingsWindow w : kAllSettingsWindows) {
            for (int d = 0; d < 2; ++d)
                Settings().WriteHasMoved(w, d, false);
        }
        CMixoraDlg::Options o;
        o.layers = std::make_unique<WorkingLayers>();
        o.pauseMs = 0;
        o.onEnd = [](int) {};
        o.showError = [](const QString&) {};
        host_ = std::make_unique<CMixoraDlg>(std::move(o));
        ASSERT_TRUE(host_->StartUp());
        mixer_ = host_->MainMixer();
        mixer_->SetLayoutArea(QRect(0, 0, 1024, 768));
    }
    void TearDown() override { host_.reset(); }

    void Layout(bool low) {
        if (mixer_->LowResolution() != low)
            LeftClick(mixer_->WindowButtons().ModeButton());
        ASSERT_EQ(mixer_->LowResolution(), low);
    }
    CRynDeck* Deck(int d) const { return host_->Deck(d); }
    std::vector<QWidget*> DeckHelpers() const {
        std::vector<QWidget*> w;
        for (int d = 0; d < 2; ++d) {
            w.push_back(Deck(d)->Info());
            w.push_back(Deck(d)->Equalizer());
            w.push_back(Deck(d)->PlayListWindow());
        }
        return w;
    }

    std::unique_ptr<CMixoraDlg> host_;
    CRynMainMixer* mixer_ = nullptr;
};

TEST(DefaultRectangles, TruncatedFractionsOfTheScreen) {
    const QSize screen(1024, 768);
    // High resolution: the main mixer spans x 368 … 655, y 0 … 307.
    EXPECT_EQ(DefaultWindowRect(SettingsWindow::MainMixer, 0, false, screen),
              (WindowRect{368, 0, 655, 307}));
    // Low resolution: the lower left quarter.
    EXPECT_EQ(DefaultWindowRect(SettingsWindow::MainMixer, 0, true, screen),
              (WindowRect{0, 422, 512, 768}));
    // The information windows start with no height.
    const WindowRect info = DefaultWindowRect(SettingsWindow::DeckInfo, 1, false, screen);
    EXPECT_EQ(info.top, info.bottom);
    EXPECT_EQ(DefaultWindowRect(SettingsWindow::Configure, 0, true, screen),
              (WindowRect{0, 0, 500, 280}));
}

TEST_F(WindowLayout, FullScreenInHighResolutionTilesEveryWindow) {
    Layout(false);
    EXPECT_EQ(mixer_->WindowButtons().ModeButton()->Caption(), "Hi");
    mixer_->ShowFullScreen();
    EXPECT_EQ(FrameOf(mixer_), (WindowRect{368, 0, 655, 307}));
    for (const CRynMainMixer::LayoutWindow& lw : mixer_->LayoutWindows()) {
        EXPECT_TRUE(lw.window->isVisible()) << lw.window->windowTitle().toStdString();
        // At its default place; a window whose controls need more room keeps
        // its smallest size from there.
        const WindowRect want = DefaultWindowRect(lw.kind, lw.deck, false, {1024, 768});
        const WindowRect got = FrameOf(lw.window);
        EXPECT_EQ(got.left, want.left) << lw.window->windowTitle().toStdString();
        EXPECT_EQ(got.top, want.top) << lw.window->windowTitle().toStdString();
        if (lw.kind != SettingsWindow::DeckInfo) {
            EXPECT_EQ(got.right - got.left,
                      std::max(want.right - want.left, lw.window->minimumWidth()));
        }
        // The rectangle is stored for the next start.
        EXPECT_EQ(Settings().ReadWindowRect(lw.kind, lw.deck, false), want);
    }
    EXPECT_TRUE(mixer_->WindowButtons().Show3DGraphButton()->Value());
    EXPECT_TRUE(mixer_->Panel().ShowPhonesButton()->Value());
}

TEST_F(WindowLayout, FullScreenInLowResolutionShowsTheDecksAndBothMixersOnly) {
    Layout(false);
    mixer_->ShowFullScreen();
    Layout(true);
    EXPECT_EQ(mixer_->WindowButtons().ModeButton()->Caption(), "Lo");
    Deck(0)->close();
    Deck(1)->ShowEqualizerButton()->SetValue(true);
    Hold(50);
    EXPECT_FALSE(Deck(0)->isVisible());
    // End, as the key gives it.
    SendAppMessage(host_->Handle(), UWM_KEY_DOWN, 35, 0);
    EXPECT_TRUE(mixer_->isVisible());
    EXPECT_TRUE(host_->HeadphonesMixer()->isVisible());
    for (int d = 0; d < 2; ++d) {
        EXPECT_TRUE(Deck(d)->isVisible());
        EXPECT_TRUE(mixer_->WindowButtons().ShowDeckButton(d)->Value());
        EXPECT_FALSE(Deck(d)->ShowEqualizerButton()->Value());
        EXPECT_FALSE(Deck(d)->ShowPlayListButton()->Value());
        EXPECT_FALSE(Deck(d)->ShowInfoButton()->Value());
    }
    for (QWidget* w : DeckHelpers())
        EXPECT_FALSE(w->isVisible()) << w->windowTitle().toStdString();
    EXPECT_FALSE(host_->Graph3D()->isVisible());
    EXPECT_FALSE(mixer_->WindowButtons().Show3DGraphButton()->Value());
    EXPECT_EQ(FrameOf(mixer_).left, 0);
    EXPECT_EQ(FrameOf(mixer_).top, 422);
    EXPECT_EQ(FrameOf(Deck(1)).left, 512);
}

TEST_F(WindowLayout, HomeBringsMovedWindowsBackAndForgetsTheMove) {
    Layout(false);
    mixer_->ShowFullScreen();
    mixer_->move(5, 500);
    Deck(1)->move(3, 4);
    Deck(0)->Equalizer()->move(600, 600);
    mixer_->StoreWindowPositions();
    EXPECT_TRUE(Settings().ReadHasMoved(SettingsWindow::Deck, 1));
    // Home, as the key gives it.
    SendAppMessage(host_->Handle(), UWM_KEY_DOWN, 36, 0);
    EXPECT_EQ(FrameOf(mixer_).left, 368);
    EXPECT_EQ(FrameOf(mixer_).top, 0);
    EXPECT_EQ(FrameOf(Deck(1)).left, 655);
    EXPECT_EQ(FrameOf(Deck(0)->Equalizer()).top, 337);
    EXPECT_FALSE(Settings().ReadHasMoved(SettingsWindow::Deck, 1));
    // The reset button does the same.
    Deck(1)->move(3, 4);
    LeftClick(mixer_->WindowButtons().ResetButton());
    EXPECT_EQ(FrameOf(Deck(1)).left, 655);
}

TEST_F(WindowLayout, EachLayoutKeepsItsOwnMovedPositions) {
    Layout(false);
    mixer_->ShowFullScreen();
    Deck(0)->move(40, 30);
    Layout(true);  // stores the high-resolution places
    EXPECT_TRUE(Settings().ReadHasMoved(SettingsWindow::Deck, 0));
    EXPECT_EQ(Settings().ReadWindowRect(SettingsWindow::Deck, 0, false).left, 40);
    // Never moved in low resolution: its default there.
    EXPECT_EQ(FrameOf(Deck(0)).left, 0);
    EXPECT_EQ(FrameOf(Deck(0)).top, 0);
    Layout(false);
    EXPECT_EQ(FrameOf(Deck(0)).left, 40);
    EXPECT_EQ(FrameOf(Deck(0)).top, 30);
}

TEST_F(WindowLayout, SaveWindowPositionsOffForgetsTheMoves) {
    Layout(false);
    mixer_->ShowFullScreen();
    Deck(0)->move(40, 30);
    host_->Configure()->SaveWindowPositionsBox()->setChecked(false);
    mixer_->StoreWindowPositions();
    EXPECT_FALSE(Settings().ReadHasMoved(SettingsWindow::Deck, 0));
}

TEST_F(WindowLayout, ShowButtonsAndClosedWindows) {
    Layout(false);
    mixer_->ShowFullScreen();
    CNiButton* showB = mixer_->WindowButtons().ShowDeckButton(1);
    // The deck's own close box hides it and turns its show button off.
    Deck(1)->close();
    Hold(50);
    EXPECT_FALSE(Deck(1)->isVisible());
    EXPECT_FALSE(showB->Value());
    LeftClick(showB);
    EXPECT_TRUE(Deck(1)->isVisible());
    // A right click sends it to its default rectangle.
    Deck(1)->move(10, 10);
    QTest::mouseClick(showB, Qt::RightButton, Qt::NoModifier, showB->rect().center());
    EXPECT_EQ(FrameOf(Deck(1)).left, 655);
    LeftClick(showB);
    EXPECT_FALSE(Deck(1)->isVisible());

    // The 3D graph comes 750 ms after its button, at its default place.
    CNiButton* show3D = mixer_->WindowButtons().Show3DGraphButton();
    host_->Graph3D()->close();
    Hold(50);
    EXPECT_FALSE(show3D->Value());
    host_->Graph3D()->move(0, 0);
    LeftClick(show3D);
    EXPECT_FALSE(host_->Graph3D()->isVisible());
    EXPECT_TRUE(mixer_->WindowTimerActive(CRynMainMixer::k3DGraphTimer));
    Hold(900);
    EXPECT_TRUE(host_->Graph3D()->isVisible());
    EXPECT_EQ(FrameOf(host_->Graph3D()).left, 368);
    EXPECT_EQ(FrameOf(host_->Graph3D()).top, 307);
    LeftClick(show3D);
    EXPECT_FALSE(host_->Graph3D()->isVisible());

    // The phones mixer's close box turns its button off too.
    host_->HeadphonesMixer()->close();
    Hold(50);
    EXPECT_FALSE(mixer_->Panel().ShowPhonesButton()->Value());

    // The options window: 500 x 280, centred.
    LeftClick(mixer_->Panel().ShowOptionsButton());
    EXPECT_TRUE(host_->Configure()->isVisible());
    EXPECT_EQ(host_->Configure()->size(), QSize(500, 280));
    LeftClick(mixer_->Panel().ShowOptionsButton());
    EXPECT_FALSE(host_->Configure()->isVisible());
}

TEST_F(WindowLayout, TitleBarsAndHelpButtonsKeepEveryRectangle) {
    Layout(false);
    mixer_->ShowFullScreen();
    const QRect deckA = Deck(0)->geometry();
    SendAppMessage(mixer_->Handle(), UWM_TITLE_BARS, 0);
    EXPECT_FALSE(Settings().GetTitleBarsOnState());
    for (QWidget* w : std::initializer_list<QWidget*>{Deck(0), Deck(1), host_->HeadphonesMixer(),
                                                      host_->Graph3D(), Deck(0)->Equalizer()})
        EXPECT_TRUE(w->windowFlags().testFlag(Qt::FramelessWindowHint));
    EXPECT_FALSE(mixer_->windowFlags().testFlag(Qt::FramelessWindowHint));
    EXPECT_EQ(Deck(0)->geometry(), deckA);
    EXPECT_TRUE(Deck(0)->isVisible());
    SendAppMessage(mixer_->Handle(), UWM_TITLE_BARS, 1);
    EXPECT_FALSE(Deck(0)->windowFlags().testFlag(Qt::FramelessWindowHint));
    EXPECT_TRUE(Settings().GetTitleBarsOnState());

    const QRect mixer = mixer_->geometry();
    SendAppMessage(mixer_->Handle(), UWM_HELP_BUTTONS, 1);
    for (QWidget* w : std::initializer_list<QWidget*>{mixer_, Deck(0), Deck(1)}) {
        EXPECT_TRUE(w->windowFlags().testFlag(Qt::WindowContextHelpButtonHint));
        EXPECT_FALSE(w->windowFlags().testFlag(Qt::WindowMinimizeButtonHint));
        EXPECT_FALSE(w->windowFlags().testFlag(Qt::WindowMaximizeButtonHint));
        EXPECT_TRUE(w->isVisible());
    }
    EXPECT_EQ(mixer_->geometry(), mixer);
    EXPECT_EQ(Deck(0)->geometry(), deckA);
    SendAppMessage(mixer_->Handle(), UWM_HELP_BUTTONS, 0);
    EXPECT_FALSE(Deck(1)->windowFlags().testFlag(Qt::WindowContextHelpButtonHint));
    EXPECT_TRUE(Deck(1)->windowFlags().testFlag(Qt::WindowMinimizeButtonHint));
}

TEST_F(WindowLayout, MinimiseAllAfter750MsAndRestoreWithStoredMeters) {
    SharedEngineState& e = Engine();
    Layout(false);
    mixer_->ShowFullScreen();
    Settings().SetMetersEnabled(0, true);
    Settings().SetMetersEnabled(1, false);
    ASSERT_EQ(e.appInitialised.load(), 1);
    mixer_->showMinimized();
    EXPECT_TRUE(mixer_->WindowTimerActive(CRynMainMixer::kMinimiseTimer));
    EXPECT_TRUE(mixer_->Target(0).MaximumRequested());
    Hold(500);
    EXPECT_EQ(e.allMinimised.load(), 0);  // not yet
    Hold(400);
    EXPECT_EQ(e.allMinimised.load(), 1);
    EXPECT_EQ(e.decks[0].metersOff.load(), 1);
    EXPECT_EQ(e.decks[1].metersOff.load(), 1);
    for (const CRynMainMixer::LayoutWindow& lw : mixer_->LayoutWindows()) {
        if (lw.window->isVisible()) {
            EXPECT_TRUE(lw.window->isMinimized()) << lw.window->windowTitle().toStdString();
        }
    }
    mixer_->showNormal();
    EXPECT_EQ(e.allMinimised.load(), 0);
    EXPECT_FALSE(mixer_->Target(0).MaximumRequested());
    EXPECT_EQ(e.decks[0].metersOff.load(), 0);
    EXPECT_EQ(e.decks[1].metersOff.load(), 1);
    EXPECT_FALSE(Deck(0)->isMinimized());

    // Restored before the timer fires: nothing is minimised.
    mixer_->showMinimized();
    Hold(100);
    mixer_->showNormal();
    Hold(800);
    EXPECT_EQ(e.allMinimised.load(), 0);
    EXPECT_FALSE(Deck(0)->isMinimized());
}

}  // namespace

namespace {

TEST_F(WindowLayout, RightClickOnADeckToggleSendsItsWindowToItsDefaultPlace) {
    Layout(false);
    mixer_->ShowFullScreen();
    QWidget* eq = Deck(0)->Equalizer();
    eq->move(500, 500);
    CNiButton* toggle = Deck(0)->ShowEqualizerButton();
    ASSERT_TRUE(toggle->Value());
    QTest::mouseClick(toggle, Qt::RightButton, Qt::NoModifier, toggle->rect().center());
    EXPECT_EQ(FrameOf(eq).left, 0);
    EXPECT_EQ(FrameOf(eq).top, 337);
    EXPECT_TRUE(eq->isVisible());
}

}  // namespace
