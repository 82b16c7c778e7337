// A real session at the keyboard: the program on an X server of its own
// (Xvfb) with a generated file on each deck, driven only by key presses that
// xdotool types into deck A's window. What each key did is read back from the
// program itself: its shell log ("key: deck A needle -> lift") and its
// settings file (deck A's main level, stored after the level keys).
#include <gtest/gtest.h>

#include "TestSupport.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QThread>
#include <cstring>

#include <unistd.h>

namespace {

const QString kProgram = QStringLiteral(MIXORA_BINARY_DIR "/mixora");

class Session {
  public:
    ~Session() {
        for (QProcess* p : {&program_, &xvfb_}) {
            if (p->state() != QProcess::NotRunning) {
                p->terminate();
                if (!p->waitForFinished(5000))
                    p->kill();
                p->waitForFinished(2000);
            }
        }
    }

    // An X server on a display nobody uses.
    bool StartX() {
        for (int tries = 0; tries < 20; ++tries) {
            const int n = 200 + (getpid() + tries * 7) % 700;
            if (QFile::exists(QStringLiteral("/tmp/.X%1-lock").arg(n)) ||
                QFile::exists(QStringLiteral("/tmp/.X11-unix/X%1").arg(n)))
                continue;
            display_ = QStringLiteral(":%1").arg(n);
            xvfb_.setStandardOutputFile(QProcess::nullDevice());
            xvfb_.setStandardErrorFile(QProcess::nullDevice());
            xvfb_.start(QStringLiteral("Xvfb"),
                        {display_, "-screen", "0", "1280x1024x24", "-nolisten", "tcp"});
            if (!xvfb_.waitForStarted(5000))
                return false;
            QElapsedTimer t;
            t.start();
            while (t.elapsed() < 10000 && xvfb_.state() == QProcess::Running) {
                if (Xdotool({"getmouselocation"}))
                    return true;
                QThread::msleep(100);
            }
            xvfb_.waitForFinished(2000);
        }
        return false;
    }

    void StartProgram(const QStringList& files) {
        QProcessEnvironment e = QProcessEnvironment::systemEnvironment();
        e.insert("DISPLAY", display_);
        e.insert("QT_QPA_PLATFORM", "xcb");
        e.insert("MIXORA_SHELL_LOG", dir_.path() + "/shell.log");
        e.insert("MIXORA_CONFIG_DIR", dir_.path() + "/config");
        e.insert("MIXORA_DATA_DIR", dir_.path() + "/data");
        e.insert("MIXORA_SOUND_DEVICE", "null");
        e.insert("MIXORA_SHUTDOWN_PAUSE_MS", "10");
        program_.setProcessEnvironment(e);
        program_.setProcessChannelMode(QProcess::MergedChannels);
        program_.start(kProgram, files);
        program_.waitForStarted(10000);
    }

    // Runs xdotool on the session's display; true when it succeeded.
    bool Xdotool(const QStringList& args, QString* output = nullptr) {
        QProcess x;
        QProcessEnvironment e = QProcessEnvironment::systemEnvironment();
        e.insert("DISPLAY", display_);
        x.setProcessEnvironment(e);
        x.start(QStringLiteral("xdotool"), args);
        const bool done = x.waitForFinished(15000);
        if (output)
            *output = QString::fromUtf8(x.readAllStandardOutput()).trimmed();
        return done && x.exitStatus() == QProcess::NormalExit && x.exitCode() == 0;
    }

    QStringList Log() const {
        QFile f(dir_.path() + "/shell.log");
        if (!f.open(QIODevice::ReadOnly))
            return {};
        return QString::fromUtf8(f.readAll()).split('\n', Qt::SkipEmptyParts);
    }
    // Waits until the log holds `count` lines equal to `line`.
    bool WaitForLog(const QString& line, int count = 1, int ms = 10000) {
        QElapsedTimer t;
        t.start();
        while (t.elapsed() < ms) {
            if (Log().count(line) >= count)
                return true;
            if (program_.state() != QProcess::Running)
                return false;
            QThread::msleep(50);
        }
        return false;
    }

    // Deck A's main level as the program stored it (a float kept as its
    // 32-bit pattern); negative when not stored.
    float StoredLevelA() const {
        QFile f(dir_.path() + "/config/Mixora.conf");
        if (!f.open(QIODevice::ReadOnly))
            return -1.0f;
        const QRegularExpression re(QStringLiteral("^mainDeckALevel=(\\d+)$"),
                                    QRegularExpression::MultilineOption);
        const auto m = re.match(QString::fromUtf8(f.readAll()));
        if (!m.hasMatch())
            return -1.0f;
        const quint32 bits = m.captured(1).toUInt();
        float level;
        std::memcpy(&level, &bits, sizeof level);
        return level;
    }

