// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/ServiceFixture.h"
#include "service/Store/Database.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

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
    EXPECT_EQ(leftInFolder().size(), 3) << "the newest backups only";
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
