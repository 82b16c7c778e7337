#include "app/UserGuide.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QGuiApplication>
#include <QMessageBox>
#include <QScreen>
#include <QTimer>
#include <cstdio>

#include "app/CMixoraDlg.h"
#include "app/KeyMapText.h"
#include "core/CRynWindow.h"
#include "deck/CRynDeck.h"
#include "dsp/window/CRyn3DGraph.h"
#include "dsp/window/CRynEqualizer.h"
#include "help/GuideFiles.h"
#include "help/GuidePages.h"
#include "help/GuidePictures.h"
#include "output/mixer/CRynHeadphonesMixer.h"
#include "output/mixer/CRynMainMixer.h"
#include "playlist/window/CRynPlayList.h"
#include "settings/window/CRynConfigure.h"

namespace {

CMixoraDlg* g_host = nullptr;

// The window of each page, in the order of guide::kWindowPages.
std::vector<CRynWindow*> PageWindows(CMixoraDlg& host) {
    CRynDeck* deck = host.Deck(0);
    return {deck,
            deck ? static_cast<CRynWindow*>(deck->Equalizer()) : nullptr,
            deck ? static_cast<CRynWindow*>(deck->PlayListWindow()) : nullptr,
            host.MainMixer(),
            host.HeadphonesMixer(),
            host.Graph3D(),
            host.Configure()};
}

// The windows of the index picture's areas, in their order.
std::vector<QWidget*> IndexWindows(CMixoraDlg& host) {
    std::vector<QWidget*> out;
    for (const guide::IndexArea& a : guide::IndexAreas()) {
        const QString page = QString::fromLatin1(a.page);
        CRynDeck* deck = host.Deck(a.deck);
        QWidget* w = nullptr;
        if (page == QStringLiteral("deck.htm"))
            w = deck;
        else if (page == QStringLiteral("play_list.htm"))
            w = deck ? deck->PlayListWindow() : nullptr;
        else if (page == QStringLiteral("equalizer.htm"))
            w = deck ? deck->Equalizer() : nullptr;
        else if (page == QStringLiteral("main_mixer.htm"))
            w = host.MainMixer();
        else if (page == QStringLiteral("phones_mixer.htm"))
            w = host.HeadphonesMixer();
        else if (page == QStringLiteral("3d_graph.htm"))
            w = host.Graph3D();
        out.push_back(w);
    }
    return out;
}

}  // namespace

void SetUserGuideHost(CMixoraDlg* host) {
    g_host = host;
}

bool WriteUserGuideTo(CMixoraDlg& host, const QString& folder, QString* error) {
    if (!QDir().mkpath(folder)) {
        if (error)
            *error = QStringLiteral("The folder %1 could not be made for the user guide.")
                         .arg(QDir::toNativeSeparators(folder));
        return false;
    }
    const std::vector<CRynWindow*> windows = PageWindows(host);
    std::vector<guide::WindowPage> pages;
    int n = 0;
    for (const guide::WindowName& name : guide::kWindowPages) {
        CRynWindow* window = windows[n++];
        if (!window)
            continue;
        const QString file = QString::fromLatin1(name.file);
        // The picture first: rendering lays the window out, and the places
        // are then measured from that same layout.
        const QImage picture = guide::WindowPicture(window, window->Registry().CaptionHeight());
        if (!guide::SavePicture(folder, guide::PictureName(file), picture, error))
            return false;
        pages.push_back(guide::Snapshot(window->Registry(), file, QString::fromLatin1(name.name)));
    }
    const int cap = host.MainMixer() ? host.MainMixer()->Registry().CaptionHeight() : 18;
    if (!guide::SavePicture(folder, QStringLiteral("images/fullscreen600x451.png"),
                            guide::IndexPicture(IndexWindows(host), cap), error) ||
        !guide::SavePicture(folder, QStringLiteral("images/overview.png"), guide::OverviewPicture(),
                            error) ||
        !guide::SavePicture(folder, QStringLiteral("images/keyboard_map1.png"),
                            guide::KeyboardPicture(QStringLiteral("Keys (Shift moves ten times "
                                                                  "as far)"),
                                                   [](int key) { return KeyMapText(key, false); }),
                            error) ||
        !guide::SavePicture(folder, QStringLiteral("images/keyboard_map2.png"),
                            guide::KeyboardPicture(QStringLiteral("Keys with Ctrl held"),
                                                   [](int key) { return KeyMapText(key, true); }),
                            error))
        return false;
    const std::vector<guide::Page> files = guide::GuidePages(
        pages,
        [&folder](const QString& pageFile) { return guide::PictureSizeOnDisk(folder, pageFile); });
    return guide::WritePages(folder, files, error);
}

bool AskAndWriteUserGuide() {
    if (!g_host)
        return false;
    QFileDialog dialog(g_host->MainMixer(), QStringLiteral("Write The User Guide"));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setNameFilter(QStringLiteral("All Files (*.*)"));
    dialog.selectFile(QStringLiteral("index.htm"));
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return false;
    const QFileInfo chosen(dialog.selectedFiles().first());
    if (!chosen.absoluteDir().exists()) {
        QMessageBox::warning(g_host->MainMixer(), QStringLiteral("Mixora"),
                             QStringLiteral("The folder %1 does not exist.")
                                 .arg(QDir::toNativeSeparators(chosen.absolutePath())));
        return false;
    }
    QString error;
    if (!WriteUserGuideTo(*g_host, chosen.absolutePath(), &error)) {
        QMessageBox::warning(g_host->MainMixer(), QStringLiteral("Mixora"), error);
        return false;
    }
    return true;
}

namespace {
bool g_guideFailed = false;
}  // namespace

void ArmGuideWriting(CMixoraDlg& host, const QString& folder) {
    // The windows draw their first pictures before they are rendered.
    QTimer::singleShot(1000, &host, [&host, folder] {
        QString error;
        if (!WriteUserGuideTo(host, folder, &error)) {
            g_guideFailed = true;
            std::fprintf(stderr, "mixora: %s\n", qPrintable(error));
        }
        PostAppMessageRetry(host.Handle(), UWM_SHUTDOWN, 0, 0);
    });
}

bool GuideWritingFailed() {
    return g_guideFailed;
}
