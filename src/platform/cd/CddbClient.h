// Asking a CDDB server for a disc's names, behind a small interface.
//
// A lookup takes the disc's table of contents (the disc identifier is
// computed from it) and a server; it answers with the first match (category,
// identifier, artist and the disc title exactly as the server's DTITLE gives
// it, "Artist / Title") and the titles of the disc's tracks, or a failure.
// A lookup blocks its caller until the server answers or the time-out runs
// out: callers run it on a worker thread.
//
// LibCddbClient speaks to real servers through libcddb; FixedCddbClient is
// the in-tree test double.
#pragma once

#include <string>
#include <vector>

#include "platform/cd/CdBackend.h"

namespace cd {

// Where and how to ask. The defaults are a public service that still
// answers CDDB over HTTP.
struct CddbServer {
    std::string host = "gnudb.gnudb.org";
    int port = 80;
    bool http = true;                      // CDDB over HTTP; false: the CDDBP protocol
    std::string path = "/~cddb/cddb.cgi";  // the HTTP query path
    std::string userAddress = "mixora@localhost";
    int timeoutSeconds = 10;  // each connect, send and receive
};

enum class CddbStatus {
    Found,     // a match; its fields below
    NotFound,  // the server answered, the disc is unknown to it
    Failed,    // no answer, a refusal, a broken reply, or the time-out ran out
};

struct CddbAnswer {
    CddbStatus status = CddbStatus::Failed;
    std::string category;  // "rock"
    std::string discId;    // 8 hex digits
    std::string artist;
    std::string title;  // the disc title as the server gives it: "Artist / Title"
    // Slot i is the disc's track first + i; empty for a track without a title.
    std::vector<std::string> trackTitles;
    std::string error;  // what went wrong, for the log (Failed)
};

class CddbClient {
  public:
    virtual ~CddbClient() = default;
    // Thread-safe: each lookup uses a connection of its own.
    virtual CddbAnswer Lookup(const CdToc& toc, const CddbServer& server) = 0;
};

// The disc identifier CDDB uses for a table of contents (addresses counted
// with the 150-sector pregap): 8 lower-case hex digits.
std::string CddbDiscId(const CdToc& toc);

}  // namespace cd
