// SPDX-License-Identifier: GPL-3.0-or-later
#include "Subtitles/Charset.h"

#include <QByteArrayList>

#include <algorithm>
#include <array>
#include <cerrno>
#include <memory>

#include <iconv.h>
#include <uchardet.h>

namespace murvo::service {

namespace {

constexpr auto replacement = "\xEF\xBF\xBD";
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

// Latin text in UTF-16 has a NUL in every second byte: which half they are in tells the byte order.
QByteArray encodingByNuls(const QByteArray &bytes) {
    std::array<qsizetype, 2> nuls{};
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        if (bytes[i] == '\0')
            ++nuls[static_cast<size_t>(i % 2)];
    }
    if ((nuls[0] + nuls[1]) * 20 <= bytes.size())
        return {};
    return nuls[1] >= nuls[0] ? "UTF-16LE" : "UTF-16BE";
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
    if (guess.isEmpty() || guess == "ASCII" || guess == "ISO-8859-1")
        return "WINDOWS-1252";
    if (guess == "GB2312" || guess == "GBK")
        return "GB18030";
    return guess;
}

class Converter {
  public:
    explicit Converter(const QByteArray &encoding)
        : _handle(iconv_open("UTF-8", encoding.constData())) {}
    ~Converter() {
        if (valid())
            iconv_close(_handle);
    }
    Converter(const Converter &) = delete;
    Converter &operator=(const Converter &) = delete;

    [[nodiscard]] bool valid() const { return _handle != reinterpret_cast<iconv_t>(-1); }

    // Goes on behind bytes that have no meaning; unit is the encoding's smallest step.
    QByteArray convert(QByteArray bytes, qsizetype unit) {
        QByteArray result;
        char *in = bytes.data();
        size_t inLeft = static_cast<size_t>(bytes.size());
        std::array<char, 16'384> buffer{};
        while (inLeft > 0) {
            char *out = buffer.data();
            size_t outLeft = buffer.size();
            const size_t done = iconv(_handle, &in, &inLeft, &out, &outLeft);
            const int failure = errno;
            result.append(buffer.data(), static_cast<qsizetype>(buffer.size() - outLeft));
            if (done != static_cast<size_t>(-1) || failure == E2BIG)
                continue;
            result += replacement;
            if (failure == EINVAL)
                break; // cut within a character at the very end
            const size_t skipped = std::min(inLeft, static_cast<size_t>(unit));
            in += skipped;
            inLeft -= skipped;
        }
        return result;
    }

  private:
    iconv_t _handle;
};

QByteArray convert(const QByteArray &bytes, const QByteArray &encoding) {
    const qsizetype unit = encoding.startsWith("UTF-32") ? 4 : encoding.startsWith("UTF-16") ? 2 : 1;
    Converter converter(encoding);
    if (converter.valid())
        return converter.convert(bytes, unit);
    return Converter("WINDOWS-1252").convert(bytes, 1);
}

QByteArray encodingOf(const QByteArray &bytes) {
    if (QByteArray encoding = encodingByMark(bytes); !encoding.isEmpty())
        return encoding;
    if (QByteArray encoding = encodingByNuls(bytes); !encoding.isEmpty())
        return encoding;
    return isMostlyUtf8(surveyUtf8(bytes)) ? QByteArrayLiteral("UTF-8") : encodingByText(bytes);
}

} // namespace

QByteArray toUtf8(const QByteArray &fileBytes) {
    QByteArray text = convert(fileBytes, encodingOf(fileBytes));
    if (text.startsWith("\xEF\xBB\xBF"))
        text.remove(0, 3);
    // Readers in C end at a NUL and would lose the rest.
    text.replace('\0', ' ');
    return text;
}

} // namespace murvo::service
