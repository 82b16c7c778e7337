#include "MediaFixtures.h"

#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QSaveFile>
#include <QTemporaryDir>
#include <cmath>
#include <cstring>

#include "TestSupport.h"

namespace mediafixtures {
namespace {

std::uint32_t U32(const std::uint8_t* p) {
    return std::uint32_t(p[0]) | std::uint32_t(p[1]) << 8 | std::uint32_t(p[2]) << 16 |
           std::uint32_t(p[3]) << 24;
}
std::uint16_t U16(const std::uint8_t* p) {
    return std::uint16_t(p[0] | p[1] << 8);
}

std::int16_t Clip16(double v) {
    if (v >= 32767.0)
        return 32767;
    if (v <= -32768.0)
        return -32768;
    return std::int16_t(std::lrint(v));
}

}  // namespace

bool ReadWav(const QString& path, WavData* out) {
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly))
        return false;
    const QByteArray all = f.readAll();
    const auto* p = reinterpret_cast<const std::uint8_t*>(all.constData());
    const std::size_t n = std::size_t(all.size());
    if (n < 12 || std::memcmp(p, "RIFF", 4) != 0 || std::memcmp(p + 8, "WAVE", 4) != 0)
        return false;
    bool haveFmt = false;
    for (std::size_t pos = 12; pos + 8 <= n;) {
        const std::uint32_t size = U32(p + pos + 4);
        const std::uint8_t* body = p + pos + 8;
        const std::size_t avail = std::min<std::size_t>(size, n - pos - 8);
        if (std::memcmp(p + pos, "fmt ", 4) == 0 && avail >= 16) {
            out->formatTag = U16(body);
            out->channels = U16(body + 2);
            out->sampleRate = int(U32(body + 4));
            out->bitsPerSample = U16(body + 14);
            if (out->formatTag == 0xFFFE && avail >= 26)
                out->formatTag = U16(body + 24);
            haveFmt = true;
        } else if (std::memcmp(p + pos, "data", 4) == 0) {
            out->data.assign(body, body + avail);
            return haveFmt;
        }
        pos += 8 + size + (size & 1);
    }
    return false;
}

std::vector<std::int16_t> FfmpegDecodeS16(const QString& path, int channels) {
    QProcess p;
    p.start("ffmpeg", {"-nostdin", "-loglevel", "error", "-i", path, "-f", "s16le", "-ac",
                       QString::number(channels), "-acodec", "pcm_s16le", "-"});
    p.waitForFinished(120000);
    const QByteArray raw = p.readAllStandardOutput();
    std::vector<std::int16_t> out(std::size_t(raw.size()) / 2);
    std::memcpy(out.data(), raw.constData(), out.size() * 2);
    return out;
}

QString TextFile(const QString& name, const std::string& text) {
    const QString path = testsupport::FixtureDir() + "/" + name;
    QSaveFile f(path);  // replaced whole: parallel tests share the folder
    if (f.open(QIODevice::WriteOnly)) {
        f.write(text.data(), qint64(text.size()));
        f.commit();
    }
    return path;
}

QString Truncated(const QString& source, const QString& name, qint64 bytes) {
    QFile in(source);
    const QString path = testsupport::FixtureDir() + "/" + name;
    QSaveFile out(path);
    if (in.open(QIODevice::ReadOnly) && out.open(QIODevice::WriteOnly)) {
        out.write(in.read(bytes));
        out.commit();
    }
    return path;
}

std::vector<std::int16_t> ExpectedStereo16(const WavData& wav) {
    const int bytes = wav.bitsPerSample / 8;
    const std::size_t samples = wav.data.size() / std::size_t(bytes);
    std::vector<std::int16_t> mono(samples);
    const std::uint8_t* p = wav.data.data();
    for (std::size_t i = 0; i < samples; ++i, p += bytes) {
        if (wav.formatTag == 3 && bytes == 4) {
            float f;
            std::memcpy(&f, p, 4);
            mono[i] = Clip16(double(f) * 32768.0);
        } else if (bytes == 1) {
            mono[i] = std::int16_t((int(p[0]) - 128) * 256);
        } else if (bytes == 2) {
            mono[i] = std::int16_t(U16(p));
        } else if (bytes == 3) {
            const std::int32_t s =
                std::int32_t((std::uint32_t(p[0]) << 8) | (std::uint32_t(p[1]) << 16) |
                             (std::uint32_t(p[2]) << 24));
            mono[i] = Clip16(std::floor(double(s) / 65536.0 + 0.5));
        } else if (bytes == 4) {
            const std::int32_t s = std::int32_t(U32(p));
            mono[i] = Clip16(std::floor(double(s) / 65536.0 + 0.5));
        }
    }
    if (wav.channels == 2)
        return mono;
    std::vector<std::int16_t> stereo(mono.size() * 2);
    for (std::size_t i = 0; i < mono.size(); ++i)
        stereo[2 * i] = stereo[2 * i + 1] = mono[i];
    return stereo;
}

void WriteText(const QString& path, const QByteArray& text) {
    QDir().mkpath(QFileInfo(path).path());
    QFile f(path);
    if (f.open(QIODevice::WriteOnly | QIODevice::Truncate))
        f.write(text);
}

media::DriveProbeRoots FakeSysfs(const QTemporaryDir& dir, const QString& file, bool removable) {
    struct stat st {};
    stat(file.toLocal8Bit().constData(), &st);
    const QString dev = QString("%1/sys/dev/block/%2:%3")
                            .arg(dir.path())
                            .arg(major(st.st_dev))
                            .arg(minor(st.st_dev));
    WriteText(dev + "/removable", removable ? "1\n" : "0\n");
    WriteText(dir.path() + "/mounts", "rootfs / ext4 rw 0 0\n");
    return {(dir.path() + "/mounts").toStdString(), (dir.path() + "/sys").toStdString()};
}

}  // namespace mediafixtures
