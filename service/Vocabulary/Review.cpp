// SPDX-License-Identifier: GPL-3.0-or-later
#include "Vocabulary/Review.h"

#include <QDateTime>

namespace murvo::service {

namespace {

// Nobody goes back further by single steps.
constexpr qsizetype mostSteps = 100;

} // namespace

qint32 Review::dueCount() const {
    return _table.dueCount(QDateTime::currentMSecsSinceEpoch());
}

std::optional<qint64> Review::nextDue() const {
    return _table.nextDue(QDateTime::currentMSecsSinceEpoch());
}

bool Review::grade(const QString &lemma, ReviewGrade grade) {
    const std::lock_guard lock(_mutex);
    const auto step = _table.grade(lemma, grade, QDateTime::currentMSecsSinceEpoch());
    if (!step)
        return false;
    _steps.append(*step);
    if (_steps.size() > mostSteps)
        _steps.removeFirst();
    return true;
}

std::optional<QString> Review::undo() {
    const std::lock_guard lock(_mutex);
    if (_steps.isEmpty())
        return std::nullopt;
    const bool isBack = _table.takeBack(_steps.last());
    const QString lemma = _steps.takeLast().lemma;
    return isBack ? std::optional(lemma) : std::nullopt;
}

} // namespace murvo::service
