// SPDX-License-Identifier: GPL-3.0-or-later
#include "Dictionary/English.h"
#include "Dictionary/WordNet.h"
#include "service/ServiceFixture.h"

using namespace Qt::Literals::StringLiterals;

namespace murvo::service::test {

namespace {

const WordNet &wordNet() {
    static const WordNet files(u"/usr/share/wordnet"_s);
    return files;
}

QStringList formsIn(QStringView line) {
    QStringList forms;
    for (const EnglishWord &word : englishWords(line)) {
        EXPECT_EQ(line.sliced(word.start, word.length).toString().replace(u'’', u'\''), word.form);
        forms.append(word.form);
    }
    return forms;
}

} // namespace

TEST(EnglishTest, FindsTheWordOfAForm) {
    const English english(wordNet(), WordRank::ofProgram());
    // Written by hand, from the English of films: "form word", the word that a learner should be shown first.
    const QStringList pairs =
        uR"(went go; gone go; goes go; going go; ran run; running run; runs run; saw see; seen see; seeing see;
        children child; men man; women woman; feet foot; teeth tooth; mice mouse; geese goose; wives wife;
        knives knife; lives life; wolves wolf; leaves leave; people people; oxen ox; found find; left leave;
        thought think; brought bring; bought buy; caught catch; taught teach; fought fight; sought seek;
        felt feel; kept keep; slept sleep; wept weep; met meet; led lead; fed feed; bled bleed; said say;
        paid pay; laid lay; made make; told tell; sold sell; held hold; stood stand; understood understand;
        was be; were be; is be; are be; am be; been be; being be; had have; has have; having have; did do;
        does do; done do; doing do; wrote write; written write; writing write; drove drive; driven drive;
        broke break; broken break; spoke speak; spoken speak; stole steal; stolen steal; chose choose;
        chosen choose; froze freeze; gave give; given give; took take; taken take; shook shake; knew know;
        known know; grew grow; flew fly; drew draw; threw throw; blew blow; sang sing; sung sing; drank drink;
        swam swim; began begin; won win; hit hit; cut cut; put put; cities city; parties party; stories story;
        tries try; tried try; carried carry; worried worry; studies study; boxes box; wishes wish;
        watches watch; kisses kiss; buses bus; heroes hero; stopped stop; planned plan; getting get;
        sitting sit; swimming swim; bigger big; biggest big; happier happy; happiest happy; nicer nice;
        better good; best good; worse bad; worst bad; making make; taking take; coming come; dying die;
        lying lie; hoped hope; loved love; used use; don't do; can't can; won't will; isn't be; didn't do;
        wouldn't would; I'm i; you're you; he's he; they've they; we'll we; John's john; boys' boy;
        gonna go; wanna want; gotta get; gimme give; lookin' look; 'em them; 'cause because; this this;
        his his; us us; its its; was be; something something; during during; news news; glasses glass;
        mother-in-law mother-in-law; brothers-in-law brother-in-law; Café cafe; o'clock o'clock; morning morning;
        nothing nothing; king king; bed bed; evening evening; naïve naive)"_s.simplified()
            .split(u"; "_s);
    ASSERT_GE(pairs.size(), 150);
    QStringList wrong;
    for (const QString &pair : pairs) {
        const QStringList found = english.lemmas(pair.section(u' ', 0, 0));
        if (found.value(0) != pair.section(u' ', 1))
            wrong.append(pair + " is "_L1 + found.join(u", "));
    }
    std::cout << pairs.size() - wrong.size() << " of " << pairs.size() << " right\n";
    EXPECT_LE(wrong.size() * 100, pairs.size() * 3) << wrong.join(u"; ").toStdString();
    EXPECT_THAT(english.lemmas(u"leaves"), testing::IsSupersetOf({u"leave"_s, u"leaf"_s})) << "all that fit";
    EXPECT_THAT(english.lemmas(u"lay"), testing::IsSupersetOf({u"lie"_s, u"lay"_s}));
}

TEST(EnglishTest, LivesWithFormsThatAreNone) {
    const English english(wordNet());
    EXPECT_THAT(english.lemmas(u""), testing::IsEmpty());
    EXPECT_THAT(english.lemmas(u"  \t "), testing::IsEmpty());
    for (const QString &odd : {u"'"_s, u"'s"_s, u"s'"_s, u"n't"_s, u"''''"_s, u"-"_s, u"\u0001\u0002"_s,
                               u"мир"_s, u"猫"_s, u"%"_s, u"a\nb"_s, u"xyzzying"_s})
        EXPECT_FALSE(english.lemmas(odd).isEmpty()) << odd.toStdString();
    EXPECT_LE(english.lemmas(QString(10'240, u's')).first().size(), 100);
    const WordNet missing(u"/nowhere"_s);
    EXPECT_EQ(English(missing).lemmas(u"Went"), QStringList{u"went"_s});
}

TEST(EnglishTest, FindsTheWordsOfALine) {
    EXPECT_EQ(formsIn(u"I don’t know, mother-in-law..."),
              (QStringList{u"I"_s, u"don't"_s, u"know"_s, u"mother-in-law"_s}));
    EXPECT_EQ(formsIn(u"- 'Hello,' he said. Lookin' at 'em? 'Cause"),
              (QStringList{u"Hello"_s, u"he"_s, u"said"_s, u"Lookin'"_s, u"at"_s, u"'em"_s, u"'Cause"_s}));
    EXPECT_EQ(formsIn(u"It's 5 o'clock -- the '80s, 007!"),
              (QStringList{u"It's"_s, u"o'clock"_s, u"the"_s, u"s"_s}));
    EXPECT_EQ(formsIn(u"Café naïve"), (QStringList{u"Café"_s, u"naïve"_s}));
    EXPECT_THAT(formsIn(u" ♪ ... '-' ’"), testing::IsEmpty());
    EXPECT_EQ(uncontracted(u"They’ve"), u"they have");
    EXPECT_EQ(uncontracted(u"gonna"), u"going to");
    EXPECT_EQ(uncontracted(u"lookin'"), u"looking");
    EXPECT_EQ(uncontracted(u"house"), u"");
}

TEST(EnglishTest, KnowsWhatWordsMeanInEnglish) {
    const std::vector<WordNetSense> senses = wordNet().senses("child", PartOfSpeech::Noun, 9);
    ASSERT_EQ(senses.size(), 4U);
    EXPECT_EQ(senses[0].definition, u"a young person of either sex");
    EXPECT_THAT(senses[0].examples, testing::Contains(u"they're just kids"_s));
    EXPECT_THAT(senses[0].synonyms, testing::Contains(u"youngster"_s));
    EXPECT_THAT(senses[1].antonyms, testing::Contains(u"parent"_s));
    EXPECT_EQ(wordNet().senses("look forward", PartOfSpeech::Verb, 9).size(), 1U) << "phrases too";
    EXPECT_THAT(wordNet().senses("zzz", PartOfSpeech::Noun, 9), testing::IsEmpty());
    EXPECT_GT(wordNet().timesMet("see", PartOfSpeech::Verb), 600);
    EXPECT_EQ(wordNet().timesMet("zzz", PartOfSpeech::Verb), 0);
}

} // namespace murvo::service::test
