// SPDX-License-Identifier: GPL-3.0-or-later
#include "Dictionary/FreeDictEntry.h"

#include <QRegularExpression>

#include <algorithm>
#include <array>

namespace murvo::service {

namespace {

struct PartName {
    QStringView sign;
    QStringView name;
};

// In the order of search: the first that a mark like "<v, trans>" begins with.
constexpr std::array partNames{
    PartName{u"adj", u"adjective"},    PartName{u"adv", u"adverb"},
    PartName{u"conj", u"conjunction"}, PartName{u"interj", u"interjection"},
    PartName{u"int", u"interjection"}, PartName{u"num", u"numeral"},
    PartName{u"prep", u"preposition"}, PartName{u"pron", u"pronoun"},
    PartName{u"propn", u"name"},       PartName{u"pn", u"name"},
    PartName{u"art", u"article"},      PartName{u"n", u"noun"},
    PartName{u"v", u"verb"},
};

QString partNamed(QStringView sign) {
    const QString lower = sign.toString().toLower().trimmed();
    for (const PartName &part : partNames) {
        if (lower.startsWith(part.sign))
            return part.name.toString();
    }
    return {};
}

// "Ansturm <masc>" says its gender in a way that is none of the word's; "ĳ" is two letters everywhere else.
QString readable(QString text) {
    static const QRegularExpression marks(QStringLiteral("<[^<>]*>"));
    if (text.contains(u'<'))
        text.remove(marks);
    return text.replace(QStringLiteral("ĳ"), QStringLiteral("ij")).trimmed();
}

// "run /ɹˈʌn/ (ran /…/ <>, run) <v, trans>"
void readHead(const QString &line, Entry &entry) {
    static const QRegularExpression sound(QStringLiteral("\\s+/{1,2}([^/]+)/{1,2}"));
    static const QRegularExpression mark(QStringLiteral("<([^<>]*)>\\s*$"));
    const QRegularExpressionMatch heard = line.contains(u'/') ? sound.match(line) : QRegularExpressionMatch();
    if (heard.hasMatch())
        entry.pronunciation = heard.captured(1).trimmed();
    const QRegularExpressionMatch marked = line.contains(u'>') ? mark.match(line) : QRegularExpressionMatch();
    if (marked.hasMatch())
        entry.partOfSpeech = partNamed(marked.captured(1));
    qsizetype end = line.size();
    for (const QString &stop : {QStringLiteral(" /"), QStringLiteral(" <"), QStringLiteral(" (")}) {
        const qsizetype at = line.indexOf(stop);
        if (at > 0)
            end = std::min(end, at);
    }
    entry.headword = readable(line.left(end));
}

// Commas within brackets part nothing.
QStringList parted(const QString &text) {
    QStringList parts;
    int depth = 0;
    qsizetype start = 0;
    for (qsizetype at = 0; at < text.size(); ++at) {
        const QChar sign = text[at];
        depth += QStringView(u"([{").contains(sign) ? 1 : QStringView(u")]}").contains(sign) ? -1 : 0;
        if (depth <= 0 && (sign == u',' || sign == u';' || sign == u'、')) {
            parts.append(text.sliced(start, at - start));
            start = at + 1;
        }
    }
    parts.append(text.sliced(start));
    QStringList words;
    for (QString part : parts) {
        part = part.replace(u'~', u' ').simplified();
        while (part.endsWith(u':') || part.endsWith(u'/'))
            part = part.chopped(1).trimmed();
        if (!part.isEmpty() && part != u"?" && !words.contains(part))
            words.append(part);
    }
    return words;
}

QStringList bracedWords(const QString &text) {
    static const QRegularExpression braced(QStringLiteral("\\{([^{}]+)\\}"));
    QStringList words;
    for (const QRegularExpressionMatch &match : braced.globalMatch(text))
        words.append(match.captured(1).simplified());
    return words;
}

bool isEnglishText(const QString &text) {
    return std::none_of(text.begin(), text.end(),
                        [](QChar sign) { return sign.unicode() >= 0x80 && !sign.isPunct(); });
}

// "Haus <neut>" is a noun, "laufen <v, intr>" a verb: the translation's is the headword's.
QString partOfTranslation(const QString &text) {
    static const QRegularExpression mark(QStringLiteral("<([a-z]+)[^<>]*>"));
    if (!text.contains(u'<'))
        return {};
    const QString sign = mark.match(text).captured(1);
    const bool isGender = sign == u"masc" || sign == u"fem" || sign == u"neut" || sign == u"pl";
    return isGender ? QStringLiteral("noun") : partNamed(sign);
}

// Takes the remarks in brackets, "[Am.]", "[textil.]", "{स्थिति}", out of translations and returns them;
// "[<जाना]" tells of what the translation is made.
QString takeRemarks(QString &text) {
    static const QRegularExpression remark(QStringLiteral("[\\[{]([^\\[\\]{}]*)[\\]}]"));
    if (!text.contains(u'[') && !text.contains(u'{'))
        return {};
    QStringList remarks;
    for (const QRegularExpressionMatch &match : remark.globalMatch(text)) {
        const QString told = match.captured(1).replace(u'~', u' ').trimmed();
        if (!told.startsWith(u'<') && !told.startsWith(u':'))
            remarks.append(told);
    }
    text.remove(remark);
    remarks.removeDuplicates();
    return remarks.join(QStringLiteral("; "));
}

// "Seite <fem>S.,  /ˈɛs/ , Blatt": an abbreviation and how it is spoken, in English.
void removeSpokenAbbreviations(QString &text) {
    static const QRegularExpression abbreviation(
        QStringLiteral("(?:(?<=[>\\]])\\s*[^<>\\[\\],;]*|[^\\s<>\\[\\],;]*\\.)?,\\s+/[^/]*(?:/|$)"));
    if (text.contains(u'/'))
        text.remove(abbreviation);
}

// "失った (うしなった, ushinatta)": how it is read.
void removeReadings(QString &text) {
    static const QRegularExpression reading(
        QStringLiteral("\\s*\\([\\p{Hiragana}\\p{Katakana}ー\\s]+(?:,[^()]*)?\\)"));
    if (text.contains(u'('))
        text.remove(reading);
}

// "(saw, seen) görmek", "(k.dili) işemek. go a long way çok iş görmek": forms of the headword, labels, and
// behind a full stop phrases whose translations nothing parts from them. Returns the label.
QString takeRunningText(QString &text) {
    static const QRegularExpression reference(QStringLiteral("^\\(bak\\.\\).*$"));
    static const QRegularExpression forms(
        QStringLiteral("^\\((?:-[a-z]+|[a-z]+,)[a-z, -]*\\)\\s*|^\\(çoğ\\.\\)\\s*[a-z -]+\\)\\s*"));
    static const QRegularExpression label(QStringLiteral("^\\(([^()]*\\.[^()]*|argo|slang|eski)\\)\\s*"));
    static const QRegularExpression phrases(QStringLiteral("(?<=[\\p{Latin})]{3})[.!?]+(?:\\s.*)?$"));
    static const QRegularExpression latinName(QStringLiteral("\\((?:zool|bot)\\.\\)\\s*\\p{Lu}[a-z ]*"));
    text.remove(reference).remove(forms);
    QString told;
    if (const auto match = label.match(text); match.hasMatch()) {
        told = match.captured(1);
        text = text.sliced(match.capturedEnd());
    }
    text.remove(phrases).remove(latinName);
    return told;
}

// Such entries have nothing but numbered senses and end with a full stop, or go on behind one.
bool isRunningText(const QStringList &lines) {
    static const QRegularExpression goesOn(QStringLiteral("\\p{Latin}{3}\\. \\p{Latin}"));
    const QString all = QStringList(lines.mid(1)).join(u'\n').trimmed();
    const bool isEnded = all.endsWith(u'.') && !all.endsWith(QStringLiteral(".."));
    return all.startsWith(QStringLiteral("1. ")) && !lines.first().contains(u'<') &&
           (isEnded || goesOn.match(all).hasMatch());
}

/// Reads the lines below the head, one after the other.
class SenseReader {
  public:
    SenseReader(Entry &entry, Translations translations, bool isRunning)
        : _entry(entry)
        , _translations(translations)
        , _isRunning(isRunning) {}

