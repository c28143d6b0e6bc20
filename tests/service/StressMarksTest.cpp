// SPDX-License-Identifier: GPL-3.0-or-later
#include "Speech/StressMarks.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace murvo::service::test {

TEST(StressMarksTest, StandBeforeTheSyllableAsInDictionaries) {
    struct Row {
        QString spoken;
        QString written;
    };
    const Row rows[] = {
        {u"wˈeɪv"_s, u"ˈweɪv"_s},
        {u"lˈʊk"_s, u"ˈlʊk"_s},
        {u"stɹˈɛŋθ"_s, u"ˈstɹɛŋθ"_s},
        {u"ɹᵻvjˈuː"_s, u"ɹᵻˈvjuː"_s},
        {u"sfˈɪɹ"_s, u"ˈsfɪɹ"_s},
        {u"ʃmˈuːz"_s, u"ˈʃmuːz"_s}, // a word's beginning, whatever it is
        {u"ˈɔːɹkᵻstɹə"_s, u"ˈɔːɹkᵻstɹə"_s},
        {u"ɐfɹˈeɪd"_s, u"ɐˈfɹeɪd"_s},
        {u"ɐslˈiːp"_s, u"ɐˈsliːp"_s},
        {u"ɐbɹˈɔːd"_s, u"ɐˈbɹɔːd"_s},
        {u"ɛnθɹˈɔːl"_s, u"ɛnˈθɹɔːl"_s},
        {u"ˌʌndɚstˈænd"_s, u"ˌʌndɚˈstænd"_s},
        {u"ɛksplˈeɪn"_s, u"ɛkˈspleɪn"_s},
        {u"ɛkstʃˈeɪndʒ"_s, u"ɛksˈtʃeɪndʒ"_s},
        {u"ɐdʒˈʌst"_s, u"ɐˈdʒʌst"_s},
        {u"ɐbdʒjˈʊɹ"_s, u"ɐbˈdʒjʊɹ"_s},
        {u"mæntʃjˈʊɹɹiə"_s, u"mænˈtʃjʊɹɹiə"_s},
        {u"ˌɑːɹtʃɹˈaɪvəl"_s, u"ˌɑːɹtʃˈɹaɪvəl"_s}, // "tʃ" is not parted for "ʃɹ"
        {u"kəmpjˈuːɾɚ"_s, u"kəmˈpjuːɾɚ"_s},
        {u"əbskjˈʊɹ"_s, u"əbˈskjʊɹ"_s},
        {u"ɐtlˈæntɪk"_s, u"ɐtˈlæntɪk"_s},
        {u"ɐdvˈæntɪdʒ"_s, u"ɐdˈvæntɪdʒ"_s},
        {u"aʊtsˈaɪd"_s, u"aʊtˈsaɪd"_s},
        {u"sˌæɾɪsfˈækʃən"_s, u"ˌsæɾɪsˈfækʃən"_s},
        {u"lɪŋɡwˈɪstɪks"_s, u"lɪŋˈɡwɪstɪks"_s},
        {u"bˈɜːmɪŋˌæm"_s, u"ˈbɜːmɪŋˌæm"_s},
        {u"kəŋɡɹˈætʃʊlˈeɪʃənz"_s, u"kəŋˈɡɹætʃʊˈleɪʃənz"_s},
        {u"vˌiːətnˈɑːm"_s, u"ˌviːətˈnɑːm"_s},
        {u"ɛnθˈuːziˌæzəm"_s, u"ɛnˈθuːziˌæzəm"_s}, // not over a vowel
        {u"tsuːnˈɑːmi"_s, u"tsuːˈnɑːmi"_s},       // nor a length mark
        {u"ɡlˈʌʔn̩ˌaɪz"_s, u"ˈɡlʌʔn̩ˌaɪz"_s},       // nor a syllable without a vowel
        {u"fɹˈɔstbɪʔˌn̩"_s, u"ˈfɹɔstbɪˌʔn̩"_s},
        {u"æɾ ˈɔːl ðə blˈuː skˈaɪ"_s, u"æɾ ˈɔːl ðə ˈbluː ˈskaɪ"_s},
        {u"ɛkˈspleɪn"_s, u"ɛkˈspleɪn"_s}, // stands there already
        {u"sˈˌaɪ kˈ ˈaɪ"_s, u"sˈˌaɪ kˈ ˈaɪ"_s},
        {u"ðə"_s, u"ðə"_s},
        {QString(), QString()},
    };
    for (const Row &row : rows)
        EXPECT_EQ(stressBeforeSyllables(row.spoken), row.written) << row.spoken.toStdString();
}

} // namespace murvo::service::test
