// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/ServiceFixture.h"

#include <QFile>
#include <QJsonArray>

#include <algorithm>

#include <sys/stat.h>

namespace murvo::service::test {

namespace {

/// Films whose subtitles have taken the whole road: found, fetched, uploaded, read back as lines.
class LinesTest : public ServiceFixture {
  protected:
    /// The reply of the lines route after the road of that film.
    [[nodiscard]] QJsonObject linesOf(const QString &film) {
        const Reply lookup = lookUp(film, 0, 0);
        fetchAndUpload(lookup);
        const int id = lookup.json().value(QLatin1String("videoId")).toInt();
        return get(QStringLiteral("Api/MovieFile/Lines?videoId=%1").arg(id)).json();
    }

    [[nodiscard]] QString film(const QString &name = QStringLiteral("Film.mkv")) {
        return writeFile(name, "film");
    }

    /// The lines of one file, "start-end text|text" each, or the code of its problem.
    [[nodiscard]] QStringList read(const QString &fileName, const QByteArray &content) {
        const QString base = QStringLiteral("F%1").arg(++_filmNumber);
        writeFile(base + u'.' + fileName, content);
        const QJsonObject lines = linesOf(film(base + QStringLiteral(".mkv")));
        const QJsonValue problem = lines[QLatin1String("tracks")][0][QLatin1String("error")];
        const char *line = lines[QLatin1String("learned")].isNull() ? "native" : "learned";
        return problem.isNull() ? texts(lines[QLatin1String(line)])
                                : QStringList{problem[QLatin1String("code")].toString()};
    }

    [[nodiscard]] static QStringList texts(const QJsonValue &track) {
        QStringList found;
        for (const QJsonValue cue : track[QLatin1String("cues")].toArray()) {
            QStringList lines;
            for (const QJsonValue line : cue[QLatin1String("lines")].toArray())
                lines.append(line.toString());
            found.append(QStringLiteral("%1-%2 %3")
                             .arg(cue[QLatin1String("startMs")].toInt())
                             .arg(cue[QLatin1String("endMs")].toInt())
                             .arg(lines.join(u'|')));
        }
        return found;
    }

    [[nodiscard]] static QString fileOf(const QJsonObject &lines, const char *place) {
        return lines[QLatin1String(place)][QLatin1String("fileName")].toString();
    }

