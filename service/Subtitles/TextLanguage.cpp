// SPDX-License-Identifier: GPL-3.0-or-later
#include "Subtitles/TextLanguage.h"

#include "Languages.h"

#include <QRegularExpression>

#include <array>
#include <cstdio> // the next header needs it and does not say so

#include <cld2/public/compact_lang_det.h>
#include <cld2/public/encodings.h>

namespace murvo::service {

namespace {

constexpr qsizetype mostCuesToRead = 100;
constexpr int leastShareOfOne = 70; ///< per cent of the text; below it the file is in two languages

// Noises are often in another language than what is said; one control character alone would make the
// whole text unknown to the detector.
QString spokenText(const Cue &cue) {
    static const QRegularExpression noises(QStringLiteral("\\[[^\\[\\]]*\\]|\\([^()]*\\)|♪|♫|#"));
    QString text = cue.lines.join(u' ').remove(noises);
    for (QChar &c : text) {
        if (c.category() == QChar::Other_Control || c.category() == QChar::Other_NotAssigned)
            c = u' ';
    }
    return text;
}

QByteArray sampleOf(const QList<Cue> &cues) {
    const qsizetype step = std::max<qsizetype>(1, cues.size() / mostCuesToRead);
    QString sample;
    for (qsizetype i = 0; i < cues.size(); i += step)
        sample += spokenText(cues[i]) + u'\n';
    return sample.toUtf8();
}

QString codeOf(CLD2::Language language) {
    QString code = QString::fromLatin1(CLD2::LanguageCode(language)).section(u'-', 0, 0);
    if (code == QLatin1String("iw")) // Hebrew's former code
        code = QStringLiteral("he");
    const Language *known = findLanguage(code);
    return known != nullptr ? QString(known->code) : QString();
}

} // namespace

QString languageOfText(const QList<Cue> &cues) {
    const QByteArray sample = sampleOf(cues);
    const CLD2::CLDHints noHints{nullptr, nullptr, CLD2::UNKNOWN_ENCODING, CLD2::UNKNOWN_LANGUAGE};
    std::array<CLD2::Language, 3> languages{};
    std::array<int, 3> shares{};
    std::array<double, 3> scores{};
    int textBytes = 0;
    int validBytes = 0;
    bool reliable = false;
    CLD2::ExtDetectLanguageSummaryCheckUTF8(sample.constData(), static_cast<int>(sample.size()), true,
                                            &noHints, 0, languages.data(), shares.data(), scores.data(),
                                            nullptr, &textBytes, &reliable, &validBytes);
    if (!reliable || validBytes < sample.size() || shares[0] < leastShareOfOne)
        return {};
    return codeOf(languages[0]);
}

} // namespace murvo::service
