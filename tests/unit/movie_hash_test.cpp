// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Classes/OSHashAlgorithm.h"
#include "app/Classes/VideoHash.h"
#include "app/Platform/NotificationCenter.h"
#include "support/StubService.h"
#include "support/Wait.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

#include <mutex>

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

    VideoHash hashOfPath(const QString &path) {
        _posted.clear();
        OSHashAlgorithm::computeHashForPath(path);
        EXPECT_EQ(_posted.size(), 1) << "exactly one event, before the call returns";
        return _posted.value(0);
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

TEST_F(MovieHash, OfWhatIsNoFileIsZeroAtOnce) {
    EXPECT_EQ(hashOfPath(_folder.path()), VideoHash{}) << "a folder";
    const QString pipe = _folder.filePath(QStringLiteral("pipe"));
    ASSERT_EQ(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    EXPECT_EQ(hashOfPath(pipe), VideoHash{}) << "opening a pipe would wait for ever";
}

TEST_F(MovieHash, OfASilentServerIsGivenUpAfterTenSecondsOnItsOwnThread) {
    _server.on("film", test::StubReply{.isHeld = true});
    QElapsedTimer clock;
    clock.start();
    OSHashAlgorithm::computeHashForURL(_server.baseUrl() + QStringLiteral("film"));
    ASSERT_TRUE(test::waitUntil([this] { return !posted().isEmpty(); }, 15s));
    EXPECT_GE(clock.elapsed(), 9400) << "timers may be early by a twentieth";
    EXPECT_EQ(posted(), QList<VideoHash>{VideoHash{}});
    EXPECT_NE(postedOn, QThread::currentThread());
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
