// SPDX-License-Identifier: GPL-3.0-or-later
#include "Dictionary/Dictionaries.h"

#include "Dictionary/DictdDictionary.h"
#include "Dictionary/FreeDictEntry.h"
#include "Dictionary/MuellerEntry.h"
#include "Dictionary/ReversedDictionary.h"
#include "Languages.h"
#include "Log.h"

#include <QFileInfo>

#include <algorithm>

namespace murvo::service {

namespace {

constexpr qsizetype longestLicence = 600;
constexpr std::size_t mostExamples = 5;
// Larger ones into English belong to languages with a large one from English, too, and would fill the memory.
constexpr qint64 largestReversedIndex = qint64{4} * 1024 * 1024;

// The paragraph of the makers' information that says how the dictionary may be used, or whose it is.
QString licenceIn(const QString &information) {
    const QString heading = QStringLiteral("Availability:");
    const qsizetype said = information.indexOf(heading);
    const qsizetype owned = information.indexOf(QStringLiteral("(C)"));
    if (said < 0 && owned < 0)
        return {};
    return information.mid(said < 0 ? owned : said + heading.size())
        .trimmed()
        .section(QStringLiteral("\n\n"), 0, 0)
        .simplified()
        .left(longestLicence);
}

DictionarySource sourceOf(const DictdDictionary &dictionary) {
    return {dictionary.shortName(), licenceIn(dictionary.information())};
}

using EntryReader = std::vector<Entry> (*)(const DictdDictionary &dictionary, const QString &word);

std::vector<Entry> allFreeDictEntries(const DictdDictionary &dictionary, const QString &word,
                                      bool ofPhrases) {
    std::vector<Entry> entries;
    for (const QString &text : dictionary.entries(word)) {
        const QStringList sections = sectionsOf(text);
        for (const QString &section : sections) {
            Entry entry = readFreeDictEntry(section);
            const bool isPhrase =
                sections.size() > 1 && entry.headword.contains(u' ') && !word.contains(u' ');
            if (isPhrase == ofPhrases && !entry.senses.empty())
                entries.push_back(std::move(entry));
        }
    }
    return entries;
}

// Some have phrases under their first words only.
std::vector<Entry> freeDictEntries(const DictdDictionary &dictionary, const QString &word) {
    std::vector<Entry> entries = allFreeDictEntries(dictionary, word, false);
    if (entries.empty() && word.contains(u' ')) {
        entries = allFreeDictEntries(dictionary, word.section(u' ', 0, 0), true);
        std::erase_if(entries, [&word](const Entry &entry) {
            return entry.headword.compare(word, Qt::CaseInsensitive) != 0;
        });
    }
    return withBareOnesJoined(withoutCutHeadwords(std::move(entries)));
}

std::vector<Entry> allMuellerEntries(const DictdDictionary &dictionary, const QString &word) {
    std::vector<Entry> entries;
    for (const QString &text : dictionary.entries(word)) {
        for (Entry &entry : readMuellerEntries(text))
            entries.push_back(std::move(entry));
    }
    return entries;
}

// Its phrases stand under their first words, as examples; of these a sense has dozens.
std::vector<Entry> muellerEntries(const DictdDictionary &dictionary, const QString &word) {
    std::vector<Entry> entries = allMuellerEntries(dictionary, word);
    if (entries.empty() && word.contains(u' ')) {
        Entry phrase = muellerPhrase(allMuellerEntries(dictionary, word.section(u' ', 0, 0)), word);
        if (!phrase.senses.empty())
            entries.push_back(std::move(phrase));
    }
    for (Entry &entry : entries) {
        for (Sense &sense : entry.senses)
            sense.examples.resize(std::min(sense.examples.size(), mostExamples));
    }
    return entries;
}

/// A dictionary from English, read entry by entry.
class DirectDictionary : public BilingualDictionary {
  public:
    DirectDictionary(std::unique_ptr<DictdDictionary> dictionary, EntryReader reader)
        : BilingualDictionary(sourceOf(*dictionary))
        , _dictionary(std::move(dictionary))
        , _reader(reader) {}

    [[nodiscard]] std::vector<Entry> entries(const QString &word) const override {
        return _reader(*_dictionary, word);
    }
    [[nodiscard]] bool has(const QString &word) const override { return _dictionary->has(word); }
    [[nodiscard]] bool isReversed() const override { return false; }

  private:
    std::unique_ptr<DictdDictionary> _dictionary;
    EntryReader _reader;
};

void addDirect(Dictionaries::List &list, const QString &path, EntryReader reader) {
    auto dictionary = std::make_unique<DictdDictionary>(path);
    dictionary->makeSorted();
    if (dictionary->isOpen())
        list.push_back(std::make_unique<DirectDictionary>(std::move(dictionary), reader));
}

void addReversed(Dictionaries::List &list, const QString &path) {
    DictdDictionary dictionary(path);
    dictionary.makeSorted();
    if (!dictionary.isOpen() || QFileInfo(path + QStringLiteral(".index")).size() > largestReversedIndex)
        return;
    DictionarySource source = sourceOf(dictionary);
    source.name += QStringLiteral(", read backwards");
    list.push_back(std::make_unique<ReversedDictionary>(path, std::move(source)));
}

} // namespace

Dictionaries::Dictionaries(const QString &folder)
    : _folder(folder) {}

const Dictionaries::List &Dictionaries::of(const QString &language) {
    const QString known = findLanguage(language) == nullptr ? QString() : language;
    const std::lock_guard lock(_mutex);
    const auto opened = _byLanguage.find(known);
    return opened != _byLanguage.end() ? opened->second
                                       : _byLanguage.emplace(known, open(known)).first->second;
}

bool Dictionaries::areThere(const QString &language) const {
    const auto indexBytes = [this](const QString &name) {
        return QFileInfo(_folder + u'/' + name + QStringLiteral(".index")).size();
    };
    const qint64 reversedBytes = indexBytes(QStringLiteral("freedict-%1-eng").arg(language));
    return indexBytes(QStringLiteral("freedict-eng-") + language) > 0 ||
           (language == QStringLiteral("rus") && indexBytes(QStringLiteral("mueller7")) > 0) ||
           (reversedBytes > 0 && reversedBytes <= largestReversedIndex);
}

Dictionaries::List Dictionaries::open(const QString &language) const {
    List list;
    if (language.isEmpty())
        return list;
    addDirect(list, _folder + QStringLiteral("/freedict-eng-") + language, freeDictEntries);
    if (language == QStringLiteral("rus"))
        addDirect(list, _folder + QStringLiteral("/mueller7"), muellerEntries);
    addReversed(list, _folder + QStringLiteral("/freedict-%1-eng").arg(language));
    return list;
}

void Dictionaries::prepare(const std::function<QString()> &language) {
    _preparing.start([this, language](const std::atomic<bool> &) {
        try {
            std::ignore = of(language());
        } catch (const std::exception &failure) {
            qCWarning(serviceLog) << "Dictionaries are opened at the first click only:" << failure.what();
        }
    });
}

} // namespace murvo::service
