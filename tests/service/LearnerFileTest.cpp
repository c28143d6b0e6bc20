// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/NoMoreRoom.h"
#include "service/ServiceFixture.h"
#include "service/Store/Database.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QScopeGuard>
#include <QSet>

#include <ctime>
#include <tuple>

using namespace Qt::Literals::StringLiterals;

namespace murvo::service::test {

namespace {

class LearnerFileTest : public ServiceFixture {
  protected:
    void mark(const QString &lemma) {
        const QJsonObject body{{u"lemma"_s, lemma}, {u"status"_s, u"known"_s}};
        EXPECT_EQ(put(u"Api/Words/Word"_s, body).status, 200);
    }
    [[nodiscard]] QString words() {
        QStringList lemmas;
        for (const QJsonValue each : get(u"Api/Words?order=alphabet"_s).json()["words"_L1].toArray())
            lemmas.append(each["lemma"_L1].toString());
        return lemmas.join(u' ');
    }
    [[nodiscard]] Reply save() { return get(route); }
    [[nodiscard]] Reply bring(const QByteArray &file) { return post(route, file, "application/vnd.sqlite3"); }
    [[nodiscard]] QByteArray contentOf(const QString &name) const {
        QFile file(films.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }
    /// A store that a program with these steps would have made, and what else is done to it.
    [[nodiscard]] QByteArray made(const QList<Database::SchemaStep> &steps, const char *more) const {
        const QString name = u"made.sqlite"_s;
        QFile::remove(films.filePath(name));
        {
            Database database(films.filePath(name), steps);
            database.run([more](SQLite::Database &connection) {
                connection.exec("PRAGMA journal_mode = DELETE");
                connection.exec(more);
            });
        }
        return contentOf(name);
    }
    [[nodiscard]] QByteArray madeInUtf16(QList<Database::SchemaStep> steps) const {
        steps.first().sql.prepend(u"PRAGMA encoding = 'UTF-16le';"_s);
        return made(steps, "");
    }
    [[nodiscard]] QStringList leftInFolder() const {
        return QDir(dataFolder.path()).entryList({u"murvo-*"_s}, QDir::Files, QDir::Name);
    }

    const QString route = u"Api/Learner/File"_s;
};

TEST_F(LearnerFileTest, AllOfTheLearnerComesBackOnAnotherComputer) {
    writeFile(u"Film.en.srt"_s, srt("Hello there"));
    fetchAndUpload(lookUp(writeFile(u"Film.mkv"_s, "x")));
    (void)put(u"Api/Settings"_s, {{u"nativeLanguage"_s, u"deu"_s}, {u"volumePercent"_s, 70}});
    mark(u"hello"_s);
    const Reply saved = save();
    ASSERT_EQ(saved.status, 200);
    EXPECT_TRUE(saved.body.startsWith("SQLite format 3"));
    mark(u"later"_s);

    const Reply taken = bring(saved.body);
    ASSERT_EQ(taken.status, 200) << taken.body.toStdString();
    EXPECT_EQ(words(), u"hello"_s);
    EXPECT_EQ(get(u"Api/Settings"_s).json()["volumePercent"_L1], 70);
    EXPECT_EQ(get(u"Api/MovieFile/Lines?videoId=1"_s).json()["learned"_L1]["cues"_L1].toArray().size(), 2);
    const QString backup = taken.json()["backupFileName"_L1].toString();
    EXPECT_THAT(leftInFolder(), testing::ElementsAre(backup)) << "and no temporary files";
    Database before(dataFolder.filePath(backup), Database::builtInSteps());
    EXPECT_EQ(before.run([](SQLite::Database &connection) {
        return connection.execAndGet("SELECT count(*) FROM words").getInt();
    }),
              2)
        << "the store as it was";
    mark(u"again"_s);
    restart();
    EXPECT_EQ(words(), u"again hello"_s);
}

TEST_F(LearnerFileTest, AFileOfAnyEarlierVersionIsBroughtToTheNewest) {
    const auto steps = Database::builtInSteps();
    for (qsizetype earlier = 1; earlier <= steps.size(); ++earlier) {
        const Reply taken =
            bring(made(steps.first(earlier), "INSERT INTO settings VALUES ('volumePercent', '33')"));
        ASSERT_EQ(taken.status, 200) << earlier << taken.body.toStdString();
        EXPECT_EQ(get(u"Api/Settings"_s).json()["volumePercent"_L1], 33);
        mark(u"word"_s);
        EXPECT_EQ(words(), u"word"_s);
    }
    EXPECT_EQ(bring(made(steps, "PRAGMA page_size = 1024; VACUUM")).status, 200) << "pages of another size";
    const QString first = leftInFolder().first();
    for (int i = 0; i < 12; ++i)
        EXPECT_EQ(bring(made(steps, "")).status, 200);
    EXPECT_EQ(leftInFolder().size(), 11) << "the newest ten backups";
    EXPECT_EQ(leftInFolder().first(), first) << "and what was there before all of them";
}

TEST_F(LearnerFileTest, WhatIsOddWithinAGoodFileDoesNoHarm) {
    (void)put(u"Api/Settings"_s, {{u"ankiConnectPort"_s, 8123}});
    writeFile(u"Film.en.srt"_s, srt("Hello there"));
    fetchAndUpload(lookUp(writeFile(u"Film.mkv"_s, "x")));
    (void)get(u"Api/MovieFile/Words?videoId=1"_s); // has the lines made
    const QByteArray good = save().body;
    const auto changed = [&](const char *how) {
        const QString name = writeFile(u"changed.sqlite"_s, good);
        SQLite::Database(name.toStdString(), SQLite::OPEN_READWRITE).exec(how);
        return bring(contentOf(u"changed.sqlite"_s)).status;
    };
    const auto found = [this] { return get(u"Api/Lines/Search?text=hello"_s).json()["lines"_L1].toArray(); };
    EXPECT_EQ(changed("INSERT OR REPLACE INTO timings VALUES (1, 5, 0, 0, NULL, NULL)"), 200);
    EXPECT_EQ(found().size(), 1) << "a film's times are not divided by nothing";
    EXPECT_EQ(changed("UPDATE line_texts_data SET block = x'ffffffffffffffffffffffff'"), 200);
    EXPECT_EQ(found().size(), 1) << "the index is made anew";
    EXPECT_EQ(changed("INSERT OR REPLACE INTO settings VALUES ('sendsToAnki', '1'), ('ankiConnectPort', "
                      "'99999999'), ('nativeLanguage', 'x'), ('volumePercent', 'loud')"),
              200);
    const QJsonObject settings = get(u"Api/Settings"_s).json();
    EXPECT_EQ(settings["sendsToAnki"_L1], false) << "where words are sent is this computer's business";
    EXPECT_EQ(settings["ankiConnectPort"_L1], 8123);
    EXPECT_EQ(settings["volumePercent"_L1], 100);
    EXPECT_EQ(settings["nativeLanguage"_L1].toString().size(), 3);

    const auto spoilOnDisk = [this](const char *index) {
        SQLite::Database(dataFolder.filePath(u"murvo.sqlite"_s).toStdString(), SQLite::OPEN_READWRITE, 5000)
            .exec(std::string("UPDATE line_texts_data SET block = ") + index + " WHERE id = 10");
        restart();
    };
    int count = 1;
    for (const char *spoilt : {"x'ffffffffffffffffffffffff'",      // more levels than an index has
                               "x'000000000101000087ffffff7f'"}) { // two thousand million segments
        spoilOnDisk(spoilt);
        EXPECT_EQ(found().size(), count) << "also when the disk has spoilt it: " << spoilt;
        spoilOnDisk(spoilt);
        ++count;
        writeFile(u"Film %1.en.srt"_s.arg(count), srt("Hello again"));
        const Reply film =
            lookUp(writeFile(u"Film %1.mkv"_s.arg(count), QByteArray::number(count)), quint64(count));
        fetchAndUpload(film);
        EXPECT_EQ(get(u"Api/MovieFile/Words?videoId=%1"_s.arg(film.json()["videoId"_L1].toInt())).status,
                  200);
        EXPECT_EQ(found().size(), count) << "and the next film is taken into it";
    }
}

TEST_F(LearnerFileTest, AFullDiskLeavesTheStoreAndItsBackupsAsTheyWere) {
    mark(u"mine"_s);
    const QByteArray large = made(Database::builtInSteps(), "INSERT INTO settings VALUES ('x', "
                                                            "hex(randomblob(200000)))");
    int refused = 0;
    for (qint64 room = 4096; room < 4 * large.size(); room += large.size() / 5) {
        Reply reply;
        {
            const NoMoreRoom beyond(room);
            reply = bring(large);
        }
        if (reply.status == 200)
            break;
        ++refused;
        EXPECT_EQ(reply.errorCode(), u"diskFull"_s) << room << reply.body.toStdString();
        EXPECT_EQ(words(), u"mine"_s) << room;
        EXPECT_TRUE(leftInFolder().isEmpty()) << room;
    }
    EXPECT_GT(refused, 2);
    EXPECT_EQ(bring(large).status, 200);
    EXPECT_EQ(words(), QString());
}

TEST_F(LearnerFileTest, ABadFileChangesNothingAndIsToldWhy) {
    mark(u"mine"_s);
    const auto steps = Database::builtInSteps();
    const QByteArray good = save().body;
    const auto refused = [this](const QByteArray &file) {
        const Reply reply = bring(file);
        EXPECT_EQ(reply.status, 422);
        return reply.errorCode();
    };
    EXPECT_EQ(refused({}), u"notLearnerFile"_s);
    EXPECT_EQ(refused("my words"), u"notLearnerFile"_s);
    EXPECT_EQ(refused(QByteArray(100'000, '\0')), u"notLearnerFile"_s);
    EXPECT_EQ(refused(made({{1, u"CREATE TABLE notes (id INTEGER);"_s}}, "")), u"notLearnerFile"_s);
    EXPECT_EQ(refused(made(steps, "PRAGMA user_version = 999")), u"newerFile"_s);
    EXPECT_EQ(refused(madeInUtf16(steps)), u"notLearnerFile"_s);
    EXPECT_EQ(refused(made(steps, "CREATE TRIGGER evil AFTER INSERT ON words BEGIN DELETE FROM words; END")),
              u"notLearnerFile"_s);
    EXPECT_EQ(
        refused(made(steps, "PRAGMA foreign_keys = OFF; INSERT INTO choices VALUES (77, 'native', NULL)")),
        u"damagedFile"_s);
    EXPECT_EQ(refused(good.left(good.size() / 2)), u"damagedFile"_s);
    // Every page in turn is overwritten: taken or refused, the store stays whole.
    int damaged = 0;
    for (qsizetype at = 4096; at < good.size(); at += 4096) {
        QByteArray broken = good;
        broken.replace(at, 2000, QByteArray(2000, '\x5a'));
        const Reply reply = bring(broken);
        damaged += reply.errorCode() == "damagedFile"_L1 ? 1 : 0;
        EXPECT_NE(reply.status, 500) << at;
        EXPECT_EQ(words(), u"mine"_s) << at;
    }
    EXPECT_GT(damaged, 5);
}

TEST_F(LearnerFileTest, ASavedFileIsFoundWherePeopleKeepThemAndBroughtBack) {
    const QTemporaryDir home;
    const QByteArray homeBefore = qgetenv("HOME");
    const auto homeGoesBack = qScopeGuard([&homeBefore] { qputenv("HOME", homeBefore); });
    qputenv("HOME", home.path().toUtf8());
    const auto put = [&home](const QString &name, const QByteArray &content) {
        QFile file(home.filePath(name));
        EXPECT_TRUE(QDir(home.path()).mkpath(QFileInfo(file).path()) && file.open(QIODevice::WriteOnly));
        file.write(content);
    };
    mark(u"mine"_s);
    const QString dated = u"murvo-2026-11-23.sqlite"_s;
    const QByteArray saved = save().body;
    put(u"Downloads/"_s + dated, saved);
    put(u"My English, old.sqlite"_s, saved.left(saved.size() / 2));
    put(u"Downloads/murvo-notes.sqlite"_s, "my own notes");
    put(u"other.sqlite"_s, made({{1, u"CREATE TABLE notes (id INTEGER);"_s}}, ""));
    // Copied by hand, of a program that has known the learner since its first version.
    QList<Database::SchemaStep> steps = Database::builtInSteps();
    steps.first().sql += u"INSERT INTO films VALUES (1, 'a', 'b', hex(zeroblob(100000)));\n"_s;
    const QByteArray copied = made(steps, "");
    ASSERT_FALSE(copied.first(65'536).contains("CREATE TABLE films"));
    put(u"murvo.sqlite"_s, copied);
    const QTemporaryDir elsewhere;
    ASSERT_TRUE(QFile::copy(home.filePath(u"Downloads/"_s + dated), elsewhere.filePath(u"a"_s)));
    ASSERT_TRUE(QFile::link(elsewhere.filePath(u"a"_s), home.filePath(u"murvo-link.sqlite"_s)));
    mark(u"later"_s);

    const QString list = u"Api/Learner/Saved"_s;
    const auto files = [&] {
        QHash<QString, QJsonObject> byName;
        for (const QJsonValue each : get(list).json()["files"_L1].toArray())
            byName.insert(each["fileName"_L1].toString(), each.toObject());
        return byName;
    };
    const auto bringBack = [&](const QString &name) {
        return post(list, QJsonDocument(QJsonObject{{u"id"_s, files()[name]["id"_L1]}}).toJson(),
                    "application/json");
    };
    EXPECT_EQ(QSet<QString>(files().keyBegin(), files().keyEnd()),
              (QSet<QString>{dated, u"My English, old.sqlite"_s, u"murvo.sqlite"_s}));
    const QJsonObject found = files()[dated];
    EXPECT_EQ(found["folderName"_L1], "Downloads"_L1);
    EXPECT_EQ(found["bytes"_L1].toInt(), saved.size());
    EXPECT_EQ(found["isBackup"_L1], false);

    EXPECT_EQ(bringBack(u"My English, old.sqlite"_s).errorCode(), u"damagedFile"_s);
    EXPECT_EQ(bringBack(u"other.sqlite"_s).errorCode(), u"fileMoved"_s);
    EXPECT_EQ(words(), u"later mine"_s);
    const Reply taken = bringBack(dated);
    ASSERT_EQ(taken.status, 200) << taken.body.toStdString();
    EXPECT_EQ(words(), u"mine"_s);
    QFile file(home.filePath(u"Downloads/"_s + dated));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), saved) << "the file itself stays as it is";

    const QString backup = taken.json()["backupFileName"_L1].toString();
    EXPECT_EQ(files()[dated]["isBackup"_L1], false);
    EXPECT_EQ(files()[backup]["isBackup"_L1], true);
    EXPECT_EQ(bringBack(backup).status, 200);
    EXPECT_EQ(words(), u"later mine"_s) << "and all of it is taken back";
}

TEST_F(LearnerFileTest, ASavedFileIsNamedAfterTheDayHere) {
    const QByteArray zoneBefore = qgetenv("TZ");
    const auto zoneGoesBack = qScopeGuard([&zoneBefore] {
        std::ignore = zoneBefore.isNull() ? qunsetenv("TZ") : qputenv("TZ", zoneBefore);
        tzset();
    });
    for (const int hours : {14, -12}) { // never on the same day
        qputenv("TZ", QByteArray("HERE") + QByteArray::number(-hours));
        tzset();
        const auto name = [hours] {
            const QDateTime there = QDateTime::currentDateTimeUtc().addSecs(hours * 3600);
            return "attachment; filename=\"murvo-" + there.toString(u"yyyy-MM-dd"_s).toStdString() +
                   ".sqlite\"";
        };
        const std::string before = name();
        const std::string given = save().header("Content-Disposition");
        EXPECT_THAT(given, testing::AnyOf(before, name())) << "the day may end meanwhile";
    }
}

TEST_F(LearnerFileTest, AFileAboveTheLimitOfOtherBodiesIsTaken) {
    const QByteArray large =
        made(Database::builtInSteps(),
             "INSERT INTO films VALUES (1, 'a', 'b', 'c', '');"
             "INSERT INTO subtitles (film_id, source, place, file_name, language, content) "
             "VALUES (1, 'added', 'x', 'x', '', zeroblob(70000000))");
    ASSERT_GT(large.size(), 64 * 1024 * 1024);
    EXPECT_EQ(bring(large).status, 200);
    EXPECT_EQ(save().body.size(), large.size());
}

} // namespace

} // namespace murvo::service::test
