// CD track names from a CDDB server: libcddb against a server on loopback
// speaking CDDB over HTTP, for a CUE/BIN disc image read through libcdio;
// the disc title rule, a disc the server does not know, and a server that
// never answers.
#include <gtest/gtest.h>

#include <chrono>

#include "CdImageFixture.h"
#include "CddbTestServer.h"
#include "platform/cd/FixedCddbClient.h"
#include "platform/cd/LibCddbClient.h"
#include "sources/CRynCdAudio.h"
#include "sources/CdNames.h"

namespace {

using testsupport::CddbTestServer;
using testsupport::SomeAlbum;
using testsupport::TwelveTracks;

cd::CddbServer Loopback(int port, int timeoutSeconds = 5) {
    cd::CddbServer s;
    s.host = "127.0.0.1";
    s.port = port;
    s.userAddress = "dj@example.org";
    s.timeoutSeconds = timeoutSeconds;
    return s;
}

struct Disc {
    testsupport::CdImage image;
    std::unique_ptr<CRynCdAudio> reader;
    Disc() {
        image = testsupport::MakeCdImage(QStringLiteral("cddb-twelve"), TwelveTracks());
        reader = testsupport::MakeImageReader(image);
    }
    bool Open() { return image.ok && reader->DriveCount() == 1 && reader->OpenDrive(0); }
};

}  // namespace

TEST(CdNames, TheDiscTitleIsWhatFollowsTheFirstSlash) {
    EXPECT_EQ(cdnames::DiscTitleOfMatch("Some Artist / Some Album"), " Some Album");
    EXPECT_EQ(cdnames::DiscTitleOfMatch("AC/DC / Live"), "DC / Live");
    EXPECT_EQ(cdnames::DiscTitleOfMatch("Untitled"), "Untitled");
}

TEST(CdNames, ALoopbackServerNamesTheDiscOfACueBinImage) {
    Disc disc;
    ASSERT_TRUE(disc.Open());
    CddbTestServer server(SomeAlbum(disc.image.starts));
    ASSERT_TRUE(server.Ok());
    cd::LibCddbClient client;
    EXPECT_EQ(cdnames::LookUpNames(*disc.reader, 0, client, Loopback(server.Port())),
              cd::CddbStatus::Found);

    // The query carried the disc id (pregap included) and all twelve tracks.
    const std::vector<std::string> requests = server.Requests();
    ASSERT_EQ(requests.size(), 2u);
    const std::string id = cd::CddbDiscId(cdnames::TocOf(*disc.reader, 0));
    EXPECT_NE(requests[0].find("GET /~cddb/cddb.cgi?cmd=cddb+query+" + id + "+12+150+"),
              std::string::npos)
        << requests[0];
    EXPECT_NE(requests[0].find("hello=dj+example.org+Mixora+"), std::string::npos) << requests[0];
    EXPECT_NE(requests[1].find("cmd=cddb+read+rock+" + id), std::string::npos) << requests[1];

    EXPECT_TRUE(cdnames::NamesFound(*disc.reader, 0));
    EXPECT_EQ(cdnames::DiscArtist(*disc.reader, 0), "Some Artist");
    EXPECT_EQ(cdnames::DiscTitle(*disc.reader, 0), " Some Album");
    EXPECT_EQ(cdnames::TrackTitle(*disc.reader, 0, 0), " Some Album");
    EXPECT_EQ(cdnames::TrackTitle(*disc.reader, 0, 1), "Intro");  // no carriage return left
    EXPECT_EQ(cdnames::TrackTitle(*disc.reader, 0, 2), "Part 1");
    EXPECT_EQ(cdnames::TrackTitle(*disc.reader, 0, 11), "Part 10");
    EXPECT_EQ(cdnames::TrackTitle(*disc.reader, 0, 12), "Guest / Encore");
}

// A server's record that lists far more tracks than the disc holds (an
// offset line and a title for each) names the disc's own tracks only.
TEST(CdNames, ARecordWithMoreTracksThanTheDiscNamesOnlyTheDiscsTracks) {
    Disc disc;
    ASSERT_TRUE(disc.Open());
    std::vector<std::int32_t> starts = disc.image.starts;
    while (starts.size() < 201)
        starts.push_back(starts.back() + 75);
    CddbTestServer server(SomeAlbum(starts));
    ASSERT_TRUE(server.Ok());
    cd::LibCddbClient client;
    const cd::CddbAnswer answer =
        client.Lookup(cdnames::TocOf(*disc.reader, 0), Loopback(server.Port()));
    ASSERT_EQ(answer.status, cd::CddbStatus::Found);
    ASSERT_EQ(answer.trackTitles.size(), 12u);
    EXPECT_EQ(answer.trackTitles[0], "Intro");
    EXPECT_EQ(answer.trackTitles[10], "Part 10");
}

TEST(CdNames, AnUnknownDiscChangesNothingAndAFailureKeepsTheEarlierNames) {
    Disc disc;
    ASSERT_TRUE(disc.Open());
    cd::CddbAnswer found;
    found.status = cd::CddbStatus::Found;
    found.artist = "Earlier";
    found.title = "Earlier / Names";
    found.trackTitles = {"First"};
    cd::FixedCddbClient fixed(found);
    cdnames::LookUpNames(*disc.reader, 0, fixed, {});
    EXPECT_EQ(fixed.LastDiscId(), cd::CddbDiscId(cdnames::TocOf(*disc.reader, 0)));
    EXPECT_EQ(cdnames::TrackTitle(*disc.reader, 0, 1), "First");
    EXPECT_EQ(cdnames::TrackTitle(*disc.reader, 0, 2), "");  // no title: the list keeps "Track 2"

    CddbTestServer unknown(CddbTestServer::Disc{});
    cd::LibCddbClient client;
    EXPECT_EQ(cdnames::LookUpNames(*disc.reader, 0, client, Loopback(unknown.Port())),
              cd::CddbStatus::NotFound);
    EXPECT_TRUE(cdnames::NamesFound(*disc.reader, 0));
    EXPECT_EQ(cdnames::DiscTitle(*disc.reader, 0), " Names");

    // A server that never answers: the lookup gives up after its time-out.
    CddbTestServer silent(SomeAlbum(disc.image.starts), true);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(cdnames::LookUpNames(*disc.reader, 0, client, Loopback(silent.Port(), 1)),
              cd::CddbStatus::Failed);
    const double seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    EXPECT_LT(seconds, 10.0);  // bounded by the time-out, not by the server
    EXPECT_GE(silent.Connections(), 1);
    EXPECT_FALSE(cdnames::NamesFound(*disc.reader, 0));
    EXPECT_EQ(cdnames::TrackTitle(*disc.reader, 0, 1), "First");

    // Nobody listening at all fails the same way.
    int closedPort = 0;
    {
        CddbTestServer gone(SomeAlbum(disc.image.starts));
        closedPort = gone.Port();
    }
    EXPECT_EQ(cdnames::LookUpNames(*disc.reader, 0, client, Loopback(closedPort, 1)),
              cd::CddbStatus::Failed);
}
