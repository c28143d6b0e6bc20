// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/SubtitleTable.h"

#include <QList>
#include <QString>

#include <optional>

namespace murvo::service {

class ChoiceTable;

/// Which of a film's stored subtitles stand for it where its lines are searched, counted and translated.
/// A value; made by tracksOf().
struct FilmTracks {
    std::optional<Subtitle> english; ///< the upper line where that is English, else the best English one
    std::optional<Subtitle> native;  ///< the lower line; the best for it where the learner shows none
    QList<qint32> ofEachLanguage;    ///< one subtitle for each language, these two first

    [[nodiscard]] bool areOfEachLanguage(qint32 subtitleId) const {
        return ofEachLanguage.contains(subtitleId);
    }
};

/// Reads the store only; may throw SQLite::Exception.
[[nodiscard]] FilmTracks tracksOf(qint32 filmId, const QString &nativeLanguage, SubtitleTable &subtitles,
                                  ChoiceTable &choices);

} // namespace murvo::service
