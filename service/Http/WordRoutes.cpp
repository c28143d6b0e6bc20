// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/WordRoutes.h"

#include "Http/RequestedFilm.h"
#include "Http/Router.h"
#include "Http/SoundUrls.h"
#include "Http/VocabularyJson.h"
#include "Store/FilmTable.h"
#include "Store/SettingsTable.h"
#include "Store/WordTable.h"
#include "Vocabulary/Lexicon.h"
#include "Vocabulary/WordImport.h"
#include "Vocabulary/WordKey.h"

#include <QJsonArray>

#include <algorithm>
#include <array>
#include <utility>

namespace murvo::service {

namespace {

constexpr qsizetype longestText = 2000;
constexpr qsizetype longestSearch = 200;
constexpr qsizetype mostGrades = 10'000;
constexpr qint32 mostWords = 500;
constexpr qint32 usualWords = 100;
constexpr qsizetype largestList = 4 * 1024 * 1024;

QString checkedWord(const std::optional<QString> &word) {
    if (!word)
        throw RouteError(400, QStringLiteral("badWord"),
                         QStringLiteral("A word has a letter, no control characters, and a hundred "
                                        "characters at most."));
    return *word;
}

QString checkedLemma(const QString &text) {
    return checkedWord(wordKey(text));
}

WordStatus checkedStatus(const QJsonValue &value) {
    const auto status = wordStatusNamed(value.toString());
    if (!status)
        throw RouteError(400, QStringLiteral("badStatus"),
                         QStringLiteral("A status is one of new, learning1 to learning4, known, ignored."));
    return *status;
}

RouteError badLine(const QString &message) {
    return {400, QStringLiteral("badLine"), message};
}

// A field that is missing or null was not given; it must have that type otherwise.
std::optional<QJsonValue> given(const QJsonObject &body, const char *name, QJsonValue::Type type) {
    const QJsonValue value = body.value(QLatin1String(name));
    if (value.isUndefined() || value.isNull())
        return std::nullopt;
    if (value.type() != type)
        throw badLine(QStringLiteral("\"%1\" is of another type than it must be.").arg(QLatin1String(name)));
    return value;
}

QString givenText(const QJsonObject &body, const char *name) {
    const auto value = given(body, name, QJsonValue::String);
    return value ? value->toString() : QString();
}

qint32 givenId(const QJsonObject &body, const char *name) {
    const auto value = given(body, name, QJsonValue::Double);
    return value ? value->toInt(-1) : 0;
}

// Text for people: without what they cannot see, but with its line breaks and a blank for a tab.
QString checkedText(QString text) {
    if (text.size() > longestText)
        throw badLine(QStringLiteral("A line and a meaning have two thousand characters at most."));
    if (!text.isValidUtf16())
        throw badLine(QStringLiteral("A line and a meaning must be text."));
    text.replace(u'\t', u' ').removeIf([](QChar sign) {
        return sign != u'\n' && sign.category() == QChar::Other_Control;
    });
    return text.trimmed();
}

qint64 givenTime(const QJsonObject &body, const char *name) {
    constexpr qint64 longestFilmMs = 86'400'000;
    const auto value = given(body, name, QJsonValue::Double);
    const qint64 timeMs = value ? value->toInteger(-1) : 0;
    if (timeMs < 0 || timeMs > longestFilmMs)
        throw badLine(QStringLiteral("\"startMs\" and \"endMs\" must be whole milliseconds of the film."));
    return timeMs;
}

Sighting checkedSighting(const QJsonObject &body, const VocabularyParts &parts) {
    Sighting sighting;
    sighting.form = givenText(body, "form");
    sighting.line = checkedText(givenText(body, "line"));
    if (sighting.line.isEmpty())
        throw badLine(QStringLiteral("\"line\" must be the text of the line."));
    sighting.translation = checkedText(givenText(body, "translation"));
    sighting.startMs = givenTime(body, "startMs");
    sighting.endMs = std::max(sighting.startMs, givenTime(body, "endMs"));
    sighting.filmId = givenId(body, "videoId");
    sighting.subtitleId = givenId(body, "subtitleId");
    if (sighting.filmId != 0)
        std::ignore = filmNumbered(sighting.filmId, parts.lines.films);
    if (sighting.subtitleId != 0) {
        const auto subtitle = parts.lines.subtitles.find(sighting.subtitleId);
        if (!subtitle || subtitle->filmId != sighting.filmId)
            throw RouteError(404, QStringLiteral("unknownSubtitle"),
                             QStringLiteral("No subtitle of this film has this number."));
    }
    return sighting;
}

// What both ways of changing a word may hold.
WordChange changeOf(const QString &lemma, const QJsonObject &body, const VocabularyParts &parts) {
    WordChange change;
    change.lemma = lemma;
    change.glossLanguage = parts.lines.settings.nativeLanguage();
    if (const QJsonValue status = body.value(QLatin1String("status")); !status.isUndefined())
        change.status = checkedStatus(status);
    if (const auto gloss = given(body, "gloss", QJsonValue::String))
        change.gloss = checkedText(gloss->toString());
    return change;
}

Response wordResponse(const Request &request, const QString &lemma, const VocabularyParts &parts) {
    SoundUrls sounds(request, parts.lines.films);
    return jsonResponse(wholeWordJson(lemma, parts, sounds));
}

Response one(const Request &request, const VocabularyParts &parts) {
    return wordResponse(request, checkedLemma(request.parameters.value(QStringLiteral("lemma"))), parts);
}

Response change(const Request &request, const VocabularyParts &parts) {
    const QJsonObject body = jsonBody(request);
    const QString lemma = checkedLemma(body.value(QLatin1String("lemma")).toString());
    parts.words.keep(changeOf(lemma, body, parts));
    return wordResponse(request, lemma, parts);
}

Response save(const Request &request, const VocabularyParts &parts) {
    const QJsonObject body = jsonBody(request);
    const QString ofForm = checkedWord(parts.lexicon.lemma(givenText(body, "form")));
    const auto lemma = given(body, "lemma", QJsonValue::String);
    const QString key = lemma ? checkedLemma(lemma->toString()) : ofForm;
    WordChange kept = changeOf(key, body, parts);
    kept.sighting = checkedSighting(body, parts);
    parts.words.keep(kept);
    return wordResponse(request, key, parts);
}

Response forget(const Request &request, const VocabularyParts &parts) {
    const QString lemma = checkedLemma(request.parameters.value(QStringLiteral("lemma")));
    std::ignore = parts.words.forget(lemma);
    return wordResponse(request, lemma, parts);
}

// Everything is checked before anything is changed.
Response grade(const Request &request, const VocabularyParts &parts) {
    const QJsonValue words = jsonBody(request).value(QLatin1String("words"));
    if (!words.isArray())
        throw RouteError(400, QStringLiteral("badWord"), QStringLiteral("\"words\" must be an array."));
    const QJsonArray list = words.toArray();
    if (list.size() > mostGrades)
        throw RouteError(413, QStringLiteral("tooLarge"),
                         QStringLiteral("Ten thousand words can be graded at once."));
    QList<WordGrade> grades;
    for (const QJsonValue each : list)
        grades.append({checkedLemma(each[QLatin1String("lemma")].toString()),
                       checkedStatus(each[QLatin1String("status")])});
    return jsonResponse({{QStringLiteral("changed"), parts.words.grade(grades)}});
}

qint32 numberOr(const Request &request, const QString &name, qint32 smallest, qint32 otherwise) {
    return request.parameters.contains(name) ? request.wholeNumber(name, smallest) : otherwise;
}

WordOrder orderNamed(const QString &name) {
    const std::array orders{std::pair(QLatin1String(""), WordOrder::Added),
                            std::pair(QLatin1String("added"), WordOrder::Added),
                            std::pair(QLatin1String("changed"), WordOrder::Changed),
                            std::pair(QLatin1String("saved"), WordOrder::Saved),
                            std::pair(QLatin1String("alphabet"), WordOrder::Alphabet),
                            std::pair(QLatin1String("due"), WordOrder::Due)};
    const auto *const found =
        std::find_if(orders.begin(), orders.end(), [&name](const auto &each) { return name == each.first; });
    if (found == orders.end())
        throw RouteError(400, QStringLiteral("badParameter"),
                         QStringLiteral("\"order\" must be added, changed, saved, alphabet or due."));
    return found->second;
}

Response list(const Request &request, const VocabularyParts &parts) {
    WordQuery query;
    const QString statuses = request.parameters.value(QStringLiteral("status"));
    for (const QString &name : statuses.split(u',', Qt::SkipEmptyParts))
        query.statuses.append(checkedStatus(name));
    query.filmId = numberOr(request, QStringLiteral("videoId"), 1, 0);
    query.text = request.parameters.value(QStringLiteral("text")).simplified();
    if (query.text.size() > longestSearch)
        throw RouteError(400, QStringLiteral("badParameter"),
                         QStringLiteral("\"text\" must have two hundred characters at most."));
    query.order = orderNamed(request.parameters.value(QStringLiteral("order")));
    query.offset = numberOr(request, QStringLiteral("offset"), 0, 0);
    query.count = std::min(numberOr(request, QStringLiteral("count"), 1, usualWords), mostWords);
    const WordPage page = parts.words.list(query, parts.lines.settings.nativeLanguage());
    SoundUrls sounds(request, parts.lines.films);
    QJsonArray words;
    for (const SavedWord &word : page.words)
        words.append(wordJson(word, parts.lexicon, sounds));
    return jsonResponse({{QStringLiteral("total"), page.total}, {QStringLiteral("words"), words}});
}

Response importList(const Request &request, const VocabularyParts &parts) {
    if (request.body.size() > largestList)
        throw RouteError(413, QStringLiteral("tooLarge"), QStringLiteral("The list is too large."));
    const auto result = importWords(request.body, parts.words, parts.lexicon);
    if (!result)
        throw RouteError(413, QStringLiteral("tooLarge"),
                         QStringLiteral("The list has more than fifty thousand words."));
    return jsonResponse({{QStringLiteral("added"), result->added},
                         {QStringLiteral("known"), result->known},
                         {QStringLiteral("kept"), result->kept},
                         {QStringLiteral("unreadable"), result->unreadable}});
}

} // namespace

void addWordRoutes(Router &router, const VocabularyParts &parts) {
    const auto add = [&](const char *method, const char *path, auto answer) {
        router.add(method, QLatin1String("Api/Words") + QLatin1String(path),
                   [parts, answer](const Request &request) { return answer(request, parts); });
    };
    add("GET", "", list);
    add("GET", "/Word", one);
    add("PUT", "/Word", change);
    add("DELETE", "/Word", forget);
    add("POST", "/Save", save);
    add("PUT", "/Statuses", grade);
    add("POST", "/Import", importList);
}

} // namespace murvo::service
