// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

#include <vector>

namespace murvo::service {

/// An example of a meaning, with its translation where the dictionary has one.
struct Example {
    QString text;
    QString translation;
};

/// One meaning of a headword: words of the learner's language for it, or a definition, or both.
struct Sense {
    QStringList translations;
    QString definition; ///< in English, or a remark on where the translations fit
    std::vector<Example> examples;
    QStringList synonyms; ///< English
};

/// One entry of a dictionary, read: plain text everywhere, nothing of the dictionary's own layout.
struct Entry {
    QString headword;
    QString pronunciation; ///< IPA without slashes, empty when not told
    QString partOfSpeech;  ///< "noun", "verb" ..., empty when not told
    std::vector<Sense> senses;
    bool isOfForm = false; ///< it translates a form of the headword: "gelaufen", said of the participle "run"
};

/// One meaning of an English word in English.
struct EnglishSense {
    QString partOfSpeech; ///< "noun", "pronoun" ...
    QString definition;
    QStringList examples;
    QStringList synonyms;
    QStringList antonyms;
    bool isOwn = false; ///< of this program, not of WordNet
};

} // namespace murvo::service
