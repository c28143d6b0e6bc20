// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Export/WordCard.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <array>

namespace murvo::service {

/// The names of the note type's fields, in their order. Changed ones would make it another note type.
inline constexpr std::array ankiFields{QLatin1String("Word"),        QLatin1String("Pronunciation"),
                                       QLatin1String("Meaning"),     QLatin1String("Line"),
                                       QLatin1String("Translation"), QLatin1String("Film"),
                                       QLatin1String("Picture"),     QLatin1String("Sound")};

struct AnkiMedia {
    QString name; ///< of its own among all files of all decks, the same at every export
    QByteArray content;
};

/// A card as Anki keeps it: its fields in HTML, the files that they show.
struct AnkiNote {
    QString guid;
    QString word; ///< plain: what Anki sorts by and tells notes apart by
    std::array<QString, ankiFields.size()> fields;
    QList<AnkiMedia> media;
    qint64 savedAtMs = 0;

    [[nodiscard]] const QString &field(QLatin1String name) const;
};

/// What texts say stays text; the word is marked in its line.
[[nodiscard]] AnkiNote ankiNote(const WordCard &card, const WordClip &clip);

} // namespace murvo::service