  private:
    int _filmNumber = 0;
};

TEST_F(LinesTest, TheTwoTracksAreEnglishAndTheLearnersOwn) {
    for (const char *name :
         {"Film.en.forced.srt", "Film.en.sdh.srt", "Film.en.srt", "Film.fr.srt", "Film.de.srt"})
        writeFile(QString::fromLatin1(name), srt("Hello"));
    (void)put(QStringLiteral("Api/Settings"), {{QStringLiteral("nativeLanguage"), QStringLiteral("deu")}});
    const QJsonObject lines = linesOf(film());
    EXPECT_EQ(fileOf(lines, "learned"), QStringLiteral("Film.en.srt"));
    EXPECT_EQ(fileOf(lines, "native"), QStringLiteral("Film.de.srt"));
    EXPECT_EQ(texts(lines[QLatin1String("learned")]),
              (QStringList{QStringLiteral("1000-2500 Hello"), QStringLiteral("3000-4000 And on.")}));
}

TEST_F(LinesTest, AFileWithoutALanguageStandsInForTheMissingOne) {
    (void)put(QStringLiteral("Api/Settings"), {{QStringLiteral("nativeLanguage"), QStringLiteral("fra")}});
    writeFile(QStringLiteral("A.srt"), srt("Hello"));
    writeFile(QStringLiteral("A.fr.srt"), srt("Bonjour"));
    const QJsonObject first = linesOf(film(QStringLiteral("A.mkv")));
    EXPECT_EQ(fileOf(first, "learned"), QStringLiteral("A.srt"));
    EXPECT_EQ(fileOf(first, "native"), QStringLiteral("A.fr.srt"));
    writeFile(QStringLiteral("B.srt"), srt("Bonjour"));
    writeFile(QStringLiteral("B.en.srt"), srt("Hello"));
    const QJsonObject second = linesOf(film(QStringLiteral("B.mkv")));
    EXPECT_EQ(fileOf(second, "learned"), QStringLiteral("B.en.srt"));
    EXPECT_EQ(fileOf(second, "native"), QStringLiteral("B.srt"));
    writeFile(QStringLiteral("C.srt"), srt("Hello"));
    const QJsonObject third = linesOf(film(QStringLiteral("C.mkv")));
    EXPECT_EQ(fileOf(third, "learned"), QStringLiteral("C.srt"));
    EXPECT_TRUE(third[QLatin1String("native")].isNull());
}

TEST_F(LinesTest, AnUnreadableFileGivesWayToTheNextOne) {
    writeFile(QStringLiteral("Film.en.srt"), "this is no subtitle");
    writeFile(QStringLiteral("Film.eng.ass"),
              "[Script Info]\nScriptType: v4.00+\n[Events]\n"
              "Format: Layer, Start, End, Style, Name, MarginL, MarginR, MarginV, Effect, Text\n"
              "Dialogue: 0,0:00:01.00,0:00:02.00,Default,,0,0,0,,{\\i1}Well, yes{\\i0}\\Nno\n");
    const QJsonObject lines = linesOf(film());
    EXPECT_EQ(texts(lines[QLatin1String("learned")]), QStringList{QStringLiteral("1000-2000 Well, yes|no")});
    const QJsonArray tracks = lines[QLatin1String("tracks")].toArray();
    ASSERT_EQ(tracks.size(), 2) << "what cannot be used is listed, too";
    EXPECT_EQ(tracks[0][QLatin1String("error")][QLatin1String("code")].toString(),
              QStringLiteral("unknownFormat"));
}

TEST_F(LinesTest, AFileInAnotherEncodingIsReadAndOneOfPicturesIsNamed) {
    EXPECT_EQ(read(QStringLiteral("srt"), srt("D\xE9j\xE0 vu, mon gar\xE7on")).value(0),
              QStringLiteral("1000-2500 Déjà vu, mon garçon"));
    EXPECT_EQ(read(QStringLiteral("sub"), QByteArray("\0\0\x01\xBA", 4) + QByteArray(9'000'000, '\x42')),
              QStringList{QStringLiteral("pictureSubtitle")});
    for (const QByteArray &bytes : {QByteArray(), QByteArray(3000, '\0'), QByteArray("\xff\xfe")})
        EXPECT_EQ(read(QStringLiteral("srt"), bytes).size(), 1);
    EXPECT_EQ(read(QStringLiteral("srt"), "1\n00:00:01,000 --> 00:00:02,000\n\n"),
              QStringList{QStringLiteral("noCues")});
}

TEST_F(LinesTest, LinesCountedInFramesTakeTheFilmsOwnRate) {
    writeFile(QStringLiteral("Real.en.sub"), "{30}{60}one\n{90}{120}two\n{150}{180}three\n");
    EXPECT_EQ(texts(linesOf(makeFilm(QStringLiteral("Real.mkv")))[QLatin1String("learned")]),
              (QStringList{QStringLiteral("1000-2000 one"), QStringLiteral("3000-4000 two"),
                           QStringLiteral("5000-6000 three")}));
}

TEST_F(LinesTest, SoundTracksAreListedAsTheFilmTellsThem) {
    const Reply lookup = lookUp(makeFilm(QStringLiteral("Real.mkv")));
    const QString path = QStringLiteral("Api/MovieFile/AudioTracks?videoId=%1")
                             .arg(lookup.json().value(QLatin1String("videoId")).toInt());
    const QJsonArray tracks = get(path).json()[QLatin1String("audioTracks")].toArray();
    ASSERT_EQ(tracks.size(), 2);
    EXPECT_EQ(tracks[0][QLatin1String("language")].toString(), QStringLiteral("eng"));
    EXPECT_EQ(tracks[1][QLatin1String("language")].toString(), QStringLiteral("fra"));
    EXPECT_EQ(tracks[1][QLatin1String("title")].toString(), QStringLiteral("Second"));
    EXPECT_EQ(tracks[0][QLatin1String("trackId")].toInt(), 1) << "the picture is track 0";
    EXPECT_EQ(tracks[1][QLatin1String("trackId")].toInt(), 2);
}

TEST_F(LinesTest, AFilmThatIsNoneHasNoSoundTracks) {
    const Reply lookup = lookUp(film());
    const QJsonObject reply = get(QStringLiteral("Api/MovieFile/AudioTracks?videoId=%1")
                                      .arg(lookup.json().value(QLatin1String("videoId")).toInt()))
                                  .json();
    EXPECT_FALSE(reply[QLatin1String("filmRead")].toBool(true));
    EXPECT_TRUE(reply[QLatin1String("audioTracks")].toArray().isEmpty());
}

TEST_F(LinesTest, ALanguageThatANameMayNotMeanGivesWayToTheText) {
    writeFile(QStringLiteral("The.Danish.Girl.2015.mkv"), "film");
    QByteArray english;
    for (const char *text : {"Where have you been all this time?", "I was waiting for you at the station.",
                             "The train was late again, and it rained."})
        english += srt(text);
    writeFile(QStringLiteral("the danish.srt"), english);
    const QJsonObject lines = linesOf(films.filePath(QStringLiteral("The.Danish.Girl.2015.mkv")));
    EXPECT_EQ(lines[QLatin1String("learned")][QLatin1String("language")].toString(), QStringLiteral("eng"));
}

TEST_F(LinesTest, TheLearnersWordForALanguageGoesBeforeNameAndText) {
    (void)put(QStringLiteral("Api/Settings"), {{QStringLiteral("nativeLanguage"), QStringLiteral("fra")}});
    writeFile(QStringLiteral("Film.nl.srt"), srt("Where have you been all the morning?"));
    writeFile(QStringLiteral("Film.fr.srt"), srt("Bonjour"));
    const QJsonObject lines = linesOf(film());
    ASSERT_TRUE(lines[QLatin1String("learned")].isNull()) << "its name says Dutch";
    const QJsonArray tracks = lines[QLatin1String("tracks")].toArray();
    const auto isDutch = [](const QJsonValue &track) {
        return track[QLatin1String("language")].toString() == QLatin1String("nld");
    };
    const auto dutch = std::find_if(tracks.begin(), tracks.end(), isDutch);
    ASSERT_NE(dutch, tracks.end());
    const QString language = QStringLiteral("Api/Subtitles/Language?subtitleId=%1")
                                 .arg((*dutch)[QLatin1String("subtitleId")].toInt());
    EXPECT_EQ(put(language, {{QStringLiteral("language"), QStringLiteral("eng")}}).status, 200);
    EXPECT_EQ(fileOf(linesOf(film()), "learned"), QStringLiteral("Film.nl.srt"))
        << "also when it is looked up again";
    EXPECT_EQ(get(language).json()[QLatin1String("found")].toString(), QStringLiteral("nld"));
    (void)put(language, {{QStringLiteral("language"), QString()}});
    EXPECT_TRUE(linesOf(film())[QLatin1String("learned")].isNull());
}

TEST_F(LinesTest, AnAddedFileCanBeTakenOutAndComesBackAsItWas) {
    writeFile(QStringLiteral("Film.en.srt"), srt("Beside it"));
    const QString film = LinesTest::film();
    const int videoId = lookUp(film, 0, 0).json()[QLatin1String("videoId")].toInt();
    const auto add = [&] {
        const Reply reply =
            post(QStringLiteral("Api/MovieFile/AddSubtitle?fileName=own.en.srt&videoId=%1").arg(videoId),
                 srt("My own elephant"), "text/plain");
        return reply.json()[QLatin1String("subtitleId")].toInt();
    };
    const int own = add();
    const auto subtitle = [](const char *route, int id) {
        return QStringLiteral("Api/Subtitles/%1?subtitleId=%2").arg(QLatin1String(route)).arg(id);
    };
    (void)put(QStringLiteral("Api/MovieFile/Choice?videoId=%1").arg(videoId),
              {{QStringLiteral("learned"), own}});
    (void)put(subtitle("Timing", own), {{QStringLiteral("offsetMs"), 500},
                                        {QStringLiteral("rateNumerator"), 1},
                                        {QStringLiteral("rateDenominator"), 1}});
    const QJsonObject before = linesOf(film);
    ASSERT_EQ(fileOf(before, "learned"), QStringLiteral("own.en.srt"));
    EXPECT_EQ(post(subtitle("Removed", own), "", "text/plain").status, 200);
    const QJsonObject without = linesOf(film);
    EXPECT_EQ(fileOf(without, "learned"), QStringLiteral("Film.en.srt")) << "what is there stands in for it";
    EXPECT_EQ(without[QLatin1String("tracks")].toArray().size(), 1);
    const int beside = without[QLatin1String("learned")][QLatin1String("subtitleId")].toInt();
    EXPECT_EQ(post(subtitle("Removed", beside), "", "text/plain").status, 409)
        << "what lies in a folder is not the service's to take away";

    EXPECT_EQ(ask("DELETE", subtitle("Removed", own)).status, 200);
    const auto isAsBefore = [&] {
        const QJsonObject now = linesOf(film);
        return now[QLatin1String("learned")] == before[QLatin1String("learned")];
    };
    EXPECT_TRUE(isAsBefore());
    (void)post(subtitle("Removed", own), "", "text/plain");
    EXPECT_EQ(add(), own);
    EXPECT_TRUE(isAsBefore()) << "added again, it is the same";
}

TEST_F(LinesTest, AnotherContentForgetsWhatWasChosenForTheOneBefore) {
    writeFile(QStringLiteral("Film.fr.srt"), srt("D\xe9j\xe0 vu, gar\xe7on"));
    const QString film = LinesTest::film();
    const auto native = [&] { return linesOf(film)[QLatin1String("native")].toObject(); };
    const QString query = QStringLiteral("?subtitleId=%1").arg(native()[QLatin1String("subtitleId")].toInt());
    const QString timing = QStringLiteral("Api/Subtitles/Timing") + query;
    const QString encoding = QStringLiteral("Api/Subtitles/Encoding") + query;
    const QJsonArray guesses = get(encoding).json()[QLatin1String("guesses")].toArray();
    ASSERT_GT(guesses.size(), 1);
    (void)put(encoding, {{QStringLiteral("encoding"), guesses[1][QLatin1String("encoding")]}});
    (void)put(timing, {{QStringLiteral("offsetMs"), -30'000},
                       {QStringLiteral("rateNumerator"), 1},
                       {QStringLiteral("rateDenominator"), 1}});
    EXPECT_EQ(texts(native())[0].section(u' ', 1), guesses[1][QLatin1String("sample")].toString());
    EXPECT_EQ(native()[QLatin1String("timing")][QLatin1String("offsetMs")].toInt(), -30'000);
    (void)put(QStringLiteral("Api/Subtitles/Language") + query,
              {{QStringLiteral("language"), QStringLiteral("eng")}});
    writeFile(QStringLiteral("Film.fr.srt"), srt("Déjà vu, garçon"));
    EXPECT_EQ(texts(native())[0].section(u' ', 1), QStringLiteral("Déjà vu, garçon"));
    EXPECT_EQ(native()[QLatin1String("timing")][QLatin1String("offsetMs")].toInt(-1), 0);
}

TEST_F(LinesTest, FilesThatAreNotReadAreListedWithTheReason) {
    const QTemporaryDir elsewhere;
    QFile outside(elsewhere.filePath(QStringLiteral("secret.srt")));
    ASSERT_TRUE(outside.open(QIODevice::WriteOnly));
    outside.write(srt("Not of this film"));
    outside.close();
    writeFile(QStringLiteral("Film.a.srt"), QByteArray(9'000'000, 'x'));
    ASSERT_TRUE(QFile::link(outside.fileName(), films.filePath(QStringLiteral("Film.b.srt"))));
    // A pipe is no file.
    ASSERT_EQ(::mkfifo(films.filePath(QStringLiteral("Film.c.srt")).toUtf8().constData(), 0600), 0);
    writeFile(QStringLiteral("Film.d.sup"), QByteArray("PG\0\1\x5f\x90\0\0\0\0\x16\0\0", 13));
    writeFile(QStringLiteral("Film.e.idx"), "# VobSub index file, v7\n");
    writeFile(QStringLiteral("Film.e.sub"), QByteArray("\0\0\x01\xBA", 4));
    QStringList told;
    for (const QJsonValue track : linesOf(film())[QLatin1String("tracks")].toArray())
        told.append(track[QLatin1String("fileName")].toString() + u' ' +
                    track[QLatin1String("error")][QLatin1String("code")].toString());
    told.sort();
    EXPECT_EQ(told, QString::fromLatin1("Film.a.srt tooLarge|Film.b.srt liesElsewhere|"
                                        "Film.d.sup pictureSubtitle|Film.e.sub pictureSubtitle")
                        .split(u'|'));
}

} // namespace

} // namespace murvo::service::test
