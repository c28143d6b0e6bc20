// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QSet>
#include <QString>

#include <map>

namespace murvo::service {

class DictdDictionary;

/// How often the forms of words stand in the English example sentences of dictionaries, each sentence once.
class ExampleSentences {
  public:
    /// How often a form was met.
    struct Times {
        int all = 0;
        int withinSmall = 0;   ///< not as a sentence's first word, with a small letter
        int withinCapital = 0; ///< the same, with a capital
    };

    void add(const DictdDictionary &dictionary);

    /// By the form in lower case.
    [[nodiscard]] const std::map<QByteArray, Times> &forms() const { return _forms; }
    [[nodiscard]] int wordCount() const { return _wordCount; }
    /// How much of a form's use is as a word, and not as the name that is written like it: from 0 to 1.
    [[nodiscard]] double shareOfWord(const QByteArray &form) const;

  private:
    void count(const QString &sentence);

    QSet<QByteArray> _sentences;
    std::map<QByteArray, Times> _forms;
    int _wordCount = 0;
};

} // namespace murvo::service
