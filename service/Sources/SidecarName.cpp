// SPDX-License-Identifier: GPL-3.0-or-later
#include "Sources/SidecarName.h"

#include "Languages.h"

#include <QRegularExpression>
#include <QSet>
#include <QStringList>

#include <algorithm>

namespace murvo::service {

namespace {

QString withoutExtension(const QString &fileName) {
    const qsizetype dot = fileName.lastIndexOf(u'.');
    return dot > 0 ? fileName.left(dot) : fileName;
}

QString extensionOf(const QString &fileName) {
    const qsizetype dot = fileName.lastIndexOf(u'.');
    return dot > 0 ? fileName.mid(dot + 1).toLower() : QString();
}

// Names and titles come from anywhere; what tells something stands at their ends.
constexpr qsizetype longestEnd = 100;

QSet<QString> wordSet(const char *words) {
    const QStringList list = QString::fromLatin1(words).split(u' ');
    return {list.begin(), list.end()};
}

// A region or script after a language, as BR in pt-BR, Hans in zh-Hans, 419 in es-419.
bool looksLikeVariety(const QString &word) {
    static const QRegularExpression variety(QStringLiteral("^([a-z]{2}|[a-z]{4}|[0-9]{3})$"));
    static const QSet<QString> names = wordSet(
        "american brazilian british canadian castilian european latin mexican simplified traditional");
    return names.contains(word) || variety.match(word).hasMatch();
}

bool saysNothing(const QString &word) {
    static const QRegularExpression number(QStringLiteral("^[0-9]+$"));
    static const QSet<QString> words =
        wordSet("default dialogue full sub subs subtitle subtitles track utf8");
    return words.contains(word) || number.match(word).hasMatch();
}

bool readWord(const QString &word, SidecarName &name) {
    static const QSet<QString> forced = wordSet("forced foreign");
    static const QSet<QString> forTheHardOfHearing = wordSet("sdh cc hoh");
    if (forced.contains(word)) {
        name.forced = true;
        return true;
    }
    // "hi" alone is Hindi; after a language it says that the track is for the hard of hearing.
    if (forTheHardOfHearing.contains(word) || (word == QLatin1String("hi") && !name.language.isEmpty())) {
        name.hearingImpaired = true;
        return true;
    }
    const Language *language = findLanguage(word);
    if (name.language.isEmpty() && language != nullptr) {
        name.language = language->code;
        return true;
    }
    return saysNothing(word) || looksLikeVariety(word);
}

std::optional<SidecarName> readAll(const QStringList &words) {
    SidecarName name;
    const bool isReadable = std::all_of(words.begin(), words.end(),
                                        [&name](const QString &word) { return readWord(word, name); });
    return isReadable ? std::optional(name) : std::nullopt;
}

} // namespace

bool isSubtitleName(const QString &fileName) {
    static const QSet<QString> extensions =
        wordSet("srt sub vtt ass ssa smi sami ttml dfxp idx sup mpl txt xml");
    return extensions.contains(extensionOf(fileName));
}

bool isFilmName(const QString &fileName) {
    static const QRegularExpression extra(QStringLiteral("\\b(sample|trailer)\\b"),
                                          QRegularExpression::CaseInsensitiveOption);
    if (extra.match(fileName).hasMatch())
        return false;
    static const QSet<QString> extensions = wordSet("mkv mp4 m4v avi mov webm ts m2ts mts mpg mpeg wmv flv "
                                                    "ogm ogv vob divx 3gp rm rmvb asf");
    return extensions.contains(extensionOf(fileName));
}

QString comparableBase(const QString &fileName) {
    return withoutExtension(fileName).normalized(QString::NormalizationForm_C).toCaseFolded();
}

SidecarName readSubtitleWords(const QString &text) {
    static const QRegularExpression separators(QStringLiteral("[._\\-\\s\\[\\](),]+"));
    QStringList words = text.right(longestEnd).toLower().split(separators, Qt::SkipEmptyParts);
    bool isWhole = text.size() <= longestEnd;
    for (; !words.isEmpty(); words.removeFirst(), isWhole = false) {
        if (auto name = readAll(words)) {
            name->isWordsOnly = isWhole;
            return *name;
        }
    }
    return {};
}

SidecarName readSubtitleName(const QString &fileName) {
    return readSubtitleWords(withoutExtension(fileName));
}

std::optional<SidecarName> readSidecarName(const QString &filmName, const QString &fileName) {
    const QString film = comparableBase(filmName);
    const QString file = comparableBase(fileName);
    if (film.isEmpty() || !isSubtitleName(fileName) || !file.startsWith(film) || fileName.contains(u'/') ||
        fileName.contains(QChar(u'\0')))
        return std::nullopt;
    const QString words = file.mid(film.size());
    static const QString separators = QStringLiteral("._- [(");
    static const QRegularExpression sequel(QStringLiteral("^[ _-]\\d+\\b")); // "Film 2.srt" beside "Film.mkv"
    if (!words.isEmpty() && (!separators.contains(words.front()) || sequel.match(words).hasMatch()))
        return std::nullopt;
    SidecarName name = readSubtitleWords(words);
    name.isAfterFilm = true;
    return name;
}

} // namespace murvo::service
