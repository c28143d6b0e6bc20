// SPDX-License-Identifier: GPL-3.0-or-later
#include "Subtitles/SamiReader.h"

#include "Subtitles/CueMarkup.h"
#include "Subtitles/FileRepairs.h"

#include <QHash>
#include <QRegularExpression>

#include <algorithm>
#include <optional>

namespace murvo::service {

namespace {

/// What one class says from a time on; without lines it clears the picture.
struct Paragraph {
    QString className;
    Cue cue;
};

// The number of an attribute of a tag, quoted or not, with or without "ms".
std::optional<qint64> number(const QString &tag, const QRegularExpression &attribute) {
    const QRegularExpressionMatch match = attribute.match(tag);
    return match.hasMatch() ? std::optional(match.captured(1).toLongLong()) : std::nullopt;
}

QString withoutComments(const QString &text) {
    QString result;
    qsizetype done = 0;
    for (qsizetype begin = text.indexOf(QLatin1String("<!--")); begin >= 0;
         begin = text.indexOf(QLatin1String("<!--"), done)) {
        const qsizetype end = text.indexOf(QLatin1String("-->"), begin);
        if (end < 0)
            break;
        result += QStringView(text).sliced(done, begin - done);
        done = end + 3;
    }
    result += QStringView(text).sliced(done);
    return result;
}

class SamiParagraphs {
  public:
    [[nodiscard]] QList<Paragraph> read(const QString &text) {
        static const QRegularExpression tags(QStringLiteral("<(SYNC|P|/BODY|/SAMI)(?=[\\s>])[^<>]*>"),
                                             QRegularExpression::CaseInsensitiveOption);
        qsizetype done = 0;
        for (const QRegularExpressionMatch &tag : tags.globalMatch(text)) {
            finish(QStringView(text).sliced(done, tag.capturedStart() - done));
            take(tag);
            done = tag.capturedEnd();
            if (_paragraphs.size() >= mostCuesOfFile)
                break;
        }
        finish(QStringView(text).sliced(done));
        return _paragraphs;
    }

  private:
    void take(const QRegularExpressionMatch &tag) {
        static const QRegularExpression start(QStringLiteral("\\bstart\\s*=\\s*[\"']?\\s*(-?\\d{1,12})"),
                                              QRegularExpression::CaseInsensitiveOption);
        static const QRegularExpression end(QStringLiteral("\\bend\\s*=\\s*[\"']?\\s*(\\d{1,12})"),
                                            QRegularExpression::CaseInsensitiveOption);
        static const QRegularExpression className(QStringLiteral("\\bclass\\s*=\\s*[\"']?\\s*([^\\s\"'<>]+)"),
                                                  QRegularExpression::CaseInsensitiveOption);
        const QString whole = tag.captured();
        _className.clear();
        if (tag.capturedView(1).compare(u"SYNC", Qt::CaseInsensitive) == 0) {
            _startMs = number(whole, start);
            _endMs = number(whole, end).value_or(0);
        } else if (tag.capturedView(1).compare(u"P", Qt::CaseInsensitive) == 0) {
            _className = className.match(whole).captured(1).toLower();
        } else {
            _startMs.reset();
        }
        _inParagraph = tag.capturedView(1).compare(u"P", Qt::CaseInsensitive) == 0;
    }

    // Text right behind SYNC, without a P, is a line, too; white space there is none and clears nothing.
    void finish(QStringView text) {
        if (!_startMs || (!_inParagraph && text.trimmed().isEmpty()))
            return;
        Paragraph paragraph{_className, {*_startMs, _endMs, {}, {}}};
        readMarkup(text, Markup::Sami).tidyInto(paragraph.cue);
        _paragraphs.append(paragraph);
    }

    QList<Paragraph> _paragraphs;
    std::optional<qint64> _startMs; ///< of the SYNC; none before the first and behind the last
    qint64 _endMs = 0;              ///< 0 where the SYNC tells none
    QString _className;
    bool _inParagraph = false;
};

} // namespace

QList<Cue> readSami(const QString &text) {
    const QList<Paragraph> paragraphs = SamiParagraphs().read(withoutComments(text));
    const auto first = std::find_if(paragraphs.begin(), paragraphs.end(), [](const Paragraph &paragraph) {
        return !paragraph.cue.lines.isEmpty();
    });
    if (first == paragraphs.end())
        return {};
    QList<Cue> cues;
    for (const Paragraph &paragraph : paragraphs) {
        if (paragraph.className == first->className)
            cues.append(paragraph.cue);
    }
    std::stable_sort(cues.begin(), cues.end(),
                     [](const Cue &a, const Cue &b) { return a.startMs < b.startMs; });
    for (qsizetype i = 0; i + 1 < cues.size(); ++i) {
        if (cues[i].endMs <= cues[i].startMs)
            cues[i].endMs = cues[i + 1].startMs;
    }
    return cues; // inOrder() leaves out what only clears the picture
}

} // namespace murvo::service
