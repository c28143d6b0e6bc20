// SPDX-License-Identifier: GPL-3.0-or-later
#include "Languages.h"

#include <QLocale>

#include <algorithm>

namespace murvo::service {

const QList<Language> &knownLanguages() {
    using L = QLatin1String;
    static const QList<Language> languages{
        {L("ara"), L("ara"), L("ar"), u"العربية", L("Arabic"), true},
        {L("bul"), L("bul"), L("bg"), u"Български", L("Bulgarian"), true},
        {L("ces"), L("cze"), L("cs"), u"Čeština", L("Czech"), true},
        {L("dan"), L("dan"), L("da"), u"Dansk", L("Danish"), true},
        {L("deu"), L("ger"), L("de"), u"Deutsch", L("German"), true},
        {L("ell"), L("gre"), L("el"), u"Ελληνικά", L("Greek"), true},
        {L("spa"), L("spa"), L("es"), u"Español", L("Spanish"), true},
        {L("fra"), L("fre"), L("fr"), u"Français", L("French"), true},
        {L("heb"), L("heb"), L("he"), u"עברית", L("Hebrew"), true},
        {L("hin"), L("hin"), L("hi"), u"हिन्दी", L("Hindi"), true},
        {L("hrv"), L("hrv"), L("hr"), u"Hrvatski", L("Croatian"), true},
        {L("hun"), L("hun"), L("hu"), u"Magyar", L("Hungarian"), true},
        {L("ind"), L("ind"), L("id"), u"Indonesia", L("Indonesian"), true},
        {L("isl"), L("ice"), L("is"), u"Íslenska", L("Icelandic"), true},
        {L("ita"), L("ita"), L("it"), u"Italiano", L("Italian"), true},
        {L("jpn"), L("jpn"), L("ja"), u"日本語", L("Japanese"), true},
        {L("kor"), L("kor"), L("ko"), u"한국어", L("Korean"), true},
        {L("lit"), L("lit"), L("lt"), u"Lietuvių", L("Lithuanian"), true},
        {L("nld"), L("dut"), L("nl"), u"Nederlands", L("Dutch"), true},
        {L("nor"), L("nor"), L("no"), u"Norsk", L("Norwegian"), true},
        {L("pol"), L("pol"), L("pl"), u"Polski", L("Polish"), true},
        {L("por"), L("por"), L("pt"), u"Português", L("Portuguese"), true},
        {L("ron"), L("rum"), L("ro"), u"Română", L("Romanian"), true},
        {L("rus"), L("rus"), L("ru"), u"Русский", L("Russian"), true},
        {L("slk"), L("slo"), L("sk"), u"Slovenčina", L("Slovak"), true},
        {L("slv"), L("slv"), L("sl"), u"Slovenščina", L("Slovenian"), true},
        {L("srp"), L("srp"), L("sr"), u"Српски", L("Serbian"), true},
        {L("fin"), L("fin"), L("fi"), u"Suomi", L("Finnish"), true},
        {L("swe"), L("swe"), L("sv"), u"Svenska", L("Swedish"), true},
        {L("vie"), L("vie"), L("vi"), u"Tiếng Việt", L("Vietnamese"), true},
        {L("tur"), L("tur"), L("tr"), u"Türkçe", L("Turkish"), true},
        {L("ukr"), L("ukr"), L("uk"), u"Українська", L("Ukrainian"), true},
        {L("zho"), L("chi"), L("zh"), u"中文", L("Chinese"), true},
        {L("eng"), L("eng"), L("en"), u"English", L("English"), false},
        {L("cat"), L("cat"), L("ca"), u"Català", L("Catalan"), false},
        {L("est"), L("est"), L("et"), u"Eesti", L("Estonian"), false},
        {L("fas"), L("per"), L("fa"), u"فارسی", L("Persian"), false},
        {L("lav"), L("lav"), L("lv"), u"Latviešu", L("Latvian"), false},
        {L("msa"), L("may"), L("ms"), u"Bahasa Melayu", L("Malay"), false},
        {L("tha"), L("tha"), L("th"), u"ไทย", L("Thai"), false},
    };
    return languages;
}

const Language *findLanguage(QStringView word) {
    const auto &all = knownLanguages();
    const auto same = [word](auto name) { return word.compare(name, Qt::CaseInsensitive) == 0; };
    const auto found = std::find_if(all.begin(), all.end(), [&same](const Language &language) {
        return same(language.code) || same(language.bibliographic) || same(language.twoLetter) ||
               same(language.englishName) || same(language.nativeName);
    });
    return found == all.end() ? nullptr : &*found;
}

QString defaultNativeLanguage() {
    const QString desktop = QLocale::system().name().section(u'_', 0, 0);
    const Language *language = findLanguage(desktop);
    return language != nullptr && language->offered ? QString(language->code) : QStringLiteral("fra");
}

} // namespace murvo::service
