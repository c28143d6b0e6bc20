// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/ServiceFixture.h"

#include <QJsonArray>
#include <QUrl>

using namespace Qt::Literals::StringLiterals;

namespace murvo::service::test {

class WordLookupTest : public ServiceFixture {
  protected:
    void speak(const QString &language) {
        EXPECT_EQ(put(u"Api/Settings"_s, {{u"nativeLanguage"_s, language}}).status, 200);
    }

    [[nodiscard]] Reply answer(const QString &text, qsizetype at) {
        return get(u"Api/Dictionary/Word?at=%1&text="_s.arg(at) +
                   QString::fromLatin1(QUrl::toPercentEncoding(text)));
    }
    /// Clicks on the word that stands in brackets.
    [[nodiscard]] QJsonObject click(const QString &marked) {
        const qsizetype at = marked.indexOf(u'[');
        return answer(QString(marked).remove(u'[').remove(u']'), at).json();
    }
    [[nodiscard]] static QStringList words(const QJsonObject &reply) {
        QStringList words;
        for (const QJsonValue headword : reply["headwords"_L1].toArray())
            words.append(headword["word"_L1].toString());
        return words;
    }
    [[nodiscard]] static QStringList translations(const QJsonValue &headword) {
        QStringList words;
        for (const QJsonValue entry : headword["entries"_L1].toArray())
            for (const QJsonValue sense : entry["senses"_L1].toArray())
                for (const QJsonValue word : sense["translations"_L1].toArray())
                    words.append(word.toString());
        return words;
    }
};

TEST_F(WordLookupTest, AnswersAClickOnAnyFormInTheLearnersLanguage) {
    speak(u"fra"_s);
    const QJsonObject children = click(u"The [children] came."_s);
    EXPECT_EQ(children["form"_L1].toString(), u"children");
    const QJsonValue child = children["headwords"_L1].toArray().last();
    EXPECT_EQ(translations(child), QStringList{u"enfant"_s});
    EXPECT_EQ(child["start"_L1].toInt(), 4);
    EXPECT_TRUE(child["rank"_L1].toInt() > 0 && child["rank"_L1].toInt() < 500) << "a common word";
    EXPECT_EQ(child["english"_L1][0]["definition"_L1].toString(), u"a young person of either sex");
    EXPECT_THAT(children["sources"_L1][0]["licence"_L1].toString().toStdString(),
                testing::HasSubstr("General Public License"));

    EXPECT_THAT(words(click(u"I [saw] it"_s)), testing::ElementsAre(u"saw"_s, u"see"_s)) << "all that fit";
    EXPECT_EQ(click(u"We’re [gonna] win"_s)["whole"_L1].toString(), u"going to");
    EXPECT_THAT(words(click(u"I [won’t]."_s)), testing::Contains(u"will"_s));

    for (const auto &[language, word] : QList<QPair<QString, QString>>{{u"deu"_s, u"Kind"_s},
                                                                       {u"ita"_s, u"bambino"_s},
                                                                       {u"por"_s, u"criança"_s},
                                                                       {u"jpn"_s, u"子供"_s},
                                                                       {u"rus"_s, u"ребёнок"_s},
                                                                       {u"hin"_s, u"बच्चा"_s},
                                                                       {u"tur"_s, u"çocuk"_s},
                                                                       {u"swe"_s, u"barn"_s}}) {
        speak(language);
        EXPECT_THAT(translations(click(u"a [child]"_s)["headwords"_L1].toArray().last()),
                    testing::Contains(word))
            << language.toStdString();
    }
    speak(u"kor"_s);
    const QJsonObject korean = click(u"a [child]"_s);
    EXPECT_FALSE(korean["hasDictionary"_L1].toBool());
    EXPECT_FALSE(korean["headwords"_L1][0]["english"_L1].toArray().isEmpty())
        << "English definitions all the same";
}

TEST_F(WordLookupTest, FindsTheLongestPhraseAroundTheWord) {
    speak(u"ces"_s);
    for (const auto &[marked, phrase] :
         QList<QPair<QString, QString>>{{u"She [gave] up."_s, u"give up"_s},
                                        {u"She gave [up]."_s, u"give up"_s},
                                        {u"I'm looking [forward]\nto it"_s, u"look forward to"_s},
                                        {u"Don't [give] it all up now"_s, u"give up"_s},
                                        {u"Make up your [mind]!"_s, u"make up one's mind"_s},
                                        {u"he ran [out] of time"_s, u"run out of"_s}}) {
        const QJsonValue first = click(marked)["headwords"_L1][0];
        EXPECT_TRUE(first["isPhrase"_L1].toBool()) << marked.toStdString();
        EXPECT_EQ(first["word"_L1].toString(), phrase);
    }
    const QJsonValue given = click(u"Don't [give] it all up now"_s)["headwords"_L1][0];
    EXPECT_EQ(given["start"_L1].toInt(), 6);
    EXPECT_EQ(given["length"_L1].toInt(), 14) << "give it all up";
    EXPECT_FALSE(click(u"the [zebra] sneezed"_s)["headwords"_L1][0]["isPhrase"_L1].toBool(true));
}

TEST_F(WordLookupTest, TakesNoWordsForAPhraseThatOnlyMeet) {
    speak(u"deu"_s);
    for (const QString &marked :
         {u"We [ran] home"_s, u"I [broke] the cup"_s, u"I [saw] the knife in it"_s, u"I was [about] sixty"_s,
          u"He [took] the dog off the couch"_s, u"You [know] him"_s, u"[Look]! Up there."_s,
          u"[Come]. On the table"_s, u"[Take] it. Off we go."_s, u"- [Look]\n- Up!"_s})
        EXPECT_FALSE(click(marked)["headwords"_L1][0]["isPhrase"_L1].toBool(true)) << marked.toStdString();
    EXPECT_EQ(words(click(u"[Pick] me up at six"_s)).first(), u"pick up");
    EXPECT_EQ(words(click(u"[Take] it off!"_s)).first(), u"take off");
}

TEST_F(WordLookupTest, PutsAFormThatIsNoWordByItselfBehindItsWord) {
    speak(u"deu"_s);
    EXPECT_EQ(words(click(u"She [gave] it"_s)).first(), u"give");
    EXPECT_EQ(words(click(u"two [geese]"_s)).first(), u"goose");
    EXPECT_EQ(words(click(u"I [won't]"_s)).first(), u"will");
    EXPECT_EQ(words(click(u"I [saw] Tom"_s)).first(), u"saw") << "it may be a tool";
    EXPECT_EQ(words(click(u"It [was] Tom"_s)), (QStringList{u"was"_s, u"be"_s})) << "not several of WA";
    EXPECT_THAT(words(click(u"You [could]"_s)), testing::Contains(u"can"_s));
}

TEST_F(WordLookupTest, FindsWhatADictionarySpellsOtherwise) {
    speak(u"deu"_s);
    EXPECT_THAT(translations(click(u"You cannot [avoid] him"_s)["headwords"_L1][0]),
                testing::Contains(u"etw. vermeiden"_s));
    speak(u"fra"_s);
    EXPECT_EQ(translations(click(u"a [color]"_s)["headwords"_L1][0]),
              translations(click(u"a [colour]"_s)["headwords"_L1][0]));
    speak(u"spa"_s);
    EXPECT_FALSE(translations(click(u"I [realise] it"_s)["headwords"_L1][0]).isEmpty());
    for (const QString &marked : {u"[our] house"_s, u"[for] you"_s})
        EXPECT_THAT(translations(click(marked)["headwords"_L1][0]),
                    testing::Not(testing::AnyOf(testing::Contains(u"o"_s), testing::Contains(u"cuatro"_s))))
            << marked.toStdString();
    speak(u"tur"_s);
    EXPECT_EQ(click(u"[go]"_s)["headwords"_L1][0]["entries"_L1][0]["senses"_L1].toArray().size(), 12)
        << "of more than ninety";
}

TEST_F(WordLookupTest, TellsWhichWordIsClickedBetweenSigns) {
    speak(u"deu"_s);
    EXPECT_EQ(click(u"We have [3] dogs"_s)["form"_L1], u""_s);
    EXPECT_EQ(click(u"We have 3[ ]dogs"_s)["form"_L1], u"dogs"_s);
    EXPECT_EQ(words(click(u"the [U].S. army"_s)), QStringList{u"u.s."_s});
    EXPECT_EQ(click(u"at 10 p.[m]."_s)["form"_L1], u"p.m."_s);
    EXPECT_EQ(click(u"It was [I]. You"_s)["form"_L1], u"I"_s);
    EXPECT_EQ(words(click(u"a nine-[dog]-sled"_s)).first(), u"dog");
}

TEST_F(WordLookupTest, HasAWordForWhatNothingKnows) {
    const QJsonObject misspelt = click(u"my [freind]"_s);
    EXPECT_THAT(words(misspelt), testing::IsEmpty());
    EXPECT_EQ(misspelt["near"_L1][0].toString(), u"friend");
    for (const QString &odd : {u"мир"_s, u"猫が好き"_s, QString(1000, u'x'), u"\u0001\u0002"_s, u"... ?!"_s,
                               u"%00"_s, u"\xD800"_s}) {
        const Reply reply = answer(odd, 0);
        EXPECT_EQ(reply.status, 200) << odd.toStdString();
        EXPECT_THAT(words(reply.json()), testing::IsEmpty()) << odd.toStdString();
    }
    EXPECT_EQ(answer(u"word"_s, 1'000'000).json()["form"_L1].toString(), QString());
    EXPECT_EQ(answer(QString(1001, u'x'), 0).errorCode(), u"badParameter");
    EXPECT_EQ(get(u"Api/Dictionary/Word"_s).errorCode(), u"badParameter");
    EXPECT_EQ(get(u"Api/Dictionary/Word?text=a&at=-1"_s).errorCode(), u"badParameter");
}

TEST_F(WordLookupTest, ExplainsTheWordsThatHoldSentencesTogether) {
    speak(u"kor"_s); // no dictionary helps
    const auto meaning = [this](const QString &marked) {
        return click(marked)["headwords"_L1][0]["english"_L1][0].toObject();
    };
    EXPECT_EQ(meaning(u"[He] came"_s)["partOfSpeech"_L1], u"pronoun"_s) << "not helium";
    EXPECT_EQ(meaning(u"[He] came"_s)["source"_L1], u"Murvo"_s);
    EXPECT_EQ(meaning(u"a [helium] balloon"_s)["source"_L1], u"WordNet 3.0"_s);
    for (const QString &word :
         u"the of with them because unless whose huh yep would let's y'all I"_s.split(u' '))
        EXPECT_EQ(meaning(u'[' + word + u']')["source"_L1], u"Murvo"_s) << word.toStdString();
}

TEST_F(WordLookupTest, PutsFirstWhatTheLearnerHasTaught) {
    speak(u"fra"_s);
    const auto teach = [this](const QString &lemma, const QString &gloss) {
        EXPECT_EQ(put(u"Api/Words/Word"_s, {{u"lemma"_s, lemma}, {u"gloss"_s, gloss}}).status, 200);
    };
    teach(u"See"_s, u"voir"_s);
    const QJsonObject seen = click(u"I [saw] it"_s);
    EXPECT_THAT(words(seen), testing::ElementsAre(u"see"_s, u"saw"_s)) << "before the form itself";
    EXPECT_EQ(seen["headwords"_L1][0]["gloss"_L1], u"voir"_s);
    EXPECT_FALSE(seen["headwords"_L1][0]["entries"_L1].toArray().isEmpty()) << "the dictionary's words stay";
    EXPECT_TRUE(seen["headwords"_L1][0]["status"_L1].isNull());
    (void)put(u"Api/Words/Word"_s, {{u"lemma"_s, u"see"_s}, {u"status"_s, u"learning2"_s}});
    EXPECT_EQ(click(u"I [saw] it"_s)["headwords"_L1][0]["status"_L1], u"learning2"_s);

    EXPECT_THAT(words(click(u"my [zorblaxes]"_s)), testing::IsEmpty());
    teach(u"zorblaxes"_s, u"des choses"_s);
    EXPECT_EQ(click(u"my [Zorblaxes]!"_s)["headwords"_L1][0]["gloss"_L1], u"des choses"_s);
    teach(u"pull a rabbit"_s, u"improviser"_s);
    const QJsonValue phrase = click(u"He pulled a [rabbit] out"_s)["headwords"_L1][0];
    EXPECT_EQ(phrase["gloss"_L1], u"improviser"_s);
    EXPECT_EQ(phrase["length"_L1].toInt(), 15);

    speak(u"deu"_s);
    EXPECT_EQ(click(u"I [saw] it"_s)["headwords"_L1][0]["gloss"_L1], QString()) << "of another language";
}

} // namespace murvo::service::test
