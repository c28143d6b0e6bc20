// SPDX-License-Identifier: GPL-3.0-or-later
#include "Subtitles/Entities.h"

#include <QByteArray>

#include <array>

#include <libxml/HTMLparser.h>

namespace murvo::service {

namespace {

bool isNoCharacter(uint code) {
    return code == 0 || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF);
}

QString numbered(QStringView digits) {
    const bool hex = digits.startsWith(u'x', Qt::CaseInsensitive);
    bool ok = false;
    const uint code = hex ? digits.sliced(1).toUInt(&ok, 16) : digits.toUInt(&ok, 10);
    if (!ok || isNoCharacter(code))
        return {};
    const char32_t character = code;
    return QString::fromUcs4(&character, 1);
}

QString named(const QByteArray &name) {
    const htmlEntityDesc *entity = htmlEntityLookup(reinterpret_cast<const xmlChar *>(name.constData()));
    return entity == nullptr ? QString() : QString(QChar(entity->value));
}

} // namespace

QString entityText(QStringView name) {
    if (name.startsWith(u'#'))
        return numbered(name.sliced(1));
    const QByteArray exact = name.toLatin1();
    const QString text = named(exact);
    return text.isEmpty() ? named(exact.toLower()) : text; // "&NBSP;" and "&AMP;" are written, too
}

char16_t meantByControl(char16_t control) {
    static constexpr std::array<char16_t, 32> windows1252{
        u'€', u' ', u'‚', u'ƒ', u'„', u'…', u'†', u'‡', u'ˆ', u'‰', u'Š', u'‹', u'Œ', u' ', u'Ž', u' ',
        u' ', u'‘', u'’', u'“', u'”', u'•', u'–', u'—', u'˜', u'™', u'š', u'›', u'œ', u' ', u'ž', u'Ÿ'};
    return control >= 0x80 && control <= 0x9F ? windows1252.at(static_cast<size_t>(control - 0x80)) : u' ';
}

} // namespace murvo::service
