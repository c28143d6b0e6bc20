// SPDX-License-Identifier: GPL-3.0-or-later
// How near the order of English words by use is to counts from elsewhere: rank_bench COUNTS [LIST]. COUNTS is
// a file of "form count" a line; LIST another list than the program's own.

#include "Dictionary/English.h"
#include "Dictionary/WordNet.h"

#include <QFile>
#include <QTextStream>

#include <algorithm>
#include <map>
#include <vector>

using namespace murvo::service;

namespace {

/// A dictionary form and how often it was counted.
struct Counted {
    double count = 0;
    QString word;
};

// The dictionary forms of all that was counted, the commonest first.
std::vector<Counted> readCounts(QFile &file, const English &english) {
    std::map<QString, double> counts;
    QTextStream lines(&file);
    for (QString line = lines.readLine(); !line.isNull(); line = lines.readLine())
        counts[english.lemmas(line.section(u' ', 0, 0)).value(0)] += line.section(u' ', 1, 1).toDouble();
    std::vector<Counted> words;
    words.reserve(counts.size());
    for (const auto &[word, count] : counts)
        words.push_back({count, word});
    std::stable_sort(words.begin(), words.end(),
                     [](const Counted &left, const Counted &right) { return left.count > right.count; });
    return words;
}

double sumOf(const std::vector<Counted> &words, const auto &isIn) {
    double sum = 0;
    for (const Counted &each : words)
        sum += isIn(each) ? each.count : 0;
    return sum;
}

} // namespace

int main(int argc, char **argv) {
    QTextStream out(stdout);
    QFile file(QString::fromLocal8Bit(argc > 1 ? argv[1] : ""));
    if (!file.open(QIODevice::ReadOnly)) {
        out << "Usage: rank_bench COUNTS [LIST]\n";
        return 2;
    }
    const WordNet wordNet(QStringLiteral("/usr/share/wordnet"));
    QFile list(QString::fromLocal8Bit(argc > 2 ? argv[2] : ""));
    const bool isOther = argc > 2 && list.open(QIODevice::ReadOnly);
    const English english(wordNet, isOther ? WordRank(list.readAll()) : WordRank::ofProgram());
    const std::vector<Counted> words = readCounts(file, english);
    const double all = sumOf(words, [](const Counted &) { return true; });
    for (const std::size_t most : {500, 1500, 3000, 6000, 12'000}) {
        const auto isRanked = [&](const Counted &each) {
            const int rank = english.rank(each.word);
            return rank > 0 && static_cast<std::size_t>(rank) <= most;
        };
        const std::vector<Counted> first(
            words.begin(), words.begin() + static_cast<std::ptrdiff_t>(std::min(most, words.size())));
        const auto shared = std::count_if(first.begin(), first.end(), isRanked);
        out << most << " commonest: "
            << QString::number(static_cast<double>(shared) / static_cast<double>(most), 'f', 3)
            << " are in both, they cover " << QString::number(sumOf(words, isRanked) / all, 'f', 3) << " of "
            << QString::number(sumOf(first, [](const Counted &) { return true; }) / all, 'f', 3) << '\n';
    }
    out << "far behind or in no list, of the first 1500: ";
    for (std::size_t i = 0; i < std::min<std::size_t>(words.size(), 1500); ++i) {
        if (const int rank = english.rank(words[i].word); rank == 0 || rank > 6000)
            out << words[i].word << ' ' << rank << "; ";
    }
    out << '\n';
    return 0;
}
