#include "platform/cd/LibCdioBackend.h"

#include "platform/cd/DiscImageLimits.h"

#include <cdio/cdio.h>
#include <cdio/paranoia/cdda.h>
#include <cdio/paranoia/paranoia.h>

#include <QDebug>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <sstream>

namespace cd {

namespace {

// Paranoia's own retries of one sector before it gives up on it; our caller
// adds its own attempts on top.
constexpr int kParanoiaRetries = 20;

void IgnoreParanoiaProgress(long, paranoia_cb_mode_t) {}

bool EndsWith(const std::string& s, const char* suffix) {
    std::size_t n = std::strlen(suffix);
    if (s.size() < n)
        return false;
    for (std::size_t i = 0; i < n; ++i) {
        char c = s[s.size() - n + i];
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
        if (c != suffix[i])
            return false;
    }
    return true;
}

// Images are opened with the driver their extension names; anything else is
// a device, which libcdio recognises by itself.
driver_id_t DriverFor(const std::string& path) {
    if (EndsWith(path, ".cue"))
        return DRIVER_BINCUE;
    if (EndsWith(path, ".toc"))
        return DRIVER_CDRDAO;
    if (EndsWith(path, ".nrg"))
        return DRIVER_NRG;
    return DRIVER_DEVICE;
}

std::string Trimmed(const char* s) {
    std::string out(s);
    while (!out.empty() && out.back() == ' ')
        out.pop_back();
    std::size_t begin = out.find_first_not_of(' ');
    return begin == std::string::npos ? std::string() : out.substr(begin);
}

// "VENDOR MODEL REVISION" from the drive's INQUIRY data, or the path itself.
std::string DeviceName(const char* device) {
    std::string name = device;
    CdIo_t* cdio = cdio_open(device, DRIVER_DEVICE);
    if (!cdio)
        return name;
    cdio_hwinfo_t hw{};
    if (cdio_get_hwinfo(cdio, &hw)) {
        std::string id = Trimmed(hw.psz_vendor);
        for (const char* part : {hw.psz_model, hw.psz_revision}) {
            std::string p = Trimmed(part);
            if (!p.empty())
                id += (id.empty() ? "" : " ") + p;
        }
        if (!id.empty())
            name = id;
    }
    cdio_destroy(cdio);
    return name;
}

class LibCdioDrive : public CdDrive {
  public:
    explicit LibCdioDrive(CdIo_t* cdio) : cdio_(cdio) {}
    ~LibCdioDrive() override {
        CloseParanoia();
        cdio_destroy(cdio_);
    }

    bool ReadToc(CdToc& toc) override {
        // A fresh TOC: positions cached by the error-correcting reader may be stale.
        CloseParanoia();
        track_t first = cdio_get_first_track_num(cdio_);
        track_t last = cdio_get_last_track_num(cdio_);
        if (first == CDIO_INVALID_TRACK || last == CDIO_INVALID_TRACK || last < first)
            return false;
        std::int32_t previous = -1;
        CdToc out;
        out.first = first;
        out.last = last;
        for (int t = first; t <= last + 1; ++t) {
            bool leadOut = t > last;
            track_t track = static_cast<track_t>(leadOut ? int{CDIO_CDROM_LEADOUT_TRACK} : t);
            lsn_t start = cdio_get_track_lsn(cdio_, track);
            // Addresses rise through the disc and end within a CD's 100 minutes.
            if (start == CDIO_INVALID_LSN || start < previous || start > kMaxDiscSectors)
                return false;
            previous = start;
            CdTocEntry e;
            e.track = track;
            e.start = start;
            if (!leadOut) {
                if (cdio_get_track_format(cdio_, track) != TRACK_FORMAT_AUDIO)
                    e.control |= kControlData;
                if (cdio_get_track_copy_permit(cdio_, track) == CDIO_TRACK_FLAG_TRUE)
                    e.control |= 0x02;
                if (cdio_get_track_preemphasis(cdio_, track) == CDIO_TRACK_FLAG_TRUE)
                    e.control |= 0x01;
            }
            out.entries.push_back(e);
        }
        toc = std::move(out);
        return true;
    }

