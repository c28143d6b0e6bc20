// SPDX-License-Identifier: GPL-3.0-or-later
#include "Subtitles/MarkedText.h"

#include "Subtitles/Entities.h"

#include <algorithm>

namespace murvo::service {

namespace {

constexpr qsizetype mostLines = 12;
constexpr qsizetype mostCharacters = 2000; ///< of all lines together
constexpr qsizetype mostRawCharacters = 65'536;

constexpr QChar byteOrderMark{0xFEFF};
constexpr QChar ideographicSpace{0x3000};

bool endsLine(QChar c) {
    return c == u'\n' || c == u'\r' || c == QChar::LineSeparator || c == QChar::ParagraphSeparator;
}

/// Takes a text's characters one by one and keeps the tidy lines.
class Tidier {
  public:
    explicit Tidier(Cue &cue)
        : _cue(cue) {}

    void take(QChar c, bool italic) {
        if (c.unicode() >= 0x80 && c.unicode() <= 0x9F)
            c = meantByControl(c.unicode());
        if (endsLine(c))
            finishLine();
        else if (c == byteOrderMark)
            return;
        else if (c.isSpace() || c.category() == QChar::Other_Control)
            takeSpace(c == ideographicSpace ? c : QChar(u' '), italic);
        else
            takeVisible(c, italic);
    }

    void finishLine() {
        const bool visible = std::any_of(_line.cbegin(), _line.cend(),
                                         [](QChar c) { return c.category() != QChar::Other_Format; });
        if (visible && _cue.lines.size() < mostLines) {
            if (_line.back().isHighSurrogate())
                cutLast();
            _characters += _line.size();
            _cue.lines.append(_line);
            _cue.italics += _ranges;
        }
        _line.clear();
        _ranges.clear();
        _space = {};
    }

  private:
    // Spaces are put when something follows them, so that none ends a line.
    void takeSpace(QChar space, bool italic) {
        if (_space.isNull() && !_line.isEmpty()) {
            _space = space;
            _spaceItalic = italic;
        }
    }

    void takeVisible(QChar c, bool italic) {
        if (!_space.isNull())
            put(_space, _spaceItalic);
        _space = {};
        put(c, italic);
    }

    void put(QChar c, bool italic) {
        if (_characters + _line.size() >= mostCharacters)
            return;
        const auto at = static_cast<qint32>(_line.size());
        _line.append(c);
        if (!italic)
            return;
        if (!_ranges.isEmpty() && _ranges.back().end == at)
            ++_ranges.back().end;
        else
            _ranges.append({static_cast<qint32>(_cue.lines.size()), at, at + 1});
    }

    void cutLast() {
        _line.chop(1);
        for (ItalicRange &range : _ranges)
            range.end = std::min(range.end, static_cast<qint32>(_line.size()));
    }

    Cue &_cue;
    QString _line;
    QList<ItalicRange> _ranges; ///< of _line
    qsizetype _characters = 0;  ///< of the lines before
    QChar _space;               ///< waits for what follows
    bool _spaceItalic = false;
};

} // namespace

void MarkedText::append(QStringView text) {
    const QStringView kept = text.first(std::min(text.size(), mostRawCharacters - _text.size()));
    _text += kept;
    _italics.insert(_italics.end(), static_cast<size_t>(kept.size()), _italic);
}

void MarkedText::tidyInto(Cue &cue) const {
    cue.lines.clear();
    cue.italics.clear();
    Tidier tidier(cue);
    for (qsizetype i = 0; i < _text.size(); ++i)
        tidier.take(_text[i], _italics[static_cast<size_t>(i)]);
    tidier.finishLine();
}

} // namespace murvo::service
