// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/ReviewRoutes.h"

#include "Http/Router.h"
#include "Http/SoundUrls.h"
#include "Http/VocabularyJson.h"
#include "Store/SettingsTable.h"
#include "Store/WordTable.h"
#include "Vocabulary/Lexicon.h"
#include "Vocabulary/Review.h"
#include "Vocabulary/WordKey.h"

#include <QDateTime>
#include <QJsonArray>

#include <algorithm>

namespace murvo::service {

namespace {

constexpr qint32 usualCards = 20;
constexpr qint32 mostCards = 100;

// A card is a marked word without what is of no use to a learner who is asked for its meaning.
QJsonObject cardJson(const SavedWord &word, const VocabularyParts &parts, SoundUrls &sounds) {
    const QJsonObject whole = wordJson(word, parts.lexicon, sounds);
    QJsonObject card;
    for (const char *name : {"lemma", "status", "gloss", "rank", "dueAtMs"})
        card.insert(QLatin1String(name), whole.value(QLatin1String(name)));
    const QJsonArray sightings = whole.value(QLatin1String("sightings")).toArray();
    card.insert(QStringLiteral("sighting"),
                sightings.isEmpty() ? QJsonValue(QJsonValue::Null) : sightings.first());
    return card;
}

Response due(const Request &request, const VocabularyParts &parts, const Review &review) {
    const QString count = QStringLiteral("count");
    WordQuery query;
    query.dueUntilMs = QDateTime::currentMSecsSinceEpoch();
    query.order = WordOrder::Due;
    query.count =
        std::min(request.parameters.contains(count) ? request.positiveId(count) : usualCards, mostCards);
    const WordPage page = parts.words.list(query, parts.lines.settings.nativeLanguage());
    SoundUrls sounds(request, parts.lines.films);
    QJsonArray cards;
    for (const SavedWord &word : page.words)
        cards.append(cardJson(word, parts, sounds));
    return jsonResponse({{QStringLiteral("dueCount"), page.total},
                         {QStringLiteral("nextDueAtMs"), timeOrNull(review.nextDue())},
                         {QStringLiteral("cards"), cards}});
}

Response afterStep(const Request &request, const QString &lemma, const VocabularyParts &parts,
                   const Review &review) {
    SoundUrls sounds(request, parts.lines.films);
    const QJsonObject word = wholeWordJson(lemma, parts, sounds);
    return jsonResponse({{QStringLiteral("word"), word},
                         {QStringLiteral("dueAtMs"), word.value(QLatin1String("dueAtMs"))},
                         {QStringLiteral("dueCount"), review.dueCount()}});
}

Response grade(const Request &request, const VocabularyParts &parts, Review &review) {
    const QJsonObject body = jsonBody(request);
    const QString lemma = wordKey(body.value(QLatin1String("lemma")).toString()).value_or(QString());
    const auto grade = reviewGradeNamed(body.value(QLatin1String("grade")).toString());
    if (!grade)
        throw RouteError(400, QStringLiteral("badGrade"),
                         QStringLiteral("A grade is one of again, hard, good, easy."));
    if (!review.grade(lemma, *grade))
        throw RouteError(404, QStringLiteral("unknownWord"), QStringLiteral("This word is not marked."));
    return afterStep(request, lemma, parts, review);
}

Response undo(const Request &request, const VocabularyParts &parts, Review &review) {
    const auto lemma = review.undo();
    if (!lemma)
        throw RouteError(409, QStringLiteral("nothingToUndo"),
                         QStringLiteral("There is no grade that can be taken back."));
    return afterStep(request, *lemma, parts, review);
}

} // namespace

void addReviewRoutes(Router &router, const VocabularyParts &parts, Review &review) {
    router.add("GET", QStringLiteral("Api/Review"),
               [parts, &review](const Request &request) { return due(request, parts, review); });
    router.add("POST", QStringLiteral("Api/Review/Grade"),
               [parts, &review](const Request &request) { return grade(request, parts, review); });
    router.add("POST", QStringLiteral("Api/Review/Undo"),
               [parts, &review](const Request &request) { return undo(request, parts, review); });
}

} // namespace murvo::service
