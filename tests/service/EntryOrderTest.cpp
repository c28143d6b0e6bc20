// SPDX-License-Identifier: GPL-3.0-or-later
#include "Dictionary/EntryOrder.h"
#include "Dictionary/Dictionaries.h"
#include "Dictionary/English.h"
#include "Dictionary/FreeDictEntry.h"
#include "Dictionary/ReversedDictionary.h"
#include "Dictionary/WordLookup.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace murvo::service::test {

namespace {

Entry entryOf(const QString &part, const QStringList &translations) {
    Entry entry{u"run"_s, {}, part, {}, false};
    for (const QString &translation : translations)
        entry.senses.push_back({{translation}, {}, {}, {}});
    return entry;
}

QStringList firstOnes(const std::vector<Entry> &entries) {
    QStringList words;
    for (const Entry &entry : entries)
        words.append(translationsOf(entry).value(0));
    return words;
}

int timesOfRun(const QString &part) {
    return part == u"verb" ? 300 : part == u"noun" ? 60 : 0;
}

} // namespace

TEST(EntryOrderTest, PutsTheUsualPartOfSpeechFirstAndFieldsAndFormsLast) {
    std::vector<Entry> entries{entryOf(u"noun"_s, {u"Ansturm"_s}), entryOf(u"verb"_s, {u"fahren"_s}),
                               entryOf({}, {u"gelaufen"_s}),       entryOf(u"adjective"_s, {u"laufend"_s}),
                               entryOf(u"verb"_s, {u"lauten"_s}),  entryOf(u"verb"_s, {u"laufen"_s})};
    entries[1].senses[0].definition = u"naut.; by ship"_s;
    entries[2].isOfForm = true;
    entries[5].senses[0].examples.push_back({u"he runs"_s, u"er läuft"_s});
    orderEntries(entries, timesOfRun, u"deu"_s);
    EXPECT_THAT(firstOnes(entries), testing::ElementsAre(u"laufen"_s, u"lauten"_s, u"fahren"_s, u"Ansturm"_s,
                                                         u"laufend"_s, u"gelaufen"_s));
}

TEST(EntryOrderTest, ReadsPartsAndFormsFromTheMarksOfTheTranslations) {
    EXPECT_EQ(readFreeDictEntry(u"house /h/\nHaus <neut>\n"_s).partOfSpeech, u"noun");
    EXPECT_EQ(readFreeDictEntry(u"run /r/\nlaufen <v, intr>\n"_s).partOfSpeech, u"verb");
    const Entry field =
        readFreeDictEntry(u"run /r/\n [Am.] Laufmasche <fem> [textil.]\n   Note: für Strümpfe\n"_s);
    EXPECT_EQ(field.senses.at(0).translations, QStringList{u"Laufmasche"_s});
    EXPECT_EQ(field.senses.at(0).definition, u"Am.; textil.; für Strümpfe");
    EXPECT_TRUE(readFreeDictEntry(u"run /r/\ngelaufen\n see: {run}, {running}\n"_s).isOfForm);
    EXPECT_FALSE(readFreeDictEntry(u"run /r/\nlaufen <v>\n see: {run}, {running}\n"_s).isOfForm);
}

TEST(EntryOrderTest, PutsMixedSensesInTheOrderOfWhatTheyMean) {
    Entry entry = entryOf({}, {u"arranque"_s, u"atropellar"_s, u"correr"_s, u"funcionar"_s});
    orderSenses(entry, {{u"arranque"_s, u"correr"_s}, false, u"spa"_s});
    EXPECT_EQ(translationsOf(entry),
              (QStringList{u"arranque"_s, u"correr"_s, u"atropellar"_s, u"funcionar"_s}));
    orderSenses(entry, {{u"arranque"_s, u"correr"_s}, true, u"spa"_s});
    EXPECT_EQ(translationsOf(entry).first(), u"correr") << "the word is a verb";
    EXPECT_EQ(translationsOf(entry).last(), u"arranque");

    const std::vector<Entry> reversed{entryOf(u"adjective"_s, {u"a"_s}), entryOf(u"noun"_s, {u"b"_s}),
                                      entryOf({}, {u"c"_s})};
    EXPECT_EQ(likelyTranslations(reversed, timesOfRun), (QStringList{u"b"_s, u"c"_s, u"a"_s}));
}

TEST(EntryOrderTest, JoinsEntriesThatHoldOneTranslationEach) {
    std::vector<Entry> entries{entryOf(u"verb"_s, {u"běhat"_s}), entryOf(u"noun"_s, {u"běh"_s}),
                               entryOf(u"verb"_s, {u"klusat"_s}), entryOf(u"verb"_s, {u"pádit"_s})};
    entries[3].senses[0].examples.push_back({u"run!"_s, u"běž!"_s});
    entries = withBareOnesJoined(std::move(entries));
    ASSERT_EQ(entries.size(), 3U);
    EXPECT_EQ(translationsOf(entries[0]), (QStringList{u"běhat"_s, u"klusat"_s}));
}

TEST(EntryOrderTest, GivesLearnersTheLikelyTranslationFirst) {
    const WordNet wordNet(u"/usr/share/wordnet"_s);
    const English english(wordNet);
    Dictionaries dictionaries(u"/usr/share/dictd"_s);
    WordLookup lookup(english, wordNet, dictionaries);
    struct Case {
        QString language;
        QString word;
        QString translation;
    };
    for (const Case &each : QList<Case>{{u"deu"_s, u"run"_s, u"laufen"_s},
                                        {u"deu"_s, u"house"_s, u"Haus"_s},
                                        {u"deu"_s, u"time"_s, u"Zeit"_s},
                                        {u"fra"_s, u"run"_s, u"courir"_s},
                                        {u"fra"_s, u"good"_s, u"bon"_s},
                                        {u"spa"_s, u"light"_s, u"luz"_s},
                                        {u"spa"_s, u"hand"_s, u"mano"_s},
                                        {u"ita"_s, u"run"_s, u"correre"_s},
                                        {u"rus"_s, u"house"_s, u"дом"_s},
                                        {u"tur"_s, u"house"_s, u"ev"_s}}) {
        for (const auto &dictionary : dictionaries.of(each.language)) {
            if (const auto *reversed = dynamic_cast<const ReversedDictionary *>(dictionary.get()))
                reversed->waitUntil(std::chrono::steady_clock::now() + std::chrono::seconds(30));
        }
        const LookedUp found = lookup.lookUp(each.word, 0, each.language);
        ASSERT_FALSE(found.headwords.empty() || found.headwords[0].entries.empty())
            << each.word.toStdString();
        EXPECT_EQ(translationsOf(found.headwords[0].entries[0].entry).value(0), each.translation)
            << each.language.toStdString() << ": " << each.word.toStdString();
    }
}

} // namespace murvo::service::test
