// SPDX-License-Identifier: GPL-3.0-or-later
#include "Export/AnkiNote.h"

#include <QCryptographicHash>
#include <QRegularExpression>

#include <algorithm>

namespace murvo::service {

namespace {

constexpr qsizetype digestLetters = 20;

/// Shown by Anki as the text is: neither as HTML nor as one of Anki's own marks, which plays files
/// ("[sound:") or runs programs ("[latex]").
QString html(const QString &text) {
    static const QRegularExpression mark(QStringLiteral(R"(\[(?=/?(sound:|anki:|latex\]|\${1,2}\])))"),
                                         QRegularExpression::CaseInsensitiveOption);
    QString escaped = text.toHtmlEscaped();
    return escaped.replace(mark, QStringLiteral("&#91;")).replace(u'\n', QLatin1String("<br>"));
}

bool isInWord(const QString &text, qsizetype at) {
    return at >= 0 && at < text.size() && text[at].isLetterOrNumber();
}

/// The first place where the word stands by itself, else the first at all; -1 when it does not.
qsizetype placeOf(const QString &word, const QString &line) {
    if (word.isEmpty())
        return -1;
    for (qsizetype at = line.indexOf(word, 0, Qt::CaseInsensitive); at >= 0;
         at = line.indexOf(word, at + 1, Qt::CaseInsensitive)) {
        if (!isInWord(line, at - 1) && !isInWord(line, at + word.size()))
            return at;
    }
    return line.indexOf(word, 0, Qt::CaseInsensitive);
}

QString markedLine(const WordCard &card) {
    const QString line = card.line.trimmed();
    const qsizetype at = placeOf(card.wordInLine, line);
    if (at < 0)
        return html(line);
    const qsizetype end = at + card.wordInLine.size();
    return html(line.first(at)) + QLatin1String("<b>") + html(line.sliced(at, end - at)) +
           QLatin1String("</b>") + html(line.sliced(end));
}

/// By what is in it: lines that two words were saved with have their files once, and a file of a name never
/// changes, so that an import need not ask which of two is meant.
QString mediaName(const QByteArray &content, QLatin1String extension) {
    const QByteArray digest = QCryptographicHash::hash(content, QCryptographicHash::Sha256).toHex();
    return QLatin1String("murvo-") + QLatin1String(digest.left(digestLetters)) + extension;
}

} // namespace

const QString &AnkiNote::field(QLatin1String name) const {
    const auto place = std::find(ankiFields.begin(), ankiFields.end(), name);
    return fields[static_cast<std::size_t>(place - ankiFields.begin())];
}

AnkiNote ankiNote(const WordCard &card, const WordClip &clip) {
    AnkiNote note{card.guid, card.word, {}, {}, card.savedAtMs};
    QString picture;
    QString sound;
    if (!clip.jpeg.isEmpty()) {
        note.media.append({mediaName(clip.jpeg, QLatin1String(".jpg")), clip.jpeg});
        picture = QStringLiteral("<img src=\"%1\">").arg(note.media.last().name);
    }
    if (!clip.mp3.isEmpty()) {
        note.media.append({mediaName(clip.mp3, QLatin1String(".mp3")), clip.mp3});
        sound = QStringLiteral("[sound:%1]").arg(note.media.last().name);
    }
    note.fields = {html(card.word.trimmed()),
                   html(card.pronunciation.trimmed()),
                   html(card.meaning.trimmed()),
                   markedLine(card),
                   html(card.translation.trimmed()),
                   html(card.filmName.trimmed()),
                   picture,
                   sound};
    return note;
}

} // namespace murvo::service
