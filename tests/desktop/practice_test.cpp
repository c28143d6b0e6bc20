// SPDX-License-Identifier: GPL-3.0-or-later
// The line tools with the real player and real keys. How exact they are on a quiet machine is
// bench/pause_bench's to tell: here others may run beside.

#include "PracticeFixture.h"

#include "app/Media/VLCMediaPlayer.h"
#include "support/Wait.h"
#include "support/XTools.h"

#include <algorithm>
#include <cmath>

namespace murvo::test {

using namespace std::chrono_literals;

TEST_F(Practice, PausesOnceAtTheEndOfEachLineAlsoWhenTheLinesAreMoved) {
    constexpr std::size_t lines = 12;
    constexpr std::size_t movedFrom = 6;
    constexpr int movedByMs = -300;
    ASSERT_NO_FATAL_FAILURE(playMarked(lines));
    pressKey(QStringLiteral("q"));
    std::vector<double> errors;
    for (std::size_t i = 0; i < lines; ++i) {
        const auto pausedMs = nextPauseMs(20s);
        ASSERT_TRUE(pausedMs) << i;
        EXPECT_EQ(line("learned"), QStringLiteral("line %1").arg(i + 1)) << "what was heard can be read";
        const double stopMs = marked->stopMs(i) + (i >= movedFrom ? movedByMs : 0);
        errors.push_back(std::abs(*pausedMs - stopMs));
        if (i + 1 == movedFrom) {
            for (int k = 0; k < 3; ++k)
                pressKey(QStringLiteral("z"));
            ASSERT_TRUE(waitUntil([&] {
                return inPage("document.getElementById('notice').textContent.includes('0.3 s earlier')") ==
                       QLatin1String("true");
            }));
        }
        ASSERT_NO_FATAL_FAILURE(goOn());
    }
    std::sort(errors.begin(), errors.end());
    RecordProperty("medianErrorMs", std::to_string(errors[lines / 2]));
    EXPECT_LT(errors[lines / 2], 50);
    EXPECT_LT(errors.back(), 400) << "each at its own line";
    letPass(1500ms);
    EXPECT_TRUE(player()->isPlaying()) << "no second stop";
}

TEST_F(Practice, DrillsALineFasterAndFasterAndLeavesTimeToSpeak) {
    ASSERT_NO_FATAL_FAILURE(playMarked(8));
    ASSERT_TRUE(waitUntil([this] { return line("learned") == QLatin1String("line 2"); }));
    pressKey(QStringLiteral("r"));
    for (const float speed : {0.7F, 0.85F, 1.0F}) {
        EXPECT_TRUE(waitUntil([&] {
            return player()->isPlaying() && std::abs(player()->rate() - speed) < 0.01F;
        })) << speed;
        const auto pausedMs = nextPauseMs(20s);
        ASSERT_TRUE(pausedMs) << speed;
        EXPECT_NEAR(*pausedMs, marked->stopMs(1), 150);
        EXPECT_EQ(inPage("document.querySelector('#practice-marks .turn').textContent"),
                  QStringLiteral("Your turn"));
    }
    EXPECT_TRUE(waitUntil([this] { return line("learned") == QLatin1String("line 3"); }));
    pressKey(QStringLiteral("r"));
    EXPECT_TRUE(waitUntil([this] { return qFuzzyCompare(player()->rate(), 1.0F); }));
    EXPECT_TRUE(waitUntil([this] { return line("learned") == QLatin1String("line 5"); }, 20s))
        << "it is over";
}

TEST_F(Practice, LoopsALineUntilTheKeyIsPressedAgain) {
    ASSERT_NO_FATAL_FAILURE(playMarked(6));
    // The fourth line begins 20 ms after the third.
    ASSERT_TRUE(waitUntil([this] { return line("learned") == QLatin1String("line 4"); }, 20s));
    pressKey(QStringLiteral("shift+r"));
    const int startMs = marked->lines()[3].startMs;
    const int endMs = marked->lines()[3].endMs;
    double lastMs = 0;
    int rounds = 0;
    bool isInside = true;
    EXPECT_TRUE(waitUntil(
        [&] {
            const double nowMs = shownMs();
            rounds += nowMs < lastMs - 500 ? 1 : 0;
            lastMs = nowMs;
            isInside = isInside && nowMs > startMs - 1100 && nowMs < endMs + 200;
            return rounds == 3;
        },
        30s));
    EXPECT_TRUE(isInside);
    pressKey(QStringLiteral("shift+r"));
    EXPECT_TRUE(waitUntil([this] { return line("learned") == QLatin1String("line 6"); }, 20s))
        << "it goes on";
}

TEST_F(Practice, SetsTheToolsInThePanelByKeyboard) {
    ASSERT_NO_FATAL_FAILURE(playMarked(4));
    const auto is = [this](const char *script) {
        return waitUntil([&] { return inPage(script) == QLatin1String("true"); });
    };
    pressKey(QStringLiteral("p"));
    ASSERT_TRUE(is("!document.getElementById('practice-panel').hidden"));
    std::ignore = inPage("document.querySelector('#practice-panel .switch').focus(); 1");
    pressKey(QStringLiteral("space"));
    EXPECT_TRUE(is("document.querySelector('#practice-panel .switch').ariaChecked === 'true'"));
    EXPECT_TRUE(is("document.querySelector('[data-mark=autoPause]') !== null"));
    std::ignore = inPage("document.querySelector('#practice-rounds').nextElementSibling.focus(); 1");
    pressKey(QStringLiteral("Return"));
    EXPECT_TRUE(is("document.getElementById('practice-rounds').textContent === '4 times'"));
    ASSERT_TRUE(nextPauseMs(20s));
    pressKey(QStringLiteral("p"));
    EXPECT_TRUE(is("document.getElementById('practice-panel').hidden"));
}

} // namespace murvo::test
