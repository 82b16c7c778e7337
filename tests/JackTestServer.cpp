#include "JackTestServer.h"

#include <QDir>
#include <QProcessEnvironment>
#include <QStandardPaths>

#include "TestSupport.h"

namespace testsupport {

bool JackServer::Installed() {
    return !QStandardPaths::findExecutable("jackd").isEmpty() &&
           !QStandardPaths::findExecutable("jack_wait").isEmpty();
}

bool JackServer::Start() {
    return Launch() && Run("jack_wait", {"-s", name_, "-w", "-t", "10"}, 20000);
}

bool JackServer::Launch() {
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("JACK_NO_AUDIO_RESERVATION", "1");
    process_.setProcessEnvironment(env);
    process_.setProcessChannelMode(QProcess::MergedChannels);
    process_.start("jackd",
                   {"-n", name_, "--no-realtime", "-d", "dummy", "-r", "44100", "-p", "256"});
    return process_.waitForStarted(10000);
}

void JackServer::Stop() {
    if (process_.state() != QProcess::NotRunning) {
        process_.terminate();
        if (!process_.waitForFinished(5000)) {
            process_.kill();
            process_.waitForFinished(5000);
        }
    }
    RemoveJackServerFiles(name_);
}

void RemoveJackServerFiles(const QString& name) {
    QDir shm("/dev/shm");
    const QStringList ours = shm.entryList({"jack_" + name + "_*", "jack_sem.*_" + name + "_*"},
                                           QDir::System | QDir::Files);
    for (const QString& f : ours)
        shm.remove(f);
}

}  // namespace testsupport
