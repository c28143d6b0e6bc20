// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QString>

#include <optional>

namespace murvo::service {

/// One sound track of a film.
struct AudioTrack {
    int trackId = 0;  ///< the player's own number for it, as its command SetAudioTrack takes it
    QString language; ///< ISO 639-2/T, empty when the film tells none
    QString title;    ///< as the film tells it, often empty
    bool isDefault = false;
};

/// What the service wants to know of a film file.
struct FilmFacts {
    QList<AudioTrack> audioTracks;
    int frameRateNumerator = 0; ///< frames a second of the picture; 0 when it has none or does not tell
    int frameRateDenominator = 1;
};

/// Opens the film's container, reads its headers and nothing else. None when it cannot be read as a film.
/// Local regular files only, whatever the file refers to; gives up after a few seconds. Any thread.
[[nodiscard]] std::optional<FilmFacts> probeFilm(const QString &filmPath);

} // namespace murvo::service
