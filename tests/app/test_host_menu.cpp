// The host's menu on the main mixer's background (not over a control, whose
// right click is its own), the system command of the about box, and the
// diagnostic texts: refreshed from the engine's per-deck values, the deck's
// reported value shown only while the diagnostics button is on.
#include <gtest/gtest.h>

#include <QApplication>
#include <QContextMenuEvent>
#include <QDir>
#include <QMenu>
#include <QPushButton>
#include <QTimer>

#include "TestSupport.h"
#include "app/CommandLine.h"
#include "app/DiagnosticsPanel.h"
#include "app/HostMenu.h"
#include "controls/CNiButton.h"
#include "core/EngineState.h"
#include "help/CAboutDlg.h"

TEST(HostMenu, BackgroundRightClickOffersAboutAndDiagnostics) {
    QWidget mixer;
    mixer.resize(300, 200);
    auto* button = new CNiButton(&mixer);
    button->setGeometry(10, 10, 60, 30);
    int diagnostics = 0;
    auto* menu = new HostMenu(&mixer, [&diagnostics] { ++diagnostics; });
    mixer.show();
    QStringList items;
    for (QAction* a : menu->Menu()->actions()) {
        if (!a->isSeparator())
            items << a->text();
    }
    EXPECT_EQ(items, QStringList({"&AboutMixora ...", "Diagnostics"}));

    QContextMenuEvent onButton(QContextMenuEvent::Mouse, QPoint(20, 20),
                               mixer.mapToGlobal(QPoint(20, 20)));
    QApplication::sendEvent(&mixer, &onButton);
    EXPECT_FALSE(menu->Menu()->isVisible());

    QContextMenuEvent onBackground(QContextMenuEvent::Mouse, QPoint(200, 150),
                                   mixer.mapToGlobal(QPoint(200, 150)));
    QApplication::sendEvent(&mixer, &onBackground);
    EXPECT_TRUE(menu->Menu()->isVisible());
    menu->Menu()->hide();
    menu->Menu()->actions().back()->trigger();
    EXPECT_EQ(diagnostics, 1);

    // Id 16 with the low bits set is still the about box; others are not.
    EXPECT_FALSE(menu->SystemCommand(0xF060));
    QTimer::singleShot(50, [] {
        for (QWidget* w : QApplication::topLevelWidgets()) {
            if (auto* about = qobject_cast<CAboutDlg*>(w); about && about->isVisible())
                about->accept();
        }
    });
    EXPECT_TRUE(menu->SystemCommand(HostMenu::kAboutCommand | 0x3));
}

TEST(DiagnosticsPanel, ShowsTheEngineValuesAndTheDeckValueOnlyWhenOn) {
    ResetEngineStateForTest();
    DiagnosticsPanel panel;
    EXPECT_EQ(panel.Text(0, 0), QStringLiteral("44100"));
    EXPECT_EQ(panel.Text(1, 2), QStringLiteral("44100"));
    Engine().decks[1].mainDeckRate.store(44093);
    Engine().decks[1].headphonesDrift.store(-120);
    Engine().decks[1].headphonesFrequency.store(44107);
    panel.Refresh(1);
    EXPECT_EQ(panel.Text(1, 0), QStringLiteral("44093"));
    EXPECT_EQ(panel.Text(1, 1), QStringLiteral("-120"));
    EXPECT_EQ(panel.Text(1, 2), QStringLiteral("44107"));
    EXPECT_EQ(panel.Text(0, 0), QStringLiteral("44100"));
    panel.DeckValue(0, 77);
    EXPECT_EQ(panel.Text(0, 3), QStringLiteral("-"));
    panel.DiagnosticsButton()->setChecked(true);
    panel.DeckValue(0, 77);
    EXPECT_EQ(panel.Text(0, 3), QStringLiteral("77"));
    panel.DeckValue(5, 1);  // no such deck
    panel.DiagnosticsButton()->setChecked(false);
    EXPECT_EQ(panel.Text(0, 3), QStringLiteral("-"));
    panel.grab().save(QStringLiteral(MIXORA_BINARY_DIR "/diagnostics.png"));
    ResetEngineStateForTest();
}

TEST(CommandLineGuide, WriteGuideTakesAnAbsoluteFolder) {
    const CommandLine cl = ParseCommandLine({"mixora", "--write-guide", "out/guide"});
    EXPECT_EQ(cl.action, CommandLine::Action::Run);
    EXPECT_EQ(cl.writeGuide, QDir::current().absoluteFilePath("out/guide"));
    EXPECT_TRUE(cl.files.isEmpty());
    EXPECT_TRUE(ParseCommandLine({"mixora"}).writeGuide.isEmpty());
    EXPECT_EQ(ParseCommandLine({"mixora", "--write-guide"}).action, CommandLine::Action::Error);
    EXPECT_TRUE(ParseCommandLine({"mixora", "--help"}).text.contains("--write-guide"));
}
