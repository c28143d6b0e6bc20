// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/ServiceFixture.h"

#include <QFile>
#include <QJsonArray>
#include <QUrl>

#include <algorithm>
#include <array>
#include <chrono>
#include <future>
#include <vector>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace murvo::service::test {

namespace {

class AccessTest : public ServiceFixture {
  protected:
    [[nodiscard]] int statusWith(const httplib::Headers &headers) const {
        const auto reply = client().Get(tokenPath() + "Api/Settings", headers);
        return reply ? reply->status : 0;
    }

    /// A socket that is connected to the service, or -1.
    [[nodiscard]] int connected() const {
        const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(static_cast<uint16_t>(port()));
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        const timeval limit{10, 0};
        ::setsockopt(fd, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof(limit));
        if (::connect(fd, reinterpret_cast<const sockaddr *>(&address), sizeof(address)) == 0)
            return fd;
        ::close(fd);
        return -1;
    }

    /// Sends these bytes and returns all that comes back until the service closes; "leaves" stops listening.
    [[nodiscard]] std::string raw(const std::string &bytes, bool leaves = false) const {
        const int fd = connected();
        if (fd < 0)
            return {};
        (void)::send(fd, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (leaves)
            ::shutdown(fd, SHUT_WR);
        std::string reply;
        std::array<char, 4096> buffer{};
        for (ssize_t got = 0; (got = ::recv(fd, buffer.data(), buffer.size(), 0)) > 0;)
            reply.append(buffer.data(), static_cast<size_t>(got));
        ::close(fd);
        return reply;
    }

    [[nodiscard]] std::string host() const { return "127.0.0.1:" + std::to_string(port()); }
};

TEST_F(AccessTest, TheTokenIsLongFreshAndNeeded) {
    const QString first = service->baseUrl();
    EXPECT_TRUE(first.endsWith(u'/'));
    EXPECT_GE(tokenPath().size(), 2 + 32U); // at least 128 bits in hexadecimal digits
    std::string wrong = tokenPath();
    wrong[5] = wrong[5] == 'a' ? 'b' : 'a';
    for (const std::string &path :
         {std::string("/"), std::string("/Api/Settings"), std::string("//Api/Settings"),
          wrong + "Api/Settings", wrong.substr(0, 20) + "/Api/Settings",
          tokenPath().substr(0, tokenPath().size() - 1)}) {
        const auto reply = client().Get(path);
        ASSERT_TRUE(reply);
        EXPECT_EQ(reply->status, 404) << path;
        EXPECT_EQ(reply->body.find(tokenPath().substr(1, 16)), std::string::npos);
    }
    restart();
    EXPECT_NE(service->baseUrl().section(u'/', 3, 3), first.section(u'/', 3, 3));
}

TEST_F(AccessTest, ADownloadAddressOpensNothingElse) {
    const QString path = writeFile(QStringLiteral("Film.mkv"), "film");
    writeFile(QStringLiteral("Film.en.srt"), "1\n00:00:01,000 --> 00:00:02,000\nHello\n");
    const QJsonArray offers = lookUp(path).json()[QLatin1String("subsToDownload")].toArray();
    ASSERT_EQ(offers.size(), 1);
    const QUrl address(offers[0][QLatin1String("downloadUrl")].toString());
    const std::string token = address.path().section(u'/', 1, 1).toStdString();
    EXPECT_EQ(tokenPath().find(token), std::string::npos)
        << "it goes into logs, the service's own token must not";
    const std::string query = '?' + address.query().toStdString();
    EXPECT_EQ(download(address.toString()).status, 200);
    for (const char *other : {"Api/Settings", "Player/Home", "Api/Subtitles/File/", "Api/Subtitles/Cues"}) {
        const std::string target = ('/' + token).append("/").append(other).append(query);
        EXPECT_NE(client().Get(target)->status, 200) << other;
    }
}

TEST_F(AccessTest, OnlyItsOwnHostAndOriginAreAnswered) {
    EXPECT_EQ(statusWith({}), 200);
    EXPECT_EQ(statusWith({{"Origin", "http://" + host()}}), 200);
    for (const std::string &other :
         {std::string("localhost:") + std::to_string(port()), std::string("127.0.0.1"),
          std::string("evil.example"), host() + "0", "[::1]:" + std::to_string(port()), std::string()})
        EXPECT_EQ(statusWith({{"Host", other}}), 403) << other;
    EXPECT_EQ(statusWith({{"Host", host()}, {"Host", "evil.example"}}), 403);
    for (const std::string &other : {std::string("http://evil.example"), std::string("null"),
                                     "https://" + host(), "http://" + host() + ".evil.example"})
        EXPECT_EQ(statusWith({{"Origin", other}}), 403) << other;
    EXPECT_EQ(statusWith({{"Origin", "http://" + host()}, {"Origin", "http://evil.example"}}), 403);
    EXPECT_NE(raw("GET " + tokenPath() + "Api/Settings HTTP/1.1\r\nConnection: close\r\n\r\n").find(" 403 "),
              std::string::npos);
}

TEST_F(AccessTest, EveryReplyCarriesTheSecurityHeaders) {
    for (const QString &path :
         {QStringLiteral("Player/Play"), QStringLiteral("Api/Settings"), QStringLiteral("no")}) {
        const Reply reply = get(path);
        const auto value = [&reply](const char *name) {
            const auto found = reply.headers.find(name);
            return found == reply.headers.end() ? std::string() : found->second;
        };
        EXPECT_EQ(value("X-Content-Type-Options"), "nosniff");
        EXPECT_EQ(value("Referrer-Policy"), "no-referrer");
        EXPECT_EQ(value("Cache-Control"), "no-store");
        EXPECT_THAT(value("Content-Security-Policy"), testing::HasSubstr("default-src 'none'"));
        EXPECT_THAT(value("Content-Security-Policy"), testing::HasSubstr("frame-src app:"));
        EXPECT_EQ(reply.headers.count("Access-Control-Allow-Origin"), 0U);
    }
}

TEST_F(AccessTest, WrongAddressesMethodsAndIdsAreRefused) {
    for (const char *method : {"GET", "PUT", "PATCH", "DELETE", "OPTIONS"})
        EXPECT_EQ(ask(method, QStringLiteral("Api/MovieFile/GetSubtitlesToDownload")).status, 405) << method;
    for (const char *id : {"", "0", "-1", "x", "99999999999", "1.5", "%00", "1%00"})
        EXPECT_EQ(get(QStringLiteral("Api/MovieFile/Lines?videoId=") + QLatin1String(id)).errorCode(),
                  QStringLiteral("badParameter"))
            << id;
    EXPECT_EQ(get(QString(5000, u'a')).status, 404);
}

TEST_F(AccessTest, PathsLeadNowhereButToTheTable) {
    for (const char *path : {"Web/../Api/Settings", "Web/shared/..%2f..%2fetc/passwd",
                             "Web/%2e%2e/%2e%2e/etc/passwd", "Web//etc/passwd", "Web/shared/base.css%00.html",
                             "Web/shared/", "Web", ":/murvo", "Player/home", "Player/Home/"})
        EXPECT_EQ(get(QLatin1String(path)).status, 404) << path;
}

TEST_F(AccessTest, BodiesAreBounded) {
    const std::string path = tokenPath() + "Api/Subtitles/UploadGzippedFiles";
    const std::string head = "POST " + path + " HTTP/1.1\r\nHost: " + host() +
                             "\r\nConnection: close\r\nContent-Type: multipart/form-data; boundary=b\r\n";
    EXPECT_THAT(raw(head + "Transfer-Encoding: chunked\r\n\r\n"), testing::HasSubstr(" 415 "));
    // In pieces: a body in one, copied by the client, takes seconds where memory is watched.
    const std::string piece(1024UL * 1024, 'x');
    const auto send = [&piece](size_t at, size_t length, httplib::DataSink &sink) {
        return sink.write(piece.data(), std::min(piece.size(), length - at));
    };
    const auto reply = client().Post(path, 65 * piece.size(), send, "multipart/form-data; boundary=b");
    ASSERT_TRUE(reply);
    EXPECT_EQ(reply->status, 413);
    EXPECT_EQ(get(QStringLiteral("Api/Settings")).status, 200);
}

TEST_F(AccessTest, AReplyIsNeverCutToARange) {
    const Reply whole = get(QStringLiteral("Web/play/play.mjs"));
    for (const char *range : {"bytes=0-3", "bytes=5-", "bytes=-1", "bytes=9999999-", "bytes=0-1,5-6"}) {
        const Reply reply = ask("GET", QStringLiteral("Web/play/play.mjs"), {{"Range", range}});
        EXPECT_EQ(reply.status, 200) << range;
        EXPECT_EQ(reply.body, whole.body) << range;
    }
    const Reply refused = ask("GET", QStringLiteral("Api/Settings"), {{"Range", "bytes=0-1,5-3"}});
    EXPECT_EQ(refused.errorCode(), QStringLiteral("badRequest")) << refused.body.toStdString();
}

TEST_F(AccessTest, NoiseOnTheSocketDoesNotStopIt) {
    for (const std::string &noise :
         {std::string("\0\xff\x16\x03\x01", 5), std::string("GET\r\n\r\n"),
          std::string("GET / HTTP/9.9\r\n\r\n"), std::string(20'000, 'A'),
          "POST " + tokenPath() + " HTTP/1.1\r\nContent-Length: -5\r\n\r\n",
          "POST " + tokenPath() + "Api/Subtitles/UploadGzippedFiles HTTP/1.1\r\nHost: " + host() +
              "\r\nContent-Length: 500\r\n\r\n--b\r\n"})
        (void)raw(noise, true);
    EXPECT_EQ(get(QStringLiteral("Api/Settings")).status, 200);
}

TEST_F(AccessTest, NoConnectionIsKeptForASecondRequest) {
    const std::string end = " HTTP/1.1\r\nHost: " + host() + "\r\nConnection: keep-alive\r\n";
    for (const std::string &request :
         {"GET " + tokenPath() + "Web/play/play.mjs" + end, "GET /" + end,
          "GET " + tokenPath() + "Api/Settings" + end + "Origin: null\r\n",
          "PUT " + tokenPath() + "Api/Settings" + end + "Content-Length: 2\r\n"}) {
        const std::string reply = raw(request + "\r\n" + (request[0] == 'P' ? "{}" : ""));
        EXPECT_NE(reply.find("\r\nConnection: close\r\n"), std::string::npos) << request << '\n' << reply;
    }
}

TEST_F(AccessTest, AnswersManyClientsAtOnceAndStopsQuickly) {
    const QString film = writeFile(QStringLiteral("Film.mkv"), "film");
    writeFile(QStringLiteral("Film.en.srt"), srt("Hello"));
    service->filmIdentified(film, 0xabc, 1000);
    constexpr int count = 12;
    std::vector<std::future<int>> clients;
    clients.reserve(count);
    for (int i = 0; i < count; ++i) {
        clients.push_back(std::async(std::launch::async, [this, i] {
            httplib::Client own = client();
            own.set_keep_alive(true);
            int good = 0;
            for (int n = 0; n < 10; ++n) {
                const auto looked = own.Post(tokenPath() + "Api/MovieFile/GetSubtitlesToDownload",
                                             "fileSize=1000&movieHash=abc&fileName=Film.mkv",
                                             "application/x-www-form-urlencoded");
                const auto set = own.Put(tokenPath() + "Api/Settings",
                                         "{\"volumePercent\":" + std::to_string(i) + "}", "text/plain");
                good += looked && looked->status == 200 && set && set->status == 200 ? 1 : 0;
            }
            return good;
        }));
    }
    for (auto &each : clients)
        EXPECT_EQ(each.get(), 10);
    const int silent = connected();
    ASSERT_GE(silent, 0);
    ASSERT_EQ(get(QStringLiteral("Api/Settings")).status, 200); // it is accepted after the silent one
    const auto before = std::chrono::steady_clock::now();
    service.reset();
    EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::seconds(3));
    ::close(silent);
}

TEST(ServiceStartTest, SaysWhyItCannotStart) {
    QString error;
    EXPECT_EQ(EmbeddedService::start(QStringLiteral("/proc/murvo"), error), nullptr);
    EXPECT_TRUE(error.contains(QLatin1String("/proc/murvo")));
    QTemporaryDir folder;
    QFile damaged(folder.filePath(QStringLiteral("murvo.sqlite")));
    ASSERT_TRUE(damaged.open(QIODevice::WriteOnly));
    damaged.write(QByteArray(8192, 'x'));
    damaged.close();
    error.clear();
    EXPECT_EQ(EmbeddedService::start(folder.path(), error), nullptr);
    EXPECT_TRUE(error.contains(QLatin1String("murvo.sqlite"))) << error.toStdString();
}

} // namespace

} // namespace murvo::service::test
