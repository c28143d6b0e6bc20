// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/MarkedFilm.h"

#include "support/TestFilms.h"

#include <QGuiApplication>
#include <QImage>
#include <QPixmap>
#include <QRect>
#include <QScreen>
#include <QTime>

#include <algorithm>
#include <array>

namespace murvo::test {

namespace {

constexpr int firstMs = 5000; // time for the page and its lines to come
constexpr int restMs = 4000;
constexpr std::array lengthsMs = {1200, 1730, 900, 2410, 1490, 2050, 1110, 1880};
constexpr std::array gapsMs = {0, 300, 20, 900, 0, 120, 1500, 60, 450};
constexpr int guardMs = 15;

} // namespace

MarkedFilm::MarkedFilm(int lineCount) {
    int atMs = firstMs;
    for (std::size_t i = 0; i < static_cast<std::size_t>(lineCount); ++i) {
        const int endMs = atMs + lengthsMs[i % lengthsMs.size()] + static_cast<int>(i * 37 % 101);
        _lines.push_back({atMs, endMs});
        atMs = endMs + gapsMs[i % gapsMs.size()];
    }
}

QString MarkedFilm::path() const {
    return filmWithFrameNumbers((_lines.back().endMs + restMs) / 1000);
}

QByteArray MarkedFilm::subtitles() const {
    const auto clock = [](int ms) {
        return QTime::fromMSecsSinceStartOfDay(ms).toString(QStringLiteral("HH:mm:ss,zzz")).toLatin1();
    };
    QByteArray text;
    for (std::size_t i = 0; i < _lines.size(); ++i) {
        const QByteArray number = QByteArray::number(i + 1);
        text += number + "\n" + clock(_lines[i].startMs) + " --> " + clock(_lines[i].endMs) + "\nline " +
                number + "\n\n";
    }
    return text;
}

int MarkedFilm::stopMs(std::size_t line) const {
    const int endMs = _lines[line].endMs;
    return line + 1 < _lines.size() ? std::min(endMs, _lines[line + 1].startMs - guardMs) : endMs;
}

double MarkedFilm::shownMs(const QRect &content) {
    // A row that nothing of the page lies over.
    const int y = content.top() + 2 * content.height() / 5;
    const QImage row =
        QGuiApplication::primaryScreen()->grabWindow(0, content.left(), y, content.width(), 1).toImage();
    int number = 0;
    for (int bar = 0; bar < frameBars; ++bar) {
        const int x = (2 * bar + 1) * content.width() / (2 * frameBars);
        number = 2 * number + (row.pixelColor(x, 0).lightness() > 127 ? 1 : 0);
    }
    return (number + 0.5) * frameMs;
}

} // namespace murvo::test
