// SPDX-License-Identifier: GPL-3.0-or-later
#include "Dictionary/ReversedDictionary.h"
#include "Dictionary/Dictionaries.h"
#include "Languages.h"

#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

using namespace Qt::Literals::StringLiterals;

namespace murvo::service::test {

class ReversedDictionaryTest : public testing::Test {
  protected:
    /// Writes a dictionary from Danish with these entries; keys are no matter, so they are in no order.
    void make(const QList<QByteArray> &entries) const {
        QByteArray index;
        QByteArray text;
        for (const QByteArray &entry : entries) {
            index += DictdDictionary::indexLine("key" + QByteArray::number(-text.size()),
                                                {text.size(), entry.size()});
            text += entry;
        }
        write(u".index"_s, index);
        write(u".dict"_s, text);
    }
    void write(const QString &ending, const QByteArray &bytes) const {
        QFile file(path() + ending);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    [[nodiscard]] QString path() const { return folder.filePath(u"freedict-dan-eng"_s); }

    static void waitFor(const BilingualDictionary &dictionary) {
        const auto &reversed = dynamic_cast<const ReversedDictionary &>(dictionary);
        ASSERT_TRUE(reversed.waitUntil(std::chrono::steady_clock::now() + std::chrono::seconds(30)));
    }
    /// "verb: løbe, springe; løbe hurtigt": parts of speech, senses.
    [[nodiscard]] static QStringList found(const std::vector<Entry> &entries) {
        QStringList parts;
        for (const Entry &entry : entries) {
            QStringList senses;
            for (const Sense &sense : entry.senses)
                senses.append(sense.translations.join(u", "_s));
            parts.append(entry.partOfSpeech + u": "_s + senses.join(u"; "_s));
        }
        return parts;
    }
    [[nodiscard]] QStringList lookUp(const QString &word) const {
        const ReversedDictionary dictionary(path(), {});
        waitFor(dictionary);
        EXPECT_EQ(dictionary.has(word), !dictionary.entries(word).empty());
        return found(dictionary.entries(word));
    }

    QTemporaryDir folder;
};

TEST_F(ReversedDictionaryTest, PutsTheWordThatMeansOnlyThisFirst) {
    make({"jagthund /x/ <n>\nhound, hunting dog, dog\n", "hund /x/ <n>\ndog\n", "stor hund /x/ <n>\ndog\n",
          "vovse /x/ <n>\n1. doggie\n2. dog (in the language of children)\n", "følge /x/ <v>\nto dog\n"});
    EXPECT_THAT(lookUp(u"Dog"_s),
                testing::ElementsAre(u"noun: hund, stor hund; jagthund; vovse"_s, u"verb: følge"_s));
    const ReversedDictionary dictionary(path(), {});
    waitFor(dictionary);
    const std::vector<Entry> entries = dictionary.entries(u"dog"_s);
    EXPECT_EQ(entries.at(0).headword, u"dog");
    EXPECT_EQ(entries.at(0).pronunciation, QString()) << "the Danish word's is not the English one's";
    EXPECT_EQ(entries.at(0).senses.at(1).synonyms, (QStringList{u"hound"_s, u"hunting dog"_s}));
    EXPECT_EQ(entries.at(0).senses.at(2).definition, u"in the language of children");
}

TEST_F(ReversedDictionaryTest, FindsAWordHoweverTheTranslationIsWritten) {
    make({"a\nto run\n", "b\n(to) walk\n", "c\nrun [fast]\n", "d\na house\n", "e\nmother‐in‐law\n",
          "f\ndon’t\n", "g\nGood morning!\n", "h\nsomething that is said of a rather long definition\n",
          "i\n(the)\n", "j\n«»\n", "k\nto\n"});
    for (const auto &[word, answer] : QList<QPair<QString, QString>>{{u"run"_s, u"verb: a"_s},
                                                                     {u"walk"_s, u"verb: b"_s},
                                                                     {u"house"_s, u": d"_s},
                                                                     {u"a house"_s, u": d"_s},
                                                                     {u"mother-in-law"_s, u": e"_s},
                                                                     {u"don't"_s, u": f"_s},
                                                                     {u"good morning"_s, u": g"_s},
                                                                     {u"to"_s, u": k"_s}})
        EXPECT_EQ(lookUp(word).value(0), answer) << word.toStdString();
    EXPECT_EQ(lookUp(u"run"_s).value(1), u": c");
    for (const QString &word : {u"something"_s, u"the"_s, u""_s, u"«»"_s, u"fast"_s})
        EXPECT_THAT(lookUp(word), testing::IsEmpty()) << word.toStdString();
}

TEST_F(ReversedDictionaryTest, GivesNoMoreHeadwordsThanCanBeRead) {
    QList<QByteArray> entries;
    for (int i = 0; i < 3000; ++i)
        entries.append("ord" + QByteArray::number(i) + "\nword, synonym" + QByteArray::number(i) + "\n");
    make(entries);
    const QStringList all = lookUp(u"word"_s);
    ASSERT_EQ(all.size(), 1);
    EXPECT_EQ(all[0].count(u';') + 1, 8);
    EXPECT_EQ(lookUp(u"synonym2999"_s), QStringList{u": ord2999"_s});
}

TEST_F(ReversedDictionaryTest, WhetherALanguageHasDictionariesIsToldWithoutOpeningThem) {
    Dictionaries installed(u"/usr/share/dictd"_s);
    int count = 0;
    for (const Language &language : knownLanguages()) {
        count += installed.areThere(language.code) ? 1 : 0;
        EXPECT_EQ(installed.areThere(language.code), !installed.of(language.code).empty())
            << language.englishName.latin1();
    }
    EXPECT_GT(count, 10);
    EXPECT_FALSE(Dictionaries(folder.path()).areThere(u"fra"_s));
}

TEST_F(ReversedDictionaryTest, LivesWithDamagedFiles) {
    write(u".index"_s,
          "\n\t\t\nalpha\nbeta\t!!\tB\ndelta\tzzzzzz\tzzzz\neps\tA\tzzzzzzzzz\ngood\tA\tH\nhalf\tA");
    write(u".dict"_s, "g\xFF\ngood");
    EXPECT_EQ(lookUp(u"good"_s), QStringList{u": g\uFFFD"_s});
    write(u".dict"_s, "");
    EXPECT_THAT(lookUp(u"good"_s), testing::IsEmpty());
    ASSERT_TRUE(QFile::remove(path() + u".index"_s));
    EXPECT_THAT(lookUp(u"good"_s), testing::IsEmpty());
    EXPECT_THAT(Dictionaries(folder.path()).of(u"dan"_s), testing::IsEmpty());

    // A real one, its packed text cut or with bytes turned over.
    ASSERT_TRUE(QFile::copy(u"/usr/share/dictd/freedict-slk-eng.index"_s, path() + u".index"_s));
    QFile real(u"/usr/share/dictd/freedict-slk-eng.dict.dz"_s);
    ASSERT_TRUE(real.open(QIODevice::ReadOnly));
    const QByteArray whole = real.readAll();
    for (int round = 0; round < 24; ++round) {
        QByteArray broken = round < 12 ? whole.left(whole.size() * round / 12) : whole;
        if (round >= 12)
            broken[whole.size() * (round - 12) / 12 + 3] ^= 0x41;
        write(u".dict.dz"_s, broken);
        std::ignore = lookUp(u"son"_s);
    }
    write(u".dict.dz"_s, whole);
    EXPECT_EQ(lookUp(u"son"_s), QStringList{u": syn"_s});
}

TEST_F(ReversedDictionaryTest, IsNotWaitedForAndGivenUpWhenNobodyNeedsItAnyMore) {
    QList<QByteArray> entries;
    for (int i = 0; i < 60'000; ++i)
        entries.append("ord" + QByteArray::number(i) + "\n1. word " + QByteArray::number(i) + "\n2. other\n");
    make(entries);
    Dictionaries dictionaries(folder.path());
    dictionaries.prepare([] { return u"dan"_s; });
    std::vector<std::jthread> askers;
    askers.reserve(4);
    for (int i = 0; i < 4; ++i) {
        askers.emplace_back([&dictionaries] {
            const Dictionaries::List &danish = dictionaries.of(u"dan"_s);
            ASSERT_EQ(danish.size(), 1U);
            std::ignore = danish[0]->has(u"word 59999"_s); // there or not yet, but an answer
            waitFor(*danish[0]);
            EXPECT_EQ(found(danish[0]->entries(u"word 59999"_s)), QStringList{u": ord59999"_s});
        });
    }
    askers.clear();
    const ReversedDictionary abandoned(path(), {});
}

TEST_F(ReversedDictionaryTest, SaysWhatItIsAndWhatMayBeDoneWithIt) {
    Dictionaries installed(u"/usr/share/dictd"_s);
    for (const auto &[language, dog] : QList<QPair<QString, QString>>{
             {u"dan"_s, u"hund"_s}, {u"isl"_s, u"hundur"_s}, {u"slv"_s, u"pes"_s}, {u"nld"_s, u"hond"_s}}) {
        const Dictionaries::List &list = installed.of(language);
        ASSERT_FALSE(list.empty()) << language.toStdString();
        const BilingualDictionary &dictionary = *list.back();
        EXPECT_TRUE(dictionary.isReversed());
        waitFor(dictionary);
        EXPECT_THAT(found(dictionary.entries(u"dog"_s)).join(u' ').toStdString(),
                    testing::HasSubstr(dog.toStdString()));
        EXPECT_TRUE(dictionary.source().name.endsWith(u", read backwards"));
        EXPECT_FALSE(dictionary.source().licence.isEmpty()) << language.toStdString();
    }
    EXPECT_FALSE(installed.of(u"nld"_s).front()->isReversed()) << "those from English come first";
    EXPECT_EQ(installed.of(u"deu"_s).size(), 1U);
}

} // namespace murvo::service::test
