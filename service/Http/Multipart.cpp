// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/Multipart.h"

namespace murvo::service {

namespace {

constexpr qsizetype longestBoundary = 200;

// The value of name="..." or name=... in a header line. A quotation mark inside the value is not escaped by
// the player: the value ends at the last quotation mark that a ";" or the line's end follows.
QByteArray parameter(const QByteArray &line, const QByteArray &name) {
    qsizetype at = line.toLower().indexOf(name + '=');
    while (at > 0 && line[at - 1] != ' ' && line[at - 1] != ';' && line[at - 1] != '\t')
        at = line.toLower().indexOf(name + '=', at + 1); // "filename=" also ends in "name="
    if (at < 0)
        return {};
    const QByteArray rest = line.mid(at + name.size() + 1);
    if (!rest.startsWith('"'))
        return rest.left(rest.indexOf(';') < 0 ? rest.size() : rest.indexOf(';')).trimmed();
    const qsizetype nextParameter = rest.indexOf("\";", 1);
    const qsizetype end = nextParameter > 0 ? nextParameter : rest.lastIndexOf('"');
    return end > 0 ? rest.mid(1, end - 1) : rest.mid(1);
}

// Headers and content of one part; nothing when its headers were cut.
std::optional<MultipartPart> readPart(const QByteArray &bytes) {
    const qsizetype headersEnd = bytes.indexOf("\r\n\r\n");
    if (headersEnd < 0)
        return std::nullopt;
    MultipartPart part;
    for (const QByteArray &line : bytes.left(headersEnd).split('\n')) {
        if (!line.toLower().startsWith("content-disposition:"))
            continue;
        part.name = parameter(line.trimmed(), "name");
        part.fileName = QString::fromUtf8(parameter(line.trimmed(), "filename"));
    }
    part.content = bytes.mid(headersEnd + 4);
    return part.name.isEmpty() ? std::nullopt : std::optional(part);
}

} // namespace

std::optional<QByteArray> multipartBoundary(const QByteArray &contentType) {
    if (!contentType.toLower().startsWith("multipart/form-data"))
        return std::nullopt;
    QByteArray boundary = parameter(contentType, "boundary");
    if (boundary.isEmpty() || boundary.size() > longestBoundary)
        return std::nullopt;
    return boundary;
}

QList<MultipartPart> readMultipart(const QByteArray &body, const QByteArray &boundary, qsizetype mostParts) {
    // With a line break put before it, the first boundary looks like every other.
    const QByteArray bytes = "\r\n" + body;
    const QByteArray delimiter = "\r\n--" + boundary;
    QList<MultipartPart> parts;
    qsizetype at = bytes.indexOf(delimiter);
    while (at >= 0 && parts.size() < mostParts) {
        const qsizetype start = at + delimiter.size();
        if (bytes.mid(start, 2) == "--")
            break;
        const qsizetype next = bytes.indexOf(delimiter, start);
        if (auto part = readPart(bytes.mid(start, next < 0 ? -1 : next - start)))
            parts.append(std::move(*part));
        at = next;
    }
    return parts;
}

} // namespace murvo::service
