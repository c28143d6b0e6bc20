// SPDX-License-Identifier: GPL-3.0-or-later
#include "Subtitles/CueMarkup.h"

#include "Subtitles/Entities.h"

#include <QRegularExpression>

namespace murvo::service {

namespace {

// Each pattern's parts: 1 "/" of a closing tag, 2 the tag's name, 3 an entity. A part that begins with an
// opening bracket ends at the next one, so that a text of brackets alone costs no more than another.
const QRegularExpression &tokens(Markup markup) {
    static const QString entity = QStringLiteral("|&(#?[A-Za-z0-9]{1,31});");
    static const QString braces = QStringLiteral("|\\{\\\\[^{}]*\\}|\\{[A-Za-z]:[^{}]*\\}|\\{/?[ibu]\\}");
    static const QString letterTags = QStringLiteral(
        "(?i)<(/?)\\s*(i|b|u|s|a|p|c|v|q|em|br|hr|div|font|span|strong|strike|tt|big|small|sub|"
        "sup|center|ruby|rb|rt|rp|lang)(?=[\\s.:=/>])[^<>]*>");
    static const QRegularExpression subRip(letterTags + entity + braces);
    static const QRegularExpression subViewer(letterTags + entity + braces + QStringLiteral("|\\||\\[br\\]"));
    static const QRegularExpression webVtt(
        QStringLiteral("<(?:(/?)([A-Za-z][A-Za-z0-9]*)|(?=\\d{1,9}:|[.>/]))[^<>]*>") + entity);
    static const QRegularExpression sami(QStringLiteral("<(?:(/?)([A-Za-z][A-Za-z0-9]*)|[!?])[^<>]*>") +
                                         entity + QStringLiteral("|[\\r\\n]"));
    switch (markup) {
    case Markup::WebVtt:
        return webVtt;
    case Markup::Sami:
        return sami;
    case Markup::SubViewer:
        return subViewer;
    case Markup::SubRip:
    case Markup::MicroDvd:
        break;
    }
    return subRip;
}

/// Turns the tokens of one text into letters, italics and line breaks.
class TokenReader {
  public:
    explicit TokenReader(MarkedText &text)
        : _text(text) {}

    void take(QStringView plain) {
        if (!_inAnnotation)
            _text.append(plain);
    }

    void take(const QRegularExpressionMatch &token) {
        if (token.hasCaptured(3))
            takeEntity(token);
        else if (token.hasCaptured(2))
            takeTag(token.capturedView(2), token.capturedLength(1) > 0);
        else
            takeMark(token.capturedView());
    }

  private:
    void takeEntity(const QRegularExpressionMatch &token) {
        const QString meant = entityText(token.capturedView(3));
        take(meant.isEmpty() ? token.capturedView() : QStringView(meant));
    }

    void takeTag(QStringView name, bool closing) {
        const auto is = [name](const char *other) {
            return name.compare(QLatin1String(other), Qt::CaseInsensitive) == 0;
        };
        if (is("i") || is("em"))
            _text.setItalic(!closing);
        else if (is("br"))
            _text.breakLine();
        else if (is("rt") || is("rp")) // how the characters before are read aloud
            _inAnnotation = !closing;
        else if (is("ruby"))
            _inAnnotation = false;
    }

    void takeMark(QStringView mark) {
        if (mark == u"|" || mark.startsWith(u'['))
            _text.breakLine();
        else if (mark == u"\n" || mark == u"\r")
            take(u" ");
        else if (mark == u"{i}" || mark.contains(u"\\i1"))
            _text.setItalic(true);
        else if (mark == u"{/i}" || mark.contains(u"\\i0"))
            _text.setItalic(false);
    }

    MarkedText &_text;
    bool _inAnnotation = false;
};

void readTokens(QStringView text, const QRegularExpression &pattern, MarkedText &result) {
    TokenReader reader(result);
    qsizetype done = 0;
    for (const QRegularExpressionMatch &token : pattern.globalMatch(text.toString())) {
        reader.take(text.sliced(done, token.capturedStart() - done));
        reader.take(token);
        done = token.capturedEnd();
    }
    reader.take(text.sliced(done));
}

// {y:i} is for its own line, {Y:i} for the whole cue; "/" before a line says the same as {y:i}.
MarkedText readMicroDvd(QStringView text) {
    static const QRegularExpression marks(QStringLiteral("^\\s*((?:\\{[A-Za-z]:[^{}]*\\}\\s*)*)(/?)"));
    static const QRegularExpression lineStyle(QStringLiteral("\\{y:[^{}]*i[^{}]*\\}"));
    static const QRegularExpression cueStyle(QStringLiteral("\\{Y:[^{}]*i[^{}]*\\}"));
    const bool allItalic = text.contains(u"{Y:") && cueStyle.match(text.toString()).hasMatch();
    MarkedText result;
    for (const QStringView line : text.tokenize(u'|')) {
        const QRegularExpressionMatch begin = marks.match(line.toString());
        result.setItalic(allItalic || begin.capturedLength(2) > 0 ||
                         lineStyle.match(begin.captured(1)).hasMatch());
        readTokens(line.sliced(begin.capturedEnd()), tokens(Markup::MicroDvd), result);
        result.setItalic(false);
        result.breakLine();
    }
    return result;
}

} // namespace

MarkedText readMarkup(QStringView text, Markup markup) {
    if (markup == Markup::MicroDvd)
        return readMicroDvd(text);
    MarkedText result;
    readTokens(text, tokens(markup), result);
    return result;
}

} // namespace murvo::service
