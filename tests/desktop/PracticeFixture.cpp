// SPDX-License-Identifier: GPL-3.0-or-later
#include "PracticeFixture.h"

#include "app/AppDelegate.h"
#include "app/Media/VLCMediaPlayer.h"
#include "app/Platform/MainWindow.h"
#include "support/Wait.h"
#include "support/XTools.h"

namespace murvo::test {

using namespace std::chrono_literals;

void Practice::playMarked(int lineCount) {
    marked.emplace(lineCount);
    useFilm(marked->path());
    writeBeside(QStringLiteral(".en.srt"), marked->subtitles());
    ASSERT_NO_FATAL_FAILURE(play());
    ASSERT_TRUE(
        waitUntil([this] { return inPage("!!document.querySelector('.line-step:enabled')") == u"true"; }));
}

double Practice::shownMs() const {
    return MarkedFilm::shownMs(delegate->window().contentScreenRect());
}

std::optional<double> Practice::nextPauseMs(std::chrono::milliseconds limit) const {
    if (!waitUntil([this] { return !player()->isPlaying(); }, limit))
        return std::nullopt;
    // The last picture may still be on its way.
    constexpr int looks = 12;
    double lastMs = -1;
    int same = 0;
    const bool rests = waitUntil([&] {
        const double nowMs = shownMs();
        same = nowMs == lastMs ? same + 1 : 0;
        lastMs = nowMs;
        return same >= looks;
    });
    return rests ? std::optional(lastMs) : std::nullopt;
}

void Practice::goOn() const {
    pressKey(QStringLiteral("space"));
    expectPaused(false);
}

} // namespace murvo::test
