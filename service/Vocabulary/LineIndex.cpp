// SPDX-License-Identifier: GPL-3.0-or-later
#include "Vocabulary/LineIndex.h"

#include "ChangeCounts.h"
#include "Log.h"
#include "Store/FilmTable.h"
#include "Store/LineTable.h"
#include "Store/SubtitleTable.h"
#include "Subtitles/FilmLines.h"
#include "Vocabulary/WordCount.h"

#include <chrono>

namespace murvo::service {

namespace {

using namespace std::chrono_literals;

// Raised whenever lines or words are made in another way: all are made anew then.
constexpr int wayOfMaking = 1;
constexpr auto longestWait = 1h;

} // namespace

LineIndex::LineIndex(FilmTable &films, SubtitleTable &subtitles, LineTable &table, FilmLines &lines,
                     const Lexicon &lexicon, ChangeCounts &contentChanges)
    : _films(films)
    , _subtitles(subtitles)
    , _table(table)
    , _lines(lines)
    , _lexicon(lexicon)
    , _contentChanges(contentChanges) {
    _worker.start([this](const std::atomic<bool> &isCancelled) { keepUpToDate(isCancelled); });
}

LineIndex::~LineIndex() {
    _worker.cancel();
    _contentChanges.announce(); // ends its wait
}

void LineIndex::bringUpToDate(qint32 filmId) {
    for (const qint32 subtitleId : _table.due(wayOfMaking, filmId))
        makeIfDue(subtitleId);
}

void LineIndex::makeIfDue(qint32 subtitleId) {
    const std::lock_guard lock(_making);
    if (_table.isDue(wayOfMaking, subtitleId))
        make(subtitleId);
}

void LineIndex::keepUpToDate(const std::atomic<bool> &isCancelled) {
    while (!isCancelled) {
        const qint32 changes = _contentChanges.count(); // before what it counts is looked at
        try {
            for (const qint32 subtitleId : _table.due(wayOfMaking)) {
                if (isCancelled)
                    return;
                makeIfDue(subtitleId);
            }
        } catch (const std::exception &failure) { // as of a full disk; the next change tries again
            qCWarning(serviceLog) << "The lines of the films cannot be searched yet:" << failure.what();
        }
        if (!isCancelled)
            std::ignore = _contentChanges.waitForOtherThan(changes, longestWait);
    }
}

// What cannot be read has no lines, and is not looked at again until it changes.
void LineIndex::make(qint32 subtitleId) {
    const auto subtitle = _subtitles.find(subtitleId);
    const auto content = _subtitles.content(subtitleId);
    if (!subtitle || !content)
        return;
    const Film film = _films.find(subtitle->filmId).value_or(Film{});
    const QList<Cue> cues = _lines.readStored(film, *subtitle, *content).cues;
    const bool isEnglish = subtitle->likelyLanguage() == QLatin1String("eng");
    _table.replace(*subtitle, wayOfMaking, cues, isEnglish ? countWords(cues, _lexicon) : QList<MetWord>());
}

} // namespace murvo::service
