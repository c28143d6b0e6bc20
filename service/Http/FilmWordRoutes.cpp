// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/FilmWordRoutes.h"

#include "Http/RequestedFilm.h"
#include "Http/Router.h"
#include "Http/SoundUrls.h"
#include "Http/VocabularyJson.h"
#include "Languages.h"
#include "Store/FilmTable.h"
#include "Vocabulary/FilmWords.h"
#include "Vocabulary/LineSearch.h"

#include <QJsonArray>

#include <algorithm>

namespace murvo::service {

namespace {

constexpr qint32 mostLines = 100;
constexpr qint32 usualLines = 30;
constexpr qsizetype longestPhrase = 200;

QJsonObject filmWordJson(const FilmWord &word) {
    return {{QStringLiteral("lemma"), word.lemma},
            {QStringLiteral("forms"), QJsonArray::fromStringList(word.forms)},
            {QStringLiteral("count"), word.count},
            {QStringLiteral("rank"), word.rank},
            {QStringLiteral("status"), statusJson(word.status)},
            {QStringLiteral("isKnown"), word.isKnown},
            {QStringLiteral("isName"), word.isName}};
}

Response words(const Request &request, const VocabularyParts &parts) {
    const qint32 filmId = requestedFilm(request, parts.lines.films).id;
    const FilmWordsAnswer answer = parts.filmWords.read(filmId);
    QJsonArray list;
    for (const FilmWord &word : answer.words)
        list.append(filmWordJson(word));
    SoundUrls sounds(request, parts.lines.films);
    QJsonArray first;
    for (const WordToLearn &each : answer.first)
        first.append(QJsonObject{{QStringLiteral("lemma"), each.word.lemma},
                                 {QStringLiteral("form"), each.word.form},
                                 {QStringLiteral("count"), each.word.count},
                                 {QStringLiteral("rank"), each.word.rank},
                                 {QStringLiteral("status"), statusJson(each.word.status)},
                                 {QStringLiteral("line"), lineJson(each.line, sounds)}});
    return jsonResponse(
        {{QStringLiteral("videoId"), filmId},
         {QStringLiteral("subtitleId"), answer.subtitleId == 0 ? QJsonValue() : answer.subtitleId},
         {QStringLiteral("runningWords"), answer.share.running},
         {QStringLiteral("knownWords"), answer.share.known},
         {QStringLiteral("knownPercent"),
          answer.share.percent() ? QJsonValue(*answer.share.percent()) : QJsonValue()},
         {QStringLiteral("words"), list},
         {QStringLiteral("learnFirst"), first}});
}

Response level(const VocabularyParts &parts) {
    const Knowledge knows = parts.filmWords.knowledge();
    const auto next = knows.nextLevel();
    const qint32 learning = knows.countOf(WordStatus::Learning1) + knows.countOf(WordStatus::Learning2) +
                            knows.countOf(WordStatus::Learning3) + knows.countOf(WordStatus::Learning4);
    return jsonResponse({{QStringLiteral("level"), knows.level().name},
                         {QStringLiteral("nextLevel"), next ? QJsonValue(next->name) : QJsonValue()},
                         {QStringLiteral("percentToNext"), knows.percentToNext()},
                         {QStringLiteral("vocabulary"), knows.vocabulary()},
                         {QStringLiteral("newWords"), knows.countOf(WordStatus::New)},
                         {QStringLiteral("learningWords"), learning},
                         {QStringLiteral("knownWords"), knows.countOf(WordStatus::Known)},
                         {QStringLiteral("ignoredWords"), knows.countOf(WordStatus::Ignored)}});
}

QString languageAsked(const Request &request) {
    QString code = request.parameters.value(QStringLiteral("language"));
    const Language *language = findLanguage(code);
    if (!code.isEmpty() && (language == nullptr || code != language->code))
        throw RouteError(400, QStringLiteral("badParameter"),
                         QStringLiteral("\"language\" must be a code like eng."));
    return code;
}

bool isWholeWordAsked(const Request &request) {
    const QString word = request.parameters.value(QStringLiteral("wholeWord"), QStringLiteral("false"));
    if (word != QLatin1String("true") && word != QLatin1String("false"))
        throw RouteError(400, QStringLiteral("badParameter"),
                         QStringLiteral("The parameter \"wholeWord\" must be true or false."));
    return word == QLatin1String("true");
}

Response search(const Request &request, const VocabularyParts &parts) {
    const LineQuery sought{request.parameters.value(QStringLiteral("text")).simplified(),
                           languageAsked(request), isWholeWordAsked(request)};
    if (sought.phrase.isEmpty() || sought.phrase.size() > longestPhrase)
        throw RouteError(400, QStringLiteral("badParameter"),
                         QStringLiteral("\"text\" must be what to search for, two hundred characters at "
                                        "most."));
    const auto number = [&request](const QString &name, qint32 otherwise) {
        return request.parameters.contains(name) ? request.positiveId(name) : otherwise;
    };
    const FoundLines found = findLines(parts.lines, sought, number(QStringLiteral("below"), 0),
                                       std::min(number(QStringLiteral("count"), usualLines), mostLines));
    SoundUrls sounds(request, parts.lines.films);
    QJsonArray list;
    for (const ShownLine &line : found.lines)
        list.append(lineJson(line, sounds));
    return jsonResponse({{QStringLiteral("lines"), list},
                         {QStringLiteral("next"), found.next == 0 ? QJsonValue() : QJsonValue(found.next)}});
}

} // namespace

void addFilmWordRoutes(Router &router, const VocabularyParts &parts) {
    router.add("GET", QStringLiteral("Api/MovieFile/Words"),
               [parts](const Request &request) { return words(request, parts); });
    router.add("GET", QStringLiteral("Api/Home/Level"), [parts](const Request &) { return level(parts); });
    router.add("GET", QStringLiteral("Api/Lines/Search"),
               [parts](const Request &request) { return search(request, parts); });
}

} // namespace murvo::service
