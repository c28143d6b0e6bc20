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
    for (const char *name : {"Film.srt", "Film.fre.SRT", "Film.English.srt", "Film.pt-BR.ass", "Film.de.sub",
                             "Film.en.hi.vtt", "Film.fr.forced.srt"})
        writeFile(QString::fromLatin1(name), srt("Hello"));
    for (const char *name : {"Other.srt", "Film.txt", "Film2.srt", "Film.directors cut.srt", "xFilm.srt"})
        writeFile(QString::fromLatin1(name), srt("Not of this film"));

    const Reply first = lookUp(film);
    EXPECT_EQ(first.status, 200);
    EXPECT_GT(videoId(first), 0);
    EXPECT_THAT(offeredNames(first, true).toList(), testing::SizeIs(7));
    EXPECT_EQ(fetchAndUpload(first).json().value(QLatin1String("stored")).toInt(), 7);

    const Reply second = lookUp(film);
    EXPECT_EQ(videoId(second), videoId(first));
    EXPECT_TRUE(offeredNames(second, true).isEmpty());
    EXPECT_THAT(offeredNames(second, false).toList(), testing::SizeIs(7));
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
    const Reply after = postForm("fileSize=1000&movieHash=abc&fileName=(null)");
    EXPECT_EQ(videoId(after), videoId(before));
    EXPECT_EQ(offeredNames(after, false), QStringList{QStringLiteral("Film.en.srt")});
    EXPECT_NE(videoId(postForm("fileSize=1001&movieHash=abc&fileName=Film.mkv")), videoId(before));
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
