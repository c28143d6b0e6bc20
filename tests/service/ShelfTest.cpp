// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/ServiceFixture.h"

#include <QDateTime>
#include <QJsonArray>

using namespace Qt::Literals::StringLiterals;

namespace murvo::service::test {

namespace {

/// The films that the learner has watched.
class ShelfTest : public ServiceFixture {
  protected:
    /// A file with that name that is told apart from others; returns its number.
    int film(const QString &name, quint64 hash) {
        return lookUp(writeFile(name, "x"), hash).json()["videoId"_L1].toInt();
    }
    [[nodiscard]] static QString watching(int videoId) {
        return u"Api/MovieFile/Watching?videoId=%1"_s.arg(videoId);
    }
};

TEST_F(ShelfTest, AFilmGoesOnWhereAndHowItWasLeft) {
    const int first = film(u"First.mkv"_s, 1);
    const int second = film(u"Second.mkv"_s, 2);
    const QJsonObject untouched = get(watching(second)).json();
    EXPECT_EQ(untouched["positionMs"_L1], 0);
    EXPECT_EQ(untouched["speedPercent"_L1], 100);
    const qint64 beforeMs = QDateTime::currentMSecsSinceEpoch();
    const QJsonObject told{{u"positionMs"_s, 61'000},
                           {u"durationMs"_s, 7'200'000},
                           {u"speedPercent"_s, 80},
                           {u"audioTrackId"_s, 3},
                           {u"isFinished"_s, true}};
    QJsonObject kept = put(watching(first), told).json();
    for (auto field = told.begin(); field != told.end(); ++field)
        EXPECT_EQ(kept[field.key()], *field) << field.key().toStdString();
    EXPECT_GE(kept["watchedAtMs"_L1].toInteger(), beforeMs);
    kept["audioTrackId"_L1] = QJsonValue::Null;
    kept["isFinished"_L1] = false;
    EXPECT_EQ(put(watching(first), {{u"audioTrackId"_s, QJsonValue::Null}, {u"isFinished"_s, false}}).json(),
              kept)
        << "what is not told stays, and so does the time without a position";
    restart();
    EXPECT_EQ(get(watching(first)).json(), kept);
    EXPECT_EQ(get(watching(second)).json(), untouched);
}

TEST_F(ShelfTest, WhatCannotBeOfAFilmIsRefusedAsAWhole) {
    const int one = film(u"Film.mkv"_s, 1);
    const QJsonObject before = get(watching(one)).json();
    const QList<QPair<QString, QJsonValue>> wrong{{u"positionMs"_s, -1},
                                                  {u"positionMs"_s, 1.5},
                                                  {u"positionMs"_s, 86'400'001},
                                                  {u"positionMs"_s, u"1"_s},
                                                  {u"durationMs"_s, -1},
                                                  {u"speedPercent"_s, 24},
                                                  {u"speedPercent"_s, 401},
                                                  {u"isFinished"_s, 1},
                                                  {u"audioTrackId"_s, u"1"_s},
                                                  {u"audioTrackId"_s, 3e9},
                                                  {u"positionMs"_s, QJsonValue::Null}};
    for (const auto &[name, value] : wrong) {
        QJsonObject body{{u"durationMs"_s, 5}, {u"positionMs"_s, 5}};
        body[name] = value;
        EXPECT_EQ(put(watching(one), body).errorCode(), u"badSetting"_s) << name.toStdString();
    }
    EXPECT_EQ(get(watching(one)).json(), before);
    EXPECT_EQ(put(watching(99), {{u"positionMs"_s, 5}}).errorCode(), u"unknownFilm"_s);
    EXPECT_EQ(ask("PUT", watching(one), {}, "1").errorCode(), u"badJson"_s);
}

} // namespace

} // namespace murvo::service::test
