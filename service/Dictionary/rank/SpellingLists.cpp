// SPDX-License-Identifier: GPL-3.0-or-later
#include "Dictionary/rank/SpellingLists.h"

#include <QFile>

#include <stdexcept>

namespace murvo::service {

namespace {

constexpr int largestWords = 70;
constexpr int largestCommonWords = 35;
constexpr int largestNames = 60;
constexpr int sizeStep = 5;

void addLists(const QString &start, int largest, QSet<QByteArray> &words) {
    for (int size = 0; size <= largest; size += sizeStep) {
        QFile list(start + QString::number(size));
        if (!list.open(QIODevice::ReadOnly))
            continue; // not every size has every kind
        for (const QString &word : QString::fromLatin1(list.readAll()).split(u'\n', Qt::SkipEmptyParts))
            words.insert(word.trimmed().toLower().toUtf8());
    }
}

} // namespace

SpellingLists::SpellingLists(const QString &folder) {
    for (const char *country : {"english", "american", "british"}) {
        const QString start = folder + u'/' + QLatin1String(country);
        addLists(start + QStringLiteral("-words."), largestWords, _words);
        addLists(start + QStringLiteral("-words."), largestCommonWords, _commonWords);
        addLists(start + QStringLiteral("-upper."), largestNames, _names);
        addLists(start + QStringLiteral("-proper-names."), largestNames, _names);
    }
    if (_commonWords.isEmpty() || _names.isEmpty())
        throw std::runtime_error("The folder of the spelling lists has none.");
}

} // namespace murvo::service
