// SPDX-License-Identifier: GPL-3.0-or-later
#include "Dictionary/ReversedDictionary.h"

#include "Dictionary/FreeDictEntry.h"
#include "Log.h"

#include <algorithm>
#include <tuple>

namespace murvo::service {

namespace {

constexpr qsizetype mostHeadwords = 8;
constexpr qsizetype mostSynonyms = 4;
constexpr qsizetype mostWordsOfAKey = 5;
constexpr qsizetype longestKey = 60;
// No more are kept of one key than would be read.
constexpr int mostEntriesOfAKey = 10;
// A click is answered without the reversed dictionary rather than late.
// A click without it would get the wrong answer, and a card keep it. The slowest takes three.
constexpr std::chrono::seconds longestWait{5};

// Takes the remarks in brackets out of a text and returns them.
QString takeRemarks(QString &text) {
    QString bare;
    QString remarks;
    int depth = 0;
    for (const QChar sign : text) {
        const bool opens = QStringView(u"([{<").contains(sign);
        const bool closes = QStringView(u")]}>").contains(sign);
        depth += opens ? 1 : 0;
        if (depth == 0)
            bare += sign;
        else
            remarks += opens || closes ? QChar(u' ') : sign;
        depth -= closes && depth > 0 ? 1 : 0;
    }
    text = bare.simplified();
    return remarks.simplified();
}

/// The English words of all entries, each with how well the entry's headword translates it.
class KeysOfEntries {
  public:
    void add(const Entry &entry, const DictdDictionary::Place &place);
    /// As lines of a dictd index; under each key the best come first.
    [[nodiscard]] QByteArray index();

  private:
    struct Key {
        std::uint32_t start = 0; ///< in _text
        std::uint16_t length = 0;
        std::uint16_t weight = 0; ///< the less, the better
        DictdDictionary::Place place;
    };
    [[nodiscard]] std::string_view text(const Key &key) const {
        return {_text.constData() + key.start, key.length};
    }

