// SPDX-License-Identifier: GPL-3.0-or-later
#include "Store/ReviewTable.h"

#include "Store/Columns.h"
#include "Store/Database.h"

namespace murvo::service {

namespace {

std::optional<ReviewPlace> placeOf(SQLite::Database &connection, const QString &lemma) {
    SQLite::Statement query(connection, "SELECT status, changed_ms, due_ms FROM words WHERE lemma = ?");
    query.bind(1, lemma.toStdString());
    if (!query.executeStep())
        return std::nullopt;
    ReviewPlace place;
    place.status = wordStatusNamed(textOf(query.getColumn(0))).value_or(WordStatus::New);
    place.changedAtMs = query.getColumn(1).getInt64();
    if (!query.getColumn(2).isNull())
        place.dueAtMs = query.getColumn(2).getInt64();
    return place;
}

void put(SQLite::Database &connection, const QString &lemma, const ReviewPlace &place) {
    SQLite::Statement update(connection,
                             "UPDATE words SET status = ?, changed_ms = ?, due_ms = ? WHERE lemma = ?");
    update.bind(1, nameOf(place.status).toString().toStdString());
    update.bind(2, static_cast<int64_t>(place.changedAtMs));
    if (place.dueAtMs)
        update.bind(3, static_cast<int64_t>(*place.dueAtMs));
    update.bind(4, lemma.toStdString());
    update.exec();
}

ReviewPlace after(const ReviewPlace &before, ReviewGrade grade, qint64 nowMs) {
    const GradedWord word = graded(before.status, grade);
    ReviewPlace place;
    place.status = word.status;
    place.changedAtMs = word.status == before.status ? before.changedAtMs : nowMs;
    if (word.interval)
        place.dueAtMs = nowMs + word.interval->count();
    return place;
}

} // namespace

std::string conditionOfDue(qint64 nowMs) {
    return "(words.due_ms <= " + std::to_string(nowMs) + " OR words.due_ms > " +
           std::to_string(nowMs + longestReviewInterval.count()) + ')';
}

qint32 ReviewTable::dueCount(qint64 nowMs) {
    return _database.run([nowMs](SQLite::Database &connection) {
        SQLite::Statement query(connection, "SELECT count(*) FROM words WHERE " + conditionOfDue(nowMs));
        query.executeStep();
        return query.getColumn(0).getInt();
    });
}

std::optional<qint64> ReviewTable::nextDue(qint64 nowMs) {
    return _database.run([nowMs](SQLite::Database &connection) -> std::optional<qint64> {
        SQLite::Statement query(connection,
                                "SELECT min(due_ms) FROM words WHERE due_ms IS NOT NULL AND NOT " +
                                    conditionOfDue(nowMs));
        query.executeStep();
        if (query.getColumn(0).isNull())
            return std::nullopt;
        return query.getColumn(0).getInt64();
    });
}

std::optional<GradeStep> ReviewTable::grade(const QString &lemma, ReviewGrade grade, qint64 nowMs) {
    return _database.transact([&](SQLite::Database &connection) -> std::optional<GradeStep> {
        const auto before = placeOf(connection, lemma);
        if (!before)
            return std::nullopt;
        const GradeStep step{lemma, *before, after(*before, grade, nowMs)};
        put(connection, lemma, step.after);
        return step;
    });
}

bool ReviewTable::takeBack(const GradeStep &step) {
    return _database.transact([&step](SQLite::Database &connection) {
        if (placeOf(connection, step.lemma) != step.after)
            return false;
        put(connection, step.lemma, step.before);
        return true;
    });
}

} // namespace murvo::service
