#include "sources/CdImageFixture.h"

#include <QSaveFile>
#include <cmath>
#include <cstring>
#include <numbers>

#include "TestSupport.h"
#include "platform/cd/LibCdioBackend.h"
#include "sources/CRynCdAudio.h"

namespace testsupport {

namespace {

constexpr int kSector = 2352;
constexpr int kFramesPerSector = kSector / 4;
constexpr int kPregap = 150;  // sectors before address 0, in the sector headers

void PutSample(std::uint8_t* p, double value) {
    auto s = static_cast<std::int16_t>(std::lround(value * 32767.0));
    auto u = static_cast<std::uint16_t>(s);
    p[0] = static_cast<std::uint8_t>(u & 0xFF);
    p[1] = static_cast<std::uint8_t>(u >> 8);
}

void WriteTone(std::uint8_t* out, std::int32_t sectors, double frequency) {
    std::int64_t frames = static_cast<std::int64_t>(sectors) * kFramesPerSector;
    for (std::int64_t n = 0; n < frames; ++n) {
        double v = std::sin(2.0 * std::numbers::pi * frequency * static_cast<double>(n) / 44100.0);
        PutSample(out + n * 4, 0.5 * v);
        PutSample(out + n * 4 + 2, 0.25 * v);
    }
}

std::uint8_t Bcd(int v) {
    return static_cast<std::uint8_t>((v / 10) << 4 | (v % 10));
}

// MODE1/2352: sync, BCD address header, mode 1, 2048 bytes of user data;
// EDC and ECC left zero.
void WriteDataSector(std::uint8_t* s, std::int32_t address) {
    std::memset(s, 0, kSector);
    std::memset(s + 1, 0xFF, 10);
    int absolute = address + kPregap;
    s[12] = Bcd(absolute / (60 * 75));
    s[13] = Bcd(absolute / 75 % 60);
    s[14] = Bcd(absolute % 75);
    s[15] = 1;
    static const char kText[] = "MIXORA TEST DATA ";
    for (int i = 0; i < 2048; ++i)
        s[16 + i] = static_cast<std::uint8_t>(kText[i % 17]);
}

QString Msf(std::int32_t address) {
    return QString::asprintf("%02d:%02d:%02d", address / (60 * 75), address / 75 % 60,
                             address % 75);
}

bool Save(const QString& path, const QByteArray& bytes) {
    QSaveFile f(path);
    if (!f.open(QIODevice::WriteOnly))
        return false;
    if (f.write(bytes) != bytes.size())
        return false;
    return f.commit();
}

}  // namespace

std::vector<std::uint8_t> CdImage::Sectors(std::int32_t a, int sectors) const {
    auto begin = bin.begin() + static_cast<std::ptrdiff_t>(a) * kSector;
    return std::vector<std::uint8_t>(begin, begin + static_cast<std::ptrdiff_t>(sectors) * kSector);
}

std::vector<std::uint8_t> CdImage::TrackPcm(int t) const {
    return Sectors(Start(t), End(t) - Start(t));
}

std::vector<CdImageTrack> DefaultCdTracks() {
    return {{true, 150, 441.0}, {true, 263, 1000.0}, {true, 225, 2205.0}, {false, 75, 0.0}};
}

CdImage MakeCdImage(const QString& name, const std::vector<CdImageTrack>& tracks) {
    CdImage image;
    image.tracks = tracks;
    std::int32_t address = 0;
    for (const CdImageTrack& t : tracks) {
        image.starts.push_back(address);
        address += t.sectors;
    }
    image.starts.push_back(address);
    image.bin.assign(static_cast<std::size_t>(address) * kSector, 0);

    QString cue = QString("FILE \"%1.bin\" BINARY\n").arg(name);
    for (std::size_t i = 0; i < tracks.size(); ++i) {
        std::int32_t start = image.starts[i];
        std::uint8_t* out = image.bin.data() + static_cast<std::size_t>(start) * kSector;
        if (tracks[i].audio) {
            WriteTone(out, tracks[i].sectors, tracks[i].frequency);
        } else {
            for (std::int32_t s = 0; s < tracks[i].sectors; ++s)
                WriteDataSector(out + static_cast<std::size_t>(s) * kSector, start + s);
        }
        cue += QString("  TRACK %1 %2\n    INDEX 01 %3\n")
                   .arg(i + 1, 2, 10, QChar('0'))
                   .arg(tracks[i].audio ? "AUDIO" : "MODE1/2352")
                   .arg(Msf(start));
    }

    image.cuePath = FixtureDir() + "/" + name + ".cue";
    image.binPath = FixtureDir() + "/" + name + ".bin";
    image.ok = Save(image.binPath, QByteArray(reinterpret_cast<const char*>(image.bin.data()),
                                              static_cast<qsizetype>(image.bin.size()))) &&
               Save(image.cuePath, cue.toUtf8());
    return image;
}

std::unique_ptr<CRynCdAudio> MakeImageReader(const CdImage& image) {
    qputenv("MIXORA_CD_IMAGES", image.cuePath.toUtf8());
    auto reader = std::make_unique<CRynCdAudio>(std::make_unique<cd::LibCdioBackend>(),
                                                std::make_unique<CdTestClock>());
    qunsetenv("MIXORA_CD_IMAGES");
    return reader;
}

}  // namespace testsupport
