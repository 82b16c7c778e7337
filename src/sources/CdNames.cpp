#include "sources/CdNames.h"

#include "sources/CRynCdAudio.h"

namespace cdnames {

std::string DiscTitleOfMatch(const std::string& matchTitle) {
    const std::size_t slash = matchTitle.find('/');
    return slash == std::string::npos ? matchTitle : matchTitle.substr(slash + 1);
}

cd::CdToc TocOf(const CRynCdAudio& cd, int drive) {
    cd::CdToc toc;
    const int count = cd.TrackCount(drive);
    if (count <= 0)
        return toc;
    toc.first = cd.FirstTrack(drive);
    toc.last = cd.LastTrack(drive);
    for (int t = toc.first; t <= toc.last; ++t) {
        cd::CdTocEntry e;
        e.track = static_cast<std::uint8_t>(t);
        e.start = cd.TrackStart(drive, t);
        e.control = cd.IsAudioTrack(drive, t)
                        ? cd::kAdrPosition
                        : static_cast<std::uint8_t>(cd::kAdrPosition | cd::kControlData);
        toc.entries.push_back(e);
    }
    cd::CdTocEntry leadOut;
    leadOut.track = 0xAA;
    leadOut.start = cd.TrackEnd(drive, toc.last);
    toc.entries.push_back(leadOut);
    return toc;
}

void StoreNames(CRynCdAudio& cd, int drive, const cd::CddbAnswer& answer) {
    switch (answer.status) {
        case cd::CddbStatus::Failed:
            cd.SetTrackNamesFound(drive, false);
            return;
        case cd::CddbStatus::NotFound:
            return;
        case cd::CddbStatus::Found:
            break;
    }
    cd.SetTrackNamesFound(drive, true);
    cd.SetDiscTitle(drive, answer.artist);
    cd.SetDiscInfo(drive, DiscTitleOfMatch(answer.title));
    const int tracks = cd.TrackCount(drive);
    for (int i = 0; i < tracks && i < CRynCdAudio::kTrackNames; ++i) {
        const std::string title = i < static_cast<int>(answer.trackTitles.size())
                                      ? answer.trackTitles[static_cast<std::size_t>(i)]
                                      : std::string();
        cd.SetTrackName(drive, i, title);
    }
}

cd::CddbStatus LookUpNames(CRynCdAudio& cd, int drive, cd::CddbClient& client,
                           const cd::CddbServer& server) {
    const cd::CdToc toc = TocOf(cd, drive);
    cd::CddbAnswer answer;
    if (toc.TrackCount() > 0)
        answer = client.Lookup(toc, server);
    StoreNames(cd, drive, answer);
    return answer.status;
}

bool NamesFound(const CRynCdAudio& cd, int drive) {
    return cd.TrackNamesFound(drive);
}

std::string DiscArtist(const CRynCdAudio& cd, int drive) {
    return cd.DiscTitle(drive);
}

std::string DiscTitle(const CRynCdAudio& cd, int drive) {
    return cd.DiscInfo(drive);
}

std::string TrackTitle(const CRynCdAudio& cd, int drive, int k) {
    if (k == 0)
        return DiscTitle(cd, drive);
    return cd.TrackName(drive, k - 1);
}

}  // namespace cdnames

CdNameLookup::CdNameLookup(std::shared_ptr<cd::CddbClient> client) : client_(std::move(client)) {}

CdNameLookup::~CdNameLookup() {
    if (!thread_.joinable())
        return;
    if (state_ && state_->done.load())
        thread_.join();
    else
        thread_.detach();  // ends within its time-out; owns what it uses
}

bool CdNameLookup::Start(const CRynCdAudio& cd, int drive, const cd::CddbServer& server) {
    if (state_ || !client_)
        return false;
    cd::CdToc toc = cdnames::TocOf(cd, drive);
    if (toc.TrackCount() <= 0)
        return false;
    if (thread_.joinable())
        thread_.join();
    drive_ = drive;
    discId_ = cd::CddbDiscId(toc);
    auto state = std::make_shared<State>();
    state_ = state;
    thread_ = std::thread([state, client = client_, toc = std::move(toc), server] {
        state->answer = client->Lookup(toc, server);
        state->done.store(true);
    });
    return true;
}

bool CdNameLookup::Collect(CRynCdAudio& cd, cd::CddbStatus* status) {
    if (!state_ || !state_->done.load())
        return false;
    thread_.join();
    const cd::CddbAnswer answer = std::move(state_->answer);
    state_.reset();
    // A disc changed while the server was asked gets nothing of the old one's.
    if (cd::CddbDiscId(cdnames::TocOf(cd, drive_)) == discId_)
        cdnames::StoreNames(cd, drive_, answer);
    if (status)
        *status = answer.status;
    return true;
}
