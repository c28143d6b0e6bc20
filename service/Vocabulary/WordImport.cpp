// SPDX-License-Identifier: GPL-3.0-or-later
#include "Vocabulary/WordImport.h"

#include "Store/WordTable.h"
#include "Subtitles/Charset.h"
#include "Vocabulary/Lexicon.h"

#include <QSet>

#include <algorithm>
#include <optional>

namespace murvo::service {

namespace {

// A quoted cell ends at its quote, any other at the first sign that parts columns.
QString firstCell(const QString &line) {
    if (line.startsWith(u'"'))
        return line.section(u'"', 1, 1);
    const auto end = std::find_if(line.begin(), line.end(),
                                  [](QChar sign) { return QStringView(u"\t,;").contains(sign); });
    return line.left(end - line.begin());
}

std::optional<QString> lemmaIn(const QString &line, const Lexicon &lexicon) {
    const QString cell = firstCell(line);
    return cell.contains(QChar::ReplacementCharacter) ? std::nullopt : lexicon.lemma(cell);
}

} // namespace

WordImportResult importKnownWords(const QByteArray &list, WordTable &words, const Lexicon &lexicon) {
    WordImportResult result;
    const QHash<QString, WordStatus> marked = words.statuses();
    QSet<QString> seen;
    QList<WordGrade> grades;
    const QString text = QString::fromUtf8(toUtf8(list)).replace(u'\r', u'\n');
    for (const QString &line : text.split(u'\n', Qt::SkipEmptyParts)) {
        if (line.trimmed().isEmpty())
            continue;
        const auto lemma = lemmaIn(line, lexicon);
        if (!lemma) {
            ++result.unreadable;
            continue;
        }
        if (seen.contains(*lemma))
            continue;
        seen.insert(*lemma);
        const WordStatus status = marked.value(*lemma, WordStatus::New);
        if (status == WordStatus::Known || status == WordStatus::Ignored)
            ++result.known;
        else
            grades.append({*lemma, WordStatus::Known});
    }
    result.added = words.grade(grades);
    return result;
}

} // namespace murvo::service
