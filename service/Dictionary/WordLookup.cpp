// SPDX-License-Identifier: GPL-3.0-or-later
#include "Dictionary/WordLookup.h"

#include "Dictionary/EntryOrder.h"

#include <algorithm>
#include <limits>

namespace murvo::service {

namespace {

constexpr std::size_t mostEntries = 12;
constexpr std::size_t mostSenses = 12; // of an entry
constexpr std::size_t mostSensesOfAPart = 6;
constexpr qsizetype mostNear = 6;
constexpr int oftenerThanAll = 1'000'000; // WordNet met "be" 10,000 times
constexpr std::size_t wordsAround = 12;
constexpr qsizetype longestMisspelt = 24;

// All that one wrong, missing, needless or exchanged letter makes of a word.
QList<QByteArray> misspelt(const QByteArray &form) {
    QList<QByteArray> words;
    for (qsizetype at = 0; at <= form.size(); ++at) {
        for (char letter = 'a'; letter <= 'z'; ++letter) {
            words.append(QByteArray(form).insert(at, letter));
            if (at < form.size())
                words.append(QByteArray(form).replace(at, 1, QByteArray(1, letter)));
        }
        if (at < form.size())
            words.append(QByteArray(form).remove(at, 1));
        if (at + 1 < form.size()) {
            QByteArray word = form;
            std::swap(word[at], word[at + 1]);
            words.append(word);
        }
    }
    return words;
}

// Takes out of an entry the translations that have been said already.
void leaveOut(const QStringList &said, Entry &entry) {
    for (Sense &sense : entry.senses)
        sense.translations.removeIf(
            [&said](const QString &word) { return said.contains(word, Qt::CaseInsensitive); });
    std::erase_if(entry.senses, [](const Sense &sense) { return sense.translations.isEmpty(); });
}

bool tellsAnything(const Headword &headword) {
    return !headword.entries.empty() || !headword.english.empty() || !headword.gloss.isEmpty();
}

// What is a word by itself comes before those that it can be a form of; what is a form only, after them.
QStringList candidatesOf(const QString &form, const QStringList &lemmas, bool isWordItself) {
    QStringList candidates = lemmas;
    if (isWordItself)
        candidates.prepend(form);
    else
        candidates.append(form);
    candidates.removeDuplicates();
    return candidates;
}

// A click on "3" in "3 dogs" does not mean the dogs.
bool isOtherWord(const QString &text, int at, int wordStart) {
    return at < wordStart && text[at].isLetterOrNumber();
}

/// The part of a compound ("six-year-old") at that place of it, and where it begins.
EnglishWord partAt(const EnglishWord &compound, int at) {
    int start = 0;
    const QStringList parts = compound.form.split(u'-');
    for (const QString &part : parts) {
        const int end = start + static_cast<int>(part.size());
        if (at <= compound.start + end || &part == &parts.last())
            return {compound.start + start, static_cast<int>(part.size()), part};
        start = end + 1;
    }
    return compound;
}

// Whether two words that follow each other are of one sentence, and of one speaker.
bool areTogether(const QString &text, const EnglishWord &word, const EnglishWord &next) {
    const qsizetype end = word.start + word.length;
    const QStringView between = QStringView(text).sliced(end, next.start - end);
    return std::none_of(between.begin(), between.end(),
                        [](QChar sign) { return QStringView(u".!?:;\u2026\u2013\u2014").contains(sign); }) &&
           !between.contains(QStringLiteral("\n-"));
}

// The clicked word with those around it in its sentence, and its place among them.
std::vector<EnglishWord> wordsNear(const QString &text, const std::vector<EnglishWord> &words,
                                   std::size_t &clicked) {
    std::size_t first = clicked;
    while (first > 0 && clicked - first < wordsAround && areTogether(text, words[first - 1], words[first]))
        --first;
    std::size_t end = clicked + 1;
    while (end < words.size() && end - clicked <= wordsAround &&
           areTogether(text, words[end - 1], words[end]))
        ++end;
    clicked -= first;
    return {words.begin() + static_cast<std::ptrdiff_t>(first),
            words.begin() + static_cast<std::ptrdiff_t>(end)};
}

} // namespace

bool WordLookup::isKnown(const QString &word, const QString &language) {
    const auto &dictionaries = _dictionaries.of(language);
    return _wordNet.has(word.toUtf8()) ||
           std::any_of(dictionaries.begin(), dictionaries.end(),
                       [&word](const auto &dictionary) { return dictionary->has(word); });
}

QHash<QString, int> WordLookup::timesMet(const QString &word) const {
    QHash<QString, int> times;
    for (const PartOfSpeech part : partsOfSpeech)
        times.insert(nameOf(part), _wordNet.timesMet(word.toUtf8(), part));
    int next = oftenerThanAll;
    for (const EnglishSense &sense : _functionWords.senses(word))
        times[sense.partOfSpeech] = next--;
    return times;
}

std::vector<SourcedEntry> WordLookup::entries(const QString &word, const QString &language,
                                              const TimesMet &times) {
    const Dictionaries::List &dictionaries = _dictionaries.of(language);
    std::vector<std::vector<Entry>> ofEach;
    ofEach.reserve(dictionaries.size());
    for (const auto &dictionary : dictionaries)
        ofEach.push_back(dictionary->entries(word));

    SenseOrder order{{},
                     times(nameOf(PartOfSpeech::Verb)) >
                         times(nameOf(PartOfSpeech::Noun)) + times(nameOf(PartOfSpeech::Adjective)),
                     language};
    for (std::size_t i = 0; i < dictionaries.size(); ++i) {
        if (dictionaries[i]->isReversed())
            order.likely += likelyTranslations(ofEach[i], times);
    }
    std::vector<SourcedEntry> found;
    QStringList said;
    for (std::size_t i = 0; i < dictionaries.size(); ++i) {
        const bool isReversed = dictionaries[i]->isReversed();
        if (!isReversed || tellsParts(ofEach[i]))
            orderEntries(ofEach[i], times, language);
        for (Entry &entry : ofEach[i]) {
            if (isReversed)
                leaveOut(said, entry);
            else if (entry.partOfSpeech.isEmpty())
                orderSenses(entry, order);
            if (entry.senses.empty() || found.size() == mostEntries)
                continue;
            entry.senses.resize(std::min(entry.senses.size(), mostSenses)); // the likeliest are first now
            if (!isReversed)
                said += translationsOf(entry);
            found.push_back({std::move(entry), &dictionaries[i]->source()});
        }
    }
    return found;
}

std::vector<EnglishSense> WordLookup::senses(const QString &word, const TimesMet &times) const {
    std::array parts = partsOfSpeech;
    std::stable_sort(parts.begin(), parts.end(), [&times](PartOfSpeech left, PartOfSpeech right) {
        return times(nameOf(left)) > times(nameOf(right));
    });
    std::vector<EnglishSense> found = _functionWords.senses(word);
    for (const PartOfSpeech part : parts) {
        for (WordNetSense &sense : _wordNet.senses(word.toUtf8(), part, mostSensesOfAPart))
            found.push_back({nameOf(part), std::move(sense.definition), std::move(sense.examples),
                             std::move(sense.synonyms), std::move(sense.antonyms)});
    }
    return found;
}

Headword WordLookup::headword(const QString &word, const QString &language, const Glosses &glosses) {
    const TimesMet times = [ofPart = timesMet(word)](const QString &part) { return ofPart.value(part); };
    Headword found;
    found.word = word;
    found.rank = _english.rank(word);
    found.gloss = glosses.value(word);
    found.entries = entries(word, language, times);
    found.english = senses(word, times);
    return found;
}

QStringList WordLookup::near(const QString &form) const {
    const QByteArray lower = form.toLower().toUtf8();
    if (lower.size() > longestMisspelt || lower.size() < 3)
        return {};
    std::vector<std::pair<int, QString>> found;
    for (const QByteArray &word : misspelt(lower)) {
        if (!_wordNet.has(word))
            continue;
        const QString text = QString::fromUtf8(word);
        const int rank = _english.rank(text);
        found.emplace_back(rank == 0 ? std::numeric_limits<int>::max() : rank, text);
    }
    std::sort(found.begin(), found.end());
    QStringList words;
    for (const auto &[rank, word] : found) {
        if (!words.contains(word) && words.size() < mostNear)
            words.append(word);
    }
    return words;
}

void WordLookup::addWord(LookedUp &found, const EnglishWord &word, const QString &language,
                         const Glosses &glosses) {
    const QString form = word.form.toLower();
    const QStringList lemmas = _english.lemmas(form);
    const bool isWordItself = lemmas.contains(form) || !_functionWords.senses(form).empty();
    for (const QString &candidate : candidatesOf(form, lemmas, isWordItself)) {
        Headword entry = headword(candidate, language, glosses);
        entry.start = word.start;
        entry.length = word.length;
        if (tellsAnything(entry))
            found.headwords.push_back(std::move(entry));
    }
}

LookedUp WordLookup::lookUp(const QString &text, int at, const QString &language, const Glosses &glosses) {
    LookedUp found;
    found.hasDictionary = !_dictionaries.of(language).empty();
    const std::vector<EnglishWord> all = englishWords(text);
    const auto clickedWord = std::find_if(
        all.begin(), all.end(), [at](const EnglishWord &word) { return at < word.start + word.length; });
    if (clickedWord == all.end() || isOtherWord(text, at, clickedWord->start))
        return found;
    auto clicked = static_cast<std::size_t>(clickedWord - all.begin());
    const std::vector<EnglishWord> words = wordsNear(text, all, clicked);
    const EnglishWord &word = words[clicked];
    found.form = word.form;
    found.whole = uncontracted(word.form);
    found.lemmas = _english.lemmas(word.form);

    const auto isPhraseKnown = [&](const QString &phrase) {
        return glosses.contains(phrase) || isKnown(phrase, language);
    };
    if (const std::optional<Phrase> phrase = longestPhrase(words, clicked, _english, isPhraseKnown)) {
        Headword entry = headword(phrase->headword, language, glosses);
        entry.start = phrase->start;
        entry.length = phrase->length;
        entry.isPhrase = true;
        if (tellsAnything(entry))
            found.headwords.push_back(std::move(entry));
    }
    addWord(found, word, language, glosses);
    if (found.headwords.empty() && word.form.contains(u'-'))
        addWord(found, partAt(word, at), language, glosses);
    std::stable_partition(found.headwords.begin(), found.headwords.end(),
                          [](const Headword &each) { return each.isPhrase || !each.gloss.isEmpty(); });
    if (found.headwords.empty())
        found.near = near(word.form);
    return found;
}

} // namespace murvo::service
