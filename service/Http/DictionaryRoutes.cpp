// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/DictionaryRoutes.h"

#include "Dictionary/WordLookup.h"
#include "Http/Router.h"
#include "Http/VocabularyJson.h"
#include "Http/VocabularyParts.h"
#include "Store/GlossTable.h"
#include "Store/SettingsTable.h"
#include "Store/WordTable.h"

#include <QJsonArray>
#include <QMap>

namespace murvo::service {

namespace {

// Two lines of a subtitle, with room to spare.
constexpr qsizetype longestText = 1000;

QJsonArray examplesJson(const std::vector<Example> &examples) {
    QJsonArray list;
    for (const Example &example : examples)
        list.append(QJsonObject{{QStringLiteral("text"), example.text},
                                {QStringLiteral("translation"), example.translation}});
    return list;
}

QJsonObject entryJson(const SourcedEntry &sourced) {
    QJsonArray senses;
    for (const Sense &sense : sourced.entry.senses)
        senses.append(
            QJsonObject{{QStringLiteral("translations"), QJsonArray::fromStringList(sense.translations)},
                        {QStringLiteral("definition"), sense.definition},
                        {QStringLiteral("examples"), examplesJson(sense.examples)},
                        {QStringLiteral("synonyms"), QJsonArray::fromStringList(sense.synonyms)}});
    return {{QStringLiteral("headword"), sourced.entry.headword},
            {QStringLiteral("pronunciation"), sourced.entry.pronunciation},
            {QStringLiteral("partOfSpeech"), sourced.entry.partOfSpeech},
            {QStringLiteral("senses"), senses},
            {QStringLiteral("source"), sourced.source->name}};
}

const DictionarySource &sourceOf(const EnglishSense &sense) {
    static const DictionarySource own{QStringLiteral("Murvo"),
                                      QStringLiteral("GNU General Public License 3 or later")};
    static const DictionarySource wordNet{QStringLiteral("WordNet 3.0"), QStringLiteral("WordNet License")};
    return sense.isOwn ? own : wordNet;
}

QJsonObject englishJson(const EnglishSense &sense) {
    return {{QStringLiteral("partOfSpeech"), sense.partOfSpeech},
            {QStringLiteral("definition"), sense.definition},
            {QStringLiteral("examples"), QJsonArray::fromStringList(sense.examples)},
            {QStringLiteral("synonyms"), QJsonArray::fromStringList(sense.synonyms)},
            {QStringLiteral("antonyms"), QJsonArray::fromStringList(sense.antonyms)},
            {QStringLiteral("source"), sourceOf(sense).name}};
}

// Each once, however many entries it has.
QJsonArray sourcesJson(const std::vector<Headword> &headwords) {
    QMap<QString, QString> licences;
    for (const Headword &headword : headwords) {
        for (const SourcedEntry &entry : headword.entries)
            licences.insert(entry.source->name, entry.source->licence);
        for (const EnglishSense &sense : headword.english)
            licences.insert(sourceOf(sense).name, sourceOf(sense).licence);
    }
    QJsonArray list;
    for (auto each = licences.begin(); each != licences.end(); ++each)
        list.append(
            QJsonObject{{QStringLiteral("name"), each.key()}, {QStringLiteral("licence"), each.value()}});
    return list;
}

QJsonObject headwordJson(const Headword &headword, std::optional<WordStatus> status) {
    QJsonArray entries;
    for (const SourcedEntry &entry : headword.entries)
        entries.append(entryJson(entry));
    QJsonArray english;
    for (const EnglishSense &sense : headword.english)
        english.append(englishJson(sense));
    return {{QStringLiteral("word"), headword.word},
            {QStringLiteral("isPhrase"), headword.isPhrase},
            {QStringLiteral("start"), headword.start},
            {QStringLiteral("length"), headword.length},
            {QStringLiteral("rank"), headword.rank},
            {QStringLiteral("gloss"), headword.gloss},
            {QStringLiteral("status"), statusJson(status)},
            {QStringLiteral("entries"), entries},
            {QStringLiteral("english"), english}};
}

Response lookUp(const Request &request, WordLookup &lookup, const VocabularyParts &parts) {
    const QString text = request.parameters.value(QStringLiteral("text"));
    if (text.isEmpty() || text.size() > longestText)
        throw RouteError(400, QStringLiteral("badParameter"),
                         QStringLiteral("\"text\" must have from 1 to 1000 characters."));
    const int at =
        request.parameters.contains(QStringLiteral("at")) ? request.wholeNumber(QStringLiteral("at"), 0) : 0;
    const QString language = parts.lines.settings.nativeLanguage();
    const LookedUp found = lookup.lookUp(text, at, language, parts.glosses.ofLanguage(language));
    QJsonArray headwords;
    for (const Headword &headword : found.headwords)
        headwords.append(headwordJson(headword, parts.words.status(headword.word)));
    return jsonResponse({{QStringLiteral("form"), found.form},
                         {QStringLiteral("whole"), found.whole},
                         {QStringLiteral("lemmas"), QJsonArray::fromStringList(found.lemmas)},
                         {QStringLiteral("language"), language},
                         {QStringLiteral("hasDictionary"), found.hasDictionary},
                         {QStringLiteral("headwords"), headwords},
                         {QStringLiteral("sources"), sourcesJson(found.headwords)},
                         {QStringLiteral("near"), QJsonArray::fromStringList(found.near)}});
}

} // namespace

void addDictionaryRoutes(Router &router, WordLookup &lookup, const VocabularyParts &parts) {
    router.add("GET", QStringLiteral("Api/Dictionary/Word"),
               [&lookup, parts](const Request &request) { return lookUp(request, lookup, parts); });
}

} // namespace murvo::service
