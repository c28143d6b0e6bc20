// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

#include <vector>

class QRect;

namespace murvo::test {

/// A film whose every picture shows its number in black and white bars, with lines of all kinds: far apart,
/// close together, and touching. So the screen itself tells where the film stands. Times in milliseconds.
class MarkedFilm {
  public:
    struct Line {
        int startMs;
        int endMs;
    };

    explicit MarkedFilm(int lineCount);

    [[nodiscard]] QString path() const;
    /// "line 1" and so on, as a file of subtitles.
    [[nodiscard]] QByteArray subtitles() const;
    [[nodiscard]] const std::vector<Line> &lines() const { return _lines; }
    /// Where the film should stop after the line: not so late that the next one is heard.
    [[nodiscard]] int stopMs(std::size_t line) const;

    /// The middle of the time for which the picture is shown that lies there on the screen.
    [[nodiscard]] static double shownMs(const QRect &content);

  private:
    std::vector<Line> _lines;
};

} // namespace murvo::test
