// SPDX-License-Identifier: GPL-3.0-or-later
#include "Dictionary/Dictzip.h"

#include <algorithm>
#include <memory>

#include <zlib.h>

namespace murvo::service {

namespace {

// Longer entries than this are no entries: the longest of the installed ones has 60 KB.
constexpr qint64 longestRead = qint64{4} * 1024 * 1024;
constexpr int rawDeflate = -15;

// The header as RFC 1952 has it.
constexpr qint64 fixedHeader = 10;
constexpr int hasCrc = 0x02;
constexpr int hasExtra = 0x04;
constexpr int hasName = 0x08;
constexpr int hasComment = 0x10;

struct InflateEnd {
    void operator()(z_stream *stream) const { inflateEnd(stream); }
};

/// Reads the header's fields and knows when the file ends within it.
class HeaderReader {
  public:
    HeaderReader(const uchar *bytes, qint64 size)
        : _bytes(bytes)
        , _size(size) {}

    [[nodiscard]] bool isPastEnd() const { return _isPastEnd; }
    [[nodiscard]] qint64 position() const { return _at; }

    void skip(qint64 count) {
        _at += count;
        _isPastEnd = _isPastEnd || _at > _size;
    }
    int byte() {
        skip(1);
        return _isPastEnd ? 0 : _bytes[_at - 1];
    }
    int number() {
        const int low = byte();
        return low | byte() << 8;
    }
    void skipText() {
        while (!_isPastEnd && byte() != 0) {
        }
    }

  private:
    const uchar *_bytes;
    qint64 _size;
    qint64 _at = 0;
    bool _isPastEnd = false;
};

} // namespace

Dictzip::Dictzip(const QString &path)
    : _file(path) {
    if (!_file.open(QIODevice::ReadOnly) || _file.size() == 0)
        return;
    _bytes = _file.map(0, _file.size());
    const bool isPacked = _bytes != nullptr && _file.size() > 2 && _bytes[0] == 0x1F && _bytes[1] == 0x8B;
    if (isPacked && !readHeader())
        _bytes = nullptr;
}

// The table of chunks stands in the extra field "RA": version, chunk length, number of chunks, their lengths.
bool Dictzip::readHeader() {
    HeaderReader header(_bytes, _file.size());
    header.skip(3);
    const int flags = header.byte();
    header.skip(fixedHeader - header.position());
    if ((flags & hasExtra) == 0)
        return false;
    const qint64 extraEnd = header.number() + header.position();
    std::vector<qint64> lengths;
    while (header.position() + 4 <= extraEnd && !header.isPastEnd()) {
        const bool isTable = header.byte() == 'R' && header.byte() == 'A';
        const qint64 end = header.number() + header.position();
        if (isTable && header.number() == 1) {
            _chunkLength = header.number();
            lengths.resize(static_cast<std::size_t>(header.number()));
            for (qint64 &length : lengths)
                length = header.number();
        }
        header.skip(end - header.position());
    }
    header.skip(extraEnd - header.position());
    if ((flags & hasName) != 0)
        header.skipText();
    if ((flags & hasComment) != 0)
        header.skipText();
    if ((flags & hasCrc) != 0)
        header.skip(2);
    if (header.isPastEnd() || _chunkLength == 0 || lengths.empty())
        return false;
    _chunkStarts.push_back(header.position());
    for (const qint64 length : lengths)
        _chunkStarts.push_back(_chunkStarts.back() + length);
    return true;
}

std::optional<QByteArray> Dictzip::unpack(std::size_t number, qint64 length) const {
    if (number + 1 >= _chunkStarts.size() || _chunkStarts[number + 1] > _file.size())
        return std::nullopt;
    z_stream stream{};
    if (inflateInit2(&stream, rawDeflate) != Z_OK)
        return std::nullopt;
    const std::unique_ptr<z_stream, InflateEnd> end(&stream);
    QByteArray text(std::min(length, _chunkLength), Qt::Uninitialized);
    stream.next_in = const_cast<Bytef *>(_bytes + _chunkStarts[number]); // zlib reads it only
    stream.avail_in = static_cast<uInt>(_chunkStarts[number + 1] - _chunkStarts[number]);
    stream.next_out = reinterpret_cast<Bytef *>(text.data());
    stream.avail_out = static_cast<uInt>(text.size());
    const int status = inflate(&stream, Z_PARTIAL_FLUSH);
    if (status != Z_OK && status != Z_STREAM_END && status != Z_BUF_ERROR)
        return std::nullopt;
    text.chop(static_cast<qsizetype>(stream.avail_out));
    return text;
}

bool Dictzip::bring(std::size_t number, qint64 length, LastChunk &last) const {
    const bool isSame = last.number == number && !last.text.isEmpty();
    if (isSame && last.text.size() >= std::min(length, _chunkLength))
        return true;
    // Asked for a second time, there is more to come from it.
    std::optional<QByteArray> text = unpack(number, isSame ? _chunkLength : length);
    if (!text || text->isEmpty())
        return false;
    last = {number, std::move(*text)};
    return true;
}

std::optional<QByteArray> Dictzip::read(qint64 offset, qint64 length, LastChunk &last) const {
    if (!isOpen() || offset < 0 || length < 0 || length > longestRead)
        return std::nullopt;
    if (_chunkLength == 0) {
        if (offset > _file.size() || length > _file.size() - offset)
            return std::nullopt;
        return QByteArray(reinterpret_cast<const char *>(_bytes) + offset, length);
    }
    QByteArray text;
    qint64 within = offset % _chunkLength;
    for (qint64 number = offset / _chunkLength; text.size() < length; ++number) {
        if (!bring(static_cast<std::size_t>(number), within + length - text.size(), last) ||
            last.text.size() <= within)
            return std::nullopt;
        text += last.text.mid(within, length - text.size());
        within = 0;
    }
    return text;
}

} // namespace murvo::service
