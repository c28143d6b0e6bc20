// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/ServiceFixture.h"

#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QUrl>

#include <SQLiteCpp/SQLiteCpp.h>

#include <thread>

using namespace Qt::Literals::StringLiterals;

namespace murvo::service::test {

namespace {

/// Three seconds apart, each two seconds long.
QByteArray lines(const QByteArrayList &texts) {
    QByteArray file;
    for (qsizetype i = 0; i < texts.size(); ++i)
        file += QByteArray::number(i + 1) + "\n00:00:" + QByteArray::number(10 + 3 * i) +
                ",000 --> 00:00:" + QByteArray::number(12 + 3 * i) + ",000\n" + texts[i] + "\n\n";
    return file;
}

const QByteArray englishLines = lines({"The cliff is where <i>Gandalf</i> was.", "We went to the cliff.",
                                       "I saw a lantern at the cliff, and\nTom saw the lantern.",
                                       "Give up, Tom! You never\ngave it up.", "Is it déjà vu?"});
const QByteArray frenchLines = lines({"Le port est là.", "Nous sommes allés au port.", "J'ai vu un phare.",
                                      "Laisse tomber\xC2\xA0!", "C'est du déjà-vu\xC2\xA0?"});

class FilmWordsTest : public ServiceFixture {
  protected:
    FilmWordsTest() {
        (void)put(u"Api/Settings"_s, {{u"nativeLanguage"_s, u"fra"_s}, {u"startLevel"_s, u"A2"_s}});
        writeFile(u"Film.en.srt"_s, englishLines);
        writeFile(u"Film.fr.srt"_s, frenchLines);
        videoId = takeFilm(u"Film.mkv"_s, 1);
    }

