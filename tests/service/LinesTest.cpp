// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/ServiceFixture.h"

#include <QJsonArray>
#include <QStringEncoder>

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

TEST_F(LinesTest, MarkupIsTakenOffAndTextIsLeftAlone) {
    EXPECT_EQ(read(QStringLiteral("srt"),
                   "1\n00:00:01,000 --> 00:00:02,000\n{\\an8}<i>He said</i> <font color=\"#f00\">1 < "
                   "2</font> &amp; 3\n"
                   "{literal} C:\\new \x01\x7f\n\n2\n00:00:03,000 --> 00:00:02,000\n<b></b>\nEnd first\n"),
              (QStringList{QStringLiteral("1000-2000 He said 1 < 2 & 3|{literal} C:\\new"),
                           QStringLiteral("3000-6000 End first")}));
    EXPECT_EQ(read(QStringLiteral("vtt"),
                   "WEBVTT - title\n\nSTYLE\n::cue { color: red }\n\nNOTE a remark\n\nbad\n00:01 -> "
                   "00:02\nlost\n\nid 1\n"
                   "00:01.000 --> 00:02.000 align:start\n<v Roger>Hi <c.x>there</c>&nbsp;you &lt;3\n\n"
                   "00:00:03,000 --> 00:00:04,000\nComma\n"),
              (QStringList{QStringLiteral("1000-2000 Hi there you <3"), QStringLiteral("3000-4000 Comma")}));
    EXPECT_EQ(read(QStringLiteral("ass"),
                   "[Script Info]\nScriptType: v4.00+\n[Events]\nFormat: Layer, Start, End, Style, Text\n"
                   "Dialogue: 0,0:00:01.00,0:00:02.00,Default,a, b\\hc \\{d\\}\n"
                   "Comment: 0,0:00:02.00,0:00:03.00,Default,not shown\n"
                   "Dialogue: 0,0:00:04.00,0:00:05.00,Default,{\\p1}m 0 0 l 9 9{\\p0}drawn\n"),
              (QStringList{QStringLiteral("1000-2000 a, b c {d}"), QStringLiteral("4000-5000 drawn")}));
    EXPECT_EQ(
        read(QStringLiteral("sub"), "{1}{1}25\n{25}{50}{y:i}one|/two\n{75}{100}three\n{125}{150}four\n"),
        (QStringList{QStringLiteral("1000-2000 one|two"), QStringLiteral("3000-4000 three"),
                     QStringLiteral("5000-6000 four")}));
}

TEST_F(LinesTest, EveryEncodingIsRead) {
    const QString text = QStringLiteral("Où êtes-vous, mon garçon ? Là-bas, à l'hôtel, près du théâtre.");
    QString file;
    for (int i = 0; i < 20; ++i)
        file += QStringLiteral("%1\r\n00:00:%2,000 --> 00:00:%2,900\r\n%3\r\n\r\n")
                    .arg(i + 1)
                    .arg(i + 10)
                    .arg(text);
    using Encoding = QStringConverter::Encoding;
    const auto encoded = [&file](Encoding encoding, bool mark) {
        QStringEncoder encoder(encoding,
                               mark ? QStringConverter::Flag::WriteBom : QStringConverter::Flag::Default);
        return QByteArray(encoder.encode(file));
    };
    const QByteArray utf8 = file.toUtf8();
    for (const QByteArray &bytes :
         {utf8, "\xEF\xBB\xBF" + utf8, encoded(Encoding::Utf16LE, true), encoded(Encoding::Utf16BE, true),
          encoded(Encoding::Utf16LE, false), encoded(Encoding::Utf16BE, false),
          encoded(Encoding::Utf32LE, true), file.toLatin1()}) {
        const QStringList lines = read(QStringLiteral("srt"), bytes);
        ASSERT_EQ(lines.size(), 20);
        EXPECT_EQ(lines[3], QStringLiteral("13000-13900 ") + text);
    }
    const QStringList damaged = read(QStringLiteral("srt"), QByteArray(utf8).replace(60, 1, "\xff\0", 2));
    EXPECT_EQ(damaged.size(), 20);
}

TEST_F(LinesTest, DamagedFilesAreRefusedWithAWordOrReadAsFarAsTheyGo) {
    EXPECT_EQ(read(QStringLiteral("sub"), QByteArray("\0\0\x01\xBA", 4) + QByteArray(9'000'000, '\x42')),
              QStringList{QStringLiteral("pictureSubtitle")});
    for (const QByteArray &bytes : {QByteArray(), QByteArray(3000, '\0'), QByteArray("\xff\xfe")})
        EXPECT_EQ(read(QStringLiteral("srt"), bytes).size(), 1);
    EXPECT_EQ(read(QStringLiteral("srt"), "1\n00:00:01,000 --> 00:00:02,000\n\n"),
              QStringList{QStringLiteral("noCues")});
    const QByteArray whole = srt("Hello");
    for (qsizetype length = 0; length < whole.size(); length += 7)
        EXPECT_LE(read(QStringLiteral("srt"), whole.left(length)).size(), 2);
    EXPECT_EQ(read(QStringLiteral("srt"), "junk\n00:00:01,000-->99:59:59,999\nLong\n"),
              QStringList{QStringLiteral("1000-61000 Long")});
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
