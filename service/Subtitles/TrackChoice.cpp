// SPDX-License-Identifier: GPL-3.0-or-later
#include "Subtitles/TrackChoice.h"

#include <algorithm>

namespace murvo::service {

namespace {

int remarkRank(const Subtitle &subtitle) {
    return subtitle.forced ? 2 : subtitle.hearingImpaired ? 1 : 0;
}

// Formats that carry text and nothing else first; one that counts in frames last.
int formatRank(const Subtitle &subtitle) {
    const QString extension = subtitle.fileName.section(u'.', -1).toLower();
    if (extension == QLatin1String("srt") || extension == QLatin1String("vtt"))
        return 0;
    return extension == QLatin1String("sub") ? 2 : 1;
}

QList<Subtitle> inLanguage(const QList<Subtitle> &subtitles, const QString &language) {
    QList<Subtitle> found;
    std::copy_if(subtitles.begin(), subtitles.end(), std::back_inserter(found),
                 [&language](const Subtitle &subtitle) { return subtitle.language == language; });
    std::stable_sort(found.begin(), found.end(), [](const Subtitle &a, const Subtitle &b) {
        return std::pair(remarkRank(a), formatRank(a)) < std::pair(remarkRank(b), formatRank(b));
    });
    return found;
}

} // namespace

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
