// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/ServiceFixture.h"
#include "service/Store/Database.h"
#include "service/Store/WordTable.h"
#include "service/Vocabulary/SavedWord.h"

#include <QJsonArray>
#include <QJsonDocument>

using namespace Qt::Literals::StringLiterals;

namespace murvo::service::test {

namespace {

class WordsTest : public ServiceFixture {
  protected:
    [[nodiscard]] QJsonObject save(QJsonObject more = {}) {
        QJsonObject body{{u"form"_s, u"Children"_s},
                         {u"line"_s, u"Children play.\nAlways."_s},
                         {u"translation"_s, u"Les enfants jouent."_s},
                         {u"startMs"_s, 1000},
                         {u"endMs"_s, 2500},
                         {u"videoId"_s, videoId}};
        for (const QString &key : more.keys())
            body.insert(key, more[key]);
        return postJson(u"Api/Words/Save"_s, body).json();
    }
    [[nodiscard]] Reply postJson(const QString &route, const QJsonObject &body) {
        return post(route, QJsonDocument(body).toJson(), "application/json");
    }
    [[nodiscard]] QJsonObject word(const QString &lemma) {
        return get(u"Api/Words/Word?lemma="_s + lemma).json();
    }
    [[nodiscard]] QStringList listed(const QString &query = {}) {
        QStringList lemmas;
        for (const QJsonValue each : get(u"Api/Words"_s + query).json()["words"_L1].toArray())
            lemmas.append(each["lemma"_L1].toString());
        return lemmas;
    }
    [[nodiscard]] Reply grade(const QList<QPair<QString, QString>> &grades) {
        QJsonArray list;
        for (const auto &[lemma, status] : grades)
            list.append(QJsonObject{{u"lemma"_s, lemma}, {u"status"_s, status}});
        return put(u"Api/Words/Statuses"_s, {{u"words"_s, list}});
    }

