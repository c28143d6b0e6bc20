// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/SubtitleTable.h"

#include <QList>

namespace murvo::service {

/// Candidates for the two lines over the picture, best first. A caller takes the first of each that can be
/// read, and never the same subtitle for both.
struct TrackChoice {
    QList<Subtitle> learned; ///< the language that is learned (English)
    QList<Subtitle> native;  ///< the learner's own language
};

/// Chooses by language; a file whose name tells none stands in for whichever language has no file of its own,
/// the learned one first. Full tracks come before those for the hard of hearing and before forced ones.
[[nodiscard]] TrackChoice chooseTracks(const QList<Subtitle> &subtitles, const QString &nativeLanguage);

} // namespace murvo::service
