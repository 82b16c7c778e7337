// A disc's names from a CDDB server, kept with the drive in the CD reader:
// whether names were found, the disc artist, the disc title and the track
// titles (CRynCdAudio's name fields: its disc title field holds the artist,
// its disc information field the disc title, track slot t - first track the
// title of track t).
//
// LookUpNames asks on the caller's thread and blocks until the server
// answers or its time-out runs out; CdNameLookup runs the same lookup on a
// worker thread so the window that asks is never held up.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "platform/cd/CddbClient.h"

class CRynCdAudio;

namespace cdnames {

// The disc title of a match title: the text after its first "/" (the blank
// after the slash kept: "Some Artist / Some Album" gives " Some Album"), or
// the whole title when it has no "/".
std::string DiscTitleOfMatch(const std::string& matchTitle);

// The drive's table of contents as the CD reader holds it (empty when none).
cd::CdToc TocOf(const CRynCdAudio& cd, int drive);

// Stores an answer: Found sets names found, the artist, the disc title and
// every track title the answer has (a track without one keeps an empty
// slot); Failed clears names found and keeps the earlier names; NotFound
// changes nothing.
void StoreNames(CRynCdAudio& cd, int drive, const cd::CddbAnswer& answer);

// Asks the server for the disc in the drive and stores the answer.
cd::CddbStatus LookUpNames(CRynCdAudio& cd, int drive, cd::CddbClient& client,
                           const cd::CddbServer& server);

bool NamesFound(const CRynCdAudio& cd, int drive);
std::string DiscArtist(const CRynCdAudio& cd, int drive);
std::string DiscTitle(const CRynCdAudio& cd, int drive);
// k = 1 is the disc's first track; k = 0 gives the disc title.
std::string TrackTitle(const CRynCdAudio& cd, int drive, int k);

}  // namespace cdnames

// One lookup at a time on a worker thread. Start and Collect run on the
// window thread; the worker touches only the table of contents it was given
// and its own answer, never the CD reader.
class CdNameLookup {
  public:
    explicit CdNameLookup(std::shared_ptr<cd::CddbClient> client);
    // A lookup still waiting for its server is left to end on its own (it
    // holds nothing of the owner's); its answer is dropped.
    ~CdNameLookup();
    CdNameLookup(const CdNameLookup&) = delete;
    CdNameLookup& operator=(const CdNameLookup&) = delete;

    // Starts a lookup for the disc in `drive`; false when one is running or
    // the drive has no table of contents.
    bool Start(const CRynCdAudio& cd, int drive, const cd::CddbServer& server);
    bool Running() const { return state_ != nullptr; }
    // When the running lookup has ended: stores its answer (StoreNames, when
    // the drive still holds the same disc), reports its status and returns
    // true. False while it runs or when none was started.
    bool Collect(CRynCdAudio& cd, cd::CddbStatus* status = nullptr);

  private:
    struct State {
        std::atomic<bool> done{false};
        cd::CddbAnswer answer;  // written by the worker before done
    };
    std::shared_ptr<cd::CddbClient> client_;
    std::shared_ptr<State> state_;
    std::thread thread_;
    int drive_ = -1;
    std::string discId_;
};
