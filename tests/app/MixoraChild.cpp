#include "app/MixoraChild.h"

#include <QElapsedTimer>
#include <QFile>
#include <QProcessEnvironment>
#include <QThread>
#include <csignal>
#include <vector>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace testsupport {

namespace {
const QString kProgram = QStringLiteral(MIXORA_BINARY_DIR "/mixora");

QByteArray ReadAll(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}
}  // namespace

MixoraChild::MixoraChild() = default;

MixoraChild::~MixoraChild() {
    if (pid_ > 0 && !Wait(0)) {
        kill(pid_, SIGKILL);
        Wait(5000);
    }
}

bool MixoraChild::Start(const QStringList& args, const QStringList& env) {
    QProcessEnvironment e = QProcessEnvironment::systemEnvironment();
    e.insert("QT_QPA_PLATFORM", "offscreen");
    e.insert("MIXORA_SHELL_LOG", dir_.path() + "/shell.log");
    e.insert("MIXORA_SHUTDOWN_PAUSE_MS", "10");
    e.insert("MIXORA_CONFIG_DIR", ConfigDir());
    e.insert("MIXORA_DATA_DIR", DataDir());
    e.insert("MIXORA_SOUND_DEVICE", "null");
    for (const QString& kv : env)
        e.insert(kv.section('=', 0, 0), kv.section('=', 1));

    std::vector<QByteArray> argStore{kProgram.toLocal8Bit()};
    for (const QString& a : args)
        argStore.push_back(a.toLocal8Bit());
    std::vector<QByteArray> envStore;
    for (const QString& kv : e.toStringList())
        envStore.push_back(kv.toLocal8Bit());
    std::vector<char*> argv, envp;
    for (auto& a : argStore)
        argv.push_back(a.data());
    for (auto& v : envStore)
        envp.push_back(v.data());
    argv.push_back(nullptr);
    envp.push_back(nullptr);
    const QByteArray out = (dir_.path() + "/stdout").toLocal8Bit();
    const QByteArray err = (dir_.path() + "/stderr").toLocal8Bit();

    pid_ = fork();
    if (pid_ == 0) {
        const int o = open(out.constData(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        const int r = open(err.constData(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        dup2(o, 1);
        dup2(r, 2);
        execve(argv[0], argv.data(), envp.data());
        _exit(127);
    }
    return pid_ > 0;
}

QStringList MixoraChild::Log() const {
    return QString::fromUtf8(ReadAll(dir_.path() + "/shell.log")).split('\n', Qt::SkipEmptyParts);
}

QString MixoraChild::WaitForLine(const QString& prefix, int timeoutMs,
                                 bool (*accept)(const QString&)) const {
    QElapsedTimer t;
    t.start();
    int seen = 0;
    do {
        const QStringList lines = Log();
        for (int i = seen; i < lines.size(); ++i) {
            if (lines[i].startsWith(prefix) && (accept == nullptr || accept(lines[i])))
                return lines[i];
        }
        seen = lines.size();
        QThread::msleep(20);
    } while (t.elapsed() < timeoutMs);
    return {};
}

void MixoraChild::Signal(int sig) {
    if (pid_ > 0)
        kill(pid_, sig);
}

bool MixoraChild::Wait(int timeoutMs) {
    if (pid_ <= 0)
        return true;
    QElapsedTimer t;
    t.start();
    for (;;) {
        int status = 0;
        const pid_t r = waitpid(pid_, &status, WNOHANG);
        if (r == pid_) {
            normalExit_ = WIFEXITED(status);
            exitCode_ = normalExit_ ? WEXITSTATUS(status) : -1;
            pid_ = -1;
            return true;
        }
        if (r < 0 || t.elapsed() >= timeoutMs)
            return false;
        QThread::msleep(10);
    }
}

QByteArray MixoraChild::Stdout() const {
    return ReadAll(dir_.path() + "/stdout");
}

QByteArray MixoraChild::Stderr() const {
    return ReadAll(dir_.path() + "/stderr");
}

}  // namespace testsupport
