// SPDX-License-Identifier: GPL-3.0-or-later
#include "Dictionary/WordRank.h"

#include <QFile>

#include <algorithm>
#include <utility>

namespace murvo::service {

namespace {

constexpr std::string_view lineEnds = "\r\n";

} // namespace

WordRank::WordRank(QByteArray list)
    : _text(std::move(list)) {
    const std::string_view text(_text.constData(), static_cast<std::size_t>(_text.size()));
    for (std::size_t at = text.find_first_not_of(lineEnds); at != std::string_view::npos;) {
        const std::size_t end = std::min(text.find_first_of(lineEnds, at), text.size());
        _words.push_back({static_cast<std::uint32_t>(at), static_cast<std::uint32_t>(end - at),
                          static_cast<int>(_words.size()) + 1});
        at = text.find_first_not_of(lineEnds, end);
    }
    const auto order = [this](const Word &word) { return std::pair(textOf(word), word.rank); };
    std::sort(_words.begin(), _words.end(),
              [&order](const Word &left, const Word &right) { return order(left) < order(right); });
    const auto end = std::unique(_words.begin(), _words.end(), [this](const Word &left, const Word &right) {
        return textOf(left) == textOf(right);
    });
    _words.erase(end, _words.end());
    _words.shrink_to_fit();
}

WordRank WordRank::ofProgram() {
    QFile list(QStringLiteral(":/murvo/words/by-use.txt"));
    return list.open(QIODevice::ReadOnly) ? WordRank(list.readAll()) : WordRank();
}

int WordRank::of(const QString &word) const {
    const QByteArray bytes = word.toUtf8();
    const std::string_view wanted(bytes.constData(), static_cast<std::size_t>(bytes.size()));
    const auto found =
        std::lower_bound(_words.begin(), _words.end(), wanted,
                         [this](const Word &each, std::string_view other) { return textOf(each) < other; });
    return found != _words.end() && textOf(*found) == wanted ? found->rank : 0;
}

} // namespace murvo::service
