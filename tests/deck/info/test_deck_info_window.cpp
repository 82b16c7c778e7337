// The deck information window: a real widget on the offscreen platform,
// its statistics fed as the deck feeds them, its meters switch driving the
// deck information thread, its close box, and a rendering to deck-info.png.
#include <gtest/gtest.h>

#include <QApplication>
#include <QFileInfo>
#include <QImage>
#include <QSet>
#include <QTest>

#include <atomic>
#include <cstdint>
#include <vector>

#include "TestSupport.h"
#include "controls/CNiButton.h"
#include "controls/CNiGraph.h"
#include "controls/CNiSlide.h"
#include "core/CRynWindow.h"
#include "core/EngineState.h"
#include "deck/CRynDeckInfo.h"

namespace {

void Show(CRynDeckInfo& info) {
    info.setAttribute(Qt::WA_DontShowOnScreen);
    info.show();
    QApplication::processEvents();
}

// Fills slots [first, first + n) of a ring (wrapping), clears the rest.
template <std::size_t N>
void FillRing(std::array<std::atomic<std::int32_t>, N>& flags, int first, int n) {
    for (std::size_t i = 0; i < N; ++i)
        flags[i].store(0);
    for (int k = 0; k < n; ++k)
        flags[(first + k) % int(N)].store(1);
}

// A deck part way through a track: 130 forward blocks read ahead of the play
// index 40, 20 backward blocks, the forward ring written 5 blocks ahead.
void FeedSampleState(CRynDeckInfo& info) {
    DeckSharedState& d = Engine().decks[info.DeckIndex()];
    FillRing(d.forwardFilled, 40, 130);
    FillRing(d.backwardFilled, 10, 20);
    info.Stats().HandInForwardFlags(d.forwardFilled);
    info.Stats().HandInBackwardFlags(d.backwardFilled);
    info.Stats().SetForwardPositions(118, 3, 10, &d.blocksAheadCopy);
    info.Stats().SetReversePositions(2, 9, 10);
    // The reverse hand-in moved blocks ahead to 7; the forward one is last.
    info.Stats().SetForwardPositions(118, 3, 10, &d.blocksAheadCopy);
    d.forwardReaderRun.store(1);
}

QVector<double> Expected(std::span<const std::int16_t> flags) {
    QVector<double> v;
    for (std::int16_t f : flags)
        v.push_back(f);
    return v;
}

}  // namespace

TEST(DeckInfoWindow, ControlsTitleAndRanges) {
    ResetEngineStateForTest();
    CRynDeckInfo info;
    info.Initialise(0, 1);
    EXPECT_EQ(info.windowTitle(), QStringLiteral("Deck B Info"));
    info.Initialise(0, 0);
    EXPECT_EQ(info.windowTitle(), QStringLiteral("Deck A Info"));

    EXPECT_EQ(info.ForwardGraph()->toolTip(), QStringLiteral("Disc Buffer Display"));
    EXPECT_EQ(info.ForwardGraph()->XMinimum(), 0.0);
    EXPECT_EQ(info.ForwardGraph()->XMaximum(), 170.0);
    EXPECT_EQ(info.BackwardGraph()->toolTip(), QStringLiteral("Backward Disc Buffer Display"));
    EXPECT_EQ(info.BackwardGraph()->XMaximum(), 50.0);
    EXPECT_EQ(info.ForwardLevelMeter()->toolTip(), QStringLiteral("Disc Buffer Level Meter"));
    EXPECT_EQ(info.ForwardLevelMeter()->Maximum(), 170.0);
    EXPECT_EQ(info.BackwardLevelMeter()->toolTip(),
              QStringLiteral("Backward Disc Buffer Level Meter"));
    EXPECT_EQ(info.BackwardLevelMeter()->Maximum(), 50.0);
    EXPECT_EQ(info.ForwardReadMeter()->toolTip(), QStringLiteral("Forward Buffer Read Position"));
    EXPECT_EQ(info.ReversePlayMeter()->toolTip(), QStringLiteral("Backward Play Position Meter:"));
    EXPECT_EQ(info.ReverseWriteMeter()->toolTip(),
              QStringLiteral("Backward Write Position Meter:"));
    for (CNiSlide* m : {info.ForwardReadMeter(), info.ForwardWriteMeter(), info.BlocksAheadMeter(),
                        info.ReversePlayMeter(), info.ReverseWriteMeter()}) {
        EXPECT_EQ(m->Minimum(), 0.0);
        EXPECT_EQ(m->Maximum(), 120.0);
        EXPECT_EQ(m->Value(), 0.0);
    }
    EXPECT_EQ(info.MetersButton()->toolTip(), QStringLiteral("Turn On Deck Meters:"));
    EXPECT_EQ(info.ForwardReadingLed()->toolTip(), QStringLiteral("Forward disc reading is on:"));
    EXPECT_EQ(info.BackwardReadingLed()->toolTip(), QStringLiteral("Backward disc reading is on:"));
    EXPECT_FALSE(info.MetersOn());
    EXPECT_FALSE(info.BackwardReadingOn());

    // The meters are bars the mouse cannot move.
    Show(info);
    CNiSlide* meter = info.ForwardReadMeter();
    QTest::mouseClick(meter, Qt::LeftButton, {},
                      QPoint(meter->width() * 3 / 4, meter->height() / 2));
    EXPECT_EQ(meter->Value(), 0.0);
    ResetEngineStateForTest();
}

