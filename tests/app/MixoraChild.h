// The real program as a running child process on the offscreen platform,
// for tests that act on it while it runs: its shell log is read as it grows,
// signals are sent to it, and its standard output and standard error are
// kept apart (in files of the child's own folder). Started with fork and
// exec, like the other child-process tests.
#pragma once

#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <sys/types.h>

namespace testsupport {

class MixoraChild {
  public:
    MixoraChild();
    // A child still running is killed.
    ~MixoraChild();

    // The child's settings and data folders (inside its own folder).
    QString ConfigDir() const { return dir_.path() + "/config"; }
    QString DataDir() const { return dir_.path() + "/data"; }

    // Starts the program with `args` and the environment: the test's own,
    // offscreen, a shell log, short shutdown pauses, the child's folders,
    // the Null sound device, then `env` ("NAME=value") over that.
    bool Start(const QStringList& args, const QStringList& env);

    // The shell log so far.
    QStringList Log() const;
    // Pumps nothing; polls the log every 20 ms until a line starts with
    // `prefix` and satisfies `accept` (if given), or timeoutMs passes.
    QString WaitForLine(const QString& prefix, int timeoutMs,
                        bool (*accept)(const QString&) = nullptr) const;

    void Signal(int sig);
    // Waits for the end; false on time-out. exitCode is -1 after a signal.
    bool Wait(int timeoutMs);
    bool NormalExit() const { return normalExit_; }
    int ExitCode() const { return exitCode_; }
    pid_t Pid() const { return pid_; }

    QByteArray Stdout() const;
    QByteArray Stderr() const;

  private:
    QTemporaryDir dir_;
    pid_t pid_ = -1;
    bool normalExit_ = false;
    int exitCode_ = -1;
};

}  // namespace testsupport
