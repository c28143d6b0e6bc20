// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLatin1String>
#include <QList>
#include <QString>
#include <QStringView>

namespace murvo::service {

/// One language as the service knows it. Codes are lower case; code is ISO 639-2/T and is the one used
/// everywhere.
struct Language {
    QLatin1String code;
    QLatin1String bibliographic; ///< ISO 639-2/B where it differs, otherwise the same as code
    QLatin1String twoLetter;     ///< ISO 639-1
    QStringView nativeName;
    QLatin1String englishName;
    bool offered; ///< can be chosen as the learner's own language on the home page
};

/// Every known language; the offered ones come in the order in which the home page lists them.
[[nodiscard]] const QList<Language> &knownLanguages();

/// The language of a code of any of the three forms or of its English or own name, in any case; null if
/// unknown.
[[nodiscard]] const Language *findLanguage(QStringView word);

/// The learner's language until one is chosen: that of the desktop where it is offered, otherwise French.
[[nodiscard]] QString defaultNativeLanguage();

} // namespace murvo::service
