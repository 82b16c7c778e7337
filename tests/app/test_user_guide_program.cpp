// The real program writes its user guide from the command line into a fresh
// folder: every page in place with its structure, every window page's
// picture present with the size its IMG tag states, every image map area
// jumping to an anchor of its page, and the pictures of the index, overview
// and keyboard maps. When Chromium is installed, index.htm and deck.htm are
// opened in it headless and their screenshots saved in the build folder.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>

#include "TestSupport.h"
#include "app/MixoraChild.h"
#include "help/GuidePages.h"

namespace {

const QString kProgram = QStringLiteral(MIXORA_BINARY_DIR "/mixora");

QString ReadAll(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? QString::fromUtf8(f.readAll()) : QString();
}

QStringList Captures(const QString& text, const QString& pattern) {
    QStringList out;
    const QRegularExpression re(pattern);
    for (auto it = re.globalMatch(text); it.hasNext();)
        out << it.next().captured(1);
    return out;
}

// The guide written once for all the tests of this file.
class UserGuideProgram : public ::testing::Test {
  protected:
    static void SetUpTestSuite() {
        folder_ = new QTemporaryDir;
        child_ = new testsupport::MixoraChild;
        ok_ = QFileInfo::exists(kProgram) &&
              child_->Start({QStringLiteral("--write-guide"), folder_->path() + "/guide"}, {}) &&
              child_->Wait(120000);
    }
    static void TearDownTestSuite() {
        delete child_;
        delete folder_;
    }
    static QString Guide() { return folder_->path() + "/guide"; }

    static QTemporaryDir* folder_;
    static testsupport::MixoraChild* child_;
    static bool ok_;
};

QTemporaryDir* UserGuideProgram::folder_ = nullptr;
testsupport::MixoraChild* UserGuideProgram::child_ = nullptr;
bool UserGuideProgram::ok_ = false;

}  // namespace

TEST_F(UserGuideProgram, WritesEveryPageAndPictureThenQuits) {
    ASSERT_TRUE(ok_) << "the program did not run to its end";
    EXPECT_TRUE(child_->NormalExit());
    EXPECT_EQ(child_->ExitCode(), 0) << child_->Stderr().constData();
    for (const char* page : {"getting_started.htm", "index.htm", "overview.htm", "keyboard_map.htm",
                             "deck.htm", "equalizer.htm", "play_list.htm", "main_mixer.htm",
                             "phones_mixer.htm", "3d_graph.htm", "configuration_window.htm"}) {
        EXPECT_TRUE(QFileInfo::exists(Guide() + "/" + page)) << page;
    }
    const QImage full(Guide() + "/images/fullscreen600x451.png");
    EXPECT_EQ(full.size(), QSize(600, 451));
    EXPECT_EQ(QImage(Guide() + "/images/overview.png").size(), QSize(400, 145));
    EXPECT_FALSE(QImage(Guide() + "/images/keyboard_map1.png").isNull());
    EXPECT_FALSE(QImage(Guide() + "/images/keyboard_map2.png").isNull());
    QFile::copy(Guide() + "/images/keyboard_map1.png",
                QStringLiteral(MIXORA_BINARY_DIR "/guide_keyboard_map1.png"));
    QFile::remove(QStringLiteral(MIXORA_BINARY_DIR "/guide_fullscreen.png"));
    full.save(QStringLiteral(MIXORA_BINARY_DIR "/guide_fullscreen.png"));
}

