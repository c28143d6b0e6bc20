// SPDX-License-Identifier: GPL-3.0-or-later
#include "Sources/SidecarName.h"

#include "Languages.h"

#include <QRegularExpression>
#include <QStringList>

namespace murvo::service {

namespace {

QString withoutExtension(const QString &fileName) {
    const qsizetype dot = fileName.lastIndexOf(u'.');
    return dot > 0 ? fileName.left(dot) : fileName;
}

bool isSubtitleExtension(const QString &extension) {
    static const QStringList extensions{QStringLiteral("srt"), QStringLiteral("sub"), QStringLiteral("vtt"),
                                        QStringLiteral("ass"), QStringLiteral("ssa")};
    return extensions.contains(extension, Qt::CaseInsensitive);
}

// A region or script after a language, as BR in pt-BR, Hans in zh-Hans, 419 in es-419.
bool looksLikeVariety(const QString &word) {
    static const QRegularExpression variety(QStringLiteral("^([A-Za-z]{2}|[A-Za-z]{4}|[0-9]{3})$"));
    return variety.match(word).hasMatch();
}

bool readWord(const QString &word, SidecarName &name) {
    const auto is = [&word](const char *text) {
        return word.compare(QLatin1String(text), Qt::CaseInsensitive) == 0;
    };
    if (is("forced")) {
        name.forced = true;
        return true;
    }
    // "hi" alone is Hindi; after a language it says that the track is for the hard of hearing.
    if (is("sdh") || is("cc") || (is("hi") && !name.language.isEmpty())) {
        name.hearingImpaired = true;
        return true;
    }
    if (!name.language.isEmpty())
        return looksLikeVariety(word);
    const Language *language = findLanguage(word);
    if (language == nullptr)
        return false;
    name.language = language->code;
    return true;
}

} // namespace

std::optional<SidecarName> readSidecarName(const QString &filmName, const QString &fileName) {
    const QString base = withoutExtension(filmName);
    const qsizetype dot = fileName.lastIndexOf(u'.');
    if (base.isEmpty() || dot < base.size() || fileName.contains(u'/') || fileName.contains(QChar(u'\0')) ||
        !fileName.startsWith(base) || !isSubtitleExtension(fileName.mid(dot + 1)))
        return std::nullopt;

    SidecarName name;
    const QString between = fileName.mid(base.size(), dot - base.size());
    if (between.isEmpty())
        return name;
    if (!between.startsWith(u'.'))
        return std::nullopt;
    static const QRegularExpression separators(QStringLiteral("[._\\-\\s\\[\\]()]+"));
    for (const QString &word : between.split(separators, Qt::SkipEmptyParts)) {
        if (!readWord(word, name))
            return std::nullopt;
    }
    return name;
}

} // namespace murvo::service
