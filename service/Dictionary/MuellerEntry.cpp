// SPDX-License-Identifier: GPL-3.0-or-later
#include "Dictionary/MuellerEntry.h"

#include <QRegularExpression>

#include <algorithm>
#include <array>

namespace murvo::service {

namespace {

// Longer texts are explanations, in which a comma parts nothing.
constexpr qsizetype longestList = 60;

struct Renamed {
    QStringView sign;
    QStringView name;
};

constexpr std::array partNames{
    Renamed{u"n.", u"noun"},           Renamed{u"v.", u"verb"},
    Renamed{u"a.", u"adjective"},      Renamed{u"adv.", u"adverb"},
    Renamed{u"prep.", u"preposition"}, Renamed{u"pron.", u"pronoun"},
    Renamed{u"cj.", u"conjunction"},   Renamed{u"interj.", u"interjection"},
    Renamed{u"inter.", u"pronoun"},    Renamed{u"n-card.", u"numeral"},
    Renamed{u"n-ord.", u"numeral"},    Renamed{u"pref.", u"prefix"},
};

// Labels of grammar, which Russian readers would not know.
constexpr std::array labelNames{
    Renamed{u"p.", u"прош. время"},
    Renamed{u"p-p.", u"прич. прош. времени"},
    Renamed{u"pres-p.", u"прич. наст. времени"},
    Renamed{u"pl.", u"мн. ч."},
    Renamed{u"sg.", u"ед. ч."},
    Renamed{u"comp.", u"сравн. степень"},
    Renamed{u"sup.", u"превосх. степень"},
    Renamed{u"attr.", u"как определение"},
    Renamed{u"predic.", u"как сказуемое"},
    Renamed{u"pers.", u"личное"},
    Renamed{u"obj.", u"косв. падеж"},
};

// The typesetting has its own signs for some sounds; the longer ones are looked for first.
constexpr std::array sounds{
    Renamed{u"ɘ:", u"ɔː"}, Renamed{u"ɘɪ", u"ɔɪ"}, Renamed{u"ɘ", u"ɒ"}, Renamed{u"ɜ:", u"ɜː"},
    Renamed{u"ɜ", u"ə"},   Renamed{u"ʊ:", u"uː"}, Renamed{u"ɛ", u"e"}, Renamed{u":", u"ː"},
    Renamed{u"↗", u"ˈ"},   Renamed{u"↘", u"ˌ"},   Renamed{u"g", u"ɡ"},
};

template<std::size_t Size>
QString renamed(const std::array<Renamed, Size> &names, QStringView sign) {
    const auto found =
        std::find_if(names.begin(), names.end(), [sign](const Renamed &each) { return each.sign == sign; });
    return found == names.end() ? QString() : found->name.toString();
}

QString inIpa(QStringView written) {
    QString ipa;
    while (!written.isEmpty()) {
        const auto sound = std::find_if(sounds.begin(), sounds.end(), [written](const Renamed &each) {
            return written.startsWith(each.sign);
        });
        if (sound == sounds.end())
            ipa += written.front();
        else
            ipa += sound->name;
        written = written.sliced(sound == sounds.end() ? 1 : sound->sign.size());
    }
    return ipa;
}

bool isRussian(QChar sign) {
    return sign.script() == QChar::Script_Cyrillic;
}

bool isLatin(QChar sign) {
    return sign.script() == QChar::Script_Latin;
}

// Signs within brackets part nothing.
QStringList parted(const QString &text, QChar separator) {
    QStringList parts{QString()};
    int depth = 0;
    for (const QChar sign : text) {
        depth += QStringView(u"({[").contains(sign) ? 1 : QStringView(u")}]").contains(sign) ? -1 : 0;
        if (depth <= 0 && sign == separator)
            parts.append(QString());
        else
            parts.last() += sign;
    }
    for (QString &part : parts)
        part = part.trimmed();
    parts.removeAll(QString());
    return parts;
}

// Takes the labels ("_разг.") at the beginning of a text away and returns them.
QStringList takeLabels(QString &text) {
    static const QRegularExpression label(QStringLiteral("^(?:и\\s+)?_([\\p{L}-]+\\.?)\\s*"));
    QStringList labels;
    for (auto match = label.match(text); match.hasMatch(); match = label.match(text)) {
        labels.append(match.captured(1));
        text = text.sliced(match.capturedEnd());
    }
    return labels;
}

QString readable(QString text) {
    static const QRegularExpression label(QStringLiteral("_([\\p{L}-]+\\.?)"));
    static const QRegularExpression reference(QStringLiteral("\\{[^{}]*\\}?"));
    static const QRegularExpression sound(QStringLiteral("\\[[^\\[\\]А-яЁё]*\\]"));
    return text.remove(reference).remove(sound).replace(label, QStringLiteral("\\1")).simplified();
}

// Where the Russian of "to see the light _разг. увидеть свет" begins; its length when there is none.
qsizetype beginningOfRussian(const QString &text) {
    int depth = 0;
    for (qsizetype at = 0; at < text.size(); ++at) {
        const QChar sign = text[at];
        depth += QStringView(u"({").contains(sign) ? 1 : QStringView(u")}").contains(sign) ? -1 : 0;
        if (depth > 0 || (sign != u'_' && !isRussian(sign)))
            continue;
        while (at > 0 && QStringView(u"\"«").contains(text[at - 1]))
            --at;
        return at;
    }
    return text.size();
}

// Where two English words or more follow the Russian of a text, or anything English behind a colon; its
// length when there are none. One word alone is spoken about.
qsizetype beginningOfEnglish(const QString &text) {
    static const QRegularExpression english(
        QStringLiteral("(?<=: )[A-Za-z]|(?<![\\p{L}_'-])[A-Za-z][A-Za-z']*(?= [A-Za-z])"));
    for (const QRegularExpressionMatch &match : english.globalMatch(text)) {
        const QStringView before = QStringView(text).left(match.capturedStart());
        if (before.count(u'(') == before.count(u')') && before.count(u'{') == before.count(u'}'))
            return match.capturedStart();
    }
    return text.size();
}

bool isEnglishFirst(const QString &text) {
    const auto letter =
        std::find_if(text.begin(), text.end(), [](QChar sign) { return sign.isLetter() || sign == u'_'; });
    return letter != text.end() && isLatin(*letter);
}

enum class UnitKind { Homonym, Part, Sense, Letter };

/// A numbered piece of an entry, its lines joined.
struct Unit {
    UnitKind kind = UnitKind::Homonym;
    QString text;
};

/// Finds the numbers at the beginnings of lines; one that is not the next of its kind is part of the text.
class UnitFinder {
  public:
    void add(const QString &line) {
        static const QRegularExpression homonym(QStringLiteral("^_[IVX]+\\b\\s*"));
        static const QRegularExpression number(QStringLiteral("^(\\d{1,2})([.)])\\s*"));
        static const QRegularExpression letter(QStringLiteral("^([а-я])\\)\\s*"));
        if (const auto match = homonym.match(line); match.hasMatch()) {
            _parts = _senses = 0;
            begin(UnitKind::Homonym, line, match);
        } else if (const auto numbered = number.match(line); numbered.hasMatch()) {
            readNumber(line, numbered);
        } else if (const auto lettered = letter.match(line); lettered.hasMatch()) {
            begin(UnitKind::Letter, line, lettered);
        } else {
            append(line);
        }
    }
    [[nodiscard]] const std::vector<Unit> &units() const { return _units; }