    QByteArray _text; ///< of all keys, one behind the other
    std::vector<Key> _keys;
};

// A headword that means only this is likelier the word for it than one that means other things, too; a phrase
// less so than a word. Of equal ones a short word is likelier: it is used more.
void KeysOfEntries::add(const Entry &entry, const DictdDictionary::Place &place) {
    constexpr qsizetype lettersOfADoubt = 3;
    constexpr qsizetype mostLetters = 20;
    qsizetype all = 0;
    for (const Sense &sense : entry.senses)
        all += sense.translations.size();
    const qsizetype ofHeadword = (all > 3 ? 2 : all > 1 ? 1 : 0) + 2 * entry.headword.count(u' ');
    qsizetype earlier = 0;
    for (const Sense &sense : entry.senses) {
        for (const QString &translation : sense.translations) {
            const EnglishKeys english = englishKeys(translation);
            const qsizetype doubts =
                ofHeadword + std::min<qsizetype>(earlier, 2) + (english.remark.isEmpty() ? 0 : 1);
            const qsizetype weight = lettersOfADoubt * doubts + std::min(entry.headword.size(), mostLetters);
            for (const QByteArray &key : english.keys) {
                _keys.push_back({static_cast<std::uint32_t>(_text.size()),
                                 static_cast<std::uint16_t>(key.size()), static_cast<std::uint16_t>(weight),
                                 place});
                _text += key;
            }
        }
        ++earlier;
    }
}

QByteArray KeysOfEntries::index() {
    std::sort(_keys.begin(), _keys.end(), [this](const Key &left, const Key &right) {
        return std::make_tuple(text(left), left.weight, left.place.offset) <
               std::make_tuple(text(right), right.weight, right.place.offset);
    });
    QByteArray lines;
    std::string_view last;
    int ofKey = 0;
    for (const Key &key : _keys) {
        ofKey = last == text(key) ? ofKey + 1 : 1;
        last = text(key);
        if (ofKey <= mostEntriesOfAKey)
            lines += DictdDictionary::indexLine(QByteArray(last.data(), key.length), key.place);
    }
    lines.squeeze();
    return lines;
}

Entry &entryOfPart(std::vector<Entry> &entries, const QString &word, const QString &part) {
    for (Entry &entry : entries) {
        if (entry.partOfSpeech == part)
            return entry;
    }
    entries.push_back({word, {}, part, {}});
    return entries.back();
}

// Senses about which nothing more is known are one.
void addSense(Entry &entry, Sense sense) {
    const auto isBare = [](const Sense &each) {
        return each.definition.isEmpty() && each.synonyms.isEmpty();
    };
    const auto bare = std::find_if(entry.senses.begin(), entry.senses.end(), isBare);
    if (isBare(sense) && bare != entry.senses.end())
        bare->translations += sense.translations;
    else
        entry.senses.push_back(std::move(sense));
}

bool haveCommon(const QList<QByteArray> &some, const QList<QByteArray> &others) {
    return std::any_of(some.begin(), some.end(),
                       [&others](const QByteArray &each) { return others.contains(each); });
}

} // namespace

EnglishKeys englishKeys(const QString &translation) {
    EnglishKeys found;
    QString text = translation;
    text.replace(QChar(0x2019), u'\'').replace(QChar(0x2010), u'-').replace(QChar(0x2011), u'-');
    found.isVerb = text.startsWith(QStringLiteral("(to) "));
    found.remark = takeRemarks(text);
    if (found.isVerb)
        found.remark.clear();
    text = text.toLower();
    while (!text.isEmpty() && QStringView(u".!?:;\"").contains(text.back()))
        text = text.chopped(1).trimmed();
    if (text.startsWith(QStringLiteral("to ")) && text.size() > 3) {
        found.isVerb = true;
        text = text.sliced(3);
    }
    const bool isWord =
        std::any_of(text.begin(), text.end(), [](QChar sign) { return sign >= u'a' && sign <= u'z'; });
    if (!isWord || text.size() > longestKey || text.count(u' ') >= mostWordsOfAKey)
        return found;
    for (const QString &article : {QStringLiteral("a "), QStringLiteral("an "), QStringLiteral("the ")}) {
        if (text.startsWith(article))
            found.keys.append(text.sliced(article.size()).toUtf8());
    }
    found.keys.append(text.toUtf8());
    return found;
}

ReversedDictionary::ReversedDictionary(const QString &path, DictionarySource source)
    : BilingualDictionary(std::move(source))
    , _gathering([this, path](const std::stop_token &stop) { gather(path, stop); }) {}

ReversedDictionary::~ReversedDictionary() = default;

void ReversedDictionary::gather(const QString &path, const std::stop_token &stop) {
    try {
        KeysOfEntries keys;
        DictdDictionary(path).eachEntry([&](const DictdDictionary::Place &place, const QString &text) {
            keys.add(readFreeDictEntry(text, Translations::English), place);
            return !stop.stop_requested();
        });
        auto index = std::make_unique<DictdDictionary>(path, keys.index());
        const std::lock_guard lock(_mutex);
        _byEnglish = std::move(index);
    } catch (const std::exception &failure) { // no memory: the other dictionaries answer
        qCWarning(serviceLog) << "A dictionary cannot be read backwards:" << path << failure.what();
    }
    _gathered.notify_all();
}

bool ReversedDictionary::waitUntil(std::chrono::steady_clock::time_point latest) const {
    std::unique_lock lock(_mutex);
    return _gathered.wait_until(lock, latest, [this] { return _byEnglish != nullptr; });
}

const DictdDictionary *ReversedDictionary::index() const {
    return waitUntil(_began + longestWait) ? _byEnglish.get() : nullptr;
}

bool ReversedDictionary::has(const QString &word) const {
    const DictdDictionary *byEnglish = index();
    return byEnglish != nullptr && byEnglish->has(word);
}

std::vector<Entry> ReversedDictionary::entries(const QString &word) const {
    std::vector<Entry> found;
    const DictdDictionary *byEnglish = index();
    if (byEnglish == nullptr)
        return found;
    const QList<QByteArray> wanted = dictionaryKeys(word);
    QStringList headwords;
    for (const QString &text : byEnglish->entries(word)) {
        const Entry entry = readFreeDictEntry(text, Translations::English);
        for (const Sense &sense : entry.senses) {
            QStringList others;
            std::optional<EnglishKeys> own;
            for (const QString &translation : sense.translations) {
                const EnglishKeys english = englishKeys(translation);
                if (haveCommon(english.keys, wanted))
                    own = english;
                else if (others.size() < mostSynonyms)
                    others.append(translation);
            }
            if (!own || headwords.contains(entry.headword) || headwords.size() == mostHeadwords)
                continue;
            headwords.append(entry.headword);
            const bool isVerb = entry.partOfSpeech.isEmpty() && own->isVerb;
            const QString part = isVerb ? QStringLiteral("verb") : entry.partOfSpeech;
            const QString remark = own->remark.isEmpty() ? sense.definition : own->remark;
            addSense(entryOfPart(found, word, part), {{entry.headword}, remark, {}, others});
        }
    }
    return found;
}

} // namespace murvo::service
