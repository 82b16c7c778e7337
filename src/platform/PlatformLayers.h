// The start-up check that the sound and media layers work: PortAudio must
// initialise and FFmpeg's libavformat must be the version Mixora was built
// with. Behind a small interface so a test can make either check fail.
#pragma once

#include <QString>
#include <memory>

class PlatformLayers {
  public:
    virtual ~PlatformLayers() = default;
    // Starts the sound layer for the life of the program. On failure `problem`
    // says which library failed and why.
    virtual bool InitialiseSound(QString* problem) = 0;
    // Releases what InitialiseSound took (shutdown's "Killing COM." step).
    virtual void ReleaseSound() = 0;
    // True when the media layer can decode. On failure `problem` says why.
    virtual bool CheckMedia(QString* problem) = 0;
};

// PortAudio (Pa_Initialize / Pa_Terminate) and FFmpeg (avformat_version).
std::unique_ptr<PlatformLayers> MakeSystemPlatformLayers();

// Runs both checks. Empty when both pass (the sound layer then stays
// initialised); otherwise the message to show the user, naming the library
// (the sound layer is released again when the media check fails).
QString CheckPlatformLayers(PlatformLayers& layers);
