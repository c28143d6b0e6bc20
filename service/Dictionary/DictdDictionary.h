// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Dictionary/Dictzip.h"
#include "Dictionary/SortedLines.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <functional>

namespace murvo::service {

/// One dictionary as the dictd packages install it, NAME.index and NAME.dict.dz, read in place.
///
/// It knows keys and the raw text of entries, not how an entry is laid out: that is its reader's business.
/// Damaged entries are left out, bad UTF-8 becomes U+FFFD. Read-only after construction, any thread.
class DictdDictionary {
  public:
    /// path: without the endings. A dictionary that cannot be opened has no entries.
    explicit DictdDictionary(const QString &path);
    /// The same texts under other keys: index has sorted lines as such files have them.
    DictdDictionary(const QString &path, QByteArray index);

    [[nodiscard]] bool isOpen() const { return !_index.isEmpty() && _text.isOpen(); }

    /// The entries of a word, in the order of the index. A word is looked for in lower case as written, then
    /// as the keys of such files are: without marks, with a hyphen as a space; then as it is spelled
    /// elsewhere, and with an object ("avoid sth").
    [[nodiscard]] QStringList entries(QStringView word) const;
    [[nodiscard]] bool has(QStringView word) const;

    /// What the makers say of it, its name and its licence; empty when they say nothing.
    [[nodiscard]] QString shortName() const;
    [[nodiscard]] QString information() const;

    /// Calls visit(key) for each word, as the keys are written.
    template<typename Visit>
    void eachKey(Visit &&visit) const {
        _index.each([&](std::string_view key, std::string_view) {
            if (!key.empty() && !isAboutItself(key))
                visit(key);
        });
    }

    /// Where a text lies, in bytes of the unpacked whole; of what is damaged it may be negative.
    struct Place {
        qint64 offset = 0;
        qint64 length = 0;
        bool operator==(const Place &other) const { return offset == other.offset && length == other.length; }
        bool operator<(const Place &other) const {
            return offset != other.offset ? offset < other.offset : length < other.length;
        }
    };
    /// Calls visit(place, text) for each entry, once though it has several keys, in the order in which they
    /// lie; until it returns false.
    void eachEntry(const std::function<bool(const Place &, const QString &)> &visit) const;
    /// A line of an index: under this key, what lies there.
    [[nodiscard]] static QByteArray indexLine(const QByteArray &key, const Place &place);

    /// Must be called before other threads look up when the index may be unsorted; reads all of it.
    void makeSorted() { _index.makeSorted(); }

    [[nodiscard]] static bool isAboutItself(std::string_view key);

  private:
    [[nodiscard]] QStringList texts(const std::vector<std::string_view> &lines) const;
    [[nodiscard]] QString about(const char *what) const;

    SortedLines _index;
    Dictzip _text;
};

/// The ways in which a word may be written as a key, likeliest first, each once.
[[nodiscard]] QList<QByteArray> dictionaryKeys(QStringView word);

} // namespace murvo::service
