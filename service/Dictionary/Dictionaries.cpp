// SPDX-License-Identifier: GPL-3.0-or-later
#include "Dictionary/Dictionaries.h"

#include "Languages.h"

#include <QFile>

namespace murvo::service {

namespace {

constexpr qsizetype longestLicence = 600;

// The paragraph of the makers' information that says how the dictionary may be used.
QString licenceIn(const QString &information) {
    const qsizetype heading = information.indexOf(QStringLiteral("Availability:"));
    if (heading < 0)
        return {};
    return information.mid(heading)
        .section(u':', 1)
        .trimmed()
        .section(QStringLiteral("\n\n"), 0, 0)
        .simplified()
        .left(longestLicence);
}

} // namespace

Dictionaries::Opened::Opened(const QString &path)
    : dictionary(path)
    , source{dictionary.shortName(), licenceIn(dictionary.information())} {
    dictionary.makeSorted();
}

Dictionaries::Dictionaries(const QString &folder)
    : _folder(folder) {}

const std::vector<std::unique_ptr<Dictionaries::Opened>> &Dictionaries::of(const QString &language) {
    const std::lock_guard lock(_mutex);
    auto [place, isNew] = _byLanguage.try_emplace(findLanguage(language) == nullptr ? QString() : language);
    if (isNew && !place->first.isEmpty()) {
        auto opened = std::make_unique<Opened>(_folder + QStringLiteral("/freedict-eng-") + language);
        if (opened->dictionary.isOpen())
            place->second.push_back(std::move(opened));
    }
    return place->second;
}

} // namespace murvo::service
