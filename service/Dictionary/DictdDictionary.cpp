// SPDX-License-Identifier: GPL-3.0-or-later
#include "Dictionary/DictdDictionary.h"

#include <QFile>

#include <algorithm>
#include <array>

namespace murvo::service {

namespace {

// The commonest words have dozens in the largest dictionary, each a place of its own to be unpacked.
constexpr std::size_t mostEntries = 16;
constexpr qsizetype longestWord = 200;

// Numbers are written in base 64, the highest digit first; -1 for what is none.
qint64 decoded(std::string_view digits) {
    static constexpr std::string_view alphabet =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
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

std::string_view column(std::string_view line, int number) {
    for (; number > 0; --number) {
        const std::size_t tab = line.find('\t');
        if (tab == std::string_view::npos)
            return {};
        line.remove_prefix(tab + 1);
    }
    return line.substr(0, line.find_first_of("\t\r"));
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

} // namespace

QList<QByteArray> dictionaryKeys(QStringView word) {
    QList<QByteArray> keys;
    const QString lower = word.toString().toLower().simplified();
    // Some words are keys with a space beside them, which stood for something that the key left out.
    const QString behindSpace = u' ' + lower;
    const QString beforeSpace = lower + u' ';
    for (const QString &key :
         {lower, withoutMarks(lower, false), withoutMarks(lower, true), behindSpace, beforeSpace}) {
        const QByteArray bytes = key.toUtf8();
        if (!lower.isEmpty() && !bytes.isEmpty() && bytes.size() <= longestWord && !keys.contains(bytes))
            keys.append(bytes);
    }
    return keys;
}

DictdDictionary::DictdDictionary(const QString &path)
    : _index(path + QStringLiteral(".index"), '\t')
    , _text(packedOrPlain(path)) {}

bool DictdDictionary::isAboutItself(std::string_view key) {
    return key.substr(0, 10) == "00database" || key.substr(0, 11) == "00-database";
}

QStringList DictdDictionary::texts(const std::vector<std::string_view> &lines) const {
    QStringList found;
    Dictzip::LastChunk last;
    for (std::size_t i = 0; i < std::min(lines.size(), mostEntries); ++i) {
        const std::optional<QByteArray> text =
            _text.read(decoded(column(lines[i], 1)), decoded(column(lines[i], 2)), last);
        if (text && !text->isEmpty())
            found.append(QString::fromUtf8(*text));
    }
    return found;
}

QStringList DictdDictionary::entries(QStringView word) const {
    for (const QByteArray &key : dictionaryKeys(word)) {
        if (isAboutItself(view(key)))
            continue;
        const QStringList found = texts(_index.find(view(key)));
        if (!found.isEmpty())
            return found;
    }
    return {};
}

bool DictdDictionary::has(QStringView word) const {
    const QList<QByteArray> keys = dictionaryKeys(word);
    return std::any_of(keys.begin(), keys.end(), [this](const QByteArray &key) {
        return !isAboutItself(view(key)) && !_index.find(view(key)).empty();
    });
}

void DictdDictionary::eachEntry(const std::function<void(const QByteArray &text)> &visit) const {
    std::vector<std::pair<qint64, qint64>> places;
    _index.each([&places](std::string_view key, std::string_view line) {
        if (!isAboutItself(key))
            places.emplace_back(decoded(column(line, 1)), decoded(column(line, 2)));
    });
    std::sort(places.begin(), places.end());
    places.erase(std::unique(places.begin(), places.end()), places.end());
    Dictzip::LastChunk last;
    for (const auto &[offset, length] : places) {
        if (const std::optional<QByteArray> text = _text.read(offset, length, last))
            visit(*text);
    }
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
