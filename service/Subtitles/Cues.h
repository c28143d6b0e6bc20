// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QStringList>

namespace murvo::service {

/// A part of a cue's text that is set in italics: characters start to end (exclusive, UTF-16 units) of
/// lines[line].
struct ItalicRange {
    qint32 line = 0;
    qint32 start = 0;
    qint32 end = 0;

    bool operator==(const ItalicRange &) const = default;
};

/// One subtitle line in time: shown from startMs until endMs of the film, as plain text, one entry a text
/// line.
struct Cue {
    qint64 startMs = 0;
    qint64 endMs = 0;
    QStringList lines;
    QList<ItalicRange> italics = {}; ///< in the order of the text, never overlapping

    bool operator==(const Cue &) const = default;
};

/// Puts cues into an order that the page can rely on: by start (equal starts keep their order), start not
/// negative and within a day, end after start, none longer than a viewer would need, none empty, none twice
/// at the same time.
[[nodiscard]] QList<Cue> inOrder(QList<Cue> cues);

} // namespace murvo::service
