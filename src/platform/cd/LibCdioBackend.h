// CD access through libcdio (drives, TOC, plain audio reads) and
// libcdio-paranoia (error-corrected reads).
//
// Drives are the system's optical drives followed by the disc images named in
// the environment variable MIXORA_CD_IMAGES (colon-separated .cue or .toc
// paths; libcdio reads the audio from the image's BIN file, named after the
// .cue). Images that do not exist are left out of the list.
#pragma once

#include "platform/cd/CdBackend.h"

namespace cd {

class LibCdioBackend : public CdBackend {
  public:
    std::vector<CdDriveInfo> ListDrives() override;
    std::unique_ptr<CdDrive> Open(const CdDriveInfo& drive) override;
};

// The image paths listed in MIXORA_CD_IMAGES, in order, empty entries skipped.
std::vector<std::string> CdImagePathsFromEnvironment();

}  // namespace cd
