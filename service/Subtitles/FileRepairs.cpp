// SPDX-License-Identifier: GPL-3.0-or-later
#include "Subtitles/FileRepairs.h"

#include "Subtitles/ClockTime.h"

#include <QRegularExpression>
#include <QStringList>

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

namespace murvo::service {

namespace {

constexpr qsizetype longestLine = 600; ///< three bytes each in a buffer of 2048
constexpr qsizetype longestTimingLine = 300;

void addLine(QString &text, QStringView line) {
    text += line;
    text += u'\n';
}

QString withFigures(qint64 number, int figures) {
    return QStringLiteral("%1").arg(number, figures, 10, QLatin1Char('0'));
}

// h:mm:ss and the fraction in as many figures as the format has.
QString writtenTime(qint64 ms, QChar point, int fractionFigures) {
    const qint64 fraction = fractionFigures == 2 ? ms % 1000 / 10 : ms % 1000;
    return withFigures(ms / 3'600'000, 2) + u':' + withFigures(ms / 60'000 % 60, 2) + u':' +
           withFigures(ms / 1000 % 60, 2) + point + withFigures(fraction, fractionFigures);
}

struct Timing {
    qint64 startMs = 0;
    qint64 endMs = 0; ///< never before the start; the start where the file tells none
    bool hasEnd = false;
    bool isSubViewer = false;
    QString rest; ///< of the line
};

std::optional<Timing> timingOf(QStringView line) {
    static const QRegularExpression arrow(QStringLiteral("^\\s*(") + clockTimePattern() +
                                          QStringLiteral(")\\s*-\\s?-?\\s?>\\s*(") + clockTimePattern() +
                                          QStringLiteral(")?(.*)$"));
    static const QRegularExpression subViewer(
        QStringLiteral("^\\s*(\\d{1,9}:\\d{1,9}:\\d{1,9}[.]\\d{1,9})\\s*,"
                       "\\s*(\\d{1,9}:\\d{1,9}:\\d{1,9}[.]\\d{1,9})(\\s*)$"));
    if (line.isEmpty() || line.size() > longestTimingLine || !line.contains(u':'))
        return std::nullopt;
    QRegularExpressionMatch match = arrow.match(line.toString());
    const bool isSubViewer = !match.hasMatch();
    if (isSubViewer)
        match = subViewer.match(line.toString());
    const auto start = match.hasMatch() ? clockTimeMs(match.capturedView(1)) : std::nullopt;
    if (!start)
        return std::nullopt;
    const auto end = clockTimeMs(match.capturedView(2));
    return Timing{*start, std::max(*start, end.value_or(*start)), end.has_value(), isSubViewer,
                  match.captured(3).trimmed()};
}

// What follows the times: a position ("X1:40 Y1:20", "align:start") or, in careless files, the text.
bool isPosition(const QString &rest) {
    static const QRegularExpression marks(QStringLiteral("^(?:[A-Za-z][A-Za-z0-9]*:[^\\s]+(?:\\s+|$))*$"));
    return marks.match(rest).hasMatch();
}

// The text below times that cannot be read has no place in the film; it is not the text of the cue before.
bool isBrokenTiming(QStringView line) {
    const QStringView begin = line.trimmed();
    const qsizetype arrow = begin.indexOf(u"-->");
    return arrow >= 0 && (arrow == 0 || begin[0].isDigit()) && begin.contains(u':');
}

bool isNumber(QStringView line) {
    return !line.isEmpty() && line.size() <= 9 && std::all_of(line.cbegin(), line.cend(), [](QChar c) {
        return c.unicode() >= u'0' && c.unicode() <= u'9';
    });
}

/// Gathers a SubRip file's lines into blocks, whichever of its index lines and blank lines are missing.
class SubRipBlocks {
  public:
    [[nodiscard]] QString read(const QString &text) {
        for (const QStringView line : QStringView(text).tokenize(u'\n')) {
            if (auto timing = timingOf(line)) {
                finish(true);
                begin(std::move(*timing));
            } else if (isBrokenTiming(line)) {
                finish(true);
            } else {
                _text.append(line.trimmed());
            }
            if (_count >= mostCuesOfFile)
                break;
        }
        finish(false);
        return _result;
    }

  private:
    void begin(Timing timing) {
        if (timing.hasEnd && !timing.rest.isEmpty() && !isPosition(timing.rest))
            _firstLine = timing.rest;
        _timing = std::move(timing);
    }

    // A number above the next times belongs to them and not to this text when it stands apart from the text
    // or goes on with the counting.
    void dropNextIndex() {
        qsizetype last = _text.size() - 1;
        while (last >= 0 && _text[last].isEmpty())
            --last;
        if (last < 0 || !isNumber(_text[last]))
            return;
        const int number = _text[last].toInt();
        const bool apart = last == _text.size() - 1 && last > 0 && _text[last - 1].isEmpty();
        if (!_timing || apart || (_index >= 0 && number == _index + 1)) {
            _text.resize(last);
            _index = number;
        }
    }

    void finish(bool timesFollow) {
        if (timesFollow)
            dropNextIndex();
        if (_timing && (_timing->startMs >= 0 || _timing->endMs > 0))
            write();
        _timing.reset();
        _text.clear();
        _firstLine.clear();
    }

    void write() {
        _result += QString::number(++_count) + u'\n' +
                   writtenTime(std::max<qint64>(_timing->startMs, 0), u',', 3) + QLatin1String(" --> ") +
                   writtenTime(std::max<qint64>(_timing->endMs, 0), u',', 3) + u'\n';
        if (!_firstLine.isEmpty())
            _result += _firstLine + u'\n';
        for (const QStringView line : std::as_const(_text)) {
            if (!line.isEmpty())
                writeLine(line.first(std::min(line.size(), longestLine)));
        }
        _result += u'\n';
    }

    void writeLine(QStringView line) {
        if (!_timing->isSubViewer)
            return addLine(_result, line);
        QString broken = line.toString();
        addLine(_result, broken.replace(QLatin1String("[br]"), QLatin1String("\n")).replace(u'|', u'\n'));
    }

    QString _result;
    std::optional<Timing> _timing;
    QString _firstLine;
    QList<QStringView> _text;
    int _index = -1; ///< the last index line's number
    qsizetype _count = 0;
};

/// Keeps a WebVTT file's cues: a block is told by its first line or by the times in its first or second.
class WebVttBlocks {
  public:
    [[nodiscard]] QString read(const QString &text) {
        for (const QStringView line : QStringView(text).tokenize(u'\n')) {
            if (line.trimmed().isEmpty())
                _place = Place::Between;
            else if (_count < mostCuesOfFile)
                take(line);
        }
        return _result;
    }

  private:
    enum class Place { Between, AfterIdentifier, InCue, InOther };

    void take(QStringView line) {
        const bool couldBeTimes = _place != Place::InOther && line.contains(u"-->");
        if (const auto timing = couldBeTimes ? timingOf(line) : std::nullopt; timing && timing->hasEnd) {
            _result += u'\n' + writtenTime(std::max<qint64>(timing->startMs, 0), u'.', 3) +
                       QLatin1String(" --> ") + writtenTime(std::max<qint64>(timing->endMs, 0), u'.', 3) +
                       u'\n';
            ++_count;
            _place = Place::InCue;
        } else if (_place == Place::InCue) {
            addLine(_result, line);
        } else if (_place == Place::Between && !beginsOther(line)) {
            _place = Place::AfterIdentifier;
        } else {
            _place = Place::InOther;
        }
    }

    static bool beginsOther(QStringView line) {
        static const QRegularExpression other(QStringLiteral("^(?:STYLE|REGION|NOTE)(?:\\s|$)|-->"));
        return other.match(line.toString()).hasMatch();
    }

    QString _result = QStringLiteral("WEBVTT\n");
    Place _place = Place::Between;
    qsizetype _count = 0;
};

/// Which fields of a script's events mean what, as its Format line says.
struct EventFields {
    qsizetype start = 1;
    qsizetype end = 2;
    qsizetype style = 3;
    qsizetype text = 9;

    explicit EventFields(const QString &formatLine = {}) {
        if (formatLine.isEmpty())
            return;
        QStringList names = formatLine.section(u':', 1).toLower().split(u',');
        for (QString &name : names)
            name = name.trimmed();
        start = names.indexOf(QLatin1String("start"));
        end = names.indexOf(QLatin1String("end"));
        style = names.indexOf(QLatin1String("style"));
        text = names.size() - 1; // the text may hold commas: it is the last in any case
    }
};

// "23.976" and "29,97" stand for 24000/1001 and 30000/1001: over a long film the difference can be seen.
FrameRate exactRate(double framesASecond) {
    const double whole = std::round(framesASecond);
    const bool isNtsc = whole > 20 && std::abs(framesASecond - whole * 1000 / 1001) < 0.005;
    return isNtsc ? FrameRate{static_cast<int>(whole) * 1000, 1001}
                  : FrameRate{static_cast<int>(std::round(framesASecond * 1000)), 1000};
}

// Nothing when the line is no event with good times.
QString repairedEvent(QStringView line, const EventFields &fields) {
    const QString event = line.sliced(line.indexOf(u':') + 1).toString();
    const auto field = [&event](qsizetype i) {
        return i < 0 ? QString() : event.section(u',', static_cast<int>(i), static_cast<int>(i)).trimmed();
    };
    const auto start = clockTimeMs(field(fields.start));
    const auto end = clockTimeMs(field(fields.end));
    if (!start || (*start < 0 && end.value_or(*start) <= 0))
        return {};
    return QLatin1String("Dialogue: 0,") + writtenTime(std::max<qint64>(*start, 0), u'.', 2) + u',' +
           writtenTime(std::max<qint64>({end.value_or(*start), *start, 0}), u'.', 2) + u',' +
           field(fields.style) + QLatin1String(",,0,0,0,,") +
           event.section(u',', static_cast<int>(fields.text)) + u'\n';
}

} // namespace

QString repairedSubRip(const QString &text) {
    return SubRipBlocks().read(text);
}

QString repairedWebVtt(const QString &text) {
    return WebVttBlocks().read(text);
}

QString repairedAss(const QString &text) {
    QString styles;
    QString events;
    EventFields fields;
    qsizetype count = 0;
    for (const QStringView rawLine : QStringView(text).tokenize(u'\n')) {
        const QStringView line = rawLine.trimmed();
        if (line.startsWith(u"Dialogue:", Qt::CaseInsensitive)) {
            if (count++ < mostCuesOfFile)
                events += repairedEvent(line, fields);
        } else if (line.startsWith(u"Format:", Qt::CaseInsensitive) &&
                   line.contains(u"Start", Qt::CaseInsensitive) &&
                   line.contains(u"Text", Qt::CaseInsensitive)) {
            fields = EventFields(line.toString());
        } else if (line.startsWith(u"Style:", Qt::CaseInsensitive) ||
                   line.startsWith(u"Format:", Qt::CaseInsensitive)) {
            addLine(styles, line);
        }
    }
    return QLatin1String("[Script Info]\nScriptType: v4.00+\n\n[V4+ Styles]\n") + styles +
           QLatin1String(
               "\n[Events]\nFormat: Layer, Start, End, Style, Name, MarginL, MarginR, MarginV, Effect, "
               "Text\n") +
           events;
}

QString repairedMicroDvd(const QString &text, FrameRate &rate) {
    static const QRegularExpression header(
        QStringLiteral("^\\s*\\{[01]\\}\\{[01]?\\}\\s*(\\d{1,3}(?:[.,]\\d{1,6})?)\\s*(?:fps)?\\s*\n"),
        QRegularExpression::CaseInsensitiveOption);
    QString cues = shortLines(text);
    if (const QRegularExpressionMatch match = header.match(cues); match.hasMatch()) {
        const double framesASecond = match.captured(1).replace(u',', u'.').toDouble();
        if (framesASecond > 3 && framesASecond < 130)
            rate = exactRate(framesASecond);
        cues.remove(0, match.capturedEnd());
    }
    // In the first three lines the demuxer takes a cue of frame 0 that begins with a figure for a header.
    return QStringLiteral("{2}{2}\n{2}{2}\n{2}{2}\n") + cues;
}

QString shortLines(const QString &text) {
    QString result;
    qsizetype count = 0;
    for (const QStringView line : QStringView(text).tokenize(u'\n')) {
        if (count++ >= mostCuesOfFile)
            break;
        addLine(result, line.first(std::min(line.size(), longestLine)));
    }
    return result;
}

} // namespace murvo::service
