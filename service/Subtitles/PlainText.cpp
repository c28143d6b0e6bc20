// SPDX-License-Identifier: GPL-3.0-or-later
#include "Subtitles/PlainText.h"

#include <QHash>
#include <QRegularExpression>

#include <optional>

namespace murvo::service {

namespace {

constexpr qsizetype mostLinesOfCue = 12;
constexpr qsizetype longestCueText = 2000;

void strip(QString &text, const QRegularExpression &pattern) {
    text.remove(pattern);
}

std::optional<QString> namedEntity(const QString &name) {
    static const QHash<QString, QString> entities{{QStringLiteral("amp"), QStringLiteral("&")},
                                                  {QStringLiteral("lt"), QStringLiteral("<")},
                                                  {QStringLiteral("gt"), QStringLiteral(">")},
                                                  {QStringLiteral("quot"), QStringLiteral("\"")},
                                                  {QStringLiteral("apos"), QStringLiteral("'")},
                                                  {QStringLiteral("nbsp"), QStringLiteral(" ")},
                                                  {QStringLiteral("lrm"), QString()},
                                                  {QStringLiteral("rlm"), QString()},
                                                  {QStringLiteral("hellip"), QStringLiteral("…")}};
    const auto found = entities.find(name);
    return found == entities.end() ? std::nullopt : std::optional(*found);
}

std::optional<QString> numericEntity(const QString &digits) {
    const bool hex = digits.startsWith(u'x') || digits.startsWith(u'X');
    bool ok = false;
    const uint code = hex ? digits.mid(1).toUInt(&ok, 16) : digits.toUInt(&ok, 10);
    if (!ok || code == 0 || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF))
        return std::nullopt;
    const auto character = static_cast<char32_t>(code);
    return QString::fromUcs4(&character, 1);
}

QString decodeEntities(const QString &text) {
    static const QRegularExpression entity(QStringLiteral("&(#?)([A-Za-z0-9]{1,8});"));
    if (!text.contains(u'&'))
        return text;
    QString decoded;
    qsizetype done = 0;
    for (const QRegularExpressionMatch &match : entity.globalMatch(text)) {
        const QString name = match.captured(2);
        const auto character = match.captured(1).isEmpty() ? namedEntity(name) : numericEntity(name);
        decoded += QStringView(text).mid(done, match.capturedStart() - done);
        decoded += character.value_or(match.captured());
        done = match.capturedEnd();
    }
    decoded += QStringView(text).mid(done);
    return decoded;
}

QString subRipText(QString text) {
    static const QRegularExpression tags(QStringLiteral("</?[A-Za-z][^<>]*>|\\{\\\\[^{}]*\\}"));
    strip(text, tags);
    return decodeEntities(text);
}

QString webVttText(QString text) {
    static const QRegularExpression tags(QStringLiteral("<[^<>]*>"));
    strip(text, tags);
    return decodeEntities(text);
}

QString microDvdText(QString text) {
    static const QRegularExpression marks(QStringLiteral("\\{[A-Za-z]:[^{}]*\\}"));
    static const QRegularExpression slash(QStringLiteral("(^|\\|)/"));
    strip(text, marks);
    text.replace(slash, QStringLiteral("\\1"));
    return text.replace(u'|', u'\n');
}

QString assText(const QString &event, int textField) {
    static const QRegularExpression drawing(
        QStringLiteral("\\{[^{}]*\\\\p[1-9][^{}]*\\}.*?(\\{[^{}]*\\\\p0[^{}]*\\}|$)"),
        QRegularExpression::DotMatchesEverythingOption);
    static const QRegularExpression overrides(QStringLiteral("(?<!\\\\)\\{[^{}]*\\}"));
    QString text = event.section(u',', textField);
    strip(text, drawing);
    strip(text, overrides);
    text.replace(QLatin1String("\\N"), QLatin1String("\n"));
    text.replace(QLatin1String("\\n"), QLatin1String(" "));
    text.replace(QLatin1String("\\h"), QLatin1String(" "));
    text.replace(QLatin1String("\\{"), QLatin1String("{"));
    text.replace(QLatin1String("\\}"), QLatin1String("}"));
    return text;
}

QByteArrayView movText(QByteArrayView packet) {
    if (packet.size() < 2)
        return {};
    const auto byte = [packet](qsizetype i) { return static_cast<qsizetype>(static_cast<uchar>(packet[i])); };
    const qsizetype length = byte(0) * 256 + byte(1);
    return packet.sliced(2, std::min(length, packet.size() - 2));
}

QStringList tidyLines(const QString &text) {
    // Other controls than line ends never belong to a line; neither do marks of direction left by players.
    static const QRegularExpression controls(
        QStringLiteral("[\\x{00}-\\x{09}\\x{0B}\\x{0C}\\x{0E}-\\x{1F}\\x{7F}-\\x{9F}\\x{FEFF}]"));
    QString plain = text.left(longestCueText);
    plain.replace(controls, QStringLiteral(" "));
    plain.replace(u'\r', u'\n');
    QStringList lines;
    for (const QString &line : plain.split(u'\n')) {
        if (QString tidy = line.simplified(); !tidy.isEmpty() && lines.size() < mostLinesOfCue)
            lines.append(tidy);
    }
    return lines;
}

} // namespace

QStringList plainLines(QByteArrayView packet, Markup markup, int assTextField) {
    switch (markup) {
    case Markup::SubRip:
        return tidyLines(subRipText(QString::fromUtf8(packet)));
    case Markup::WebVtt:
        return tidyLines(webVttText(QString::fromUtf8(packet)));
    case Markup::MicroDvd:
        return tidyLines(microDvdText(QString::fromUtf8(packet)));
    case Markup::Ass:
        return tidyLines(assText(QString::fromUtf8(packet), assTextField));
    case Markup::MovText:
        return tidyLines(QString::fromUtf8(movText(packet)));
    }
    return {};
}

} // namespace murvo::service
