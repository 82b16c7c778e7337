#include "CddbTestServer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstring>

namespace testsupport {

namespace {

void SendAll(int fd, const std::string& text) {
    std::size_t sent = 0;
    while (sent < text.size()) {
        const ssize_t n = ::send(fd, text.data() + sent, text.size() - sent, MSG_NOSIGNAL);
        if (n <= 0)
            return;
        sent += static_cast<std::size_t>(n);
    }
}

// The request up to its blank line (2 s at most); "" when none came.
std::string ReadRequest(int fd) {
    std::string in;
    char buffer[2048];
    while (in.find("\r\n\r\n") == std::string::npos && in.size() < 65536) {
        pollfd p{fd, POLLIN, 0};
        if (::poll(&p, 1, 2000) <= 0)
            break;
        const ssize_t n = ::recv(fd, buffer, sizeof buffer, 0);
        if (n <= 0)
            break;
        in.append(buffer, static_cast<std::size_t>(n));
    }
    return in;
}

// The disc id of a "cddb query <id> ..." or "cddb read <category> <id>" command.
std::string Word(const std::string& command, int index) {
    std::size_t at = 0;
    for (int i = 0; i < index; ++i) {
        at = command.find('+', at);
        if (at == std::string::npos)
            return {};
        ++at;
    }
    const std::size_t end = command.find_first_of("+&", at);
    return command.substr(at, end == std::string::npos ? std::string::npos : end - at);
}

}  // namespace

CddbTestServer::CddbTestServer(Disc disc, bool silent) : disc_(std::move(disc)), silent_(silent) {
    listen_ = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (listen_ < 0)
        return;
    sockaddr_in addr{};
    addr.sin_family = AF_INET;
    addr.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    addr.sin_port = 0;
    socklen_t len = sizeof addr;
    if (::bind(listen_, reinterpret_cast<sockaddr*>(&addr), sizeof addr) != 0 ||
        ::listen(listen_, 8) != 0 ||
        ::getsockname(listen_, reinterpret_cast<sockaddr*>(&addr), &len) != 0 ||
        ::pipe(wake_) != 0) {
        ::close(listen_);
        listen_ = -1;
        return;
    }
    port_ = ntohs(addr.sin_port);
    thread_ = std::thread([this] { Serve(); });
}

CddbTestServer::~CddbTestServer() {
    if (thread_.joinable()) {
        const char stop = 1;
        (void)!::write(wake_[1], &stop, 1);
        thread_.join();
    }
    for (int fd : held_)
        ::close(fd);
    for (int fd : {listen_, wake_[0], wake_[1]})
        if (fd >= 0)
            ::close(fd);
}

std::vector<std::string> CddbTestServer::Requests() {
    std::lock_guard<std::mutex> hold(lock_);
    return requests_;
}

void CddbTestServer::Serve() {
    for (;;) {
        pollfd p[2] = {{listen_, POLLIN, 0}, {wake_[0], POLLIN, 0}};
        if (::poll(p, 2, -1) < 0)
            continue;
        if (p[1].revents != 0)
            return;
        const int fd = ::accept4(listen_, nullptr, nullptr, SOCK_CLOEXEC);
        if (fd < 0)
            continue;
        connections_.fetch_add(1);
        if (silent_) {
            held_.push_back(fd);
            continue;
        }
        const std::string request = ReadRequest(fd);
        const std::string line = request.substr(0, request.find("\r\n"));
        {
            std::lock_guard<std::mutex> hold(lock_);
            requests_.push_back(line);
        }
        Answer(fd, line);
        ::close(fd);
    }
}

void CddbTestServer::Answer(int fd, const std::string& line) {
    std::string body;
    const std::size_t cmd = line.find("cmd=");
    const std::string command = cmd == std::string::npos ? std::string() : line.substr(cmd + 4);
    if (command.rfind("cddb+query+", 0) == 0) {
        if (disc_.recordLines.empty())
            body = "202 No match for disc ID " + Word(command, 2) + ".\r\n";
        else
            body =
                "200 " + disc_.category + " " + Word(command, 2) + " " + disc_.matchTitle + "\r\n";
    } else if (command.rfind("cddb+read+", 0) == 0) {
        body = "210 " + Word(command, 2) + " " + Word(command, 3) +
               " CD database entry follows (until terminating `.')\r\n";
        for (const std::string& l : disc_.recordLines)
            body += l + "\r\n";
        body += ".\r\n";
    } else {
        body = "500 Unrecognized command.\r\n";
    }
    SendAll(fd, "HTTP/1.0 200 OK\r\nContent-Type: text/plain\r\n\r\n" + body);
}

// Twelve audio tracks of 2 to 3.5 seconds.
std::vector<CdImageTrack> TwelveTracks() {
    std::vector<testsupport::CdImageTrack> tracks;
    for (int t = 0; t < 12; ++t)
        tracks.push_back({true, 150 + 10 * t, 440.0 + 20 * t});
    return tracks;
}

// The disc's record as a CDDB server keeps it (xmcd form), for the disc
// whose track starts (and lead-out, last) are `starts`.
CddbTestServer::Disc SomeAlbum(const std::vector<std::int32_t>& starts) {
    CddbTestServer::Disc disc;
    disc.matchTitle = "Some Artist / Some Album";
    std::vector<std::string>& r = disc.recordLines;
    r = {"# xmcd", "#", "# Track frame offsets:"};
    for (std::size_t i = 0; i + 1 < starts.size(); ++i)
        r.push_back("#\t" + std::to_string(starts[i] + 150));
    r.push_back("#");
    r.push_back("# Disc length: " + std::to_string((starts.back() + 150) / 75) + " seconds");
    r.push_back("#");
    r.push_back("# Revision: 1");
    r.push_back("#");
    r.push_back("DTITLE=Some Artist / Some Album");
    r.push_back("DYEAR=2001");
    r.push_back("DGENRE=House");
    for (std::size_t i = 0; i + 1 < starts.size(); ++i)
        r.push_back("TTITLE" + std::to_string(i) + "=" +
                    (i == 0    ? std::string("Intro")
                     : i == 11 ? std::string("Guest / Encore")
                               : "Part " + std::to_string(i)));
    r.push_back("EXTD=");
    for (std::size_t i = 0; i + 1 < starts.size(); ++i)
        r.push_back("EXTT" + std::to_string(i) + "=");
    r.push_back("PLAYORDER=");
    return disc;
}

}  // namespace testsupport
