// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/ServiceFixture.h"

#include <QJsonArray>

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
        const QJsonArray unusable = lines[QLatin1String("unusable")].toArray();
        return unusable.isEmpty()
                   ? texts(lines[QLatin1String("learned")])
                   : QStringList{unusable[0][QLatin1String("error")][QLatin1String("code")].toString()};
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
    const QJsonArray unusable = lines[QLatin1String("unusable")].toArray();
    ASSERT_EQ(unusable.size(), 1);
    EXPECT_EQ(unusable[0][QLatin1String("error")][QLatin1String("code")].toString(),
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

} // namespace

} // namespace murvo::service::test
