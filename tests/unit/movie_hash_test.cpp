// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Classes/OSHashAlgorithm.h"
#include "app/Classes/VideoHash.h"
#include "app/Platform/NotificationCenter.h"
#include "support/StubService.h"
#include "support/Wait.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QThread>
#include <QtEndian>

#include <gtest/gtest.h>

#include <mutex>
#include <optional>

#include <sys/stat.h>

namespace murvo {

using namespace std::chrono_literals;

namespace {

/// Bytes that differ from place to place and whose words overflow when summed.
QByteArray pattern(int size) {
    QByteArray bytes(size, Qt::Uninitialized);
    for (int i = 0; i < size; ++i)
        bytes[i] = static_cast<char>(static_cast<unsigned>(i) * 2654435761U >> 13);
    return bytes;
}

/// The hash by its definition, byte by byte.
quint64 expectedHash(const QByteArray &film) {
    quint64 hash = static_cast<quint64>(film.size());
    for (const QByteArray &block : {film.left(65536), film.right(65536)}) {
        for (int i = 0; i < 65536; ++i)
            hash += static_cast<quint64>(static_cast<quint8>(block[i])) << (8 * (i % 8));
    }
    return hash;
}

class MovieHash : public testing::Test {
  public:
    ~MovieHash() override { OSHashAlgorithm::cancelRemoteHash(); }

  protected:
    MovieHash()
        : _registration(NotificationCenter::defaultCenter().addObserver(
              notifications::hashComputed, [this](const QVariantMap &info) {
                  const std::lock_guard guard(_lock);
                  _posted.append(info.value(notifications::hashKey).value<VideoHash>());
                  postedOn = QThread::currentThread();
              })) {}

    QList<VideoHash> posted() {
        const std::lock_guard guard(_lock);
        return _posted;
    }

    QString fileWith(const QByteArray &bytes) {
        QFile file(_folder.filePath(QStringLiteral("film")));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        return file.fileName();
    }

    VideoHash hashOfPath(const QString &path) {
        _posted.clear();
        OSHashAlgorithm::computeHashForPath(path);
        EXPECT_EQ(_posted.size(), 1) << "exactly one event, before the call returns";
        return _posted.value(0);
    }

    /// Serves film at "film" with ranges, unless told otherwise.
    void serve(const QByteArray &film) { _server.on("film", test::StubService::bytesWithRanges(film)); }

    std::optional<VideoHash> hashOfUrl(std::chrono::milliseconds limit = 10s) {
        OSHashAlgorithm::computeHashForURL(_server.baseUrl() + QStringLiteral("film"));
        EXPECT_TRUE(posted().isEmpty()) << "returns at once";
        if (!test::waitUntil([this] { return !posted().isEmpty(); }, limit))
            return std::nullopt;
        return posted().first();
    }

    QThread *postedOn = nullptr;
    QTemporaryDir _folder;
    test::StubService _server;

