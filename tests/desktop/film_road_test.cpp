// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Media/VLCMediaPlayer.h"
#include "app/Platform/MainWindow.h"
#include "support/PlayerFixture.h"
#include "support/TestFilms.h"
#include "support/Wait.h"

#include <gmock/gmock.h>

namespace murvo::test {

class FilmRoad : public PlayerFixture {};

TEST_F(FilmRoad, PlaysAFilmWhoseLookupOffersNothing) {
    ASSERT_NO_FATAL_FAILURE(startFilm(filmWithTwoAudioTracks()));
    EXPECT_EQ(delegate->window().contentView()->size(), QSize(640, 360));
}

} // namespace murvo::test
