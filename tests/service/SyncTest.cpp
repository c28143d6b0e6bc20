// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/SpokenFilm.h"

#include "Timing/Alignment.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <iostream>
#include <numeric>
#include <vector>

namespace murvo::service::test {

namespace {

constexpr qint64 bearableMs = 100;
const std::atomic<bool> goesOn{false};

std::string toText(const Timing &timing) {
    QString text = QStringLiteral("%1 ms, %2/%3")
                       .arg(timing.offsetMs)
                       .arg(timing.rateNumerator)
                       .arg(timing.rateDenominator);
    if (timing.cut)
        text += QStringLiteral(", cut %1 ms at %2 s").arg(timing.cut->offsetMs).arg(timing.cut->atMs / 1000);
    return text.toStdString();
}

/// Prints what was found and checks that "sure" was not said lightly; true when it was said.
bool isSurelyRight(const char *what, const Track &track, const Timing &truth,
                   const std::optional<Alignment> &found) {
    if (!found) {
        ADD_FAILURE() << what << ": nothing found";
        return false;
    }
    const qint64 errorMs = worstErrorMs(track, found->timing);
    std::cout << "  " << what << ": true " << toText(truth) << "; found " << toText(found->timing)
              << "; worst error " << errorMs << " ms, " << (found->isSure ? "sure" : "not sure") << ' '
              << found->confidence << '\n';
    if (found->isSure) {
        EXPECT_LE(errorMs, bearableMs) << what;
    }
    return found->isSure && errorMs <= bearableMs;
}

Timing timing(qint64 offsetMs, qint32 numerator = 1, qint32 denominator = 1, std::optional<Cut> cut = {}) {
    return {offsetMs, numerator, denominator, cut};
}

} // namespace

TEST(SyncTimingTest, CuesMoveAsAWholeAndStayInOrder) {
    const Timing shrunk{-2'000, 24, 25, Cut{50'000, -45'000}};
    EXPECT_EQ(filmTimeMs(25'000, shrunk), 22'000);
    EXPECT_EQ(filmTimeMs(50'000, shrunk), 1'000);
    const QStringList text{QStringLiteral("x")};
    const QList<Cue> cues = retimed(
        {{0, 1'000, text}, {1'000, 3'125, text}, {48'000, 51'000, text}, {50'000, 52'500, text}}, shrunk);
    ASSERT_EQ(cues.size(), 3); // the first has ended before the film begins
    EXPECT_EQ(cues[0].startMs, 0);
    EXPECT_EQ(cues[0].endMs, 1'000);
    EXPECT_EQ(cues[1].startMs, 1'000);
    EXPECT_EQ(cues[1].endMs, 3'400);
    EXPECT_EQ(cues[2].startMs, 44'080);
    EXPECT_EQ(cues[2].endMs, 46'960);
}

TEST(SyncTrackTest, TracksOfOtherReleasesAndLanguagesAreLaidOntoTheOneThatFits) {
    const std::vector<Timing> truths{timing(90),
                                     timing(-600'000),
                                     timing(598'000),
                                     timing(-12'340, 24, 25),
                                     timing(4'321, 25'025, 24'000),
                                     timing(60'000, 1'001, 1'000),
                                     timing(-8'000, 960, 1'001),
                                     timing(33'000, 5, 4)};
    unsigned seed = 0;
    int sureOfOthers = 0;
    for (const Timing &truth : truths) {
        Chance chance(++seed);
        const QList<Cue> lines = dialogue(chance, 16 * 60'000);
        const Track same = trackOf(lines, truth);
        EXPECT_TRUE(isSurelyRight("same", same, truth, alignToTrack(same.cues, lines, goesOn)));
        const QList<Cue> reference = retold(chance, lines, 150);
        const std::optional<Alignment> other = alignToTrack(same.cues, reference, goesOn);
        sureOfOthers += isSurelyRight("other", same, truth, other) ? 1 : 0;
    }
    EXPECT_GE(sureOfOthers, 7);
}

TEST(SyncTrackTest, ATrackThatFitsIsLeftAlone) {
    Chance chance(7);
    const QList<Cue> lines = dialogue(chance, 10 * 60'000);
    const std::optional<Alignment> same = alignToTrack(lines, lines, goesOn);
    ASSERT_TRUE(same);
    EXPECT_EQ(same->timing, Timing());
    EXPECT_TRUE(same->isSure);
    const std::optional<Alignment> other = alignToTrack(retold(chance, lines, 200), lines, goesOn);
    ASSERT_TRUE(other);
    EXPECT_TRUE(other->isSure);
    EXPECT_TRUE(other->timing.rateNumerator == 1 && !other->timing.cut) << toText(other->timing);
    EXPECT_NEAR(static_cast<double>(other->timing.offsetMs), 0, 40);
}

TEST(SyncTrackTest, ACutIsFoundBetweenTheRightLines) {
    int sure = 0;
    for (unsigned seed = 1; seed <= 6; ++seed) {
        Chance chance(seed);
        QList<Cue> lines = dialogue(chance, 15 * 60'000);
        const auto beforeLine =
            static_cast<qsizetype>(chance.between(0.15, 0.85) * static_cast<double>(lines.size()));
        const qint64 insertedMs = chance.msBetween(4'000, 90'000);
        insertPause(lines, beforeLine, insertedMs);
        Timing truth = seed % 2 == 0 ? timing(-20'000) : timing(7'000, 24, 25);
        truth.cut = Cut{0, insertedMs};
        const Track track = trackOf(lines, truth, lines[beforeLine].startMs);
        const QList<Cue> reference = seed <= 3 ? lines : retold(chance, lines, 120);
        sure += isSurelyRight("cut", track, truth, alignToTrack(track.cues, reference, goesOn)) ? 1 : 0;
    }
    EXPECT_GE(sure, 4);
}

TEST(SyncTrackTest, WhatCannotBeToldIsNotSure) {
    for (unsigned seed = 1; seed <= 4; ++seed) {
        Chance chance(seed);
        const QList<Cue> lines = dialogue(chance, 12 * 60'000);
        const std::optional<Alignment> foreign = alignToTrack(dialogue(chance, 12 * 60'000), lines, goesOn);
        ASSERT_TRUE(foreign);
        EXPECT_FALSE(foreign->isSure) << "another film's track, seed " << seed;
        const std::optional<Alignment> few = alignToTrack(lines.mid(20, 6), lines, goesOn);
        ASSERT_TRUE(few);
        EXPECT_FALSE(few->isSure) << "six lines";
        QList<Cue> twice = lines;
        insertPause(twice, twice.size() / 3, 21'000);
        insertPause(twice, 2 * twice.size() / 3, 34'000);
        const std::optional<Alignment> twoCuts = alignToTrack(lines, twice, goesOn);
        ASSERT_TRUE(twoCuts);
        EXPECT_FALSE(twoCuts->isSure) << "two cuts, seed " << seed;
    }
    Chance chance(1);
    const QList<Cue> lines = dialogue(chance, 60'000);
    EXPECT_FALSE(alignToTrack({}, lines, goesOn));
    EXPECT_FALSE(alignToTrack(lines, {}, goesOn));
    EXPECT_FALSE(alignToTrack(lines, lines, std::atomic<bool>(true)));
}

/// Films that somebody speaks in, made once for the whole test.
class SyncSpeechTest : public testing::Test {
  protected:
    static std::optional<SpeechActivity> speechIn(const QString &path, int streamIndex = -1) {
        return findSpeech(
            path, streamIndex, [](double) {}, goesOn);
    }

    QTemporaryDir _temporary;
    QDir _folder{_temporary.path()};
};

TEST_F(SyncSpeechTest, TracksAreLaidOntoTheVoicesOfFilms) {
    const auto text = [](const char *words) { return QString::fromLatin1(words).split(u' '); };
    struct Case {
        const char *what;
        FilmRecipe recipe;
        Timing truth;
    };
    // 25/23.976 is 25025/24000.
    const std::vector<Case> cases{
        {"quiet", {QStringLiteral("1.mkv"), text("-c:a pcm_s16le"), text("en-gb")}, timing(12'340)},
        {"noise",
         {QStringLiteral("2.mp4"), text("-c:a aac -aac_coder fast"), text("fr"), 150, Bed::Noise},
         timing(-60'000)},
        {"music", {QStringLiteral("3.mka"), text("-c:a flac"), text("de"), 170, Bed::Music}, timing(60'000)},
        {"music 24/25",
         {QStringLiteral("4.ts"), text("-c:a ac3 -ac 6"), text("en-us es"), 160, Bed::Music},
         timing(-21'000, 24, 25)},
        {"noise 25/23.976",
         {QStringLiteral("5.mkv"), text("-c:a ac3"), text("es ru"), 160, Bed::Noise},
         timing(5'000, 25'025, 24'000)},
        {"cut",
         {QStringLiteral("6.avi"), text("-c:a mp2"), text("ru"), 160, Bed::Silence, 420'000, 25'000},
         timing(-9'000, 1, 1, Cut{0, 25'000})},
        {"fast",
         {QStringLiteral("7.flac"), text("-c:a flac -ac 2"), text("it"), 220, Bed::NoiseAndMusic},
         timing(-3'700)},
        {"24/25",
         {QStringLiteral("8.mka"), text("-c:a eac3"), text("pl cs"), 150, Bed::NoiseAndMusic},
         timing(47'000, 24, 25)},
        {"near", {QStringLiteral("9.mp4"), text("-c:a alac"), text("en-gb sv"), 160, Bed::Noise}, timing(70)},
        {"cut in music",
         {QStringLiteral("10.mkv"), text("-c:a mp2"), text("pt tr"), 160, Bed::Music, 420'000, 18'000},
         timing(-30'000, 1, 1, Cut{0, 18'000})},
    };
    Chance other(99);
    const QList<Cue> unrelated = dialogue(other, 360'000);
    int sure = 0;
    unsigned seed = 100;
    for (const Case &each : cases) {
        const SpokenFilm film = makeSpokenFilm(_folder, each.recipe, ++seed);
        Chance chance(seed);
        QList<Cue> set = film.lines; // as people set them: near the voice, and longer than it
        for (Cue &cue : set) {
            cue.startMs += chance.msBetween(-80, 80);
            cue.endMs += chance.msBetween(-100, 600);
        }
        const Track track = trackOf(set, each.truth, film.cutFilmMs);
        const std::optional<SpeechActivity> speech = speechIn(film.path);
        ASSERT_TRUE(speech) << each.what;
        const std::optional<Alignment> found = alignToSpeech(track.cues, *speech, goesOn);
        sure += isSurelyRight(each.what, track, each.truth, found) ? 1 : 0;
        EXPECT_FALSE(alignToSpeech(unrelated, *speech, goesOn)->isSure) << each.what;
    }
    EXPECT_GE(sure, 8);
}

TEST_F(SyncSpeechTest, MusicAloneIsNoProofOfAnything) {
    const std::optional<SpeechActivity> music = speechIn(makeMusicFilm(_folder, 300'000));
    ASSERT_TRUE(music);
    for (unsigned seed = 1; seed <= 5; ++seed) {
        Chance chance(seed);
        const std::optional<Alignment> found = alignToSpeech(dialogue(chance, 300'000), *music, goesOn);
        ASSERT_TRUE(found);
        EXPECT_FALSE(found->isSure) << toText(found->timing) << ' ' << found->confidence;
    }
}

TEST_F(SyncSpeechTest, OnlyTheSoundAskedForIsHeardAndOnlyAsLongAsItIsWanted) {
    const QString film = makeTwoSoundFilm(_folder);
    const auto loudness = [](const std::optional<SpeechActivity> &speech) {
        return speech ? std::accumulate(speech->likelihood.begin(), speech->likelihood.end(), 0.0) : -1.0;
    };
    // The first sound is silent, the default one beeps once a second; the film ends with it at 20 s.
    EXPECT_EQ(loudness(speechIn(film, 0)), 0);
    const std::optional<SpeechActivity> beeps = speechIn(film);
    EXPECT_GT(loudness(beeps), 100);
    EXPECT_NEAR(static_cast<double>(beeps->likelihood.size()) * beeps->frameMs, 20'000, 100);
    EXPECT_EQ(beeps->likelihood[145], 0.0F); // each sounds from 0.5 s to 0.7 s
    EXPECT_GT(beeps->likelihood[155], 0.5F);
    for (const int noSound : {2, 3, 1'000'000})
        EXPECT_FALSE(speechIn(film, noSound)) << noSound;
    EXPECT_FALSE(speechIn(_folder.filePath(QStringLiteral("none.mkv"))));

    std::atomic<bool> isCancelled = false;
    double lastShare = 0;
    const auto cancelHalfway = [&](double share) {
        lastShare = share;
        isCancelled = share > 0.5;
    };
    EXPECT_FALSE(findSpeech(film, -1, cancelHalfway, isCancelled));
    EXPECT_LT(lastShare, 0.7);
}

} // namespace murvo::service::test
