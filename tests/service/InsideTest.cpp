// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/NewestOnly.h"
#include "service/ServiceFixture.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>

#include <future>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace murvo::service::test {

namespace {

/// Films that hold their subtitles themselves.
class InsideTest : public ServiceFixture {
  protected:
    void SetUp() override {
        QDir(films.path()).mkdir(u"parts"_s); // not beside the films
        writeFile(u"parts/en.srt"_s, longSrt());
        writeFile(u"parts/fr.srt"_s, srt("Où <i>êtes-vous</i> et moi ?"));
        // One segment of a picture track, which is all that its kind needs to be known.
        const QByteArray picture("PG\0\1\x5f\x90\0\0\0\0\x80\0\0", 13);
        writeFile(u"parts/pictures.sup"_s, picture + picture);
    }

    [[nodiscard]] QJsonObject lines(int videoId) {
        return get(u"Api/MovieFile/Lines?videoId=%1"_s.arg(videoId)).json();
    }
    /// The film's lines once its tracks have been read.
    [[nodiscard]] QJsonObject linesOf(const QString &film, quint64 hash = 0xabc, quint64 size = 1000) {
        const int videoId = lookUp(film, hash, size).json()["videoId"_L1].toInt();
        EXPECT_TRUE(waitUntilRead(videoId)) << film.toStdString();
        return lines(videoId);
    }

