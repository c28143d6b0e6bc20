// SPDX-License-Identifier: GPL-3.0-or-later
#include "Dictionary/rank/ExampleSentences.h"

#include "Dictionary/DictdDictionary.h"
#include "Dictionary/English.h"

namespace murvo::service {

namespace {

// As FreeDict lays examples out: a line of their own in quotation marks, in some with the translation behind.
constexpr char beforeExample[] = "      \"";
constexpr char beforeTranslation[] = "\"  - ";

QByteArray exampleIn(const QByteArray &line) {
    if (!line.startsWith(beforeExample))
        return {};
    const qsizetype start = qsizetype(sizeof beforeExample) - 1;
    const qsizetype translation = line.indexOf(beforeTranslation, start);
    const qsizetype end = translation < 0 ? line.lastIndexOf('"') : translation;
    return end > start ? line.sliced(start, end - start) : QByteArray();
}

} // namespace

void ExampleSentences::add(const DictdDictionary &dictionary) {
    dictionary.eachEntry([this](const DictdDictionary::Place &, const QString &entry) {
        for (const QByteArray &line : entry.toUtf8().split('\n')) {
            const QByteArray sentence = exampleIn(line);
            if (sentence.isEmpty() || _sentences.contains(sentence))
                continue;
            _sentences.insert(sentence);
            count(QString::fromUtf8(sentence));
        }
        return true;
    });
}

void ExampleSentences::count(const QString &sentence) {
    bool isFirst = true;
    for (const EnglishWord &word : englishWords(sentence)) {
        Times &times = _forms[word.form.toLower().toUtf8()];
        ++times.all;
        ++_wordCount;
        if (!isFirst)
            ++(word.form.front().isUpper() ? times.withinCapital : times.withinSmall);
        isFirst = false;
    }
}

double ExampleSentences::shareOfWord(const QByteArray &form) const {
    const auto found = _forms.find(form);
    const Times times = found == _forms.end() ? Times() : found->second;
    // What was never met is as likely the one as the other.
    return (times.withinSmall + 0.5) / (times.withinSmall + times.withinCapital + 1.0);
}

} // namespace murvo::service
