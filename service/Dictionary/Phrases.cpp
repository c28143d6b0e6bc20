// SPDX-License-Identifier: GPL-3.0-or-later
#include "Dictionary/Phrases.h"

#include <algorithm>

namespace murvo::service {

namespace {

constexpr std::size_t mostWords = 6;
constexpr std::size_t mostBetween = 3;

bool isOneOf(std::initializer_list<QStringView> words, const QString &word) {
    return std::find(words.begin(), words.end(), word) != words.end();
}

bool isParticle(const QString &word) {
    return isOneOf({u"about", u"across", u"along", u"apart",   u"around",   u"aside", u"away",
                    u"back",  u"by",     u"down",  u"forward", u"in",       u"off",   u"on",
                    u"out",   u"over",   u"round", u"through", u"together", u"up"},
                   word);
}

bool isPossessive(const QString &word) {
    return isOneOf({u"my", u"your", u"his", u"her", u"its", u"our", u"their"}, word);
}

bool isSubject(const QString &word) {
    return isOneOf({u"i", u"you", u"he", u"she", u"it", u"we", u"they"}, word);
}

bool beginsNounPhrase(const QString &word) {
    return isPossessive(word) || isOneOf({u"the", u"a", u"an", u"this", u"that", u"these", u"those", u"him",
                                          u"me", u"us", u"them", u"it", u"you"},
                                         word);
}

// Two words that only meet: who does it and the verb ("I break"), "be" or "go" and where ("be in", "go to").
bool isChanceMeeting(const QStringList &words) {
    if (words.size() != 2)
        return false;
    const bool isPlace =
        isOneOf({u"about", u"at", u"by", u"for", u"from", u"in", u"of", u"on", u"to", u"with"}, words[1]);
    return isSubject(words[0]) || (isPlace && isOneOf({u"be", u"go"}, words[0]));
}

Phrase phraseOf(const QString &headword, const EnglishWord &first, const EnglishWord &last) {
    return {headword, first.start, last.start + last.length - first.start};
}

/// Looks for phrases in one text; the forms and dictionary words of its words are found once.
class PhraseSearch {
  public:
    PhraseSearch(const std::vector<EnglishWord> &words, const English &english,
                 const std::function<bool(const QString &)> &isKnown)
        : _words(words)
        , _isKnown(isKnown) {
        for (const EnglishWord &word : words) {
            _forms.append(word.form.toLower());
            _lemmas.append(english.lemmas(word.form).value(0, word.form.toLower()));
        }
    }

    [[nodiscard]] std::optional<Phrase> together(std::size_t clicked) const {
        for (std::size_t count = std::min(mostWords, _words.size()); count > 1; --count) {
            const std::size_t earliest = clicked + 1 > count ? clicked + 1 - count : 0;
            for (std::size_t first = earliest; first <= clicked && first + count <= _words.size(); ++first) {
                for (const QString &headword : headwords(first, count)) {
                    if (!isChanceMeeting(headword.split(u' ')) && _isKnown(headword))
                        return phraseOf(headword, _words[first], _words[first + count - 1]);
                }
            }
        }
        return std::nullopt;
    }

    [[nodiscard]] std::optional<Phrase> apart(std::size_t clicked) const {
        for (std::size_t verb = 0; verb < _words.size(); ++verb) {
            for (std::size_t particle = verb + 2; particle < std::min(_words.size(), verb + 2 + mostBetween);
                 ++particle) {
                if ((clicked != verb && clicked != particle) || !isParticle(form(particle)) ||
                    isPreposition(particle) || lemma(verb) == u"be" || isSubject(form(verb)))
                    continue;
                const QString headword = lemma(verb) + u' ' + form(particle);
                if (_isKnown(headword))
                    return phraseOf(headword, _words[verb], _words[particle]);
            }
        }
        return std::nullopt;
    }

  private:
    [[nodiscard]] const QString &form(std::size_t at) const { return _forms[static_cast<qsizetype>(at)]; }
    [[nodiscard]] const QString &lemma(std::size_t at) const { return _lemmas[static_cast<qsizetype>(at)]; }

    // "Took the dog off the couch": it belongs to what follows. So do most often those that are seldom else.
    [[nodiscard]] bool isPreposition(std::size_t at) const {
        return at + 1 < _words.size() &&
               (beginsNounPhrase(form(at + 1)) ||
                isOneOf({u"in", u"on", u"by", u"about", u"across", u"along"}, form(at)));
    }

    // Its first word in its dictionary form, its last word too, none, the last alone; each also with "one's".
    [[nodiscard]] QStringList headwords(std::size_t first, std::size_t count) const {
        const auto at = static_cast<qsizetype>(first);
        const auto end = at + static_cast<qsizetype>(count) - 1;
        const QStringList asWritten = _forms.mid(at, static_cast<qsizetype>(count));
        QStringList found;
        for (const int changed : {1, 3, 0, 2}) {
            QStringList words = asWritten;
            if ((changed & 1) != 0)
                words.first() = _lemmas[at];
            if ((changed & 2) != 0)
                words.last() = _lemmas[end];
            found.append(words.join(u' '));
            std::replace_if(words.begin(), words.end(), isPossessive, QStringLiteral("one's"));
            found.append(words.join(u' '));
        }
        found.removeDuplicates();
        return found;
    }

    const std::vector<EnglishWord> &_words;
    const std::function<bool(const QString &)> &_isKnown;
    QStringList _forms;
    QStringList _lemmas;
};

} // namespace

std::optional<Phrase> longestPhrase(const std::vector<EnglishWord> &words, std::size_t clicked,
                                    const English &english,
                                    const std::function<bool(const QString &)> &isKnown) {
    const PhraseSearch search(words, english, isKnown);
    const std::optional<Phrase> together = search.together(clicked);
    return together ? together : search.apart(clicked);
}

} // namespace murvo::service