  private:
    void begin(UnitKind kind, const QString &line, const QRegularExpressionMatch &mark) {
        _units.push_back({kind, line.sliced(mark.capturedEnd())});
    }
    void readNumber(const QString &line, const QRegularExpressionMatch &match) {
        const int number = match.captured(1).toInt();
        const bool isPart = match.captured(2) == u".";
        int &last = isPart ? _parts : _senses;
        if (number != last + 1) {
            append(line);
            return;
        }
        last = number;
        if (isPart)
            _senses = 0;
        begin(isPart ? UnitKind::Part : UnitKind::Sense, line, match);
    }
    // A word that was broken at its hyphen goes on without a space; a dash stands alone.
    void append(const QString &line) {
        QString &text = _units.back().text;
        if (!text.isEmpty() && (!text.endsWith(u'-') || text.endsWith(QStringLiteral(" -"))))
            text += u' ';
        text += line;
    }

    std::vector<Unit> _units{1};
    int _parts = 0;
    int _senses = 0;
};

/// Makes entries of the units, one after the other.
class UnitReader {
  public:
    explicit UnitReader(QString headword)
        : _headword(std::move(headword)) {}

    void read(const Unit &unit) {
        QString text = unit.text;
        if (unit.kind == UnitKind::Homonym || unit.kind == UnitKind::Part) {
            beginEntry(unit.kind, text);
            if (!text.isEmpty())
                readSense(text);
        } else if (unit.kind == UnitKind::Sense || _entries.back().senses.empty()) {
            readSense(text);
        } else {
            readParts(text, _entries.back().senses.back());
        }
    }
    [[nodiscard]] std::vector<Entry> entries() && {
        for (Entry &entry : _entries) {
            for (Sense &sense : entry.senses)
                std::erase_if(sense.examples,
                              [](const Example &example) { return example.translation.isEmpty(); });
        }
        std::erase_if(_entries, [](const Entry &entry) { return entry.senses.empty(); });
        return std::move(_entries);
    }

