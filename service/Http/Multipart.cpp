// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/Multipart.h"

namespace murvo::service {

namespace {

constexpr qsizetype longestBoundary = 200;

// Where a quoted value that begins behind start ends. The player escapes nothing: a quotation mark within the
// value is told from its end by what follows, which is another parameter or the end of the line.
qsizetype quotedEnd(const QByteArray &line, qsizetype start) {
    for (qsizetype at = line.indexOf('"', start); at >= 0; at = line.indexOf('"', at + 1)) {
        const QByteArray after = line.mid(at + 1).trimmed();
        if (after.isEmpty() || after.startsWith(';'))
            return at;
    }
    return line.size();
}

// The first value of that name in a header line "type; name=value; name="value"".
QByteArray parameter(const QByteArray &line, const QByteArray &name) {
    qsizetype at = line.indexOf(';');
    while (at >= 0) {
        const qsizetype equals = line.indexOf('=', at);
        if (equals < 0)
            break;
        const QByteArray key = line.mid(at + 1, equals - at - 1).trimmed().toLower();
        const bool quoted = line.mid(equals + 1, 1) == "\"";
        const qsizetype start = quoted ? equals + 2 : equals + 1;
        const qsizetype plainEnd = line.indexOf(';', start);
        const qsizetype end = quoted ? quotedEnd(line, start) : plainEnd < 0 ? line.size() : plainEnd;
        if (key == name)
            return quoted ? line.mid(start, end - start) : line.mid(start, end - start).trimmed();
        at = line.indexOf(';', end);
    }
    return {};
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
