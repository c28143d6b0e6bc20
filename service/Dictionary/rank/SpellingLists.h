// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QSet>
#include <QString>

namespace murvo::service {

/// What is an English word and what a name: SCOWL's lists for spelling checkers, up to the size that holds
/// the words of a large dictionary of one volume.
class SpellingLists {
  public:
    /// Throws std::runtime_error when the folder has no such lists.
    explicit SpellingLists(const QString &folder);

    /// In lower case all, also a name. What is a name too is a word only when it is a common one: "china".
    [[nodiscard]] bool hasWord(const QByteArray &word) const {
        return hasName(word) ? _commonWords.contains(word) : _words.contains(word);
    }
    [[nodiscard]] bool hasName(const QByteArray &word) const { return _names.contains(word); }

  private:
    QSet<QByteArray> _words;
    QSet<QByteArray> _commonWords;
    QSet<QByteArray> _names;
};

} // namespace murvo::service