  private:
    // "[ði:] (полная форма); [ðɪ] (...)", labels, its forms "(went - gone)", in any order.
    void beginEntry(UnitKind kind, QString &text) {
        static const QRegularExpression sound(
            QStringLiteral("^(?:[;,\\s]|_[\\p{L}-]+\\.|тж\\.|обыкн\\.|или )*\\[([^\\[\\]]*)\\]\\s*"));
        static const QRegularExpression remark(QStringLiteral("^\\(([^()]*)\\)\\s*"));
        Entry entry{_headword, {}, {}, {}};
        _labels.clear();
        for (bool goesOn = true; goesOn;) {
            const qsizetype before = text.size();
            for (const QString &label : takeLabels(text)) {
                const QString name = renamed(partNames, label);
                if (name.isEmpty())
                    _labels.append(label);
                else if (entry.partOfSpeech.isEmpty())
                    entry.partOfSpeech = name;
            }
            if (const auto match = sound.match(text); match.hasMatch()) {
                if (entry.pronunciation.isEmpty())
                    entry.pronunciation = inIpa(match.captured(1).section(u',', 0, 0));
                text = text.sliced(match.capturedEnd()).remove(remark);
            }
            if (const auto match = remark.match(text);
                match.hasMatch() && std::any_of(text.begin(), text.begin() + match.capturedEnd(), isLatin))
                text = text.sliced(match.capturedEnd());
            goesOn = text.size() < before;
        }
        if (kind == UnitKind::Homonym)
            _pronunciation = entry.pronunciation;
        else if (entry.pronunciation.isEmpty())
            entry.pronunciation = _pronunciation;
        _entries.push_back(std::move(entry));
    }

    void readSense(QString text) {
        Sense sense;
        // "(s [z])" is how the plural is made.
        static const QRegularExpression ending(QStringLiteral("^\\(-?s\\s*(?:\\[[^\\[\\]]*\\])?\\)\\s*"));
        QStringList labels = _labels + takeLabels(text);
        text.remove(ending);
        _entries.back().isOfForm =
            _entries.back().senses.empty() && !labels.isEmpty() && text.startsWith(QStringLiteral("от "));
        labels.removeIf([](const QString &label) { return !renamed(partNames, label).isEmpty(); });
        for (QString &label : labels) {
            const QString name = renamed(labelNames, label);
            label = name.isEmpty() ? label : name;
        }
        readParts(text, sense);
        if (sense.translations.isEmpty() && sense.definition.isEmpty() && sense.examples.empty())
            return;
        if (sense.translations.isEmpty() && sense.definition.isEmpty() && labels.isEmpty())
            labels.append(QStringLiteral("в сочетаниях"));
        sense.definition = (labels.join(QStringLiteral(", ")) + u' ' + sense.definition).trimmed();
        _entries.back().senses.push_back(std::move(sense));
    }

