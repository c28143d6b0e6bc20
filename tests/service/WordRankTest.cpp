// SPDX-License-Identifier: GPL-3.0-or-later
#include "Dictionary/DictdDictionary.h"
#include "Dictionary/English.h"
#include "Dictionary/WordNet.h"
#include "Dictionary/rank/WordScores.h"
#include "service/ServiceFixture.h"

#include <QTemporaryDir>
#include <QtEndian>

#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace murvo::service::test {

namespace {

const WordNet &wordNet() {
    static const WordNet files(u"/usr/share/wordnet"_s);
    return files;
}

const English &english() {
    static const English words(wordNet(), WordRank::ofProgram());
    return words;
}

QStringList listOf(const char *words) {
    return QString::fromLatin1(words).split(u' ');
}

struct Band {
    const char *level;
    int first;
    int last;
    QStringList words;
};

template<typename Number>
QByteArray littleEndian(Number number) {
    QByteArray bytes(sizeof number, '\0');
    qToLittleEndian(number, bytes.data());
    return bytes;
}

/// A language model as speech recognisers have it, of single words alone.
QByteArray packedModel(const std::vector<std::pair<QByteArray, double>> &shares) {
    QByteArray bytes = "Trie Language Model" + littleEndian<quint8>(3);
    for (const auto count : {quint32(shares.size()), 0U, 0U})
        bytes += littleEndian<quint32>(count);
    bytes += littleEndian<quint32>(0);
    QByteArray words;
    for (const auto &[word, share] : shares) {
        const auto logarithm = static_cast<float>(std::log(share) / std::log(1.0001));
        bytes += littleEndian(logarithm) + littleEndian(0.F) + littleEndian<quint32>(0);
        words += word + '\0';
    }
    return bytes + QByteArray(12, 'x') + littleEndian(quint32(words.size())) + words;
}

/// Files that the list is made of, small enough to know what must come out.
class RankSourcesTest : public testing::Test {
  protected:
    QString write(const QString &name, const QByteArray &bytes) {
        QFile file(_folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
        return file.fileName();
    }
    [[nodiscard]] QString folder() const { return _folder.path(); }

  private:
    QTemporaryDir _folder;
};

} // namespace

TEST(WordRankTest, FindsThePlaceOfEachWordOfAList) {
    const WordRank ranks(QByteArray("\n the\nthe\r\nto\n\n\nbe\r\nto\nünder\nlast"));
    EXPECT_EQ(ranks.of(u" the"_s), 1) << "a line is a word as it stands";
    EXPECT_EQ(ranks.of(u"the"_s), 2);
    EXPECT_EQ(ranks.of(u"to"_s), 3) << "the first of two places";
    EXPECT_EQ(ranks.of(u"be"_s), 4);
    EXPECT_EQ(ranks.of(u"ünder"_s), 6);
    EXPECT_EQ(ranks.of(u"last"_s), 7) << "without an end of its line";
    EXPECT_EQ(ranks.size(), 6);
    for (const QString &other : {u""_s, u"t"_s, u"th"_s, u"them"_s, u"zzz"_s, u"The"_s, u"\n"_s, u"the\r"_s})
        EXPECT_EQ(ranks.of(other), 0) << other.toStdString();
    for (const QByteArray &none : {QByteArray(), QByteArray("\n\r\n"), QByteArray("\xff\xfe\0\x01", 4)}) {
        EXPECT_EQ(WordRank(none).of(u"the"_s), 0);
        EXPECT_EQ(WordRank(none).of(u""_s), 0);
    }
    EXPECT_EQ(English(wordNet()).rank(u"the"_s), 0) << "no list, no places";
}

TEST(WordRankTest, EverydayWordsComeFirstAndScholarlyOnesFarBehind) {
    EXPECT_GE(WordRank::ofProgram().size(), 15'000);
    for (const QString &word :
         listOf("the i you be not go yes no okay hey hello please sorry thank mother money "
                "house doctor car eat love kill happy today god"))
        EXPECT_TRUE(english().rank(word) > 0 && english().rank(word) <= 1000)
            << word.toStdString() << " is " << english().rank(word);
    for (const QString &word :
         listOf("obfuscate perfunctory hegemony epistemology quagmire metonymy sycophant"))
        EXPECT_TRUE(english().rank(word) == 0 || english().rank(word) > 10'000)
            << word.toStdString() << " is " << english().rank(word);
}

TEST(WordRankTest, FormsAreGradedAsTheirWords) {
    for (const QString &pair :
         {u"went go"_s, u"children child"_s, u"thought think"_s, u"don't do"_s, u"gonna go"_s,
          u"wedding wedding"_s, u"better good"_s, u"Mom mom"_s, u"cookies cookie"_s}) {
        const QString word = english().lemmas(pair.section(u' ', 0, 0)).value(0);
        EXPECT_EQ(word, pair.section(u' ', 1));
        EXPECT_GT(english().rank(word), 0) << word.toStdString();
    }
    for (const QString &form : listOf("went children don't gonna houses was ain paris wisconsin t"))
        EXPECT_EQ(english().rank(form), 0) << form.toStdString() << " is no dictionary form";
    EXPECT_LT(english().rank(u"see"_s), 200);
    EXPECT_GT(english().rank(u"saw"_s), 2000) << "the tool has little of what is said of seeing";
}

TEST(WordRankTest, WordsFallIntoTheLevelsThatATeacherWouldGiveThem) {
    const Band bands[] = {
        {"A1", 1, 500, listOf("water mother house school book friend money car family child drink eat")},
        {"A2", 501, 1500,
         listOf("kitchen ticket angry hospital weather dream invite dirty bridge careful tired")},
        {"B1", 1501, 3000,
         listOf("arrest complain jealous evidence explain whisper honest victim rescue warn")},
        {"B2", 3001, 6000,
         listOf("reluctant hostile betray obsession gossip bribe scandal clumsy stubborn wander")},
        {"C1", 6001, 12'000,
         listOf("plausible eloquent scrutiny tedious relentless alleviate lenient dismal")},
        {"C2", 12'001, 100'000, listOf("obfuscate perfunctory quagmire mendacious recalcitrant sycophant")}};
    const auto bandOf = [&bands](int rank) {
        const auto found = std::find_if(std::begin(bands), std::end(bands), [rank](const Band &each) {
            return rank >= each.first && rank <= each.last;
        });
        return static_cast<int>((found == std::end(bands) ? found - 1 : found) - std::begin(bands));
    };
    int count = 0;
    int right = 0;
    for (int band = 0; band < static_cast<int>(std::size(bands)); ++band) {
        for (const QString &word : bands[band].words) {
            const int rank = english().rank(word);
            EXPECT_LE(std::abs(bandOf(rank) - band), 1)
                << word.toStdString() << " of " << bands[band].level << " has place " << rank;
            right += bandOf(rank) == band ? 1 : 0;
            ++count;
        }
    }
    std::cout << right << " of " << count << " words have their own level, the others are one beside\n";
    EXPECT_GE(right * 100, count * 60);
}

TEST(WordRankTest, AWordGoesBeforeALessUsedOneThatItMayBeAFormOf) {
    EXPECT_EQ(English(wordNet(), WordRank("wedding\nwed\n")).lemmas(u"wedding"), listOf("wedding wed"));
    EXPECT_EQ(English(wordNet(), WordRank("wed\nwedding\n")).lemmas(u"wedding"), listOf("wed wedding"));
    EXPECT_EQ(English(wordNet(), WordRank("found\nfind\n")).lemmas(u"found").first(), u"find")
        << "what WordNet's makers met oftener stays the likelier";
}

TEST_F(RankSourcesTest, ALanguageModelTellsHowOftenAFormIsSaid) {
    const QByteArray model = packedModel({{"'em", 0.25}, {"</s>", 0.25}, {"saw", 0.5}});
    const std::vector<SaidForm> said = readSpeechModel(write(u"whole"_s, model));
    ASSERT_EQ(said.size(), 3U);
    EXPECT_EQ(said[2].form, "saw");
    EXPECT_NEAR(said[0].perMillion, 250'000, 100);
    EXPECT_NEAR(said[2].perMillion, 500'000, 100);

    const QByteArray odd = packedModel({{"a", 0.1}, {"b", 0.1}});
    for (const QByteArray &bytes : {QByteArray(), QByteArray("text"), model.first(30), model.first(60),
                                    model.chopped(4), odd, QByteArray(model).replace(20, 1, "\xff")})
        EXPECT_THROW((void)readSpeechModel(write(u"damaged"_s, bytes)), std::runtime_error)
            << bytes.toStdString();
    EXPECT_THROW((void)readSpeechModel(u"/nowhere"_s), std::runtime_error);
    EXPECT_THROW(SpellingLists(u"/nowhere"_s), std::runtime_error);
}

TEST_F(RankSourcesTest, WhatIsSaidAndReadIsSharedAmongTheDictionaryForms) {
    const QByteArray text =
        "saw /x/\n1. y\n      \"Yesterday Rob saw us.\"\nrob\n      \"They rob banks.\"  - Sie\n"
        "again\n      \"They rob banks.\"  - Sie\n";
    write(u"examples.index"_s, "again\tBO\tl\nrob\tr\tj\nsaw\tA\tr\n");
    write(u"examples.dict"_s, text);
    write(u"english-words.10"_s, "see\nsaw\nhe\nwill\ncolour\ngo\nto\nrob\nbank\nwe\n");
    write(u"english-upper.35"_s, "Rob\nPeter\n");
    ExampleSentences examples;
    const DictdDictionary dictionary(folder() + u"/examples"_s);
    examples.add(dictionary);
    EXPECT_EQ(examples.wordCount(), 7) << "each sentence once";
    EXPECT_DOUBLE_EQ(examples.shareOfWord("rob"), 0.5) << "once a name, once a word";

    const SpellingLists spelling(folder());
    const English plain(wordNet());
    const std::vector<SaidForm> said{
        {"saw", 5000}, {"gonna", 900}, {"he'll", 700}, {"peter", 9000}, {"qqq", 9000}};
    const QList<QByteArray> words =
        WordScores({plain, wordNet(), spelling, said, examples, {}, {}}).byUse(20);
    EXPECT_THAT(words, testing::IsSupersetOf({"see", "saw", "go", "to", "he", "will", "rob"}));
    EXPECT_EQ(words.first(), "see");
    EXPECT_GT(words.indexOf("saw"), words.indexOf("go")) << "most of \"saw\" is of seeing";
    EXPECT_THAT(words, testing::Not(testing::AnyOf(testing::Contains("peter"), testing::Contains("qqq"),
                                                   testing::Contains("gonna"))));
}

} // namespace murvo::service::test