    void read(const QString &line) {
        static const QRegularExpression number(QStringLiteral("^(\\d+)\\.\\s*(.*)$"));
        static const QRegularExpression bareNumber(QStringLiteral("^\\s+\\d+\\.\\s*$"));
        static const QRegularExpression remark(
            QStringLiteral("^\\s*(Note|Synonym|Synonyms|see|see also|See also):\\s*(.*)$"));
        static const QRegularExpression letter(QStringLiteral("^[a-h]\\.(?:\\s+|$)"));
        const QString text = line.trimmed().remove(letter);
        // Whole dictionaries are read by this: no expression is tried that cannot match.
        const bool isIndented = line.startsWith(u' ');
        if (text.isEmpty() || (isIndented && bareNumber.match(line).hasMatch()))
            return;
        const QRegularExpressionMatch remarked =
            text.contains(u':') ? remark.match(line) : QRegularExpressionMatch();
        const QRegularExpressionMatch numbered =
            text.front().isDigit() ? number.match(text) : QRegularExpressionMatch();
        if (remarked.hasMatch())
            readRemark(remarked.captured(1), remarked.captured(2));
        else if (text.startsWith(u'"'))
            readExample(text);
        else if (numbered.hasMatch())
            begin(numbered.captured(2));
        else if (_entry.senses.empty() || (_entry.senses.back().translations.isEmpty() && !_isNumbered))
            begin(text);
        else
            define(text);
    }

