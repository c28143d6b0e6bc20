// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

#include <cstdint>
#include <string_view>
#include <vector>

namespace murvo::service {

/// A text file of lines that are sorted by the bytes of their keys, searched where it lies: it is mapped, not
/// read, so that opening costs nothing and only the pages that a search touches come into memory.
///
/// A key runs from a line's beginning to the separator. Read-only after construction, any thread; owned by
/// the dictionary that it is the index of. A file that is not there behaves as an empty one.
class SortedLines {
  public:
    SortedLines(const QString &path, char separator);
    /// Lines that lie in memory.
    SortedLines(QByteArray lines, char separator);

    [[nodiscard]] bool isEmpty() const { return _text.empty(); }
    [[nodiscard]] std::string_view text() const { return _text; }

    /// The lines with exactly this key, in the file's order, without their ends.
    [[nodiscard]] std::vector<std::string_view> find(std::string_view key) const;
    /// Calls visit(key, line) for every line.
    template<typename Visit>
    void each(Visit &&visit) const {
        for (std::size_t at = 0; at < _text.size();) {
            const std::string_view line = lineAt(at);
            visit(keyOf(line), line);
            at += line.size() + 1;
        }
    }

    /// Reads the whole file once: whether it is sorted. When it is not, its lines are put in order in memory,
    /// so that they are found all the same. To be called before other threads search.
    void makeSorted();

  private:
    [[nodiscard]] std::string_view keyOf(std::string_view line) const;
    [[nodiscard]] std::string_view lineAt(std::size_t start) const;
    [[nodiscard]] std::size_t lineStart(std::size_t within) const;
    [[nodiscard]] std::size_t lowerBound(std::string_view key) const;

    QFile _file;
    QByteArray _own; ///< the lines when there is no file
    char _separator;
    std::string_view _text;
    std::vector<std::uint32_t> _order; ///< starts of the lines by key, only for a file that is not sorted
};

} // namespace murvo::service
