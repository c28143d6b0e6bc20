// SPDX-License-Identifier: GPL-3.0-or-later
#include "Speech/Voices.h"

#include "Languages.h"

#include <QString>

#include <algorithm>
#include <array>
#include <utility>

namespace murvo::service {

const char *voiceOf(QStringView language, QStringView accent) {
    // Those that are not called as the language's two-letter code.
    constexpr std::array otherNames{std::pair(QLatin1String("nor"), "nb"),
                                    std::pair(QLatin1String("zho"), "cmn"),
                                    std::pair(QLatin1String("por"), "pt-br")};
    if (language == QLatin1String("eng"))
        return accent == QLatin1String("gb") ? "en" : "en-us";
    const auto other = std::find_if(otherNames.begin(), otherNames.end(),
                                    [language](const auto &name) { return name.first == language; });
    if (other != otherNames.end())
        return other->second;
    const Language *known = findLanguage(language);
    return known != nullptr && known->code == language ? known->twoLetter.data() : nullptr;
}

bool canRead(QStringView language, const QString &text) {
    const auto letters = text.toUcs4();
    return (language != QLatin1String("jpn") && language != QLatin1String("zho")) ||
           std::none_of(letters.begin(), letters.end(),
                        [](char32_t letter) { return QChar::script(letter) == QChar::Script_Han; });
}

} // namespace murvo::service
