// SPDX-License-Identifier: GPL-3.0-or-later
#include "Subtitles/Gunzip.h"

#include <array>
#include <memory>

#include <zlib.h>

namespace murvo::service {

namespace {

constexpr int gzipWindowBits = 15 + 16;

struct InflateEnd {
    void operator()(z_stream *stream) const { inflateEnd(stream); }
};

} // namespace

bool isGzip(const QByteArray &bytes) {
    return bytes.startsWith("\x1F\x8B");
}

std::optional<QByteArray> gunzip(const QByteArray &bytes, qsizetype mostBytes) {
    z_stream stream{};
    QByteArray input = bytes;
    stream.next_in = reinterpret_cast<Bytef *>(input.data());
    stream.avail_in = static_cast<uInt>(input.size());
    if (inflateInit2(&stream, gzipWindowBits) != Z_OK)
        return std::nullopt;
    const std::unique_ptr<z_stream, InflateEnd> end(&stream);

    QByteArray unpacked;
    std::array<Bytef, 16'384> buffer{};
    for (;;) {
        stream.next_out = buffer.data();
        stream.avail_out = static_cast<uInt>(buffer.size());
        const int status = inflate(&stream, Z_NO_FLUSH);
        if (status != Z_OK && status != Z_STREAM_END)
            return std::nullopt;
        unpacked.append(reinterpret_cast<const char *>(buffer.data()),
                        static_cast<qsizetype>(buffer.size() - stream.avail_out));
        if (unpacked.size() > mostBytes)
            return std::nullopt;
        if (status == Z_STREAM_END)
            return unpacked;
    }
}

} // namespace murvo::service
