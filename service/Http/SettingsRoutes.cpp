// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/SettingsRoutes.h"

#include "Dictionary/Dictionaries.h"
#include "Http/Router.h"
#include "Languages.h"
#include "Store/PageSettings.h"
#include "Store/SettingsTable.h"
#include "Vocabulary/Level.h"

#include <QJsonArray>

#include <array>

namespace murvo::service {

namespace {

Response languages(const Dictionaries &dictionaries) {
    QJsonArray list;
    for (const Language &language : knownLanguages()) {
        if (language.offered)
            list.append(QJsonObject{{QStringLiteral("code"), language.code},
                                    {QStringLiteral("languageTag"), language.twoLetter},
                                    {QStringLiteral("nativeName"), language.nativeName.toString()},
                                    {QStringLiteral("englishName"), language.englishName},
                                    {QStringLiteral("hasDictionary"), dictionaries.areThere(language.code)}});
    }
    return jsonResponse({{QStringLiteral("languages"), list}});
}

RouteError badSetting(const QString &message) {
    return {400, QStringLiteral("badSetting"), message};
}

int wholeNumber(const QJsonValue &value, int least, int most, const QString &message) {
    const int number = value.toInt(least - 1);
    if (number < least || number > most)
        throw badSetting(message);
    return number;
}

QString checkedLanguage(const QJsonValue &value) {
    const Language *language = findLanguage(value.toString());
    if (language == nullptr || !language->offered || value.toString() != language->code)
        throw badSetting(QStringLiteral("\"nativeLanguage\" must be the code of an offered language."));
    return language->code;
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

QString checkedKey(const QJsonValue &value) {
    QString key = value.toString();
    if (!value.isString() || key.size() > Settings::longestKey || !key.isValidUtf16())
        throw badSetting(
            QStringLiteral("\"ankiConnectKey\" must be a text of at most two hundred characters."));
    return key;
}

/// A setting as requests and replies have it. write() throws RouteError for a value that is out of its range.
struct Setting {
    QLatin1String name;
    QJsonValue (*read)(const Settings &settings);
    void (*write)(Settings &settings, const QJsonValue &value);
};

const std::array allSettings{
    Setting{QLatin1String("nativeLanguage"),
            [](const Settings &settings) -> QJsonValue { return settings.nativeLanguage; },
            [](Settings &settings, const QJsonValue &value) {
                settings.nativeLanguage = checkedLanguage(value);
            }},
    Setting{QLatin1String("volumePercent"),
            [](const Settings &settings) -> QJsonValue { return settings.volumePercent; },
            [](Settings &settings, const QJsonValue &value) {
                settings.volumePercent =
                    wholeNumber(value, 0, Settings::loudestPercent,
                                QStringLiteral("\"volumePercent\" must be a whole number from 0 to 200."));
            }},
    Setting{QLatin1String("startLevel"),
            [](const Settings &settings) -> QJsonValue { return settings.startLevel; },
            [](Settings &settings, const QJsonValue &value) { settings.startLevel = checkedLevel(value); }},
    Setting{
        QLatin1String("sendsToAnki"),
        [](const Settings &settings) -> QJsonValue { return settings.sendsToAnki; },
        [](Settings &settings, const QJsonValue &value) { settings.sendsToAnki = checkedSending(value); }},
    Setting{QLatin1String("ankiConnectPort"),
            [](const Settings &settings) -> QJsonValue { return settings.ankiConnectPort; },
            [](Settings &settings, const QJsonValue &value) {
                settings.ankiConnectPort = wholeNumber(
                    value, 1, Settings::highestPort,
                    QStringLiteral("\"ankiConnectPort\" must be a whole number from 1 to 65535."));
            }},
    Setting{
        QLatin1String("ankiConnectKey"),
        [](const Settings &settings) -> QJsonValue { return settings.ankiConnectKey; },
        [](Settings &settings, const QJsonValue &value) { settings.ankiConnectKey = checkedKey(value); }}};

Response current(SettingsTable &table) {
    const Settings settings = table.all();
    QJsonObject object;
    for (const Setting &setting : allSettings)
        object.insert(setting.name, setting.read(settings));
    return jsonResponse(object);
}

Response change(const Request &request, SettingsTable &table, const std::function<void()> &ankiChanged) {
    const QJsonObject body = jsonBody(request);
    bool isAnkiConcerned = false;
    table.update([&](Settings &settings) {
        for (const Setting &setting : allSettings) {
            if (!body.contains(setting.name))
                continue;
            setting.write(settings, body.value(setting.name));
            isAnkiConcerned =
                isAnkiConcerned || setting.name.contains(QLatin1String("Anki"), Qt::CaseInsensitive);
        }
    });
    if (isAnkiConcerned)
        ankiChanged();
    return current(table);
}

Response pagesSettings(PageSettings &table) {
    return jsonResponse({{QStringLiteral("settings"), table.all()}});
}

Response changePages(const Request &request, PageSettings &table) {
    if (!table.change(jsonBody(request)))
        throw badSetting(QStringLiteral("The settings of the pages must stay below 64 KiB together."));
    return pagesSettings(table);
}

} // namespace

void addSettingsRoutes(Router &router, SettingsTable &settings, const Dictionaries &dictionaries,
                       const std::function<void()> &ankiChanged) {
    router.add("GET", QStringLiteral("Api/Settings/Languages"),
               [&dictionaries](const Request &) { return languages(dictionaries); });
    router.add("GET", QStringLiteral("Api/Settings"),
               [&settings](const Request &) { return current(settings); });
    router.add("PUT", QStringLiteral("Api/Settings"), [&settings, ankiChanged](const Request &request) {
        return change(request, settings, ankiChanged);
    });
}

void addPageSettingsRoutes(Router &router, PageSettings &settings) {
    const QString path = QStringLiteral("Api/Pages/Settings");
    router.add("GET", path, [&settings](const Request &) { return pagesSettings(settings); });
    router.add("PUT", path, [&settings](const Request &request) { return changePages(request, settings); });
}

} // namespace murvo::service
