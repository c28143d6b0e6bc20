// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/SubtitleJson.h"

#include "Languages.h"

namespace murvo::service {

QJsonObject subtitleJson(const Subtitle &subtitle) {
    const Language *language = findLanguage(subtitle.language);
    return {
        {QStringLiteral("subtitleId"), subtitle.id},
        {QStringLiteral("fileName"), subtitle.fileName},
        {QStringLiteral("language"), subtitle.language},
        {QStringLiteral("languageTag"), language != nullptr ? QString(language->twoLetter) : QString()},
        {QStringLiteral("languageName"), language != nullptr ? language->nativeName.toString() : QString()},
        {QStringLiteral("forced"), subtitle.forced},
        {QStringLiteral("hearingImpaired"), subtitle.hearingImpaired},
        {QStringLiteral("stored"), subtitle.stored()}};
}

QJsonArray cuesJson(const QList<Cue> &cues) {
    QJsonArray list;
    for (const Cue &cue : cues)
        list.append(QJsonObject{{QStringLiteral("startMs"), cue.startMs},
                                {QStringLiteral("endMs"), cue.endMs},
                                {QStringLiteral("lines"), QJsonArray::fromStringList(cue.lines)}});
    return list;
}

QJsonObject problemJson(CueProblem problem) {
    const auto error = [](const char *code, const char *message) {
        return QJsonObject{{QStringLiteral("code"), QLatin1String(code)},
                           {QStringLiteral("message"), QLatin1String(message)}};
    };
    switch (problem) {
    case CueProblem::PictureSubtitle:
        return error("pictureSubtitle",
                     "This file holds pictures of lines, not text. Look for the film's subtitles as .srt.");
    case CueProblem::UnknownFormat:
        return error("unknownFormat", "This file is not a subtitle that can be read.");
    case CueProblem::NoCues:
        return error("noCues", "Not one line could be read from this file.");
    case CueProblem::None:
        break;
    }
    return {};
}

} // namespace murvo::service
