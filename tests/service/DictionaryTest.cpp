// SPDX-License-Identifier: GPL-3.0-or-later
#include "Dictionary/DictdDictionary.h"
#include "Dictionary/FreeDictEntry.h"
#include "service/ServiceFixture.h"

#include <QDir>
#include <QFile>
#include <QRandomGenerator>

using namespace Qt::Literals::StringLiterals;

namespace murvo::service::test {

namespace {

QString installed(const QString &name) {
    return u"/usr/share/dictd/"_s + name;
}

QByteArray inBase64(qint64 number) {
    static const QByteArray alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    QByteArray digits;
    do
        digits.prepend(alphabet[number % 64]);
    while ((number /= 64) > 0);
    return digits;
}

Entry firstEntry(const QString &dictionary, QStringView word) {
    const QStringList texts = DictdDictionary(installed(dictionary)).entries(word);
    return texts.isEmpty() ? Entry() : readFreeDictEntry(texts.first());
}

} // namespace

class DictionaryTest : public testing::Test {
  protected:
    void write(const QString &ending, const QByteArray &bytes) const {
        QFile file(path() + ending);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    [[nodiscard]] QString path() const { return folder.filePath(u"made"_s); }

    /// Writes a plain dictionary with these keys in this order; each entry is "KEY\n  text of KEY".
    void make(const QList<QByteArray> &keys) const {
        QByteArray index;
        QByteArray text;
        for (const QByteArray &key : keys) {
            const QByteArray entry = key + "\n  text of " + key + "\n";
            index += key + '\t' + inBase64(text.size()) + '\t' + inBase64(entry.size()) + '\n';
            text += entry;
        }
        write(u".index"_s, index);
        write(u".dict"_s, text);
    }

    QTemporaryDir folder;
};

TEST_F(DictionaryTest, FindsEveryKeyOfWhatIsInstalled) {
    for (const QString &name : {u"freedict-eng-fra"_s, u"freedict-eng-rus"_s, u"freedict-eng-tur"_s}) {
        const DictdDictionary dictionary(installed(name));
        ASSERT_TRUE(dictionary.isOpen()) << name.toStdString();
        int keys = 0;
        QStringList missing;
        dictionary.eachKey([&](std::string_view key) {
            const QString word = QString::fromUtf8(key.data(), static_cast<qsizetype>(key.size()));
            constexpr int unpacked = 50; // every so many'th; the others are only looked for
            const bool isFound =
                ++keys % unpacked == 0 ? !dictionary.entries(word).isEmpty() : dictionary.has(word);
            if (!isFound && !word.trimmed().isEmpty())
                missing.append(word);
        });
        EXPECT_GT(keys, 1000);
        EXPECT_THAT(missing, testing::IsEmpty()) << name.toStdString();
        EXPECT_FALSE(dictionary.shortName().isEmpty());
        EXPECT_FALSE(dictionary.information().isEmpty());
    }
}

TEST_F(DictionaryTest, ReadsAnyPlaceOfAPackedText) {
    const DictdDictionary german(installed(u"freedict-eng-deu"_s));
    for (const QString &word : {u"run"_s, u"zebra"_s, u"aback"_s, u"give up"_s, u"Children"_s})
        EXPECT_THAT(german.entries(word), testing::Not(testing::IsEmpty())) << word.toStdString();
    EXPECT_TRUE(german.has(u"mother-in-law")) << "written motherinlaw";
    EXPECT_TRUE(german.has(u"don't")) << "written dont";
    EXPECT_FALSE(german.has(u"00databaseinfo"));
    EXPECT_THAT(german.entries(u"qwxyz"), testing::IsEmpty());
    EXPECT_THAT(german.entries(QString(10'240, u'a')), testing::IsEmpty());
}

TEST_F(DictionaryTest, GivesTheParts) {
    Entry entry = firstEntry(u"freedict-eng-fra"_s, u"run");
    EXPECT_EQ(entry.headword, u"run");
    EXPECT_EQ(entry.pronunciation, u"rʌn");
    ASSERT_EQ(entry.senses.size(), 4U);
    EXPECT_EQ(entry.senses[2].translations, (QStringList{u"s'élancer"_s, u"se précipiter"_s}));

    entry = firstEntry(u"freedict-eng-deu"_s, u"child");
    ASSERT_EQ(entry.senses.size(), 1U);
    EXPECT_EQ(entry.senses[0].translations, QStringList{u"Kind"_s}) << "no mark of gender";
    ASSERT_FALSE(entry.senses[0].examples.empty());
    EXPECT_EQ(entry.senses[0].examples[0].text, u"children aged three");
    EXPECT_EQ(entry.senses[0].examples[0].translation, u"Kinder im Alter von drei Jahren");
    EXPECT_EQ(entry.senses[0].synonyms, QStringList{u"bairn"_s});

    entry = firstEntry(u"freedict-eng-jpn"_s, u"give up");
    EXPECT_EQ(entry.partOfSpeech, u"verb");
    EXPECT_EQ(entry.pronunciation, u"ɡˈɪv ˈʌp");
    ASSERT_EQ(entry.senses.size(), 2U);
    EXPECT_EQ(entry.senses[0].translations, (QStringList{u"諦める"_s, u"やめる"_s}));
    EXPECT_EQ(entry.senses[0].definition, u"abandon");

    entry = firstEntry(u"freedict-eng-ind"_s, u"run");
    ASSERT_EQ(entry.senses.size(), 4U) << "inner numbers begin no sense";
    EXPECT_EQ(entry.senses[0].translations, QStringList{u"menjalankan"_s});
    EXPECT_THAT(entry.senses[0].definition.toStdString(),
                testing::StartsWith("to be in charge of; to execute"));

    entry = firstEntry(u"freedict-eng-hin"_s, u"run");
    ASSERT_GT(entry.senses.size(), 3U);
    EXPECT_EQ(entry.senses[3].translations, QStringList{u"लम्बा दौर"_s}) << "~ is a space";
    EXPECT_EQ(entry.senses[0].examples[0].text, u"She goes for a run every morning.");

    entry = firstEntry(u"freedict-eng-pol"_s, u"child");
    ASSERT_EQ(entry.senses.size(), 1U);
    EXPECT_EQ(entry.senses[0].translations, QStringList{u"dziecko"_s});
    EXPECT_EQ(entry.partOfSpeech, u"noun");
}

TEST_F(DictionaryTest, PartsATextWithSections) {
    const QString text = DictdDictionary(installed(u"freedict-eng-pol"_s)).entries(u"good"_s).value(0);
    QStringList told;
    for (const QString &section : sectionsOf(text)) {
        const Entry entry = readFreeDictEntry(section);
        told.append(entry.headword + u" "_s + entry.partOfSpeech);
        for (const Sense &sense : entry.senses) {
            EXPECT_FALSE(sense.translations.value(0).contains(u'.')) << section.toStdString();
            EXPECT_FALSE(sense.translations.value(0).contains(u"(:"));
        }
    }
    EXPECT_THAT(told.mid(0, 3),
                testing::ElementsAre(u"good adjective"_s, u"good noun"_s, u"good afternoon noun"_s));
    const Entry noun = readFreeDictEntry(sectionsOf(text).value(1));
    ASSERT_GT(noun.senses.size(), 1U);
    EXPECT_EQ(noun.senses[0].definition, u"zjawisko");
    ASSERT_FALSE(noun.senses[1].examples.empty());
    EXPECT_EQ(noun.senses[1].examples[0].text, u"Good!");
    EXPECT_EQ(noun.senses[1].examples[0].translation, u"Dobrze!");
    EXPECT_EQ(sectionsOf(u"run /r/\nI. biec\n"_s).size(), 1) << "no section";
}

TEST_F(DictionaryTest, KeepsTheLayoutOfADictionaryOutOfTheTranslations) {
    const auto first = [](const QString &text) { return readFreeDictEntry(text).senses.at(0).translations; };
    EXPECT_EQ(first(u"page /pˈeɪdʒ/ (p. /pˈiː/)\nSeite <fem>S.,  /ˈɛs/ , Blatt <neut> [print]\n"_s),
              (QStringList{u"Seite"_s, u"Blatt"_s}));
    EXPECT_EQ(first(u"number /n/\nZahl <fem> [math.] Z.,  /zˈɛd/\n"_s), QStringList{u"Zahl"_s});
    EXPECT_EQ(first(u"see /sˈiː/\n1. (saw, seen) görmek\n2. geçirmek. see about icabına bakmak, bulmak.\n"_s),
              QStringList{u"görmek"_s});
    EXPECT_EQ(first(u"goose /ɡ/\n1. (çoğ.) geese)  kaz, (zool.) Anser\n2. kaz eti.\n"_s),
              QStringList{u"kaz"_s});
    EXPECT_EQ(first(u"why?\n1. hoezo?, waarom?\n"_s), (QStringList{u"hoezo?"_s, u"waarom?"_s}));
    EXPECT_TRUE(readFreeDictEntry(u"geese /ɡ/\n1. (bak.) goose.\n"_s).senses.empty());
    EXPECT_EQ(first(u"lost <adj>\n失った (うしなった, ushinatta), 負けた (まけた, maketa)\n"_s),
              (QStringList{u"失った"_s, u"負けた"_s}));
    EXPECT_EQ(first(u"think <v>\n1. 考える, 思考\ncommunicate to oneself in one’s mind\n"_s),
              (QStringList{u"考える"_s, u"思考"_s}));
    EXPECT_EQ(first(u"go <V>\n1. हो_जाना{स्थिति}\n"_s), QStringList{u"हो जाना"_s});
    EXPECT_EQ(first(u"should <V Mod>\n 1.  a. powinien, powinna  [w liczbach]\n b.\n"_s),
              (QStringList{u"powinien"_s, u"powinna"_s}));
    const Entry broke = readFreeDictEntry(
        u"broke /b/ <Adj>\n 1.  [nieform]  goły\n 2.  go broke (go V: :broke)\n - bankrutować\n"_s);
    ASSERT_EQ(broke.senses.size(), 1U);
    EXPECT_EQ(broke.senses[0].examples.at(0).text, u"go broke");
    EXPECT_EQ(broke.senses[0].examples.at(0).translation, u"bankrutować");
}

TEST_F(DictionaryTest, LeavesOutEntriesOfLongerWordsThatWereCutShort) {
    std::vector<Entry> entries;
    for (const QString &text : DictdDictionary(installed(u"freedict-eng-spa"_s)).entries(u"child"))
        entries.push_back(readFreeDictEntry(text));
    ASSERT_GT(entries.size(), 1U);
    entries = withoutCutHeadwords(std::move(entries));
    ASSERT_EQ(entries.size(), 1U);
    EXPECT_EQ(entries[0].senses.at(0).translations, QStringList{u"niño"_s});
}

TEST_F(DictionaryTest, FindsWordsOfAnUnsortedIndexAfterPuttingItInOrder) {
    make({"pear", "apple", "zoo", "fig", "apple"});
    DictdDictionary dictionary(path());
    dictionary.makeSorted();
    for (const QString &word : {u"pear"_s, u"apple"_s, u"zoo"_s, u"fig"_s})
        EXPECT_TRUE(dictionary.has(word)) << word.toStdString();
    EXPECT_EQ(dictionary.entries(u"apple").size(), 2);
    EXPECT_FALSE(dictionary.has(u"plum"));
}

TEST_F(DictionaryTest, LivesWithDamagedFiles) {
    EXPECT_FALSE(DictdDictionary(u"/nowhere/at-all"_s).isOpen());
    // Lines without columns, numbers that are none or lie beyond the end, bad UTF-8, no end of line.
    write(u".index"_s,
          "\n\t\t\nalpha\nbeta\t!!\tB\ndelta\tzzzzzz\tzzzz\neps\tA\tzzzzzzzzz\ngood\tA\tF\nhalf\tA");
    write(u".dict"_s, "go\xFF\xFE"
                      "d");
    const DictdDictionary odd(path());
    for (const QString &word : {u"alpha"_s, u"beta"_s, u"delta"_s, u"eps"_s, u"half"_s, u""_s})
        EXPECT_THAT(odd.entries(word), testing::IsEmpty()) << word.toStdString();
    EXPECT_EQ(odd.entries(u"good"), QStringList{u"go\uFFFD\uFFFDd"_s});

    // The packed text of a real one, cut at many places and with bytes turned over.
    QFile real(installed(u"freedict-eng-rus.dict.dz"_s));
    ASSERT_TRUE(real.open(QIODevice::ReadOnly));
    const QByteArray whole = real.readAll();
    QFile::remove(path() + u".index"_s);
    ASSERT_TRUE(QFile::copy(installed(u"freedict-eng-rus.index"_s), path() + u".index"_s));
    QRandomGenerator random(7);
    for (int round = 0; round < 120; ++round) {
        QByteArray broken = whole;
        if (round < 60)
            broken.truncate(round < 40 ? round : random.bounded(static_cast<int>(whole.size())));
        else
            for (int i = 0; i < 8; ++i)
                broken[random.bounded(round < 90 ? 64 : static_cast<int>(broken.size()))] ^= 0x41;
        write(u".dict.dz"_s, broken);
        const DictdDictionary dictionary(path());
        for (const QString &word : {u"child"_s, u"run"_s, u"zoo"_s}) {
            for (const QString &text : dictionary.entries(word))
                std::ignore = readFreeDictEntry(text);
        }
    }
    for (const QByteArray &text :
         {QByteArray(), QByteArray("\n\n\n"), QByteArray("run\n1.\n2. \n\"\n\"\"\n Note:"),
          QByteArray("/ / <>\n<>\n(((("), QByteArray(100'000, '\n')})
        EXPECT_THAT(readFreeDictEntry(QString::fromUtf8(text)).senses, testing::SizeIs(testing::Le(1)));
}

} // namespace murvo::service::test
