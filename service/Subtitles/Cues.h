// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QStringList>

namespace murvo::service {

/// One subtitle line in time: shown from startMs until endMs of the film, as plain text, one entry a text
/// line.
struct Cue {
    qint64 startMs = 0;
    qint64 endMs = 0;
    QStringList lines;
};

/// Puts cues into an order that the page can rely on: by start (equal starts keep their order), start not
/// negative, end after start, none longer than a viewer would need, none empty.
[[nodiscard]] QList<Cue> inOrder(QList<Cue> cues);

} // namespace murvo::service
