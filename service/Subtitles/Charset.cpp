// SPDX-License-Identifier: GPL-3.0-or-later
#include "Subtitles/Charset.h"

#include "Subtitles/EncodingGuesses.h"
#include "Subtitles/Iconv.h"

#include <QByteArrayView>

#include <algorithm>
#include <array>
#include <memory>

#include <uchardet.h>

namespace murvo::service {

namespace {

constexpr qsizetype mostBytesToGuessFrom = 262'144;

struct Utf8Survey {
    qsizetype goodSequences = 0; ///< of more than one byte
    qsizetype badBytes = 0;
};

// The length of the well-formed multi-byte sequence at the start of text, 0 when there is none.
qsizetype sequenceLength(QByteArrayView text) {
    const auto at = [text](qsizetype i) { return static_cast<unsigned char>(text[i]); };
    const unsigned lead = at(0);
    const qsizetype length = lead >= 0xC2 && lead <= 0xDF   ? 2
                             : (lead & 0xF0U) == 0xE0       ? 3
                             : lead >= 0xF0 && lead <= 0xF4 ? 4
                                                            : 0;
    if (length == 0 || length > text.size())
        return 0;
    for (qsizetype i = 1; i < length; ++i) {
        if ((at(i) & 0xC0U) != 0x80)
            return 0;
    }
    const unsigned second = at(1);
    const bool overlong = (lead == 0xE0 && second < 0xA0) || (lead == 0xF0 && second < 0x90);
    const bool beyond = (lead == 0xED && second > 0x9F) || (lead == 0xF4 && second > 0x8F);
    return overlong || beyond ? 0 : length;
}

Utf8Survey surveyUtf8(QByteArrayView text) {
    Utf8Survey survey;
    qsizetype i = 0;
    while (i < text.size()) {
        if (static_cast<unsigned char>(text[i]) < 0x80) {
            ++i;
        } else if (const qsizetype length = sequenceLength(text.sliced(i)); length > 0) {
            ++survey.goodSequences;
            i += length;
        } else {
            ++survey.badBytes;
            ++i;
        }
    }
    return survey;
}

// A UTF-8 file that was cut or patched with a few foreign bytes is still UTF-8.
bool isMostlyUtf8(const Utf8Survey &survey) {
    return survey.badBytes * 20 <= survey.goodSequences;
}

QByteArray encodingByMark(const QByteArray &bytes) {
    struct Mark {
        QByteArrayView bytes;
        const char *encoding;
    };
    // The four-byte mark begins with the two-byte one: the longer comes first.
    static const std::array marks{Mark{{"\xFF\xFE\0\0", 4}, "UTF-32LE"},
                                  Mark{{"\0\0\xFE\xFF", 4}, "UTF-32BE"}, Mark{{"\xEF\xBB\xBF", 3}, "UTF-8"},
                                  Mark{{"\xFF\xFE", 2}, "UTF-16LE"}, Mark{{"\xFE\xFF", 2}, "UTF-16BE"}};
    const auto found = std::find_if(marks.begin(), marks.end(),
                                    [&bytes](const Mark &mark) { return bytes.startsWith(mark.bytes); });
    return found == marks.end() ? QByteArray() : QByteArray(found->encoding);
}

// Files are padded with zeros where a download was never finished.
QByteArrayView withoutTrailingNuls(QByteArrayView bytes) {
    while (!bytes.isEmpty() && bytes.back() == '\0')
        bytes.chop(1);
    return bytes;
}

// The two highest bytes of a character are nearly always 0 and a small number in UTF-32.
bool isUtf32(QByteArrayView bytes, qsizetype highest, qsizetype second) {
    constexpr char lastPlane = 0x10;
    const qsizetype characters = bytes.size() / 4;
    qsizetype wrong = 0;
    for (qsizetype i = 0; i < characters; ++i) {
        if (bytes[i * 4 + highest] != '\0' || bytes[i * 4 + second] < 0 || bytes[i * 4 + second] > lastPlane)
            ++wrong;
    }
    return characters > 1 && wrong * 50 < characters;
}

// Text in UTF-16 has a NUL in every second byte of its figures and line ends: which half they are in tells
// the byte order. NULs in both halves are damage.
QByteArray encodingByNuls(QByteArrayView whole) {
    // A NUL at the end may be half of a character, or end a text of single bytes.
    const QByteArrayView bytes = withoutTrailingNuls(whole);
    std::array<qsizetype, 2> nuls{};
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        if (bytes[i] == '\0')
            ++nuls[static_cast<size_t>(i % 2)];
    }
    if ((nuls[0] + nuls[1]) * 20 <= bytes.size())
        return {};
    if (isUtf32(bytes, 3, 2))
        return "UTF-32LE";
    if (isUtf32(bytes, 0, 1))
        return "UTF-32BE";
    if (nuls[1] > nuls[0] * 3)
        return "UTF-16LE";
    return nuls[0] > nuls[1] * 3 ? QByteArray("UTF-16BE") : QByteArray();
}

// XML says itself what it is written in, unless it was turned into another encoding since.
QByteArray encodingByDeclaration(const QByteArray &bytes) {
    const QByteArray start = bytes.left(200);
    const qsizetype name = start.indexOf("encoding=");
    if (!start.trimmed().startsWith("<?xml") || name < 0)
        return {};
    const QByteArray rest = start.mid(name + 9);
    const qsizetype end = rest.indexOf(rest.left(1), 1);
    const QByteArray encoding = end < 0 ? QByteArray() : rest.mid(1, end - 1).toUpper();
    const bool single = !encoding.startsWith("UTF") && !encoding.startsWith("UCS");
    return single && isEncoding(encoding) ? encoding : QByteArray();
}

// Guesses from the lines that have something to tell: plain ASCII ones only make the guess weaker.
QByteArray encodingByText(const QByteArray &bytes) {
    QByteArray telling;
    for (const QByteArray &line : bytes.split('\n')) {
        const bool ascii = std::all_of(line.begin(), line.end(), [](char c) { return (c & 0x80) == 0; });
        if (!ascii)
            telling += line + '\n';
        if (telling.size() > mostBytesToGuessFrom)
            break;
    }
    const std::unique_ptr<uchardet, void (*)(uchardet_t)> detector(uchardet_new(), uchardet_delete);
    if (uchardet_handle_data(detector.get(), telling.constData(), static_cast<size_t>(telling.size())) != 0)
        return "WINDOWS-1252";
    uchardet_data_end(detector.get());
    QByteArray guess = QByteArray(uchardet_get_charset(detector.get())).toUpper();
    if (guess.isEmpty() || guess == "ASCII" || guess == "ISO-8859-1" || guess.startsWith("MAC-CENTRAL"))
        return "WINDOWS-1252"; // no film's subtitles are in the last one, short French files are taken for it
    if (guess == "GB2312" || guess == "GBK")
        return "GB18030";
    return guess;
}

} // namespace

