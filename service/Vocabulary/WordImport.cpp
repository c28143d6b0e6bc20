// SPDX-License-Identifier: GPL-3.0-or-later
#include "Vocabulary/WordImport.h"

#include "Store/WordTable.h"
#include "Subtitles/Charset.h"
#include "Vocabulary/Lexicon.h"
#include "Vocabulary/ListRows.h"

#include <QRegularExpression>
#include <QSet>

namespace murvo::service {

namespace {

constexpr qsizetype mostRows = 50'000;

/// A list, and what its headings tell, when it has some.
struct List {
    QList<QStringList> rows;
    qsizetype statusColumn = -1;
};

List readList(const QByteArray &bytes) {
    List list{listRows(QString::fromUtf8(toUtf8(bytes)), mostRows + 2)};
    const bool hasHeadings =
        list.rows.size() > 1 && list.rows[0][0].compare(QLatin1String("word"), Qt::CaseInsensitive) == 0;
    if (hasHeadings)
        list.statusColumn = list.rows.takeFirst().indexOf(QLatin1String("Status"));
    return list;
}

// Without the mark or number that a list puts before it; none for a sentence, and for what no English word is
// made of.
std::optional<QString> lemmaIn(const QStringList &row, const Lexicon &lexicon) {
    static const QRegularExpression mark(QStringLiteral(R"(^([-*\x{2022}\x{2013}]|\d+[.)])\s+)"));
    static const QRegularExpression words(QStringLiteral(
        R"(^[\p{Latin}\p{Mn}.,'\x{2018}\x{2019}-]+( [\p{Latin}\p{Mn}.,'\x{2018}\x{2019}-]+){0,4}$)"));
    const QString word = QString(row[0]).remove(mark).simplified();
    return words.match(word).hasMatch() ? lexicon.lemma(word) : std::nullopt;
}

} // namespace

std::optional<WordImportResult> importWords(const QByteArray &bytes, WordTable &words,
                                            const Lexicon &lexicon) {
    const List list = readList(bytes);
    if (list.rows.size() > mostRows)
        return std::nullopt;
    WordImportResult result;
    const QHash<QString, WordStatus> marked = words.statuses();
    QSet<QString> seen;
    QList<WordGrade> grades;
    for (const QStringList &row : list.rows) {
        const auto lemma = lemmaIn(row, lexicon);
        if (!lemma) {
            ++result.unreadable;
            continue;
        }
        if (seen.contains(*lemma))
            continue;
        seen.insert(*lemma);
        const auto before = marked.constFind(*lemma);
        if (before == marked.constEnd())
            grades.append(
                {*lemma, wordStatusNamed(row.value(list.statusColumn)).value_or(WordStatus::Known)});
        else
            ++(isLearned(*before) ? result.kept : result.known);
    }
    result.added = words.grade(grades);
    return result;
}

} // namespace murvo::service
