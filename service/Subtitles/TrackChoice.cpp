// SPDX-License-Identifier: GPL-3.0-or-later
#include "Subtitles/TrackChoice.h"

#include <algorithm>
#include <tuple>

namespace murvo::service {

namespace {

int remarkRank(const Subtitle &subtitle) {
    return subtitle.forced ? 2 : subtitle.hearingImpaired ? 1 : 0;
}

int sourceRank(const Subtitle &subtitle) {
    switch (subtitle.source) {
    case SubtitleSource::Added:
        return 0;
    case SubtitleSource::Beside:
        return 1;
    case SubtitleSource::Inside:
        break;
    }
    return 2;
}

// Formats that carry text and nothing else first; one that counts in frames last.
int formatRank(const Subtitle &subtitle) {
    const QString extension = subtitle.fileName.section(u'.', -1).toLower();
    if (extension == QLatin1String("srt") || extension == QLatin1String("vtt"))
        return 0;
    return extension == QLatin1String("sub") ? 2 : 1;
}

// Far fewer lines than another of the same language has: a part of the film, or what is written in the
// picture. While a track is being read its lines are not counted.
bool isPart(const Subtitle &subtitle, qint32 mostCues) {
    return subtitle.cueCount >= 0 && subtitle.cueCount * 10 < mostCues * 6;
}

} // namespace

QList<Subtitle> inLanguage(const QList<Subtitle> &subtitles, const QString &language) {
    QList<Subtitle> found;
    std::copy_if(subtitles.begin(), subtitles.end(), std::back_inserter(found),
                 [&language](const Subtitle &subtitle) { return subtitle.likelyLanguage() == language; });
    qint32 mostCues = 0;
    for (const Subtitle &subtitle : found)
        mostCues = std::max(mostCues, subtitle.cueCount);
    const auto rank = [mostCues](const Subtitle &subtitle) {
        return std::tuple(!subtitle.isThere, isPart(subtitle, mostCues), remarkRank(subtitle),
                          sourceRank(subtitle), formatRank(subtitle));
    };
    std::stable_sort(found.begin(), found.end(),
                     [&rank](const Subtitle &a, const Subtitle &b) { return rank(a) < rank(b); });
    return found;
}

TrackChoice chooseTracks(const QList<Subtitle> &subtitles, const QString &nativeLanguage) {
    const QString learnedLanguage = QStringLiteral("eng");
    const QList<Subtitle> untold = inLanguage(subtitles, QString());
    TrackChoice choice{inLanguage(subtitles, learnedLanguage), {}};
    if (nativeLanguage != learnedLanguage)
        choice.native = inLanguage(subtitles, nativeLanguage);

    if (choice.learned.isEmpty())
        choice.learned = untold;
    else if (choice.native.isEmpty())
        choice.native = untold;
    return choice;
}

} // namespace murvo::service