    QString Output() {
        program_.waitForReadyRead(100);
        return QStringLiteral("exit %1: ").arg(program_.exitCode()) +
               QString::fromUtf8(program_.readAll());
    }
    bool Running() const { return program_.state() == QProcess::Running; }

  private:
    QTemporaryDir dir_;
    QString display_;
    QProcess xvfb_;
    QProcess program_;
};

// The stored level of deck A once it has moved from `from` and then kept
// still for a second: the program stores it half a second after the last
// step, and a loaded machine serves the keys and the timers late.
float SettledLevelA(Session& s, float from) {
    QElapsedTimer t;
    t.start();
    float last = s.StoredLevelA();
    while (last == from && t.elapsed() < 10000) {
        QThread::msleep(50);
        last = s.StoredLevelA();
    }
    QElapsedTimer still;
    still.start();
    while (still.elapsed() < 1000 && t.elapsed() < 15000) {
        QThread::msleep(100);
        const float now = s.StoredLevelA();
        if (now != last) {
            last = now;
            still.restart();
        }
    }
    return last;
}

void HoldKey(Session& s, const QString& key, int ms) {
    s.Xdotool({"keydown", key});
    QThread::msleep(ms);
    s.Xdotool({"keyup", key});
}

}  // namespace

TEST(KeyboardSession, KeysTypedIntoTheRealProgramDriveDeckAAndItsLevel) {
    for (const char* tool : {"Xvfb", "xdotool"}) {
        if (QStandardPaths::findExecutable(QString::fromLatin1(tool)).isEmpty())
            GTEST_SKIP() << tool << " is not installed (scripts/install-deps adds it)";
    }
    ASSERT_TRUE(QFile::exists(kProgram));
    const QString a = testsupport::MakeTone("session-a.wav", 440, 20);
    const QString b = testsupport::MakeTone("session-b.wav", 660, 20);
    ASSERT_FALSE(a.isEmpty());
    ASSERT_FALSE(b.isEmpty());

    Session s;
    ASSERT_TRUE(s.StartX()) << "Xvfb did not start";
    s.StartProgram({a, b});
    ASSERT_TRUE(s.WaitForLog("running", 1, 30000)) << s.Output().toStdString();
    QString deckA;
    ASSERT_TRUE(s.Xdotool({"search", "--sync", "--name", "^Deck A$"}, &deckA));
    ASSERT_FALSE(deckA.isEmpty());
    ASSERT_TRUE(s.Xdotool({"windowfocus", "--sync", deckA.section('\n', 0, 0)}));

    // The files load with the turntable turning: Ctrl+S stops it, again starts it.
    s.Xdotool({"key", "ctrl+s"});
    ASSERT_TRUE(s.WaitForLog("key: deck A start/stop -> start"));
    s.Xdotool({"key", "ctrl+s"});
    ASSERT_TRUE(s.WaitForLog("key: deck A start/stop -> stop"));
    // Ctrl+D drops the needle.
    s.Xdotool({"key", "ctrl+d"});
    ASSERT_TRUE(s.WaitForLog("key: deck A needle -> lift"));

    // G held a second takes the level down a step a poll, T held
    // half a second brings part of it back; each is stored half a second
    // after the last step.
    const float start = s.StoredLevelA();
    ASSERT_GE(start, 0.4f);  // stored at start-up
    HoldKey(s, "g", 1000);
    const float afterG = SettledLevelA(s, start);
    EXPECT_GT(afterG, start - 0.40f);
    EXPECT_LT(afterG, start - 0.20f);
    HoldKey(s, "t", 500);
    const float afterT = SettledLevelA(s, afterG);
    EXPECT_GT(afterT, afterG + 0.08f);
    EXPECT_LT(afterT, afterG + 0.25f);

    // 3: deck A to 40 % of its track.
    s.Xdotool({"key", "3"});
    EXPECT_TRUE(s.WaitForLog("key: deck A jump 40%"));

    // Ctrl+F held: reverse while held; F let go with Ctrl down ends it.
    s.Xdotool({"keydown", "ctrl+f"});
    EXPECT_TRUE(s.WaitForLog("key: deck A reverse on"));
    QThread::msleep(300);
    s.Xdotool({"keyup", "f"});
    EXPECT_TRUE(s.WaitForLog("key: deck A reverse off"));
    s.Xdotool({"keyup", "ctrl"});

    EXPECT_TRUE(s.Running()) << s.Output().toStdString();
    // Nothing else happened on the way: no second jump, no stray reverse.
    EXPECT_EQ(s.Log().filter("key: ").size(), 6) << s.Log().join('\n').toStdString();
}
