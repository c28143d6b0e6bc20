// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Dictionary/SortedLines.h"

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QStringList>

#include <array>
#include <memory>
#include <string_view>
#include <vector>

namespace murvo::service {

enum class PartOfSpeech { Noun, Verb, Adjective, Adverb };
constexpr std::array partsOfSpeech{PartOfSpeech::Noun, PartOfSpeech::Verb, PartOfSpeech::Adjective,
                                   PartOfSpeech::Adverb};

/// "noun", "verb" ...
[[nodiscard]] QString nameOf(PartOfSpeech part);

/// One meaning of an English word.
struct WordNetSense {
    PartOfSpeech partOfSpeech = PartOfSpeech::Noun;
    QString definition;
    QStringList examples;
    QStringList synonyms; ///< without the word itself
    QStringList antonyms;
};

/// WordNet's own files, read in place: which words there are, what they mean in English, how often each was
/// met.
///
/// Words are given in lower case with spaces; letters beyond ASCII are in none. Read-only after construction,
/// any thread. A missing file leaves its part of speech empty.
class WordNet {
  public:
    explicit WordNet(const QString &folder);
    ~WordNet();

    [[nodiscard]] bool isThere() const;
    [[nodiscard]] bool has(const QByteArray &word, PartOfSpeech partOfSpeech) const;
    [[nodiscard]] bool has(const QByteArray &word) const;
    /// Its meanings, the commonest first; empty when it is not in WordNet.
    [[nodiscard]] std::vector<WordNetSense> senses(const QByteArray &word, PartOfSpeech partOfSpeech,
                                                   std::size_t most) const;
    /// How often the word was met as this part of speech in the texts whose senses WordNet's makers marked.
    [[nodiscard]] int timesMet(const QByteArray &word, PartOfSpeech partOfSpeech) const;
    /// The words that an irregular form belongs to ("went": "go"), in the file's order.
    [[nodiscard]] QList<QByteArray> irregular(const QByteArray &form, PartOfSpeech partOfSpeech) const;

  private:
    struct Files;

    [[nodiscard]] const Files &files(PartOfSpeech partOfSpeech) const;

    std::array<std::unique_ptr<Files>, partsOfSpeech.size()> _files;
    SortedLines _counts;
};

} // namespace murvo::service
