// The real program on a real X server (Xvfb, no window manager) at three
// screen sizes: End tiles the windows, every control of every shown window
// lies inside its window, and the screen is captured to a PNG in the build
// folder (layout-full-screen-WxH.png). Skipped without Xvfb or ImageMagick.
#include <gtest/gtest.h>

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QThread>

#include "app/MixoraChild.h"

namespace {

struct Screen {
    int width, height;
    // Full screen: every window in high resolution, the decks' information
    // windows as frames without height; four windows in low resolution.
    int windows, frames;
};

class XServer {
  public:
    bool Start(int width, int height) {
        for (int n = 91; n < 140; ++n) {
            if (QFileInfo::exists(QStringLiteral("/tmp/.X11-unix/X%1").arg(n)) ||
                QFileInfo::exists(QStringLiteral("/tmp/.X%1-lock").arg(n)))
                continue;
            display_ = QStringLiteral(":%1").arg(n);
            server_.start(QStringLiteral("Xvfb"),
                          {display_, "-screen", "0",
                           QStringLiteral("%1x%2x24").arg(width).arg(height), "-nolisten", "tcp"});
            if (!server_.waitForStarted(5000))
                return false;
            for (int i = 0; i < 100; ++i) {
                if (QFileInfo::exists(QStringLiteral("/tmp/.X11-unix/X%1").arg(n)))
                    return true;
                if (server_.state() != QProcess::Running)
                    break;
                QThread::msleep(50);
            }
            server_.kill();
            server_.waitForFinished(2000);
        }
        return false;
    }
    ~XServer() {
        if (server_.state() == QProcess::Running) {
            server_.terminate();
            if (!server_.waitForFinished(3000))
                server_.kill();
            server_.waitForFinished(2000);
        }
    }
    QString Display() const { return display_; }

  private:
    QProcess server_;
    QString display_;
};

int Number(const QString& line, const QString& word) {
    const QStringList parts = line.split(' ');
    const int i = parts.indexOf(word);
    return i >= 0 && i + 1 < parts.size() ? parts[i + 1].toInt() : -1;
}

}  // namespace

TEST(LayoutScreens, FullScreenKeepsEveryControlInsideItsWindow) {
    if (QStandardPaths::findExecutable("Xvfb").isEmpty() ||
        QStandardPaths::findExecutable("import").isEmpty())
        GTEST_SKIP() << "Xvfb or ImageMagick's import is not installed";
    for (const Screen s :
         {Screen{1920, 1080, 9, 2}, Screen{1024, 768, 9, 2}, Screen{800, 600, 4, 0}}) {
        SCOPED_TRACE(QStringLiteral("%1 x %2").arg(s.width).arg(s.height).toStdString());
        XServer x;
        ASSERT_TRUE(x.Start(s.width, s.height));
        testsupport::MixoraChild child;
        ASSERT_TRUE(
            child.Start({}, {"QT_QPA_PLATFORM=xcb", "DISPLAY=" + x.Display(),
                             "MIXORA_AUTOTEST=layout-full-screen", "MIXORA_LAYOUT_HOLD_MS=3000"}));
        const QString check = child.WaitForLine("layout check", 60000);
        ASSERT_FALSE(check.isEmpty()) << child.Log().join('\n').toStdString();
        const QString png = QStringLiteral(MIXORA_BINARY_DIR "/layout-full-screen-%1x%2.png")
                                .arg(s.width)
                                .arg(s.height);
        QFile::remove(png);
        QProcess shot;
        shot.start(QStringLiteral("import"), {"-display", x.Display(), "-window", "root", png});
        ASSERT_TRUE(shot.waitForFinished(30000));
        EXPECT_EQ(shot.exitCode(), 0) << shot.readAllStandardError().toStdString();
        EXPECT_GT(QFileInfo(png).size(), 1000);

        const QStringList log = child.Log();
        EXPECT_EQ(Number(check, "outside"), 0) << log.join('\n').toStdString();
        EXPECT_EQ(Number(check, "windows"), s.windows) << log.join('\n').toStdString();
        EXPECT_EQ(Number(check, "frames"), s.frames);
        EXPECT_GT(Number(check, "controls"), 50);
        // Every shown window on the screen.
        for (const QString& line : log) {
            if (!line.startsWith("layout window ") || !line.endsWith(" shown"))
                continue;
            const QStringList p = line.split(' ');
            ASSERT_EQ(p.size(), 9) << line.toStdString();
            EXPECT_GE(p[4].toInt(), 0) << line.toStdString();
            EXPECT_GE(p[5].toInt(), 0) << line.toStdString();
            EXPECT_LE(p[6].toInt(), s.width) << line.toStdString();
            EXPECT_LE(p[7].toInt(), s.height) << line.toStdString();
        }
        ASSERT_TRUE(child.Wait(30000));
        EXPECT_EQ(child.ExitCode(), 0);
    }
}

// The last line of the log that starts with `prefix`.
static QString LastLine(const QStringList& log, const QString& prefix) {
    for (auto it = log.crbegin(); it != log.crend(); ++it) {
        if (it->startsWith(prefix))
            return *it;
    }
    return {};
}

TEST(LayoutRestart, MovedWindowsComeBackAndSaveOffForgetsThem) {
    ASSERT_TRUE(QFileInfo::exists(MIXORA_BINARY_DIR "/mixora"));
    const QString deckA = QStringLiteral("layout window CRynDeck 0 ");
    testsupport::MixoraChild child;
    ASSERT_TRUE(child.Start({}, {"MIXORA_AUTOTEST=layout-report"}));
    ASSERT_TRUE(child.Wait(30000));
    // The offscreen screen is 800 x 800: the low-resolution layout, deck A
    // in the upper left quarter.
    EXPECT_EQ(LastLine(child.Log(), deckA), deckA + "0 0 400 440 shown");

    ASSERT_TRUE(child.Start({}, {"MIXORA_AUTOTEST=layout-move"}));
    ASSERT_TRUE(child.Wait(30000));
    EXPECT_EQ(child.ExitCode(), 0);
    ASSERT_TRUE(child.Log().contains("layout moved"));

    // The next run puts deck A where the user left it (its client area at
    // 101, 57, inside the offscreen platform's 2-pixel frame).
    ASSERT_TRUE(child.Start({}, {"MIXORA_AUTOTEST=layout-report"}));
    ASSERT_TRUE(child.Wait(30000));
    EXPECT_EQ(LastLine(child.Log(), deckA), deckA + "99 55 503 359 shown");

    // With "Save Window Positions" off, the run after goes back to the default.
    ASSERT_TRUE(child.Start({}, {"MIXORA_AUTOTEST=layout-save-off"}));
    ASSERT_TRUE(child.Wait(30000));
    ASSERT_TRUE(child.Start({}, {"MIXORA_AUTOTEST=layout-report"}));
    ASSERT_TRUE(child.Wait(30000));
    EXPECT_EQ(LastLine(child.Log(), deckA), deckA + "0 0 400 440 shown");
}
