// SPDX-License-Identifier: GPL-3.0-or-later
#include "Dictionary/EntryOrder.h"

#include <QRegularExpression>

#include <algorithm>
#include <array>
#include <tuple>

namespace murvo::service {

namespace {

// What is said seldom, and what is said in one field only: "naut.", "techn.".
int doubtsOf(const Sense &sense) {
    static const QRegularExpression seldom(
        QStringLiteral("\\b(obs|dated|archaic|rare|veraltet|selten|уст|редк|поэт|жарг)\\b"));
    static const QRegularExpression style(QStringLiteral("\\b(geh|übtr|ugs|Am|Br|разг|ам|перен)\\."));
    static const QRegularExpression field(QStringLiteral("(^|; |, )\\p{L}[\\p{L}-]{1,9}\\.(;|,|$)"));
    if (sense.definition.contains(seldom))
        return 8;
    if (sense.definition.contains(style))
        return 1;
    return sense.definition.contains(field) ? 4 : 0;
}

int weightOf(const Entry &entry) {
    constexpr int mostExamples = 12;
    std::size_t examples = 0;
    for (const Sense &sense : entry.senses)
        examples += sense.examples.size();
    const int doubts = entry.senses.empty() ? 0 : doubtsOf(entry.senses.front());
    return doubts - std::min(static_cast<int>(examples), mostExamples);
}

template<typename Item, typename RankOf>
void sortByRank(std::vector<Item> &items, RankOf &&rankOf) {
    using Rank = decltype(rankOf(items.front()));
    std::vector<std::pair<Rank, std::size_t>> ranks;
    ranks.reserve(items.size());
    for (const Item &item : items)
        ranks.emplace_back(rankOf(item), ranks.size());
    std::sort(ranks.begin(), ranks.end());
    std::vector<Item> sorted;
    sorted.reserve(items.size());
    for (const auto &[rank, place] : ranks)
        sorted.push_back(std::move(items[place]));
    items = std::move(sorted);
}

// By its ending; false for languages whose verbs have none of their own.
bool looksLikeVerb(const QString &word, const QString &language) {
    struct Endings {
        QStringView language;
        QStringView verbs;
    };
    static constexpr std::array all{
        Endings{u"spa", u"ar er ir ír arse erse irse"},
        Endings{u"por", u"ar er ir or ar-se er-se ir-se"},
        Endings{u"ita", u"are ere ire rre arsi ersi irsi"},
        Endings{u"fra", u"er ir re"},
        Endings{u"nld", u"en"},
        Endings{u"swe", u"a"},
        Endings{u"dan", u"e"},
        Endings{u"tur", u"mek mak"},
        Endings{u"ell", u"ω ώ μαι"},
        Endings{u"lit", u"ti tis"},
        Endings{u"hrv", u"ti ći"},
    };
    const auto found = std::find_if(all.begin(), all.end(),
                                    [&language](const Endings &each) { return each.language == language; });
    if (found == all.end())
        return false;
    const QStringList endings = found->verbs.toString().split(u' ');
    const QStringList words = word.split(u' ', Qt::SkipEmptyParts);
    return std::any_of(words.begin(), words.end(), [&endings](const QString &each) {
        return std::any_of(endings.begin(), endings.end(), [&each](const QString &ending) {
            return each.size() > ending.size() + 1 && each.endsWith(ending);
        });
    });
}

} // namespace

void orderEntries(std::vector<Entry> &entries, const TimesMet &timesMet, const QString &language) {
    // Turkish infinitives cannot be taken for anything else.
    const auto partOf = [&language](const Entry &entry) {
        const bool isVerb = language == u"tur" && entry.partOfSpeech.isEmpty() && !entry.senses.empty() &&
                            looksLikeVerb(entry.senses.front().translations.value(0), language);
        return isVerb ? QStringLiteral("verb") : entry.partOfSpeech;
    };
    int most = 0;
    for (const QString &part : {QStringLiteral("noun"), QStringLiteral("verb"), QStringLiteral("adjective"),
                                QStringLiteral("adverb")})
        most = std::max(most, timesMet(part));
    sortByRank(entries, [&](const Entry &entry) {
        const QString part = partOf(entry);
        const int times = part.isEmpty() ? most : timesMet(part);
        return std::make_tuple(entry.isOfForm, -times, part.isEmpty(), weightOf(entry));
    });
}

void orderSenses(Entry &entry, const SenseOrder &order) {
    sortByRank(entry.senses, [&order](const Sense &sense) {
        qsizetype best = order.likely.size();
        bool isVerb = false;
        for (const QString &translation : sense.translations) {
            const qsizetype at = order.likely.indexOf(translation);
            best = at < 0 ? best : std::min(best, at);
            isVerb = isVerb || looksLikeVerb(translation, order.language);
        }
        return std::make_pair(order.isMostlyVerb && !isVerb, best);
    });
}

QStringList likelyTranslations(const std::vector<Entry> &entries, const TimesMet &timesMet) {
    constexpr int hardlyEver = 10; // times as often as another part
    int most = 0;
    for (const Entry &entry : entries)
        most = std::max(most, timesMet(entry.partOfSpeech));
    QStringList likely;
    QStringList unlikely;
    for (const Entry &entry : entries) {
        const bool isRare = !entry.partOfSpeech.isEmpty() && timesMet(entry.partOfSpeech) * hardlyEver < most;
        (isRare ? unlikely : likely) += translationsOf(entry);
    }
    return likely + unlikely;
}

QStringList translationsOf(const Entry &entry) {
    QStringList all;
    for (const Sense &sense : entry.senses)
        all += sense.translations;
    return all;
}

bool tellsParts(const std::vector<Entry> &entries) {
    return std::none_of(entries.begin(), entries.end(),
                        [](const Entry &entry) { return entry.partOfSpeech.isEmpty(); });
}

} // namespace murvo::service
