// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Classes/LenientNumber.h"

#include <QRegularExpression>

#include <algorithm>
#include <cmath>
#include <limits>

namespace murvo {

namespace {

QString leadingMatch(const QString &text, const QString &pattern) {
    const QRegularExpression expression(QStringLiteral("^\\s*(") + pattern + u')');
    return expression.match(text).captured(1);
}

const QString decimalNumber = QStringLiteral("[+-]?(?:[0-9]+(?:\\.[0-9]*)?|\\.[0-9]+)(?:[eE][+-]?[0-9]+)?");

} // namespace

qint32 intValue(const QString &text) {
    using Limits = std::numeric_limits<qint32>;
    const QString digits = leadingMatch(text, QStringLiteral("[+-]?[0-9]+"));
    bool isSmall = false;
    const qint64 number = digits.toLongLong(&isSmall);
    if (isSmall)
        return static_cast<qint32>(std::clamp<qint64>(number, Limits::min(), Limits::max()));
    if (digits.isEmpty())
        return 0;
    return digits.startsWith(u'-') ? Limits::min() : Limits::max();
}

float floatValue(const QString &text) {
    double number = 0;
    return scanDouble(text, number) ? static_cast<float>(number) : 0.0F;
}

bool boolValue(const QString &text) {
    const QString significant = leadingMatch(text, QStringLiteral("[YyTt]|[+-]?0*[1-9]"));
    return !significant.isEmpty();
}

qint32 intValue(const QJsonValue &value) {
    if (value.isString())
        return intValue(value.toString());
    const double number = value.toDouble();
    if (!(std::abs(number) < 9.2e18))
        return 0;
    return static_cast<qint32>(value.toInteger(static_cast<qint64>(number)));
}

bool scanDouble(const QString &text, double &number) {
    const QString digits = leadingMatch(text, decimalNumber);
    if (digits.isEmpty())
        return false;
    number = digits.toDouble();
    return true;
}

} // namespace murvo
