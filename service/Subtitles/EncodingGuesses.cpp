// SPDX-License-Identifier: GPL-3.0-or-later
#include "Subtitles/EncodingGuesses.h"

#include "Subtitles/Iconv.h"

#include <QChar>
#include <QList>
#include <QSet>
#include <QString>

#include <algorithm>
#include <array>

namespace murvo::service {

namespace {

constexpr qsizetype mostGuesses = 8;
constexpr qsizetype bytesToJudge = 65'536;
// Even, so that no character of two bytes is cut.
constexpr qsizetype bytesToCompare = 262'144;

struct Candidate {
    QByteArray encoding;
    double likeness = 0; ///< to the writing of a language, 1 at best
};

// The order is the order among equals: the more common first.
constexpr std::array candidates{
    "UTF-8",      "WINDOWS-1252", "WINDOWS-1251", "WINDOWS-1250", "GB18030",      "BIG5",
    "SHIFT_JIS",  "CP949",        "WINDOWS-1256", "WINDOWS-1253", "WINDOWS-1254", "WINDOWS-1255",
    "EUC-JP",     "KOI8-R",       "KOI8-U",       "ISO-8859-2",   "ISO-8859-5",   "ISO-8859-7",
    "ISO-8859-9", "ISO-8859-15",  "WINDOWS-1257", "WINDOWS-1258", "TIS-620",      "IBM866",
    "ISO-8859-6", "ISO-8859-8",   "UTF-16LE",     "UTF-16BE"};

bool isCommonHan(QChar c) {
    return c.unicode() >= 0x4E00 && c.unicode() <= 0x9FA5;
}

// What a pair of neighbours says, of which one at least is not ASCII: letters of one script that follow
// each other as in a word, or signs that stand where no writer puts them.
double pairLikeness(QChar before, QChar c) {
    if (!c.isPrint() || c == QChar::ReplacementCharacter || c.category() == QChar::Other_PrivateUse)
        return 0;
    if (c.isMark())
        return before.isLetter() || before.isMark() ? 1 : 0;
    if (!c.isLetter() && !before.isLetter())
        return c.isPunct() || c.isSpace() ? 0.7 : 0.2;
    if (!c.isLetter() || !before.isLetter())
        return c.isPunct() || c.isSpace() || before.isPunct() || before.isSpace() || before.isMark() ? 0.8
                                                                                                     : 0.1;
    if (c.isUpper() && before.isLower())
        return 0;
    if (c.script() == QChar::Script_Han && before.script() == QChar::Script_Han)
        return isCommonHan(c) && isCommonHan(before) ? 0.9 : 0.2;
    const auto isJapanese = [](QChar::Script s) {
        return s == QChar::Script_Hiragana || s == QChar::Script_Katakana || s == QChar::Script_Han ||
               s == QChar::Script_Common;
    };
    return c.script() == before.script() || (isJapanese(c.script()) && isJapanese(before.script())) ? 1 : 0.1;
}

double likenessOf(const QString &text) {
    double sum = 0;
    qsizetype pairs = 0;
    for (qsizetype i = 1; i < text.size(); ++i) {
        if (text[i].unicode() < 0x80 && text[i - 1].unicode() < 0x80)
            continue;
        sum += pairLikeness(text[i - 1], text[i]);
        ++pairs;
    }
    return pairs == 0 ? 0 : sum / static_cast<double>(pairs);
}

double likenessOf(const QByteArray &bytes, const QByteArray &encoding) {
    const QByteArrayView judged = QByteArrayView(bytes).first(std::min(bytes.size(), bytesToJudge));
    return likenessOf(QString::fromUtf8(convertToUtf8(judged, encoding).utf8));
}

} // namespace

QByteArray likelierTwin(const QByteArray &bytes, const QByteArray &guess) {
    static const QList<QByteArrayList> twins{{"WINDOWS-1250", "ISO-8859-2"}, {"WINDOWS-1253", "ISO-8859-7"}};
    for (const QByteArrayList &pair : twins) {
        if (!pair.contains(guess))
            continue;
        const QByteArray &other = pair[guess == pair[0] ? 1 : 0];
        return likenessOf(bytes, other) > likenessOf(bytes, guess) ? other : guess;
    }
    return guess;
}

QByteArrayList rankedEncodings(const QByteArray &fileBytes, const QByteArray &found) {
    const QByteArray bytes = fileBytes.left(bytesToCompare);
    const QByteArrayView judged = QByteArrayView(bytes).first(std::min(bytes.size(), bytesToJudge));
    QSet<QByteArray> texts{convertToUtf8(bytes, found).utf8};
    QList<Candidate> others;
    for (const char *name : candidates) {
        const QByteArray encoding(name);
        if (encoding == found || (encoding.startsWith("UTF-16") && bytes.size() % 2 != 0))
            continue;
        const Converted whole = convertToUtf8(bytes, encoding);
        if (whole.errors > 0 || texts.contains(whole.utf8))
            continue;
        texts.insert(whole.utf8);
        const QString text = QString::fromUtf8(convertToUtf8(judged, encoding).utf8);
        // UTF-16 of something else turns the figures of the times, too, into far-off letters.
        if (encoding.startsWith("UTF-16") && !text.contains(u'0'))
            continue;
        others.append({encoding, likenessOf(text)});
    }
    std::stable_sort(others.begin(), others.end(),
                     [](const Candidate &a, const Candidate &b) { return a.likeness > b.likeness; });
    QByteArrayList ranked{found};
    for (const Candidate &other : others.first(std::min(others.size(), mostGuesses - 1)))
        ranked.append(other.encoding);
    return ranked;
}

} // namespace murvo::service
