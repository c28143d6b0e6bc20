// SPDX-License-Identifier: GPL-3.0-or-later
#include "Subtitles/AssText.h"

#include <QRegularExpression>
#include <QStringList>

#include <algorithm>

namespace murvo::service {

namespace {

QStringList fieldsOf(const QString &line) {
    QStringList fields = line.section(u':', 1).split(u',');
    for (QString &field : fields)
        field = field.trimmed();
    return fields;
}

qsizetype indexOf(const QStringList &format, const char *name, qsizetype otherwise) {
    const auto found = std::find_if(format.begin(), format.end(), [name](const QString &field) {
        return field.compare(QLatin1String(name), Qt::CaseInsensitive) == 0;
    });
    return found == format.end() ? otherwise : found - format.begin();
}

/// Reads the text of one event: overrides in {}, \N and \h, drawings.
class EventReader {
  public:
    EventReader(const QSet<QString> &italicStyles, const QString &style)
        : _italicStyles(italicStyles)
        , _style(style) {
        reset(style);
    }

    [[nodiscard]] MarkedText read(QStringView text) {
        qsizetype i = 0;
        while (i < text.size()) {
            if (const qsizetype end = overrideEnd(text, i); end > 0) {
                takeOverride(text.sliced(i + 1, end - i - 1));
                i = end + 1;
            } else {
                i += takeText(text.sliced(i));
            }
        }
        return _result;
    }

  private:
    // An opening brace that is never closed is text; once one is not, none after it is, either.
    qsizetype overrideEnd(QStringView text, qsizetype i) {
        if (text[i] != u'{' || _lastBracePassed)
            return -1;
        const qsizetype end = text.indexOf(u'}', i);
        _lastBracePassed = end < 0;
        return end;
    }

    qsizetype takeText(QStringView text) {
        const QChar next = text.size() > 1 && text[0] == u'\\' ? text[1] : QChar();
        qsizetype length = 2;
        if (next == u'N')
            put(u"\n");
        else if (next == u'n' || next == u'h')
            put(u" ");
        else if (next == u'{' || next == u'}')
            put(text.sliced(1, 1));
        else
            put(text.first(length = 1));
        return length;
    }

    void put(QStringView text) {
        if (!_drawing)
            _result.append(text);
    }

    void takeOverride(QStringView tags) {
        static const QRegularExpression pattern(
            QStringLiteral("\\\\(?:i(\\d*)(?![A-Za-z(])|p(\\d+)|r([^\\\\]*))"));
        for (const QRegularExpressionMatch &tag : pattern.globalMatch(tags.toString())) {
            if (tag.hasCaptured(3))
                reset(tag.captured(3).trimmed());
            else if (tag.hasCaptured(2))
                _drawing = tag.capturedView(2).toInt() > 0;
            else
                _result.setItalic(tag.capturedLength(1) > 0 ? tag.capturedView(1) != u"0" : _styleItalic);
        }
    }

    void reset(const QString &style) {
        _styleItalic = _italicStyles.contains(style.isEmpty() ? _style : style);
        _result.setItalic(_styleItalic);
    }

    const QSet<QString> &_italicStyles;
    QString _style;
    MarkedText _result;
    bool _styleItalic = false;
    bool _drawing = false;
    bool _lastBracePassed = false;
};

QString styleName(QStringView name) {
    return name.trimmed().startsWith(u'*') ? name.trimmed().sliced(1).toString() : name.trimmed().toString();
}

} // namespace

AssScript::AssScript(const QString &header) {
    QString section;
    QStringList format;
    for (const QStringView rawLine : QStringView(header).tokenize(u'\n')) {
        const QString line = rawLine.trimmed().toString();
        if (line.startsWith(u'[')) {
            section = line.toLower();
            format.clear();
        } else if (line.startsWith(QLatin1String("Format:"), Qt::CaseInsensitive)) {
            format = fieldsOf(line);
            if (section.startsWith(QLatin1String("[events")))
                takeEventFormat(format);
        } else if (line.startsWith(QLatin1String("Style:"), Qt::CaseInsensitive)) {
            takeStyle(format, line);
        }
    }
}

void AssScript::takeStyle(const QStringList &format, const QString &style) {
    const QStringList fields = fieldsOf(style);
    const QString italic = fields.value(indexOf(format, "Italic", 8));
    if (!italic.isEmpty() && italic != QLatin1String("0"))
        _italicStyles.insert(styleName(fields.value(indexOf(format, "Name", 0))));
}

// Start and End are not in the packet, ReadOrder is: a field comes one earlier than in the file.
void AssScript::takeEventFormat(const QStringList &format) {
    _styleField = indexOf(format, "Style", 0) - 1; // none: -1
    _textField = std::max<qsizetype>(0, format.size() - 2);
}

MarkedText AssScript::readEvent(QStringView event) const {
    QString style;
    qsizetype start = 0;
    for (qsizetype field = 0; field < _textField; ++field) {
        const qsizetype comma = event.indexOf(u',', start);
        if (comma < 0)
            return {};
        if (field == _styleField)
            style = styleName(event.sliced(start, comma - start));
        start = comma + 1;
    }
    return EventReader(_italicStyles, style).read(event.sliced(start));
}

} // namespace murvo::service
