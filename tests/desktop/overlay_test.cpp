// SPDX-License-Identifier: GPL-3.0-or-later
// What the page over the film costs: frames are counted where the web engine's picture is drawn into the
// window.

#include "desktop/LearnerFixture.h"

#include "app/AppDelegate.h"
#include "app/Classes/MDragReceiverWebView.h"
#include "app/Media/VLCMediaPlayer.h"
#include "app/Platform/MainWindow.h"
#include "app/ViewControllers/WebViewController.h"
#include "support/Wait.h"
#include "support/XTools.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>
#include <QQuickWidget>
#include <QQuickWindow>

#include <algorithm>

namespace murvo::test {

using namespace std::chrono_literals;

/// Counts what is drawn of the player's page.
class Overlay : public Learner {
  protected:
    void playAndCount(const QByteArray &lines) {
        writeBeside(QStringLiteral(".en.srt"), lines);
        ASSERT_NO_FATAL_FAILURE(play());
        auto *page = delegate->playerWebViewController()->view()->findChild<QQuickWidget *>();
        ASSERT_NE(page, nullptr) << "the web engine draws in another way";
        // It is drawn on this thread.
        QObject::connect(page->quickWindow(), &QQuickWindow::afterRendering, page,
                         [this] { frames.push_back(QDateTime::currentMSecsSinceEpoch()); });
        // The pointer lies elsewhere and rests; the bar goes.
        run(QStringLiteral("xdotool"),
            {QStringLiteral("mousemove"), QStringLiteral("2"), QStringLiteral("2")});
        ASSERT_TRUE(waitInPage("String(document.body.classList.contains('resting'))"));
    }

    std::vector<qint64> frames; ///< when each was drawn, ms since 1970
};

TEST_F(Overlay, DrawsNothingWhileNothingChanges) {
    ASSERT_NO_FATAL_FAILURE(playAndCount("1\n00:00:01,000 --> 00:00:18,500\nA line that stays\n"));
    ASSERT_TRUE(waitUntil([this] { return line("learned") == QLatin1String("A line that stays"); }));
    letPass(600ms); // the bar fades
    ASSERT_FALSE(frames.empty()) << "frames are counted";
    frames.clear();
    const qint64 begin = time();
    letPass(10s);
    EXPECT_GT(time(), begin + 8000) << "the film runs beneath";
    EXPECT_EQ(line("learned"), QStringLiteral("A line that stays"));
    EXPECT_EQ(frames.size(), 0U);
}

TEST_F(Overlay, DrawsALineInTheFrameInWhichItIsDue) {
    ASSERT_NO_FATAL_FAILURE(playAndCount(subtitles("english", 9)));
    std::ignore =
        inPage("window.changes = []; new MutationObserver(() => changes.push(performance.timeOrigin + "
               "performance.now()))"
               ".observe(document.getElementById('learned'), {childList: true}); 1");
    ASSERT_TRUE(waitInPage("String(changes.length >= 6)"));
    std::vector<double> waits;
    for (const QJsonValue change :
         QJsonDocument::fromJson(inPage("JSON.stringify(changes)").toUtf8()).array()) {
        const auto drawn = std::find_if(frames.cbegin(), frames.cend(), [&](qint64 at) {
            return static_cast<double>(at) >= change.toDouble() - 1;
        });
        if (drawn != frames.cend())
            waits.push_back(static_cast<double>(*drawn) - change.toDouble());
    }
    ASSERT_GE(waits.size(), 5U);
    std::sort(waits.begin(), waits.end());
    RecordProperty("medianMs", std::to_string(waits[waits.size() / 2]));
    EXPECT_LT(waits[waits.size() / 2], 40) << "a frame of this film, on a slow renderer";
}

} // namespace murvo::test
