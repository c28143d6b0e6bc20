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

/// The subtitles of a language, in the order of preference that chooseTracks() tells of.
[[nodiscard]] QList<Subtitle> inLanguage(const QList<Subtitle> &subtitles, const QString &language);

/// Chooses by language; one whose language nobody knows stands in for whichever language has none of its own,
/// the learned one first. Of one language, those that are still there come first, then whole ones before
/// parts, full ones before those for the hard of hearing and forced ones, the learner's own files before
/// those beside the film and those before the film's own tracks.
[[nodiscard]] TrackChoice chooseTracks(const QList<Subtitle> &subtitles, const QString &nativeLanguage);

} // namespace murvo::service
