#include "TestSupport.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QThread>
#include <cstdio>

namespace testsupport {

bool Run(const QString& program, const QStringList& args, int timeoutMs) {
    QProcess p;
    p.setProcessChannelMode(QProcess::MergedChannels);
    p.start(program, args);
    if (!p.waitForStarted(10000)) {
        std::fprintf(stderr, "cannot start %s\n", qPrintable(program));
        return false;
    }
    bool finished = p.waitForFinished(timeoutMs);
    if (!finished || p.exitStatus() != QProcess::NormalExit || p.exitCode() != 0) {
        std::fprintf(stderr, "%s failed:\n%s\n", qPrintable(program), p.readAll().constData());
        return false;
    }
    return true;
}

QString FixtureDir() {
    QString dir = QStringLiteral(MIXORA_BINARY_DIR) + QStringLiteral("/fixtures");
    QDir().mkpath(dir);
    return dir;
}

QString MakeTone(const QString& name, double frequency, double seconds, int rate, int channels,
                 const QStringList& codecArgs) {
    QString path = FixtureDir() + "/" + name;
    if (QFile::exists(path))
        return path;
    QString tmp = path + ".part" + QString::number(QCoreApplication::applicationPid()) + "." +
                  QFileInfo(name).suffix();
    QStringList args = {"-nostdin",
                        "-loglevel",
                        "error",
                        "-y",
                        "-f",
                        "lavfi",
                        "-i",
                        QString("sine=frequency=%1:sample_rate=%2:duration=%3")
                            .arg(frequency)
                            .arg(rate)
                            .arg(seconds),
                        "-ac",
                        QString::number(channels)};
    args += codecArgs;
    args << tmp;
    if (!Run("ffmpeg", args))
        return {};
    QFile::remove(path);
    if (!QFile::rename(tmp, path))
        return {};
    return path;
}

bool WaitFor(const std::function<bool()>& pred, int timeoutMs) {
    QElapsedTimer t;
    t.start();
    while (!pred()) {
        if (t.elapsed() > timeoutMs)
            return pred();
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
        QThread::msleep(1);
    }
    return true;
}

}  // namespace testsupport
