// SPDX-License-Identifier: GPL-3.0-or-later
#include "Vocabulary/FilmTracks.h"

#include "Store/ChoiceTable.h"
#include "Subtitles/TrackChoice.h"

#include <algorithm>

namespace murvo::service {

namespace {

constexpr QLatin1String english("eng");

std::optional<Subtitle> chosen(const QList<Subtitle> &usable, LineChoice choice) {
    const auto found = std::find_if(usable.begin(), usable.end(),
                                    [choice](const Subtitle &each) { return choice && each.id == *choice; });
    return found == usable.end() ? std::nullopt : std::optional(*found);
}

} // namespace

FilmTracks tracksOf(qint32 filmId, const QString &nativeLanguage, SubtitleTable &subtitles,
                    ChoiceTable &choices) {
    QList<Subtitle> usable = subtitles.ofFilm(filmId);
    usable.removeIf([](const Subtitle &each) { return !each.stored() || !each.problem.isEmpty(); });

    FilmTracks tracks;
    const auto upper = chosen(usable, choices.choice(filmId, Line::Learned));
    const QList<Subtitle> inEnglish = inLanguage(usable, english);
    if (upper && upper->likelyLanguage() == english)
        tracks.english = upper;
    else if (!inEnglish.isEmpty())
        tracks.english = inEnglish.first();

    tracks.native = chosen(usable, choices.choice(filmId, Line::Native));
    for (const Subtitle &each : chooseTracks(usable, nativeLanguage).native) {
        if (!tracks.native && !(tracks.english && each.id == tracks.english->id))
            tracks.native = each;
    }

    QStringList languages;
    const auto take = [&](const Subtitle &each) {
        if (languages.contains(each.likelyLanguage()))
            return;
        languages.append(each.likelyLanguage());
        tracks.ofEachLanguage.append(each.id);
    };
    for (const auto &shown : {tracks.english, tracks.native}) {
        if (shown)
            take(*shown);
    }
    for (const Subtitle &each : usable)
        take(inLanguage(usable, each.likelyLanguage()).value(0, each));
    return tracks;
}

} // namespace murvo::service
