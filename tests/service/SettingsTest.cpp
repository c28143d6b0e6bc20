// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/ServiceFixture.h"

#include <QJsonArray>

namespace murvo::service::test {

namespace {

class SettingsTest : public ServiceFixture {
  protected:
    [[nodiscard]] QJsonObject settings() { return get(QStringLiteral("Api/Settings")).json(); }
    [[nodiscard]] Reply change(const char *name, const QJsonValue &value) {
        return put(QStringLiteral("Api/Settings"), {{QLatin1String(name), value}});
    }
};

TEST_F(SettingsTest, RemembersWhatWasChosenAcrossRestarts) {
    EXPECT_EQ(change("nativeLanguage", QStringLiteral("deu")).status, 200);
    EXPECT_EQ(change("volumePercent", 0).status, 200);
    restart();
    EXPECT_EQ(settings().value(QLatin1String("nativeLanguage")).toString(), QStringLiteral("deu"));
    EXPECT_EQ(settings().value(QLatin1String("volumePercent")).toInt(), 0);
}

TEST_F(SettingsTest, RefusesWhatItCannotKeepAndChangesNothingThen) {
    const QJsonObject before = settings();
    for (const QJsonValue &language : {QJsonValue(QStringLiteral("Deutsch")), QJsonValue(7), QJsonValue(),
                                       QJsonValue(QStringLiteral("'; DROP TABLE settings"))})
        EXPECT_EQ(change("nativeLanguage", language).errorCode(), QStringLiteral("badSetting"));
    for (const QJsonValue &volume : {QJsonValue(10.5), QJsonValue(QStringLiteral("10")), QJsonValue()})
        EXPECT_EQ(change("volumePercent", volume).errorCode(), QStringLiteral("badSetting"));
    const Reply half =
        put(QStringLiteral("Api/Settings"), {{QStringLiteral("nativeLanguage"), QStringLiteral("spa")},
                                             {QStringLiteral("volumePercent"), 999}});
    EXPECT_EQ(half.status, 400);
    for (const char *body : {"", "[]", "null", "{\"volumePercent\":", "\xff\xfe"})
        EXPECT_EQ(client().Put(tokenPath() + "Api/Settings", body, "text/plain")->status, 400) << body;
    EXPECT_EQ(settings(), before);
}

TEST_F(SettingsTest, KeepsWhatThePagesKeepWithoutLookingIntoIt) {
    const QString route = QStringLiteral("Api/Pages/Settings");
    const auto kept = [&] { return get(route).json().value(QLatin1String("settings")).toObject(); };
    EXPECT_EQ(kept(), QJsonObject());
    const QJsonObject size{{QStringLiteral("lines"), QJsonArray{1.5, QStringLiteral("é\n"), true}}};
    EXPECT_EQ(put(route, {{QStringLiteral("size"), size}, {QStringLiteral("tour"), false}}).status, 200);
    (void)put(route, {{QStringLiteral("size"), QJsonValue::Null}, {QStringLiteral("look"), size}});
    const QJsonObject expected{{QStringLiteral("look"), size}, {QStringLiteral("tour"), false}};
    EXPECT_EQ(kept(), expected);
    const QJsonObject tooMuch{{QStringLiteral("tour"), QJsonValue::Null},
                              {QStringLiteral("more"), QString(64 * 1024, u'x')}};
    EXPECT_EQ(put(route, tooMuch).errorCode(), QStringLiteral("badSetting"));
    EXPECT_EQ(ask("PUT", route, {}, "[1]").errorCode(), QStringLiteral("badJson"));
    EXPECT_EQ(change("volumePercent", 50).status, 200) << "beside the settings of the service";
    restart();
    EXPECT_EQ(kept(), expected);
}

} // namespace

} // namespace murvo::service::test
