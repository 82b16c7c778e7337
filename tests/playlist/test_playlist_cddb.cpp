// The play list window in CD mode asks a CDDB server on loopback for the
// names of a CUE/BIN disc image: the rows and the window title take them;
// a server that never answers leaves the "Track " names while the window
// keeps working, and the answer is collected within the time-out.
#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QLineEdit>
#include <QSpinBox>
#include <QTimer>
#include <memory>

#include "TestSupport.h"
#include "core/EngineState.h"
#include "playlist/window/CRynPlayList.h"
#include "playlist/window/CddbServerDialog.h"
#include "settings/CRynSettings.h"
#include "sources/CRynCdAudio.h"
#include "sources/CddbTestServer.h"

namespace {

// The settings of the loopback server for the test's life; the user's back after.
struct ServerSettings {
    QString host = Settings().GetCddbServer();
    int port = Settings().GetCddbServerPort();
    int timeout = Settings().GetCddbTimeoutSeconds();
    ServerSettings(int loopbackPort, int timeoutSeconds) {
        Settings().SetCddbServer(QStringLiteral("127.0.0.1"));
        Settings().SetCddbServerPort(loopbackPort);
        Settings().SetCddbTimeoutSeconds(timeoutSeconds);
    }
    ~ServerSettings() {
        Settings().SetCddbServer(host);
        Settings().SetCddbServerPort(port);
        Settings().SetCddbTimeoutSeconds(timeout);
    }
};

// Deck A's play list window in CD mode on a twelve-track disc image.
struct CdRig {
    testsupport::MessageLog deck;
    testsupport::CdImage image;
    std::unique_ptr<CRynCdAudio> reader;
    std::unique_ptr<CRynPlayList> window;

    CdRig() {
        ResetEngineStateForTest();
        image =
            testsupport::MakeCdImage(QStringLiteral("cddb-window"), testsupport::TwelveTracks());
        reader = testsupport::MakeImageReader(image);
        window = std::make_unique<CRynPlayList>();
        window->Initialise(deck.Handle(), 0);
        window->SetCdAudio(reader.get());
        window->resize(460, 320);
    }
    ~CdRig() { window->StopPlayList(); }

    bool Ready() {
        if (!image.ok || reader->DriveCount() != 1 || !reader->OpenDrive(0))
            return false;
        Engine().decks[0].cdDrive.store(0);
        window->SetListMode(PlayList::kCdMode);
        window->List().ShowCdTracks(reader->TrackCount(0),
                                    [this](int t) { return reader->TrackLengthSeconds(0, t); });
        FillRows();
        return window->RowCount() == 12 && window->RowText(0) == "Track 1";
    }
    void FillRows() {
        while (window->FillOneRow()) {
        }
    }
};

}  // namespace

TEST(PlayListCddb, TheNameButtonInCdModeBringsTheDiscsNamesFromTheServer) {
    CdRig rig;
    ASSERT_TRUE(rig.Ready());
    testsupport::CddbTestServer server(testsupport::SomeAlbum(rig.image.starts));
    ASSERT_TRUE(server.Ok());
    ServerSettings settings(server.Port(), 5);

    rig.window->ClickRow(2);
    rig.window->NameTagPath();
    EXPECT_TRUE(rig.window->LookupRunning());
    ASSERT_TRUE(testsupport::WaitFor(
        [&] { return !rig.window->LookupRunning() && rig.window->RowText(11) == "Guest / Encore"; },
        10000));
    EXPECT_EQ(rig.window->RowText(0), "Intro");
    EXPECT_EQ(rig.window->RowText(1), "Part 1");
    EXPECT_EQ(rig.window->RowTime(0), "0:02");  // lengths stay the disc's
    EXPECT_EQ(rig.window->RowItemData(0), 1);
    EXPECT_EQ(rig.window->windowTitle(), "Some Artist // Some Album");
    EXPECT_EQ(rig.window->SelectedRow(), 2);
    EXPECT_EQ(server.Requests().size(), 2u);

    const QString png = QStringLiteral(MIXORA_BINARY_DIR "/playlist-window-cd-names.png");
    EXPECT_TRUE(rig.window->grab().save(png));
}

TEST(PlayListCddb, AServerThatNeverAnswersLeavesTheTrackNamesAndTheWindowWorking) {
    CdRig rig;
    ASSERT_TRUE(rig.Ready());
    testsupport::CddbTestServer silent(testsupport::SomeAlbum(rig.image.starts), true);
    ServerSettings settings(silent.Port(), 1);

    int ticks = 0;
    QTimer beat;
    QObject::connect(&beat, &QTimer::timeout, [&] { ++ticks; });
    beat.start(10);
    QElapsedTimer clock;
    clock.start();
    rig.window->NameTagPath();
    EXPECT_LT(clock.elapsed(), 500);  // the button returns at once
    ASSERT_TRUE(testsupport::WaitFor([&] { return !rig.window->LookupRunning(); }, 15000));
    EXPECT_GE(silent.Connections(), 1);
    // The event loop ran all along: the window never froze.
    EXPECT_GT(ticks, static_cast<int>(clock.elapsed() / 10 / 4));
    rig.FillRows();
    EXPECT_EQ(rig.window->RowText(0), "Track 1");
    EXPECT_EQ(rig.window->RowText(11), "Track 12");
    EXPECT_EQ(rig.window->windowTitle(), "Deck A Play List (CD Mode)");
}

TEST(PlayListCddb, TheServerDialogShowsAndStoresTheSettings) {
    ServerSettings keep(8880, 7);
    const QString address = Settings().GetCddbUserAddress();
    {
        CddbServerDialog dialog;
        EXPECT_EQ(dialog.HostField()->text(), "127.0.0.1");
        EXPECT_EQ(dialog.PortField()->value(), 8880);
        EXPECT_EQ(dialog.TimeoutField()->value(), 7);
        dialog.HostField()->setText(QStringLiteral(" cddb.example.org "));
        dialog.PortField()->setValue(8080);
        dialog.AddressField()->setText(QString());  // empty: the stored one stays
        dialog.TimeoutField()->setValue(3);
        dialog.Store();
    }
    EXPECT_EQ(Settings().GetCddbServer(), "cddb.example.org");
    EXPECT_EQ(Settings().GetCddbServerPort(), 8080);
    EXPECT_EQ(Settings().GetCddbUserAddress(), address);
    EXPECT_EQ(Settings().GetCddbTimeoutSeconds(), 3);
}
