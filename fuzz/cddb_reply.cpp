// Fuzz target: any bytes as a CDDB server's replies, through the real
// client. A server thread on loopback answers the client's connections in
// turn: the input up to its first zero byte answers the first (the query),
// the rest every later one (the read). A piece that does not start with
// "HTTP/" gets a plain "200 OK" header in front, so most runs reach the
// reply parsers. Whatever the client makes of it must be a well-formed
// answer, and the disc title must split into artist and title without harm.
#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdint>
#include <cstring>
#include <mutex>
#include <string>
#include <thread>

#include "platform/cd/LibCddbClient.h"
#include "sources/CdNames.h"

namespace {

void Check(bool condition) {
    if (!condition)
        __builtin_trap();
}

// Answers each connection with the next piece of the current input.
class ReplyServer {
  public:
    ReplyServer() {
        listener_ = ::socket(AF_INET, SOCK_STREAM, 0);
        const int one = 1;
        ::setsockopt(listener_, SOL_SOCKET, SO_REUSEADDR, &one, sizeof one);
        sockaddr_in a{};
        a.sin_family = AF_INET;
        a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        a.sin_port = 0;
        Check(::bind(listener_, reinterpret_cast<sockaddr*>(&a), sizeof a) == 0);
        Check(::listen(listener_, 16) == 0);
        socklen_t len = sizeof a;
        Check(::getsockname(listener_, reinterpret_cast<sockaddr*>(&a), &len) == 0);
        port_ = ntohs(a.sin_port);
        std::thread([this] { Serve(); }).detach();  // lives as long as the process
    }

    int Port() const { return port_; }

    void SetReplies(std::string first, std::string rest) {
        std::lock_guard<std::mutex> lock(mutex_);
        first_ = WithHeader(std::move(first));
        rest_ = WithHeader(std::move(rest));
        served_ = 0;
    }

  private:
    static std::string WithHeader(std::string body) {
        if (body.rfind("HTTP/", 0) == 0)
            return body;
        return "HTTP/1.0 200 OK\r\nContent-Type: text/plain\r\n\r\n" + body;
    }

    void Serve() {
        for (;;) {
            const int s = ::accept(listener_, nullptr, nullptr);
            if (s < 0)
                continue;
            ReadRequest(s);
            std::string reply;
            {
                std::lock_guard<std::mutex> lock(mutex_);
                reply = served_++ == 0 ? first_ : rest_;
            }
            for (std::size_t sent = 0; sent < reply.size();) {
                const ssize_t n = ::send(s, reply.data() + sent, reply.size() - sent, MSG_NOSIGNAL);
                if (n <= 0)
                    break;
                sent += static_cast<std::size_t>(n);
            }
            ::shutdown(s, SHUT_WR);
            char sink[256];
            pollfd p{s, POLLIN, 0};
            while (::poll(&p, 1, 200) > 0 && ::recv(s, sink, sizeof sink, 0) > 0) {
            }
            ::close(s);
        }
    }

    // The client's request: up to the blank line ending its header.
    static void ReadRequest(int s) {
        std::string request;
        char buf[1024];
        pollfd p{s, POLLIN, 0};
        while (request.find("\r\n\r\n") == std::string::npos && request.size() < 16384 &&
               ::poll(&p, 1, 1000) > 0) {
            const ssize_t n = ::recv(s, buf, sizeof buf, 0);
            if (n <= 0)
                break;
            request.append(buf, static_cast<std::size_t>(n));
        }
    }

    int listener_ = -1;
    int port_ = 0;
    std::mutex mutex_;
    std::string first_, rest_;
    int served_ = 0;
};

// Three tracks of a minute each.
cd::CdToc Toc() {
    cd::CdToc toc;
    toc.first = 1;
    toc.last = 3;
    for (int t = 0; t <= 3; ++t) {
        cd::CdTocEntry e;
        e.track = static_cast<std::uint8_t>(t < 3 ? t + 1 : 0xAA);
        e.start = t * 75 * 60;
        toc.entries.push_back(e);
    }
    return toc;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static ReplyServer server;
    static const cd::CdToc toc = Toc();
    const char* bytes = reinterpret_cast<const char*>(data);
    const auto* zero = static_cast<const char*>(std::memchr(bytes, 0, size));
    const std::size_t firstSize = zero ? std::size_t(zero - bytes) : size;
    server.SetReplies(std::string(bytes, firstSize),
                      zero ? std::string(zero + 1, size - firstSize - 1) : std::string());

    cd::CddbServer where;
    where.host = "127.0.0.1";
    where.port = server.Port();
    where.http = true;
    where.timeoutSeconds = 2;
    cd::LibCddbClient client;
    const cd::CddbAnswer answer = client.Lookup(toc, where);
    if (answer.status == cd::CddbStatus::Found) {
        Check(answer.discId.size() == 8);
        Check(answer.trackTitles.size() <= 100);
        const std::string title = cdnames::DiscTitleOfMatch(answer.title);
        Check(title.size() <= answer.title.size());
    }
    return 0;
}