TEST(DeckInfoWindow, MetersShowTheStatisticsOnlyWhileOn) {
    ResetEngineStateForTest();
    CRynDeckInfo info;
    info.Initialise(0, 0);
    Show(info);
    const QImage before = info.grab().toImage();

    // Meters off: the statistics follow the deck, the window does not.
    FeedSampleState(info);
    Engine().decks[0].backwardReaderRun.store(1);
    info.Refresh();
    EXPECT_EQ(info.RefreshCount(), 1);
    EXPECT_EQ(info.Stats().ForwardCount(), 130);
    EXPECT_EQ(info.Stats().BackwardCount(), 20);
    EXPECT_EQ(info.Stats().BlocksAhead(), 5);
    EXPECT_EQ(Engine().decks[0].blocksAheadCopy.load(), 5);
    EXPECT_EQ(info.ForwardLevelMeter()->Value(), 0.0);
    EXPECT_EQ(info.ForwardReadMeter()->Value(), 0.0);
    EXPECT_FALSE(info.ForwardReadingOn());
    EXPECT_FALSE(info.BackwardReadingOn());
    QApplication::processEvents();
    EXPECT_EQ(info.grab().toImage(), before);

    // Meters on: a refresh copies everything in.
    info.SetMetersOn(true);
    EXPECT_TRUE(info.MetersButton()->Value());
    info.Refresh();
    EXPECT_EQ(info.ForwardLevelMeter()->Value(), 130.0);
    EXPECT_EQ(info.BackwardLevelMeter()->Value(), 20.0);
    EXPECT_EQ(info.ForwardReadMeter()->Value(), 118.0);
    EXPECT_EQ(info.ForwardWriteMeter()->Value(), 3.0);
    EXPECT_EQ(info.BlocksAheadMeter()->Value(), 5.0);
    EXPECT_EQ(info.ReversePlayMeter()->Value(), 2.0);
    EXPECT_EQ(info.ReverseWriteMeter()->Value(), 9.0);
    EXPECT_TRUE(info.ForwardReadingOn());
    EXPECT_TRUE(info.BackwardReadingOn());
    const QVector<double> forward = info.ForwardGraph()->PlotData(0);
    ASSERT_EQ(forward.size(), 171);
    EXPECT_EQ(forward, Expected(info.Stats().ForwardVector()));
    EXPECT_EQ(forward[0], 0.0);
    EXPECT_EQ(forward[41], 1.0);  // slot 40
    EXPECT_EQ(forward[40], 0.0);  // slot 39, consumed
    EXPECT_EQ(info.BackwardGraph()->PlotData(0), Expected(info.Stats().BackwardVector()));
    EXPECT_EQ(info.BackwardGraph()->PlotData(0)[11], 1.0);
    QApplication::processEvents();
    EXPECT_NE(info.grab().toImage(), before);

    // Platter drag positions, then the reader stops: the next refresh shows both.
    info.SetPlatterPositions(30);
    Engine().decks[0].backwardReaderRun.store(0);
    info.Refresh();
    EXPECT_EQ(info.ForwardReadMeter()->Value(), 30.0);
    EXPECT_EQ(info.ReversePlayMeter()->Value(), 90.0);
    EXPECT_FALSE(info.BackwardReadingOn());

    // Off: every meter to 0, the backward vector cleared, the forward one kept.
    info.SetMetersOn(false);
    for (CNiSlide* m : {info.ForwardLevelMeter(), info.BackwardLevelMeter(),
                        info.ForwardReadMeter(), info.ForwardWriteMeter(), info.BlocksAheadMeter(),
                        info.ReversePlayMeter(), info.ReverseWriteMeter()}) {
        EXPECT_EQ(m->Value(), 0.0) << m->objectName().toStdString();
    }
    for (std::int16_t f : info.Stats().BackwardVector())
        EXPECT_EQ(f, 0);
    EXPECT_EQ(info.BackwardGraph()->PlotData(0), QVector<double>(51, 0.0));
    EXPECT_EQ(info.ForwardGraph()->PlotData(0), forward);
    EXPECT_EQ(info.Stats().ForwardCount(), 130);  // the statistics themselves stay
    info.JoinThread();
    ResetEngineStateForTest();
}

