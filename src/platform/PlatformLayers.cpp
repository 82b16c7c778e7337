#include "platform/PlatformLayers.h"

#include "platform/sound/SoundSystem.h"

extern "C" {
#include <libavformat/avformat.h>
}

namespace {

class SystemPlatformLayers : public PlatformLayers {
  public:
    ~SystemPlatformLayers() override { ReleaseSound(); }

    bool InitialiseSound(QString* problem) override {
        if (soundUp_)
            return true;
        // Through the sound layer, which silences ALSA's complaints about
        // missing cards and can start PortAudio afresh to find a returning
        // device (it holds the only PortAudio reference).
        std::string reason;
        if (sound::InitializeAudioLibrary(&reason) != kStatusOk) {
            if (problem) {
                *problem = QStringLiteral(
                               "the PortAudio sound library (libportaudio2) could "
                               "not start: %1")
                               .arg(QString::fromStdString(reason));
            }
            return false;
        }
        soundUp_ = true;
        return true;
    }

    void ReleaseSound() override {
        if (!soundUp_)
            return;
        sound::ShutdownAudioLibrary();
        soundUp_ = false;
    }

    bool CheckMedia(QString* problem) override {
        // Runtime and build-time major versions must agree: the decoders rely
        // on the structures of that major version.
        const unsigned version = avformat_version();
        if (AV_VERSION_MAJOR(version) == LIBAVFORMAT_VERSION_MAJOR)
            return true;
        if (problem) {
            *problem = QStringLiteral(
                           "the FFmpeg media library libavformat is version %1.%2, "
                           "Mixora needs version %3")
                           .arg(AV_VERSION_MAJOR(version))
                           .arg(AV_VERSION_MINOR(version))
                           .arg(LIBAVFORMAT_VERSION_MAJOR);
        }
        return false;
    }

  private:
    bool soundUp_ = false;
};

}  // namespace

std::unique_ptr<PlatformLayers> MakeSystemPlatformLayers() {
    return std::make_unique<SystemPlatformLayers>();
}

QString CheckPlatformLayers(PlatformLayers& layers) {
    QString problem;
    if (!layers.InitialiseSound(&problem)) {
        return QStringLiteral("Mixora cannot start: %1.").arg(problem);
    }
    if (!layers.CheckMedia(&problem)) {
        layers.ReleaseSound();
        return QStringLiteral("Mixora cannot start: %1.").arg(problem);
    }
    return {};
}
