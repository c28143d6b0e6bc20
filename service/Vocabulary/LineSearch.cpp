// SPDX-License-Identifier: GPL-3.0-or-later
#include "Vocabulary/LineSearch.h"

namespace murvo::service {

namespace {

// What is passed over because another subtitle stands for the film makes a page shorter: then more is read,
// but not without end.
constexpr qint32 batch = 200;
constexpr int mostBatches = 25;

} // namespace

FoundLines findLines(const LineParts &parts, const LineQuery &sought, qint64 below, qint32 count) {
    LineReader reader(parts);
    FoundLines page;
    for (int read = 0; read < mostBatches; ++read) {
        const QList<FoundLine> found = parts.lines.search(sought, below, batch);
        for (const FoundLine &each : found) {
            if (reader.tracks(each.filmId).areOfEachLanguage(each.line.subtitleId)) {
                if (page.lines.size() == count) {
                    page.next = below;
                    return page;
                }
                page.lines.append(reader.shown(each.line, each.filmId));
            }
            below = each.line.id;
        }
        if (found.size() < batch)
            return page;
    }
    page.next = below;
    return page;
}

} // namespace murvo::service
