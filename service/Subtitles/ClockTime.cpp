// SPDX-License-Identifier: GPL-3.0-or-later
#include "Subtitles/ClockTime.h"

#include <QRegularExpression>

namespace murvo::service {

QString clockTimePattern() {
    return QStringLiteral("-?\\s?(?:\\d{1,9}\\s?:\\s?)?\\d{1,9}\\s?:\\s?\\d{1,9}(?:\\s?[.,:;]\\s?\\d{1,9})?");
}

std::optional<qint64> clockTimeMs(QStringView text) {
    static const QRegularExpression parts(QRegularExpression::anchoredPattern(
        QStringLiteral("\\s*(-?)\\s?(?:(\\d{1,9})\\s?:\\s?)?(\\d{1,9})\\s?:\\s?"
                       "(\\d{1,9})(?:\\s?[.,:;]\\s?(\\d{1,9}))?\\s*")));
    const QRegularExpressionMatch match = parts.match(text.toString());
    if (!match.hasMatch())
        return std::nullopt;
    const auto number = [&match](int part) { return match.captured(part).toLongLong(); };
    const qint64 ms =
        ((number(2) * 60 + number(3)) * 60 + number(4)) * 1000 + thousandths(match.capturedView(5));
    if (ms > latestMs)
        return std::nullopt;
    return match.capturedLength(1) > 0 ? -ms : ms;
}

int thousandths(QStringView figures) {
    int value = 0;
    for (qsizetype i = 0; i < 3; ++i)
        value = value * 10 + (i < figures.size() ? figures[i].digitValue() : 0);
    return value;
}

} // namespace murvo::service