    // "go broke (go V: :broke)" with "- bankrutować" below: an example, and where nothing else is told, what
    // the translations are of.
    bool readPhrase(const QString &line, const QString &next) {
        static const QRegularExpression number(QStringLiteral("^\\s*\\d+\\.\\s+|^\\s+"));
        static const QRegularExpression pattern(QStringLiteral("\\s*\\([^()]*:[^()]*\\)"));
        static const QRegularExpression marks(QStringLiteral("``|''|,,|\\*"));
        if (!next.startsWith(QStringLiteral(" - ")) || line.contains(u'"'))
            return false;
        QString phrase = line;
        phrase = phrase.remove(number).remove(pattern).remove(marks).simplified();
        QString meaning = next.sliced(3);
        meaning = meaning.remove(marks).simplified();
        if (phrase.isEmpty() || !isEnglishText(phrase))
            return false;
        if (_entry.senses.empty())
            _entry.senses.push_back({parted(meaning), phrase, {}, {}});
        else
            _entry.senses.back().examples.push_back({phrase, meaning});
        return true;
    }

  private:
    // A number at its end begins the list of definitions that follow.
    void begin(QString text) {
        static const QRegularExpression innerNumber(QStringLiteral("\\s+\\d+\\.$"));
        _isNumbered = true;
        if (text.endsWith(u'.'))
            text.remove(innerNumber);
        if (_entry.partOfSpeech.isEmpty() && _translations == Translations::Foreign)
            _entry.partOfSpeech = partOfTranslation(text);
        static const QRegularExpression letter(QStringLiteral("^[a-h]\\.(?:\\s+|$)"));
        static const QRegularExpression blank(QStringLiteral("(?<=\\p{L}|\\p{M})_(?=\\p{L})"));
        Sense sense;
        if (_translations == Translations::Foreign) {
            text.replace(blank, QStringLiteral(" "));
            removeSpokenAbbreviations(text);
            removeReadings(text);
        }
        const QString label = _isRunning ? takeRunningText(text) : QString();
        sense.definition = takeRemarks(text);
        if (_translations == Translations::Foreign)
            text = text.trimmed().remove(letter);
        if (!label.isEmpty())
            sense.definition =
                label + (sense.definition.isEmpty() ? QString() : QStringLiteral("; ") + sense.definition);
        sense.translations = parted(readable(std::move(text)));
        _entry.senses.push_back(std::move(sense));
    }

    // What follows the translations tells in English where they fit; anything else is more of them.
    void define(const QString &text) {
        Sense &sense = _entry.senses.back();
        if (_translations == Translations::English || isEnglishText(text) || sense.translations.isEmpty())
            addRemark(text);
        else
            sense.translations += parted(readable(text));
    }

    void addRemark(const QString &text) {
        QString &definition = _entry.senses.back().definition;
        definition += (definition.isEmpty() ? QString() : QStringLiteral("; ")) + readable(text);
    }

    void readExample(const QString &text) {
        if (_entry.senses.empty())
            return;
        const qsizetype end = text.indexOf(u'"', 1);
        const QString translation = end < 0 ? QString() : text.sliced(end + 1).trimmed();
        Example example{text.mid(1, end < 0 ? -1 : end - 1).simplified(), {}};
        if (translation.startsWith(u"- "))
            example.translation = translation.sliced(2).simplified();
        if (!example.text.isEmpty())
            _entry.senses.back().examples.push_back(std::move(example));
    }

    void readRemark(const QString &kind, const QString &text) {
        if (_entry.senses.empty())
            return;
        if (kind == u"see" && _entry.partOfSpeech.isEmpty())
            _entry.isOfForm = bracedWords(text).contains(_entry.headword);
        else if (kind.startsWith(u"Synonym"))
            _entry.senses.back().synonyms += bracedWords(text);
        else if (kind == u"Note" && _entry.senses.back().examples.empty())
            addRemark(text);
    }

