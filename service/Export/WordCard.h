// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

namespace murvo::service {

/// A word of the learner's as it goes to other programs. All texts are plain, lines may be several.
struct WordCard {
    QString guid; ///< tells the word from all others, the same at every export
    QString word;
    QString pronunciation; ///< IPA, without slashes
    QString meaning;
    QString line;       ///< what was said
    QString wordInLine; ///< the word as it stands there
    QString translation;
    QString filmName;
    QString filmPath;         ///< empty when it is not known where it lies
    qint64 filmSizeBytes = 0; ///< 0: not known
    qint64 startMs = 0;
    qint64 endMs = 0;     ///< of the line in the film; not above startMs when it is not known
    qint64 addedAtMs = 0; ///< since 1970, UTC: when the learner marked it
    QString status;
};

/// Picture and sound of a word's line. Empty ones are not there.
struct WordClip {
    QByteArray jpeg;
    QByteArray mp3;
};

} // namespace murvo::service
