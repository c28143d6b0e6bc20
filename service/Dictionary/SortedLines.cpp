// SPDX-License-Identifier: GPL-3.0-or-later
#include "Dictionary/SortedLines.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace murvo::service {

namespace {

// Line starts are held in 32 bits; no dictionary's index comes near.
constexpr qint64 largestFile = std::numeric_limits<std::uint32_t>::max();

} // namespace

SortedLines::SortedLines(const QString &path, char separator)
    : _file(path)
    , _separator(separator) {
    if (!_file.open(QIODevice::ReadOnly) || _file.size() == 0 || _file.size() > largestFile)
        return;
    if (const uchar *bytes = _file.map(0, _file.size()))
        _text = {reinterpret_cast<const char *>(bytes), static_cast<std::size_t>(_file.size())};
}

SortedLines::SortedLines(QByteArray lines, char separator)
    : _own(std::move(lines))
    , _separator(separator)
    , _text(_own.constData(), static_cast<std::size_t>(_own.size())) {}

std::string_view SortedLines::keyOf(std::string_view line) const {
    return line.substr(0, line.find(_separator));
}

std::string_view SortedLines::lineAt(std::size_t start) const {
    const std::string_view rest = _text.substr(start);
    return rest.substr(0, rest.find('\n'));
}

std::size_t SortedLines::lineStart(std::size_t within) const {
    const auto *end = static_cast<const char *>(::memrchr(_text.data(), '\n', within));
    return end == nullptr ? 0 : static_cast<std::size_t>(end - _text.data()) + 1;
}

// The start of the first line whose key is not below the given one; the place of it when there is an order.
std::size_t SortedLines::lowerBound(std::string_view key) const {
    if (!_order.empty()) {
        const auto found = std::lower_bound(
            _order.begin(), _order.end(), key,
            [this](std::uint32_t start, std::string_view wanted) { return keyOf(lineAt(start)) < wanted; });
        return static_cast<std::size_t>(found - _order.begin());
    }
    std::size_t low = 0;
    std::size_t high = _text.size();
    while (low < high) {
        const std::size_t start = std::max(low, lineStart(low + (high - low) / 2));
        const std::string_view line = lineAt(start);
        if (keyOf(line) < key)
            low = start + line.size() + 1;
        else
            high = start;
    }
    return std::min(low, _text.size());
}

std::vector<std::string_view> SortedLines::find(std::string_view key) const {
    std::vector<std::string_view> lines;
    std::size_t at = lowerBound(key);
    const std::size_t end = _order.empty() ? _text.size() : _order.size();
    while (at < end) {
        const std::string_view line = lineAt(_order.empty() ? at : _order[at]);
        if (keyOf(line) != key)
            break;
        lines.push_back(line);
        at += _order.empty() ? line.size() + 1 : 1;
    }
    return lines;
}

void SortedLines::makeSorted() {
    std::vector<std::uint32_t> starts;
    std::string_view last;
    bool isSorted = true;
    each([&](std::string_view key, std::string_view line) {
        isSorted = isSorted && last <= key;
        last = key;
        starts.push_back(static_cast<std::uint32_t>(line.data() - _text.data()));
    });
    if (isSorted)
        return;
    std::stable_sort(starts.begin(), starts.end(), [this](std::uint32_t left, std::uint32_t right) {
        return keyOf(lineAt(left)) < keyOf(lineAt(right));
    });
    _order = std::move(starts);
}

} // namespace murvo::service
