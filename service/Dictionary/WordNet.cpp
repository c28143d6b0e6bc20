// SPDX-License-Identifier: GPL-3.0-or-later
#include "Dictionary/WordNet.h"

#include <algorithm>

namespace murvo::service {

namespace {

struct PartNames {
    const char *file;
    const char *senseNumbers; ///< as sense keys have them: an adjective may be a satellite
};

constexpr std::array<PartNames, partsOfSpeech.size()> partNames{
    PartNames{"noun", "1"}, PartNames{"verb", "2"}, PartNames{"adj", "35"}, PartNames{"adv", "4"}};

const PartNames &namesOf(PartOfSpeech partOfSpeech) {
    return partNames.at(static_cast<std::size_t>(partOfSpeech));
}

QByteArray underscored(const QByteArray &word) {
    return QByteArray(word).replace(' ', '_');
}

std::string_view view(const QByteArray &bytes) {
    return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}

QList<QByteArray> fields(std::string_view line) {
    return QByteArray::fromRawData(line.data(), static_cast<qsizetype>(line.size())).simplified().split(' ');
}

QString readable(QByteArray word) {
    word.replace('_', ' ');
    if (word.endsWith(')')) // an adjective's place: "alone(p)"
        word.truncate(word.lastIndexOf('('));
    return QString::fromUtf8(word);
}

// A gloss is definitions and quoted examples, parted by semicolons.
void readGloss(const QString &gloss, WordNetSense &sense) {
    QStringList definitions;
    bool isQuoted = false;
    for (const QString &piece : gloss.split(u'"')) {
        const QString text = piece.trimmed();
        if (isQuoted) {
            sense.examples.append(text);
        } else {
            QString bare = text;
            while (bare.endsWith(u';') || bare.endsWith(u','))
                bare = bare.chopped(1).trimmed();
            while (bare.startsWith(u';') || bare.startsWith(u','))
                bare = bare.sliced(1).trimmed();
            if (sense.examples.isEmpty() && !bare.isEmpty())
                definitions.append(bare);
        }
        isQuoted = !isQuoted;
    }
    sense.definition = definitions.join(u' ');
}

} // namespace

QString nameOf(PartOfSpeech part) {
    switch (part) {
    case PartOfSpeech::Noun:
        return QStringLiteral("noun");
    case PartOfSpeech::Verb:
        return QStringLiteral("verb");
    case PartOfSpeech::Adjective:
        return QStringLiteral("adjective");
    case PartOfSpeech::Adverb:
        return QStringLiteral("adverb");
    }
    return {};
}

struct WordNet::Files {
    Files(const QString &folder, const PartNames &names)
        : index(folder + QStringLiteral("/index.") + QLatin1String(names.file), ' ')
        , irregular(folder + QStringLiteral("/") + QLatin1String(names.file) + QStringLiteral(".exc"), ' ')
        , data(folder + QStringLiteral("/data.") + QLatin1String(names.file), '\n') {}

