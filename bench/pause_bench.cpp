// SPDX-License-Identifier: GPL-3.0-or-later
// pause_bench [LINES [TENTHS]]: how far from the end of its line the film pauses by itself, over a film of so
// many lines (300 without a number, a quarter of an hour), played so many tenths faster, by the picture on
// the screen and by the player's time. For a quiet machine:
//   scripts/virtual-desktop build/dev/bench/pause_bench
// (MURVO_DESKTOP_SIZE=700x480 leaves most of the processor to the player.) Where the machine is a virtual one
// whose host took a processor away just then, the pause is counted by itself.

#include "desktop/PracticeFixture.h"

#include "StolenTime.h"

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

/// The player's own time: its reports, which come late and never early, carried on to the moment of a pause.
class PlayerTime : public QObject {
  public:
    explicit PlayerTime(const VLCMediaPlayer &player)
        : _player(player) {
        connect(&player, &VLCMediaPlayer::timeChanged, this, [this] {
            _offsetsMs.push_back(static_cast<double>(_player.time().intValue()) - runMs(Clock::now()));
        });
        connect(&player, &VLCMediaPlayer::stateChanged, this, [this] {
            if (_player.state() == VLCMediaPlayerStatePaused)
                _pausedAt = Clock::now();
            else if (_player.state() == VLCMediaPlayerStatePlaying)
                _offsetsMs.clear();
        });
    }

    [[nodiscard]] Clock::time_point pausedAt() const { return _pausedAt; }

    [[nodiscard]] double atPauseMs() const {
        const auto foremost = std::max_element(_offsetsMs.begin(), _offsetsMs.end());
        return foremost == _offsetsMs.end() ? NAN : runMs(_pausedAt) + *foremost;
    }

  private:
    [[nodiscard]] double runMs(Clock::time_point at) const {
        return std::chrono::duration<double, std::milli>(at - _begun).count() *
               static_cast<double>(_player.rate());
    }

    const VLCMediaPlayer &_player;
    const Clock::time_point _begun = Clock::now();
    std::vector<double> _offsetsMs; // since the film has gone on
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

/// How far off the pauses were: of all of them, and of those at which the machine ran on.
struct Errors {
    std::vector<double> all;
    std::vector<double> undisturbed;

    void add(double errorMs, bool isDisturbed) {
        all.push_back(errorMs);
        if (!isDisturbed)
            undisturbed.push_back(errorMs);
    }
};

void printLoad(const char *when) {
    QFile load(QStringLiteral("/proc/loadavg"));
    if (load.open(QIODevice::ReadOnly))
        std::printf("load %s: %s", when, load.readAll().constData());
}

int argument(qsizetype place, int usual) {
    return QCoreApplication::arguments().value(place, QString::number(usual)).toInt();
}

} // namespace

class PauseBench : public Practice {};

TEST_F(PauseBench, PausesAtTheEndOfEachLine) {
    // What comes so long before a pause can delay it; so much of it counts.
    constexpr auto concernedFor = 150ms;
    constexpr double disturbingMs = 10;
    const StolenTime stolen;
    const auto lines = static_cast<std::size_t>(argument(1, 300));
    printLoad("before");
    ASSERT_NO_FATAL_FAILURE(playMarked(static_cast<int>(lines)));
    for (int i = 0; i < argument(2, 0); ++i)
        pressKey(QStringLiteral("bracketright"));
    const PlayerTime playerTime(*player());
    pressKey(QStringLiteral("q"));
    Errors byPicture;
    Errors byPlayer;
    std::size_t wrong = 0;
    for (std::size_t i = 0; i < lines; ++i) {
        const auto pausedMs = nextPauseMs(20s);
        ASSERT_TRUE(pausedMs) << "line " << i + 1;
        if (line("learned") != QStringLiteral("line %1").arg(i + 1))
            ++wrong;
        const auto pausedAt = playerTime.pausedAt();
        const bool isDisturbed = stolen.totalMs(pausedAt - concernedFor, pausedAt) >= disturbingMs;
        byPicture.add(*pausedMs - marked->stopMs(i), isDisturbed);
        byPlayer.add(playerTime.atPauseMs() - marked->stopMs(i), isDisturbed);
        ASSERT_NO_FATAL_FAILURE(goOn());
    }
    letPass(1500ms);
    EXPECT_TRUE(player()->isPlaying()) << "a pause too many";
    print("by picture:", byPicture.all);
    print("by player:", byPlayer.all);
    if (stolen.isReliable()) {
        std::printf("without those at which processors were away for %.0f ms or more:\n", disturbingMs);
        print("by picture:", byPicture.undisturbed);
        print("by player:", byPlayer.undisturbed);
    }
    std::printf("pauses at another line than the next: %zu\n", wrong);
    printLoad("after");
}

} // namespace murvo::test
