// A JACK server of a test's own with the dummy driver at 44100 Hz and 256
// frames, named by the test so parallel test processes never share one;
// stopped by its PID, its files in /dev/shm removed after it.
//
// The shared registry /dev/shm/jack-shm-registry (and jack_db-*) is never
// removed: every process that ever had a JACK client keeps the registry it
// first attached mapped for good, and libjack has no way to attach it again.
// A registry removed and made afresh by the next server cuts such a process
// (the program under test, or this test process with its recorder) off from
// every JACK server until it restarts. jackd leaves the registry behind on
// purpose and clears the entries of dead servers when it starts.
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
    // Starts the server without waiting for it: the caller keeps its event
    // loop running (the program under test on this thread goes on).
    bool Launch();
    // Stops it (terminate, then kill) and removes its files.
    void Stop();
    // Asks it to stop without waiting (Running() turns false once it has
    // ended; Stop() then removes its files).
    void Terminate() { process_.terminate(); }
    bool Running() const { return process_.state() != QProcess::NotRunning; }
    const QString& Name() const { return name_; }
    QByteArray Log() { return process_.readAll(); }

  private:
    QString name_;
    QProcess process_;
};

// Removes the files of the server `name` from /dev/shm (its socket and
// semaphores, left behind when it was killed), never the shared registry.
void RemoveJackServerFiles(const QString& name);

}  // namespace testsupport
