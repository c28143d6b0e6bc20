// SPDX-License-Identifier: GPL-3.0-or-later
// How fast words are looked up and how many of a list get an answer: dictionary_bench LANGUAGE WORDS, a file
// of one word a line, the commonest first; a folder of dictionaries after that, if not the installed ones.

#include "Dictionary/ReversedDictionary.h"
#include "Dictionary/WordLookup.h"

#include <QFile>
#include <QTextStream>

#include <algorithm>
#include <chrono>
#include <vector>

using namespace murvo::service;

namespace {

constexpr qsizetype mostWords = 3000;

double millisecondsOf(const auto &work) {
    const auto before = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - before).count();
}

qint64 memoryKilobytes(const char *kind) {
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    const QByteArray text = status.readAll();
    const qsizetype at = text.indexOf(kind);
    return at < 0 ? -1 : text.mid(at).split('\n').first().simplified().split(' ').value(1).toLongLong();
}

bool hasTranslation(const LookedUp &found) {
    return std::any_of(found.headwords.begin(), found.headwords.end(),
                       [](const Headword &headword) { return !headword.entries.empty(); });
}

} // namespace

int main(int argc, char **argv) {
    QTextStream out(stdout);
    QFile list(QString::fromLocal8Bit(argc >= 3 ? argv[2] : ""));
    if (!list.open(QIODevice::ReadOnly)) {
        out << "Usage: dictionary_bench LANGUAGE WORDS [FOLDER]\n";
        return 2;
    }
    const QString language = QString::fromLatin1(argv[1]);
    const QStringList words =
        QString::fromUtf8(list.readAll()).split(u'\n', Qt::SkipEmptyParts).mid(0, mostWords);

    const QString folder = argc == 4 ? QString::fromLocal8Bit(argv[3]) : QStringLiteral("/usr/share/dictd");
    const qint64 before = memoryKilobytes("VmRSS:");
    std::unique_ptr<WordNet> wordNet;
    std::unique_ptr<English> english;
    std::unique_ptr<Dictionaries> dictionaries;
    const double opened = millisecondsOf([&] {
        wordNet = std::make_unique<WordNet>(QStringLiteral("/usr/share/wordnet"));
        english = std::make_unique<English>(*wordNet);
        dictionaries = std::make_unique<Dictionaries>(folder);
    });
    WordLookup lookup(*english, *wordNet, *dictionaries);
    const double first =
        millisecondsOf([&] { std::ignore = lookup.lookUp(QStringLiteral("child"), 0, language); });

    const double gathered = millisecondsOf([&] {
        for (const auto &each : dictionaries->of(language)) {
            const auto *reversed = dynamic_cast<const ReversedDictionary *>(each.get());
            if (reversed != nullptr)
                reversed->waitUntil(std::chrono::steady_clock::now() + std::chrono::minutes(1));
        }
    });
    std::vector<double> times;
    std::vector<std::pair<double, QString>> slowest;
    int plain = 0;
    int translated = 0;
    int answered = 0;
    for (const QString &word : words) {
        LookedUp found;
        times.push_back(millisecondsOf([&] { found = lookup.lookUp(word, 0, language); }));
        slowest.emplace_back(times.back(), word);
        translated += hasTranslation(found) ? 1 : 0;
        answered += found.headwords.empty() ? 0 : 1;
        const auto &all = dictionaries->of(language);
        plain += std::any_of(all.begin(), all.end(), [&word](const auto &each) { return each->has(word); });
    }
    std::sort(times.begin(), times.end());
    std::sort(slowest.begin(), slowest.end());
    const auto percentOf = [&words](int count) { return 100.0 * count / static_cast<double>(words.size()); };
    out << language << ": opened " << opened << " ms, first look-up " << first << " ms, read backwards "
        << gathered << " ms later, median " << times.at(times.size() / 2) << " ms, p99 "
        << times.at(times.size() * 99 / 100) << " ms, longest " << times.back() << " ms; " << words.size()
        << " words: index alone " << percentOf(plain) << " %, translated " << percentOf(translated)
        << " %, answered " << percentOf(answered) << " %; memory " << memoryKilobytes("VmRSS:") - before
        << " KB more, of which own " << memoryKilobytes("RssAnon:") << " KB in all\n";
    out << "slowest:";
    for (auto each = slowest.rbegin(); each < slowest.rbegin() + 40 && each != slowest.rend(); ++each)
        out << ' ' << each->second << ' ' << each->first;
    out << "\n";
    return 0;
}
