// SPDX-License-Identifier: GPL-3.0-or-later
#include "Subtitles/TtmlReader.h"

#include "Subtitles/ClockTime.h"
#include "Subtitles/Entities.h"
#include "Subtitles/FileRepairs.h"
#include "Subtitles/MarkedText.h"

#include <QRegularExpression>
#include <QSet>
#include <QXmlStreamReader>

#include <algorithm>
#include <cmath>
#include <optional>

namespace murvo::service {

namespace {

constexpr qsizetype deepestElement = 200;

QStringView localName(QStringView name) {
    return name.sliced(name.lastIndexOf(u':') + 1);
}

// Attributes are told by their name without its prefix: careless files forget to declare the prefixes.
std::optional<QString> attribute(const QXmlStreamAttributes &attributes, const char *name) {
    for (const QXmlStreamAttribute &attribute : attributes) {
        if (localName(attribute.qualifiedName()) == QLatin1String(name))
            return attribute.value().toString();
    }
    return std::nullopt;
}

/// How the document counts frames and ticks.
class TimeForm {
  public:
    explicit TimeForm(FrameRate filmRate) {
        if (filmRate.numerator > 0 && filmRate.denominator > 0)
            _framesASecond = static_cast<double>(filmRate.numerator) / filmRate.denominator;
    }

    void take(const QXmlStreamAttributes &root) {
        if (const double rate = attribute(root, "frameRate").value_or(QString()).toDouble(); rate > 0)
            _framesASecond = rate;
        const QStringList ratio = attribute(root, "frameRateMultiplier")
                                      .value_or(QString())
                                      .split(QRegularExpression(QStringLiteral("[ :]")));
        if (ratio.size() == 2 && ratio[0].toDouble() > 0 && ratio[1].toDouble() > 0)
            _framesASecond *= ratio[0].toDouble() / ratio[1].toDouble();
        _ticksASecond = _framesASecond;
        if (const double rate = attribute(root, "tickRate").value_or(QString()).toDouble(); rate > 0)
            _ticksASecond = rate;
    }

    [[nodiscard]] std::optional<double> ms(const QString &text) const {
        static const QRegularExpression offset(QRegularExpression::anchoredPattern(
            QStringLiteral("\\s*(\\d{1,15}(?:\\.\\d{1,9})?)(h|m|s|ms|f|t)\\s*")));
        static const QRegularExpression frames(QRegularExpression::anchoredPattern(
            QStringLiteral("\\s*(\\d{1,9}:\\d{1,9}:\\d{1,9}):(\\d{1,9}(?:\\.\\d{1,9})?)\\s*")));
        std::optional<double> result;
        if (const QRegularExpressionMatch match = offset.match(text); match.hasMatch())
            result = match.captured(1).toDouble() * unitMs(match.captured(2));
        else if (const QRegularExpressionMatch clock = frames.match(text); clock.hasMatch())
            result = static_cast<double>(clockTimeMs(clock.captured(1)).value_or(0)) +
                     clock.captured(2).toDouble() * 1000 / _framesASecond;
        else if (const auto time = clockTimeMs(text))
            result = static_cast<double>(*time);
        return result && *result <= static_cast<double>(latestMs) ? result : std::nullopt;
    }

  private:
    [[nodiscard]] double unitMs(const QString &unit) const {
        if (unit == QLatin1String("h"))
            return 3'600'000;
        if (unit == QLatin1String("m"))
            return 60'000;
        if (unit == QLatin1String("s"))
            return 1000;
        if (unit == QLatin1String("ms"))
            return 1;
        return 1000 / (unit == QLatin1String("f") ? _framesASecond : _ticksASecond);
    }

    double _framesASecond = 30; // the standard's own
    double _ticksASecond = 1;
};

/// Undeclared entities are HTML's; without a resolver the reader would end at the first.
class HtmlEntities : public QXmlStreamEntityResolver {
  public:
    QString resolveUndeclaredEntity(const QString &name) override { return entityText(name); }
};

/// Walks through the document and gathers a cue for each paragraph, or for each timed span in one.
class TtmlDocument {
  public:
    TtmlDocument(const QString &text, FrameRate filmRate)
        : _xml(text)
        , _times(filmRate) {
        _xml.setNamespaceProcessing(false);
        _xml.setEntityResolver(&_entities);
    }

    [[nodiscard]] QList<Cue> read() {
        while (!_xml.atEnd() && _cues.size() < mostCuesOfFile) {
            switch (_xml.readNext()) {
            case QXmlStreamReader::DTD:
                if (!_xml.entityDeclarations().isEmpty())
                    return {};
                break;
            case QXmlStreamReader::StartElement:
                begin();
                break;
            case QXmlStreamReader::EndElement:
                end();
                break;
            case QXmlStreamReader::Characters:
                append(_xml.text());
                break;
            default:
                break;
            }
        }
        finishCue(); // a file that was cut within a line
        return _cues;
    }

