// A JACK server of a test's own with the dummy driver at 44100 Hz and 256
// frames, named by the test so parallel test processes never share one;
// stopped by its PID, its files in /dev/shm removed after it.
#pragma once

#include <QProcess>
#include <QString>

namespace testsupport {

class JackServer {
  public:
    explicit JackServer(QString name) : name_(std::move(name)) {}
    ~JackServer() { Stop(); }

    // True when jackd and jack_wait are installed (Debian package jackd2).
    static bool Installed();

    // Starts the server and waits until it runs.
    bool Start();
    // Stops it (terminate, then kill) and removes its files.
    void Stop();
    bool Running() const { return process_.state() != QProcess::NotRunning; }
    const QString& Name() const { return name_; }
    QByteArray Log() { return process_.readAll(); }

  private:
    QString name_;
    QProcess process_;
};

}  // namespace testsupport
