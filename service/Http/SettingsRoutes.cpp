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
constexpr int highestPort = 65'535;

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
                         {QStringLiteral("startLevel"), settings.startLevel()},
                         {QStringLiteral("sendsToAnki"), settings.sendsToAnki()},
                         {QStringLiteral("ankiConnectPort"), settings.ankiConnectPort()}});
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

bool checkedSending(const QJsonValue &value) {
    if (!value.isBool())
        throw badSetting(QStringLiteral("\"sendsToAnki\" must be true or false."));
    return value.toBool();
}

int checkedPort(const QJsonValue &value) {
    const int port = value.toInt(-1);
    if (port < 1 || port > highestPort)
        throw badSetting(QStringLiteral("\"ankiConnectPort\" must be a whole number from 1 to 65535."));
    return port;
}

// Everything is checked before anything is changed.
Response change(const Request &request, SettingsTable &settings, const std::function<void()> &changed) {
    const QJsonObject body = jsonBody(request);
    const QString languageName = QStringLiteral("nativeLanguage");
    const QString volumeName = QStringLiteral("volumePercent");
    const QString language =
        body.contains(languageName) ? checkedLanguage(body.value(languageName)) : QString();
    const int volume = body.contains(volumeName) ? checkedVolume(body.value(volumeName)) : -1;
    const QString levelName = QStringLiteral("startLevel");
    const QString level = body.contains(levelName) ? checkedLevel(body.value(levelName)) : QString();
    const QString sendingName = QStringLiteral("sendsToAnki");
    const QString portName = QStringLiteral("ankiConnectPort");
    const bool isSending =
        body.contains(sendingName) ? checkedSending(body.value(sendingName)) : settings.sendsToAnki();
    const int port = body.contains(portName) ? checkedPort(body.value(portName)) : -1;
    if (!language.isEmpty())
        settings.setNativeLanguage(language);
    if (volume >= 0)
        settings.setVolumePercent(volume);
    if (!level.isEmpty())
        settings.setStartLevel(level);
    if (port >= 0)
        settings.setAnkiConnectPort(port);
    if (body.contains(sendingName))
        settings.setSendsToAnki(isSending);
    changed();
    return current(settings);
}

} // namespace

void addSettingsRoutes(Router &router, SettingsTable &settings, const std::function<void()> &changed) {
    router.add("GET", QStringLiteral("Api/Settings/Languages"), [](const Request &) { return languages(); });
    router.add("GET", QStringLiteral("Api/Settings"),
               [&settings](const Request &) { return current(settings); });
    router.add("PUT", QStringLiteral("Api/Settings"),
               [&settings, changed](const Request &request) { return change(request, settings, changed); });
}

} // namespace murvo::service
