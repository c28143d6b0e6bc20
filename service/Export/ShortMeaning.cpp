// SPDX-License-Identifier: GPL-3.0-or-later
#include "Export/ShortMeaning.h"

#include "Dictionary/WordLookup.h"

namespace murvo::service {

namespace {

constexpr qsizetype mostSenses = 3;
constexpr qsizetype mostOfSense = 2;

/// The senses parted by semicolons, what a sense has by commas; no translation twice.
QString translations(const Headword &headword) {
    QStringList senses;
    QStringList told;
    for (const SourcedEntry &sourced : headword.entries) {
        for (const Sense &sense : sourced.entry.senses) {
            QStringList ofSense;
            for (const QString &translation : sense.translations) {
                if (ofSense.size() < mostOfSense && !told.contains(translation))
                    ofSense.append(translation);
            }
            told += ofSense;
            if (!ofSense.isEmpty() && senses.size() < mostSenses)
                senses.append(ofSense.join(QLatin1String(", ")));
        }
    }
    return senses.join(QLatin1String("; "));
}

} // namespace

QString shortMeaning(const LookedUp &found) {
    for (const Headword &headword : found.headwords) {
        if (const QString told = translations(headword); !told.isEmpty())
            return told;
    }
    for (const Headword &headword : found.headwords) {
        if (!headword.english.empty())
            return headword.english.front().definition;
    }
    return {};
}

} // namespace murvo::service
