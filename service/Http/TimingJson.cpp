// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/TimingJson.h"

#include "Http/Message.h"

#include <cmath>

namespace murvo::service {

namespace {

constexpr double longestOffsetMs = 24.0 * 3600 * 1000;
constexpr int largestRatePart = 1'000'000;

RouteError badTiming(const char *name) {
    return {400, QStringLiteral("badTiming"),
            QStringLiteral("\"%1\" is missing or out of its range.").arg(QLatin1String(name))};
}

qint64 wholeNumber(const QJsonObject &object, const char *name, double least, double most) {
    const QJsonValue value = object.value(QLatin1String(name));
    const double number = value.toDouble(std::nan(""));
    if (!(number >= least && number <= most) || number != std::floor(number))
        throw badTiming(name);
    return static_cast<qint64>(number);
}

} // namespace

QJsonObject timingJson(const Timing &timing) {
    QJsonValue cut = QJsonValue::Null;
    if (timing.cut)
        cut = QJsonObject{{QStringLiteral("atMs"), timing.cut->atMs},
                          {QStringLiteral("offsetMs"), timing.cut->offsetMs}};
    return {{QStringLiteral("offsetMs"), timing.offsetMs},
            {QStringLiteral("rateNumerator"), timing.rateNumerator},
            {QStringLiteral("rateDenominator"), timing.rateDenominator},
            {QStringLiteral("cut"), cut}};
}

Timing timingOf(const QJsonObject &object) {
    Timing timing;
    timing.offsetMs = wholeNumber(object, "offsetMs", -longestOffsetMs, longestOffsetMs);
    timing.rateNumerator = static_cast<qint32>(wholeNumber(object, "rateNumerator", 1, largestRatePart));
    timing.rateDenominator = static_cast<qint32>(wholeNumber(object, "rateDenominator", 1, largestRatePart));
    if (timing.rateNumerator > 2 * timing.rateDenominator ||
        timing.rateDenominator > 2 * timing.rateNumerator)
        throw badTiming("rateNumerator");
    const QJsonValue cut = object.value(QLatin1String("cut"));
    if (cut.isObject())
        timing.cut = Cut{wholeNumber(cut.toObject(), "atMs", 0, longestOffsetMs),
                         wholeNumber(cut.toObject(), "offsetMs", -longestOffsetMs, longestOffsetMs)};
    else if (!cut.isNull() && !cut.isUndefined())
        throw badTiming("cut");
    return timing;
}

} // namespace murvo::service
