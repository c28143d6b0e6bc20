// SPDX-License-Identifier: GPL-3.0-or-later
#include "Speech/StressMarks.h"

#include <QRegularExpression>

namespace murvo::service {

namespace {

const QString consonants = QStringLiteral("pbtdkɡfvθðszʃʒhmnŋlɹrwjxçɬɾʔ");

// What a syllable within a word begins with. Not "sf": what looks so is "transfer" and "satisfaction" far
// more often than "atmospheric".
const QString onsets = QStringLiteral("tʃj?|dʒj?|" // never parted
                                      "s?p[lɹj]?|s?t[ɹj]?|tw|s?k[lɹwj]?|s[lmnwj]?|"
                                      "b[lɹj]?|d[ɹwj]?|ɡ[lɹwj]?|f[lɹj]?|θ[ɹwj]?|(?<!t)ʃɹ|"
                                      "h[wj]?|[vzmnl]j?|[ðʃʒɹrwjxçɬɾʔ]");

// Before a vowel, or a consonant that is a syllable by itself.
QRegularExpression stressAfterOnset() {
    return QRegularExpression(
        QStringLiteral("((?<![^ ])[%1]+|%2)([ˈˌ])(?=[^ ˈˌ%1]|.\\x{0329})").arg(consonants, onsets));
}

} // namespace

QString stressBeforeSyllables(const QString &sounds) {
    // The search goes from the left: of all onsets that end at a mark it meets the longest first.
    static const QRegularExpression pattern = stressAfterOnset();
    return QString(sounds).replace(pattern, QStringLiteral("\\2\\1"));
}

} // namespace murvo::service