  private:
    std::mutex _lock;
    QList<VideoHash> _posted;
    NotificationCenter::Registration _registration;
};

} // namespace

TEST_F(MovieHash, OfALocalFileCountsSizeAndBothBlocks) {
    for (const int size : {65536, 100000, 131072, 200000}) {
        const QByteArray film = pattern(size);
        const VideoHash hash = hashOfPath(fileWith(film));
        EXPECT_EQ(hash.fileHash, expectedHash(film)) << size;
        EXPECT_EQ(hash.fileSize, static_cast<quint64>(size));
    }
    EXPECT_EQ(hashOfPath(fileWith(QByteArray(70000, '\0'))).fileHash, 70000U) << "zeros add nothing";
}

TEST_F(MovieHash, OfWhatCannotBeHashedIsZero) {
    EXPECT_EQ(hashOfPath(fileWith(pattern(65535))), VideoHash{});
    EXPECT_EQ(hashOfPath(fileWith({})), VideoHash{});
    EXPECT_EQ(hashOfPath(_folder.filePath(QStringLiteral("missing"))), VideoHash{});
    EXPECT_EQ(hashOfPath(_folder.path()), VideoHash{}) << "a folder";
    const QString pipe = _folder.filePath(QStringLiteral("pipe"));
    ASSERT_EQ(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    EXPECT_EQ(hashOfPath(pipe), VideoHash{}) << "opening a pipe would wait for ever";
}

TEST_F(MovieHash, TextIsBareLowerCaseHexadecimal) {
    EXPECT_EQ(OSHashAlgorithm::stringForHash(255), QStringLiteral("ff"));
    EXPECT_EQ(OSHashAlgorithm::stringForHash(0), QStringLiteral("0"));
    EXPECT_EQ(OSHashAlgorithm::stringForHash(~quint64{0}), QStringLiteral("ffffffffffffffff"));
}

TEST_F(MovieHash, OfAUrlAsksForSizeAndTwoRangesInTurn) {
    const QByteArray film = pattern(200000);
    serve(film);
    EXPECT_EQ(hashOfUrl(), (VideoHash{.fileHash = expectedHash(film), .fileSize = 200000}));
    EXPECT_NE(postedOn, QThread::currentThread()) << "posted on the background queue";
    const auto requests = _server.requests();
    ASSERT_EQ(requests.size(), 3);
    EXPECT_EQ(requests[0].method, "HEAD");
    EXPECT_EQ(requests[1].method, "GET");
    EXPECT_EQ(requests[1].header("Range"), "bytes=0-65535");
    EXPECT_EQ(requests[2].header("Range"), "bytes=134464-200000");
}

TEST_F(MovieHash, OfAServerThatIgnoresRangesUsesTheFirstBytesOfEachBody) {
    const QByteArray film = pattern(300000);
    _server.on("film", test::StubReply{.body = film});
    const auto hash = hashOfUrl();
    ASSERT_TRUE(hash);
    EXPECT_EQ(hash->fileHash, 300000 - 65536 + expectedHash(film.left(65536)));
}

TEST_F(MovieHash, OfAShortUrlFailsWithoutAskingForRanges) {
    serve(pattern(65535));
    EXPECT_EQ(hashOfUrl(), VideoHash{});
    EXPECT_EQ(_server.requests().size(), 1);
}

TEST_F(MovieHash, OfAServerWithoutALengthReadsItAsTheLargestSize) {
    _server.on("film", [](const test::RecordedRequest &request) {
        return request.method == "HEAD" ? test::StubReply{.declaredLength = -2}
                                        : test::StubReply{.body = QByteArray(65536, '\1')};
    });
    const auto hash = hashOfUrl();
    ASSERT_TRUE(hash);
    EXPECT_EQ(hash->fileSize, ~quint64{0});
    EXPECT_EQ(_server.requests().last().header("Range"), "bytes=18446744073709486079-18446744073709551615");
}

TEST_F(MovieHash, OfAUrlWithShortOrFailingBodiesFails) {
    const QByteArray film = pattern(200000);
    for (const test::StubReply &bad :
         {test::StubReply{.status = 404}, test::StubReply{.status = 206, .body = film.left(65535)},
          test::StubReply{.isReset = true},
          test::StubReply{.status = 206, .body = film.left(100), .declaredLength = 65536}}) {
        test::StubService server;
        server.on("film", [&](const test::RecordedRequest &request) {
            if (request.method == "HEAD")
                return test::StubReply{.body = film};
            return request.header("Range").startsWith("bytes=0-") ? test::StubReply{.body = film.left(65536)}
                                                                  : bad;
        });
        const qsizetype before = posted().size();
        OSHashAlgorithm::computeHashForURL(server.baseUrl() + QStringLiteral("film"));
        ASSERT_TRUE(test::waitUntil([&] { return posted().size() == before + 1; }));
        EXPECT_EQ(posted().last(), VideoHash{});
    }
    const qsizetype before = posted().size();
    OSHashAlgorithm::computeHashForURL(QStringLiteral("http://127.0.0.1:1/film")); // nobody listens
    ASSERT_TRUE(test::waitUntil([&] { return posted().size() == before + 1; }));
    EXPECT_EQ(posted().last(), VideoHash{});
}

TEST_F(MovieHash, OfAUrlThatIsGivenUpPostsNothing) {
    _server.on("film", test::StubReply{.body = QByteArray(100, 'x'), .isHeld = true});
    OSHashAlgorithm::computeHashForURL(_server.baseUrl() + QStringLiteral("film"));
    ASSERT_TRUE(test::waitUntil([this] { return !_server.requests().isEmpty(); }));
    OSHashAlgorithm::cancelRemoteHash();
    _server.releaseHeld();
    // A hash asked for afterwards has gone all its way: the one before would have been faster.
    test::StubService other;
    other.on("film", test::StubReply{.body = "short"});
    OSHashAlgorithm::computeHashForURL(other.baseUrl() + QStringLiteral("film"));
    ASSERT_TRUE(test::waitUntil([this] { return !posted().isEmpty(); }));
    EXPECT_EQ(posted().size(), 1);
}

} // namespace murvo
