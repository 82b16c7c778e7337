// Keys pressed in a deck window reach the host as application messages, and
// the deck information window's thread asks the main mixer for refreshes.
#include <gtest/gtest.h>

#include <QLineEdit>
#include <QTest>
#include <memory>
#include <vector>

#include "TestSupport.h"
#include "app/KeyForwarder.h"
#include "core/CRynWindow.h"
#include "core/EngineState.h"
#include "deck/CRynDeck.h"
#include "deck/CRynDeckInfo.h"

namespace {

using Message = testsupport::MessageLog::Message;

}  // namespace

TEST(DeckWindow, KeysReachTheHostAsKeyDownAndKeyUp) {
    ResetEngineStateForTest();
    testsupport::MessageLog host;
    Engine().mainDialogWindow = host.Handle();
    KeyForwarder forwarder;
    forwarder.Install();

    auto owned = std::make_unique<CRynDeck>();
    CRynDeck& deck = *owned;
    deck.Initialise(nullptr, nullptr, nullptr, 0, 0);
    EXPECT_EQ(Engine().decks[0].deckWindow, deck.Handle());
    auto* search = new QLineEdit(&deck);  // a text field inside the deck
    deck.show();

    // Ctrl+D: Ctrl down, D down, D up, Ctrl up, as the keyboard sends them.
    QTest::keyClick(&deck, Qt::Key_D, Qt::ControlModifier);
    ASSERT_TRUE(testsupport::WaitFor([&] { return host.got.size() >= 4; }));
    std::vector<std::pair<Uwm, WParam>> keys;
    for (const Message& m : host.got)
        keys.emplace_back(m.msg, m.w);
    const std::vector<std::pair<Uwm, WParam>> expected = {
        {UWM_KEY_DOWN, 17}, {UWM_KEY_DOWN, 68}, {UWM_KEY_UP, 68}, {UWM_KEY_UP, 17}};
    EXPECT_EQ(keys, expected);
    EXPECT_EQ(host.got[1].l & (1LL << 31), 0);  // key down
    EXPECT_NE(host.got[2].l & (1LL << 31), 0);  // key up

    // Typing into a text field stays there.
    host.got.clear();
    QTest::keyClicks(search, "ab");
    PumpMessages(3);
    EXPECT_TRUE(host.got.empty());
    EXPECT_EQ(search->text(), "ab");

    // Keys of windows that are not working windows are not taken.
    QWidget other;
    other.show();
    QTest::keyClick(&other, Qt::Key_Home);
    PumpMessages(3);
    EXPECT_TRUE(host.got.empty());
    owned.reset();  // the deck lets go of its engine state first
    ResetEngineStateForTest();
}

TEST(DeckInfoWindow, MetersSwitchStartsAndStopsItsThread) {
    ResetEngineStateForTest();
    testsupport::MessageLog mixer;
    Engine().mainMixerWindow = mixer.Handle();
    {
        CRynDeckInfo info;
        info.Initialise(0, 1);
        info.SetMetersOn(true);
        EXPECT_TRUE(info.ThreadRunning());
        EXPECT_EQ(Engine().decks[1].deckInfoThreadRun.load(), 1);
        ASSERT_TRUE(testsupport::WaitFor([&] { return !mixer.got.empty(); }));
        EXPECT_EQ(mixer.got[0].msg, UWM_DECK_INFO_UPDATE);
        EXPECT_EQ(mixer.got[0].w, 1u);
        info.SetMetersOn(false);
        info.JoinThread();
        EXPECT_FALSE(info.ThreadRunning());
        info.SetMetersOn(true);  // left running: the window joins it when it goes
    }
    EXPECT_EQ(Engine().decks[1].deckInfoThreadRun.load(), 0);
    ResetEngineStateForTest();
}