    int videoId = lookUp(writeFile(u"Film.mkv"_s, "x")).json()["videoId"_L1].toInt();
};

TEST_F(WordsTest, AWordIsSavedWithItsLineOnceHoweverOftenItIsSent) {
    const QJsonObject first = save();
    EXPECT_EQ(first["lemma"_L1], u"child"_s);
    EXPECT_EQ(first["status"_L1], u"new"_s);
    (void)save({{u"status"_s, u"learning2"_s}, {u"startMs"_s, 1100}});
    const QJsonObject again = save({{u"gloss"_s, u" enfant\t(petit)\u0007 "_s}});
    EXPECT_EQ(again["guid"_L1], first["guid"_L1]);
    EXPECT_EQ(again["status"_L1], u"learning2"_s) << "kept by a request that says nothing of it";
    EXPECT_EQ(again["gloss"_L1], u"enfant (petit)"_s);
    ASSERT_EQ(again["sightings"_L1].toArray().size(), 1);
    const QJsonValue sighting = again["sightings"_L1][0];
    EXPECT_EQ(sighting["form"_L1], u"Children"_s);
    EXPECT_EQ(sighting["line"_L1], u"Children play.\nAlways."_s);
    EXPECT_EQ(sighting["translation"_L1], u"Les enfants jouent."_s);
    EXPECT_EQ(sighting["fileName"_L1], u"Film.mkv"_s);
    EXPECT_EQ(sighting["startMs"_L1], 1000) << "as it was sent last";

    (void)save({{u"line"_s, u"A child's."_s}, {u"form"_s, u"child"_s}});
    const QJsonArray sightings = word(u"child"_s)["sightings"_L1].toArray();
    ASSERT_EQ(sightings.size(), 2);
    EXPECT_EQ(sightings[0]["line"_L1], u"A child's."_s) << "the newest first";
    EXPECT_EQ(save({{u"lemma"_s, u"Give  Up"_s}})["lemma"_L1], u"give up"_s) << "the phrase that was clicked";
}

TEST_F(WordsTest, TheLearnersOwnGlossIsOfOneLanguageAndOutlivesTheWord) {
    const auto setGloss = [this](const QString &text) {
        return put(u"Api/Words/Word"_s, {{u"lemma"_s, u"Run"_s}, {u"gloss"_s, text}}).json();
    };
    (void)put(u"Api/Settings"_s, {{u"nativeLanguage"_s, u"fra"_s}});
    EXPECT_TRUE(setGloss(u"courir"_s)["status"_L1].isNull()) << "a word with a gloss is not marked by that";
    (void)put(u"Api/Settings"_s, {{u"nativeLanguage"_s, u"deu"_s}});
    EXPECT_EQ(word(u"run"_s)["gloss"_L1], u""_s);
    (void)setGloss(u"laufen"_s);
    (void)put(u"Api/Words/Word"_s, {{u"lemma"_s, u"run"_s}, {u"status"_s, u"known"_s}});
    EXPECT_TRUE(ask("DELETE", u"Api/Words/Word?lemma=run"_s).json()["status"_L1].isNull());
    EXPECT_EQ(word(u"run"_s)["gloss"_L1], u"laufen"_s);
    EXPECT_EQ(
        put(u"Api/Words/Word"_s, {{u"lemma"_s, u"run"_s}, {u"gloss"_s, QJsonValue::Null}}).json()["gloss"_L1],
        u"laufen"_s)
        << "what is not given stays";
    EXPECT_EQ(setGloss(QString())["gloss"_L1], u""_s);
    (void)put(u"Api/Settings"_s, {{u"nativeLanguage"_s, u"fra"_s}});
    EXPECT_EQ(word(u"run"_s)["gloss"_L1], u"courir"_s);
}

TEST_F(WordsTest, ManyWordsAreGradedAtOnceOrNone) {
    EXPECT_EQ(grade({{u"Run"_s, u"known"_s}, {u"house"_s, u"ignored"_s}, {u"café"_s, u"new"_s}})
                  .json()["changed"_L1],
              3);
    EXPECT_EQ(grade({{u"run"_s, u"known"_s}, {u"house"_s, u"learning4"_s}}).json()["changed"_L1], 1);
    EXPECT_EQ(grade({{u"window"_s, u"known"_s}, {u"door"_s, u"learning5"_s}}).errorCode(), u"badStatus"_s);
    EXPECT_EQ(grade({{u"window"_s, u"known"_s}, {u"123"_s, u"known"_s}}).errorCode(), u"badWord"_s);
    EXPECT_TRUE(word(u"window"_s)["status"_L1].isNull());
    EXPECT_THAT(listed(u"?order=alphabet"_s), testing::ElementsAre(u"café"_s, u"house"_s, u"run"_s));
}

TEST_F(WordsTest, AListIsOfAStatusAndAFilmInPages) {
    (void)grade({{u"apple"_s, u"known"_s}, {u"bread"_s, u"learning1"_s}, {u"cheese"_s, u"learning1"_s}});
    (void)save({{u"form"_s, u"bread"_s}, {u"line"_s, u"Older bread."_s}});
    (void)save({{u"form"_s, u"bread"_s}, {u"line"_s, u"Elsewhere."_s}, {u"videoId"_s, 0}});
    EXPECT_THAT(listed(u"?status=learning1,new&order=alphabet"_s),
                testing::ElementsAre(u"bread"_s, u"cheese"_s));
    const QJsonObject ofFilm = get(u"Api/Words?videoId=%1"_s.arg(videoId)).json();
    EXPECT_EQ(ofFilm["total"_L1], 1);
    EXPECT_EQ(ofFilm["words"_L1][0]["sightings"_L1][0]["line"_L1], u"Older bread."_s) << "of that film";
    EXPECT_EQ(get(u"Api/Words?order=saved"_s).json()["words"_L1][0]["lemma"_L1], u"bread"_s);
    const QJsonObject page = get(u"Api/Words?order=alphabet&offset=1&count=1"_s).json();
    EXPECT_EQ(page["total"_L1], 3);
    EXPECT_EQ(page["words"_L1].toArray().size(), 1);
    EXPECT_EQ(page["words"_L1][0]["lemma"_L1], u"bread"_s);
    EXPECT_EQ(get(u"Api/Words?order=length"_s).errorCode(), u"badParameter"_s);
    EXPECT_EQ(get(u"Api/Words?status=good"_s).errorCode(), u"badStatus"_s);
}

TEST_F(WordsTest, AListIsSearchedInWordsAndGlossesWhateverTheCaseAndTheAccents) {
    (void)put(u"Api/Settings"_s, {{u"nativeLanguage"_s, u"fra"_s}});
    (void)grade({{u"apple"_s, u"known"_s}, {u"café"_s, u"new"_s}, {u"bread"_s, u"new"_s}});
    (void)put(u"Api/Words/Word"_s, {{u"lemma"_s, u"bread"_s}, {u"gloss"_s, u"Pâté 100% Σας"_s}});
    const auto found = [this](const QByteArray &text) {
        return listed(u"?order=alphabet&text="_s + QString::fromLatin1(text.toPercentEncoding())).join(u' ');
    };
    EXPECT_EQ(found("CAFE"), u"café"_s);
    EXPECT_EQ(found("fé"), u"café"_s);
    EXPECT_EQ(found("a"), u"apple bread café"_s);
    EXPECT_EQ(found("pate"), u"bread"_s);
    EXPECT_EQ(found("σασ"), u"bread"_s);
    EXPECT_EQ(found("100%"), u"bread"_s);
    const auto isFound = [&](const QString &gloss, const QByteArray &text) {
        (void)put(u"Api/Words/Word"_s, {{u"lemma"_s, u"apple"_s}, {u"gloss"_s, gloss}});
        return found(text) == u"apple"_s;
    };
    EXPECT_TRUE(isFound(u"كَتَبَ"_s, "كتب") && isFound(u"שָׁלוֹם"_s, "שלום") && isFound(u"Ёлка"_s, "елка"));
    EXPECT_TRUE(isFound(u"がっこう"_s, "がっこう") && isFound(u"किताब"_s, "किताब") &&
                isFound(u"한국"_s, "한국"));
    EXPECT_FALSE(isFound(u"がっこう"_s, "かっこう")) << "another letter";
    EXPECT_FALSE(isFound(u"किताब"_s, "कताब")) << "another vowel";
    EXPECT_EQ(found("_"), QString()) << "no sign stands for others";
    EXPECT_EQ(found("%"), u"bread"_s);
    EXPECT_EQ(listed(u"?text=p&status=known"_s).join(u' '), u"apple"_s);
    EXPECT_EQ(get(u"Api/Words?text=a&count=1"_s).json()["total"_L1], 3);
    EXPECT_EQ(get(u"Api/Words?text="_s + QString(201, u'a')).errorCode(), u"badParameter"_s);
    (void)put(u"Api/Settings"_s, {{u"nativeLanguage"_s, u"deu"_s}});
    EXPECT_EQ(found("pate"), QString()) << "a gloss of another language";
}

TEST_F(WordsTest, AListOfKnownWordsIsTakenInAnyOfItsForms) {
    (void)grade({{u"house"_s, u"known"_s}, {u"window"_s, u"learning1"_s}, {u"tom"_s, u"ignored"_s}});
    const QByteArray list =
        "\xEF\xBB\xBFHouses\r\nran,correr\n\"mother, dear\";x\nwindow\tfenêtre\n\n  \n12345\n"
        "running\n---\nTom\n" +
        QByteArray(10'000, 'x') + "\nlook \x07 up";
    const QJsonObject result = post(u"Api/Words/Import"_s, list, "text/plain").json();
    EXPECT_EQ(result["added"_L1], 2) << "run (twice), and what stands in quotes";
    EXPECT_EQ(result["known"_L1], 2);
    EXPECT_EQ(result["kept"_L1], 1);
    EXPECT_EQ(result["unreadable"_L1], 4);
    EXPECT_EQ(word(u"run"_s)["status"_L1], u"known"_s);
    EXPECT_EQ(word(u"window"_s)["status"_L1], u"learning1"_s) << "the learner's own word counts more";
    EXPECT_EQ(word(u"tom"_s)["status"_L1], u"ignored"_s);
    EXPECT_EQ(post(u"Api/Words/Import"_s, list, "text/plain").json()["added"_L1], 0);
    const QByteArray utf16("\xFF\xFE"
                           "c\0a\0t\0\n\0d\0o\0g\0",
                           16);
    EXPECT_EQ(post(u"Api/Words/Import"_s, utf16, "text/plain").json()["added"_L1], 2);
    const QByteArray odd =
        "word\n1. apple\n- dear\n* Mr.\nhé‹\nI love you very much indeed\n{\"a\":1}\nслово\n";
    const QJsonObject read = post(u"Api/Words/Import"_s, odd, "text/plain").json();
    EXPECT_EQ(read["added"_L1], 3);
    EXPECT_EQ(read["unreadable"_L1], 4) << "neither garbage nor sentences nor other languages";
    EXPECT_EQ(word(u"apple"_s)["status"_L1], u"known"_s);
    EXPECT_EQ(word(u"mr"_s)["status"_L1], u"known"_s);
    EXPECT_EQ(post(u"Api/Words/Import"_s, QByteArray("ab\n").repeated(50'001), "text/plain").status, 413);
}

TEST_F(WordsTest, AListOfItsOwnBringsEachWordWithItsStatus) {
    (void)save({{u"status"_s, u"learning3"_s}, {u"line"_s, u"\"Two\", children,\nat home; right now"_s}});
    (void)grade({{u"apple"_s, u"known"_s}, {u"tom"_s, u"ignored"_s}});
    for (const QString &format : {u"csv"_s, u"tsv"_s}) {
        const QByteArray list = get(u"Api/Words/List?format="_s + format).body;
        for (const QString &lemma : {u"child"_s, u"apple"_s})
            (void)ask("DELETE", u"Api/Words/Word?lemma="_s + lemma);
        const QJsonObject result = post(u"Api/Words/Import"_s, list, "text/csv").json();
        EXPECT_EQ(result["added"_L1], 2) << format.toStdString();
        EXPECT_EQ(result["known"_L1], 1);
        EXPECT_EQ(result["unreadable"_L1], 0);
        EXPECT_EQ(word(u"child"_s)["status"_L1], u"learning3"_s);
        EXPECT_EQ(word(u"apple"_s)["status"_L1], u"known"_s);
        EXPECT_EQ(get(u"Api/Words"_s).json()["total"_L1], 3) << "neither headings nor parts of lines";
    }
}

TEST_F(WordsTest, WhatIsNoWordAndNoLineIsRefusedAndLeavesNothing) {
    const QString route = u"Api/Words/Word"_s;
    for (const QString &bad : {QString(), u" "_s, u"42"_s, QString(10'240, u'x'), QString(101, u'é'),
                               u"a\u0007b"_s, u"a\0b"_s, u"\u202e"_s, QString(QChar(0xd800)) + u"a"_s}) {
        EXPECT_EQ(put(route, {{u"lemma"_s, bad}, {u"status"_s, u"new"_s}}).errorCode(), u"badWord"_s)
            << bad.left(20).toStdString();
    }
    for (const QString &good : {u"Straße"_s, u"слово"_s, u"日本語"_s, u"نص"_s, u"o’clock"_s, u"'em"_s,
                                u"Robert'); DROP TABLE words;--"_s, QString(100, u'x')})
        EXPECT_EQ(put(route, {{u"lemma"_s, good}, {u"status"_s, u"new"_s}}).status, 200)
            << good.toStdString();
    EXPECT_EQ(word(u"o'clock"_s)["status"_L1], u"new"_s);
    EXPECT_EQ(word(u"o\u200b\u00adclock\u200e"_s)["lemma"_L1], u"oclock"_s) << "what nobody sees";
    const auto refused = [this](const QJsonObject &more) {
        QJsonObject body{{u"form"_s, u"tree"_s}, {u"line"_s, u"A tree."_s}};
        for (const QString &key : more.keys())
            body.insert(key, more[key]);
        return postJson(u"Api/Words/Save"_s, body).errorCode();
    };
    EXPECT_EQ(refused({{u"line"_s, u""_s}}), u"badLine"_s);
    EXPECT_EQ(refused({{u"line"_s, QString(2001, u'x')}}), u"badLine"_s);
    EXPECT_EQ(refused({{u"gloss"_s, QString(2001, u'x')}}), u"badLine"_s);
    EXPECT_EQ(refused({{u"startMs"_s, -1}}), u"badLine"_s);
    EXPECT_EQ(refused({{u"gloss"_s, 7}}), u"badLine"_s);
    EXPECT_EQ(refused({{u"videoId"_s, u"1"_s}}), u"badLine"_s);
    EXPECT_EQ(put(u"Api/Words/Statuses"_s, {{u"Words"_s, QJsonArray()}}).errorCode(), u"badWord"_s);
    EXPECT_EQ(refused({{u"endMs"_s, 1.5}}), u"badLine"_s);
    EXPECT_EQ(refused({{u"videoId"_s, 999}}), u"unknownFilm"_s);
    EXPECT_EQ(refused({{u"subtitleId"_s, 999}}), u"unknownSubtitle"_s);
    EXPECT_TRUE(word(u"tree"_s)["status"_L1].isNull());
    EXPECT_EQ(save({{u"line"_s, u"\u0001Control\u0000 \u001bsigns\n."_s}})["sightings"_L1][0]["line"_L1],
              u"Control signs\n."_s);
}

TEST_F(WordsTest, AnExportIsGivenEveryWordWithItsNewestLine) {
    (void)put(u"Api/Settings"_s, {{u"nativeLanguage"_s, u"fra"_s}});
    (void)grade({{u"apple"_s, u"known"_s}});
    (void)save();
    const QJsonObject newest =
        save({{u"line"_s, u"Two children."_s}, {u"gloss"_s, u"enfant"_s}, {u"endMs"_s, 9000}});
    Database database(dataFolder.filePath(u"murvo.sqlite"_s), Database::builtInSteps());
    const QList<SavedWord> words = WordTable(database).all(u"fra"_s);
    ASSERT_EQ(words.size(), 2);
    EXPECT_EQ(words[0].lemma, u"apple"_s);
    EXPECT_EQ(words[0].filmId, 0);
    EXPECT_EQ(words[1].guid, newest["guid"_L1].toString());
    EXPECT_EQ(words[1].line, u"Two children."_s);
    EXPECT_EQ(words[1].gloss, u"enfant"_s);
    EXPECT_EQ(words[1].filmPath, films.filePath(u"Film.mkv"_s));
    EXPECT_EQ(words[1].endMs, 9000);
}

} // namespace

} // namespace murvo::service::test
