// SPDX-License-Identifier: GPL-3.0-or-later
#include "Dictionary/DictdDictionary.h"

#include <QFile>

#include <algorithm>
#include <array>

namespace murvo::service {

namespace {

// The commonest words have dozens in the largest dictionary, each a place of its own to be unpacked.
constexpr std::size_t mostEntries = 12;
constexpr qsizetype longestWord = 200;

constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// Numbers are written in base 64, the highest digit first; -1 for what is none.
qint64 decoded(std::string_view digits) {
    constexpr std::size_t mostDigits = 7; // 42 bits
    if (digits.empty() || digits.size() > mostDigits)
        return -1;
    qint64 number = 0;
    for (const char digit : digits) {
        const std::size_t value = alphabet.find(digit);
        if (value == std::string_view::npos)
            return -1;
        number = number * 64 + static_cast<qint64>(value);
    }
    return number;
}

QByteArray encoded(qint64 number) {
    QByteArray digits;
    do
        digits.prepend(alphabet[static_cast<std::size_t>(number % 64)]);
    while ((number /= 64) > 0);
    return digits;
}

std::string_view column(std::string_view line, int number) {
    for (; number > 0; --number) {
        const std::size_t tab = line.find('\t');
        if (tab == std::string_view::npos)
            return {};
        line.remove_prefix(tab + 1);
    }
    return line.substr(0, line.find_first_of("\t\r"));
}

DictdDictionary::Place placeOf(std::string_view line) {
    return {decoded(column(line, 1)), decoded(column(line, 2))};
}

std::string_view view(const QByteArray &bytes) {
    return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}

QString packedOrPlain(const QString &path) {
    const QString packed = path + QStringLiteral(".dict.dz");
    return QFile::exists(packed) ? packed : path + QStringLiteral(".dict");
}

// FreeDict's keys hold letters, digits and spaces alone.
QString withoutMarks(const QString &word, bool hyphenIsSpace) {
    QString key;
    for (const QChar sign : word) {
        if (sign.isLetterOrNumber() || sign.isSpace() || sign.isMark() || sign.isSurrogate())
            key += sign;
        else if (hyphenIsSpace && sign == u'-')
            key += u' ';
    }
    return key;
}

/// An ending as it is spelled on one side of the ocean, and on the other.
struct Spelling {
    QLatin1String british;
    QLatin1String american;
};

// "colour" and "color": whichever it is, the other one may be the dictionary's. Short words are left alone:
// "for" is no "four", and "our" no "or".
QStringList otherSpellings(const QString &word) {
    static constexpr std::array endings{Spelling{QLatin1String("our"), QLatin1String("or")},
                                        Spelling{QLatin1String("ours"), QLatin1String("ors")},
                                        Spelling{QLatin1String("ourite"), QLatin1String("orite")},
                                        Spelling{QLatin1String("ise"), QLatin1String("ize")},
                                        Spelling{QLatin1String("yse"), QLatin1String("yze")},
                                        Spelling{QLatin1String("tre"), QLatin1String("ter")},
                                        Spelling{QLatin1String("ogue"), QLatin1String("og")},
                                        Spelling{QLatin1String("ence"), QLatin1String("ense")}};
    constexpr qsizetype shortestStem = 3;
    QStringList others;
    const auto exchange = [&](QLatin1String from, QLatin1String to) {
        if (word.endsWith(from) && word.size() >= from.size() + shortestStem)
            others.append(word.chopped(from.size()) + to);
    };
    for (const Spelling &ending : endings) {
        exchange(ending.british, ending.american);
        exchange(ending.american, ending.british);
    }
    return others;
}

} // namespace

QList<QByteArray> dictionaryKeys(QStringView word) {
    QList<QByteArray> keys;
    const QString lower = word.toString().toLower().simplified();
    // Some words are keys with a space beside them, which stood for something that the key left out.
    const QString behindSpace = u' ' + lower;
    const QString beforeSpace = lower + u' ';
    QStringList all{lower, behindSpace, beforeSpace};
    if (!lower.contains(u'.')) // "u.s." is not "us"
        all += {withoutMarks(lower, false), withoutMarks(lower, true)};
    all += otherSpellings(lower);
    // Verbs that never stand alone: "avoid sth".
    for (const char *object : {" sth", " sb", " sbsth", " sb sth"})
        all.append(withoutMarks(lower, false) + QLatin1String(object));
    for (const QString &key : all) {
        const QByteArray bytes = key.toUtf8();
        if (!lower.isEmpty() && !bytes.isEmpty() && bytes.size() <= longestWord && !keys.contains(bytes))
            keys.append(bytes);
    }
    return keys;
}

DictdDictionary::DictdDictionary(const QString &path)
    : _index(path + QStringLiteral(".index"), '\t')
    , _text(packedOrPlain(path)) {}

DictdDictionary::DictdDictionary(const QString &path, QByteArray index)
    : _index(std::move(index), '\t')
    , _text(packedOrPlain(path)) {}

bool DictdDictionary::isAboutItself(std::string_view key) {
    return key.substr(0, 10) == "00database" || key.substr(0, 11) == "00-database";
}

// Where there are too many, the long texts are the ones of common meanings: they have examples. Read in the
// order in which they lie, so that a chunk is unpacked once for all that it holds.
QStringList DictdDictionary::texts(const std::vector<std::string_view> &lines) const {
    std::vector<std::pair<Place, std::size_t>> places;
    places.reserve(lines.size());
    for (const std::string_view line : lines)
        places.emplace_back(placeOf(line), places.size());
    if (places.size() > mostEntries) {
        std::stable_sort(places.begin(), places.end(), [](const auto &left, const auto &right) {
            constexpr qint64 bare = 100; // bytes: no example fits in
            return std::max(left.first.length, bare) > std::max(right.first.length, bare);
        });
        places.resize(mostEntries);
    }
    std::sort(places.begin(), places.end());
    std::vector<QByteArray> read(lines.size());
    for (const auto &[place, number] : places)
        read[number] = _text.read(place.offset, place.length).value_or(QByteArray());
    QStringList found;
    for (const QByteArray &text : read) {
        if (!text.isEmpty())
            found.append(QString::fromUtf8(text));
    }
    return found;
}

QStringList DictdDictionary::entries(QStringView word) const {
    for (const QByteArray &key : dictionaryKeys(word)) {
        if (isAboutItself(view(key)))
            continue;
        QStringList found = texts(_index.find(view(key)));
        if (!found.isEmpty())
            return found;
    }
    return {};
}

void DictdDictionary::eachEntry(const std::function<bool(const Place &, const QString &)> &visit) const {
    std::vector<Place> places;
    _index.each([&places](std::string_view key, std::string_view line) {
        if (!isAboutItself(key))
            places.push_back(placeOf(line));
    });
    std::sort(places.begin(), places.end());
    places.erase(std::unique(places.begin(), places.end()), places.end());
    for (const Place &place : places) {
        const std::optional<QByteArray> text = _text.read(place.offset, place.length);
        if (text && !text->isEmpty() && !visit(place, QString::fromUtf8(*text)))
            return;
    }
}

QByteArray DictdDictionary::indexLine(const QByteArray &key, const Place &place) {
    return key + '\t' + encoded(place.offset) + '\t' + encoded(place.length) + '\n';
}

bool DictdDictionary::has(QStringView word) const {
    const QList<QByteArray> keys = dictionaryKeys(word);
    return std::any_of(keys.begin(), keys.end(), [this](const QByteArray &key) {
        return !isAboutItself(view(key)) && !_index.find(view(key)).empty();
    });
}

QString DictdDictionary::about(const char *what) const {
    for (const QByteArray &prefix : {QByteArray("00database"), QByteArray("00-database-")}) {
        const QStringList found = texts(_index.find(view(prefix + what)));
        if (found.isEmpty())
            continue;
        const bool beginsWithKey = found.first().startsWith(QStringLiteral("00"));
        return (beginsWithKey ? found.first().section(u'\n', 1) : found.first()).trimmed();
    }
    return {};
}

QString DictdDictionary::shortName() const {
    return about("short");
}

QString DictdDictionary::information() const {
    return about("info");
}

} // namespace murvo::service
