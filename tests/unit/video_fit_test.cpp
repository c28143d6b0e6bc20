// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Classes/VideoFit.h"
#include "app/Classes/VideoSource.h"

#include <gtest/gtest.h>

namespace murvo {

TEST(VideoFit, ShrinksOnlyWhatTakesMoreThanFourFifthsOfTheScreen) {
    const QSizeF screen(1440, 900);
    EXPECT_EQ(fitVideo({1920, 1080}, screen), QSizeF(1152, 648));
    EXPECT_EQ(fitVideo({640, 480}, screen), QSizeF(640, 480));
    EXPECT_EQ(fitVideo({1080, 1920}, screen), QSizeF(405, 720)); // upright
    EXPECT_EQ(fitVideo({4000, 100}, screen), QSizeF(1152, 28.8));
    EXPECT_EQ(fitVideo({1152, 720}, screen), QSizeF(1152, 720)); // exactly the bounds
    EXPECT_EQ(fitVideo({640, 480}, {0, 0}), QSizeF(0, 0));       // on no screen
}

TEST(VideoSource, IsAUrlOnlyWithSchemeAndHost) {
    EXPECT_TRUE(isUrlText(QStringLiteral("http://host/v.mkv")));
    EXPECT_TRUE(isUrlText(QStringLiteral("https://host:8080/a%20b.mkv?x=1")));
    EXPECT_TRUE(isUrlText(QStringLiteral("file://server/share/v.mkv")));
    EXPECT_FALSE(isUrlText(QStringLiteral("/home/x/v.mkv")));
    EXPECT_FALSE(isUrlText(QStringLiteral("file:///home/x/v.mkv")));
    EXPECT_FALSE(isUrlText(QStringLiteral("http://host/with a blank.mkv")));
    EXPECT_FALSE(isUrlText(QStringLiteral("/odd/http://name.mkv")));
    EXPECT_FALSE(isUrlText(QString()));
}

TEST(VideoSource, TakesWhatTheShellHandsOver) {
    const QString folder = QStringLiteral("/films");
    EXPECT_EQ(videoSourceFromShell(QStringLiteral("file:///a/b%20c.mkv"), folder),
              QStringLiteral("/a/b c.mkv"));
    EXPECT_EQ(videoSourceFromShell(QStringLiteral("../x/100% é.mkv"), folder),
              QStringLiteral("/x/100% é.mkv"));
    EXPECT_EQ(videoSourceFromShell(QStringLiteral("/abs/a#b?c.mkv"), folder),
              QStringLiteral("/abs/a#b?c.mkv"));
    EXPECT_EQ(videoSourceFromShell(QStringLiteral("http://h/v.mkv"), folder),
              QStringLiteral("http://h/v.mkv"));
}

} // namespace murvo
