// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/FilmHandover.h"
#include "service/NoMoreRoom.h"
#include "service/SavedWords.h"
#include "service/ServiceFixture.h"

#include <QDateTime>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QProcess>

#include <future>
#include <thread>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace murvo::service::test {

namespace {

/// The films that the learner has watched.
class ShelfTest : public ServiceFixture {
  protected:
    /// A file with that name that is told apart from others; returns its number.
    int film(const QString &name, quint64 hash) {
        return lookUp(writeFile(name, "x"), hash).json()["videoId"_L1].toInt();
    }
    [[nodiscard]] QJsonArray shelf() { return get(u"Api/Films"_s).json()["films"_L1].toArray(); }
    [[nodiscard]] static QList<int> idsOf(const QJsonArray &list) {
        QList<int> ids;
        for (const QJsonValue each : list)
            ids.append(each["videoId"_L1].toInt());
        return ids;
    }
    [[nodiscard]] Reply open(int videoId) {
        return post(u"Api/Films/Open"_s, "{\"videoId\":" + QByteArray::number(videoId) + "}", "text/plain");
    }
    /// The mean of a picture's grey, 0 to 255.
    static int lightOf(const QByteArray &jpeg) {
        QProcess ffmpeg;
        ffmpeg.start(
            u"ffmpeg"_s,
            u"-v error -f mjpeg -i - -vf scale=1:1:flags=area -f rawvideo -pix_fmt gray -"_s.split(u' '));
        ffmpeg.write(jpeg);
        ffmpeg.closeWriteChannel();
        ffmpeg.waitForFinished();
        const QByteArray grey = ffmpeg.readAllStandardOutput();
        return grey.size() == 1 ? static_cast<uchar>(grey[0]) : -1;
    }
    static void awaitNextMillisecond() {
        const qint64 nowMs = QDateTime::currentMSecsSinceEpoch();
        while (QDateTime::currentMSecsSinceEpoch() == nowMs)
            std::this_thread::yield();
    }
    [[nodiscard]] static QString still(int videoId) { return u"Api/Films/Still?videoId=%1"_s.arg(videoId); }
    [[nodiscard]] static QString watching(int videoId) {
        return u"Api/MovieFile/Watching?videoId=%1"_s.arg(videoId);
    }
};

TEST_F(ShelfTest, AFilmGoesOnWhereAndHowItWasLeft) {
    const int first = film(u"First.mkv"_s, 1);
    const int second = film(u"Second.mkv"_s, 2);
    const QJsonObject untouched = get(watching(second)).json();
    EXPECT_EQ(untouched["positionMs"_L1], 0);
    EXPECT_EQ(untouched["speedPercent"_L1], 100);
    const qint64 beforeMs = QDateTime::currentMSecsSinceEpoch();
    const QJsonObject told{{u"positionMs"_s, 61'000},
                           {u"durationMs"_s, 7'200'000},
                           {u"speedPercent"_s, 80},
                           {u"audioTrackId"_s, 3},
                           {u"isFinished"_s, true}};
    QJsonObject kept = put(watching(first), told).json();
    for (auto field = told.begin(); field != told.end(); ++field)
        EXPECT_EQ(kept[field.key()], *field) << field.key().toStdString();
    EXPECT_GE(kept["watchedAtMs"_L1].toInteger(), beforeMs);
    kept["audioTrackId"_L1] = QJsonValue::Null;
    kept["isFinished"_L1] = false;
    EXPECT_EQ(put(watching(first), {{u"audioTrackId"_s, QJsonValue::Null}, {u"isFinished"_s, false}}).json(),
              kept)
        << "what is not told stays, and so does the time without a position";
    restart();
    EXPECT_EQ(get(watching(first)).json(), kept);
    EXPECT_EQ(get(watching(second)).json(), untouched);
}

TEST_F(ShelfTest, WhatCannotBeOfAFilmIsRefusedAsAWhole) {
    const int one = film(u"Film.mkv"_s, 1);
    const QJsonObject before = get(watching(one)).json();
    const QList<QPair<QString, QJsonValue>> wrong{{u"positionMs"_s, -1},
                                                  {u"positionMs"_s, 1.5},
                                                  {u"positionMs"_s, 86'400'001},
                                                  {u"positionMs"_s, u"1"_s},
                                                  {u"durationMs"_s, -1},
                                                  {u"speedPercent"_s, 24},
                                                  {u"speedPercent"_s, 401},
                                                  {u"isFinished"_s, 1},
                                                  {u"audioTrackId"_s, u"1"_s},
                                                  {u"audioTrackId"_s, 3e9},
                                                  {u"positionMs"_s, QJsonValue::Null}};
    for (const auto &[name, value] : wrong) {
        QJsonObject body{{u"durationMs"_s, 5}, {u"positionMs"_s, 5}};
        body[name] = value;
        EXPECT_EQ(put(watching(one), body).errorCode(), u"badSetting"_s) << name.toStdString();
    }
    EXPECT_EQ(get(watching(one)).json(), before);
    EXPECT_EQ(put(watching(99), {{u"positionMs"_s, 5}}).errorCode(), u"unknownFilm"_s);
    EXPECT_EQ(ask("PUT", watching(one), {}, "1").errorCode(), u"badJson"_s);
}

TEST_F(ShelfTest, WatchedFilmsComeTheLastFirstWithWhatIsKnownOfThem) {
    writeFile(u"First.en.srt"_s, srt("The cat and the defenestration."));
    fetchAndUpload(lookUp(writeFile(u"First.mkv"_s, "x"), 1));
    const int first = 1;
    const int second = film(u"Second.mkv"_s, 2);
    const int address = lookUp({}, 3).json()["videoId"_L1].toInt();
    (void)film(u"Never.mkv"_s, 4);
    for (const int each : {address, second, first}) {
        (void)put(watching(each), {{u"positionMs"_s, 1000 * each}, {u"speedPercent"_s, 50}});
        awaitNextMillisecond();
    }
    for (const char *word : {"cat", "cat", "dog"})
        (void)post(u"Api/Words/Save"_s,
                   QByteArray("{\"videoId\":1,\"form\":\"") + word + "\",\"line\":\"" + word + " one\"}", "");
    const QJsonObject words = get(u"Api/MovieFile/Words?videoId=1"_s).json();

    QJsonArray all = shelf();
    ASSERT_EQ(idsOf(all), (QList<int>{first, second, address}));
    EXPECT_EQ(all[0]["runningWords"_L1], words["runningWords"_L1]);
    EXPECT_EQ(all[0]["knownPercent"_L1], words["knownPercent"_L1]);
    EXPECT_GT(all[0]["knownPercent"_L1].toInt(), 0);
    EXPECT_EQ(all[0]["savedWords"_L1], 2);
    EXPECT_EQ(all[0]["positionMs"_L1], 1000);
    EXPECT_EQ(all[0]["fileName"_L1], u"First.mkv"_s);
    EXPECT_TRUE(all[0]["isThere"_L1].toBool() && !all[0]["isAddress"_L1].toBool());
    EXPECT_TRUE(!all[2]["isThere"_L1].toBool() && all[2]["isAddress"_L1].toBool());
    QFile::remove(films.filePath(u"Second.mkv"_s));
    EXPECT_FALSE(shelf()[1]["isThere"_L1].toBool());

    const Reply page = get(u"Api/Films?offset=1&count=1"_s);
    EXPECT_EQ(page.json()["total"_L1], 3);
    EXPECT_EQ(idsOf(page.json()["films"_L1].toArray()), QList<int>{second});
    EXPECT_EQ(get(u"Api/Films?count=0"_s).errorCode(), u"badParameter"_s);

    EXPECT_EQ(ask("DELETE", u"Api/Films?videoId=1"_s).status, 200);
    EXPECT_EQ(idsOf(shelf()), (QList<int>{second, address}));
    EXPECT_EQ(get(watching(first)).json()["positionMs"_L1], 0);
    EXPECT_EQ(get(watching(first)).json()["speedPercent"_L1], 50) << "how it is played stays";
    EXPECT_EQ(get(u"Api/Words"_s).json()["total"_L1], 2);
    EXPECT_EQ(ask("DELETE", u"Api/Films?videoId=99"_s).errorCode(), u"unknownFilm"_s);
}

TEST_F(ShelfTest, AFilmIsOpenedWhereItLiesOnceTheProgramHasIt) {
    std::promise<std::function<bool()>> wanted;
    QString wantedPath;
    openFilm = [&](const QString &path, const std::function<bool()> &take) {
        wantedPath = path;
        wanted.set_value(take);
    };
    restart();
    const int one = film(u"Film.mkv"_s, 1);
    auto reply = std::async(std::launch::async, [this, one] { return open(one); });
    const auto take = wanted.get_future().get();
    EXPECT_EQ(wantedPath, films.filePath(u"Film.mkv"_s));
    EXPECT_EQ(reply.wait_for(200ms), std::future_status::timeout) << "before the program has it";
    EXPECT_TRUE(take());
    EXPECT_EQ(reply.get().json()["videoId"_L1], one);
    EXPECT_FALSE(take()) << "once";
    QFile::remove(wantedPath);
    EXPECT_EQ(open(one).errorCode(), u"filmMoved"_s);
    EXPECT_EQ(open(lookUp({}, 3).json()["videoId"_L1].toInt()).errorCode(), u"filmMoved"_s) << "an address";
    EXPECT_EQ(open(77).errorCode(), u"unknownFilm"_s);
}

TEST_F(ShelfTest, TheStillShowsWhereTheLearnerStoppedAndIsNeverBlackForNothing) {
    const QString path =
        makeFilm(u"Dark.mkv"_s, {}, uR"(-vf "drawbox=t=fill:color=black:enable='gt(t,1)'")"_s);
    const int dark = lookUp(path).json()["videoId"_L1].toInt();
    const QString route = still(dark);
    EXPECT_EQ(get(route).errorCode(), u"noPicture"_s) << "not on the shelf yet";
    (void)put(watching(dark), {{u"positionMs"_s, 1800}});
    const Reply first = get(route);
    ASSERT_EQ(first.status, 200);
    EXPECT_EQ(first.header("Content-Type"), "image/jpeg");
    EXPECT_GT(lightOf(first.body), 60) << "from before it became dark";
    EXPECT_LT(lightOf(get(u"Api/Lines/Picture?startMs=1500&endMs=1900&videoId=%1"_s.arg(dark)).body), 5);

    (void)put(watching(dark), {{u"positionMs"_s, 300}});
    const QByteArray moved = get(route).body;
    EXPECT_NE(moved, first.body);
    (void)put(watching(dark), {{u"positionMs"_s, 600}});
    EXPECT_EQ(get(route).body, moved) << "near enough";
    QFile::remove(path);
    (void)put(watching(dark), {{u"positionMs"_s, 1900}});
    EXPECT_EQ(get(route).body, moved) << "better than none";
    restart();
    EXPECT_EQ(get(route).body, moved);
    (void)ask("DELETE", u"Api/Films?videoId=%1"_s.arg(dark));
    EXPECT_EQ(get(route).errorCode(), u"noPicture"_s);
    EXPECT_EQ(get(u"Api/Films/Still?videoId=99"_s).errorCode(), u"unknownFilm"_s);
}

TEST_F(ShelfTest, ALineIsHeardAsLongAsTheFilmLiesThere) {
    const QString path = makeFilm(u"Tone.mkv"_s, u"-f lavfi -i sine=f=700:d=2"_s, u"-map 1 -c:a aac"_s);
    const int film = lookUp(path).json()["videoId"_L1].toInt();
    const auto sightingOf = [&](const QByteArray &more) {
        const QByteArray id = QByteArray::number(film);
        return post(u"Api/Words/Save"_s, R"({"form":"cat","line":"A cat","videoId":)" + id + more + '}', "")
            .json()["sightings"_L1][0];
    };
    EXPECT_EQ(sightingOf({})["soundUrl"_L1], QString()) << "at no time";
    const QString url = sightingOf(R"(,"startMs":500,"endMs":1100)")["soundUrl"_L1].toString();
    const Reply sound = download(url);
    EXPECT_EQ(sound.header("Content-Type"), "audio/mpeg");
    const Tone tone = toneOf(writeFile(u"line.mp3"_s, sound.body));
    EXPECT_NEAR(tone.seconds, 1.0, 0.1) << "with air around it";
    EXPECT_NEAR(tone.hertz, 700, 15);
    EXPECT_EQ(download(QString(url).replace("Sound"_L1, "Picture"_L1)).status, 404)
        << "its token opens no other";
    for (const auto &[from, to] :
         {std::pair(u"startMs=500"_s, u"startMs=501"_s), std::pair(u"&sig"_s, u"&x"_s)})
        EXPECT_EQ(download(QString(url).replace(from, to)).errorCode(), u"notFound"_s) << "nor another line";
    const auto at = [&](const QString &times) {
        return get(u"Api/Lines/Sound?videoId=%1"_s.arg(film) + times).errorCode();
    };
    EXPECT_EQ(at(u"&startMs=60000&endMs=61000"_s), u"noSound"_s) << "behind its end";
    for (const QString &wrong : {u""_s, u"&startMs=5"_s, u"&startMs=5&endMs=5"_s, u"&startMs=-1&endMs=5"_s})
        EXPECT_EQ(at(wrong), u"badParameter"_s) << wrong.toStdString();
    QFile::remove(path);
    EXPECT_EQ(at(u"&startMs=500&endMs=1100"_s), u"noSound"_s);
    EXPECT_EQ(get(u"Api/Words"_s).json()["words"_L1][0]["sightings"_L1][0]["soundUrl"_L1], QString());
}

TEST_F(ShelfTest, TheEndDoesNotWaitForAProgramThatNeverTakesTheFilm) {
    std::promise<std::function<bool()>> wanted;
    openFilm = [&](const QString &, const std::function<bool()> &take) { wanted.set_value(take); };
    restart();
    const int one = film(u"Film.mkv"_s, 1);
    auto reply = std::async(std::launch::async, [own = client(), path = tokenPath(), one]() mutable {
        return replyOf(
            own.Post(path + "Api/Films/Open", "{\"videoId\":" + std::to_string(one) + "}", "text/plain"));
    });
    const auto take = wanted.get_future().get();
    QElapsedTimer clock;
    clock.start();
    service.reset();
    EXPECT_LT(clock.elapsed(), 3000);
    EXPECT_EQ(reply.get().status, 500);
    EXPECT_FALSE(take()) << "the page was told of a failure";
}

TEST_F(ShelfTest, AFilmThatWasGivenUpIsNotOpenedLater) {
    std::function<bool()> late;
    FilmHandover handover([&](const QString &, const std::function<bool()> &take) { late = take; }, 20ms);
    EXPECT_FALSE(handover.hand(u"/Film.mkv"_s));
    EXPECT_FALSE(late());
}

TEST_F(ShelfTest, APictureThatCannotBeKeptIsShownAllTheSame) {
    const QString path = makeFilm(u"Film.mkv"_s);
    const int one = lookUp(path).json()["videoId"_L1].toInt();
    ASSERT_TRUE(waitUntilRead(one));
    (void)put(watching(one), {{u"positionMs"_s, 1000}});
    {
        const NoMoreRoom atAll(QFileInfo(dataFolder.filePath(u"murvo.sqlite-wal"_s)).size());
        EXPECT_EQ(get(still(one)).status, 200);
        EXPECT_EQ(put(watching(one), {{u"positionMs"_s, 5}}).errorCode(), u"diskFull"_s);
    }
    const QByteArray later = get(still(one)).body;
    QFile::remove(path);
    EXPECT_EQ(get(still(one)).body, later) << "kept as soon as there is room";
}

TEST_F(ShelfTest, AFilmWithoutAPictureIsTriedOnceUntilItChanges) {
    const QString path = writeFile(u"Film.mkv"_s, QByteArray(500'000, 'x'));
    const int one = lookUp(path).json()["videoId"_L1].toInt();
    (void)put(watching(one), {{u"positionMs"_s, 1000}});
    EXPECT_EQ(get(still(one)).errorCode(), u"noPicture"_s);
    QFile good(makeFilm(u"Good.mkv"_s));
    ASSERT_TRUE(good.open(QIODevice::ReadOnly));
    const auto changed = QFileInfo(path).lastModified();
    const QByteArray bytes = good.readAll();
    writeFile(u"Film.mkv"_s, bytes + QByteArray(500'000 - bytes.size(), '\0'));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_TRUE(file.setFileTime(changed, QFileDevice::FileModificationTime));
    EXPECT_EQ(get(still(one)).errorCode(), u"noPicture"_s) << "not opened again";
    ASSERT_TRUE(file.setFileTime(changed.addSecs(1), QFileDevice::FileModificationTime));
    EXPECT_EQ(get(still(one)).status, 200) << "the file has changed";
}

TEST_F(ShelfTest, AnotherFileUnderTheOldNameIsNotTheFilm) {
    const QString path = makeFilm(u"Film.mkv"_s, u"-f lavfi -i sine=d=2"_s, u"-map 1 -c:a aac"_s);
    const int one = lookUp(path).json()["videoId"_L1].toInt();
    (void)put(watching(one), {{u"positionMs"_s, 1000}});
    const QString times = u"?startMs=500&endMs=1100&videoId=%1"_s.arg(one);
    EXPECT_TRUE(shelf()[0]["isThere"_L1].toBool());
    EXPECT_EQ(get(u"Api/Lines/Picture"_s + times).status, 200);
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::Append) && file.write("x") == 1);
    file.close();
    EXPECT_FALSE(shelf()[0]["isThere"_L1].toBool());
    EXPECT_EQ(get(u"Api/Lines/Picture"_s + times).errorCode(), u"noPicture"_s);
    EXPECT_EQ(get(u"Api/Lines/Sound"_s + times).errorCode(), u"noSound"_s);
    EXPECT_EQ(get(still(one)).errorCode(), u"noPicture"_s);
    EXPECT_EQ(open(one).errorCode(), u"filmMoved"_s);
}

} // namespace

} // namespace murvo::service::test
