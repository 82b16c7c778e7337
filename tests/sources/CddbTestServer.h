// A CDDB server on loopback for the tests, speaking CDDB over HTTP as
// libcddb asks it: each request a GET of "/~cddb/cddb.cgi?cmd=...&hello=...
// &proto=..." answered with an HTTP/1.0 header and the CDDB reply, then the
// connection is closed.
//
// "cddb query" is answered with one match (code 200) for whatever disc id is
// asked, or "202 No match" when there is no record; "cddb read" with code 210
// and the record, each line ended by CR LF, then ".". A silent server accepts
// connections and never answers (a server that hangs).
#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "CdImageFixture.h"

namespace testsupport {

class CddbTestServer {
  public:
    struct Disc {
        std::string category = "rock";
        std::string matchTitle;                // the query reply's "Artist / Title"
        std::vector<std::string> recordLines;  // the record, without line ends
    };
    // `silent`: never answer. `disc` empty record lines: no match.
    CddbTestServer(Disc disc, bool silent = false);
    ~CddbTestServer();
    CddbTestServer(const CddbTestServer&) = delete;
    CddbTestServer& operator=(const CddbTestServer&) = delete;

    bool Ok() const { return listen_ >= 0; }
    int Port() const { return port_; }
    // The request lines received so far ("GET /~cddb/cddb.cgi?cmd=... HTTP/1.0").
    std::vector<std::string> Requests();
    int Connections() const { return connections_.load(); }

  private:
    void Serve();
    void Answer(int fd, const std::string& requestLine);

    Disc disc_;
    bool silent_;
    int listen_ = -1;
    int port_ = 0;
    int wake_[2] = {-1, -1};
    std::atomic<int> connections_{0};
    std::mutex lock_;
    std::vector<std::string> requests_;
    std::vector<int> held_;  // silent: connections kept open
    std::thread thread_;
};

// Twelve audio tracks of 2 to 3.5 seconds.
std::vector<CdImageTrack> TwelveTracks();

// "Some Artist / Some Album" as a server keeps it (xmcd form) for the disc
// whose track starts (lead-out last) are `starts`: track 1 "Intro", tracks 2
// to 11 "Part 1" ... "Part 10", track 12 "Guest / Encore".
CddbTestServer::Disc SomeAlbum(const std::vector<std::int32_t>& starts);

}  // namespace testsupport
