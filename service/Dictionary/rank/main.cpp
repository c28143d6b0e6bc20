// SPDX-License-Identifier: GPL-3.0-or-later
// Writes the list of English words by use that the program carries; run while the program is built.

#include "Dictionary/DictdDictionary.h"
#include "Dictionary/English.h"
#include "Dictionary/WordNet.h"
#include "Dictionary/rank/WordScores.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QSaveFile>

#include <iostream>
#include <stdexcept>

using namespace murvo::service;

namespace {

// Further down words differ by what a few sentences happened to hold.
constexpr std::size_t mostWords = 20'000;
constexpr qsizetype fewestWords = 15'000;

std::runtime_error failure(const char *what, const QString &path) {
    return std::runtime_error(QString(QLatin1String(what)).arg(path).toStdString());
}

std::unique_ptr<DictdDictionary> opened(const QString &path) {
    auto dictionary = std::make_unique<DictdDictionary>(path);
    if (!dictionary->isOpen())
        throw failure("The dictionary %1 cannot be opened.", path);
    dictionary->makeSorted();
    return dictionary;
}

QSet<QByteArray> wordsOf(const QString &path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw failure("The list %1 cannot be opened.", path);
    QSet<QByteArray> words;
    while (!file.atEnd()) {
        const QByteArray line = file.readLine();
        if (!line.startsWith('#'))
            for (const QByteArray &word : line.simplified().split(' '))
                words.insert(word);
    }
    return words;
}

void writeList(const QString &path, const QList<QByteArray> &words) {
    if (words.size() < fewestWords)
        throw failure("Only %1 words were found.", QString::number(words.size()));
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(words.join('\n') + '\n') < 0 || !file.commit())
        throw failure("%1 cannot be written.", path);
}

void make(const QCommandLineParser &options) {
    const WordNet wordNet(options.value(QStringLiteral("wordnet")));
    if (!wordNet.isThere())
        throw std::runtime_error("WordNet is not there.");
    const English english(wordNet);
    const SpellingLists spelling(options.value(QStringLiteral("spelling")));
    const std::vector<SaidForm> said = readSpeechModel(options.value(QStringLiteral("speech")));
    ExampleSentences examples;
    for (const QString &path : options.values(QStringLiteral("examples")))
        examples.add(*opened(path));
    std::vector<std::unique_ptr<DictdDictionary>> small;
    for (const QString &path : options.values(QStringLiteral("small")))
        small.push_back(opened(path));
    const QSet<QByteArray> notOnlyNames = wordsOf(options.value(QStringLiteral("words")));
    const WordScores scores({english, wordNet, spelling, said, examples, small, notOnlyNames});
    writeList(options.value(QStringLiteral("out")), scores.byUse(mostWords));
}

} // namespace

int main(int argc, char **argv) {
    const QCoreApplication application(argc, argv);
    QCommandLineParser options;
    const auto add = [&options](const char *name, const char *meaning) {
        options.addOption({QString::fromLatin1(name), QString::fromLatin1(meaning), QStringLiteral("PATH")});
    };
    add("out", "The list to be written.");
    add("wordnet", "The folder of WordNet's files.");
    add("spelling", "The folder of SCOWL's lists.");
    add("speech", "A language model of spoken English.");
    add("examples", "A dictionary with example sentences, without its endings; several times.");
    add("small", "A dictionary of the common words, without its endings; several times.");
    add("words", "Words that count although the lists have them as names or not at all.");
    options.addHelpOption();
    options.process(application);
    try {
        make(options);
    } catch (const std::exception &error) {
        std::cerr << "make_word_rank: " << error.what() << '\n';
        return 1;
    }
    return 0;
}
