// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/SettingsRoutes.h"

#include "Http/Router.h"
#include "Languages.h"
#include "Store/SettingsTable.h"
#include "Vocabulary/Level.h"

#include <QJsonArray>

namespace murvo::service {

namespace {

constexpr int loudestPercent = 200;

Response languages() {
    QJsonArray list;
    for (const Language &language : knownLanguages()) {
        if (language.offered)
            list.append(QJsonObject{{QStringLiteral("code"), language.code},
                                    {QStringLiteral("languageTag"), language.twoLetter},
                                    {QStringLiteral("nativeName"), language.nativeName.toString()},
                                    {QStringLiteral("englishName"), language.englishName}});
    }
    return jsonResponse({{QStringLiteral("languages"), list}});
}

Response current(SettingsTable &settings) {
    return jsonResponse({{QStringLiteral("nativeLanguage"), settings.nativeLanguage()},
                         {QStringLiteral("volumePercent"), settings.volumePercent()},
                         {QStringLiteral("startLevel"), settings.startLevel()}});
}

RouteError badSetting(const QString &message) {
    return {400, QStringLiteral("badSetting"), message};
}

QString checkedLanguage(const QJsonValue &value) {
    const Language *language = findLanguage(value.toString());
    if (language == nullptr || !language->offered || value.toString() != language->code)
        throw badSetting(QStringLiteral("\"nativeLanguage\" must be the code of an offered language."));
    return language->code;
}

int checkedVolume(const QJsonValue &value) {
    const int volume = value.toInt(-1);
    if (volume < 0 || volume > loudestPercent)
        throw badSetting(QStringLiteral("\"volumePercent\" must be a whole number from 0 to 200."));
    return volume;
}

QString checkedLevel(const QJsonValue &value) {
    if (!isLevel(value.toString()))
        throw badSetting(QStringLiteral("\"startLevel\" must be one of A1, A2, B1, B2, C1, C2."));
    return value.toString();
}

// Everything is checked before anything is changed.
Response change(const Request &request, SettingsTable &settings) {
    const QJsonObject body = jsonBody(request);
    const QString languageName = QStringLiteral("nativeLanguage");
    const QString volumeName = QStringLiteral("volumePercent");
    const QString language =
        body.contains(languageName) ? checkedLanguage(body.value(languageName)) : QString();
    const int volume = body.contains(volumeName) ? checkedVolume(body.value(volumeName)) : -1;
    const QString levelName = QStringLiteral("startLevel");
    const QString level = body.contains(levelName) ? checkedLevel(body.value(levelName)) : QString();
    if (!language.isEmpty())
        settings.setNativeLanguage(language);
    if (volume >= 0)
        settings.setVolumePercent(volume);
    if (!level.isEmpty())
        settings.setStartLevel(level);
    return current(settings);
}

} // namespace

void addSettingsRoutes(Router &router, SettingsTable &settings) {
    router.add("GET", QStringLiteral("Api/Settings/Languages"), [](const Request &) { return languages(); });
    router.add("GET", QStringLiteral("Api/Settings"),
               [&settings](const Request &) { return current(settings); });
    router.add("PUT", QStringLiteral("Api/Settings"),
               [&settings](const Request &request) { return change(request, settings); });
}

} // namespace murvo::service
