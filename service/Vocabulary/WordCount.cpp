// SPDX-License-Identifier: GPL-3.0-or-later
#include "Vocabulary/WordCount.h"

#include "Vocabulary/Lexicon.h"

#include <QHash>

#include <algorithm>

namespace murvo::service {

namespace {

// A line of so many words shows how one of them is used, and can be taken in at a glance.
constexpr size_t fewestTelling = 4;
constexpr size_t mostTelling = 14;

enum class Capital { None, WithinSentence, Meaningless };

bool isInSmallLetters(QStringView text) {
    return std::any_of(text.begin(), text.end(), [](QChar letter) { return letter.isLower(); });
}

// A new sentence may begin behind these, and at the beginning of a line that nobody ended before.
bool endsSentence(QChar sign) {
    return QStringView(u".?!:;-\u2013\u2014\u2026\u266a\u266b#*").contains(sign);
}

bool isQuoteOrBracket(QChar sign) {
    return QStringView(u"\"'\u201c\u201d\u2018\u2019\u00ab\u00bb([{\u00bf\u00a1").contains(sign);
}

Capital capitalOf(QStringView line, const EnglishWord &word) {
    const QStringView form = line.mid(word.start, word.length);
    if (!form.front().isUpper())
        return Capital::None;
    // "I", and what is written in capitals altogether.
    if (form.size() == 1 || form[1] == u'\'' || form[1] == QChar(u'\u2019') || !isInSmallLetters(form))
        return Capital::Meaningless;
    for (qsizetype i = word.start - 1; i >= 0; --i) {
        if (line[i].isSpace() || isQuoteOrBracket(line[i]))
            continue;
        return endsSentence(line[i]) ? Capital::Meaningless : Capital::WithinSentence;
    }
    return Capital::Meaningless;
}

/// Counts the words of one line after the other.
class Counter {
  public:
    explicit Counter(const Lexicon &lexicon)
        : _lexicon(lexicon) {}

    void add(const Cue &cue, qsizetype cueIndex) {
        const QString line = cue.lines.join(u'\n');
        const std::vector<EnglishWord> words = englishWords(line);
        const bool isTelling = words.size() >= fewestTelling && words.size() <= mostTelling;
        for (const EnglishWord &word : words) {
            const QString &lemma = lemmaOf(word.form);
            if (lemma.isEmpty())
                continue;
            Tally &tally = _tallies[lemma];
            ++tally.count;
            const Capital capital = capitalOf(line, word);
            tally.isEverSmall = tally.isEverSmall || capital == Capital::None;
            tally.isEverWithin = tally.isEverWithin || capital == Capital::WithinSentence;
            tally.isEverCapital = tally.isEverCapital || word.form.front().isUpper();
            if (tally.count == 1 || (isTelling && !tally.isTelling)) {
                tally.form = word.form;
                tally.cue = cueIndex;
                tally.isTelling = isTelling;
            }
        }
    }

    [[nodiscard]] QList<MetWord> result() const {
        QList<MetWord> words;
        words.reserve(_tallies.size());
        for (auto each = _tallies.begin(); each != _tallies.end(); ++each) {
            const bool isName = !each->isEverSmall && each->isEverCapital &&
                                (each->isEverWithin || _lexicon.rank(each.key()) == 0) && each.key() != u"i";
            words.append({each.key(), each->form, each->count, isName, each->cue, 0});
        }
        return words;
    }

  private:
    struct Tally {
        QString form;
        qint32 count = 0;
        qsizetype cue = 0;
        bool isTelling = false;
        bool isEverSmall = false;
        bool isEverWithin = false;
        bool isEverCapital = false;
    };

    // Empty for what is too long to be a word.
    const QString &lemmaOf(const QString &form) {
        const auto known = _lemmas.constFind(form);
        if (known != _lemmas.constEnd())
            return *known;
        return *_lemmas.insert(form, _lexicon.lemma(form).value_or(QString()));
    }

    const Lexicon &_lexicon;
    QHash<QString, QString> _lemmas; // by the form
    QHash<QString, Tally> _tallies;  // by the lemma
};

} // namespace

QList<MetWord> countWords(const QList<Cue> &cues, const Lexicon &lexicon) {
    Counter counter(lexicon);
    for (qsizetype i = 0; i < cues.size(); ++i)
        counter.add(cues[i], i);
    return counter.result();
}

} // namespace murvo::service
