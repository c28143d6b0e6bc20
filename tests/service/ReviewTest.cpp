// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/ServiceFixture.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>

#include <SQLiteCpp/SQLiteCpp.h>

#include <future>

using namespace Qt::Literals::StringLiterals;

namespace murvo::service::test {

namespace {

constexpr qint64 minuteMs = 60'000;
constexpr qint64 dayMs = 24 * 60 * minuteMs;

class ReviewTest : public ServiceFixture {
  protected:
    void mark(const QString &lemma, const QString &status) {
        EXPECT_EQ(put(u"Api/Words/Word"_s, {{u"lemma"_s, lemma}, {u"status"_s, status}}).status, 200);
    }
    [[nodiscard]] Reply grade(const QString &lemma, const QString &grade) {
        const QJsonObject body{{u"lemma"_s, lemma}, {u"grade"_s, grade}};
        return post(u"Api/Review/Grade"_s, QJsonDocument(body).toJson(), "text/plain");
    }
    [[nodiscard]] Reply undo() { return post(u"Api/Review/Undo"_s, {}, "text/plain"); }
    [[nodiscard]] QJsonObject word(const QString &lemma) {
        return get(u"Api/Words/Word?lemma="_s + lemma).json();
    }
    /// In how long the word comes up, to the minute; -1: never.
    [[nodiscard]] qint64 dueInMinutes(const QString &lemma) {
        const QJsonValue due = word(lemma)["dueAtMs"_L1];
        const qint64 inMs = due.toInteger() - QDateTime::currentMSecsSinceEpoch();
        return due.isNull() ? -1 : (inMs + minuteMs / 2) / minuteMs;
    }
    [[nodiscard]] QString cards(const QString &more = {}) {
        QStringList lemmas;
        for (const QJsonValue card : get(u"Api/Review"_s + more).json()["cards"_L1].toArray())
            lemmas.append(card["lemma"_L1].toString());
        return lemmas.join(u' ');
    }
    /// As if the word had been marked that long ago.
    void age(const QString &lemma, qint64 ms) {
        SQLite::Database(dataFolder.filePath(u"murvo.sqlite"_s).toStdString(), SQLite::OPEN_READWRITE, 5000)
            .exec(u"UPDATE words SET due_ms = due_ms - %1 WHERE lemma = '%2'"_s.arg(ms)
                      .arg(lemma)
                      .toStdString());
    }
};

TEST_F(ReviewTest, EachWayOfMarkingAWordSetsItsTime) {
    const QList<QPair<QString, qint64>> plan{{u"new"_s, 0},       {u"learning1"_s, 1},  {u"learning2"_s, 3},
                                             {u"learning3"_s, 7}, {u"learning4"_s, 16}, {u"known"_s, -1},
                                             {u"ignored"_s, -1}};
    for (const auto &[status, days] : plan) {
        const qint64 minutes = days < 0 ? -1 : days * 24 * 60;
        mark(u"run"_s, status);
        EXPECT_EQ(dueInMinutes(u"run"_s), minutes) << status.toStdString();
        const QJsonObject statuses{{u"lemma"_s, u"walk"_s}, {u"status"_s, status}};
        (void)put(u"Api/Words/Statuses"_s, {{u"words"_s, QJsonArray{statuses}}});
        EXPECT_EQ(dueInMinutes(u"walk"_s), minutes) << status.toStdString();
    }
    (void)post(u"Api/Words/Save"_s, R"({"form":"sing","line":"Sing!"})", "text/plain");
    EXPECT_EQ(dueInMinutes(u"sing"_s), 0);
    (void)post(u"Api/Words/Import"_s, "Word,Status\ncrawl,learning2\nfly,known\n", "text/plain");
    EXPECT_EQ(dueInMinutes(u"crawl"_s), 3 * 24 * 60);
    EXPECT_EQ(dueInMinutes(u"fly"_s), -1);

    mark(u"crawl"_s, u"learning2"_s);
    age(u"crawl"_s, dayMs);
    mark(u"crawl"_s, u"learning2"_s);
    (void)post(u"Api/Words/Save"_s, R"({"form":"crawl","line":"Crawl!"})", "text/plain");
    EXPECT_EQ(dueInMinutes(u"crawl"_s), 2 * 24 * 60) << "what changes no status leaves the time alone";
    (void)ask("DELETE", u"Api/Words/Word?lemma=crawl"_s);
    EXPECT_EQ(dueInMinutes(u"crawl"_s), -1);
}

TEST_F(ReviewTest, WordsComeUpWhenTheyAreDueTheLongestFirst) {
    EXPECT_TRUE(get(u"Api/Review"_s).json()["nextDueAtMs"_L1].isNull());
    for (const QString &lemma : {u"ant"_s, u"bee"_s, u"cow"_s})
        mark(lemma, u"learning2"_s);
    mark(u"dog"_s, u"known"_s);
    age(u"bee"_s, 5 * dayMs);
    age(u"cow"_s, 4 * dayMs);
    EXPECT_EQ(cards(), u"bee cow"_s);
    EXPECT_EQ(cards(u"?count=1"_s), u"bee"_s);
    const QJsonObject due = get(u"Api/Review?count=1"_s).json();
    EXPECT_EQ(due["dueCount"_L1], 2) << "also those of no card";
    EXPECT_EQ(due["nextDueAtMs"_L1], word(u"ant"_s)["dueAtMs"_L1]);
    EXPECT_EQ(get(u"Api/Review?count=0"_s).errorCode(), u"badParameter"_s);
    QStringList listed;
    for (const QJsonValue each : get(u"Api/Words?order=due"_s).json()["words"_L1].toArray())
        listed.append(each["lemma"_L1].toString());
    EXPECT_EQ(listed.join(u' '), u"bee cow ant dog"_s);
}

TEST_F(ReviewTest, AWordThatWasMarkedUnderAWrongClockIsDueAgain) {
    for (const QString &lemma : {u"ant"_s, u"bee"_s})
        mark(lemma, u"learning4"_s);
    age(u"bee"_s, -3000 * dayMs);
    const QJsonObject due = get(u"Api/Review"_s).json();
    EXPECT_EQ(cards(), u"bee"_s);
    EXPECT_EQ(due["dueCount"_L1], 1);
    EXPECT_EQ(due["nextDueAtMs"_L1], word(u"ant"_s)["dueAtMs"_L1]) << "sixteen days are the longest";
    EXPECT_EQ(grade(u"bee"_s, u"hard"_s).json()["dueCount"_L1], 0);
    EXPECT_EQ(dueInMinutes(u"bee"_s), 8 * 24 * 60);
}

TEST_F(ReviewTest, AGradeMovesTheWordAlongItsStatuses) {
    struct Step {
        QString from;
        QString grade;
        QString to;
        qint64 minutes;
    };
    constexpr qint64 day = 24 * 60;
    const QList<Step> steps{{u"new"_s, u"again"_s, u"learning1"_s, 10},
                            {u"learning4"_s, u"again"_s, u"learning1"_s, 10},
                            {u"known"_s, u"again"_s, u"learning1"_s, 10},
                            {u"new"_s, u"hard"_s, u"new"_s, 10},
                            {u"learning2"_s, u"hard"_s, u"learning2"_s, 3 * day / 2},
                            {u"new"_s, u"good"_s, u"learning1"_s, day},
                            {u"learning3"_s, u"good"_s, u"learning4"_s, 16 * day},
                            {u"learning4"_s, u"good"_s, u"known"_s, -1},
                            {u"new"_s, u"easy"_s, u"learning2"_s, 3 * day},
                            {u"learning3"_s, u"easy"_s, u"known"_s, -1},
                            {u"learning4"_s, u"easy"_s, u"known"_s, -1},
                            {u"ignored"_s, u"easy"_s, u"ignored"_s, -1}};
    for (const Step &step : steps) {
        mark(u"run"_s, step.from);
        const QJsonObject before = word(u"run"_s);
        const QJsonObject reply = grade(u"run"_s, step.grade).json();
        EXPECT_EQ(reply["word"_L1], word(u"run"_s));
        EXPECT_EQ(reply["word"_L1]["status"_L1], step.to) << step.from.toStdString();
        EXPECT_EQ(dueInMinutes(u"run"_s), step.minutes) << (step.from + u' ' + step.grade).toStdString();
        EXPECT_EQ(reply["dueCount"_L1], 0);
        EXPECT_EQ(undo().json()["word"_L1], before) << "taken back whole, with its times";
    }
    EXPECT_EQ(grade(u"run"_s, u"fine"_s).errorCode(), u"badGrade"_s);
    EXPECT_EQ(grade(u"walk"_s, u"good"_s).errorCode(), u"unknownWord"_s);
    EXPECT_EQ(grade(u"1"_s, u"good"_s).errorCode(), u"unknownWord"_s);
}

TEST_F(ReviewTest, GradesAreTakenBackOneByOneUnlessTheWordHasChangedSince) {
    mark(u"ant"_s, u"new"_s);
    mark(u"bee"_s, u"new"_s);
    (void)grade(u"ant"_s, u"good"_s);
    (void)grade(u"bee"_s, u"good"_s);
    (void)grade(u"bee"_s, u"good"_s);
    EXPECT_EQ(undo().json()["word"_L1]["status"_L1], u"learning1"_s);
    EXPECT_EQ(undo().json()["word"_L1]["lemma"_L1], u"bee"_s);
    EXPECT_EQ(undo().json()["dueCount"_L1], 2);
    EXPECT_EQ(undo().errorCode(), u"nothingToUndo"_s);

    (void)grade(u"ant"_s, u"good"_s);
    mark(u"ant"_s, u"ignored"_s);
    EXPECT_EQ(undo().errorCode(), u"nothingToUndo"_s);
    EXPECT_EQ(word(u"ant"_s)["status"_L1], u"ignored"_s);
    (void)grade(u"bee"_s, u"good"_s);
    restart();
    EXPECT_EQ(undo().errorCode(), u"nothingToUndo"_s);
    EXPECT_EQ(word(u"bee"_s)["status"_L1], u"learning1"_s) << "but the grade is kept";
}

TEST_F(ReviewTest, ManyGradesAtOnceAreAllTakenBack) {
    constexpr int count = 8;
    std::vector<std::future<void>> clients;
    clients.reserve(count);
    for (int i = 0; i < count; ++i)
        clients.push_back(std::async(std::launch::async, [this, i] {
            const QString lemma = u"word"_s + QChar(u'a' + i);
            mark(lemma, u"new"_s);
            for (int grades = 0; grades < 5; ++grades)
                EXPECT_EQ(grade(lemma, u"again"_s).status, 200);
        }));
    clients.clear();
    for (int i = 0; i < 40; ++i)
        EXPECT_EQ(undo().status, 200);
    EXPECT_EQ(get(u"Api/Review"_s).json()["dueCount"_L1], 8);
}

} // namespace

} // namespace murvo::service::test