TEST_F(UserGuideProgram, WindowPagesHaveTheirPicturesAreasAndSections) {
    ASSERT_TRUE(ok_);
    for (const guide::WindowName& w : guide::kWindowPages) {
        const QString file = QString::fromLatin1(w.file);
        SCOPED_TRACE(file.toStdString());
        const QString html = ReadAll(Guide() + "/" + file);
        ASSERT_FALSE(html.isEmpty());
        EXPECT_TRUE(
            html.startsWith(QStringLiteral("<HTML><TITLE>Mixora ") + QLatin1String(w.name) +
                            QStringLiteral("</TITLE><BODY>\n<CENTER>\n<A NAME=TOP><H1>The ") +
                            QLatin1String(w.name) + QStringLiteral("</H1></A>\n")));
        EXPECT_TRUE(html.endsWith(QStringLiteral("End Of File\n</BODY>\n</HTML>\n")));
        const QImage picture(Guide() + "/" + guide::PictureName(file));
        ASSERT_FALSE(picture.isNull());
        EXPECT_TRUE(html.contains(QStringLiteral("BORDER=0 WIDTH=%1 HEIGHT=%2 USEMAP")
                                      .arg(picture.width())
                                      .arg(picture.height())));
        const QStringList areas = Captures(html, QStringLiteral("<AREA HREF=\"#([^\"]+)\""));
        const QStringList names = Captures(html, QStringLiteral("<A NAME=([^>]+)>"));
        if (file == QLatin1String("play_list.htm") ||
            file == QLatin1String("configuration_window.htm")) {
            EXPECT_FALSE(areas.isEmpty());
        }
        for (const QString& a : areas)
            EXPECT_TRUE(names.contains(a)) << a.toStdString();
        // Areas lie across the picture (their tops and bottoms move down by
        // the title bar's height, at most 24 pixels).
        static const QRegularExpression coords(
            QStringLiteral("COORDS=\"(\\d+), (\\d+), (\\d+), (\\d+)\""));
        for (auto it = coords.globalMatch(html); it.hasNext();) {
            const auto m = it.next();
            EXPECT_LE(m.captured(1).toInt(), m.captured(3).toInt()) << m.captured(0).toStdString();
            EXPECT_LE(m.captured(3).toInt(), picture.width()) << m.captured(0).toStdString();
            EXPECT_LE(m.captured(4).toInt(), picture.height() + 24) << m.captured(0).toStdString();
        }
    }
    const QString list = ReadAll(Guide() + "/play_list.htm");
    EXPECT_TRUE(list.contains(QStringLiteral("<AREA HREF=\"#Delete_Item:\"")));
    EXPECT_TRUE(list.contains(QStringLiteral("<A NAME=Delete_Item:><P><H3>Delete Item:</H3>")));
    QFile::remove(QStringLiteral(MIXORA_BINARY_DIR "/guide_deck.png"));
    QFile::copy(Guide() + "/images/deck.png", QStringLiteral(MIXORA_BINARY_DIR "/guide_deck.png"));
}

TEST_F(UserGuideProgram, ChromiumShowsIndexAndDeckPages) {
    ASSERT_TRUE(ok_);
    QString chromium = QStandardPaths::findExecutable(QStringLiteral("chromium"));
    if (chromium.isEmpty())
        GTEST_SKIP() << "chromium is not installed (scripts/install-deps installs it): the "
                        "guide's pages were not opened in a browser";
    for (const char* page : {"index", "deck"}) {
        const QString shot =
            QStringLiteral(MIXORA_BINARY_DIR "/guide_%1_chromium.png").arg(QLatin1String(page));
        QFile::remove(shot);
        QProcess p;
        p.setProcessChannelMode(QProcess::MergedChannels);
        p.start(chromium, {"--headless", "--no-sandbox", "--disable-gpu", "--screenshot=" + shot,
                           "--window-size=1280,900", "file://" + Guide() + "/" + page + ".htm"});
        ASSERT_TRUE(p.waitForFinished(120000)) << page;
        const QImage image(shot);
        EXPECT_EQ(image.size(), QSize(1280, 900)) << page << p.readAll().constData();
        // Not a blank page: the guide's pictures and text are drawn.
        bool varied = false;
        for (int y = 0; y < image.height() && !varied; y += 7) {
            for (int x = 0; x < image.width() && !varied; x += 7)
                varied = image.pixel(x, y) != image.pixel(0, 0);
        }
        EXPECT_TRUE(varied) << page;
    }
}
