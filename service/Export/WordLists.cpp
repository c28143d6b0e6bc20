// SPDX-License-Identifier: GPL-3.0-or-later
#include "Export/WordLists.h"

#include <QStringList>
#include <QTime>

namespace murvo::service {

namespace {

QStringList headings() {
    return {QStringLiteral("Word"), QStringLiteral("Pronunciation"), QStringLiteral("Meaning"),
            QStringLiteral("Line"), QStringLiteral("Translation"),   QStringLiteral("Film"),
            QStringLiteral("Time"), QStringLiteral("Status")};
}

/// Hours may be more than a day has: no time of day.
QString clockTime(qint64 ms) {
    const qint64 seconds = ms / 1000;
    return QStringLiteral("%1:%2:%3")
        .arg(seconds / 3600)
        .arg(seconds / 60 % 60, 2, 10, QLatin1Char('0'))
        .arg(seconds % 60, 2, 10, QLatin1Char('0'));
}

/// Spreadsheets look past white space, and take full-width signs for the others.
QString harmless(const QString &field) {
    const QString text = field.trimmed();
    const bool isFormula = !text.isEmpty() && QStringView(u"=+-@＝＋－＠").contains(text[0]);
    return isFormula ? u'\'' + text : text;
}

QStringList fieldsOf(const WordCard &card) {
    const bool hasTime = card.endMs > card.startMs;
    QStringList fields{card.word,
                       card.pronunciation,
                       card.meaning,
                       card.line,
                       card.translation,
                       card.filmName,
                       hasTime ? clockTime(card.startMs) : QString(),
                       card.status};
    for (QString &field : fields)
        field = harmless(field);
    return fields;
}

QString csvLine(QStringList fields) {
    for (QString &field : fields)
        field = u'"' + field.replace(u'"', QLatin1String("\"\"")) + u'"';
    return fields.join(u',') + QLatin1String("\r\n");
}

QString tsvLine(QStringList fields) {
    for (QString &field : fields)
        field = field.simplified();
    return fields.join(u'\t') + u'\n';
}

} // namespace

QByteArray csvOf(const QList<WordCard> &cards) {
    QString text = QChar(QChar::ByteOrderMark) + csvLine(headings());
    for (const WordCard &card : cards)
        text += csvLine(fieldsOf(card));
    return text.toUtf8();
}

QByteArray tsvOf(const QList<WordCard> &cards) {
    QString text = tsvLine(headings());
    for (const WordCard &card : cards)
        text += tsvLine(fieldsOf(card));
    return text.toUtf8();
}

} // namespace murvo::service
