// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/ServiceFixture.h"

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

} // namespace

} // namespace murvo::service::test
