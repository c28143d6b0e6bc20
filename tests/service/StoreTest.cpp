// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/ServiceFixture.h"
#include "service/Store/Database.h"
#include "service/Store/SubtitleTable.h"
#include "service/Vocabulary/ReviewPlan.h"

#include <QJsonArray>
#include <QTemporaryDir>

#include <csignal>

#include <sys/wait.h>
#include <unistd.h>

namespace murvo::service::test {

namespace {

class StoreTest : public testing::Test {
  protected:
    [[nodiscard]] int number(const char *query) const {
        SQLite::Database connection(path.toStdString());
        return connection.execAndGet(query).getInt();
    }

    QTemporaryDir folder;
    QString path = folder.filePath(QStringLiteral("store.sqlite"));
};

TEST_F(StoreTest, EveryEarlierSchemaIsBroughtToTheNewestWithItsRows) {
    const auto steps = Database::builtInSteps();
    ASSERT_FALSE(steps.isEmpty());
    for (qsizetype earlier = 1; earlier <= steps.size(); ++earlier) {
        const QString file = folder.filePath(QStringLiteral("from%1.sqlite").arg(earlier));
        {
            Database old(file, steps.first(earlier));
            old.transact([](SQLite::Database &connection) {
                connection.exec("INSERT INTO films (identity, name, path) VALUES ('hash:1:1', 'Film', '')");
            });
        }
        Database current(file, steps);
        EXPECT_EQ(current.run([](SQLite::Database &connection) {
            return connection.execAndGet("SELECT name FROM films").getString();
        }),
                  "Film");
    }
}

TEST_F(StoreTest, SubtitlesOfTheFirstSchemaKeepTheirNumbersAndContents) {
    const auto steps = Database::builtInSteps();
    {
        Database old(path, steps.first(1));
        old.transact([](SQLite::Database &connection) {
            connection.exec("INSERT INTO films (identity, name, path) VALUES ('hash:1:1', 'Film', '')");
            connection.exec("INSERT INTO subtitles (id, film_id, file_name, language, forced, content, "
                            "content_sha256) VALUES (41, 1, 'Film.en.srt', 'eng', 1, x'0A0B', x'77')");
        });
    }
    Database current(path, steps);
    SubtitleTable subtitles(current);
    const QList<Subtitle> kept = subtitles.ofFilm(1);
    ASSERT_EQ(kept.size(), 1);
    EXPECT_EQ(kept[0].id, 41);
    EXPECT_EQ(kept[0].source, SubtitleSource::Beside);
    EXPECT_EQ(kept[0].place, QStringLiteral("Film.en.srt"));
    EXPECT_TRUE(kept[0].forced && kept[0].stored() && kept[0].cueCount == -1) << "not looked at yet";
    EXPECT_EQ(subtitles.content(41), QByteArray("\x0A\x0B"));
    Subtitle added = kept[0];
    added.place = QStringLiteral("New");
    EXPECT_GT(subtitles.findOrAdd(1, {kept[0], added}).value(1).id, 41);
}

TEST_F(StoreTest, WordsThatWereMarkedBeforeReviewsAreGivenATime) {
    const auto steps = Database::builtInSteps();
    {
        Database old(path, steps.first(4));
        old.transact([](SQLite::Database &connection) {
            for (const char *status :
                 {"new", "learning1", "learning2", "learning3", "learning4", "known", "ignored"})
                connection.exec(std::string("INSERT INTO words VALUES ('") + status + "', '" + status +
                                "', '" + status + "', 1, 1000)");
        });
    }
    Database current(path, steps);
    for (size_t i = 0; i < wordStatusNames.size(); ++i) {
        const auto interval = reviewInterval(static_cast<WordStatus>(i));
        const std::string query = "SELECT IFNULL(due_ms, -1) FROM words WHERE lemma = '" +
                                  wordStatusNames[i].toString().toStdString() + "'";
        EXPECT_EQ(current.run([&query](SQLite::Database &connection) {
            return connection.execAndGet(query).getInt64();
        }),
                  interval ? 1000 + interval->count() : -1)
            << query;
    }
}

TEST_F(StoreTest, AStepThatFailsLeavesTheFileAsItWas) {
    auto steps = Database::builtInSteps();
    { Database first(path, steps); }
    const int before = number("PRAGMA user_version");
    steps.append({before + 1, QStringLiteral("CREATE TABLE extra (id INTEGER);")});
    steps.append(
        {before + 2, QStringLiteral("CREATE TABLE again (id INTEGER); INSERT INTO nowhere VALUES (1);")});
    EXPECT_THROW(Database(path, steps), std::exception);
    EXPECT_EQ(number("PRAGMA user_version"), before);
    EXPECT_EQ(number("SELECT count(*) FROM sqlite_master WHERE name IN ('extra', 'again')"), 0);
    Database again(path, Database::builtInSteps());
}

TEST_F(StoreTest, AFileOfANewerProgramIsLeftAlone) {
    { Database first(path, Database::builtInSteps()); }
    { SQLite::Database(path.toStdString(), SQLite::OPEN_READWRITE).exec("PRAGMA user_version = 999"); }
    EXPECT_THROW(Database(path, Database::builtInSteps()), std::runtime_error);
    EXPECT_EQ(number("PRAGMA user_version"), 999);
}

TEST_F(StoreTest, WhatWasAcknowledgedOutlivesAKilledProcess) {
    {
        Database database(path, Database::builtInSteps());
        database.transact([](SQLite::Database &connection) {
            connection.exec("INSERT INTO films (identity, name, path) VALUES ('hash:1:1', 'Film', '')");
        });
    }
    int acknowledged[2] = {-1, -1};
    ASSERT_EQ(::pipe(acknowledged), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        // Writes without end and says each name after it was stored.
        Database database(path, Database::builtInSteps());
        SubtitleTable subtitles(database);
        for (int i = 1;; ++i) {
            Subtitle described;
            described.place = described.fileName = QString::number(i);
            subtitles.storeContent(subtitles.findOrAdd(1, {described}).value(0).id, QByteArray(100'000, 'x'),
                                   {});
            if (::write(acknowledged[1], &i, sizeof(i)) != sizeof(i))
                ::_exit(1);
        }
    }
    int last = 0;
    while (last < 25)
        ASSERT_EQ(::read(acknowledged[0], &last, sizeof(last)), static_cast<ssize_t>(sizeof(last)));
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    ::close(acknowledged[1]);
    for (int more = 0; ::read(acknowledged[0], &more, sizeof(more)) == static_cast<ssize_t>(sizeof(more));)
        last = more;
    ::close(acknowledged[0]);

    Database database(path, Database::builtInSteps());
    SubtitleTable subtitles(database);
    int whole = 0;
    for (const Subtitle &subtitle : subtitles.ofFilm(1)) {
        const auto content = subtitles.content(subtitle.id);
        whole += content && SubtitleTable::sha256(*content) == subtitle.contentSha256 ? 1 : 0;
    }
    EXPECT_GE(whole, last);
}

} // namespace

} // namespace murvo::service::test
