// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/VocabularyJson.h"

#include "Http/SoundUrls.h"
#include "Languages.h"
#include "Store/GlossTable.h"
#include "Store/SettingsTable.h"
#include "Vocabulary/Lexicon.h"

#include <QJsonArray>

namespace murvo::service {

namespace {

QJsonValue idOrNull(qint32 id) {
    return id == 0 ? QJsonValue(QJsonValue::Null) : QJsonValue(id);
}

} // namespace

QJsonObject wordJson(const SavedWord &word, const Lexicon &lexicon, SoundUrls &sounds) {
    QJsonArray sightings;
    if (!word.line.isEmpty())
        sightings.append(sightingJson({word.form, word.line, word.translation, word.filmId, word.filmName, 0,
                                       word.startMs, word.endMs, word.savedAtMs},
                                      sounds));
    return {{QStringLiteral("lemma"), word.lemma},
            {QStringLiteral("status"), nameOf(word.status)},
            {QStringLiteral("gloss"), word.gloss},
            {QStringLiteral("rank"), lexicon.rank(word.lemma)},
            {QStringLiteral("guid"), word.guid},
            {QStringLiteral("addedAtMs"), word.addedAtMs},
            {QStringLiteral("changedAtMs"), word.changedAtMs},
            {QStringLiteral("dueAtMs"), timeOrNull(word.dueAtMs)},
            {QStringLiteral("sightings"), sightings}};
}

QJsonObject unmarkedWordJson(const QString &lemma, const QString &gloss, const Lexicon &lexicon) {
    return {{QStringLiteral("lemma"), lemma},
            {QStringLiteral("status"), QJsonValue::Null},
            {QStringLiteral("gloss"), gloss},
            {QStringLiteral("rank"), lexicon.rank(lemma)},
            {QStringLiteral("guid"), QJsonValue::Null},
            {QStringLiteral("addedAtMs"), QJsonValue::Null},
            {QStringLiteral("changedAtMs"), QJsonValue::Null},
            {QStringLiteral("dueAtMs"), QJsonValue::Null}};
}

QJsonObject sightingJson(const Sighting &sighting, SoundUrls &sounds) {
    return {{QStringLiteral("form"), sighting.form},
            {QStringLiteral("line"), sighting.line},
            {QStringLiteral("translation"), sighting.translation},
            {QStringLiteral("videoId"), idOrNull(sighting.filmId)},
            {QStringLiteral("fileName"), sighting.filmName},
            {QStringLiteral("startMs"), sighting.startMs},
            {QStringLiteral("endMs"), sighting.endMs},
            {QStringLiteral("savedAtMs"), sighting.savedAtMs},
            {QStringLiteral("soundUrl"), sounds.of(sighting.filmId, sighting.startMs, sighting.endMs)}};
}

QJsonObject lineJson(const ShownLine &line, SoundUrls &sounds) {
    const Language *language = findLanguage(line.language);
    return {{QStringLiteral("videoId"), line.filmId},
            {QStringLiteral("fileName"), line.filmName},
            {QStringLiteral("subtitleId"), line.subtitleId},
            {QStringLiteral("languageTag"), language != nullptr ? QString(language->twoLetter) : QString()},
            {QStringLiteral("startMs"), line.startMs},
            {QStringLiteral("endMs"), line.endMs},
            {QStringLiteral("text"), line.text},
            {QStringLiteral("translation"), line.translation},
            {QStringLiteral("soundUrl"), sounds.of(line.filmId, line.startMs, line.endMs)}};
}

QJsonObject wholeWordJson(const QString &lemma, const VocabularyParts &parts, SoundUrls &sounds) {
    const QString language = parts.lines.settings.nativeLanguage();
    const auto word = parts.words.find(lemma, language);
    QJsonArray sightings;
    for (const Sighting &each : parts.words.sightings(lemma))
        sightings.append(sightingJson(each, sounds));
    QJsonObject object = word ? wordJson(*word, parts.lexicon, sounds)
                              : unmarkedWordJson(lemma, parts.glosses.gloss(lemma, language), parts.lexicon);
    object.insert(QStringLiteral("sightings"), sightings);
    return object;
}

QJsonValue timeOrNull(std::optional<qint64> timeMs) {
    return timeMs ? QJsonValue(*timeMs) : QJsonValue(QJsonValue::Null);
}

QJsonValue statusJson(std::optional<WordStatus> status) {
    return status ? QJsonValue(nameOf(*status)) : QJsonValue(QJsonValue::Null);
}

} // namespace murvo::service
