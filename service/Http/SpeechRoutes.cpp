// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/SpeechRoutes.h"

#include "Http/Router.h"
#include "Speech/SpeakableText.h"
#include "Speech/Speaker.h"
#include "Speech/Voices.h"

#include <QUrl>

namespace murvo::service {

namespace {

struct Wish {
    QString text;
    QString language;
    QString accent;
    const char *voice;
};

RouteError badText(TextFault fault) {
    if (fault == TextFault::TooLong)
        return {400, QStringLiteral("textTooLong"),
                QStringLiteral("A text to be spoken has %1 characters at most.").arg(longestSpokenText)};
    return {
        400, QStringLiteral("badText"),
        QStringLiteral("The parameter \"text\" must have a letter or a number, and no control character.")};
}

/// One of the words given, the first when the parameter is not there.
QString oneOf(const Request &request, const QString &name, const QString &first, const QString &second) {
    QString word = request.parameters.value(name, first);
    if (word != first && word != second)
        throw RouteError(400, QStringLiteral("badParameter"),
                         QStringLiteral("The parameter \"%1\" must be %2 or %3.").arg(name, first, second));
    return word;
}

Wish wishOf(const Request &request) {
    const SpeakableText text = speakableText(request.parameters.value(QStringLiteral("text")));
    if (text.fault != TextFault::None)
        throw badText(text.fault);
    Wish wish{text.text, request.parameters.value(QStringLiteral("language"), QStringLiteral("eng")),
              oneOf(request, QStringLiteral("accent"), QStringLiteral("us"), QStringLiteral("gb")), nullptr};
    wish.voice = voiceOf(wish.language, wish.accent);
    if (wish.voice == nullptr)
        throw RouteError(400, QStringLiteral("badParameter"),
                         QStringLiteral("The parameter \"language\" must be the code of a language."));
    return wish;
}

void check(SpeechProblem problem) {
    const auto cannot = [](const QString &message) {
        return RouteError(503, QStringLiteral("cannotSpeak"), message);
    };
    switch (problem) {
    case SpeechProblem::None:
        return;
    case SpeechProblem::Busy:
        throw cannot(QStringLiteral("Too much is being spoken at once; try again."));
    case SpeechProblem::Ending:
        throw cannot(QStringLiteral("The service is stopping."));
    case SpeechProblem::Failed:
        throw cannot(QStringLiteral("This cannot be spoken: the voice is not installed."));
    }
}

Response sound(const Request &request, Speaker &speaker) {
    const Wish wish = wishOf(request);
    const QString speed =
        oneOf(request, QStringLiteral("speed"), QStringLiteral("normal"), QStringLiteral("slow"));
    const Pace pace = speed == QLatin1String("slow") ? Pace::Slow : Pace::Normal;
    const Spoken<QByteArray> spoken = speaker.sound(wish.text, wish.voice, pace);
    check(spoken.problem);
    return {200, QByteArrayLiteral("audio/wav"), spoken.result};
}

/// For the command PlayAudio, below the token that the player may write into its log.
QString soundUrl(const Request &request, const Wish &wish, const char *speed) {
    const auto encoded = [](const QString &text) {
        return QString::fromLatin1(QUrl::toPercentEncoding(text));
    };
    return request.downloadBaseUrl +
           QStringLiteral("Api/Speech/Sound?text=%1&language=%2&accent=%3&speed=%4")
               .arg(encoded(wish.text), wish.language, wish.accent, QLatin1String(speed));
}

Response pronunciation(const Request &request, Speaker &speaker) {
    const Wish wish = wishOf(request);
    const Spoken<QString> spoken = speaker.pronunciation(wish.text, wish.voice);
    check(spoken.problem);
    return jsonResponse({{QStringLiteral("text"), wish.text},
                         {QStringLiteral("ipa"), spoken.result},
                         {QStringLiteral("soundUrl"), soundUrl(request, wish, "normal")},
                         {QStringLiteral("slowSoundUrl"), soundUrl(request, wish, "slow")}});
}

} // namespace

void addSpeechRoutes(Router &router, Speaker &speaker) {
    router.add("GET", QStringLiteral("Api/Speech/Sound"),
               [&speaker](const Request &request) { return sound(request, speaker); });
    router.add("GET", QStringLiteral("Api/Speech/Pronunciation"),
               [&speaker](const Request &request) { return pronunciation(request, speaker); });
}

} // namespace murvo::service
