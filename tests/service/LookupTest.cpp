// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/ServiceFixture.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>

#include <sys/stat.h>

namespace murvo::service::test {

namespace {

class LookupTest : public ServiceFixture {
  protected:
    [[nodiscard]] static QStringList offeredNames(const Reply &lookup, bool toDownload) {
        QStringList names;
        for (const QJsonValue offer : lookup.json().value(QLatin1String("subsToDownload")).toArray()) {
            if (offer[QLatin1String("mustBeDownloaded")].toBool() == toDownload)
                names.append(offer[QLatin1String("subFileName")].toString());
        }
        return names;
    }

    [[nodiscard]] Reply postForm(const QByteArray &body) {
        return post(QStringLiteral("Api/MovieFile/GetSubtitlesToDownload"), body,
                    "application/x-www-form-urlencoded");
    }

    [[nodiscard]] static int videoId(const Reply &lookup) {
        return lookup.json().value(QLatin1String("videoId")).toInt();
    }
};

TEST_F(LookupTest, OffersTheFilmsOwnSubtitleFilesUntilTheyAreStored) {
    const QString film = writeFile(QStringLiteral("Film.mkv"), "film");
    writeFile(QStringLiteral("Film2.mkv"), "another film");
    const QList<const char *> own{
        "Film.srt",      "Film.fre.SRT",   "FILM.English.srt",       "Film.pt-BR.ass",
        "Film.de.sub",   "Film.en.hi.vtt", "Film.fr.forced.srt",     "Film.txt",
        "Film (it).smi", "Film-es.srt",    "Film.directors cut.srt", "Film.nl.ttml"};
    for (const char *name : own)
        writeFile(QString::fromLatin1(name), srt("Hello"));
    for (const char *name : {"Other.srt", "English.srt", "Film2.srt", "xFilm.srt", "Filmed.srt"})
        writeFile(QString::fromLatin1(name), srt("Not of this film"));
    writeFile(QStringLiteral("Film.readme.txt"), "What a film!");

    const Reply first = lookUp(film);
    EXPECT_EQ(first.status, 200);
    EXPECT_GT(videoId(first), 0);
    EXPECT_THAT(offeredNames(first, true).toList(), testing::SizeIs(own.size()));
    EXPECT_EQ(fetchAndUpload(first).json().value(QLatin1String("stored")).toInt(), own.size());

    const Reply second = lookUp(film);
    EXPECT_EQ(videoId(second), videoId(first));
    EXPECT_TRUE(offeredNames(second, true).isEmpty());
    EXPECT_THAT(offeredNames(second, false).toList(), testing::SizeIs(own.size()));
}

TEST_F(LookupTest, FindsSubtitlesWhereverReleasesPutThem) {
    struct Row {
        QStringList files; ///< the first is the film
        QStringList found; ///< with the language that the name tells
    };
    const auto list = [](const char *names) { return QString::fromUtf8(names).split(u'|'); };
    const QList<Row> rows{
        {list("A.mkv|whatever.srt"), list("whatever.srt ")},
        {list("B.mkv|one.srt|two.srt"), {}},
        {list("C.mkv|2_English.srt|3_French.srt|notes.srt"), list("2_English.srt eng|3_French.srt fra")},
        {list("D.mkv|D other.mkv|English.srt"), {}},
        {list("E.mkv|Subs/2_English.srt|SUBS2/x.srt"), list("2_English.srt eng")},
        {list("F.mkv|F2.mkv|subtitles/2_English.srt|subtitles/F.de.srt|Subs/F/4_Spanish.SDH.srt|Subs/F2/"
              "x.srt"),
         list("4_Spanish.SDH.srt spa|F.de.srt deu")},
        {list("Ge\xCC\x81.mkv|Gé.en-US.srt|Gé.2019.BluRay.fr.srt"),
         list("Gé.2019.BluRay.fr.srt fra|Gé.en-US.srt eng")},
        {list("Alien.mkv|Alien 3.srt|Alien.en.srt|sample.mkv"), list("Alien.en.srt eng")},
        {list("It.2017.mkv|It.srt"), list("It.srt ita")}, // until its text tells
        {list("H.mkv|H.es-419.srt|H.hi.srt|H.Chinese (Simplified).srt|H.Brazilian Portuguese.srt"),
         list(
             "H.Brazilian Portuguese.srt por|H.Chinese (Simplified).srt zho|H.es-419.srt spa|H.hi.srt hin")}};
    for (const Row &row : rows) {
        const QString folder = row.files[0].section(u'.', 0, 0) + QStringLiteral(".d/");
        for (const QString &file : row.files) {
            QDir(films.path()).mkpath(QFileInfo(folder + file).path());
            writeFile(folder + file, file.endsWith(QLatin1String("mkv")) ? QByteArray("film") : srt("1"));
        }
        const Reply lookup = lookUp(films.filePath(folder + row.files[0]), 0, 0);
        fetchAndUpload(lookup);
        QStringList found;
        const QString route = QStringLiteral("Api/MovieFile/Lines?videoId=%1").arg(videoId(lookup));
        for (const QJsonValue track : get(route).json()[QLatin1String("tracks")].toArray())
            found.append(track[QLatin1String("fileName")].toString() + u' ' +
                         track[QLatin1String("language")].toString());
        found.sort();
        EXPECT_EQ(found, row.found) << row.files.join(u'|').toStdString();
    }
}

TEST_F(LookupTest, OffersAFileAgainWhenItHasChangedAndKeepsOneThatIsGone) {
    const QString film = writeFile(QStringLiteral("Film.mkv"), "film");
    writeFile(QStringLiteral("Film.en.srt"), srt("Old"));
    const QString french = writeFile(QStringLiteral("Film.fr.srt"), srt("Vieux"));
    fetchAndUpload(lookUp(film));

    writeFile(QStringLiteral("Film.en.srt"), srt("New"));
    QFile::remove(french);
    const Reply changed = lookUp(film);
    EXPECT_EQ(offeredNames(changed, true), QStringList{QStringLiteral("Film.en.srt")});
    EXPECT_EQ(offeredNames(changed, false), QStringList{QStringLiteral("Film.fr.srt")});
}

TEST_F(LookupTest, KnowsFilmsAcrossRestartsAndWithoutTheirFiles) {
    const QString film = writeFile(QStringLiteral("Film.mkv"), "film");
    const QString subtitle = writeFile(QStringLiteral("Film.en.srt"), srt("Hello"));
    const Reply before = lookUp(film);
    fetchAndUpload(before);
    QFile::remove(film);
    QFile::remove(subtitle);
    restart();
    const Reply after = postForm("fileSize=4&movieHash=abc&fileName=(null)");
    EXPECT_EQ(videoId(after), videoId(before));
    EXPECT_EQ(offeredNames(after, false), QStringList{QStringLiteral("Film.en.srt")});
    EXPECT_NE(videoId(postForm("fileSize=5&movieHash=abc&fileName=Film.mkv")), videoId(before));
}

TEST_F(LookupTest, TellsFilmsWithoutAHashApartByTheirPath) {
    const QString one = writeFile(QStringLiteral("One.mkv"), "1");
    const QString two = writeFile(QStringLiteral("Two.mkv"), "2");
    writeFile(QStringLiteral("One.srt"), srt("One"));
    const Reply first = lookUp(one, 0, 0);
    const Reply second = lookUp(two, 0, 0);
    EXPECT_NE(videoId(first), videoId(second));
    EXPECT_THAT(offeredNames(first, true).toList(), testing::SizeIs(1));
    EXPECT_TRUE(offeredNames(second, true).isEmpty());
    // A film by URL that could not be hashed comes without a name and must not get the last file's subtitles.
    EXPECT_NE(videoId(postForm("fileSize=0&movieHash=0&fileName=(null)")), videoId(second));
}

TEST_F(LookupTest, ReadsNamesThatAreNotEscapedAndBodiesThatAreCutShort) {
    const QString name = QStringLiteral("Tom & Jerry=1 \"é\" 映画.mkv");
    const QString film = writeFile(name, "film");
    writeFile(QStringLiteral("Tom & Jerry=1 \"é\" 映画.en.srt"), srt("Hello"));
    const int id = videoId(lookUp(film, 0, 0));

    const QByteArray whole =
        "fileSize=0&movieHash=0&fileName=" + name.toUtf8() + "&targetLanguageCode=eng&nativeLanguageCode=fra";
    const qsizetype nameEnd = whole.indexOf("&targetLanguageCode");
    for (qsizetype length = whole.size(); length >= nameEnd - 5; --length)
        EXPECT_EQ(videoId(postForm(whole.left(length))), id) << "cut to " << length;
    for (const char *bad : {"", "fileSize=1", "movieHash=1&fileSize=1", "fileSize=x&movieHash=1&fileName=a",
                            "fileSize=1&movieHash=zz", "fileSize=99999999999999999999&movieHash=1"})
        EXPECT_EQ(postForm(bad).status, 400) << bad;
}

TEST_F(LookupTest, RefusesWhatIsNoPlainFileInTheFilmsFolder) {
    QTemporaryDir elsewhere;
    QFile secret(elsewhere.filePath(QStringLiteral("secret.srt")));
    ASSERT_TRUE(secret.open(QIODevice::WriteOnly));
    secret.write(srt("Secret"));
    secret.close();
    const QString film = writeFile(QStringLiteral("Film.mkv"), "film");
    ASSERT_TRUE(QFile::link(secret.fileName(), films.filePath(QStringLiteral("Film.en.srt"))));
    ASSERT_TRUE(QDir(films.path()).mkdir(QStringLiteral("Film.de.srt")));
    ASSERT_EQ(::mkfifo(films.filePath(QStringLiteral("Film.es.srt")).toLocal8Bit().constData(), 0600), 0);
    writeFile(QStringLiteral("Film.it.srt"), QByteArray(9 * 1024 * 1024, 'x'));
    writeFile(QStringLiteral("inside.txt"), srt("Inside"));
    ASSERT_TRUE(QFile::link(films.filePath(QStringLiteral("inside.txt")),
                            films.filePath(QStringLiteral("Film.fr.srt"))));
    EXPECT_EQ(offeredNames(lookUp(film), true), QStringList{QStringLiteral("Film.fr.srt")});
}

TEST_F(LookupTest, AFileReplacedByALinkAfterTheLookupIsNotHandedOut) {
    const QString film = writeFile(QStringLiteral("Film.mkv"), "film");
    const QString subtitle = writeFile(QStringLiteral("Film.en.srt"), srt("Hello"));
    const Reply lookup = lookUp(film);
    QFile::remove(subtitle);
    ASSERT_TRUE(QFile::link(QStringLiteral("/etc/passwd"), subtitle));
    const QJsonArray offers = lookup.json().value(QLatin1String("subsToDownload")).toArray();
    ASSERT_EQ(offers.size(), 1);
    const QString url = offers[0][QLatin1String("downloadUrl")].toString();
    const Reply file = download(url);
    EXPECT_EQ(file.status, 404);
    EXPECT_EQ(file.errorCode(), QStringLiteral("fileGone"));
}

} // namespace

} // namespace murvo::service::test
