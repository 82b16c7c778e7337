// The whole program at work: the real mixora on a JACK server with the dummy
// driver (44100 Hz, 256 frames), two generated 3-minute MP3s on decks A and
// B, both needles down, both equalizers on with 12 bands, every graph and
// meter on (the decks' scopes). Prints, over 30 s of playing:
//   - the process's CPU time in percent of one core   (goal: under 7.5 %)
//   - its resident and private memory                 (goal: private under 100 MB)
//   - the JACK xruns of its client (jackd's "XRun: client = PortAudio" lines)
//   - the time from launch to both tracks loaded.
// Needs jackd, jack_wait and ffmpeg; the figures depend on how busy the
// machine is (CPU time is the process's own, wall time is not). An argument
// "Bars" or "Chart" shows that graph type on the decks instead of the scopes.
#include <signal.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>
#include <cstdio>

namespace {

const QString kServer = QStringLiteral("mixora_cpu_bench");

bool Run(const QString& program, const QStringList& args, int timeoutMs = 120000) {
    QProcess p;
    p.start(program, args);
    return p.waitForFinished(timeoutMs) && p.exitStatus() == QProcess::NormalExit &&
           p.exitCode() == 0;
}

// utime + stime of a process, in seconds.
double CpuSeconds(qint64 pid) {
    QFile f(QStringLiteral("/proc/%1/stat").arg(pid));
    if (!f.open(QIODevice::ReadOnly))
        return -1;
    const QByteArray s = f.readAll();
    const QList<QByteArray> fields = s.mid(s.lastIndexOf(')') + 2).split(' ');
    // After the name: state is field 3; utime and stime are fields 14 and 15.
    if (fields.size() < 13)
        return -1;
    return (fields[11].toDouble() + fields[12].toDouble()) / sysconf(_SC_CLK_TCK);
}

// Kilobytes of a line of /proc/<pid>/smaps_rollup ("Rss:", "Private_Dirty:" ...).
long RollupKb(qint64 pid, const QByteArray& key) {
    QFile f(QStringLiteral("/proc/%1/smaps_rollup").arg(pid));
    if (!f.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray& line : f.readAll().split('\n'))
        if (line.startsWith(key))
            return line.mid(key.size()).trimmed().split(' ').value(0).toLong();
    return -1;
}

void CleanShm() {
    QDir shm(QStringLiteral("/dev/shm"));
    for (const QString& f :
         shm.entryList({"jack_" + kServer + "_*", "jack_sem.*_" + kServer + "_*"},
                       QDir::System | QDir::Files))
        shm.remove(f);
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QTemporaryDir dir;
    std::printf("program_cpu: making two 3-minute MP3s...\n");
    std::fflush(stdout);
    QStringList tracks;
    for (const QString& f : {QStringLiteral("220"), QStringLiteral("330")}) {
        const QString path = dir.path() + "/track" + f + ".mp3";
        if (!Run("ffmpeg", {"-loglevel", "error", "-y", "-f", "lavfi", "-i",
                            "sine=frequency=" + f + ":beep_factor=4:sample_rate=44100:duration=180",
                            "-ac", "2", "-b:a", "192k", path})) {
            std::printf("program_cpu: ffmpeg failed\n");
            return 1;
        }
        tracks << path;
    }

    QProcess jack;
    QProcessEnvironment jackEnv = QProcessEnvironment::systemEnvironment();
    jackEnv.insert("JACK_NO_AUDIO_RESERVATION", "1");
    jack.setProcessEnvironment(jackEnv);
    jack.setProcessChannelMode(QProcess::MergedChannels);
    jack.start("jackd",
               {"-n", kServer, "--no-realtime", "-d", "dummy", "-r", "44100", "-p", "256"});
    if (!jack.waitForStarted(10000) ||
        !Run("jack_wait", {"-s", kServer, "-w", "-t", "10"}, 20000)) {
        std::printf("program_cpu: jackd did not start\n");
        return 1;
    }

    const QString log = dir.path() + "/shell.log";
    QProcess mixora;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("JACK_DEFAULT_SERVER", kServer);
    env.insert("MIXORA_SOUND_DEVICE", "pa:JACK Audio Connection Kit:system");
    env.insert("MIXORA_AUTOTEST", "play-both");
    if (argc > 1)
        env.insert("MIXORA_AUTOTEST_GRAPH", QString::fromLocal8Bit(argv[1]));
    env.insert("MIXORA_SHELL_LOG", log);
    env.insert("MIXORA_CONFIG_DIR", dir.path() + "/config");
    env.insert("MIXORA_DATA_DIR", dir.path() + "/data");
    if (!env.contains("DISPLAY"))
        env.insert("QT_QPA_PLATFORM", "offscreen");
    mixora.setProcessEnvironment(env);
    mixora.setStandardOutputFile(QProcess::nullDevice());
    mixora.setStandardErrorFile(dir.path() + "/mixora-stderr.log");
    QElapsedTimer launch;
    launch.start();
    mixora.start(QStringLiteral(MIXORA_BINARY_DIR "/mixora"), tracks);
    if (!mixora.waitForStarted(10000)) {
        std::printf("program_cpu: mixora did not start\n");
        return 1;
    }
    const qint64 pid = mixora.processId();
    qint64 loadedMs = -1;
    while (launch.elapsed() < 60000 && mixora.state() == QProcess::Running) {
        QFile f(log);
        if (f.open(QIODevice::ReadOnly) && f.readAll().contains("both tracks loaded")) {
            loadedMs = launch.elapsed();
            break;
        }
        QThread::msleep(10);
    }
    if (loadedMs < 0) {
        std::printf("program_cpu: the tracks were not loaded within 60 s\n");
        mixora.kill();
        jack.terminate();
        return 1;
    }
    QThread::sleep(3);  // needles down, equalizers and scopes on
    jack.readAll();     // xruns of start-up are not counted
    const double cpu0 = CpuSeconds(pid);
    QElapsedTimer window;
    window.start();
    QThread::sleep(30);
    const double cpu1 = CpuSeconds(pid);
    const double seconds = window.elapsed() / 1000.0;
    const long rss = RollupKb(pid, "Rss:");
    const long priv = RollupKb(pid, "Private_Clean:") + RollupKb(pid, "Private_Dirty:");
    const QByteArray jackLog = jack.readAll();
    const int xruns = jackLog.count("XRun: client = PortAudio");

    const double percent = (cpu1 - cpu0) / seconds * 100.0;
    std::printf("program_cpu: CPU %.2f %% of one core over %.1f s (goal: under 7.5 %%)\n", percent,
                seconds);
    std::printf("program_cpu: resident %.1f MB, private %.1f MB (goal: private under 100 MB)\n",
                rss / 1024.0, priv / 1024.0);
    std::printf("program_cpu: JACK xruns of the program's client: %d\n", xruns);
    std::printf("program_cpu: launch to both tracks loaded: %lld ms\n",
                static_cast<long long>(loadedMs));

    QFile shellLog(log);
    if (shellLog.open(QIODevice::ReadOnly)) {
        const QList<QByteArray> lines = shellLog.readAll().split('\n');
        for (auto it = lines.rbegin(); it != lines.rend(); ++it) {
            if (it->startsWith("playing:")) {
                std::printf("program_cpu: the program says %s\n", it->constData());
                break;
            }
        }
    }
    mixora.terminate();
    if (!mixora.waitForFinished(15000))
        mixora.kill();
    jack.terminate();
    if (!jack.waitForFinished(5000)) {
        jack.kill();
        jack.waitForFinished(5000);
    }
    CleanShm();
    return 0;
}
