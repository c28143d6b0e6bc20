// SPDX-License-Identifier: GPL-3.0-or-later
#include "Subtitles/Iconv.h"

#include <algorithm>
#include <array>
#include <cerrno>

#include <iconv.h>

namespace murvo::service {

namespace {

constexpr auto replacement = "\xEF\xBF\xBD";

// What is called Shift_JIS everywhere is Windows' form of it; in iconv's own a backslash is a yen sign.
QByteArray namedForIconv(const QByteArray &encoding) {
    return encoding == "SHIFT_JIS" ? QByteArrayLiteral("CP932") : encoding;
}

class Converter {
  public:
    explicit Converter(const QByteArray &encoding)
        : _handle(iconv_open("UTF-8", namedForIconv(encoding).constData())) {}
    ~Converter() {
        if (valid())
            iconv_close(_handle);
    }
    Converter(const Converter &) = delete;
    Converter &operator=(const Converter &) = delete;

    [[nodiscard]] bool valid() const { return _handle != reinterpret_cast<iconv_t>(-1); }

    // Goes on behind bytes that have no meaning; unit is the encoding's smallest step.
    Converted convert(QByteArrayView bytes, size_t unit) {
        Converted result;
        char *in = const_cast<char *>(bytes.data()); // iconv does not write there
        auto inLeft = static_cast<size_t>(bytes.size());
        while (inLeft > 0) {
            const int failure = step(&in, &inLeft, result.utf8);
            if (failure == 0 || failure == E2BIG)
                continue;
            result.utf8 += replacement;
            ++result.errors;
            if (failure == EINVAL)
                break; // cut within a character at the very end
            const size_t skipped = std::min(inLeft, unit);
            in += skipped;
            inLeft -= skipped;
        }
        // Vietnamese is written with accents behind the letters: the last letter waits for one.
        step(nullptr, nullptr, result.utf8);
        return result;
    }

  private:
    // Adds what fits into one buffer; 0 or the reason why it ended.
    int step(char **in, size_t *inLeft, QByteArray &utf8) {
        std::array<char, 16'384> buffer{};
        char *out = buffer.data();
        size_t outLeft = buffer.size();
        const size_t done = iconv(_handle, in, inLeft, &out, &outLeft);
        const int failure = done == static_cast<size_t>(-1) ? errno : 0;
        utf8.append(buffer.data(), static_cast<qsizetype>(buffer.size() - outLeft));
        return failure;
    }

    iconv_t _handle;
};

} // namespace

bool isEncoding(const QByteArray &encoding) {
    return !encoding.isEmpty() && Converter(encoding).valid();
}

Converted convertToUtf8(QByteArrayView bytes, const QByteArray &encoding) {
    const size_t unit = encoding.startsWith("UTF-32") ? 4 : encoding.startsWith("UTF-16") ? 2 : 1;
    return Converter(encoding).convert(bytes, unit);
}

} // namespace murvo::service
