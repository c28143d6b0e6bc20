// SPDX-License-Identifier: GPL-3.0-or-later
#include "Dictionary/MuellerEntry.h"
#include "Dictionary/DictdDictionary.h"
#include "Dictionary/Dictionaries.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace murvo::service::test {

namespace {

/// "noun /laɪt/ свет, освещение | огонь": one text for each entry.
QStringList told(const std::vector<Entry> &entries) {
    QStringList texts;
    for (const Entry &entry : entries) {
        QStringList senses;
        for (const Sense &sense : entry.senses)
            senses.append(sense.translations.join(u", "_s) +
                          (sense.definition.isEmpty() ? QString() : u" {"_s + sense.definition + u'}'));
        texts.append(entry.partOfSpeech + u" /"_s + entry.pronunciation + u"/ "_s + senses.join(u" | "_s));
    }
    return texts;
}

} // namespace

TEST(MuellerEntryTest, MakesEachPartOfSpeechOfEachHomonymAnEntry) {
    const std::vector<Entry> entries = readMuellerEntries(
        u"light\n   _I  [laɪt]\n      1. _n.\n         1) свет; освещение, сияние; to see the light\n"
        "            а) увидеть свет, родиться;\n            б) выйти из печати\n"
        "         2) _pl. _разг. глаза\n         10)не по порядку\n"
        "         3) ручей, по-\n         ток\n      2. _v. (lit, lighted [ɪd]) зажигать(ся) (часто light "
        "up);\n"
        "      светить (кому-л.) light up закурить\n   _II[↗laɪtɘ:] = lite _a. лёгкий {см. light I}\n"_s);
    EXPECT_THAT(told(entries),
                testing::ElementsAre(
                    u"noun /laɪt/ свет, освещение, сияние | глаза 10)не по порядку {мн. ч., разг.} | "
                    "ручей, по-ток"_s,
                    u"verb /laɪt/ зажигать(ся) (часто light up), светить (кому-л.)"_s,
                    u" /ˈlaɪtɔː/ лёгкий {= lite}"_s));
    const Example &seen = entries.at(0).senses.at(0).examples.at(0);
    EXPECT_EQ(seen.text, u"to see the light");
    EXPECT_EQ(seen.translation, u"увидеть свет, родиться; выйти из печати");
    EXPECT_EQ(entries.at(1).senses.at(0).examples.at(0).translation, u"закурить");
}

TEST(MuellerEntryTest, SaysOfWhichWordAFormIs) {
    EXPECT_EQ(told(readMuellerEntries(u"went\n   [wɛnt] _p. от go 1\n"_s)),
              QStringList{u" /went/  {прош. время от go}"_s});
    EXPECT_TRUE(readMuellerEntries(u"flew\n   [flʊ:] _p. от fly II, 2\n"_s).at(0).isOfForm);
    EXPECT_EQ(told(readMuellerEntries(u"money\n   [m] _n.\n   1) деньги\n   2) _pl. (s [z]) валюты\n"_s)),
              QStringList{u"noun /m/ деньги | валюты {мн. ч.}"_s});
    EXPECT_EQ(told(readMuellerEntries(u"school-marm\n   [↗skʊ:lmɑ:m] = school-ma'am\n"_s)),
              QStringList{u" /ˈskuːlmɑːm/  {= school-ma'am}"_s});
}

TEST(MuellerEntryTest, ReadsEverythingThatIsInstalledWithoutItsOwnSigns) {
    const DictdDictionary dictionary(u"/usr/share/dictd/mueller7"_s);
    ASSERT_TRUE(dictionary.isOpen());
    int all = 0;
    int empty = 0;
    QStringList raw;
    dictionary.eachEntry([&](const DictdDictionary::Place &, const QString &text) {
        const std::vector<Entry> entries = readMuellerEntries(text);
        ++all;
        empty += entries.empty() ? 1 : 0;
        for (const QString &line : told(entries)) {
            if (line.contains(u'_') || line.contains(u'↗') || line.contains(u'\n'))
                raw.append(line);
        }
        return true;
    });
    EXPECT_GT(all, 46'000);
    EXPECT_LT(empty, all / 100);
    EXPECT_THAT(raw, testing::SizeIs(testing::Lt(20))) << raw.join(u'\n').toStdString();
}

TEST(MuellerEntryTest, FindsAPhraseUnderItsFirstWord) {
    Dictionaries installed(u"/usr/share/dictd"_s);
    const Dictionaries::List &russian = installed.of(u"rus"_s);
    ASSERT_EQ(russian.size(), 2U);
    EXPECT_THAT(russian[1]->source().licence.toStdString(), testing::HasSubstr("GNU GPL"));
    const std::vector<Entry> entries = russian[1]->entries(u"give up"_s);
    ASSERT_EQ(entries.size(), 1U);
    EXPECT_EQ(entries[0].headword, u"give up");
    EXPECT_THAT(told(entries)[0].toStdString(), testing::HasSubstr("отказаться"));
    EXPECT_THAT(russian[1]->entries(u"give qwxyz"_s), testing::IsEmpty());
    for (const Entry &entry : russian[1]->entries(u"give"_s)) {
        for (const Sense &sense : entry.senses)
            EXPECT_LE(sense.examples.size(), 5U) << "the phrases are dozens";
    }
}

TEST(MuellerEntryTest, LivesWithDamagedEntries) {
    const QString good = DictdDictionary(u"/usr/share/dictd/mueller7"_s).entries(u"light"_s).value(0);
    ASSERT_FALSE(good.isEmpty());
    for (qsizetype end = 0; end < good.size(); end += 7) {
        for (const Entry &entry : readMuellerEntries(good.left(end)))
            EXPECT_FALSE(entry.senses.empty());
    }
    for (const QString &odd :
         {u""_s, u"\n\n"_s, u"x\n1)"_s, u"x\n_I"_s, u"x\n((((;;;[[["_s, u"x\n_ _. 1. а)"_s,
          QString(100'000, u'\n'), u"x\n"_s + QString(20'000, u'('), u"x\n= "_s})
        EXPECT_THAT(readMuellerEntries(odd), testing::SizeIs(testing::Le(1)));
}

} // namespace murvo::service::test
