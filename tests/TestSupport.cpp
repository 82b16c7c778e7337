#include "TestSupport.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QThread>
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

namespace testsupport {

bool Run(const QString& program, const QStringList& args, int timeoutMs) {
    // fork and exec, not QProcess: Qt starts children with a raw clone that
    // shares this process's memory until the exec, and ThreadSanitizer's own
    // bookkeeping run in that child corrupts the parent's record of its main
    // thread (its locks and atomics go unseen afterwards, so every hand-over
    // through them is reported as a race) in sanitizer builds.
    const QString path = QStandardPaths::findExecutable(program);
    if (path.isEmpty()) {
        std::fprintf(stderr, "cannot start %s\n", qPrintable(program));
        return false;
    }
    std::vector<QByteArray> store{path.toLocal8Bit()};
    for (const QString& a : args)
        store.push_back(a.toLocal8Bit());
    std::vector<char*> argv;
    for (QByteArray& a : store)
        argv.push_back(a.data());
    argv.push_back(nullptr);

    int out[2];
    if (pipe2(out, O_CLOEXEC) != 0)
        return false;
    const pid_t pid = fork();
    if (pid == 0) {
        dup2(out[1], 1);
        dup2(out[1], 2);
        execv(argv[0], argv.data());
        _exit(127);
    }
    close(out[1]);
    if (pid < 0) {
        close(out[0]);
        return false;
    }
    // Output is read until the child closes it or the time runs out.
    QByteArray output;
    QElapsedTimer t;
    t.start();
    bool timedOut = false;
    for (;;) {
        const qint64 left = timeoutMs - t.elapsed();
        if (left <= 0) {
            timedOut = true;
            break;
        }
        pollfd pfd{out[0], POLLIN, 0};
        const int ready = poll(&pfd, 1, static_cast<int>(std::min<qint64>(left, 1000)));
        if (ready < 0 && errno != EINTR)
            break;
        if (ready <= 0)
            continue;
        char buffer[4096];
        const ssize_t n = read(out[0], buffer, sizeof buffer);
        if (n > 0)
            output.append(buffer, n);
        else if (n == 0 || errno != EINTR)
            break;
    }
    close(out[0]);
    if (timedOut)
        kill(pid, SIGKILL);
    int status = 0;
    while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    if (timedOut || !WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        std::fprintf(stderr, "%s failed:\n%s\n", qPrintable(program), output.constData());
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
    const QString tmp = WorkingPath(path);
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
    if (!Run("ffmpeg", args) || !Publish(tmp, path))
        return {};
    return path;
}

QString WorkingPath(const QString& path) {
    return path + ".part" + QString::number(QCoreApplication::applicationPid()) + "." +
           QFileInfo(path).suffix();
}

bool Publish(const QString& working, const QString& path) {
    // rename(2) replaces an existing file atomically; QFile::rename refuses to.
    if (std::rename(QFile::encodeName(working).constData(), QFile::encodeName(path).constData()) ==
        0)
        return true;
    QFile::remove(working);
    return false;
}

bool RunInto(const QString& path, const QString& program, QStringList args) {
    const QString working = WorkingPath(path);
    std::replace(args.begin(), args.end(), path, working);
    if (!Run(program, args)) {
        QFile::remove(working);
        return false;
    }
    return Publish(working, path);
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
