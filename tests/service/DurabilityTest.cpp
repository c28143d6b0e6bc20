// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/NoMoreRoom.h"
#include "service/ServiceFixture.h"
#include "service/ServiceProcess.h"
#include "service/Store/Database.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QJsonArray>

#include <atomic>
#include <chrono>
#include <csignal>
#include <random>
#include <thread>

using namespace Qt::Literals::StringLiterals;

namespace murvo::service::test {

namespace {

QString wordOf(int number) {
    QString word = u"w"_s;
    for (; number > 0; number /= 26)
        word += QChar(u'a' + number % 26);
    return word + u'q';
}

QJsonObject marked(const QString &lemma) {
    return {{u"lemma"_s, lemma}, {u"status"_s, u"known"_s}, {u"gloss"_s, QString(500, u'g')}};
}

class DurabilityTest : public testing::Test {
  protected:
    [[nodiscard]] QStringList storedWords() const {
        Database database(store, Database::builtInSteps());
        return database.run([](SQLite::Database &connection) {
            EXPECT_EQ(connection.execAndGet("PRAGMA integrity_check").getString(), "ok");
            QStringList words;
            SQLite::Statement query(connection, "SELECT lemma FROM words JOIN glosses USING (lemma)");
            while (query.executeStep())
                words.append(QString::fromStdString(query.getColumn(0).getString()));
            return words;
        });
    }

    QTemporaryDir folder;
    QString store = folder.filePath(u"murvo.sqlite"_s);
};

// MURVO_KILL_ROUNDS=20 for more of them.
TEST_F(DurabilityTest, EveryAcknowledgedWordOutlivesAKillAtAnyMoment) {
    constexpr int writes = 200;
    const int rounds = std::max(3, qEnvironmentVariableIntValue("MURVO_KILL_ROUNDS"));
    std::mt19937 random(std::random_device{}());
    QStringList acknowledged;
    for (int round = 0; round < rounds; ++round) {
        ServiceProcess process(folder.path());
        const int afterWrites = std::uniform_int_distribution(0, writes - 1)(random);
        const std::chrono::microseconds later(std::uniform_int_distribution(0, 8000)(random));
        std::atomic<int> written = 0;
        std::thread killer([&] {
            while (written < afterWrites)
                std::this_thread::yield();
            std::this_thread::sleep_for(later); // somewhere in the next writes
            ::kill(static_cast<pid_t>(process.pid()), SIGKILL);
        });
        for (; written < writes; ++written) {
            const QString word = wordOf(round * writes + written + 1);
            if (process.put(u"Api/Words/Word"_s, marked(word)).status != 200)
                break;
            acknowledged.append(word);
        }
        written = writes;
        killer.join();
        process.waitForEnd();
        const QStringList stored = storedWords();
        const QSet<QString> kept(stored.begin(), stored.end());
        for (const QString &word : acknowledged)
            EXPECT_TRUE(kept.contains(word)) << word.toStdString() << " in round " << round;
        EXPECT_LE(kept.size(), acknowledged.size() + round + 1) << "one that was cut off in each round";
    }
    EXPECT_GT(acknowledged.size(), rounds);
    RecordProperty("acknowledged", static_cast<int>(acknowledged.size()));
}

TEST_F(DurabilityTest, TwoServicesWriteToOneStore) {
    constexpr int writes = 60;
    const ServiceProcess one(folder.path());
    const ServiceProcess other(folder.path());
    const auto write = [](const ServiceProcess &process, int first) {
        for (int i = 0; i < writes; ++i)
            EXPECT_EQ(process.put(u"Api/Words/Word"_s, marked(wordOf(first + i))).status, 200);
    };
    std::thread beside([&] { write(other, 5000); });
    write(one, 1);
    beside.join();
    EXPECT_EQ(storedWords().size(), 2 * writes);
    EXPECT_EQ(one.get(u"Api/Words"_s).json()["total"_L1], 2 * writes);
}

class FullDiskTest : public ServiceFixture {};

TEST_F(FullDiskTest, ThePersonIsToldAndNothingKeptIsLost) {
    const QString store = dataFolder.filePath(u"murvo.sqlite"_s);
    const QString route = u"Api/Words/Word"_s;
    ASSERT_EQ(put(route, marked(u"before"_s)).status, 200);
    int kept = 0;
    Reply refused;
    {
        const NoMoreRoom fully(QFileInfo(store + u"-wal"_s).size() + 60'000);
        for (; kept < 1000; ++kept) {
            refused = put(route, marked(wordOf(kept + 1)));
            if (refused.status != 200)
                break;
        }
        EXPECT_EQ(refused.status, 507) << refused.body.toStdString();
        EXPECT_EQ(refused.errorCode(), u"diskFull"_s);
        EXPECT_EQ(get(u"Api/Words"_s).json()["total"_L1], kept + 1) << "what was kept is still to be had";
        EXPECT_EQ(post(u"Api/Learner/File"_s, QByteArray(500'000, 'x'), "application/vnd.sqlite3").status,
                  507);
        EXPECT_EQ(put(route, marked(u"again"_s)).status, 507);
    }
    {
        const NoMoreRoom atAll(8192);
        EXPECT_EQ(get(u"Api/Learner/File"_s).errorCode(), u"diskFull"_s);
    }
    EXPECT_GT(kept, 0);
    EXPECT_EQ(put(route, marked(u"after"_s)).status, 200) << "as soon as there is room";
    restart();
    EXPECT_EQ(get(u"Api/Words"_s).json()["total"_L1], kept + 2);
    const auto words = get(u"Api/Words?count=500"_s).json()["words"_L1].toArray();
    EXPECT_EQ(words[0]["lemma"_L1], u"after"_s);
}

} // namespace

} // namespace murvo::service::test