    static void readParts(const QString &text, Sense &sense) {
        for (const QString &part : parted(text, u';')) {
            const bool isReference = part.startsWith(u'=') || part.startsWith(QStringLiteral("от "));
            if (isReference && sense.examples.empty())
                refer(part, sense);
            else if (isEnglishFirst(part))
                addExample(part, sense);
            else if (!sense.examples.empty())
                continueExample(readable(part), sense.examples.back());
            else
                translate(part, sense);
        }
    }

    // "= declinometer", "от go 1": another word tells what it means.
    static void refer(const QString &part, Sense &sense) {
        static const QRegularExpression place(QStringLiteral("(\\s+[IVX]+)?(\\s*,?\\s*\\d+\\)?)*\\s*$"));
        const qsizetype end = part.startsWith(u'=') ? beginningOfRussian(part) : part.size();
        const QString word = readable(part.left(end)).remove(place);
        sense.definition += (sense.definition.isEmpty() ? QString() : QStringLiteral(" ")) + word;
        QString rest = part.sliced(end);
        takeLabels(rest);
        if (!rest.isEmpty())
            translate(rest, sense);
    }

    static void addExample(const QString &part, Sense &sense) {
        const qsizetype russian = beginningOfRussian(part);
        QString rest = part.sliced(russian);
        takeLabels(rest);
        Example example{readable(part.left(russian)), readable(rest)};
        example.text.replace(QStringLiteral("(или "), QStringLiteral("(or "));
        while (example.text.endsWith(u',') || example.text.endsWith(u':'))
            example.text = example.text.chopped(1).trimmed();
        sense.examples.push_back(std::move(example));
    }

    static void continueExample(const QString &text, Example &example) {
        example.translation += (example.translation.isEmpty() ? QString() : QStringLiteral("; ")) + text;
    }

    // Behind the translations may stand an example: "употр. в вопросах: what is it? что это?", or a phrase
    // whose translations follow: "светить light up".
    static void translate(QString text, Sense &sense) {
        static const QRegularExpression anything(QStringLiteral("-(л|либо)\\b"));
        takeLabels(text);
        const qsizetype english = beginningOfEnglish(text);
        QString russian = readable(text.left(english));
        while (russian.endsWith(u':') || russian.endsWith(u','))
            russian = russian.chopped(1).trimmed();
        const bool isList = russian.size() <= longestList && !russian.contains(anything);
        for (const QString &word : isList ? parted(russian, u',') : QStringList(russian)) {
            if (!word.isEmpty() && !sense.translations.contains(word))
                sense.translations.append(word);
        }
        if (english < text.size())
            addExample(text.sliced(english), sense);
    }

    QString _headword;
    QString _pronunciation;
    QStringList _labels; ///< of the whole entry
    std::vector<Entry> _entries;
};

} // namespace

std::vector<Entry> readMuellerEntries(const QString &text) {
    const QStringList lines = text.split(u'\n');
    UnitFinder finder;
    for (qsizetype i = 1; i < lines.size(); ++i) {
        if (const QString line = lines[i].trimmed(); !line.isEmpty())
            finder.add(line);
    }
    UnitReader reader(lines.first().trimmed());
    for (const Unit &unit : finder.units())
        reader.read(unit);
    return std::move(reader).entries();
}

Entry muellerPhrase(const std::vector<Entry> &entries, const QString &phrase) {
    Entry found{phrase, {}, {}, {}};
    for (const Entry &entry : entries) {
        for (const Sense &sense : entry.senses) {
            for (const Example &example : sense.examples) {
                const QString text =
                    example.text.startsWith(QStringLiteral("to ")) ? example.text.sliced(3) : example.text;
                if (text.compare(phrase, Qt::CaseInsensitive) != 0 || example.translation.isEmpty())
                    continue;
                for (const QString &translation : parted(example.translation, u';'))
                    found.senses.push_back({parted(translation, u','), {}, {}, {}});
            }
        }
    }
    return found;
}

} // namespace murvo::service