    Entry &_entry;
    Translations _translations;
    bool _isRunning;
    bool _isNumbered = false;
};

QString unstressed(QString sound) {
    return sound.remove(QStringLiteral("ˈ")).remove(QStringLiteral("ˌ"));
}

} // namespace

Entry readFreeDictEntry(const QString &text, Translations translations) {
    Entry entry;
    const QStringList lines = text.split(u'\n');
    readHead(lines.first(), entry);
    const bool isForeign = translations == Translations::Foreign;
    const bool isRunning = isForeign && isRunningText(lines);
    SenseReader reader(entry, translations, isRunning);
    for (qsizetype i = 1; i < lines.size(); ++i) {
        if (isForeign && reader.readPhrase(lines[i], lines.value(i + 1)))
            ++i;
        else
            reader.read(lines[i]);
    }
    std::erase_if(entry.senses, [isRunning](const Sense &sense) {
        return sense.translations.isEmpty() && (sense.definition.isEmpty() || isRunning);
    });
    return entry;
}

QStringList sectionsOf(const QString &text) {
    static const QRegularExpression section(QStringLiteral("^[IVX]+\\.\\s+(<[^<>]*>)(.*)$"));
    static const QRegularExpression ownHead(QStringLiteral("^([^/\\[\\d]+?)(\\s+/[^/]*/|\\s{2,})(.*)$"));
    static const QRegularExpression letter(QStringLiteral("^\\s*[a-h]\\.\\s*|(?<=\\s)[a-h]\\.\\s+"));
    static const QRegularExpression phrase(
        QStringLiteral("^\\s*\\d+\\.\\s+(.*?)\\s*(\\([^()]*:[^()]*\\))?\\s*$"));
    const QStringList lines = text.split(u'\n');
    QStringList sections;
    for (qsizetype i = 1; i < lines.size(); ++i) {
        QString line = lines[i];
        if (const auto match = section.match(line); match.hasMatch()) {
            const auto own = ownHead.match(match.captured(2));
            const bool isOther = own.hasMatch() && !own.captured(1).trimmed().isEmpty();
            const QString head =
                isOther ? own.captured(1).trimmed() : lines.first().section(u'<', 0, 0).trimmed();
            sections.append(head + u' ' + match.captured(1));
            line = isOther ? own.captured(3) : match.captured(2);
        } else if (sections.isEmpty()) {
            return {text};
        }
        // "3.  Good! (:good)" with "- Dobrze!" below is an example.
        if (const auto match = phrase.match(line); match.hasMatch() && lines.value(i + 1).startsWith(u" - "))
            line = u'"' + match.captured(1) + QStringLiteral("\"  ") + lines[++i].trimmed();
        sections.last() += u'\n' + line.remove(letter).trimmed();
    }
    return sections;
}

std::vector<Entry> withoutCutHeadwords(std::vector<Entry> entries) {
    const auto isStressed = [](const Entry &entry) { return entry.pronunciation.contains(u'ˈ'); };
    const auto isCut = [&](const Entry &entry) {
        const QString sound = unstressed(entry.pronunciation);
        return std::any_of(entries.begin(), entries.end(), [&](const Entry &other) {
            const QString shorter = unstressed(other.pronunciation);
            if (other.headword != entry.headword || shorter.isEmpty())
                return false;
            const bool isLonger = sound.size() > shorter.size() + 1 && sound.startsWith(shorter);
            return isLonger || (entry.partOfSpeech.isEmpty() && isStressed(entry) && !isStressed(other));
        });
    };
    std::vector<Entry> whole;
    for (const Entry &entry : entries) {
        if (!isCut(entry))
            whole.push_back(entry);
    }
    return whole;
}

std::vector<Entry> withBareOnesJoined(std::vector<Entry> entries) {
    const auto isBare = [](const Entry &entry) {
        return !entry.isOfForm &&
               std::all_of(entry.senses.begin(), entry.senses.end(), [](const Sense &sense) {
                   return sense.definition.isEmpty() && sense.examples.empty() && sense.synonyms.isEmpty();
               });
    };
    std::vector<Entry> joined;
    for (Entry &entry : entries) {
        const auto same = std::find_if(joined.begin(), joined.end(), [&](const Entry &other) {
            return isBare(other) && other.headword == entry.headword &&
                   other.partOfSpeech == entry.partOfSpeech && other.pronunciation == entry.pronunciation;
        });
        if (entry.senses.size() != 1 || !isBare(entry) || same == joined.end()) {
            joined.push_back(std::move(entry));
            continue;
        }
        for (Sense &sense : entry.senses)
            same->senses.push_back(std::move(sense));
    }
    return joined;
}

} // namespace murvo::service