    [[nodiscard]] static QStringList told(const QJsonObject &lines) {
        QStringList list;
        for (const QJsonValue track : lines["tracks"_L1].toArray())
            list.append(u"%1 %2 %3%4%5%6"_s.arg(
                track["source"_L1].toString(), track["language"_L1].toString(), track["title"_L1].toString(),
                track["forced"_L1].toBool() ? u" forced"_s : u""_s,
                track["hearingImpaired"_L1].toBool() ? u" hard of hearing"_s : u""_s,
                u' ' + track["error"_L1]["code"_L1].toString()));
        return list;
    }
};

TEST_F(InsideTest, EveryTextTrackIsTakenOutAndPicturesAreNamed) {
    const QString film = makeFilm(
        u"Film.mkv"_s, u"-i parts/en.srt -i parts/fr.srt -i parts/pictures.sup"_s,
        u"-map 1 -map 2 -map 2 -map 3 -c:s:0 srt -c:s:1 ass -c:s:2 webvtt -c:s:3 copy "
        "-metadata:s:s:0 language=eng -metadata:s:s:1 language=fre -metadata:s:s:1 title='Français' "
        "-metadata:s:s:2 title='Forced (SDH)' -disposition:s:2 +forced -metadata:s:s:3 language=ita"_s);
    const QJsonObject lines = linesOf(film);
    EXPECT_EQ(told(lines), (QStringList{u"inside eng  "_s, u"inside fra Français "_s,
                                        u"inside fra Forced (SDH) forced hard of hearing "_s, // by its text
                                        u"inside ita  pictureSubtitle"_s}));
    const QJsonArray learned = lines["learned"_L1]["cues"_L1].toArray();
    ASSERT_EQ(learned.size(), 60);
    EXPECT_EQ(learned[0]["startMs"_L1].toInt(), 5000);
    EXPECT_EQ(learned[0]["italics"_L1][0].toObject(),
              (QJsonObject{{u"line"_s, 0}, {u"start"_s, 0}, {u"end"_s, 7}}));
    const QJsonValue native = lines["native"_L1];
    EXPECT_EQ(native["title"_L1].toString(), u"Français"_s);
    EXPECT_EQ(native["cues"_L1][0]["lines"_L1][0].toString(), u"Où êtes-vous et moi ?"_s);
    EXPECT_EQ(native["cues"_L1][0]["italics"_L1][0]["start"_L1].toInt(), 3);

    const QJsonArray offers = lookUp(film, 0xabc, 1000).json()["subsToDownload"_L1].toArray();
    ASSERT_EQ(offers.size(), 3);
    EXPECT_FALSE(offers[0]["mustBeDownloaded"_L1].toBool(true));
    EXPECT_TRUE(download(offers[0]["downloadUrl"_L1].toString()).body.startsWith("WEBVTT"));
}

TEST_F(InsideTest, ContainersOfEveryKindAreRead) {
    for (const QString &name : {u"a.mp4"_s, u"b.mov"_s, u"c.webm"_s}) {
        const QString kind = name.endsWith("webm"_L1) ? u"webvtt"_s : u"mov_text"_s;
        const QJsonObject lines = linesOf(
            makeFilm(name, u"-i parts/en.srt"_s, u"-map 1 -c:s %1 -metadata:s:s:0 language=eng"_s.arg(kind)),
            0, 0);
        ASSERT_EQ(lines["learned"_L1]["cues"_L1].toArray().size(), 60) << name.toStdString();
        EXPECT_EQ(lines["learned"_L1]["cues"_L1][59]["lines"_L1][0].toString(), u"Line 60"_s);
    }
}

TEST_F(InsideTest, WhatLiesBesideTheFilmComesFirstAndTheLearnersChoiceBeforeIt) {
    const QString film =
        makeFilm(u"Film.mkv"_s, u"-i parts/en.srt"_s, u"-map 1 -c:s srt -metadata:s:s:0 language=eng"_s);
    writeFile(u"Film.en.srt"_s, longSrt(500));
    const Reply lookup = lookUp(film, 0xabc, 1000);
    const int videoId = lookup.json()["videoId"_L1].toInt();
    ASSERT_TRUE(waitUntilRead(videoId));
    fetchAndUpload(lookup);
    EXPECT_EQ(lines(videoId)["learned"_L1]["source"_L1].toString(), u"beside"_s);

    const QString choice = u"Api/MovieFile/Choice?videoId=%1"_s.arg(videoId);
    int inside = 0;
    for (const QJsonValue track : lines(videoId)["tracks"_L1].toArray())
        inside = track["source"_L1].toString() == "inside"_L1 ? track["subtitleId"_L1].toInt() : inside;
    EXPECT_EQ(put(choice, {{u"learned"_s, inside}, {u"native"_s, 0}}).status, 200);
    restart();
    service->filmIdentified(film, 0xabc, 1000);
    EXPECT_EQ(lines(videoId)["learned"_L1]["source"_L1].toString(), u"inside"_s) << "kept for the film";
    EXPECT_EQ(put(choice, {{u"learned"_s, 0}}).json()["native"_L1].toInt(-1), 0);
    EXPECT_TRUE(lines(videoId)["learned"_L1].isNull());
    EXPECT_EQ(put(choice, {{u"learned"_s, QJsonValue::Null}, {u"native"_s, 9999}}).errorCode(),
              u"badChoice"_s);
    EXPECT_TRUE(lines(videoId)["learned"_L1].isNull()) << "nothing is changed then";
    (void)put(choice, {{u"learned"_s, QJsonValue::Null}});
    EXPECT_EQ(lines(videoId)["learned"_L1]["source"_L1].toString(), u"beside"_s);
}

TEST_F(InsideTest, AFilmIsReadOnceAndAnewWhenItsFileHasChanged) {
    const auto filmWith = [this](const QString &file) {
        return makeFilm(u"Film.mkv"_s, u"-i parts/%1"_s.arg(file),
                        u"-map 1 -c:s srt -metadata:s:s:0 language=eng"_s);
    };
    const auto firstLine = [](const QJsonObject &lines) {
        return lines["learned"_L1]["cues"_L1][0]["lines"_L1][0].toString();
    };
    const QString film = filmWith(u"en.srt"_s);
    EXPECT_EQ(firstLine(linesOf(film)), u"Slanted"_s);
    restart();
    const int videoId = lookUp(film, 0xabc, 1000).json()["videoId"_L1].toInt();
    EXPECT_FALSE(
        get(u"Api/MovieFile/Changes?videoId=%1"_s.arg(videoId)).json()["isReadingFilm"_L1].toBool(true));
    EXPECT_EQ(firstLine(lines(videoId)), u"Slanted"_s);
    // The hash sees the ends of a file only: a download may have been filled up since.
    std::ignore = filmWith(u"fr.srt"_s);
    EXPECT_EQ(firstLine(linesOf(film)), u"Où êtes-vous et moi ?"_s);
    QFile::remove(films.filePath(u"parts/fr.srt"_s));
    std::ignore = makeFilm(u"Film.mkv"_s, QString(), QString());
    const QJsonObject none = linesOf(film);
    EXPECT_FALSE(none["tracks"_L1][0]["isThere"_L1].toBool(true));
}

TEST_F(InsideTest, FilmsThatAreCutAnywhereAreReadAsFarAsTheyGo) {
    for (const QString &name : {u"Whole.mkv"_s, u"Whole.mp4"_s}) {
        const bool isMatroska = name.endsWith("mkv"_L1);
        QFile whole(makeFilm(name, u"-i parts/en.srt"_s,
                             u"-map 1 -c:s %1"_s.arg(isMatroska ? u"srt"_s : u"mov_text"_s)));
        ASSERT_TRUE(whole.open(QIODevice::ReadOnly));
        const QByteArray bytes = whole.readAll();
        for (int part = 0; part < 24; ++part) {
            QByteArray damaged = bytes.left(bytes.size() * part / 24);
            if (part % 2 == 1)
                damaged.replace(damaged.size() / 2, 40, QByteArray(40, '\xff'));
            const QString film = writeFile(u"Cut%1"_s.arg(part) + name, damaged);
            EXPECT_LE(linesOf(film, 0, 0)["tracks"_L1].toArray().size(), 1);
        }
    }
}

TEST(NewestOnlyTest, ANewPieceOfWorkEndsTheOneBeforeAndTheDestructorTheLast) {
    std::promise<void> firstBegan;
    std::promise<void> firstEnded;
    std::promise<void> secondBegan;
    std::atomic<bool> hasSecondEnded{false};
    {
        NewestOnly worker;
        const auto untilCancelled = [](const std::atomic<bool> &isCancelled) {
            while (!isCancelled)
                std::this_thread::yield();
        };
        worker.start([&](const std::atomic<bool> &isCancelled) {
            firstBegan.set_value();
            untilCancelled(isCancelled);
            firstEnded.set_value();
        });
        ASSERT_EQ(firstBegan.get_future().wait_for(5s), std::future_status::ready);
        worker.start([&](const std::atomic<bool> &isCancelled) {
            secondBegan.set_value();
            untilCancelled(isCancelled);
            hasSecondEnded = true;
        });
        EXPECT_EQ(firstEnded.get_future().wait_for(5s), std::future_status::ready);
        EXPECT_EQ(secondBegan.get_future().wait_for(5s), std::future_status::ready);
    }
    EXPECT_TRUE(hasSecondEnded);
}

} // namespace

} // namespace murvo::service::test
