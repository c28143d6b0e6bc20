// SPDX-License-Identifier: GPL-3.0-or-later
#include "Dictionary/Dictzip.h"

#include <algorithm>
#include <memory>

#include <libdeflate.h>

namespace murvo::service {

namespace {

// Of 58 KB each in the installed ones.
constexpr std::size_t chunksAtHand = 64;
// Longer entries than this are no entries: the longest of the installed ones has 60 KB.
constexpr qint64 longestRead = qint64{256} * 1024;
const QByteArray emptyLastBlock("\x03\x00", 2);

// The header as RFC 1952 has it.
constexpr qint64 fixedHeader = 10;
constexpr int hasCrc = 0x02;
constexpr int hasExtra = 0x04;
constexpr int hasName = 0x08;
constexpr int hasComment = 0x10;

struct DecompressorFree {
    void operator()(libdeflate_decompressor *unpacker) const { libdeflate_free_decompressor(unpacker); }
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
    _size = _file.size();
    _bytes = _file.map(0, _size);
    const bool isPacked = _bytes != nullptr && _size > 2 && _bytes[0] == 0x1F && _bytes[1] == 0x8B;
    if (isPacked && !readHeader())
        _bytes = nullptr;
}

// The table of chunks stands in the extra field "RA": version, chunk length, number of chunks, their lengths.
bool Dictzip::readHeader() {
    HeaderReader header(_bytes, _size);
    header.skip(3);
    const int flags = header.byte();
    header.skip(fixedHeader - header.position());
    if ((flags & hasExtra) == 0)
        return false;
    const qint64 extraLength = header.number();
    const qint64 extraEnd = extraLength + header.position();
    std::vector<qint64> lengths;
    while (header.position() + 4 <= extraEnd && !header.isPastEnd()) {
        const int first = header.byte();
        const int second = header.byte();
        const bool isTable = first == 'R' && second == 'A';
        const qint64 length = header.number();
        const qint64 end = length + header.position();
        if (isTable && header.number() == 1) {
            _chunkLength = header.number();
            lengths.resize(static_cast<std::size_t>(header.number()));
            for (qint64 &ofChunk : lengths)
                ofChunk = header.number();
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

QByteArray Dictzip::chunk(std::size_t number) const {
    {
        const std::lock_guard lock(_mutex);
        const auto found = std::find_if(_recent.begin(), _recent.end(),
                                        [number](const Chunk &each) { return each.number == number; });
        if (found != _recent.end()) {
            _recent.splice(_recent.begin(), _recent, found);
            return found->text;
        }
    }
    QByteArray text = unpack(number);
    const std::lock_guard lock(_mutex);
    _recent.push_front({number, text});
    if (_recent.size() > chunksAtHand)
        _recent.pop_back();
    return text;
}

// A chunk ends where the packer was flushed, and is not the end of its stream: one that ends there follows.
QByteArray Dictzip::unpack(std::size_t number) const {
    if (number + 1 >= _chunkStarts.size() || _chunkStarts[number + 1] > _size)
        return {};
    static thread_local const std::unique_ptr<libdeflate_decompressor, DecompressorFree> unpacker(
        libdeflate_alloc_decompressor());
    if (!unpacker)
        return {};
    const QByteArray packed = QByteArray(reinterpret_cast<const char *>(_bytes) + _chunkStarts[number],
                                         _chunkStarts[number + 1] - _chunkStarts[number]) +
                              emptyLastBlock;
    QByteArray text(_chunkLength, Qt::Uninitialized);
    size_t length = 0;
    if (libdeflate_deflate_decompress(unpacker.get(), packed.constData(), static_cast<size_t>(packed.size()),
                                      text.data(), static_cast<size_t>(text.size()),
                                      &length) != LIBDEFLATE_SUCCESS)
        return {};
    text.resize(static_cast<qsizetype>(length));
    return text;
}

std::optional<QByteArray> Dictzip::read(qint64 offset, qint64 length) const {
    if (!isOpen() || offset < 0 || length < 0 || length > longestRead)
        return std::nullopt;
    if (_chunkLength == 0) {
        if (offset > _size || length > _size - offset)
            return std::nullopt;
        return QByteArray(reinterpret_cast<const char *>(_bytes) + offset, length);
    }
    QByteArray text;
    qint64 within = offset % _chunkLength;
    for (qint64 number = offset / _chunkLength; text.size() < length; ++number) {
        const QByteArray from = chunk(static_cast<std::size_t>(number));
        const bool isLast = number + 2 == static_cast<qint64>(_chunkStarts.size());
        if (from.size() <= within || (!isLast && from.size() != _chunkLength))
            return std::nullopt;
        text += from.mid(within, length - text.size());
        within = 0;
    }
    return text;
}

} // namespace murvo::service
