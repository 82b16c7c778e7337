// Audio fixtures for the media layer and file decoder tests: tones made at
// test time with ffmpeg, the raw data chunk of a WAV file for bit-exact
// comparisons, and ffmpeg's own decoding of a file as the expected PCM of
// the lossy formats.
#pragma once

#include <QString>
#include <QStringList>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/media/RemovableDrive.h"

class QTemporaryDir;

namespace mediafixtures {

struct WavData {
    int channels = 0;
    int sampleRate = 0;
    int bitsPerSample = 0;
    int formatTag = 0;               // 1 = integer PCM, 3 = float, 0xFFFE = extensible
    std::vector<std::uint8_t> data;  // the data chunk as stored
};

// Reads a RIFF/WAVE file's fmt and data chunks; false when it is not one.
bool ReadWav(const QString& path, WavData* out);

// The file decoded by the ffmpeg program to interleaved 16-bit samples of
// `channels` channels at the file's own rate.
std::vector<std::int16_t> FfmpegDecodeS16(const QString& path, int channels);

// A file holding `text` (any name), made once.
QString TextFile(const QString& name, const std::string& text);

// The first `bytes` bytes of a file copied to a new name (a truncated file).
QString Truncated(const QString& source, const QString& name, qint64 bytes);

// Samples of a WAV data chunk as 16-bit stereo the way the decoder must
// deliver them (mono doubled, 8-bit widened, 24/32-bit and float rounded).
std::vector<std::int16_t> ExpectedStereo16(const WavData& wav);

// Writes `text` to path, making its folder.
void WriteText(const QString& path, const QByteArray& text);

// A sysfs tree and mount table in `dir` in which the block device holding
// `file` is removable (or fixed); the table mounts "/" as ext4.
media::DriveProbeRoots FakeSysfs(const QTemporaryDir& dir, const QString& file, bool removable);

}  // namespace mediafixtures