    int ReadAudio(std::int32_t start, int frames, std::uint8_t* dest,
                  bool errorCorrection) override {
        if (frames <= 0 || start < 0)
            return 0;
        if (!errorCorrection) {
            return cdio_read_audio_sectors(cdio_, dest, start,
                                           static_cast<std::uint32_t>(frames)) == DRIVER_OP_SUCCESS
                       ? frames
                       : 0;
        }
        if (!OpenParanoia())
            return 0;
        // Paranoia keeps its own cursor and cache: seek only when the caller
        // jumps, so consecutive blocks profit from its overlap checks.
        if (start != paranoiaNext_)
            cdio_paranoia_seek(paranoia_, start, SEEK_SET);
        for (int f = 0; f < frames; ++f) {
            const int16_t* sector =
                cdio_paranoia_read_limited(paranoia_, IgnoreParanoiaProgress, kParanoiaRetries);
            if (!sector) {
                paranoiaNext_ = -1;
                return 0;
            }
            std::memcpy(dest + static_cast<std::size_t>(f) * kSectorBytes, sector, kSectorBytes);
        }
        paranoiaNext_ = start + frames;
        return frames;
    }

  private:
    bool OpenParanoia() {
        if (paranoia_)
            return true;
        cdda_ = cdio_cddap_identify_cdio(cdio_, CDDA_MESSAGE_FORGETIT, nullptr);
        if (!cdda_)
            return false;
        cdio_cddap_verbose_set(cdda_, CDDA_MESSAGE_FORGETIT, CDDA_MESSAGE_FORGETIT);
        // Audio sectors are little-endian. Paranoia would otherwise guess the
        // byte order from the first audio it sees, which quiet or synthetic
        // audio can fool. (Its output is host order: Linux on x86/ARM is
        // little-endian, as our PCM.)
        cdda_->bigendianp = 0;
        if (cdio_cddap_open(cdda_) != 0) {
            cdio_cddap_close_no_free_cdio(cdda_);
            cdda_ = nullptr;
            return false;
        }
        paranoia_ = cdio_paranoia_init(cdda_);
        if (!paranoia_) {
            cdio_cddap_close_no_free_cdio(cdda_);
            cdda_ = nullptr;
            return false;
        }
        cdio_paranoia_modeset(paranoia_, PARANOIA_MODE_FULL ^ PARANOIA_MODE_NEVERSKIP);
        paranoiaNext_ = -1;
        return true;
    }

    void CloseParanoia() {
        if (paranoia_)
            cdio_paranoia_free(paranoia_);
        if (cdda_)
            cdio_cddap_close_no_free_cdio(cdda_);  // the CdIo_t stays ours
        paranoia_ = nullptr;
        cdda_ = nullptr;
        paranoiaNext_ = -1;
    }

    CdIo_t* cdio_;
    cdrom_drive_t* cdda_ = nullptr;
    cdrom_paranoia_t* paranoia_ = nullptr;
    std::int32_t paranoiaNext_ = -1;  // address paranoia's cursor stands on
};

}  // namespace

std::vector<std::string> CdImagePathsFromEnvironment() {
    std::vector<std::string> paths;
    const char* env = std::getenv("MIXORA_CD_IMAGES");
    if (!env)
        return paths;
    std::stringstream list(env);
    std::string item;
    while (std::getline(list, item, ':'))
        if (!item.empty())
            paths.push_back(item);
    return paths;
}

std::vector<CdDriveInfo> LibCdioBackend::ListDrives() {
    std::vector<CdDriveInfo> drives;
    if (char** devices = cdio_get_devices(DRIVER_DEVICE)) {
        for (char** d = devices; *d && drives.size() < kMaxDrives; ++d)
            drives.push_back({DeviceName(*d), *d});
        cdio_free_device_list(devices);
    }
    for (const std::string& path : CdImagePathsFromEnvironment()) {
        if (drives.size() >= kMaxDrives)
            break;
        std::error_code ec;
        if (!std::filesystem::is_regular_file(path, ec)) {
            qWarning().noquote() << "CD image not found:" << QString::fromStdString(path);
            continue;
        }
        std::string base = std::filesystem::path(path).filename().string();
        drives.push_back({"Disc image " + base, path});
    }
    return drives;
}

std::unique_ptr<CdDrive> LibCdioBackend::Open(const CdDriveInfo& drive) {
    if (drive.device.empty() || !IsAcceptableDiscImage(drive.device))
        return nullptr;
    CdIo_t* cdio = cdio_open(drive.device.c_str(), DriverFor(drive.device));
    if (!cdio)
        return nullptr;
    return std::make_unique<LibCdioDrive>(cdio);
}

}  // namespace cd