    int takeFilm(const QString &name, quint64 hash) {
        const Reply lookup = lookUp(writeFile(name, "x"), hash);
        fetchAndUpload(lookup);
        return lookup.json()["videoId"_L1].toInt();
    }
    [[nodiscard]] QJsonObject words() { return get(u"Api/MovieFile/Words?videoId=%1"_s.arg(videoId)).json(); }
    [[nodiscard]] QJsonObject word(const QString &lemma) {
        for (const QJsonValue each : words()["words"_L1].toArray()) {
            if (each["lemma"_L1] == lemma)
                return each.toObject();
        }
        return {};
    }
    [[nodiscard]] QStringList learnFirst() {
        QStringList lemmas;
        for (const QJsonValue each : words()["learnFirst"_L1].toArray())
            lemmas.append(each["lemma"_L1].toString());
        return lemmas;
    }
    [[nodiscard]] QJsonArray search(const QString &text, const QString &more = {}) {
        const QString escaped = QString::fromUtf8(QUrl::toPercentEncoding(text));
        const Reply reply = get(u"Api/Lines/Search?text="_s + escaped + more);
        EXPECT_EQ(reply.status, 200) << text.toStdString();
        return reply.json()["lines"_L1].toArray();
    }
    /// The lines are made by a thread of their own.
    [[nodiscard]] QJsonArray awaited(const QString &text, qsizetype count = 1) {
        QElapsedTimer clock;
        clock.start();
        while (search(text).size() != count && !clock.hasExpired(10'000))
            std::this_thread::yield();
        return search(text);
    }
    void mark(const QString &lemma, const QString &status) {
        EXPECT_EQ(put(u"Api/Words/Word"_s, {{u"lemma"_s, lemma}, {u"status"_s, status}}).status, 200);
    }
    [[nodiscard]] int subtitleId(const QString &fileName) {
        for (const QJsonValue track :
             get(u"Api/MovieFile/Lines?videoId=%1"_s.arg(videoId)).json()["tracks"_L1].toArray()) {
            if (track["fileName"_L1] == fileName)
                return track["subtitleId"_L1].toInt();
        }
        return 0;
    }

    int videoId = 0;
};

TEST_F(FilmWordsTest, EachDictionaryFormIsCountedOnceWithAllItsForms) {
    EXPECT_EQ(word(u"cliff"_s)["count"_L1], 3);
    EXPECT_EQ(word(u"see"_s)["count"_L1], 2) << "saw";
    EXPECT_EQ(word(u"give"_s)["count"_L1], 2) << "give, gave";
    EXPECT_EQ(QJsonValue(word(u"give"_s)["forms"_L1]).toVariant().toStringList().size(), 2);
    EXPECT_EQ(word(u"see"_s)["forms"_L1], QJsonArray{u"saw"_s});
    EXPECT_TRUE(word(u"gave"_s).isEmpty() && word(u"port"_s).isEmpty()) << "neither forms nor French";
    EXPECT_GT(word(u"lantern"_s)["rank"_L1].toInt(), word(u"see"_s)["rank"_L1].toInt());
    EXPECT_TRUE(word(u"gandalf"_s)["isName"_L1].toBool());
    EXPECT_TRUE(word(u"tom"_s)["isName"_L1].toBool()) << "though WordNet knows a cat of that name";
    EXPECT_FALSE(word(u"we"_s)["isName"_L1].toBool() || word(u"i"_s)["isName"_L1].toBool());
    const QJsonObject all = words();
    int running = 0;
    int known = 0;
    for (const QJsonValue each : all["words"_L1].toArray()) {
        running += each["count"_L1].toInt();
        known += each["isKnown"_L1].toBool() ? each["count"_L1].toInt() : 0;
    }
    EXPECT_EQ(running, all["runningWords"_L1].toInt());
    EXPECT_EQ(known, all["knownWords"_L1].toInt());
    EXPECT_EQ(all["knownPercent"_L1].toInt(), 100 * known / running);
}

TEST_F(FilmWordsTest, WhatIsKnownFollowsTheLevelUntilAWordIsMarked) {
    const auto percentAt = [this](const QString &level) {
        (void)put(u"Api/Settings"_s, {{u"startLevel"_s, level}});
        return words()["knownPercent"_L1].toInt();
    };
    const int a1 = percentAt(u"A1"_s);
    const int c2 = percentAt(u"C2"_s);
    const int a2 = percentAt(u"A2"_s);
    EXPECT_TRUE(a1 <= a2 && a2 < c2) << a1 << ' ' << a2 << ' ' << c2;
    EXPECT_GE(a1, 30) << "names and the commonest words are known to a learner who has marked nothing";

    EXPECT_FALSE(word(u"lantern"_s)["isKnown"_L1].toBool());
    EXPECT_TRUE(learnFirst().contains(u"lantern"_s) && learnFirst().contains(u"cliff"_s));
    EXPECT_FALSE(learnFirst().contains(u"tom"_s) || learnFirst().contains(u"gandalf"_s));
    const int before = words()["knownWords"_L1].toInt();
    mark(u"lantern"_s, u"known"_s);
    mark(u"cliff"_s, u"ignored"_s);
    EXPECT_EQ(words()["knownWords"_L1].toInt(), before + 5);
    mark(u"see"_s, u"learning1"_s);
    EXPECT_EQ(words()["knownWords"_L1].toInt(), before + 3) << "a mark counts more than the level";
    EXPECT_TRUE(learnFirst().contains(u"see"_s));
    EXPECT_FALSE(learnFirst().contains(u"lantern"_s) || learnFirst().contains(u"cliff"_s));
    EXPECT_EQ(word(u"see"_s)["status"_L1], u"learning1"_s);
}

TEST_F(FilmWordsTest, AWordToLearnComesWithItsLineAtTheFilmsTimeAndTheOneBeneath) {
    const auto lineOf = [this](const QString &lemma) {
        for (const QJsonValue each : words()["learnFirst"_L1].toArray()) {
            if (each["lemma"_L1] == lemma)
                return each["line"_L1].toObject();
        }
        return QJsonObject();
    };
    const QJsonObject line = lineOf(u"lantern"_s);
    EXPECT_EQ(line["text"_L1], u"I saw a lantern at the cliff, and\nTom saw the lantern."_s);
    EXPECT_EQ(line["translation"_L1], u"J'ai vu un phare."_s);
    EXPECT_EQ(line["startMs"_L1], 16'000);
    // Both lie half a minute later, the French one from its third line on another minute.
    const auto move = [this](const QString &name, const QJsonValue &cut) {
        const QJsonObject timing{
            {u"offsetMs"_s, 30'000}, {u"rateNumerator"_s, 1}, {u"rateDenominator"_s, 1}, {u"cut"_s, cut}};
        EXPECT_EQ(put(u"Api/Subtitles/Timing?subtitleId=%1"_s.arg(subtitleId(name)), timing).status, 200);
    };
    move(u"Film.en.srt"_s, QJsonValue::Null);
    EXPECT_EQ(lineOf(u"lantern"_s)["startMs"_L1], 46'000);
    EXPECT_EQ(lineOf(u"lantern"_s)["translation"_L1], u""_s);
    move(u"Film.fr.srt"_s, QJsonObject{{u"atMs"_s, 19'000}, {u"offsetMs"_s, 60'000}});
    EXPECT_EQ(lineOf(u"lantern"_s)["translation"_L1], u"J'ai vu un phare."_s);
    EXPECT_EQ(search(u"phare"_s)[0]["translation"_L1], line["text"_L1]) << "and the other way";
    EXPECT_EQ(awaited(u"tomber"_s)[0]["startMs"_L1], 109'000);
}

TEST_F(FilmWordsTest, WordsFollowTheSubtitleThatIsShownAndItsContent) {
    const QString add = u"Api/MovieFile/AddSubtitle?fileName=Mine.en.srt&videoId=%1"_s.arg(videoId);
    const int mine = post(add, lines({"A whale swam by.", "Another whale."}), "text/plain")
                         .json()["subtitleId"_L1]
                         .toInt();
    EXPECT_TRUE(word(u"whale"_s).isEmpty()) << "a part of the film only";
    const QString choice = u"Api/MovieFile/Choice?videoId=%1"_s.arg(videoId);
    (void)put(choice, {{u"learned"_s, mine}});
    EXPECT_EQ(words()["subtitleId"_L1], mine);
    EXPECT_EQ(word(u"whale"_s)["count"_L1], 2);
    const QString removed = u"Api/Subtitles/Removed?subtitleId=%1"_s.arg(mine);
    EXPECT_EQ(awaited(u"whale"_s, 2).size(), 2);
    (void)post(removed, "", "text/plain");
    EXPECT_TRUE(word(u"whale"_s).isEmpty() && search(u"whale"_s).isEmpty()) << "taken out";
    (void)ask("DELETE", removed);
    EXPECT_EQ(word(u"whale"_s)["count"_L1], 2);
    const int french = subtitleId(u"Film.fr.srt"_s);
    const QString language = u"Api/Subtitles/Language?subtitleId=%1"_s.arg(french);
    (void)put(language, {{u"language"_s, u"eng"_s}});
    (void)put(choice, {{u"learned"_s, french}});
    EXPECT_EQ(word(u"phare"_s)["count"_L1], 1) << "English, by the learner's word";
    (void)put(language, {{u"language"_s, QString()}});
    EXPECT_EQ(word(u"cliff"_s)["count"_L1], 3) << "of the best English one, when the upper line is French";

    writeFile(u"Film.en.srt"_s,
              lines({"The submarine dived.", "A second submarine.", "One", "Two", "Three"}));
    takeFilm(u"Film.mkv"_s, 1);
    EXPECT_EQ(word(u"submarine"_s)["count"_L1], 2);
    EXPECT_TRUE(word(u"cliff"_s).isEmpty());
    EXPECT_TRUE(awaited(u"cliff"_s, 0).isEmpty());
}

TEST_F(FilmWordsTest, AFilmWithoutEnglishLinesHasNoWordsYet) {
    writeFile(u"Quiet.fr.srt"_s, frenchLines);
    videoId = takeFilm(u"Quiet.mkv"_s, 2);
    const QJsonObject none = words();
    EXPECT_TRUE(none["subtitleId"_L1].isNull() && none["knownPercent"_L1].isNull());
    EXPECT_EQ(none["runningWords"_L1], 0);
    EXPECT_EQ(get(u"Api/MovieFile/Words?videoId=999"_s).errorCode(), u"unknownFilm"_s);
}

TEST_F(FilmWordsTest, TheLevelIsCountedFromTheStartAndMovedByMarks) {
    const auto level = [this] { return get(u"Api/Home/Level"_s).json(); };
    EXPECT_EQ(level()["level"_L1], u"A2"_s);
    EXPECT_EQ(level()["vocabulary"_L1], 1000);
    EXPECT_EQ(level()["percentToNext"_L1], 50);
    mark(u"lantern"_s, u"known"_s);
    mark(u"the"_s, u"known"_s);
    mark(u"qqq"_s, u"known"_s);
    EXPECT_EQ(level()["vocabulary"_L1], 1001)
        << "the rare one only: the common was counted, the third is no word";
    mark(u"the"_s, u"learning4"_s);
    mark(u"lantern"_s, u"new"_s);
    mark(u"of"_s, u"ignored"_s);
    EXPECT_EQ(level()["vocabulary"_L1], 999);
    EXPECT_EQ(level()["learningWords"_L1], 1);
    EXPECT_EQ(level()["newWords"_L1], 1);
    (void)put(u"Api/Settings"_s, {{u"startLevel"_s, u"C2"_s}});
    EXPECT_EQ(level()["level"_L1], u"C2"_s);
    EXPECT_TRUE(level()["nextLevel"_L1].isNull());
    EXPECT_EQ(level()["percentToNext"_L1], 100);
}

TEST_F(FilmWordsTest, APhraseIsFoundInEveryFilmWhateverStandsInIt) {
    ASSERT_EQ(awaited(u"cliff"_s, 3).size(), 3);
    ASSERT_EQ(awaited(u"phare"_s).size(), 1);
    const QJsonObject hit = search(u"GIVE u"_s)[0].toObject();
    EXPECT_EQ(hit["text"_L1], u"Give up, Tom! You never\ngave it up."_s);
    EXPECT_EQ(hit["videoId"_L1], videoId);
    EXPECT_EQ(hit["fileName"_L1], u"Film.mkv"_s);
    EXPECT_EQ(hit["startMs"_L1], 19'000);
    EXPECT_EQ(hit["languageTag"_L1], u"en"_s);
    EXPECT_EQ(search(u"phare"_s)[0]["languageTag"_L1], u"fr"_s);
    EXPECT_EQ(search(u"never gave"_s).size(), 1) << "across a line break";
    EXPECT_EQ(search(u"up give"_s).size(), 0) << "in that order";
    EXPECT_EQ(search(u"deja vu"_s).size(), 2) << "accents or none, a hyphen or none, both languages";
    EXPECT_EQ(search(u"clif"_s).size(), 3) << "the last word may go on";
    EXPECT_EQ(search(u"liff"_s).size(), 0);
    for (const QString &odd :
         {u"cliff OR phare"_s, u"cliff\" OR \"x"_s, u"text:cliff x"_s, u"NEAR(cliff x)"_s, u"^ cliff x"_s,
          u"*"_s, u"-"_s, u"\""_s, u"cliff NOT x"_s, u"%"_s, u"'"_s, u"日本"_s})
        EXPECT_EQ(search(odd).size(), 0) << odd.toStdString();
    EXPECT_EQ(search(u"\"cliff"_s).size(), 3);
    EXPECT_EQ(search(u"Cliff AND"_s).size(), 1) << "a word like any other";
    EXPECT_EQ(search(u"(cliff)*"_s).size(), 3);
    EXPECT_EQ(get(u"Api/Lines/Search?text="_s).errorCode(), u"badParameter"_s);
    EXPECT_EQ(get(u"Api/Lines/Search?text="_s + QString(201, u'x')).errorCode(), u"badParameter"_s);
    EXPECT_EQ(get(u"Api/Lines/Search?text=a&count=0"_s).errorCode(), u"badParameter"_s);
}

TEST_F(FilmWordsTest, ASearchIsOfOneLanguageAndOfWholeWordsWhereThatIsWanted) {
    ASSERT_EQ(awaited(u"deja vu"_s, 2).size(), 2);
    ASSERT_EQ(awaited(u"la"_s, 3).size(), 3) << "là, la-ntern, la-isse";
    EXPECT_EQ(search(u"deja vu"_s, u"&language=eng"_s)[0]["text"_L1], u"Is it déjà vu?"_s);
    EXPECT_EQ(search(u"deja vu"_s, u"&language=fra"_s).size(), 1);
    EXPECT_EQ(search(u"deja vu"_s, u"&language=deu"_s).size(), 0);
    EXPECT_EQ(search(u"la"_s, u"&wholeWord=true"_s).size(), 1);
    EXPECT_EQ(search(u"la"_s, u"&wholeWord=false&language=eng"_s).size(), 1);
    EXPECT_EQ(search(u"the cliff"_s, u"&wholeWord=true"_s).size(), 3);
    for (const QString &wrong :
         {u"language=en"_s, u"language=English"_s, u"language=xyz"_s, u"wholeWord=1"_s})
        EXPECT_EQ(get(u"Api/Lines/Search?text=a&"_s + wrong).errorCode(), u"badParameter"_s);
}

TEST_F(FilmWordsTest, HitsComeInPagesTheNewestFilmFirstAndEachLineOnce) {
    // The second film has its lines twice: beside it, and for the hard of hearing.
    writeFile(u"Other.en.srt"_s, englishLines);
    writeFile(u"Other.en.sdh.srt"_s, englishLines);
    const int other = takeFilm(u"Other.mkv"_s, 2);
    ASSERT_EQ(awaited(u"cliff"_s, 6).size(), 6);
    QList<QPair<int, int>> seen;
    QString below;
    do {
        const QJsonObject page = get(u"Api/Lines/Search?text=cliff&count=2"_s + below).json();
        EXPECT_EQ(page["lines"_L1].toArray().size(), 2);
        for (const QJsonValue line : page["lines"_L1].toArray())
            seen.append({line["videoId"_L1].toInt(), line["startMs"_L1].toInt()});
        below = page["next"_L1].isNull() ? QString() : u"&below=%1"_s.arg(page["next"_L1].toInt());
    } while (!below.isEmpty() && seen.size() < 20);
    EXPECT_THAT(seen, testing::ElementsAre(std::pair(other, 10'000), std::pair(other, 13'000),
                                           std::pair(other, 16'000), std::pair(videoId, 10'000),
                                           std::pair(videoId, 13'000), std::pair(videoId, 16'000)));
}

TEST_F(FilmWordsTest, LinesOfAnOldStoreAreMadeAtTheNextStart) {
    ASSERT_EQ(awaited(u"cliff"_s, 3).size(), 3);
    service.reset();
    SQLite::Database(dataFolder.filePath(u"murvo.sqlite"_s).toStdString(), SQLite::OPEN_READWRITE)
        .exec("DELETE FROM lines; DELETE FROM words_met; DELETE FROM line_sources"); // as the migration
                                                                                     // leaves it
    restart();
    EXPECT_EQ(awaited(u"cliff"_s, 3).size(), 3);
    EXPECT_EQ(word(u"cliff"_s)["count"_L1], 3);
}

} // namespace

} // namespace murvo::service::test
