// SPDX-License-Identifier: GPL-3.0-or-later
#include "Dictionary/English.h"

#include "Dictionary/WordNet.h"

#include <QHash>
#include <QRegularExpression>
#include <QSet>

#include <algorithm>

namespace murvo::service {

namespace {

constexpr qsizetype longestForm = 100;

bool isApostrophe(QChar sign) {
    return sign == u'\'' || sign == u'\u2019' || sign == u'\u02BC';
}

bool isHyphen(QChar sign) {
    return sign == u'-' || sign == u'\u2010' || sign == u'\u2011';
}

/// A contraction: what it stands for, and the word that a learner would look up.
struct Contraction {
    QStringView form;
    QStringView whole;
    QStringView word;
};

constexpr Contraction contractions[] = {
    {u"'cause", u"because", u"because"},
    {u"'em", u"them", u"them"},
    {u"'til", u"until", u"until"},
    {u"'tis", u"it is", u"it"},
    {u"'twas", u"it was", u"it"},
    {u"ain't", u"am not", u"be"},
    {u"c'mon", u"come on", u"come"},
    {u"can't", u"cannot", u"can"},
    {u"cannot", u"can not", u"can"},
    {u"d'you", u"do you", u"do"},
    {u"dunno", u"do not know", u"know"},
    {u"gimme", u"give me", u"give"},
    {u"gonna", u"going to", u"go"},
    {u"gotcha", u"got you", u"get"},
    {u"gotta", u"got to", u"get"},
    {u"hafta", u"have to", u"have"},
    {u"kinda", u"kind of", u"kind"},
    {u"lemme", u"let me", u"let"},
    {u"let's", u"let us", u"let"},
    {u"lotta", u"lot of", u"lot"},
    {u"oughta", u"ought to", u"ought"},
    {u"outta", u"out of", u"out"},
    {u"shan't", u"shall not", u"shall"},
    {u"sorta", u"sort of", u"sort"},
    {u"tryna", u"trying to", u"try"},
    {u"wanna", u"want to", u"want"},
    {u"whaddya", u"what do you", u"what"},
    {u"whatcha", u"what are you", u"what"},
    {u"won't", u"will not", u"will"},
    {u"y'all", u"you all", u"you"},
    {u"ya", u"you", u"you"},
};

struct Ending {
    QStringView sign;
    QStringView whole;
};

constexpr Ending endings[] = {{u"n't", u" not"},  {u"'re", u" are"}, {u"'ve", u" have"},
                              {u"'ll", u" will"}, {u"'m", u" am"},   {u"'d", u" would / had"},
                              {u"'s", u""},       {u"s'", u"s"}};

const Contraction *findContraction(QStringView form) {
    const auto *found = std::find_if(std::begin(contractions), std::end(contractions),
                                     [form](const Contraction &each) { return each.form == form; });
    return found == std::end(contractions) ? nullptr : found;
}

QString plain(QStringView form) {
    QString text = form.toString().toLower();
    for (QChar &sign : text) {
        if (isApostrophe(sign))
            sign = u'\'';
        else if (isHyphen(sign))
            sign = u'-';
    }
    return text;
}

/// One way in which an inflected form is made: its ending, and the word's own in its place.
struct Rule {
    PartOfSpeech partOfSpeech;
    const char *ending;
    const char *own;
};

constexpr Rule rules[] = {
    {PartOfSpeech::Noun, "s", ""},        {PartOfSpeech::Noun, "ses", "s"},
    {PartOfSpeech::Noun, "xes", "x"},     {PartOfSpeech::Noun, "zes", "z"},
    {PartOfSpeech::Noun, "ches", "ch"},   {PartOfSpeech::Noun, "shes", "sh"},
    {PartOfSpeech::Noun, "men", "man"},   {PartOfSpeech::Noun, "ies", "y"},
    {PartOfSpeech::Verb, "s", ""},        {PartOfSpeech::Verb, "ies", "y"},
    {PartOfSpeech::Verb, "es", "e"},      {PartOfSpeech::Verb, "es", ""},
    {PartOfSpeech::Verb, "ed", "e"},      {PartOfSpeech::Verb, "ed", ""},
    {PartOfSpeech::Verb, "ing", "e"},     {PartOfSpeech::Verb, "ing", ""},
    {PartOfSpeech::Adjective, "er", ""},  {PartOfSpeech::Adjective, "est", ""},
    {PartOfSpeech::Adjective, "er", "e"}, {PartOfSpeech::Adjective, "est", "e"},
};

// Words that WordNet has not, or only as something rare that they are not in a film: "us" is no plural of
// "u".
bool isFunctionWord(const QByteArray &form) {
    static const QSet<QByteArray> words{
        "a",     "an",     "and",  "as",    "because", "during",    "for",      "her",        "hers",
        "him",   "his",    "if",   "into",  "its",     "me",        "my",       "myself",     "of",
        "off",   "or",     "our",  "ours",  "since",   "something", "than",     "that",       "the",
        "their", "theirs", "them", "these", "they",    "this",      "those",    "to",         "until",
        "us",    "we",     "what", "when",  "where",   "which",     "while",    "who",        "whose",
        "with",  "you",    "your", "yours", "he",      "she",       "it",       "i",          "and",
        "but",   "yes",    "at",   "by",    "from",    "on",        "anything", "everything", "nothing",
        "must",  "mrs"};
    return words.contains(form);
}

// Forms of the commonest verbs, which the rules for endings would take for others, too: "was" for several
// "wa".
QStringList verbsOfForm(const QString &form) {
    static const QHash<QString, QStringList> verbs{
        {QStringLiteral("am"), {QStringLiteral("be")}},
        {QStringLiteral("is"), {QStringLiteral("be")}},
        {QStringLiteral("are"), {QStringLiteral("be")}},
        {QStringLiteral("was"), {QStringLiteral("be")}},
        {QStringLiteral("were"), {QStringLiteral("be")}},
        {QStringLiteral("has"), {QStringLiteral("have")}},
        {QStringLiteral("had"), {QStringLiteral("have")}},
        {QStringLiteral("does"), {QStringLiteral("do")}},
        {QStringLiteral("did"), {QStringLiteral("do")}},
        {QStringLiteral("could"), {QStringLiteral("could"), QStringLiteral("can")}},
        {QStringLiteral("might"), {QStringLiteral("might"), QStringLiteral("may")}},
        {QStringLiteral("would"), {QStringLiteral("would"), QStringLiteral("will")}},
        {QStringLiteral("should"), {QStringLiteral("should"), QStringLiteral("shall")}}};
    return verbs.value(form);
}

/// A word that a form can be, and how likely that is.
struct Candidate {
    QByteArray word;
    int weight = 0;
};

void add(std::vector<Candidate> &candidates, const QByteArray &word, int weight) {
    const auto known = std::find_if(candidates.begin(), candidates.end(),
                                    [&word](const Candidate &each) { return each.word == word; });
    if (known == candidates.end())
        candidates.push_back({word, weight});
    else
        known->weight = std::max(known->weight, weight);
}

// The form as a word of its own. Of words that WordNet's makers met as often, mostly never, it goes before
// those that are used less: "wedding" before "wed".
void addItself(std::vector<Candidate> &sorted, Candidate itself, const WordRank &ranks) {
    const auto known = std::find_if(sorted.begin(), sorted.end(),
                                    [&itself](const Candidate &each) { return each.word == itself.word; });
    if (known != sorted.end()) {
        itself.weight = std::max(itself.weight, known->weight);
        sorted.erase(known);
    }
    const int rank = ranks.of(QString::fromLatin1(itself.word));
    const auto goesBehind = [&](const Candidate &each) {
        if (each.weight != itself.weight || rank == 0)
            return each.weight < itself.weight;
        const int other = ranks.of(QString::fromLatin1(each.word));
        return other == 0 || rank < other;
    };
    sorted.insert(std::find_if(sorted.begin(), sorted.end(), goesBehind), std::move(itself));
}

// "U.S.", "p.m.": letters by themselves, each with its full stop. The place itself when there is none.
qsizetype abbreviationEnd(QStringView line, qsizetype at) {
    qsizetype end = at;
    while (end + 1 < line.size() && line[end].isLetter() && line[end + 1] == u'.' &&
           (end == at ? at == 0 || !line[at - 1].isLetterOrNumber() : true))
        end += 2;
    const bool isCutOff = end < line.size() && line[end].isLetterOrNumber();
    return end - at >= 4 && !isCutOff ? end : at;
}

} // namespace

std::vector<EnglishWord> englishWords(QStringView line) {
    std::vector<EnglishWord> words;
    const auto isInner = [line](qsizetype at) {
        return (isApostrophe(line[at]) || isHyphen(line[at])) && at + 1 < line.size() &&
               line[at + 1].isLetter();
    };
    for (qsizetype at = 0; at < line.size();) {
        const bool opens =
            isApostrophe(line[at]) && isInner(at) && (at == 0 || !line[at - 1].isLetterOrNumber());
        if (!line[at].isLetter() && !opens) {
            ++at;
            continue;
        }
        if (const qsizetype abbreviation = abbreviationEnd(line, at); abbreviation > at) {
            words.push_back({static_cast<int>(at), static_cast<int>(abbreviation - at),
                             line.sliced(at, abbreviation - at).toString()});
            at = abbreviation;
            continue;
        }
        qsizetype end = at + 1;
        while (end < line.size() && (line[end].isLetterOrNumber() || line[end].isMark() || isInner(end)))
            ++end;
        qsizetype start = at;
        if (opens && findContraction(plain(line.sliced(at, end - at))) == nullptr)
            ++start; // a quotation mark
        // "lookin'" has lost its last letter, "'hello'" has not.
        if (end < line.size() && isApostrophe(line[end]) && line.sliced(start, end - start).endsWith(u"in"))
            ++end;
        QString form = line.sliced(start, end - start).toString();
        for (QChar &sign : form)
            sign = isApostrophe(sign) ? QChar(u'\'') : sign;
        words.push_back({static_cast<int>(start), static_cast<int>(end - start), form});
        at = end;
    }
    return words;
}

QString uncontracted(QStringView form) {
    const QString text = plain(form);
    if (const Contraction *contraction = findContraction(text))
        return contraction->whole.toString();
    if (text.size() > 3 && text.endsWith(u"in'"))
        return text.chopped(1) + u'g';
    for (const Ending &ending : endings) {
        if (!ending.whole.isEmpty() && ending.sign != u"s'" && text.size() > ending.sign.size() &&
            text.endsWith(ending.sign))
            return text.chopped(ending.sign.size()) + ending.whole.toString();
    }
    return {};
}

QStringList English::knownWords(const QByteArray &form) const {
    std::vector<Candidate> candidates;
    int own = -1;
    for (const PartOfSpeech part : partsOfSpeech) {
        if (_wordNet.has(form, part))
            own = std::max(own, 0) + _wordNet.timesMet(form, part);
        const QList<QByteArray> irregular = _wordNet.irregular(form, part);
        for (const QByteArray &word : irregular)
            add(candidates, word, _wordNet.timesMet(word, part) + 1);
        if (!irregular.isEmpty())
            continue;
        for (const Rule &rule : rules) {
            if (rule.partOfSpeech != part || !form.endsWith(rule.ending))
                continue;
            QByteArray word = form.chopped(static_cast<qsizetype>(qstrlen(rule.ending))) + rule.own;
            if (word.size() > 1 && _wordNet.has(word, part))
                add(candidates, word, _wordNet.timesMet(word, part));
        }
    }
    std::stable_sort(candidates.begin(), candidates.end(), [](const Candidate &left, const Candidate &right) {
        return left.weight > right.weight;
    });
    if (own >= 0)
        addItself(candidates, {form, own}, _rank);
    QStringList words;
    for (const Candidate &candidate : candidates)
        words.append(QString::fromLatin1(candidate.word));
    return words;
}

QStringList English::lemmas(QStringView form) const {
    const QString text = plain(form.left(longestForm)).simplified();
    if (text.isEmpty())
        return {};
    if (const Contraction *contraction = findContraction(text))
        return {contraction->word.toString()};
    if (const QStringList verbs = verbsOfForm(text); !verbs.isEmpty())
        return verbs;
    if (isFunctionWord(text.toUtf8()))
        return {text};
    QStringList words = knownWords(text.toUtf8());
    if (!words.isEmpty())
        return words;
    if (text.size() > 3 && text.endsWith(u"in'"))
        return lemmas(QString(text.chopped(1) + u'g'));
    for (const Ending &ending : endings) {
        if (text.size() > ending.sign.size() && text.endsWith(ending.sign))
            return lemmas(text.chopped(ending.sign == u"s'" ? 1 : ending.sign.size()));
    }
    // "mother-in-law" is written with spaces or in one word elsewhere, "café" without its accent.
    const QString unaccented =
        text.normalized(QString::NormalizationForm_D).remove(QRegularExpression(QStringLiteral("\\p{Mn}")));
    for (const QString &other : {QString(text).replace(u'-', u' '), QString(text).remove(u'-'), unaccented}) {
        if (other != text && !knownWords(other.toUtf8()).isEmpty())
            return knownWords(other.toUtf8());
    }
    return {text};
}

} // namespace murvo::service
