#include "TempoFixtures.h"

#include <QCoreApplication>
#include <QFile>
#include <QStringList>
#include <cmath>

#include "TestSupport.h"

namespace testsupport {
namespace {

// Working files carry the process id: tests in parallel processes may make
// the same fixture at once.
QString Working(const QString& path, const QString& what) {
    return QString("%1.%2.%3.wav").arg(path, what).arg(QCoreApplication::applicationPid());
}

int BeatSamples(double bpm) {
    return static_cast<int>(std::lround(44100.0 * 60.0 / bpm));
}

// One layer of a bar: `sound` (sox synth arguments) at sample `at`, the rest
// silence, exactly `length` samples.
bool Layer(const QString& out, const QString& sound, int at, int length) {
    QStringList args = {"-r", "44100", "-c", "1", "-n", "-b", "16", out, "synth"};
    args += sound.split(' ');
    args += {"pad", QString("%1s").arg(at), "3", "trim", "0", QString("%1s").arg(length)};
    return Run("sox", args);
}

// Repeats the bar in `bar` to about `seconds` of stereo at `path`.
bool RepeatBar(const QString& bar, int barSamples, int seconds, const QString& path) {
    const int bars = std::max(1, seconds * 44100 / barSamples);
    return RunInto(path, "sox", {bar, "-c", "2", path, "repeat", QString::number(bars - 1)});
}

}  // namespace

QString MakeClickTrack(const QString& name, double bpm, int seconds) {
    const QString path = FixtureDir() + "/" + name;
    if (QFile::exists(path))
        return path;
    const int beat = BeatSamples(bpm);
    const QString bar = Working(path, "beat");
    if (!Layer(bar, "0.01 sine 1000", 0, beat) || !RepeatBar(bar, beat, seconds, path))
        return {};
    QFile::remove(bar);
    return path;
}

QString MakeDrumPattern(const QString& name, double bpm, int seconds) {
    const QString path = FixtureDir() + "/" + name;
    if (QFile::exists(path))
        return path;
    const int beat = BeatSamples(bpm);
    const int barLength = 4 * beat;
    const QString kick = "0.15 sine 150-50 fade 0 0.15 0.14";
    const QString snare = "0.1 whitenoise lowpass 5000 fade 0 0.1 0.09";
    const QString hat = "0.03 whitenoise vol 0.5 highpass 7000 fade 0 0.03 0.025 vol 0.5";
    QStringList layers;
    auto add = [&](const QString& sound, int at) {
        const QString layer = Working(path, QString("layer%1").arg(layers.size()));
        layers << layer;
        return Layer(layer, sound, at, barLength);
    };
    bool ok = add(kick, 0) && add(kick, 2 * beat) && add(snare, beat) && add(snare, 3 * beat);
    for (int i = 0; ok && i < 8; ++i)
        ok = add(hat, i * beat / 2);
    const QString bar = Working(path, "bar");
    ok = ok && Run("sox", QStringList{"-m"} + layers + QStringList{bar, "norm", "-3"}) &&
         RepeatBar(bar, barLength, seconds, path);
    for (const QString& l : layers)
        QFile::remove(l);
    QFile::remove(bar);
    return ok ? path : QString();
}

}  // namespace testsupport
