// SPDX-License-Identifier: GPL-3.0-or-later
#include "Subtitles/Iconv.h"

#include <algorithm>
#include <array>
#include <cerrno>

#include <iconv.h>

namespace murvo::service {

namespace {

constexpr auto replacement = "\xEF\xBF\xBD";

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
    Converted convert(QByteArrayView bytes, size_t unit) {
        Converted result;
        char *in = const_cast<char *>(bytes.data()); // iconv does not write there
        auto inLeft = static_cast<size_t>(bytes.size());
        std::array<char, 16'384> buffer{};
        while (inLeft > 0) {
            char *out = buffer.data();
            size_t outLeft = buffer.size();
            const size_t done = iconv(_handle, &in, &inLeft, &out, &outLeft);
            const int failure = errno;
            result.utf8.append(buffer.data(), static_cast<qsizetype>(buffer.size() - outLeft));
            if (done != static_cast<size_t>(-1) || failure == E2BIG)
                continue;
            result.utf8 += replacement;
            ++result.errors;
            if (failure == EINVAL)
                break; // cut within a character at the very end
            const size_t skipped = std::min(inLeft, unit);
            in += skipped;
            inLeft -= skipped;
        }
        return result;
    }

  private:
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