    SortedLines index;
    SortedLines irregular;
    SortedLines data; ///< found by the places that the index tells
};

namespace {

std::string_view synsetAt(std::string_view data, const QByteArray &place) {
    bool isNumber = false;
    const std::size_t offset = place.toULong(&isNumber);
    if (!isNumber || offset >= data.size())
        return {};
    const std::string_view rest = data.substr(offset);
    const std::string_view line = rest.substr(0, rest.find('\n'));
    return line.substr(0, static_cast<std::size_t>(place.size())) == view(place) ? line : std::string_view();
}

// offset file type COUNT word id ... COUNT pointer offset part source/target ... | gloss
WordNetSense readSynset(std::string_view line, std::string_view data, const QByteArray &word) {
    WordNetSense sense;
    const std::size_t bar = line.find(" | ");
    if (bar != std::string_view::npos)
        readGloss(
            QString::fromUtf8(line.substr(bar + 3).data(), static_cast<qsizetype>(line.size() - bar - 3)),
            sense);
    const QList<QByteArray> field = fields(line.substr(0, bar));
    const int words = std::min(field.value(3).toInt(nullptr, 16), static_cast<int>(field.size() / 2));
    int own = 0;
    for (int i = 0; i < words; ++i) {
        const QString other = readable(field.value(4 + 2 * i));
        if (other.compare(QString::fromLatin1(word), Qt::CaseInsensitive) == 0)
            own = i + 1;
        else if (!other.isEmpty())
            sense.synonyms.append(other);
    }
    const int pointers = field.value(4 + 2 * words).toInt();
    for (int i = 0; i < pointers && 8 + 2 * words + 4 * i < field.size(); ++i) {
        const qsizetype at = 5 + 2 * words + 4 * i;
        const QByteArray &ends = field[at + 3]; // which word of this synset, which of the other
        if (field[at] != "!" || ends.left(2).toInt(nullptr, 16) != own)
            continue;
        const QList<QByteArray> other = fields(synsetAt(data, field[at + 1]));
        const QString antonym = readable(other.value(2 + 2 * ends.mid(2).toInt(nullptr, 16)));
        if (!antonym.isEmpty())
            sense.antonyms.append(antonym);
    }
    return sense;
}

} // namespace

WordNet::WordNet(const QString &folder)
    : _counts(folder + QStringLiteral("/cntlist.rev"), '%') {
    for (std::size_t i = 0; i < partNames.size(); ++i)
        _files.at(i) = std::make_unique<Files>(folder, partNames.at(i));
}

WordNet::~WordNet() = default;

const WordNet::Files &WordNet::files(PartOfSpeech partOfSpeech) const {
    return *_files.at(static_cast<std::size_t>(partOfSpeech));
}

bool WordNet::isThere() const {
    return !files(PartOfSpeech::Noun).index.isEmpty();
}

bool WordNet::has(const QByteArray &word, PartOfSpeech partOfSpeech) const {
    return !word.isEmpty() && !files(partOfSpeech).index.find(view(underscored(word))).empty();
}

bool WordNet::has(const QByteArray &word) const {
    return std::any_of(partsOfSpeech.begin(), partsOfSpeech.end(),
                       [&](PartOfSpeech partOfSpeech) { return has(word, partOfSpeech); });
}

std::vector<WordNetSense> WordNet::senses(const QByteArray &word, PartOfSpeech partOfSpeech,
                                          std::size_t most) const {
    std::vector<WordNetSense> senses;
    const Files &part = files(partOfSpeech);
    if (word.isEmpty())
        return senses;
    for (const std::string_view line : part.index.find(view(underscored(word)))) {
        // lemma part COUNT pointers ... senses tagged offset ...: the offsets are the line's last fields
        const QList<QByteArray> field = fields(line);
        const qsizetype count = std::clamp<qsizetype>(field.value(2).toInt(), 0, field.size());
        for (qsizetype i = field.size() - count; i < field.size() && senses.size() < most; ++i) {
            const std::string_view synset = synsetAt(part.data.text(), field[i]);
            if (synset.empty())
                continue;
            senses.push_back(readSynset(synset, part.data.text(), word));
            senses.back().partOfSpeech = partOfSpeech;
        }
    }
    return senses;
}

int WordNet::timesMet(const QByteArray &word, PartOfSpeech partOfSpeech) const {
    const QByteArray key = underscored(word) + '%';
    int times = 0;
    const std::string_view numbers = namesOf(partOfSpeech).senseNumbers;
    for (const std::string_view line : _counts.find(view(underscored(word)))) {
        const char number = line.size() > static_cast<std::size_t>(key.size())
                                ? line[static_cast<std::size_t>(key.size())]
                                : '\0';
        if (numbers.find(number) != std::string_view::npos)
            times += fields(line).value(2).toInt();
    }
    return times;
}

QList<QByteArray> WordNet::irregular(const QByteArray &form, PartOfSpeech partOfSpeech) const {
    QList<QByteArray> words;
    for (const std::string_view line : files(partOfSpeech).irregular.find(view(underscored(form)))) {
        for (const QByteArray &word : fields(line).mid(1))
            words.append(QByteArray(word).replace('_', ' '));
    }
    return words;
}

} // namespace murvo::service
