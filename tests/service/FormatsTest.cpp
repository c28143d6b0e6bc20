// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/SubtitleFiles.h"

#include "Languages.h"
#include "Subtitles/Charset.h"
#include "Subtitles/TextLanguage.h"
#include "Subtitles/WebVttWriter.h"

#include <QRandomGenerator>

#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <iostream>

extern "C" {
#include <libavutil/log.h>
}

namespace murvo::service::test {

namespace {

/// The readers by themselves, without a service; as in one, the demuxers do not talk.
class FormatsTest : public testing::Test {
  protected:
    static void SetUpTestSuite() { av_log_set_level(AV_LOG_QUIET); }
};

std::string described(const QList<Cue> &cues) {
    std::string text;
    for (const Cue &cue : cues) {
        text += std::to_string(cue.startMs) + "-" + std::to_string(cue.endMs) + " " +
                cue.lines.join(u'|').toStdString();
        for (const ItalicRange &range : cue.italics)
            text += " (" + std::to_string(range.line) + ":" + std::to_string(range.start) + "-" +
                    std::to_string(range.end) + ")";
        text += "\n";
    }
    return text;
}

QList<SubtitleFile> allFiles() {
    return conversationFiles() + oddFiles();
}

/// What every reader keeps to, whatever it is given.
void expectSoundCues(const QList<Cue> &cues, const std::string &from) {
    qint64 startMs = 0;
    for (const Cue &cue : cues) {
        EXPECT_GE(cue.startMs, startMs) << from;
        EXPECT_LE(cue.startMs, 86'400'000) << from;
        EXPECT_GT(cue.endMs, cue.startMs) << from;
        EXPECT_FALSE(cue.lines.isEmpty()) << from;
        for (const ItalicRange &range : cue.italics) {
            ASSERT_LT(range.line, cue.lines.size()) << from;
            EXPECT_LT(range.start, range.end) << from;
            EXPECT_LE(range.end, cue.lines[range.line].size()) << from;
        }
        startMs = cue.startMs;
    }
}

TEST_F(FormatsTest, EveryFileIsReadExactlyInTimeTextAndItalics) {
    const QList<SubtitleFile> files = allFiles();
    qsizetype right = 0;
    for (const SubtitleFile &file : files) {
        const QList<Cue> cues = readCues(file.bytes, file.filmRate).cues;
        if (cues == file.expected)
            ++right;
        else
            ADD_FAILURE() << file.name.toStdString() << " (" << encodingOf(file.bytes).toStdString()
                          << ") gave\n"
                          << described(cues) << "instead of\n"
                          << described(file.expected);
    }
    std::cout << right << " of " << files.size() << " files exactly right\n";
    EXPECT_GE(files.size(), 60);
}

TEST_F(FormatsTest, LinesWrittenAsWebVttAreReadBackTheSame) {
    for (const SubtitleFile &file : allFiles())
        EXPECT_EQ(described(readCues(webVtt(file.expected), {}).cues), described(file.expected))
            << file.name.toStdString();
    const QList<Cue> hostile{
        cueOf(0, 1, QStringLiteral("_<i>_ & --> &amp;|NOTE|00:00:01.000 --> 00:00:02.000|WEBVTT")),
        cueOf(86'399'999, 86'400'000, QStringLiteral("a_ _b|STYLE"))};
    EXPECT_EQ(described(readCues(webVtt(hostile), {}).cues), described(hostile));
}

TEST_F(FormatsTest, ThreeLinesTellTheEncodingAndOneOffersItAmongTheGuesses) {
    struct Writing {
        const char *language;
        QByteArrayList encodings;
    };
    for (const Writing &writing :
         {Writing{"fr", {"WINDOWS-1252"}}, Writing{"de", {"WINDOWS-1252"}}, Writing{"tr", {"WINDOWS-1254"}},
          Writing{"ru", {"WINDOWS-1251", "KOI8-R", "ISO-8859-5"}},
          Writing{"pl", {"WINDOWS-1250", "ISO-8859-2"}}, Writing{"el", {"WINDOWS-1253", "ISO-8859-7"}},
          Writing{"he", {"WINDOWS-1255"}}, Writing{"ar", {"WINDOWS-1256"}}, Writing{"zh", {"GB18030"}},
          Writing{"zh-Hant", {"BIG5"}}, Writing{"ja", {"SHIFT_JIS", "EUC-JP"}}, Writing{"ko", {"CP949"}}}) {
        const QList<Cue> cues = dialogue(QString::fromLatin1(writing.language));
        for (const QByteArray &encoding : writing.encodings) {
            for (qsizetype i = 0; i + 3 <= cues.size(); ++i) {
                const QByteArray three = encoded(QString::fromUtf8(webVtt(cues.mid(i, 3))), encoding);
                EXPECT_EQ(described(readCues(three, {}).cues), described(cues.mid(i, 3)))
                    << encodingOf(three).toStdString();
                const QByteArray one = encoded(QString::fromUtf8(webVtt({cues[i]})), encoding);
                const QByteArrayList guesses = encodingGuesses(one);
                EXPECT_EQ(guesses.constFirst(), encodingOf(one));
                EXPECT_LE(guesses.size(), 8);
                EXPECT_TRUE(std::any_of(guesses.begin(), guesses.end(),
                                        [&](const QByteArray &guess) {
                                            return readCues(one, {}, guess).cues == QList<Cue>{cues[i]};
                                        }))
                    << encoding.toStdString() << " not in " << guesses.join(' ').toStdString();
                EXPECT_EQ(described(readCues(one, {}, encoding).cues), described({cues[i]}));
            }
        }
    }
    EXPECT_EQ(toUtf8("caf\xE9", "NO-SUCH-ENCODING"), toUtf8("caf\xE9"));
    EXPECT_EQ(encodingGuesses("plain"), QByteArrayList{"UTF-8"});
}

TEST_F(FormatsTest, TheLanguageIsToldFromTheTextOrNotAtAll) {
    for (const QString &language : dialogueLanguages())
        EXPECT_EQ(languageOfText(dialogue(language)), QString(findLanguage(language.left(2))->code));
    QList<Cue> controls = dialogue(QStringLiteral("fr"));
    controls[2].lines[0].append(QChar(8));
    EXPECT_EQ(languageOfText(controls), QStringLiteral("fra"));
    EXPECT_EQ(languageOfText({}), QString());
    EXPECT_EQ(languageOfText({cueOf(0, 1, QStringLiteral("Hello"))}), QString());
    EXPECT_EQ(languageOfText(dialogue(QStringLiteral("en")) + dialogue(QStringLiteral("ru"))), QString());
}

TEST_F(FormatsTest, FilesCutAtAnyByteAreReadAsFarAsTheyGo) {
    for (const SubtitleFile &file : oddFiles()) {
        for (qsizetype length = 0; length < file.bytes.size(); ++length)
            expectSoundCues(readCues(file.bytes.left(length), {}).cues, file.name.toStdString());
    }
    for (const SubtitleFile &file : conversationFiles()) {
        for (qsizetype length = file.name.size() % 53; length < file.bytes.size(); length += 53) {
            expectSoundCues(readCues(file.bytes.left(length), {}).cues, file.name.toStdString());
            expectSoundCues(readCues(file.bytes.mid(length), {}).cues, file.name.toStdString());
        }
    }
}

TEST_F(FormatsTest, DamagedFilesGiveLinesThatCanBeStored) {
    QRandomGenerator random(20'240'607); // the same damage in each run
    for (const SubtitleFile &file : allFiles()) {
        for (int round = 0; round < 20; ++round) {
            QByteArray bytes = file.bytes;
            for (int damage = 0; damage < 8; ++damage)
                bytes[random.bounded(bytes.size())] = static_cast<char>(random.bounded(256));
            const QList<Cue> cues = readCues(bytes, {}).cues;
            expectSoundCues(cues, file.name.toStdString());
            EXPECT_EQ(described(readCues(webVtt(cues), {}).cues), described(cues)) << file.name.toStdString();
            expectSoundCues(readCues(bytes, {}, "UTF-16LE").cues, file.name.toStdString());
        }
    }
}

// A reader whose time grows with the square of the length would need hours here.
TEST_F(FormatsTest, NoTextMakesAReaderSlowOrLarge) {
    constexpr qsizetype fileBytes = 256 * 1024;
    const QByteArrayList heads{"",
                               "1\n00:00:01,000 --> 00:00:02,000\n",
                               "WEBVTT\n\n00:01.000 --> 00:02.000\n",
                               "[Script Info]\n[Events]\nDialogue: 0,0:00:01.00,0:00:02.00,Default,,0,0,0,,",
                               "{1}{1}25\n{25}{50}",
                               "[10][20]",
                               "00:00:01.00,00:00:02.00\n",
                               "<SAMI><BODY><SYNC Start=1000><P>",
                               "<tt><body><p begin='1s' end='2s'>"};
    const QByteArrayList repeated{"x",
                                  "<",
                                  "<i ",
                                  "{",
                                  "{\\",
                                  "{y:",
                                  "&",
                                  "&#",
                                  "|",
                                  "[",
                                  " ",
                                  "\n",
                                  "1",
                                  "1:",
                                  "-",
                                  "<p>",
                                  "\\N",
                                  "é",
                                  "\xFF",
                                  "\x01",
                                  "<!--",
                                  "{1}{2}a\n",
                                  "[1][2]a\n",
                                  "00:00:01,000 --> 00:00:01,000\na\n",
                                  "<p begin='1s'>a</p>",
                                  "<SYNC Start=1>a"};
    for (const QByteArray &head : heads) {
        for (const QByteArray &part : repeated) {
            const QByteArray bytes = head + part.repeated(fileBytes / part.size());
            const std::clock_t begin = std::clock();
            const QList<Cue> cues = readCues(bytes, {25, 1}).cues;
            const double seconds = static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
            EXPECT_LT(seconds, 10) << head.toStdString() << part.toStdString();
            EXPECT_LE(cues.size(), 50'000);
            expectSoundCues(cues, head.toStdString() + part.toStdString());
            for (const Cue &cue : cues)
                ASSERT_LE(cue.lines.join(QString()).size(), 2000);
        }
    }
}

TEST_F(FormatsTest, LinesBehindTheEndOfAnyFilmAreLeftOut) {
    const QList<Cue> cues = readCues("<SAMI><BODY><SYNC Start=86400000><P>Last<SYNC Start=86400001><P>Damage"
                                     "<SYNC Start=999999999999><P>Damage</BODY></SAMI>",
                                     {})
                                .cues;
    ASSERT_EQ(cues.size(), 1);
    EXPECT_EQ(cues[0].lines, QStringList{QStringLiteral("Last")});
    EXPECT_EQ(readCues("1\n25:00:00,000 --> 25:00:01,000\nDamage\n", {}).problem, CueProblem::NoCues);
}

TEST_F(FormatsTest, WhatHoldsNoLinesIsNamed) {
    EXPECT_EQ(readCues(QByteArray("\0\0\x01\xBA", 4) + QByteArray(9'000'000, '\x42'), {}).problem,
              CueProblem::PictureSubtitle);
    EXPECT_EQ(readCues("# VobSub index file, v7", {}).problem, CueProblem::PictureSubtitle);
    for (const QByteArray &bytes :
         {QByteArray(), QByteArray(3000, '\0'), QByteArray("\xff\xfe"), QByteArray("Hello")})
        EXPECT_EQ(readCues(bytes, {}).problem, CueProblem::UnknownFormat);
    EXPECT_EQ(readCues("1\n00:00:01,000 --> 00:00:02,000\n\n", {}).problem, CueProblem::NoCues);
    EXPECT_EQ(readCues("<!DOCTYPE tt [<!ENTITY a \"aaaaaaaa\"><!ENTITY b \"&a;&a;&a;&a;\">]><tt><p "
                       "begin='1s'>&b;</p></tt>",
                       {})
                  .problem,
              CueProblem::NoCues);
}

} // namespace

} // namespace murvo::service::test
