// SPDX-License-Identifier: GPL-3.0-or-later
// pause_bench [LINES]: how far from the end of its line the film pauses by itself, over a film of so many
// lines (300 without a number, a quarter of an hour), by the picture on the screen and by the player's time.
// For a quiet machine:
//   scripts/virtual-desktop build/dev/bench/pause_bench

#include "desktop/PracticeFixture.h"

#include "app/AppDelegate.h"
#include "app/Media/VLCMediaPlayer.h"
#include "support/Wait.h"
#include "support/XTools.h"

#include <QFile>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace murvo::test {

using namespace std::chrono_literals;

namespace {

using Clock = std::chrono::steady_clock;

double ms(Clock::duration time) {
    return std::chrono::duration<double, std::milli>(time).count();
}

/// The player's own time: its reports, which come late and never early, carried on to the moment of a pause.
class PlayerTime : public QObject {
  public:
    explicit PlayerTime(const VLCMediaPlayer &player) {
        connect(&player, &VLCMediaPlayer::timeChanged, this, [this, &player] {
            const double offset =
                static_cast<double>(player.time().intValue()) - ms(Clock::now().time_since_epoch());
            _offsets.push_back(offset);
        });
        connect(&player, &VLCMediaPlayer::stateChanged, this, [this, &player] {
            if (player.state() == VLCMediaPlayerStatePaused)
                _pausedAt = Clock::now();
            else if (player.state() == VLCMediaPlayerStatePlaying)
                _offsets.clear();
        });
    }

    [[nodiscard]] double atPauseMs() const {
        const double offset = _offsets.empty() ? NAN : *std::max_element(_offsets.begin(), _offsets.end());
        return ms(_pausedAt.time_since_epoch()) + offset;
    }

  private:
    std::vector<double> _offsets;
    Clock::time_point _pausedAt;
};

void print(const char *name, std::vector<double> errors) {
    if (errors.empty())
        return;
    std::vector<double> sizes;
    std::transform(errors.begin(), errors.end(), std::back_inserter(sizes),
                   [](double x) { return std::abs(x); });
    std::sort(errors.begin(), errors.end());
    std::sort(sizes.begin(), sizes.end());
    const auto share = [](const std::vector<double> &sorted, double part) {
        return sorted[static_cast<std::size_t>(part * static_cast<double>(sorted.size() - 1))];
    };
    std::printf(
        "%-12s %4zu pauses; off by, median %.0f ms, 95 %% within %.0f, worst %.0f; from %+.0f to %+.0f, "
        "middle %+.0f\n",
        name, errors.size(), share(sizes, 0.5), share(sizes, 0.95), sizes.back(), errors.front(),
        errors.back(), share(errors, 0.5));
}

void printLoad(const char *when) {
    QFile load(QStringLiteral("/proc/loadavg"));
    if (load.open(QIODevice::ReadOnly))
        std::printf("load %s: %s", when, load.readAll().constData());
}

std::size_t wantedLines() {
    constexpr int usual = 300;
    const QStringList words = QCoreApplication::arguments();
    return static_cast<std::size_t>(words.size() > 1 ? words[1].toInt() : usual);
}

} // namespace

class PauseBench : public Practice {};

TEST_F(PauseBench, PausesAtTheEndOfEachLine) {
    const std::size_t lines = wantedLines();
    printLoad("before");
    ASSERT_NO_FATAL_FAILURE(playMarked(static_cast<int>(lines)));
    const PlayerTime playerTime(*player());
    pressKey(QStringLiteral("q"));
    std::vector<double> byPicture;
    std::vector<double> byPlayer;
    std::size_t wrong = 0;
    for (std::size_t i = 0; i < lines; ++i) {
        const auto pausedMs = nextPauseMs(20s);
        ASSERT_TRUE(pausedMs) << "line " << i + 1;
        if (line("learned") != QStringLiteral("line %1").arg(i + 1))
            ++wrong;
        byPicture.push_back(*pausedMs - marked->stopMs(i));
        byPlayer.push_back(playerTime.atPauseMs() - marked->stopMs(i));
        ASSERT_NO_FATAL_FAILURE(goOn());
    }
    letPass(1500ms);
    EXPECT_TRUE(player()->isPlaying()) << "a pause too many";
    print("by picture:", byPicture);
    print("by player:", byPlayer);
    std::printf("pauses at another line than the next: %zu\n", wrong);
    printLoad("after");
}

} // namespace murvo::test