QByteArray encodingOf(const QByteArray &bytes) {
    if (QByteArray encoding = encodingByMark(bytes); !encoding.isEmpty())
        return encoding;
    if (QByteArray encoding = encodingByNuls(bytes); !encoding.isEmpty())
        return encoding;
    if (isMostlyUtf8(surveyUtf8(bytes)))
        return "UTF-8";
    if (QByteArray encoding = encodingByDeclaration(bytes); !encoding.isEmpty())
        return encoding;
    const QByteArray guess = likelierTwin(bytes, encodingByText(bytes));
    return isEncoding(guess) ? guess : QByteArrayLiteral("WINDOWS-1252");
}

QByteArray toUtf8(const QByteArray &bytes, const QByteArray &encoding) {
    const QByteArray used = isEncoding(encoding) ? encoding : encodingOf(bytes);
    const bool good = used == "UTF-8" && surveyUtf8(bytes).badBytes == 0;
    QByteArray text = good ? bytes : convertToUtf8(bytes, used).utf8;
    if (text.startsWith("\xEF\xBB\xBF"))
        text.remove(0, 3);
    // Readers in C end at a NUL and would lose the rest.
    text.replace('\0', ' ');
    return text;
}

QByteArrayList encodingGuesses(const QByteArray &bytes) {
    return rankedEncodings(bytes, encodingOf(bytes));
}

} // namespace murvo::service
