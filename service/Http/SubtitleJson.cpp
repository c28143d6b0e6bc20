// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/SubtitleJson.h"

#include "Languages.h"
#include "Subtitles/Findings.h"

#include <QHash>

namespace murvo::service {

namespace {

QString sourceName(SubtitleSource source) {
    switch (source) {
    case SubtitleSource::Inside:
        return QStringLiteral("inside");
    case SubtitleSource::Added:
        return QStringLiteral("added");
    case SubtitleSource::Beside:
        break;
    }
    return QStringLiteral("beside");
}

QString messageOf(const QString &problem) {
    static const QHash<QString, QString> messages{
        {codeOf(CueProblem::PictureSubtitle), QStringLiteral("Pictures, not text: cannot be clicked.")},
        {codeOf(CueProblem::NoCues), QStringLiteral("Cannot be read: there is not one line in it.")},
        {codeOf(CueProblem::TooLarge), QStringLiteral("Cannot be read: it is too large for a subtitle.")},
        {codeOf(CueProblem::Unreadable), QStringLiteral("Cannot be read: the file cannot be opened.")},
        {codeOf(CueProblem::LiesElsewhere),
         QStringLiteral("Cannot be read: it is a link out of the film's folder.")}};
    return messages.value(problem, QStringLiteral("Cannot be read: it is no known kind of subtitle."));
}

QJsonArray italicsJson(const QList<ItalicRange> &ranges) {
    QJsonArray list;
    for (const ItalicRange &range : ranges)
        list.append(QJsonObject{{QStringLiteral("line"), range.line},
                                {QStringLiteral("start"), range.start},
                                {QStringLiteral("end"), range.end}});
    return list;
}

} // namespace

QJsonObject subtitleJson(const Subtitle &subtitle) {
    const Language *language = findLanguage(subtitle.likelyLanguage());
    return {
        {QStringLiteral("subtitleId"), subtitle.id},
        {QStringLiteral("source"), sourceName(subtitle.source)},
        {QStringLiteral("fileName"), subtitle.fileName},
        {QStringLiteral("title"), subtitle.title},
        {QStringLiteral("language"), subtitle.likelyLanguage()},
        {QStringLiteral("languageTag"), language != nullptr ? QString(language->twoLetter) : QString()},
        {QStringLiteral("languageName"), language != nullptr ? language->nativeName.toString() : QString()},
        {QStringLiteral("forced"), subtitle.forced},
        {QStringLiteral("hearingImpaired"), subtitle.hearingImpaired},
        {QStringLiteral("isThere"), subtitle.isThere},
        {QStringLiteral("stored"), subtitle.stored()},
        {QStringLiteral("cueCount"), subtitle.cueCount},
        {QStringLiteral("error"), problemJson(subtitle.problem)}};
}

QJsonArray cuesJson(const QList<Cue> &cues) {
    QJsonArray list;
    for (const Cue &cue : cues)
        list.append(QJsonObject{{QStringLiteral("startMs"), cue.startMs},
                                {QStringLiteral("endMs"), cue.endMs},
                                {QStringLiteral("lines"), QJsonArray::fromStringList(cue.lines)},
                                {QStringLiteral("italics"), italicsJson(cue.italics)}});
    return list;
}

QJsonValue problemJson(const QString &code) {
    if (code.isEmpty())
        return QJsonValue::Null;
    return QJsonObject{{QStringLiteral("code"), code}, {QStringLiteral("message"), messageOf(code)}};
}

} // namespace murvo::service
