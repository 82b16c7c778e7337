#include "platform/cd/LibCddbClient.h"

#include <cddb/cddb.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <mutex>

namespace cd {

namespace {

constexpr std::int32_t kPregapSectors = 150;  // the disc's lead-in before address 0

// libcddb logs to stderr by default; its failures reach the caller in the answer.
void QuietLog(cddb_log_level_t, const char*) {}

struct ConnDeleter {
    void operator()(cddb_conn_t* c) const { cddb_destroy(c); }
};
struct DiscDeleter {
    void operator()(cddb_disc_t* d) const { cddb_disc_destroy(d); }
};

std::string Text(const char* s) {
    return s != nullptr ? std::string(s) : std::string();
}

CddbAnswer Failure(cddb_conn_t* conn, const char* what) {
    CddbAnswer a;
    a.status = CddbStatus::Failed;
    a.error = std::string(what) + ": " + Text(cddb_error_str(cddb_errno(conn)));
    return a;
}

}  // namespace

CddbAnswer LibCddbClient::Lookup(const CdToc& toc, const CddbServer& server) {
    static std::once_flag quiet;
    std::call_once(quiet, [] { cddb_log_set_handler(QuietLog); });

    CddbAnswer answer;
    const int tracks = toc.TrackCount();
    if (tracks <= 0 || static_cast<int>(toc.entries.size()) < tracks + 1) {
        answer.error = "no table of contents";
        return answer;
    }
    std::unique_ptr<cddb_conn_t, ConnDeleter> conn(cddb_new());
    std::unique_ptr<cddb_disc_t, DiscDeleter> disc(cddb_disc_new());
    if (!conn || !disc) {
        answer.error = "libcddb could not start";
        return answer;
    }
    cddb_conn_t* c = conn.get();
    cddb_cache_disable(c);
    cddb_http_proxy_disable(c);
    cddb_set_server_name(c, server.host.c_str());
    cddb_set_server_port(c, server.port);
    cddb_set_timeout(c,
                     static_cast<unsigned>(server.timeoutSeconds > 0 ? server.timeoutSeconds : 1));
    cddb_set_email_address(c, server.userAddress.c_str());
    cddb_set_client(c, "Mixora", MIXORA_VERSION);
    if (server.http) {
        cddb_http_enable(c);
        cddb_set_http_path_query(c, server.path.c_str());
    } else {
        cddb_http_disable(c);
    }

    for (int i = 0; i < tracks; ++i) {
        cddb_track_t* t = cddb_track_new();
        cddb_track_set_frame_offset(t, toc.entries[i].start + kPregapSectors);
        cddb_disc_add_track(disc.get(), t);  // the disc owns the track
    }
    cddb_disc_set_length(disc.get(),
                         static_cast<unsigned>((toc.entries[tracks].start + kPregapSectors) / 75));
    cddb_disc_calc_discid(disc.get());

    const int matches = cddb_query(c, disc.get());
    if (matches < 0)
        return Failure(c, "query");
    if (matches == 0) {
        answer.status = CddbStatus::NotFound;
        return answer;
    }
    // The query filled in the first match; the read brings its whole record.
    if (cddb_read(c, disc.get()) != 1)
        return Failure(c, "read");

    answer.status = CddbStatus::Found;
    answer.category = Text(cddb_disc_get_category_str(disc.get()));
    char id[9];
    std::snprintf(id, sizeof id, "%08x", cddb_disc_get_discid(disc.get()));
    answer.discId = id;
    answer.artist = Text(cddb_disc_get_artist(disc.get()));
    // libcddb splits the record's DTITLE "Artist / Title" in two; the answer
    // carries it whole, as the server sent it.
    const std::string title = Text(cddb_disc_get_title(disc.get()));
    answer.title = answer.artist.empty() ? title : answer.artist + " / " + title;
    // The record may list more tracks than the disc holds (libcddb adds one
    // for every offset line a server sends): only the disc's own are named.
    const int count = std::min(cddb_disc_get_track_count(disc.get()), tracks);
    for (int i = 0; i < count; ++i) {
        cddb_track_t* t = cddb_disc_get_track(disc.get(), i);
        std::string title = t != nullptr ? Text(cddb_track_get_title(t)) : std::string();
        // A compilation's "Artist / Title" track line is split by libcddb too;
        // a track artist other than the disc's goes back in front.
        const std::string artist = t != nullptr ? Text(cddb_track_get_artist(t)) : std::string();
        if (!artist.empty() && artist != answer.artist)
            title = artist + " / " + title;
        answer.trackTitles.push_back(std::move(title));
    }
    return answer;
}

}  // namespace cd