  private:
    struct Element {
        double beginMs = 0;
        double endMs = 0; ///< 0: not told
        bool italic = false;
        bool text = false;  ///< what is in it is shown
        bool timed = false; ///< its end ends a cue
    };

    void begin() {
        if (_elements.size() >= deepestElement)
            return _xml.raiseError(QStringLiteral("too deep"));
        const QStringView name = localName(_xml.name());
        const QXmlStreamAttributes attributes = _xml.attributes();
        Element element = _elements.isEmpty() ? Element() : _elements.back();
        element.timed = false;
        if (name == u"tt")
            _times.take(attributes);
        else if (name == u"style")
            defineStyle(attributes);
        takeStyle(attributes, element);
        if (name == u"p" || name == u"span" || name == u"div" || name == u"body")
            takeTimes(attributes, name, element);
        if (name == u"br" && element.text)
            _text.breakLine();
        else if (name == u"metadata" || isReading(attributes))
            element.text = false;
        _elements.append(element);
        _text.setItalic(element.italic);
    }

    // The characters that tell how the ones before are read aloud.
    static bool isReading(const QXmlStreamAttributes &attributes) {
        const QString ruby = attribute(attributes, "ruby").value_or(QString());
        return ruby == QLatin1String("text") || ruby == QLatin1String("textContainer") ||
               ruby == QLatin1String("delimiter");
    }

    void end() {
        if (_elements.isEmpty())
            return;
        const bool wasTimed = _elements.back().timed;
        if (wasTimed)
            finishCue();
        _elements.removeLast();
        if (wasTimed)
            goOnWithElementAround();
        _text.setItalic(!_elements.isEmpty() && _elements.back().italic);
    }

    // What follows a timed part has the times of what is around it.
    void goOnWithElementAround() {
        const auto around = std::find_if(_elements.rbegin(), _elements.rend(),
                                         [](const Element &element) { return element.timed; });
        if (around != _elements.rend())
            _cue = {std::llround(around->beginMs), std::llround(around->endMs), {}, {}};
    }

    void append(QStringView text) {
        if (_elements.isEmpty() || !_elements.back().text)
            return;
        QString spaced = text.toString();
        _text.append(spaced.replace(u'\n', u' ').replace(u'\r', u' '));
    }

    void defineStyle(const QXmlStreamAttributes &attributes) {
        const QString fontStyle = attribute(attributes, "fontStyle").value_or(QString());
        const auto id = attribute(attributes, "id");
        const QString based = attribute(attributes, "style").value_or(QString());
        if (id && (isItalic(fontStyle) || (fontStyle.isEmpty() && _italicStyles.contains(based))))
            _italicStyles.insert(*id);
    }

    static bool isItalic(QStringView fontStyle) { return fontStyle == u"italic" || fontStyle == u"oblique"; }

    void takeStyle(const QXmlStreamAttributes &attributes, Element &element) const {
        for (const QString &id : attribute(attributes, "style").value_or(QString()).split(u' ')) {
            if (_italicStyles.contains(id))
                element.italic = true;
        }
        if (const auto fontStyle = attribute(attributes, "fontStyle"))
            element.italic = isItalic(*fontStyle);
    }

    // Times count from the begin of the element around.
    void takeTimes(const QXmlStreamAttributes &attributes, QStringView name, Element &element) {
        const double around = element.beginMs;
        const auto begin = _times.ms(attribute(attributes, "begin").value_or(QString()));
        const auto end = _times.ms(attribute(attributes, "end").value_or(QString()));
        const auto duration = _times.ms(attribute(attributes, "dur").value_or(QString()));
        element.beginMs = around + begin.value_or(0);
        if (end)
            element.endMs = around + *end;
        if (duration)
            element.endMs =
                std::min(end ? element.endMs : static_cast<double>(latestMs), element.beginMs + *duration);
        const bool isParagraph = name == u"p";
        element.timed = isParagraph || (name == u"span" && begin);
        element.text = element.text || isParagraph;
        if (element.timed) {
            finishCue();
            _cue = {std::llround(element.beginMs), std::llround(element.endMs), {}, {}};
        }
    }

    void finishCue() {
        _text.tidyInto(_cue);
        if (!_cue.lines.isEmpty())
            _cues.append(_cue);
        const bool italic = _text.isItalic();
        _text = {};
        _text.setItalic(italic);
    }

    QXmlStreamReader _xml;
    HtmlEntities _entities;
    TimeForm _times;
    QSet<QString> _italicStyles;
    QList<Element> _elements;
    QList<Cue> _cues;
    Cue _cue; ///< the times of the text that is gathered
    MarkedText _text;
};

} // namespace

QList<Cue> readTtml(const QString &text, FrameRate filmRate) {
    static const QRegularExpression bareAmpersand(QStringLiteral("&(?!#?[A-Za-z0-9]{1,31};)"));
    QString wellFormed = text;
    wellFormed.replace(bareAmpersand, QStringLiteral("&amp;"));
    return TtmlDocument(wellFormed, filmRate).read();
}

} // namespace murvo::service
