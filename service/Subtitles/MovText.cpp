// SPDX-License-Identifier: GPL-3.0-or-later
#include "Subtitles/MovText.h"

#include "Subtitles/Charset.h"

#include <QtEndian>

#include <algorithm>
#include <vector>

namespace murvo::service {

namespace {

constexpr uchar italicFlag = 2;
constexpr qsizetype boxHeaderBytes = 8;
constexpr qsizetype styleRecordBytes = 12; ///< start, end, font, flags, size, colour
constexpr qsizetype flagsInRecord = 6;
constexpr qsizetype recordInDescription = 18; ///< after flags, justification, background and box

quint16 number16(QByteArrayView bytes, qsizetype at) {
    return qFromBigEndian<quint16>(bytes.data() + at);
}

bool isItalic(QByteArrayView styleRecord) {
    return (static_cast<uchar>(styleRecord[flagsInRecord]) & italicFlag) != 0;
}

// Which characters (code points) are italic; the style boxes come behind the text.
std::vector<bool> italicsOf(QByteArrayView boxes, size_t characters, bool otherwise) {
    std::vector<bool> italics(characters, otherwise);
    while (boxes.size() >= boxHeaderBytes + 2) {
        const qsizetype size = qFromBigEndian<quint32>(boxes.data());
        if (size < boxHeaderBytes + 2 || size > boxes.size())
            break;
        const QByteArrayView records = boxes.sliced(boxHeaderBytes + 2, size - boxHeaderBytes - 2);
        const qsizetype count =
            boxes.sliced(4, 4) == QByteArrayView("styl")
                ? std::min<qsizetype>(number16(boxes, boxHeaderBytes), records.size() / styleRecordBytes)
                : 0;
        for (qsizetype i = 0; i < count; ++i) {
            const QByteArrayView record = records.sliced(i * styleRecordBytes, styleRecordBytes);
            const size_t end = std::min<size_t>(number16(record, 2), characters);
            for (size_t at = number16(record, 0); at < end; ++at)
                italics[at] = isItalic(record);
        }
        boxes = boxes.sliced(size);
    }
    return italics;
}

} // namespace

MarkedText readMovText(QByteArrayView packet, QByteArrayView description) {
    if (packet.size() < 2)
        return {};
    const qsizetype length = std::min<qsizetype>(number16(packet, 0), packet.size() - 2);
    const QByteArray bytes = packet.sliced(2, length).toByteArray();
    const QList<uint> text = QString::fromUtf8(toUtf8(bytes)).toUcs4();
    const bool otherwise = description.size() >= recordInDescription + styleRecordBytes &&
                           isItalic(description.sliced(recordInDescription, styleRecordBytes));
    const auto italics = italicsOf(packet.sliced(2 + length), static_cast<size_t>(text.size()), otherwise);
    MarkedText result;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char32_t character = text[i];
        result.setItalic(italics[static_cast<size_t>(i)]);
        result.append(QString::fromUcs4(&character, 1));
    }
    return result;
}

} // namespace murvo::service
