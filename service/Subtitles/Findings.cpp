// SPDX-License-Identifier: GPL-3.0-or-later
#include "Subtitles/Findings.h"

#include "Subtitles/TextLanguage.h"

namespace murvo::service {

QString codeOf(CueProblem problem) {
    switch (problem) {
    case CueProblem::PictureSubtitle:
        return QStringLiteral("pictureSubtitle");
    case CueProblem::UnknownFormat:
        return QStringLiteral("unknownFormat");
    case CueProblem::NoCues:
        return QStringLiteral("noCues");
    case CueProblem::TooLarge:
        return QStringLiteral("tooLarge");
    case CueProblem::Unreadable:
        return QStringLiteral("unreadable");
    case CueProblem::LiesElsewhere:
        return QStringLiteral("liesElsewhere");
    case CueProblem::None:
        break;
    }
    return {};
}

void takeName(const SidecarName &name, Subtitle &subtitle) {
    // "The Danish Girl.srt" is no Danish: where the film's name does not stand before it, the text knows
    // better.
    (name.isAfterFilm ? subtitle.language : subtitle.hintedLanguage) = name.language;
    subtitle.forced = name.forced;
    subtitle.hearingImpaired = name.hearingImpaired;
}

SubtitleFindings findingsOf(const CueReading &reading) {
    return {static_cast<qint32>(reading.cues.size()), languageOfText(reading.cues), codeOf(reading.problem)};
}

} // namespace murvo::service