TEST(DeckInfoWindow, MetersSwitchRunsTheThreadThatAsksForRefreshes) {
    ResetEngineStateForTest();
    // Stands in for the main mixer, which answers UWM_DECK_INFO_UPDATE with
    // the deck's Refresh.
    testsupport::MessageLog mixer;
    Engine().mainMixerWindow = mixer.Handle();
    {
        CRynDeckInfo info;
        info.Initialise(0, 1);
        mixer.onMessage = [&info](Uwm msg, WParam, LParam) {
            if (msg == UWM_DECK_INFO_UPDATE)
                info.Refresh();
            return LResult(0);
        };
        Show(info);
        FeedSampleState(info);

        // A click on the switch turns the meters on and starts the thread.
        CNiButton* button = info.MetersButton();
        QTest::mouseClick(button, Qt::LeftButton, {}, button->rect().center());
        EXPECT_TRUE(info.MetersOn());
        EXPECT_TRUE(info.ThreadRunning());
        EXPECT_EQ(Engine().decks[1].deckInfoThreadRun.load(), 1);

        // The deck's event wakes it: the mixer is asked, the window refreshes.
        Engine().decks[1].deckInfoEvent->Set();
        ASSERT_TRUE(testsupport::WaitFor([&] { return info.RefreshCount() > 0; }));
        EXPECT_EQ(mixer.got[0].msg, UWM_DECK_INFO_UPDATE);
        EXPECT_EQ(mixer.got[0].w, 1u);
        EXPECT_EQ(info.ForwardLevelMeter()->Value(), 130.0);

        // A second click stops it.
        QTest::mouseClick(button, Qt::LeftButton, {}, button->rect().center());
        EXPECT_FALSE(info.MetersOn());
        EXPECT_EQ(Engine().decks[1].deckInfoThreadRun.load(), 0);
        info.JoinThread();
        EXPECT_FALSE(info.ThreadRunning());
        EXPECT_EQ(info.ForwardLevelMeter()->Value(), 0.0);

        // Switching on twice restarts one thread; the window joins it when it goes.
        info.SetMetersOn(true);
        info.SetMetersOn(true);
        EXPECT_TRUE(info.ThreadRunning());
        mixer.onMessage = nullptr;
    }
    EXPECT_EQ(Engine().decks[1].deckInfoThreadRun.load(), 0);
    ResetEngineStateForTest();
}

TEST(DeckInfoWindow, CloseBoxTellsTheDeckAndHides) {
    ResetEngineStateForTest();
    testsupport::MessageLog deck;
    CRynDeckInfo info;
    info.Initialise(deck.Handle(), 1);
    Show(info);
    ASSERT_TRUE(info.isVisible());
    info.close();
    EXPECT_FALSE(info.isVisible());
    ASSERT_EQ(deck.got.size(), 1u);
    EXPECT_EQ(deck.got[0].msg, UWM_WINDOW_CLOSED);
    EXPECT_EQ(deck.got[0].w, WParam(CRynDeckInfo::kTemplateId));
    EXPECT_EQ(deck.got[0].l, 0);
    ResetEngineStateForTest();
}

TEST(DeckInfoWindow, RendersToAPng) {
    ResetEngineStateForTest();
    const QString file = QStringLiteral(MIXORA_BINARY_DIR "/deck-info.png");
    CRynDeckInfo info;
    info.Initialise(0, 0);
    FeedSampleState(info);
    Engine().decks[0].backwardReaderRun.store(0);
    Show(info);
    info.SetMetersOn(true);
    info.Refresh();
    QApplication::processEvents();
    const QImage img = info.grab().toImage();
    ASSERT_TRUE(img.save(file, "PNG"));
    ASSERT_TRUE(QFileInfo::exists(file));
    EXPECT_GE(img.width(), 400);
    EXPECT_GE(img.height(), 250);
    QSet<QRgb> colours;
    for (int y = 0; y < img.height(); y += 2) {
        for (int x = 0; x < img.width(); x += 2)
            colours.insert(img.pixel(x, y));
    }
    EXPECT_GT(colours.size(), 50);
    info.SetMetersOn(false);
    info.JoinThread();
    ResetEngineStateForTest();
}
