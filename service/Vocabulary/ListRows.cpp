// SPDX-License-Identifier: GPL-3.0-or-later
#include "Vocabulary/ListRows.h"

#include <algorithm>
#include <optional>

namespace murvo::service {

namespace {

// A cell may be a subtitle of some lines. What is longer is a quote that nobody closed.
constexpr qsizetype longestCell = 4000;

constexpr QStringView anySign(u"\t;,");

/// The signs at which columns end.
QStringView signsBetweenColumns(const QString &text) {
    const qsizetype end = text.indexOf(u'\n');
    const QStringView first = QStringView(text).left(end < 0 ? text.size() : end);
    for (qsizetype i = 0; i < anySign.size(); ++i) {
        if (first.contains(anySign[i]))
            return anySign.sliced(i, 1);
    }
    return anySign;
}

/// Reads from the beginning to the end, cell by cell.
class Reader {
  public:
    explicit Reader(const QString &text)
        : _text(text)
        , _between(signsBetweenColumns(text)) {}

    [[nodiscard]] bool isAtEnd() const { return _at >= _text.size(); }

    [[nodiscard]] QStringList row() {
        QStringList cells{cell()};
        while (!isAtEnd() && _between.contains(_text[_at])) {
            ++_at;
            cells.append(cell());
        }
        ++_at; // the end of the line
        return cells;
    }

  private:
    QString cell() {
        if (!isAtEnd() && _text[_at] == u'"') {
            if (const auto quoted = quotedCell())
                return *quoted;
        }
        const qsizetype start = _at;
        while (!isCellsEnd(_at))
            ++_at;
        return _text.sliced(start, _at - start).trimmed();
    }

    // None when the quote is not one around a cell.
    std::optional<QString> quotedCell() {
        QString cell;
        for (qsizetype i = _at + 1; i < _text.size() && cell.size() <= longestCell; ++i) {
            if (_text[i] != u'"') {
                cell += _text[i];
            } else if (i + 1 < _text.size() && _text[i + 1] == u'"') {
                cell += _text[i++];
            } else {
                if (!isCellsEnd(i + 1))
                    return std::nullopt;
                _at = i + 1;
                return cell.trimmed();
            }
        }
        return std::nullopt;
    }

    [[nodiscard]] bool isCellsEnd(qsizetype at) const {
        return at >= _text.size() || _between.contains(_text[at]) || _text[at] == u'\n';
    }

    const QString &_text;
    QStringView _between;
    qsizetype _at = 0;
};

} // namespace

QList<QStringList> listRows(const QString &text, qsizetype mostRows) {
    QString plain = text;
    plain.replace(QLatin1String("\r\n"), QLatin1String("\n")).replace(u'\r', u'\n');
    Reader reader(plain);
    QList<QStringList> rows;
    while (!reader.isAtEnd() && rows.size() < mostRows) {
        const QStringList row = reader.row();
        if (std::any_of(row.begin(), row.end(), [](const QString &cell) { return !cell.isEmpty(); }))
            rows.append(row);
    }
    return rows;
}

} // namespace murvo::service
