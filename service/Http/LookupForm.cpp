// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/LookupForm.h"

namespace murvo::service {

namespace {

// The value up to the next "&", and rest moved behind it; none when rest does not begin with the field's
// name.
std::optional<QByteArray> takeField(QByteArray &rest, QByteArrayView name) {
    if (!rest.startsWith(name) || rest.size() <= name.size() || rest[name.size()] != '=')
        return std::nullopt;
    const qsizetype start = name.size() + 1;
    const qsizetype end = rest.indexOf('&', start);
    QByteArray value = rest.mid(start, end < 0 ? -1 : end - start);
    rest = end < 0 ? QByteArray() : rest.mid(end + 1);
    return value;
}

// The name ends where the last "&targetLanguageCode=" begins, or where a piece of that stands at the cut end.
QByteArray withoutTail(const QByteArray &rest) {
    const QByteArray tail = QByteArrayLiteral("&targetLanguageCode=");
    if (const qsizetype at = rest.lastIndexOf(tail); at >= 0)
        return rest.left(at);
    for (qsizetype length = tail.size() - 1; length > 0; --length) {
        if (rest.endsWith(QByteArrayView(tail).first(length)))
            return rest.chopped(length);
    }
    return rest;
}

// A cut may have left the beginning of a character behind.
QString decodeName(QByteArray name) {
    const auto isContinuation = [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) == 0x80; };
    qsizetype lead = name.size() - 1;
    while (lead >= 0 && isContinuation(name[lead]))
        --lead;
    if (lead >= 0 && (static_cast<unsigned char>(name[lead]) & 0x80U) != 0) {
        const auto first = static_cast<unsigned char>(name[lead]);
        const qsizetype needed = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
        if (name.size() - lead < needed)
            name.truncate(lead);
    }
    return name == "(null)" ? QString() : QString::fromUtf8(name);
}

} // namespace

std::optional<LookupForm> readLookupForm(const QByteArray &body) {
    QByteArray rest = body;
    const auto size = takeField(rest, "fileSize");
    const auto hash = size ? takeField(rest, "movieHash") : std::nullopt;
    if (!hash)
        return std::nullopt;
    LookupForm form;
    bool sizeOk = false;
    bool hashOk = false;
    form.sizeBytes = size->toULongLong(&sizeOk, 10);
    form.movieHash = hash->toULongLong(&hashOk, 16);
    if (!sizeOk || !hashOk)
        return std::nullopt;
    const QByteArray nameField = QByteArrayLiteral("fileName=");
    if (rest.startsWith(nameField))
        form.fileName = decodeName(withoutTail(rest.mid(nameField.size())));
    return form;
}

} // namespace murvo::service
