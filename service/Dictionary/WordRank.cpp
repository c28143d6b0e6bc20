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
    std::uint32_t rank = 0;
    for (std::size_t at = text.find_first_not_of(lineEnds); at != std::string_view::npos;
         at = text.find_first_not_of(lineEnds, std::min(text.find_first_of(lineEnds, at), text.size())))
        _words.push_back({static_cast<std::uint32_t>(at), ++rank});
    std::stable_sort(_words.begin(), _words.end(),
                     [this](const Word &left, const Word &right) { return textOf(left) < textOf(right); });
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

std::string_view WordRank::textOf(const Word &word) const {
    const std::string_view rest(_text.constData() + word.start,
                                static_cast<std::size_t>(_text.size()) - word.start);
    return rest.substr(0, rest.find_first_of(lineEnds));
}

int WordRank::of(const QString &word) const {
    const QByteArray bytes = word.toUtf8();
    const std::string_view wanted(bytes.constData(), static_cast<std::size_t>(bytes.size()));
    const auto found =
        std::lower_bound(_words.begin(), _words.end(), wanted,
                         [this](const Word &each, std::string_view other) { return textOf(each) < other; });
    return found != _words.end() && textOf(*found) == wanted ? static_cast<int>(found->rank) : 0;
}

} // namespace murvo::service
